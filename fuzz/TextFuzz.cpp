// A text, given to the reader of every value type that the type table knows. A reader takes it, and then the
// value's own text reads back as an equal one, or raises RangeException and nothing else.
#include "Vorn/Assert.h"
#include "Vorn/Entity.h"
#include "Vorn/Exception.h"
#include "Vorn/GenericIf.h"

#include <algorithm>
#include <memory>
#include <set>

using Vorn::String;
using Vorn::VornAttr;
using Vorn::VornType;
using Vorn::GenericIf::Value;

namespace {

bool isValue( VornType const & type ) { return type.methods && type.methods->equal && !type.isPolymorphic(); }

// All value types: those in the table, and those of attributes, which can belong to other libraries.
std::set< VornType const * > valueTypes() {
   std::set< VornType const * > types;
   auto const add = [&]( VornType const * type ) {
      if ( type && isValue( *type ) ) types.insert( type );
   };
   for ( VornType const * type : Vorn::typeNodes() ) {
      add( type );
      for ( VornAttr const * attr = type->attributes; attr && attr->name; ++attr ) {
         add( attr->type );
         add( attr->keyType );
      }
   }
   VORN_ASSERT( types.size() > 60 );
   return types;
}

// A text may say "nan", which is unequal to itself.
bool same( Value const & a, Value const & b ) { return a == b || a.stringValue() == b.stringValue(); }

// False for a text that is refused, which must leave the value as it was.
template< class Read >
bool taken( Value & value, Read const & read ) {
   Value const before( value );
   try {
      read();
   } catch ( Vorn::RangeException const & ) {
      VORN_ASSERT( same( value, before ) );
      return false;
   }
   return true;
}

void checkText( VornType const & type, String const & text ) {
   // In a block of exactly its size, without the zero octet that a string has behind it.
   auto const block = std::make_unique< char[] >( text.bytes() );
   std::copy( text.begin(), text.end(), block.get() );
   char const * it = block.get();
   char const * const end = it + text.bytes();
   Value value( &type );
   if ( !taken( value, [&] { type.methods->sequenceTo( it, end, value.data(), &type ); } ) ) return;
   VORN_ASSERT( it >= block.get() && it <= end );

   Value back( &type );
   back.stringValueIs( value.stringValue() );
   VORN_ASSERT( same( back, value ) );

   Value whole( &type );
   VORN_ASSERT( taken( whole, [&] { whole.stringValueIs( text ); } ) == ( it == end ) );
   if ( it == end ) VORN_ASSERT( same( whole, value ) );
}

// A value that can also be set by its plain text.
void checkPlainText( VornType const & type, String const & text ) {
   VornAttr const * const attr = type.attributes ? type.attribute( "stringValue" ) : nullptr;
   if ( !attr || attr->kind() != Vorn::VornKind::state ) return;
   auto const set = [&]( Value & value, String const & from ) {
      void const * const args[] = { &from };
      attr->ops->op( nullptr, value.data(), *attr, Vorn::GenericIf::write, nullptr, args );
   };
   Value value( &type );
   if ( !taken( value, [&] { set( value, text ); } ) ) return;
   String plain;
   attr->ops->op( &plain, value.data(), *attr, Vorn::GenericIf::read, nullptr, nullptr );
   Value back( &type );
   set( back, plain );
   VORN_ASSERT( same( back, value ) );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   static std::set< VornType const * > const types = valueTypes();
   String const text( static_cast< void const * >( data ), size );
   for ( VornType const * type : types ) {
      checkText( *type, text );
      checkPlainText( *type, text );
   }
   return 0;
}
