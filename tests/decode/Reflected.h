/// \file
/// An object or view of the decoders that a test knows by its record alone.
#pragma once

#include "support/ExpectedTypes.h"

#include "Lumo/Pkt.h"
#include "Vorn/GenericIf.h"

#include <gtest/gtest.h>

namespace Test {

namespace GenericIf = Vorn::GenericIf;

class Reflected {
 public:
   using Object = Vorn::Ptr< Vorn::PtrInterface >;

   Reflected( Object const & object ) : keep_( object ), at_( object.ptr() ), type_( *object->fwkType() ) {}
   Reflected( void * at, Vorn::VornType const & type ) : at_( at ), type_( type ) {}

   /// Made by its factory over a packet.
   static Reflected made( std::string const & type, Vorn::Ptr< Lumo::Pkt > const & packet, U32 offset ) {
      Object const pkt = packet;
      void const * const args[] = { &pkt, &offset };
      Object object;
      typeOf( type ).genericIfConstructFromCtorArgs( &object, args );
      return object;
   }

   Vorn::VornType const & type() const { return type_; }
   void const * address() const { return at_; }
   U32 op( std::string const & attr, U32 op, void * result, void const * key, void const * arg ) const {
      return GenericIf::attributeOp( type_, result, at_, attribute( attr ), op, key, &arg );
   }
   std::string text( std::string const & attr ) const {
      return GenericIf::attributeText( at_, type_, attribute( attr ) ).charPtr();
   }
   U32 write( std::string const & attr, std::string const & text ) const {
      GenericIf::Value value( attribute( attr ).type );
      value.stringValueIs( text.c_str() );
      return op( attr, GenericIf::write, nullptr, nullptr, value.data() );
   }
   Reflected child( std::string const & attr ) const {
      Object object;
      EXPECT_EQ( op( attr, GenericIf::read, &object, nullptr, nullptr ), GenericIf::done );
      return object;
   }
   Reflected view( std::string const & attr ) const {
      Vorn::NrcPtrInterface const * view = nullptr;
      EXPECT_EQ( op( attr, GenericIf::read, &view, nullptr, nullptr ), GenericIf::done );
      return { const_cast< Vorn::NrcPtrInterface * >( view ), *attribute( attr ).type };
   }
   explicit operator bool() const { return at_; }
   /// Keys and members of a walk.
   std::string walk( std::string const & name ) const {
      Vorn::VornAttr const & attr = attribute( name );
      std::string seen;
      for ( GenericIf::Iterator it( at_, attr ); it; it.advance() ) {
         GenericIf::Value key( attr.keyType ), member( attr.type );
         it.key( key.data() );
         it.object( member.data() );
         seen += std::string( seen.empty() ? "" : " " ) + key.stringValue().charPtr() + "=" +
                 member.stringValue().charPtr();
      }
      return seen;
   }

 private:
   Vorn::VornAttr const & attribute( std::string const & name ) const {
      return *type_.attribute( name.c_str() );
   }

   Object keep_;
   void * at_;
   Vorn::VornType const & type_;
};

} // namespace Test
