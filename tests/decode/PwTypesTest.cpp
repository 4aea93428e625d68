// Values of a pseudowire FEC, and their text both ways.

#include "Ldp/PwTypes.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>

using namespace Ldp;
using Pseudowire::GroupId;
using Pseudowire::PseudowireId;
using Pseudowire::PseudowireType;

namespace {

/// All octets of a literal, zeros included.
template< std::size_t size >
Vorn::String octets( char const ( &literal )[size] ) {
   return Vorn::String( literal, size - 1 );
}

TEST( PwFwdEqvClass, textOfEveryTypeReadsBack ) {
   EXPECT_EQ( PwFwdEqvClass( PseudowireId( 100 ), Pseudowire::pwTypeRaw, true ).pwTypeValue(), 5u );
   for ( U32 type = 0; type <= 40; ++type ) { // with a name or without
      PwFwdEqvClass const value( PseudowireId( 0xffffffff ), PseudowireType( type ), type % 2 );
      Vorn::String const text = value.stringValue();
      EXPECT_EQ( std::ranges::count( text.view(), ':' ), 2 ) << text; // none within a part
      PwFwdEqvClass read;
      read.stringValueIs( text );
      EXPECT_EQ( read, value ) << text;
   }
}

TEST( PwFwdEqvClass, orderAndHash ) {
   auto const of = []( U32 id, U32 type, bool controlWord ) {
      return PwFwdEqvClass( PseudowireId( id ), PseudowireType( type ), controlWord );
   };
   EXPECT_TRUE( of( 1, 9, true ) < of( 2, 0, false ) );
   EXPECT_TRUE( of( 1, 4, true ) < of( 1, 5, false ) );
   EXPECT_TRUE( of( 1, 5, false ) < of( 1, 5, true ) );
   EXPECT_FALSE( of( 1, 5, true ) < of( 1, 5, true ) );
   // The type as a signed number, the id as an unsigned one.
   EXPECT_TRUE( of( 1, 0xffffffff, false ) < of( 1, 0, false ) );
   EXPECT_TRUE( of( 1, 0, false ) < of( 0xffffffff, 0, false ) );
   EXPECT_EQ( of( 1, 5, true ).hash(), of( 1, 5, true ).hash() );
   EXPECT_NE( of( 1, 5, true ).hash(), of( 1, 5, false ).hash() );
   EXPECT_NE( of( 1, 5, true ).hash(), of( 1, 4, true ).hash() );
   EXPECT_NE( of( 1, 5, true ).hash(), of( 2, 5, true ).hash() );
   EXPECT_TRUE( !PwFwdEqvClass() );
   EXPECT_FALSE( !of( 0, 0, true ) );
}

PwFwdEqvClassParams params() {
   PwFwdEqvClassParams value;
   value.groupIdIs( GroupId( 7 ) );
   value.mtuIs( 1500 );
   value.intfDescriptionIs( octets( "e'\0" ) );
   value.requestedVlanIdIs( Bridging::VlanIdOrNone( 4094 ) );
   value.fragCapableIs( true );
   value.vccvCcTypesIs( 'A' );
   value.vccvCvTypesIs( Pseudowire::VccvCvTypes( 2 ) );
   return value;
}

char const * const paramsStrep =
     "Value('Ldp::PwFwdEqvClassParams', ** {'groupId': 7, 'mtu': 1500, 'intfDescription': "
     "'e\\'\\x00', 'requestedVlanId': 4094, 'fragCapable': True, 'vccvCcTypes': 65, "
     "'vccvCvTypes': 2})";

TEST( PwFwdEqvClassParams, text ) {
   // The control channel types are one raw octet in this form alone.
   EXPECT_EQ( params().stringValue(),
              octets( "groupId=7 mtu=1500 intfDescription=\"e'\0\" reqVlanId=4094 fragCapable=1 "
                      "vccvCcTypes=A vccvCvTypes=2" ) );
   EXPECT_EQ( PwFwdEqvClassParams().stringValue(),
              octets( "groupId=0 mtu=0 intfDescription=\"\" reqVlanId=0 fragCapable=0 vccvCcTypes=\0 "
                      "vccvCvTypes=0" ) );
   EXPECT_EQ( valueToStrep( params() ), paramsStrep );
   PwFwdEqvClassParams read;
   Vorn::strepToValue( paramsStrep, &read );
   EXPECT_EQ( read, params() );
   EXPECT_TRUE( !PwFwdEqvClassParams() );
   EXPECT_FALSE( !params() );
}

TEST( PwFwdEqvClassInfo, textAndParts ) {
   PwFwdEqvClassInfo info;
   EXPECT_TRUE( !info );
   info.fwdEqvClassIs( PwFwdEqvClass( PseudowireId( 100 ), Pseudowire::pwTypeTagged, false ) );
   info.groupIdIs( GroupId( 7 ) );
   info.intfDescriptionIs( "eth0" );
   info.requestedVlanIdIs( Bridging::VlanIdOrNone( 10 ) );
   EXPECT_FALSE( !info );
   EXPECT_EQ( info.pwId(), PseudowireId( 100 ) );
   EXPECT_EQ( info.params().groupId(), GroupId( 7 ) ); // they reach into the parameters
   EXPECT_EQ( info.params().intfDescription(), "eth0" );
   EXPECT_EQ( info.params().requestedVlanId(), Bridging::VlanIdOrNone( 10 ) );
   EXPECT_EQ( info.stringValue(), "pw100:pwTypeTagged:cbit0 " + info.params().stringValue() );
   Vorn::String const strep = valueToStrep( info );
   EXPECT_EQ( strep,
              "Value('Ldp::PwFwdEqvClassInfo', ** {'fwdEqvClass': pw100:pwTypeTagged:cbit0, 'params': "
              "Value('Ldp::PwFwdEqvClassParams', ** {'groupId': 7, 'mtu': 0, 'intfDescription': 'eth0', "
              "'requestedVlanId': 10, 'fragCapable': False, 'vccvCcTypes': 0, 'vccvCvTypes': 0})})" );
   PwFwdEqvClassInfo read;
   Vorn::strepToValue( strep, &read );
   EXPECT_EQ( read, info );
   // A bad value deep within names the way to it.
   std::string bad( strep.view() );
   bad.replace( bad.find( "'mtu': 0" ), 8, "'mtu': x" );
   try {
      Vorn::strepToValue( bad.c_str(), &read );
      FAIL() << "taken";
   } catch ( Vorn::RangeException const & refused ) {
      EXPECT_EQ( refused.message().view().find( "params: mtu: " ), 0u ) << refused.message();
   }
}

TEST( VlanIdOrNone, range ) {
   EXPECT_EQ( Bridging::VlanIdOrNone( 4094 ).value(), 4094 );
   try {
      Bridging::VlanIdOrNone( 4095 );
      FAIL() << "taken";
   } catch ( Vorn::RangeException const & refused ) {
      EXPECT_EQ( refused.message(), "VlanIdOrNone::value > 4094 not allowed" );
   }
}

} // namespace
