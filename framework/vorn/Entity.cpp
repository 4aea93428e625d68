#include "Vorn/Entity.h"

#include "Vorn/ReflectOps.h"

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

/// Calls `call( child )` for each entity child until it returns true.
template< class Call >
bool anyChild( Entity const & entity, Call const & call ) {
   VornType const & type = *entity.fwkType();
   void * const object = const_cast< PtrInterface * >( static_cast< PtrInterface const * >( &entity ) );
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !attr->instantiating() ) continue;
      Ptr< PtrInterface > child;
      if ( !attr->keyed() ) {
         attr->ops->op( &child, object, *attr, GenericIf::read, nullptr, nullptr );
         if ( child && call( static_cast< Entity & >( *child ) ) ) return true;
         continue;
      }
      for ( GenericIf::Iterator it( object, *attr ); it; it.advance() ) {
         it.object( &child );
         if ( call( static_cast< Entity & >( *child ) ) ) return true;
      }
   }
   return false;
}

} // namespace

Entity::~Entity() = default;

void Entity::zeroReferencesIs( bool zero ) {
   if ( !zero ) return;
   if ( NotifieeList * const list = notifieeList(); list && !list->empty() )
      list->doVisitZeroReferences( *this );
}

void Entity::nameIsFromBackup( Name const & ) {}

void Entity::handleParent() {}

void Entity::reconstruct() {}

void Entity::saveConstructParams() {}

void Entity::entBackupDel() {}

void Entity::vornParentIs( Entity * parent ) {
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
   auto const objectOf = []( Entity const & entity ) {
      return const_cast< PtrInterface * >( static_cast< PtrInterface const * >( &entity ) );
   };
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
   Ptr< Entity > found;
   anyChild( *this, [&]( Entity & child ) {
      if ( !( child.nameText() == childName ) ) return false;
      found = &child;
      return true;
   } );
   return found;
}

void childrenDel( Entity & entity, VornType const & type ) {
   void * const object = static_cast< PtrInterface * >( &entity );
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !attr->instantiating() || attr->owner != &type ) continue;
      attr->ops->op( nullptr, object, *attr, attr->keyed() ? GenericIf::delAll : GenericIf::del, nullptr,
                     nullptr );
   }
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
