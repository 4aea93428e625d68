// State of a FEC on a session: its identity, the words of bits, and the two roads to it.
#include "Ldp/LdpFecSession.h"
#include "model/Observe.h"
#include "model/Samples.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Lumo::IpAddr;
using Mpls::FwdEqvClass;
using Test::Calls;
using Test::messageOf;
using Test::typeOf;
using Test::Watcher;
using Vorn::String;

FwdEqvClass const net10( Lumo::IpGenPrefix( IpAddr( 0x0a000000 ), 8 ) );
FwdEqvClass const net11( Lumo::IpGenPrefix( IpAddr( 0x0b000000 ), 8 ) );
LdpSessionId const peer1( LdpIdentifier( 0x0a000001, 0 ) );
LdpSessionId const peer2( LdpIdentifier( 0x0a000002, 0 ) );
LdpFecSessionId const id( net10, peer1 );

TEST( LdpFecSessionIdTest, OrdersByFecThenSessionAndAddsTheirHashes ) {
   LdpFecSessionId const inOrder[] = { id, { net10, peer2 }, { net11, peer1 }, { net11, peer2 } };
   for ( auto const & a : inOrder ) {
      for ( auto const & b : inOrder ) {
         EXPECT_EQ( a < b, &a < &b ) << a << " " << b;
      }
      EXPECT_EQ( a.hash(), U32( a.fwdEqvClass().hash() + a.ldpSessionId().hash() ) );
   }
}

// Of every word of bits: each view is the bit of the constant in its place, and leaves the others alone.
TEST( BitWords, AViewIsOneBit ) {
   namespace GenericIf = Vorn::GenericIf;
   struct Word {
      char const * type;
      U32 views;
      U64 all;
   };
   for ( Word const & word : { Word{ "Ldp::LdpLocalLabelSessionState", 6, 0xffffffff },
                               Word{ "Ldp::LdpPeerLabelSessionState", 7, 0xffffffff },
                               Word{ "Ldp::LdpProtoParamSetting", 5, ~U64( 0 ) } } ) {
      Vorn::VornType const & type = typeOf( word.type );
      ASSERT_EQ( type.attributeNum, 1 + 2 * word.views );
      auto const text = [&]( U64 value ) { return Vorn::valueToStrep( value ); };
      for ( U32 i = 1; i <= word.views; ++i ) {
         Vorn::VornAttr const & view = type.attributes[i + word.views];
         GenericIf::Value value( &type );
         U64 const bit = U64( 1 ) << std::stoul(
                              GenericIf::attributeText( value.data(), type, type.attributes[i] ).charPtr() );
         auto const set = [&]( bool on ) {
            void const * const args[] = { &on };
            EXPECT_EQ(
                 type.genericIfAttributeOp( nullptr, value.data(), view, GenericIf::write, nullptr, args ),
                 GenericIf::done );
         };
         set( true );
         EXPECT_EQ( value.stringValue(), text( bit ) ) << view.name;
         EXPECT_EQ( GenericIf::attributeText( value.data(), type, view ), "True" );
         value.stringValueIs( text( word.all ) );
         set( false );
         EXPECT_EQ( value.stringValue(), text( word.all & ~bit ) ) << view.name;
         EXPECT_EQ( GenericIf::attributeText( value.data(), type, view ), "False" );
      }
   }
}

TEST( FecSessionViewTest, RefersToWhatTheCollectionOwns ) {
   auto const coll = ldpFecSessionStatusCollFactory( "fecs" );
   auto const view = coll->fecSessionStatusBySessionCollIs( peer1 );
   auto const status = coll->fecSessionStatusIs( id );
   EXPECT_EQ( view->fecSessionStatuss(), 0u ) << "the writer keeps them in step";
   Watcher seen( *view );
   view->fecSessionStatusIs( id, nullptr );
   EXPECT_EQ( seen.taken(), Calls{} );
   view->fecSessionStatusIs( id, status );
   view->fecSessionStatusIs( id, status );
   EXPECT_EQ( seen.taken(), Calls{ "fecSessionStatus[10.0.0.0/8_10.0.0.1:0]" } );
   EXPECT_EQ( status->parent().ptr(), coll.ptr() );

   EXPECT_EQ( coll->fecSessionStatusDel( id ).ptr(), status.ptr() );
   EXPECT_FALSE( status->parent() );
   EXPECT_EQ( seen.taken(), Calls{} );
   ASSERT_EQ( view->fecSessionStatus( id ).ptr(), status.ptr() ) << "until the writer removes it";
   auto const again = coll->fecSessionStatusIs( id );
   EXPECT_NE( again.ptr(), status.ptr() );
   view->fecSessionStatusIs( id, again );
   view->fecSessionStatusIs( id, nullptr );
   EXPECT_EQ( seen.taken(), ( Calls{ "fecSessionStatus[10.0.0.0/8_10.0.0.1:0]",
                                     "fecSessionStatus[10.0.0.0/8_10.0.0.1:0]" } ) );
   EXPECT_FALSE( view->fecSessionStatus( id ) );

   view->fecSessionStatusIs( id, again );
   coll->fecSessionStatusBySessionCollDel( peer1 );
   EXPECT_EQ( coll->fecSessionStatus( id ).ptr(), again.ptr() ) << "a view deletes no status";
}

} // namespace
