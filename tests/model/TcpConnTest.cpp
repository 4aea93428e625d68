// Connections that are asked for again.
#include "Ldp/LdpTcpConn.h"
#include "Vorn/System.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Lumo::IpAddr;
using Lumo::Port;
using Test::Calls;
using Test::messageOf;
using Test::Watcher;

LdpIdentifier const peer( 0x0a000001, 0 );
IpAddr const server( 0x0a000001 ), other( 0x0a000002 ), client( 0x0a000009 );

class TcpConnTest : public testing::Test {
 protected:
   TcpConnTest() {
      Vorn::System::clockIs( [] { return 7.5; } );
   }
   ~TcpConnTest() override { Vorn::System::clockIs( nullptr ); }

   Vorn::Ptr< LdpTcpConnConfigColl > coll = ldpTcpConnConfigCollFactory( "conns" );
};

TEST_F( TcpConnTest, IsMadeOfItsArgumentsAtATime ) {
   auto const conn = coll->connConfigIs( server, Port( 646 ), client, peer );
   EXPECT_EQ( conn->serverIpAddr(), server );
   EXPECT_EQ( conn->serverPort(), Port( 646 ) );
   EXPECT_EQ( conn->clientIpAddr(), client );
   EXPECT_EQ( conn->ldpIdentifier(), peer );
   EXPECT_FALSE( conn->enabled() );
   EXPECT_EQ( conn->requestTime(), 7.5 );
   EXPECT_EQ( coll->connConfig( peer ).ptr(), conn.ptr() );
}

TEST_F( TcpConnTest, TheSameServerAgainWritesPortAndClient ) {
   auto const conn = coll->connConfigIs( server, Port( 646 ), client, peer );
   Watcher collSeen( *coll ), seen( *conn );
   Vorn::System::clockIs( [] { return 8.5; } );
   EXPECT_EQ( coll->connConfigIs( server, Port( 647 ), other, peer ).ptr(), conn.ptr() );
   EXPECT_EQ( seen.taken(), ( Calls{ "serverPort", "clientIpAddr" } ) );
   EXPECT_EQ( collSeen.taken(), Calls{} );
   EXPECT_EQ( conn->serverPort(), Port( 647 ) );
   EXPECT_EQ( conn->clientIpAddr(), other );
   EXPECT_EQ( conn->requestTime(), 7.5 ) << "it is the old request";
   coll->connConfigDel( peer );
   EXPECT_EQ( coll->connConfigIs( server, Port( 646 ), client, peer )->requestTime(), 8.5 );
}

TEST_F( TcpConnTest, AnotherServerIsRefusedAndNothingChanges ) {
   auto const conn = coll->connConfigIs( server, Port( 646 ), client, peer );
   Watcher collSeen( *coll ), seen( *conn );
   Vorn::Expect const expected( Vorn::Exception::nameInUse );
   EXPECT_TRUE( Vorn::Expect::expected( Vorn::Exception::nameInUse ) );
   EXPECT_FALSE( Vorn::Expect::expected( Vorn::Exception::Id( 17 ) ) );
   EXPECT_EQ( messageOf< Vorn::NameInUseException >(
                   [&] { coll->connConfigIs( other, Port( 647 ), other, peer ); } ),
              std::string( "Reinstantiating the entity with fullName " ) +
                   Vorn::valueToStrep( conn->fullName() ).charPtr() +
                   " where constructor parameter attribute 'serverIpAddr' has a different value of 10.0.0.2 "
                   "than the "
                   "current value of 10.0.0.1 not allowed" );
   EXPECT_EQ( conn->serverPort(), Port( 646 ) );
   EXPECT_EQ( seen.taken(), Calls{} );
   EXPECT_EQ( collSeen.taken(), Calls{} );
}

TEST( TcpConnStatusTest, AnotherClientIsRefused ) {
   auto const coll = ldpTcpConnStatusCollFactory( "conns" );
   auto const conn = coll->connStatusIs( peer, 7 );
   EXPECT_EQ( coll->connStatusIs( peer, 7 ).ptr(), conn.ptr() );
   EXPECT_EQ(
        messageOf< Vorn::NameInUseException >( [&] { coll->connStatusIs( peer, 8 ); } ),
        std::string( "Reinstantiating the entity with fullName " ) +
             Vorn::valueToStrep( conn->fullName() ).charPtr() +
             " where constructor parameter attribute 'clientId' has a different value of 8 than the current "
             "value of 7 not allowed" );
   EXPECT_EQ( coll->connStatus( peer )->clientId(), 7u );
}

} // namespace
