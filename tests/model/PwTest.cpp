// Pseudowires: requests, their sessions, and everything about one request.
#include "Ldp/LdpIndex.h"
#include "Ldp/PwConfig.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using namespace Pseudowire;
using Test::Calls;
using Test::messageOf;
using Test::Watcher;
using Vorn::NameInUseException;
using Vorn::RangeException;

LdpSessionId const peer1( LdpIdentifier( 0x0a000001, 0 ) );
LdpSessionId const peer2( LdpIdentifier( 0x0a000002, 0 ) );
PwFwdEqvClass const pw100( PseudowireId( 100 ), pwTypeRaw, true );
PwFwdEqvClass const pw101( PseudowireId( 101 ), pwTypeRaw, true );
PwFecSessionId const id( pw100, peer1 );
PseudowireLdpRequestKey const key( Lumo::IpAddr( 0x0a000001 ), PseudowireId( 100 ) );

TEST( PwFecSessionIdTest, ReadsWhatItWritesSessionFirst ) {
   EXPECT_EQ( id.stringValue(), "10.0.0.1:0_pw100:pwTypeRaw:cbit1" );
   EXPECT_EQ( valueToStrep( id ), id.stringValue() );
   PwFecSessionId read;
   read.stringValueIs( id.stringValue() );
   EXPECT_EQ( read, id );
   for ( char const * text :
         { "", "10.0.0.1:0", "10.0.0.1:0_", "_pw100:pwTypeRaw:cbit1", "pw100:pwTypeRaw:cbit1_10.0.0.1:0",
           "10.0.0.1:0_pw100:pwTypeRaw:cbit1_", "x_pw100:pwTypeRaw:cbit1", "10.0.0.1:0_pw100:none:cbit1" } ) {
      EXPECT_EQ( messageOf< RangeException >( [&] { read.stringValueIs( text ); } ),
                 "Invalid PwFecSessionId" )
           << text;
   }
   EXPECT_EQ( read, id ) << "it stays as it was";
}

TEST( PwFecSessionIdTest, OrdersByFecThenSession ) {
   PwFecSessionId const inOrder[] = { PwFecSessionId(), id, { pw100, peer2 }, { pw101, peer1 } };
   for ( auto const & a : inOrder ) {
      for ( auto const & b : inOrder ) {
         EXPECT_EQ( a < b, &a < &b ) << a << " " << b;
      }
      EXPECT_EQ( !a, &a == inOrder );
      EXPECT_EQ( a.isValid(), &a != inOrder );
   }
   EXPECT_FALSE( PwFecSessionId( PwFwdEqvClass( PseudowireId( 0 ), pwTypeRaw, true ), peer1 ).isValid() );
}

TEST( PwFecSessionConfigTest, BeginsWithTheMemberThatMadeIt ) {
   auto const config = pwFecSessionConfigFactory( id, pwFecMemberSessionSm );
   EXPECT_EQ( config->members(), 1u );
   EXPECT_TRUE( config->member( pwFecMemberSessionSm ) );
   config->memberDel( pwFecMemberSessionSm );
   EXPECT_EQ( config->members(), 0u );
   EXPECT_EQ( config->initMember(), pwFecMemberSessionSm );
}

TEST( PwFecSessionConfigTest, CannotBeForPseudowireZero ) {
   PwFecSessionId const invalid( PwFwdEqvClass(), peer1 );
   EXPECT_DEATH( pwFecSessionConfigFactory( invalid, pwFecMemberStatic ),
                 "`pwFecSessionId\\(\\).isValid\\(\\)'" );
}

TEST( PwFecSessionConfigTest, ShowsItsParametersWithItsFec ) {
   auto const config = pwFecSessionConfigFactory( id, pwFecMemberStatic );
   EXPECT_EQ( config->pwFwdEqvClass(), pw100 );
   PwFwdEqvClassParams params;
   params.mtuIs( 1500 );
   config->fecParamsIs( params );
   EXPECT_EQ( config->fecInfo().fwdEqvClass(), pw100 );
   EXPECT_EQ( config->fecInfo().params(), params );
}

