// The PW ID FEC element and its interface parameters.

#include "Expect.h"

#include "Ldp/LdpPwGenMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Vorn::Ptr< LdpFecTlvParser > fecOf( Hex const & value ) {
   return ldpFecTlvParserFactory( pkt( "ff" + tlv( fecTlv, value ) ), 1, nullptr );
}

/// An element of PW type 5 with PW ID 100 in group 1 and those parameters.
Hex pwId( Hex const & params ) {
   return "80 0005" + u8( U32( 4 + octetNum( params ) ) ) + "00000001 00000064" + params;
}
/// What the elements that `pwId` makes print in front of their parameters.
Vorn::String const head = "pw100:pwTypeRaw:cbit0 groupId=1 mtu=";

TEST( PwId, good ) {
   struct GoodRow {
      char const * name;
      Hex value;
      Vorn::String text;
      U32 flags;
   };
   for ( GoodRow const & row : {
              GoodRow{ "no parameter", pwId( "" ), head + "n/a", 0 },
              { "MTU", pwId( "01 04 05dc" ), head + "1500", 1 },
              { "MTU of 0", pwId( "01 04 0000" ), head + "0", 1 },
              { "description", pwId( "03 06 65746830" ), head + "n/a intfDescription=\"eth0\"", 2 },
              { "empty description", pwId( "03 02" ), head + "n/a intfDescription=\"\"", 2 },
              { "longest description", pwId( "03 52" + repeat( 80, 0x61 ) ),
                head + "n/a intfDescription=\"" + std::string( 80, 'a' ).c_str() + "\"", 2 },
              { "no VLAN", pwId( "06 04 0000" ), head + "n/a reqVlanId=0", 4 },
              { "VLAN 4094", pwId( "06 04 0ffe" ), head + "n/a reqVlanId=4094", 4 },
              { "no fragmentation", pwId( "09 04 0000" ), head + "n/a fragCapable=0", 8 },
              { "fragmentation", pwId( "09 04 0100" ), head + "n/a fragCapable=1", 8 },
              { "VCCV: numbers here", pwId( "0c 04 4102" ), head + "n/a vccvCcTypes=65 vccvCvTypes=2", 16 },
              { "all, in another order", pwId( "0c 04 0102 09 04 0001 06 04 000a 03 03 78 01 04 05dc" ),
                head + "1500 intfDescription=\"x\" reqVlanId=10 fragCapable=1 vccvCcTypes=1 vccvCvTypes=2",
                31 },
              { "of repeats the last counts", pwId( "01 04 05dc 01 04 2328" ), head + "9000", 1 },
              { "unknown code, then another", pwId( "c8 06 01020304 01 04 05dc" ), head + "1500", 1 },
              { "unknown code without a value, to the end", pwId( "01 04 05dc c8 02" ), head + "1500", 1 },
         } ) {
      SCOPED_TRACE( row.name );
      auto const parser = fecOf( row.value );
      ASSERT_TRUE( parser->valid() ) << parser->reason();
      ASSERT_EQ( parser->fecElements(), 1u );
      EXPECT_FALSE( parser->hasWildcardFecElement() );
      auto const element = parser->fecElement( 0 );
      EXPECT_EQ( element->type(), pwIdElement );
      EXPECT_EQ( element->stringValue(), row.text );
      EXPECT_EQ( static_cast< LdpFecTlvPwIdElement const & >( *element ).parsedIntfParams().value(),
                 row.flags );
   }
}

TEST( PwId, value ) {
   auto const element =
        fecOf( "80 8004 1e ffffffff fffffffe 01 04 05dc 03 06 65007830 06 04 000a 09 04 0001 0c 04 4102"
               "c8 04 0000" )
             ->fecElement( 0 );
   ASSERT_TRUE( element );
   PwFwdEqvClassInfo const & info = element->pwFwdEqvCls();
   EXPECT_EQ( info.fwdEqvClass(),
              PwFwdEqvClass( Pseudowire::PseudowireId( 0xfffffffe ), Pseudowire::pwTypeTagged, true ) );
   EXPECT_EQ( info.groupId(), Pseudowire::GroupId( 0xffffffff ) );
   EXPECT_EQ( info.params().mtu(), 1500u );
   EXPECT_EQ( info.intfDescription(), Vorn::String( "e\0x0", 4 ) ); // zero octets stay
   EXPECT_EQ( info.requestedVlanId(), Bridging::VlanIdOrNone( 10 ) );
   EXPECT_TRUE( info.params().fragCapable() );
   EXPECT_EQ( info.params().vccvCcTypes(), 0x41 );
   EXPECT_EQ( info.params().vccvCvTypes(), Pseudowire::VccvCvTypes( 2 ) );
   // What was not sent has its default.
   PwFwdEqvClassParams const bare = fecOf( pwId( "" ) )->fecElement( 0 )->pwFwdEqvCls().params();
   EXPECT_EQ( bare.groupId(), Pseudowire::GroupId( 1 ) );
   EXPECT_EQ( bare.mtu(), PwFwdEqvClassParams::unspecifiedMtu );
   EXPECT_EQ( bare.intfDescription(), "" );
   EXPECT_EQ( bare.requestedVlanId(), Bridging::VlanIdOrNone() );
}

