// Identities of adjacencies, and the collections that go by them.
#include "Ldp/LdpPeer.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Lumo::IntfId;
using Lumo::IpAddr;
using Test::messageOf;
using Vorn::String;

LdpIdentifier const r1( 0x0a000001, 0 );
LdpAdjId const link1( r1, IntfId( "Ethernet1" ) );
LdpAdjId const target1( r1, IpAddr( 0x0a000001 ) );
LdpAdjId const target2( r1, IpAddr( 0x0a000002 ) );

TEST( LdpAdjIdTest, IsALinkByItsInterface ) {
   EXPECT_EQ( link1.adjType(), LdpLinkAdj );
   EXPECT_EQ( target1.adjType(), LdpTargetAdj );
   EXPECT_EQ( LdpAdjId().adjType(), LdpTargetAdj );
   EXPECT_TRUE( !LdpAdjId() );
   EXPECT_FALSE( !LdpAdjId( LdpIdentifier(), IpAddr( 1 ) ) );
}

TEST( LdpAdjIdTest, TextIsTheInterfaceOrTheTarget ) {
   EXPECT_EQ( link1.stringValue(), "10.0.0.1:0_Ethernet1" );
   EXPECT_EQ( target2.stringValue(), "10.0.0.1:0_TARGET_10.0.0.2" );
   EXPECT_EQ( LdpAdjId().stringValue(), "0.0.0.0:0_TARGET_0.0.0.0" );
   // An interface of such a name cannot be told from a target.
   LdpAdjId read;
   read.stringValueIs( LdpAdjId( r1, IntfId( "TARGET_10.0.0.2" ) ).stringValue() );
   EXPECT_EQ( read, target2 );
}

TEST( LdpAdjIdTest, OrdersByPeerThenInterfaceThenTarget ) {
   LdpAdjId const inOrder[] = { LdpAdjId(),
                                target1,
                                target2,
                                link1,
                                LdpAdjId( r1, IntfId( "Ethernet2" ) ),
                                LdpAdjId( LdpIdentifier( 0x0a000001, 1 ), IpAddr() ) };
   for ( auto const & a : inOrder ) {
      for ( auto const & b : inOrder ) {
         EXPECT_EQ( a < b, &a < &b ) << a << " " << b;
      }
   }
}

TEST( LdpAdjIdTest, TargetsOfAPeerHashAlikeAndAreDifferentMembers ) {
   EXPECT_EQ( target1.hash(), target2.hash() );
   EXPECT_EQ( link1.hash(), r1.hash() + IntfId( "Ethernet1" ).hash() );
   auto const coll = ldpAdjStatusCollFactory( "adj" );
   auto const first = coll->adjStatusIs( target1 );
   auto const second = coll->adjStatusIs( target2 );
   EXPECT_NE( first.ptr(), second.ptr() );
   EXPECT_EQ( coll->adjStatuss(), 2u );
   EXPECT_EQ( coll->adjStatusDel( target1 ).ptr(), first.ptr() );
   EXPECT_EQ( coll->adjStatus( target2 ).ptr(), second.ptr() );
   EXPECT_FALSE( coll->adjStatus( target1 ) );
}

} // namespace
