// Objects and views, read by their records.
#include "support/ReadAll.h"

#include "Vorn/GenericIf.h"

namespace Fuzz {

namespace {

using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;
namespace GenericIf = Vorn::GenericIf;

// A value, and all that it is made of or leads to; its text must read back as an equal one.
void readValue( Sink & sink, Value & value, VornKind kind ) {
   VornType const & type = *value.type();
   if ( type.isOverlay() ) {
      auto * const view = *static_cast< Vorn::NrcPtrInterface ** >( value.data() );
      if ( view ) readRecord( sink, view, type );
   } else if ( type.isPolymorphic() ) {
      Vorn::PtrInterface * const object =
           static_cast< Vorn::Ptr< Vorn::PtrInterface > * >( value.data() )->ptr();
      bool const owned = kind == VornKind::child || kind == VornKind::referenceColl;
      if ( object && owned ) readRecord( sink, object, *object->fwkType() );
   } else {
      Value back( &type );
      back.stringValueIs( value.stringValue() );
      VORN_ASSERT( back == value );
      sink.take( value.stringValue() );
      if ( !type.isEnum() ) readRecord( sink, value.data(), type );
   }
}

} // namespace

void readRecord( Sink & sink, void * object, VornType const & type ) {
   for ( VornAttr const * attr = type.attributes; attr && attr->name; ++attr ) {
      if ( attr->kind() == VornKind::function ) continue;
      if ( !attr->keyed() ) {
         Value value( attr->type );
         U32 const outcome =
              GenericIf::attributeOp( type, value.data(), object, *attr, GenericIf::read, nullptr, nullptr );
         if ( outcome == GenericIf::done ) readValue( sink, value, attr->kind() );
         continue;
      }
      for ( GenericIf::Iterator it( object, *attr ); it; it.advance() ) {
         Value key( attr->keyType );
         Value value( attr->type );
         it.key( key.data() );
         it.object( value.data() );
         readValue( sink, key, VornKind::derived );
         readValue( sink, value, attr->kind() );
      }
   }
}

} // namespace Fuzz
