// Notification messages: a status alone, and the pseudowire status with its two further TLVs.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

/// A Status TLV with that status word, about Label Mapping 5.
Hex status( char const * word ) { return tlv( statusTlv, Hex( word ) + "00000005 0400" ); }

Hex const down = status( "8000000a" );
Hex const pw = status( "00000028" );
Hex const pwStatusOk = tlv( pwStatusTlv, "00000003" );
Hex const pwFec = tlv( fecTlv, "80 8005 04 00000001 00000064" );
Hex const prefixFec = tlv( fecTlv, "02 0001 08 0a" );

Hex notification( std::initializer_list< Hex > tlvs ) { return msg( LdpNotification, 7, tlvs ); }

TEST( Notification, views ) {
   auto const plain =
        parse( ldpNotificationMsgParserFactory, notification( { status( "80000008" ), pwFec } ) );
   ASSERT_TRUE( plain->msgStatusTlv() );
   EXPECT_EQ( offsetOf( *plain, plain->msgStatusTlv() ), msgOffset + 8 );
   EXPECT_EQ( plain->msgStatusTlv()->statusData(), malformedTlv );
   EXPECT_TRUE( plain->msgStatusTlv()->statusError() );
   EXPECT_FALSE( plain->msgPwStatusTlv() );
   EXPECT_FALSE( plain->msgFecTlv() );
   EXPECT_FALSE( plain->ldpFecTlvParser() );

   auto const parser = parse( ldpNotificationMsgParserFactory, notification( { pw, pwStatusOk, pwFec } ) );
   EXPECT_EQ( parser->msgStatusTlv()->statusData(), pwStatus );
   EXPECT_EQ( offsetOf( *parser, parser->msgPwStatusTlv() ), msgOffset + 22 );
   EXPECT_EQ( offsetOf( *parser, parser->msgFecTlv() ), msgOffset + 30 );
   EXPECT_EQ( parser->ldpFecTlvParser()->offset(), msgOffset + 30 );
   EXPECT_FALSE( parser->ldpFecTlvParser()->ldpProtoParam() );
}

TEST( Notification, refusedMessageHasNoStatusView ) {
   for ( Hex const & message :
         { notification( { pw, pwStatusOk, prefixFec } ), notification( { pw, pwStatusOk } ) } ) {
      auto const parser = parse( ldpNotificationMsgParserFactory, message );
      EXPECT_FALSE( parser->msgStatusTlv() );
      EXPECT_FALSE( parser->msgPwStatusTlv() );
   }
   // The FEC TLV is kept as soon as it is found in its place.
   EXPECT_TRUE( parse( ldpNotificationMsgParserFactory, notification( { pw, pwStatusOk, prefixFec } ) )
                     ->msgFecTlv() );
}

TEST( Notification, text ) {
   EXPECT_EQ(
        parse( ldpNotificationMsgParserFactory, notification( { down } ) )->stringValue(),
        "LDP Notification Msg:\n   Msg Id: 7,   StatusTlv(shutdown): LdpLabelMapping:5 u(0), fu(0), e(1), "
        "efu(0)" );
   EXPECT_EQ(
        parse( ldpNotificationMsgParserFactory, notification( { pw, pwStatusOk, pwFec } ) )->stringValue(),
        "LDP Notification Msg:\n   Msg Id: 7,   StatusTlv(pwStatus): LdpLabelMapping:5 u(0), fu(0), e(0), "
        "efu(0)\n"
        "   LdpPwStatusTlv: 0x00000003\n"
        "   [pw100:pwTypeRaw:cbit1 groupId=1 mtu=n/a]" );
   // A status that refers to no message, and one that is no code.
   EXPECT_EQ( parse( ldpNotificationMsgParserFactory,
                     notification( { tlv( uBit | fBit | statusTlv, "4000001e 00000000 0000" ) } ) )
                   ->stringValue(),
              "LDP Notification Msg:\n   Msg Id: 7,   StatusTlv(30): 0:0 u(1), fu(1), e(0), efu(1)" );
}

} // namespace
