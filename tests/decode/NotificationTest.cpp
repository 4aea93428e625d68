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

TEST( Notification, judgement ) {
   char const * const size = "Status TLV is not the right size";
   char const * const notFirst = "1st TLV is not Status TLV";
   char const * const few = "Missing PW Status TLVs";
   char const * const notSecond = "2nd TLV is not PW Status TLV";
   char const * const pwInvalid = "LdpPwStatusTlv validation failure";
   char const * const notThird = "FecTlv is not the 3rd TLV in the message";
   char const * const notPwId = "PW FEC TLV element is not PWID FEC element";
   Hex const ignored = tlv( uBit | 258 );
   expectRows(
        ldpNotificationMsgParserFactory, "Invalid LDP Notification Msg: ",
        {
             { "status alone", notification( { down } ), success, "" },
             { "fatal error, malformed TLV", notification( { status( "80000008" ) } ), success, "" },
             { "status that is no code of ours", notification( { status( "3fffffff" ) } ), success, "" },
             { "what follows is passed over",
               notification(
                    { down, tlv( extStatusTlv, "00" ), tlv( retPduTlv ), tlv( retMsgTlv ), ignored } ),
               success, "" },
             { "a FEC TLV is not looked at, however bad", notification( { down, tlv( fecTlv, "ff" ) } ),
               success, "" },
             { "nor a second Status TLV", notification( { down, tlv( statusTlv, "00" ) } ), success, "" },

             { "no TLV", notification( {} ), missingMessageParams, "Missing Status TLV" },
             { "another first", notification( { prefixFec, down } ), missingMessageParams, notFirst },
             { "one to be ignored first", notification( { ignored, down } ), missingMessageParams, notFirst },
             { "status of 9", notification( { tlv( statusTlv, repeat( 9, 0 ) ) } ), malformedTlv, size },
             { "status of 11", notification( { tlv( statusTlv, repeat( 11, 0 ) ) } ), malformedTlv, size },
             { "status of 0", notification( { tlv( statusTlv ) } ), malformedTlv, size },
             { "size is judged before the pseudowire", notification( { tlv( statusTlv, "00000028" ) } ),
               malformedTlv, size },

             { "pseudowire status", notification( { pw, pwStatusOk, pwFec } ), success, "" },
             { "E bit does not hide it", notification( { status( "80000028" ) } ), missingMessageParams,
               few },
             { "F bit does not hide it", notification( { status( "40000028" ) } ), missingMessageParams,
               few },
             { "both do not", notification( { status( "c0000028" ), pwStatusOk, pwFec } ), success, "" },
             { "any other of the 30 bits does", notification( { status( "20000028" ) } ), success, "" },
             { "further TLVs behind it", notification( { pw, pwStatusOk, pwFec, prefixFec, ignored } ),
               success, "" },
             { "one TLV", notification( { pw } ), missingMessageParams, few },
             { "two TLVs, good ones", notification( { pw, pwStatusOk } ), missingMessageParams, few },
             { "their number is judged before their types", notification( { pw, prefixFec } ),
               missingMessageParams, few },
             { "second and third swapped", notification( { pw, pwFec, pwStatusOk } ), missingMessageParams,
               notSecond },
             { "one to be ignored second", notification( { pw, ignored, pwStatusOk, pwFec } ),
               missingMessageParams, notSecond },
             { "PW Status of 3", notification( { pw, tlv( pwStatusTlv, "000000" ), pwFec } ), badTlvLength,
               pwInvalid },
             { "PW Status of 5", notification( { pw, tlv( pwStatusTlv, "0000000000" ), pwFec } ),
               badTlvLength, pwInvalid },
             { "PW Status is judged before the third place",
               notification( { pw, tlv( pwStatusTlv ), prefixFec } ), badTlvLength, pwInvalid },
             { "third of another type", notification( { pw, pwStatusOk, pwStatusOk } ), missingMessageParams,
               notThird },
             { "one to be ignored third", notification( { pw, pwStatusOk, ignored, pwFec } ),
               missingMessageParams, notThird },
             { "FEC refused", notification( { pw, pwStatusOk, tlv( fecTlv, "05" ) } ), unknownFec,
               "Unhandled FEC TLV Element type 0x05" },
             { "FEC refused with another code",
               notification( { pw, pwStatusOk, tlv( fecTlv, "80 0005 03 00000001 000000" ) } ), badTlvLength,
               "Invalid FEC PW ID Element: TLV value length must be 0 or >= 4" },
             { "FEC good at first, then refused",
               notification( { pw, pwStatusOk, tlv( fecTlv, "80 0005 04 00000001 00000064 02" ) } ),
               malformedTlv, "Invalid FEC Prefix Element: TLV value is too small" },
             { "FEC without an element", notification( { pw, pwStatusOk, tlv( fecTlv ) } ),
               missingMessageParams, "PW FEC TLV has no FEC elements" },
             { "FEC of a prefix", notification( { pw, pwStatusOk, prefixFec } ), missingMessageParams,
               notPwId },
             { "FEC of a wildcard", notification( { pw, pwStatusOk, tlv( fecTlv, "01" ) } ),
               missingMessageParams, notPwId },
             { "FEC of all pseudowires",
               notification( { pw, pwStatusOk, tlv( fecTlv, "80 0005 00 00000001" ) } ), success, "" },
             { "PW ID first, a prefix behind it",
               notification( { pw, pwStatusOk, tlv( fecTlv, "80 0005 00 00000001 02 0001 08 0a" ) } ),
               success, "" },
             { "what the header says stands", notification( { pw, pwStatusOk, pwFec, tlv( 258 ) } ),
               unknownTlv, "Unknown TLV Type: 258" },
        } );
}

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

TEST( Notification, assertsItsType ) {
   EXPECT_ASSERTION( parse( ldpNotificationMsgParserFactory, msg( LdpHello, 7 ) ),
                     "msgHdr_->type() == LdpNotification_" );
}

} // namespace
