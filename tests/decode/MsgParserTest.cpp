// What all messages share: header, framing of the TLVs, and the types that may be taken.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

TEST( MsgParser, readsTheHeader ) {
   auto const packet =
        msgPkt( msg( uBit | LdpKeepAlive, 0x01020304, { tlv( hopCountTlv, "01" ), tlv( 770 ) } ) );
   auto const parser = ldpMsgParserFactory( packet, msgOffset );
   EXPECT_EQ( parser->pkt(), packet );
   EXPECT_EQ( parser->offset(), msgOffset );
   EXPECT_EQ( offsetOf( *parser, parser->msgHdr() ), msgOffset );
   EXPECT_TRUE( parser->unknown() );
   EXPECT_EQ( parser->type(), LdpKeepAlive );
   EXPECT_EQ( parser->msgId(), 0x01020304u );
   EXPECT_EQ( parser->length(), 13 );
   EXPECT_EQ( parser->totalLength(), 17 );
   EXPECT_EQ( parser->tlvOffset( 0 ), msgOffset + 8 ); // from the packet's front
   EXPECT_EQ( parser->tlvOffset( 1 ), msgOffset + 13 );
   EXPECT_EQ( parser->tlvOffset( 2 ), 0u );
   EXPECT_EQ( parser->tlvGroupParser()->offset(), msgOffset + 8 );
   EXPECT_EQ( parser->tlvGroupParser()->size(), 9u );
   EXPECT_EQ( parser->tlvGroupParser()->name(), "" );
   EXPECT_FALSE( parser->msgFecTlv() );
   EXPECT_FALSE( parser->ldpFecTlvParser() );
   EXPECT_FALSE( parser->msgStatusTlv() );
   EXPECT_EQ( parser->stringValue(), "LdpKeepAlive, Id: 0x01020304, numTlv: 2" );
}

TEST( MsgParser, headerThatIsNotWhollyThere ) {
   Hex const whole = msg( uBit | LdpKeepAlive, 7 );
   for ( std::size_t octets = 0; octets < 8; ++octets ) {
      SCOPED_TRACE( octets );
      auto const parser = parse( ldpMsgParserFactory, first( octets, whole ) );
      EXPECT_EQ( parser->type(), LdpMsgType( 0 ) );
      EXPECT_FALSE( parser->unknown() );
      EXPECT_EQ( parser->msgId(), 0u );
      EXPECT_EQ( parser->length(), 0 );
      EXPECT_EQ( parser->totalLength(), 0 );
      EXPECT_EQ( parser->tlvNum(), 0u );
   }
}

TEST( MsgParser, eachTypedOneAssertsItsTypeUnlessTheMessageIsBad ) {
   Hex const other = msg( LdpKeepAlive, 7, { tlv( hopCountTlv, "01" ), tlv( hopCountTlv, "01" ) } );
   auto const expect = [&]( auto factory, char const * type ) {
      EXPECT_ASSERTION( parse( factory, other ), Hex( "msgHdr_->type() == " ) + type + "_" );
      EXPECT_EQ( parse( factory, msg( 0x3000, 7 ) )->statusCode(), unknownMessageType ) << type;
   };
   expect( ldpNotificationMsgParserFactory, "LdpNotification" );
   expect( ldpHelloMsgParserFactory, "LdpHello" );
   expect( ldpInitMsgParserFactory, "LdpInit" );
   expect( ldpCapabilityMsgParserFactory, "LdpCapability" );
   expect( ldpAddressMsgParserFactory, "LdpAddress" );
   expect( ldpAddressWithdrawMsgParserFactory, "LdpAddressWithdraw" );
   expect( ldpLabelMappingMsgParserFactory, "LdpLabelMapping" );
   expect( ldpLabelRequestMsgParserFactory, "LdpLabelRequest" );
   expect( ldpLabelWithdrawMsgParserFactory, "LdpLabelWithdraw" );
   expect( ldpLabelReleaseMsgParserFactory, "LdpLabelRelease" );
   expect( ldpLabelAbortReqMsgParserFactory, "LdpLabelAbortReq" );
   // The number of TLVs is judged behind it, in lists of addresses in front of it.
   EXPECT_ASSERTION( parse( ldpLabelMappingMsgParserFactory, msg( LdpHello, 7 ) ),
                     "msgHdr_->type() == LdpLabelMapping_" );
   EXPECT_EQ( parse( ldpAddressMsgParserFactory, msg( LdpHello, 7 ) )->reason(),
              "Message does not have at least 1 TLV" );
}

TEST( MsgParser, assertsItsOffset ) {
   EXPECT_ASSERTION( ldpMsgParserFactory( pkt( "00" ), 2 ), "pkt_->frontBytes() >= offset_" );
}

TEST( MsgParser, walkerIsAnOwnedChildByName ) {
   auto const parser = parse( ldpMsgParserFactory, msg( LdpKeepAlive, 1, { tlv( 770 ) } ) );
   auto const walker = parser->tlvGroupParser();
   EXPECT_EQ( parser->tlvGroupParserIs( "" ), walker );
   auto const other = parser->tlvGroupParserIs( "other" );
   EXPECT_FALSE( other == walker );
   EXPECT_EQ( parser->tlvNum(), 0u );
   EXPECT_EQ( parser->tlvGroupParserDel(), other );
   EXPECT_FALSE( parser->tlvGroupParser() );
   EXPECT_EQ( parser->tlvNum(), 0u );
   EXPECT_EQ( parser->tlvOffset( 0 ), 0u );
}

TEST( MsgParser, fecParserIsAnOwnedChild ) {
   auto const parser = parse( ldpMsgParserFactory, msg( LdpKeepAlive, 1, { tlv( fecTlv, "01" ) } ) );
   auto const first = parser->ldpFecTlvParserIs( parser->pkt(), parser->tlvOffset( 0 ), nullptr );
   EXPECT_EQ( first, parser->ldpFecTlvParser() );
   EXPECT_TRUE( first->hasWildcardFecElement() );
   auto const second = parser->ldpFecTlvParserIs( parser->pkt(), parser->tlvOffset( 0 ), nullptr );
   EXPECT_FALSE( first == second ); // replaces it
   EXPECT_EQ( parser->ldpFecTlvParserDel(), second );
   EXPECT_FALSE( parser->ldpFecTlvParser() );
}

} // namespace
