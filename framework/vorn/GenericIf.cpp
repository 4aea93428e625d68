// Reflection over records: operations, iterators, generic observers, texts of composites.
#include "Vorn/GenericIf.h"

#include "TypeTable.h"
#include "Vorn/Strep.h"
#include "Vorn/ValueType.h"

#include <algorithm>
#include <cstring>

namespace Vorn {

namespace {

bool nameBefore( VornType const * a, VornType const * b ) { return std::strcmp( a->name, b->name ) < 0; }

} // namespace

#define BUILTIN_RECORD( Type, name )                                                                         \
   constinit VornType const BuiltinType< Type >::record = valueRecord< Type >( name, nullptr, 0, nullptr );
BUILTIN_RECORD( bool, "bool" )
BUILTIN_RECORD( U8, "U8" )
BUILTIN_RECORD( U16, "U16" )
BUILTIN_RECORD( U32, "U32" )
BUILTIN_RECORD( U64, "U64" )
BUILTIN_RECORD( double, "double" )
BUILTIN_RECORD( String, "Vorn::String" )
BUILTIN_RECORD( Name, "Vorn::Name" )
#undef BUILTIN_RECORD
constinit VornType const BuiltinType< void >::record = [] {
   VornType type{};
   type.name = "void";
   return type;
}();

VornAttr const * VornType::attribute( char const * attrName ) const noexcept {
   for ( VornAttr const * attr = attributes; attr && attr->name; ++attr ) {
      if ( !std::strcmp( attr->name, attrName ) ) return attr;
   }
   return nullptr;
}

VornAttr const * VornType::attribute( U32 id ) const noexcept {
   for ( VornAttr const * attr = attributes; attr && attr->name; ++attr ) {
      if ( attr->id() == id ) return attr;
   }
   return nullptr;
}

U32 VornAttr::memberKeyIndex() const noexcept {
   U32 index = 0;
   while ( std::strcmp( memberCtorArgs[index].name, memberKey ) )
      ++index;
   return index;
}

std::vector< VornType const * > & typeTable() {
   static std::vector< VornType const * > types;
   return types;
}

void typeNodeIs( VornType const * type ) {
   auto & types = typeTable();
   types.insert( std::upper_bound( types.begin(), types.end(), type, nameBefore ), type );
}

namespace GenericIf {

Iterator::Iterator( void * object, VornAttr const & attr, void const * key )
     : attr_( attr ),
       it_( attr.ops && attr.ops->iterator ? attr.ops->iterator( object, key, &vtable_ ) : nullptr ) {}

Iterator::~Iterator() {
   if ( it_ ) vtable_->iterDel( attr_, it_ );
}

Value::Value( VornType const * type, void const * from )
     : type_( type ), data_( type->size() <= sizeof room_ ? room_ : ::operator new( type->size() ) ) {
   type->methods->genericIfConstruct( data_, from );
}

Value::~Value() {
   type_->methods->genericIfDestruct( data_ );
   if ( data_ != room_ ) ::operator delete( data_ );
}

NotifieeConst::~NotifieeConst() = default;

U32 attributeOp( VornType const & type, void * result, void * object, VornAttr const & attr, U32 op,
                 void const * key, void const * const * args ) {
   for ( VornType const * at = &type; at; at = at->base ) {
      if ( !at->genericIfAttributeOp ) continue;
      U32 const outcome = at->genericIfAttributeOp( result, object, attr, op, key, args );
      if ( outcome != notOfType ) return outcome;
   }
   return notOfType;
}

String attributeText( void const * object, VornType const &, VornAttr const & attr ) {
   if ( attr.keyed() || !attr.ops || !attr.type->methods ) return {};
   Value value( attr.type );
   if ( attr.ops->op( value.data(), const_cast< void * >( object ), attr, read, nullptr, nullptr ) != done )
      return {};
   return value.stringValue();
}

} // namespace GenericIf

namespace GenericIfImpl {

void throwTypeException( VornType const * type ) {
   throw RangeException( String( "an object of type " ) + type->name + " cannot stand here" );
}

void throwUnhashableException( VornType const * type ) {
   throw RangeException( String( "type " ) + type->name + " has no hash" );
}

void throwSetFalseValueException( VornAttr const & attr ) {
   throw RangeException( String( "false for a member of set " ) + attr.name + " not allowed" );
}

U32 attributeOp( VornType const & type, void * result, void * object, VornAttr const & attr, U32 op,
                 void const * key, void const * const * args ) {
   if ( attr.owner != &type ) return GenericIf::notOfType;
   return attr.ops ? attr.ops->op( result, object, attr, op, key, args ) : U32( GenericIf::notApplicable );
}

void * iterator( VornType const & type, void * object, VornAttr const & attr,
                 GenericIf::IteratorVTable const ** vtable ) {
   if ( !type.isDerived( attr.owner ) || !attr.ops || !attr.ops->iterator ) return nullptr;
   return attr.ops->iterator( object, nullptr, vtable );
}

void const * voidPtrIs( void const * value, VornType const * fromType, VornType const * toType ) {
   if ( fromType == toType ) return value;
   if ( !fromType->isDerived( toType ) ) throwTypeException( fromType );
   if ( fromType->isPolymorphic() == toType->isPolymorphic() ) return value;
   // A base without a table of virtual operations lies behind the table of its polymorphic child; there is no
   // way in the other direction.
   VornType const * const type = fromType;
   VornType const * const t = toType;
   VORN_ASSERT( type->isPolymorphic() );
   VORN_ASSERT( !t->isPolymorphic() );
   return static_cast< char const * >( value ) + sizeof( void * );
}

namespace {

using AnyPtr = Ptr< PtrInterface >;

AnyPtr const & ptrAt( void const * value ) { return *static_cast< AnyPtr const * >( value ); }

} // namespace

constexpr GenericIfMethods const GenericIfPtrInterfaceMethods< PtrInterface >::vtable_{
   []( void * value ) { static_cast< AnyPtr * >( value )->~AnyPtr(); },
   []( void * value, void const * from ) {
      from ? new ( value ) AnyPtr( ptrAt( from ) ) : new ( value ) AnyPtr();
   },
   []( void const *, VornType const * type ) -> U32 { throwUnhashableException( type ); },
   []( void const * value, VornType const * ) -> String {
      auto const & object = ptrAt( value );
      return object ? String( object->fwkType()->name ) : String( "null" );
   },
   []( void *, String const &, VornType const * type ) { throwTypeException( type ); },
   voidPtrIs,
   []( String::IteratorConst &, String::IteratorConst const &, void *, VornType const * type ) {
      throwTypeException( type );
   },
   []( void const * a, void const * b ) { return ptrAt( a ) == ptrAt( b ); },
   []( void * to, void const * from ) { *static_cast< AnyPtr * >( to ) = ptrAt( from ); },
   nullptr,
   nullptr,
};

namespace {

using View = NrcPtrInterface const *;

View & viewAt( void const * value ) { return *static_cast< View * >( const_cast< void * >( value ) ); }

} // namespace

constexpr GenericIfMethods const & ptrMethods = GenericIfPtrInterfaceMethods< PtrInterface >::vtable_;

GenericIfMethods const viewMethods{
   []( void * ) {},
   []( void * value, void const * from ) { new ( value ) View( from ? viewAt( from ) : nullptr ); },
   ptrMethods.genericIfHash,
   []( void const * value, VornType const * type ) {
      return String( viewAt( value ) ? type->name : "null" );
   },
   ptrMethods.genericIfStrepToValue,
   voidPtrIs,
   ptrMethods.sequenceTo,
   []( void const * a, void const * b ) { return viewAt( a ) == viewAt( b ); },
   []( void * to, void const * from ) { viewAt( to ) = viewAt( from ); },
   nullptr,
   nullptr,
};

namespace {

void * writable( void const * value ) { return const_cast< void * >( value ); }

} // namespace

String recordToStrep( void const * value, VornType const & type, Shown shown ) {
   std::vector< char const * > names;
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( ( attr->*shown )() ) names.push_back( attr->name );
   }
   // From the last to the first.
   std::vector< String > texts( names.size() );
   std::size_t at = names.size();
   for ( VornAttr const * attr = type.attributes + type.attributeNum; attr-- != type.attributes; ) {
      if ( ( attr->*shown )() ) texts[--at] = GenericIf::attributeText( value, type, *attr );
   }
   return compositeText( type.name, names.data(), texts.data(), names.size() );
}

void recordFromSequence( String::IteratorConst & it, String::IteratorConst const & end, void * value,
                         VornType const & type, Shown shown ) {
   needString( it, end, ( String( "Value('" ) + type.name + "', ** {" ).charPtr() );
   bool first = true;
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !( attr->*shown )() ) continue;
      needString( it, end, ( String( first ? "'" : ", '" ) + attr->name + "': " ).charPtr() );
      first = false;
      GenericIf::Value part( attr->type );
      try {
         attr->type->methods->sequenceTo( it, end, part.data(), attr->type );
      } catch ( RangeException const & failure ) {
         rethrowFromDeserializeAttr( failure, attr->name );
      }
      void const * const arg = part.data();
      attr->ops->op( nullptr, value, *attr, GenericIf::place, nullptr, &arg );
   }
   needString( it, end, "})" );
}

void recordLogOut( NboAttrLog::Out & out, void const * value, VornType const & type ) {
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !attr->isField() ) continue;
      if ( attr->ops->op( &out, writable( value ), *attr, GenericIf::toLog, nullptr, nullptr ) ==
           GenericIf::done )
         continue;
      GenericIf::Value field( attr->type );
      attr->ops->op( field.data(), writable( value ), *attr, GenericIf::read, nullptr, nullptr );
      attr->type->methods->logOut( out, field.data() );
   }
}

void recordLogIn( NboAttrLog::In & in, void * value, VornType const & type ) {
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !attr->isField() ) continue;
      if ( attr->ops->op( &in, value, *attr, GenericIf::fromLog, nullptr, nullptr ) == GenericIf::done )
         continue;
      GenericIf::Value field( attr->type );
      attr->type->methods->logIn( in, field.data() );
      void const * const arg = field.data();
      attr->ops->op( nullptr, value, *attr, GenericIf::place, nullptr, &arg );
   }
}

} // namespace GenericIfImpl

} // namespace Vorn
