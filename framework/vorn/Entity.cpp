// What all entities share: names, parents, going down, being asked for again.
#include "Vorn/Entity.h"

#include "Vorn/Impl/EntityRecord.h"

#include <string>

namespace Vorn {

constinit VornType const Entity::_vornType = [] {
   VornType type{};
   type.name = "Vorn::Entity";
   type.attributes = AttrTable< Entity >::attributes;
   type.ctorArgs = AttrTable< Entity >::ctorArgs;
   type.methods = &GenericIfImpl::GenericIfPtrInterfaceMethods< Entity >::vtable_;
   type.genericIfAttributeOp = []( void * result, void * object, VornAttr const & attr, U32 op,
                                   void const * key, void const * const * args ) {
      return GenericIfImpl::attributeOp( Entity::_vornType, result, object, attr, op, key, args );
   };
   type.sizeAndFlags = VornType::objectSizeFlag | U32( sizeof( Entity ) );
   type.attributeNum = AttrTable< Entity >::num;
   type.flags = VornType::plainFlags | VornType::polymorphicFlag;
   return type;
}();

namespace {

/// The attribute through which a member is known in its parent: its constructor argument that is the key.
VornAttr const * keyAttr( VornType const & type ) {
   for ( VornAttr const * attr = type.attributes; attr && attr->name; ++attr ) {
      if ( attr->isKey() ) return attr;
   }
   return nullptr;
}

/// The object as reflection takes it.
void * objectOf( Entity const & entity ) {
   return const_cast< PtrInterface * >( static_cast< PtrInterface const * >( &entity ) );
}

bool isNamed( Ptr< PtrInterface > const & child, String const & name ) {
   return child && static_cast< Entity const & >( *child ).nameText() == name;
}

/// Deletes an entity's children with notification, in the order of the attributes, those of a base last.
/// False if there was none.
bool childrenDel( Entity & entity ) {
   VornType const & ownType = *entity.fwkType();
   void * const object = objectOf( entity );
   bool any = false;
   for ( VornType const * type = &ownType; type; type = type->base ) {
      for ( VornAttr const * attr = type->attributes; attr && attr->name; ++attr ) {
         if ( !attr->instantiating() || attr->owner != type ) continue;
         Ptr< PtrInterface > child;
         U32 members = 0;
         if ( attr->keyed() ) {
            attr->ops->op( &members, object, *attr, GenericIf::members, nullptr, nullptr );
            if ( members ) attr->ops->op( nullptr, object, *attr, GenericIf::delAll, nullptr, nullptr );
         } else {
            attr->ops->op( &child, object, *attr, GenericIf::del, nullptr, nullptr );
         }
         any = any || child || members;
      }
   }
   return any;
}

/// The member of a collection whose name or key has that text, or null.
Ptr< PtrInterface > memberNamed( void * object, VornAttr const & attr, String const & text ) {
   Ptr< PtrInterface > member;
   try {
      GenericIf::Value key( attr.keyType );
      if ( attr.keyType == recordOf< Name >() ) {
         *static_cast< Name * >( key.data() ) = text; // a name stands there without quotes
      } else {
         key.stringValueIs( text );
      }
      attr.ops->op( &member, object, attr, GenericIf::read, key.data(), nullptr );
      return isNamed( member, text ) ? member : nullptr;
   } catch ( RangeException const & ) { // keys that have a text do not all read back from it
   }
   for ( GenericIf::Iterator it( object, attr ); it; it.advance() ) {
      it.object( &member );
      if ( isNamed( member, text ) ) return member;
   }
   return nullptr;
}

} // namespace

Entity::~Entity() = default;

void Entity::zeroReferencesIs( bool zero ) {
   if ( !zero ) return;
   NotifieeList * const list = notifieeList();
   if ( list && !list->empty() ) list->doVisitZeroReferences( *this );
   bool const owns = fwkType()->instantiatingNum;
   if ( owns ) childrenDel( *this );
   if ( list && !list->empty() ) list->deleteAll();
   // Again, for what observers have made: nobody must find a way here from below when the fields go.
   while ( owns && childrenDel( *this ) ) {}
}

void Entity::nameIsFromBackup( Name const & ) {}

void Entity::handleParent() {}

void Entity::reconstruct() {}

void Entity::saveConstructParams() {}

void Entity::entBackupDel() {}

void Entity::vornParentIs( Entity * parent ) {
   Hold const hold( *this );
   parent_ = parent;
   if ( NotifieeList * const list = notifieeList(); list && !list->empty() )
      list->doVisitFwkActivity( *this );
   handleParent();
}

String Entity::nameText() const {
   VornAttr const * const key = keyAttr( *fwkType() );
   return key ? GenericIf::attributeText( static_cast< PtrInterface const * >( this ), *fwkType(), *key )
              : name();
}

Name Entity::fullName() const {
   std::string path;
   for ( Entity const * at = this; at; at = at->parent_ ) {
      std::string part( at->nameText().view() );
      if ( at->parent_ ) part = std::string( at->parentAttrName().view() ) + "[" + part + "]";
      path = path.empty() ? part : part + "/" + path;
   }
   return Name( std::string_view( path ) );
}

// A collection is asked for the entity's key, so that the answer does not take longer among many siblings.
String Entity::parentAttrName() const {
   if ( !parent_ ) return {};
   VornAttr const * const ownKey = keyAttr( *fwkType() );
   for ( VornAttr const * attr = parent_->fwkType()->attributes; attr->name; ++attr ) {
      if ( !attr->instantiating() ) continue;
      Ptr< PtrInterface > child;
      if ( !attr->keyed() ) {
         attr->ops->op( &child, objectOf( *parent_ ), *attr, GenericIf::read, nullptr, nullptr );
      } else if ( !ownKey ) {
         Name const key = name();
         if ( attr->keyType != recordOf< Name >() ) continue;
         attr->ops->op( &child, objectOf( *parent_ ), *attr, GenericIf::read, &key, nullptr );
      } else if ( attr->keyType == ownKey->type ) {
         GenericIf::Value key( ownKey->type );
         ownKey->ops->op( key.data(), objectOf( *this ), *ownKey, GenericIf::read, nullptr, nullptr );
         attr->ops->op( &child, objectOf( *parent_ ), *attr, GenericIf::read, key.data(), nullptr );
      }
      if ( child.ptr() == static_cast< PtrInterface const * >( this ) ) return attr->name;
   }
   return {};
}

Ptr< Entity > Entity::entity( String const & childName ) const {
   for ( VornAttr const * attr = fwkType()->attributes; attr->name; ++attr ) {
      if ( !attr->instantiating() ) continue;
      Ptr< PtrInterface > child;
      if ( attr->keyed() ) {
         child = memberNamed( objectOf( *this ), *attr, childName );
      } else {
         attr->ops->op( &child, objectOf( *this ), *attr, GenericIf::read, nullptr, nullptr );
      }
      if ( isNamed( child, childName ) ) return Ptr< Entity >( static_cast< Entity * >( child.ptr() ) );
   }
   return nullptr;
}

namespace {

// Calls `call` with each constructor argument's attribute and the value given for it, until it says stop.
template< class Call >
void eachCtorArg( VornType const & type, void const * const * args, Call const & call ) {
   for ( U32 i = 0; type.ctorArgs[i].name; ++i ) {
      if ( !call( *type.attribute( type.ctorArgs[i].name ), args[i] ) ) return;
   }
}

// The first argument that cannot be changed and differs from the one given; else a null attribute.
struct Difference {
   VornAttr const * attr = nullptr;
   void const * given = nullptr;
};

Difference difference( Entity const & present, VornType const & type, void const * const * args ) {
   auto * const object = const_cast< PtrInterface * >( static_cast< PtrInterface const * >( &present ) );
   Difference found;
   eachCtorArg( type, args, [&]( VornAttr const & attr, void const * given ) {
      if ( attr.kind() == VornKind::mutableAttr ) return true;
      GenericIf::Value current( attr.type );
      attr.ops->op( current.data(), object, attr, GenericIf::read, nullptr, nullptr );
      if ( attr.type->methods->equal( current.data(), given ) ) return true;
      found = { &attr, given };
      return false;
   } );
   return found;
}

} // namespace

bool madeFrom( Entity const & entity, VornType const & type, void const * const * args ) {
   return !difference( entity, type, args ).attr;
}

void reinstantiate( Entity & present, VornType const & type, void const * const * args ) {
   if ( auto const found = difference( present, type, args ); found.attr ) {
      VornType const & argType = *found.attr->type;
      throwNameInUseException(
           "Reinstantiating the entity with fullName " + valueToStrep( present.fullName() ) +
           " where constructor parameter attribute '" + found.attr->name + "' has a different value of " +
           argType.methods->genericIfStrRep( found.given, &argType ) + " than the current value of " +
           GenericIf::attributeText( &present, type, *found.attr ) + " not allowed" );
   }
   void * const object = static_cast< PtrInterface * >( &present );
   eachCtorArg( type, args, [&]( VornAttr const & attr, void const * given ) {
      if ( attr.kind() == VornKind::mutableAttr )
         attr.ops->op( nullptr, object, attr, GenericIf::write, nullptr, &given );
      return true;
   } );
}

void throwNullReference( VornType const & type, char const * attrName ) {
   // The closing quotation mark is part of the text.
   throwRangeException( ( String( "null _" ) + attrName + " parameter to mutator for " + type.name +
                          "::" + attrName + " not allowed\"" )
                             .charPtr() );
}

} // namespace Vorn