TEST( PwId, withoutAPwIdItIsAWildcard ) {
   auto const parser = fecOf( "80 0005 00 00000007" );
   EXPECT_TRUE( parser->valid() );
   EXPECT_TRUE( parser->hasWildcardFecElement() );
   EXPECT_EQ( parser->fecElement( 0 )->pwFwdEqvCls().pwId(), Pseudowire::PseudowireId( 0 ) );
   EXPECT_EQ( parser->stringValue(), "[pw0:pwTypeRaw:cbit0 groupId=7 mtu=n/a]" );
   // One that may stand among others.
   auto const mixed = fecOf( "02 0001 08 0a 80 0005 00 00000007 80 8004 00 00000008" + pwId( "01 04 05dc" ) );
   EXPECT_TRUE( mixed->valid() );
   EXPECT_TRUE( mixed->hasWildcardFecElement() );
   EXPECT_EQ( mixed->stringValue(), "[10.0.0.0/8, pw0:pwTypeRaw:cbit0 groupId=7 mtu=n/a, "
                                    "pw0:pwTypeTagged:cbit1 groupId=8 mtu=n/a, " +
                                         head + "1500]" );
}

TEST( PwId, parsingFunction ) {
   // As it is called for an element at 5 in a TLV that ends at 21.
   auto const parser = fecOf( "" );
   auto const at = [&]( Hex const & value ) {
      return ldpFecTlvParserFactory( pkt( "0100 0000"
                                          "ff" +
                                          value ),
                                     0, nullptr );
   };
   auto const good = at( pwId( "01 04 05dc" ) + "ff" );
   auto element = ldpFecTlvPwIdElementFactory();
   U32 offset = 5;
   EXPECT_EQ( parseFecTlvPwIdElement( good.ptr(), offset, 22, *element ), success );
   EXPECT_EQ( offset, 21u ); // behind the element

   // Behind the element as soon as its length is known to fit, also after a failure; the flags gathered so
   // far stay, and no value is written.
   auto const bad = at( pwId( "01 04 05dc 06 04 0fff" ) );
   element = ldpFecTlvPwIdElementFactory();
   offset = 5;
   EXPECT_EQ( parseFecTlvPwIdElement( bad.ptr(), offset, 25, *element ), unknownFec );
   EXPECT_EQ( offset, 25u );
   EXPECT_EQ( element->parsedIntfParams().value(), LdpPwIntfParamFlags::intfMtu_ );
   EXPECT_TRUE( !element->pwFwdEqvCls() );
   EXPECT_EQ( bad->reason(), "Invalid PW Intf param element: Vlan id out of bounds (4095)" );

   offset = 5;
   EXPECT_EQ( parseFecTlvPwIdElement( bad.ptr(), offset, 24, *element ), malformedTlv );
   EXPECT_EQ( offset, 5u ); // refused before that
   offset = 6;
   EXPECT_ASSERTION( parseFecTlvPwIdElement( bad.ptr(), offset, 5, *element ), "cur <= endOffset" );
}

// ---- the views ----

TEST( PwHdr, elementHead ) {
   Octets bytes = octets( "80 ffff 04 01020304 05060708" );
   auto * head = reinterpret_cast< LdpFecTlvPwIdElementHdr * >( bytes.data() );
   EXPECT_EQ( head->type(), pwIdElement );
   EXPECT_TRUE( head->controlWord() );
   EXPECT_EQ( U32( head->pwType() ), 0x7fffu );
   EXPECT_EQ( head->groupId(), Pseudowire::GroupId( 0x01020304 ) );
   EXPECT_EQ( head->pwId(), Pseudowire::PseudowireId( 0x05060708 ) );
   head->pwTypeIs( Pseudowire::pwTypeRaw );
   head->pwIdIs( Pseudowire::PseudowireId( 9 ) );
   head->groupIdIs( Pseudowire::GroupId( 1 ) );
   EXPECT_EQ( hexOf( bytes ), "808005040000000100000009" );
   head->controlWordIs( false );
   EXPECT_EQ( hexOf( bytes ), "800005040000000100000009" );
   for ( U32 length = 0; length < 4; ++length ) {
      head->pwInfoLenIs( U8( length ) );
      EXPECT_EQ( head->pwId(), Pseudowire::PseudowireId( 0 ) );
      EXPECT_ASSERTION( head->pwIdIs( Pseudowire::PseudowireId( 1 ) ), "pwInfoLen() >= 4" );
   }
}

TEST( PwHdr, parametersJudgeTheirLength ) {
   Octets bytes( 100, 0x61 );
   auto const expectFour = [&]( auto const * subTlv, U8 code ) {
      bytes[0] = code;
      for ( U32 length = 0; length <= 255; ++length ) {
         bytes[1] = U8( length );
         ASSERT_EQ( subTlv->validate(), length == 4 ? success : badTlvLength ) << length;
      }
      bytes[0] = 0;
      EXPECT_EXIT( static_cast< void >( subTlv->validate() ), testing::KilledBySignal( SIGABRT ),
                   "Assertion `" );
   };
   expectFour( reinterpret_cast< LdpPwIntfMtuSubTlv * >( bytes.data() ), 1 );
   expectFour( reinterpret_cast< LdpPwRequestedVlanIdSubTlv * >( bytes.data() ), 6 );
   expectFour( reinterpret_cast< LdpPwFragIndicatorSubTlv * >( bytes.data() ), 9 );
   expectFour( reinterpret_cast< LdpPwVccvParamSubTlv * >( bytes.data() ), 12 );
   auto const * description = reinterpret_cast< LdpPwIntfDescSubTlv * >( bytes.data() );
   bytes[0] = 3;
   for ( U32 length = 0; length <= 255; ++length ) {
      bytes[1] = U8( length );
      ASSERT_EQ( description->validate(), length >= 2 && length <= 82 ? success : badTlvLength ) << length;
   }
   bytes[1] = 5;
   EXPECT_EQ( description->description(), "aaa" );
   EXPECT_EQ( description->totalLength(), 5 ); // the head counts
   bytes[0] = 4;
   EXPECT_EXIT( static_cast< void >( description->validate() ), testing::KilledBySignal( SIGABRT ),
                "Assertion `" );
}

} // namespace