TEST( RemotePwFecSessionStatusTest, HasLabelSetsOfNoFec ) {
   auto const status = remotePwFecSessionStatusFactory( id );
   EXPECT_EQ( status->mplsLabelSet()->fwdEqvClass(), Mpls::FwdEqvClass() );
   EXPECT_EQ( status->mplsReleaseLabelSet()->fwdEqvClass(), Mpls::FwdEqvClass() );
}

std::string reinstantiating( Vorn::Entity const & entity, std::string const & differs ) {
   return std::string( "Reinstantiating the entity with fullName " ) +
          Vorn::valueToStrep( entity.fullName() ).charPtr() + " where constructor parameter attribute " +
          differs + " not allowed";
}

TEST( PwReinstantiation, OfAnotherMemberOrTypeIsRefused ) {
   auto const sessions = pwFecSessionConfigCollFactory( "sessions" );
   auto const session = sessions->fecSessionConfigIs( id, pwFecMemberSessionSm );
   EXPECT_EQ( sessions->fecSessionConfigIs( id, pwFecMemberSessionSm ).ptr(), session.ptr() );
   EXPECT_EQ(
        messageOf< NameInUseException >( [&] { sessions->fecSessionConfigIs( id, pwFecMemberStatic ); } ),
        reinstantiating( *session, "'initMember' has a different value of pwFecMemberStatic than the current "
                                   "value of pwFecMemberSessionSm" ) );
   EXPECT_FALSE( session->memberHas( pwFecMemberStatic ) );

   auto const configs = pwConfigCollFactory( "configs" );
   auto const config = configs->configIs( key, pwTypeRaw );
   EXPECT_EQ( configs->configIs( key, pwTypeRaw ).ptr(), config.ptr() );
   EXPECT_EQ( messageOf< NameInUseException >( [&] { configs->configIs( key, pwTypeTagged ); } ),
              reinstantiating( *config,
                               "'pwType' has a different value of pwTypeTagged than the current value of "
                               "pwTypeRaw" ) );
   EXPECT_EQ( config->pwType(), pwTypeRaw );
}

TEST( PwFecSessionInfoMapTest, RefusesNullAndKeepsWhatItRefersTo ) {
   auto const index = ldpIndexFactory( "index" );
   auto const map = index->pwKeyToPwFecSessionInfoIs( key );
   auto const refused = []( char const * attr ) {
      return std::string( "null _" ) + attr + " parameter to mutator for Ldp::PwFecSessionInfoMap::" + attr +
             " not allowed\"";
   };
   EXPECT_EQ( messageOf< RangeException >( [&] { map->localConfigIs( nullptr ); } ),
              refused( "localConfig" ) );
   EXPECT_EQ( messageOf< RangeException >( [&] { map->remoteConfigIs( nullptr ); } ),
              refused( "remoteConfig" ) );
   EXPECT_EQ( messageOf< RangeException >( [&] { map->localStatusIs( nullptr ); } ),
              refused( "localStatus" ) );
   EXPECT_EQ( messageOf< RangeException >( [&] { map->remoteStatusIs( nullptr ); } ),
              refused( "remoteStatus" ) );

   auto const owner = localPwFecSessionStatusCollFactory( "status" );
   auto const status = owner->fecSessionStatusIs( id );
   Watcher seen( *map );
   map->localStatusIs( status );
   map->localStatusIs( status );
   EXPECT_EQ( seen.taken(), Calls{ "localStatus[10.0.0.1:0_pw100:pwTypeRaw:cbit1]" } );
   owner->fecSessionStatusDel( id );
   EXPECT_EQ( map->localStatus( id ).ptr(), status.ptr() );
   map->localStatusIs( owner->fecSessionStatusIs( id ) );
   EXPECT_EQ( map->localStatuss(), 1u ) << "another object in the place of the first";
   EXPECT_EQ( map->localStatusDel( id ).ptr(), owner->fecSessionStatus( id ).ptr() );
   EXPECT_FALSE( map->localStatus( id ) );
}

} // namespace
