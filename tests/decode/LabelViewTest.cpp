// What the parsers of label messages leave: views of the TLVs, and the text of a good message.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const fec = tlv( fecTlv, "02 0001 08 0a 02 0001 18 0a0102" ); // 4 + 5 + 7 octets
Hex const label = tlv( genLabelTlv, "00000064" );
Hex const hops = tlv( hopCountTlv, "05" );
Hex const path = tlv( pathVectorTlv, "0a000001 0a000002" );
Hex const reqId = tlv( labelReqMsgIdTlv, "ffffffff" );
Hex const pwStatusOk = tlv( pwStatusTlv, "00000021" );
Hex const status = tlv( statusTlv, "0000000d 00000005 0401" );

constexpr U32 fecAt = msgOffset + 8, secondAt = fecAt + 16;

TEST( LabelView, mapping ) {
   auto const parser = parse( ldpLabelMappingMsgParserFactory,
                              msg( LdpLabelMapping, 7, { fec, label, hops, path, reqId, pwStatusOk } ) );
   EXPECT_EQ( offsetOf( *parser, parser->msgFecTlv() ), fecAt );
   EXPECT_EQ( parser->ldpFecTlvParser()->offset(), fecAt );
   EXPECT_EQ( parser->ldpFecTlvParser()->fecElements(), 2u );
   EXPECT_FALSE( parser->ldpFecTlvParser()->ldpProtoParam() );
   EXPECT_EQ( offsetOf( *parser, parser->msgGenLabelTlv() ), secondAt );
   EXPECT_EQ( parser->msgGenLabelTlv()->label(), Lumo::MplsLabel( 100 ) );
   EXPECT_EQ( parser->msgHopCountTlv()->hopCount(), 5 );
   EXPECT_EQ( parser->msgPathVectorTlv()->lsrIdNum(), 2u );
   EXPECT_EQ( parser->msgReqMsgIdTlv()->reqMsgId(), 0xffffffffu );
   EXPECT_EQ( parser->msgPwStatusTlv()->pwStatusField().value(), 0x21u );
   EXPECT_FALSE( parser->msgStatusTlv() );

   auto const bare =
        parse( ldpLabelMappingMsgParserFactory, msg( LdpLabelMapping, 7, { fec, label, status } ) );
   EXPECT_FALSE( bare->msgHopCountTlv() );
   EXPECT_FALSE( bare->msgPathVectorTlv() );
   EXPECT_FALSE( bare->msgReqMsgIdTlv() );
   EXPECT_FALSE( bare->msgPwStatusTlv() );
   EXPECT_FALSE( bare->msgStatusTlv() ); // a Status TLV is passed over here
}

TEST( LabelView, ofRepeatsTheLastWins ) {
   auto const mapping = parse( ldpLabelMappingMsgParserFactory,
                               msg( LdpLabelMapping, 7,
                                    { fec, label, hops, path, reqId, pwStatusOk, tlv( hopCountTlv, "06" ),
                                      tlv( pathVectorTlv, "0a000009" ), tlv( labelReqMsgIdTlv, "00000001" ),
                                      tlv( pwStatusTlv, "00000000" ) } ) );
   EXPECT_EQ( mapping->msgHopCountTlv()->hopCount(), 6 );
   EXPECT_EQ( mapping->msgPathVectorTlv()->lsrIdNum(), 1u );
   EXPECT_EQ( mapping->msgReqMsgIdTlv()->reqMsgId(), 1u );
   EXPECT_TRUE( mapping->msgPwStatusTlv()->pwStatusField().pwForwarding() );
   auto const withdraw =
        parse( ldpLabelWithdrawMsgParserFactory,
               msg( LdpLabelWithdraw, 7, { fec, status, tlv( statusTlv, "0000000a 00000006 0400" ) } ) );
   EXPECT_EQ( withdraw->msgStatusTlv()->statusData(), shutdown );
}

TEST( LabelView, theOtherFour ) {
   auto const request =
        parse( ldpLabelRequestMsgParserFactory, msg( LdpLabelRequest, 7, { fec, hops, path, status } ) );
   EXPECT_EQ( offsetOf( *request, request->msgFecTlv() ), fecAt );
   EXPECT_EQ( offsetOf( *request, request->msgHopCountTlv() ), secondAt );
   EXPECT_EQ( offsetOf( *request, request->msgPathVectorTlv() ), secondAt + 5 );
   EXPECT_FALSE( request->msgStatusTlv() );

   auto const withdraw =
        parse( ldpLabelWithdrawMsgParserFactory, msg( LdpLabelWithdraw, 7, { fec, label, status } ) );
   EXPECT_EQ( offsetOf( *withdraw, withdraw->msgGenLabelTlv() ), secondAt );
   EXPECT_EQ( offsetOf( *withdraw, withdraw->msgStatusTlv() ), secondAt + 8 );
   auto const release = parse( ldpLabelReleaseMsgParserFactory, msg( LdpLabelRelease, 7, { fec, status } ) );
   EXPECT_FALSE( release->msgGenLabelTlv() );
   EXPECT_EQ( offsetOf( *release, release->msgStatusTlv() ), secondAt );

   auto const abort = parse( ldpLabelAbortReqMsgParserFactory, msg( LdpLabelAbortReq, 7, { fec, reqId } ) );
   EXPECT_EQ( offsetOf( *abort, abort->msgReqMsgIdTlv() ), secondAt );
}

