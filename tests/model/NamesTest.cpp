// Names in the forms in which a program writes them: factories as functions, arguments that convert and those
// that must not, enumerators of a class, children by their text.
#include "Ldp/LdpStatus.h"
#include "Vorn/Exception.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Test::messageOf;
using Vorn::Name;
using Vorn::Ptr;

static_assert( std::is_same_v< decltype( &configFactory ), Ptr< Config > ( * )( L3::VrfName ) > );
static_assert(
     std::is_same_v< decltype( &ldpAdjStatusFactory ), Ptr< LdpAdjStatus > ( * )( LdpAdjId const & ) > );
static_assert( std::is_same_v< decltype( &localGrStatusFactory ), Ptr< LocalGrStatus > ( * )() > );

TEST( Names, FactoriesAreFunctions ) {
   auto * const factory = &ldpStatusCollFactory;
   EXPECT_EQ( factory( Name( "all" ) )->name(), "all" );
   EXPECT_EQ( ldpAdjStatusFactory( { LdpIdentifier( 1, 2 ), Lumo::IpAddr( 3 ) } )->ldpAdjId().targetIpAddr(),
              Lumo::IpAddr( 3 ) );
   EXPECT_EQ( ldpTcpConnConfigFactory( Lumo::IpAddr( 1 ), Lumo::Port( 646 ), {}, { 4, 0 } )->serverIpAddr(),
              Lumo::IpAddr( 1 ) );
   EXPECT_EQ( Status::StatusIs( L3::VrfName( "red" ) )->vrfName(), L3::VrfName( "red" ) );
}

template< class Given >
concept MakesTargets = requires( LdpTargetConfigColl & coll, Given given ) {
   coll.adjTargetConfigIs( given );
}
|| requires( Given given ) { ldpTargetConfigFactory( given ); }
|| requires( Given given ) { LdpTargetConfig::LdpTargetConfigIs( given ); };
static_assert( MakesTargets< Lumo::IpAddr > && !MakesTargets< double > && !MakesTargets< int > );
using PwKey = Pseudowire::PseudowireLdpRequestKey;
template< class Given >
concept MakesPws = requires( PwConfigColl & coll, Given given ) {
   coll.configIs( PwKey(), given );
}
|| requires( Given given ) { pwConfigFactory( PwKey(), given ); }
|| requires( Given given ) { PwConfig::PwConfigIs( PwKey(), given ); };
static_assert( MakesPws< Pseudowire::PseudowireType > && !MakesPws< int > && !MakesPws< double > );

TEST( Names, EnumeratorsOfAClass ) {
   auto const told = ldpXsessionNotificationFactory( Name() );
   LdpXsessionNotification::LdpXsessionNotificationType const type =
        LdpXsessionNotification::ldpXsessionMapping;
   told->ldpXsessionNotificationTypeIs( type );
   EXPECT_EQ( told->ldpXsessionNotificationType(), type );
   EXPECT_EQ( Lumo::IpGenPrefixBase( Lumo::IpAddr( 0x0a000000 ), 8 ).v4Addr(), Lumo::IpAddr( 0x0a000000 ) );
}

TEST( Names, ARangeExceptionTakesAPattern ) {
   EXPECT_EQ( messageOf< Vorn::RangeException >( [] { throw Vorn::RangeException( "100%d" ); } ), "100%d" );
   EXPECT_EQ( messageOf< Vorn::RangeException >( [] { throw Vorn::RangeException( "%u > %s", 5u, "4" ); } ),
              "5 > 4" );
}

TEST( Names, AChildIsFoundByItsText ) {
   auto const status = statusFactory( L3::VrfName( "red" ) );
   auto const links = status->ldpLinkConfigCollIs( Name( "links" ) );
   auto const adjs = status->ldpAdjStatusCollIs( Name( "adjs" ) );
   EXPECT_EQ( status->entity( "links" ), links );
   EXPECT_EQ( status->entity( "adjs" ), adjs ) << "behind others";
   EXPECT_EQ( status->entity( "none" ), nullptr );

   LdpAdjId const first( LdpIdentifier( 1, 0 ), Lumo::IntfId( "e" ) );
   LdpAdjId const second( LdpIdentifier( 1, 0 ), Lumo::IpAddr( 7 ) );
   adjs->adjStatusIs( first );
   adjs->adjStatusIs( second );
   EXPECT_EQ( adjs->entity( "0.0.0.1:0_e" ), adjs->adjStatus( first ) );
   EXPECT_EQ( adjs->entity( second.stringValue() ), adjs->adjStatus( second ) );
   EXPECT_EQ( adjs->entity( "0.0.0.1:0_f" ), nullptr );
   EXPECT_EQ( adjs->entity( "no identifier" ), nullptr );
   EXPECT_EQ( adjs->entity( "00.0.0.1:0_e" ), nullptr ) << "another text of the key";

   // Of a FEC that is no prefix the text does not read back.
   auto const fecs = ldpFecSessionStatusCollFactory( Name( "fecs" ) );
   LdpFecSessionId const p2mp( Mpls::FwdEqvClass( Lumo::IpAddr( 1 ), 7 ), LdpSessionId() );
   auto const fec = fecs->fecSessionStatusIs( p2mp );
   EXPECT_EQ( fecs->entity( p2mp.stringValue() ), fec );
}

} // namespace