TEST( LabelView, viewsFoundBeforeAFailureStay ) {
   auto const parser = parse( ldpLabelMappingMsgParserFactory,
                              msg( LdpLabelMapping, 7, { fec, label, tlv( pathVectorTlv, "00" ), hops } ) );
   EXPECT_FALSE( parser->validMsg() );
   EXPECT_TRUE( parser->msgFecTlv() );
   EXPECT_TRUE( parser->msgGenLabelTlv() );
   EXPECT_TRUE( parser->msgPathVectorTlv() ); // stored, then refused
   EXPECT_FALSE( parser->msgHopCountTlv() );  // not reached
   auto const wrongSize = parse( ldpLabelMappingMsgParserFactory,
                                 msg( LdpLabelMapping, 7, { fec, tlv( genLabelTlv, "00" ) } ) );
   EXPECT_FALSE( wrongSize->msgGenLabelTlv() );
}

TEST( LabelText, mapping ) {
   EXPECT_EQ(
        parse( ldpLabelMappingMsgParserFactory, msg( LdpLabelMapping, 7, { fec, label } ) )->stringValue(),
        "LDP Label Mapping Msg:\n   Msg Id: 7,   FEC: [10.0.0.0/8, 10.1.2.0/24]   GenLabelTlv: L(100)" );
   // The order of the text, whatever that on the wire.
   EXPECT_EQ(
        parse( ldpLabelMappingMsgParserFactory,
               msg( LdpLabelMapping, 0x80000001, { fec, label, pwStatusOk, path, hops, reqId } ) )
             ->stringValue(),
        "LDP Label Mapping Msg:\n   Msg Id: -2147483647,   FEC: [10.0.0.0/8, 10.1.2.0/24]   GenLabelTlv: "
        "L(100)\n"
        "   LabelReqMsgIdTlv: ID(4294967295)\n"
        "   LdpHopCountTlv: 5\n"
        "   LdpPathVectorTlv: [10.0.0.1, 10.0.0.2]\n"
        "   LdpPwStatusTlv: 0x00000021" );
   EXPECT_EQ( parse( ldpLabelMappingMsgParserFactory,
                     msg( LdpLabelMapping, 7, { tlv( fecTlv ), tlv( genLabelTlv, "fff00003" ) } ) )
                   ->stringValue(),
              "LDP Label Mapping Msg:\n   Msg Id: 7,   FEC: []   GenLabelTlv: L(3)" );
}

TEST( LabelText, request ) {
   EXPECT_EQ( parse( ldpLabelRequestMsgParserFactory, msg( LdpLabelRequest, 7, { fec } ) )->stringValue(),
              "LDP Label Request Msg:\n   Msg Id: 7,   FEC: [10.0.0.0/8, 10.1.2.0/24]" );
   EXPECT_EQ( parse( ldpLabelRequestMsgParserFactory, msg( LdpLabelRequest, 7, { fec, path, hops } ) )
                   ->stringValue(),
              "LDP Label Request Msg:\n   Msg Id: 7,   FEC: [10.0.0.0/8, 10.1.2.0/24]\n"
              "   LdpHopCountTlv: 5\n"
              "   LdpPathVectorTlv: [10.0.0.1, 10.0.0.2]" );
}

TEST( LabelText, withdraw ) {
   EXPECT_EQ( parse( ldpLabelWithdrawMsgParserFactory, msg( LdpLabelWithdraw, 7, { tlv( fecTlv, "01" ) } ) )
                   ->stringValue(),
              "LDP Label Withdraw Msg:\n   Msg Id: 7,   FEC: [Wildcard]" );
   EXPECT_EQ( parse( ldpLabelWithdrawMsgParserFactory, msg( LdpLabelWithdraw, 7, { fec, label, status } ) )
                   ->stringValue(),
              "LDP Label Withdraw Msg:\n   Msg Id: 7,   FEC: [10.0.0.0/8, 10.1.2.0/24]\n"
              "   GenLabelTlv: L(100)\n"
              "   StatusTlv(noRoute): LdpLabelRequest:5 u(0), fu(0), e(0), efu(0)" );
}

TEST( LabelText, release ) {
   EXPECT_EQ( parse( ldpLabelReleaseMsgParserFactory, msg( LdpLabelRelease, 7, { fec, label, status } ) )
                   ->stringValue(),
              "LDP Label Release Msg:\n   Msg Id: 7,   FEC: [10.0.0.0/8, 10.1.2.0/24]\n"
              "   GenLabelTlv: L(100)\n"
              "   StatusTlv(noRoute): LdpLabelRequest:5 u(0), fu(0), e(0), efu(0)" );
   // A good Release with a bad FEC shows the elements in front of the bad one.
   EXPECT_EQ( parse( ldpLabelReleaseMsgParserFactory,
                     msg( LdpLabelRelease, 7, { tlv( fecTlv, "02 0001 08 0a 05" ) } ) )
                   ->stringValue(),
              "LDP Label Release Msg:\n   Msg Id: 7,   FEC: [10.0.0.0/8]" );
}

TEST( LabelText, abortReq ) {
   EXPECT_EQ(
        parse( ldpLabelAbortReqMsgParserFactory, msg( LdpLabelAbortReq, 7, { fec, reqId } ) )->stringValue(),
        "LDP Label Abort Request Msg:\n   Msg Id: 7,   FEC: [10.0.0.0/8, 10.1.2.0/24]\n"
        "   LabelReqMsgIdTlv: ID(4294967295)" );
}

} // namespace
