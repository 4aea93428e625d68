// Protocol utilities: facts about status codes, hop counts and interfaces, and the dispatch to the parser of
// a message's type.

#include "Expect.h"

#include "Ldp/LdpUtils.h"

#include <set>

using namespace Ldp;
using namespace Wire;

namespace {

struct StatusRow {
   LdpStatusCode status;
   bool eBit;
   char const * text;
};

StatusRow const statusRows[] = {
   { success, false, "success" },
   { badLdpId, true, "bad LDP identifier" },
   { badVersion, true, "bad protocol version" },
   { badPduLength, true, "bad PDU length" },
   { unknownMessageType, false, "unknown message type" },
   { badMessageLength, true, "bad message length" },
   { unknownTlv, false, "unknown TLV" },
   { badTlvLength, true, "bad TLV length" },
   { malformedTlv, true, "malformed TLV value" },
   { holdTimerExpired, true, "hold timer expired" },
   { shutdown, true, "shutdown" },
   { loopDetected, false, "loop detected" },
   { unknownFec, false, "unknown FEC" },
   { noRoute, false, "no route" },
   { noLabelResources, false, "no label resources available" },
   { labelResourcesAvailable, false, "label resources available" },
   { rejectNoHello, true, "session rejected: no hello" },
   { rejectParamAdvMode, true, "session rejected: advertisement mode" },
   { rejectMaxPduLength, true, "session rejected: max PDU length" },
   { rejectParamLabelRange, true, "session rejected: label range" },
   { keepAliveExpired, true, "keepAlive timer expired" },
   { labelRequestAborted, false, "label request aborted" },
   { missingMessageParams, false, "missing message parameters" },
   { unsupportedAddressFamily, false, "unsupported address family" },
   { sessionRejectBadKeepAliveTime, true, "session rejected: bad keepAlive time" },
   { internalError, true, "internal error" },
   { illegalCBit, false, "illegalCBit" },
   { wrongCBit, false, "wrongCBit" },
   { pwStatus, false, "pwStatus" },
   { unknownMessageTypeIgnore, false, "unknownMessageTypeIgnore" },
   { establishingTcpConnection, false, "attempting to establish TCP connection" },
   { sessionInitFailed, false, "session initialization failed" },
   { sessionRoleChanged, false, "session role changed" },
   { tcpConnectionClosed, false, "TCP connection closed" },
   { ipChange, false, "ipChange" },
   { idChange, false, "idChange" },
   { mLdpChange, false, "capability change - mLDP" },
   { grConfigChange, false, "grConfigChange" },
};

TEST( LdpUtils, eBitAndTextOfEachStatus ) {
   for ( StatusRow const & row : statusRows ) {
      SCOPED_TRACE( row.text );
      EXPECT_EQ( statusCodeEBitForStatusCode( row.status ), row.eBit );
      EXPECT_EQ( sessionStateStrForStatusCode( row.status ), row.text );
   }
}

TEST( LdpUtils, valueThatIsNoStatus ) {
   EXPECT_EQ( sessionStateStrForStatusCode( LdpStatusCode( 30 ) ), "30" );
   for ( U32 const value : { 26u, 30u, 35u, 38u, 41u, 0x80000000u, 0xffffffffu } ) {
      SCOPED_TRACE( value );
      EXPECT_ASSERTION( statusCodeEBitForStatusCode( LdpStatusCode( value ) ),
                        "!\"Missing status code E-bit definition\"" );
   }
}

TEST( LdpUtils, hopCountInc ) {
   EXPECT_EQ( hopCountInc( 0 ), 0 ); // unknown stays unknown
   for ( int hops = 1; hops <= 253; ++hops ) {
      ASSERT_EQ( hopCountInc( U8( hops ) ), hops + 1 );
   }
   EXPECT_ASSERTION( hopCountInc( 254 ), "rcvdHopCount < ( 0xFF - 1 ) && \"Internal Error\"" );
   EXPECT_ASSERTION( hopCountInc( 255 ), "rcvdHopCount < ( 0xFF - 1 ) && \"Internal Error\"" );
}

TEST( LdpUtils, reentrantAssert ) {
   bool busy = false;
   {
      ReentrantAssert const guard( &busy );
      EXPECT_TRUE( busy );
      EXPECT_ASSERTION( ReentrantAssert const again( &busy ), "!*flag" );
   }
   EXPECT_FALSE( busy );
   { ReentrantAssert const later( &busy ); }
   EXPECT_FALSE( busy );
}

TEST( LdpUtils, interfaceKinds ) {
   struct Row {
      char const * name;
      bool supported;
      bool supportedWithLoopback;
      bool loopback;
      bool managementOrInternal;
   };
   for ( Row const & row : {
              Row{ "Vlan10", true, true, false, false },
              { "Port-Channel7", true, true, false, false },
              { "Ethernet1", true, true, false, false },
              { "Ethernet3/1", true, true, false, false },
              { "Ethernet1.100", true, true, false, false },
              { "Port-Channel7.100", true, true, false, false },
              { "Loopback0", false, true, true, false },
              { "Management1", false, false, false, true },
              { "Internal1", false, false, false, true },
              { "Tunnel1", false, false, false, false },
              { "Ethernet", false, false, false, false },
              { "", false, false, false, false },
         } ) {
      SCOPED_TRACE( row.name );
      Lumo::IntfId const id{ Vorn::String( row.name ) };
      EXPECT_EQ( isLdpSupportedInterface( id, false ), row.supported );
      EXPECT_EQ( isLdpSupportedInterface( id, true ), row.supportedWithLoopback );
      EXPECT_EQ( isLoopbackInterface( id ), row.loopback );
      EXPECT_EQ( isManagementOrInternalInterface( id ), row.managementOrInternal );
   }
}

// ---- dispatch ----

Hex const fec = tlv( fecTlv, "02 0001 08 0a" );
Hex const label = tlv( genLabelTlv, "00000064" );
Hex const addresses = tlv( addrListTlv, "0001 0a000001" );

TEST( LdpMsgParserGet, classOfEachType ) {
   struct Row {
      Hex message;
      Vorn::VornType const * type;
      char const * typeName;
   };
   for ( Row const & row : {
              Row{ msg( LdpNotification, 1, { tlv( statusTlv, "8000000a 00000000 0000" ) } ),
                   &LdpNotificationMsgParser::_vornType, "Ldp::LdpNotificationMsgParser" },
              { msg( LdpHello, 1, { tlv( commonHelloTlv, "000f 0000" ) } ), &LdpHelloMsgParser::_vornType,
                "Ldp::LdpHelloMsgParser" },
              { msg( LdpInit, 1, { tlv( commonSessionParamTlv, "0001 000f 00 00 1000 0a000002 0000" ) } ),
                &LdpInitMsgParser::_vornType, "Ldp::LdpInitMsgParser" },
              { msg( LdpKeepAlive, 1 ), &LdpMsgParser::_vornType, "Ldp::LdpMsgParser" },
              { msg( LdpCapability, 1, { tlv( p2mpCapabilityTlv, "80" ) } ), &LdpMsgParser::_vornType,
                "Ldp::LdpMsgParser" }, // stays plain: its user makes the typed one
              { msg( LdpAddress, 1, { addresses } ), &LdpAddressMsgParser::_vornType,
                "Ldp::LdpAddressMsgParser" },
              { msg( LdpAddressWithdraw, 1, { addresses } ), &LdpAddressWithdrawMsgParser::_vornType,
                "Ldp::LdpAddressWithdrawMsgParser" },
              { msg( LdpLabelMapping, 1, { fec, label } ), &LdpLabelMappingMsgParser::_vornType,
                "Ldp::LdpLabelMappingMsgParser" },
              { msg( LdpLabelRequest, 1, { fec } ), &LdpLabelRequestMsgParser::_vornType,
                "Ldp::LdpLabelRequestMsgParser" },
              { msg( LdpLabelWithdraw, 1, { fec } ), &LdpLabelWithdrawMsgParser::_vornType,
                "Ldp::LdpLabelWithdrawMsgParser" },
              { msg( LdpLabelRelease, 1, { fec } ), &LdpLabelReleaseMsgParser::_vornType,
                "Ldp::LdpLabelReleaseMsgParser" },
              { msg( LdpLabelAbortReq, 1, { fec, tlv( labelReqMsgIdTlv, "00000001" ) } ),
                &LdpLabelAbortReqMsgParser::_vornType, "Ldp::LdpLabelAbortReqMsgParser" },
         } ) {
      SCOPED_TRACE( row.typeName );
      auto const parser = ldpMsgParserGet( msgPkt( row.message ), msgOffset );
      EXPECT_EQ( parser->fwkType(), row.type );
      EXPECT_STREQ( parser->fwkType()->name, row.typeName );
      EXPECT_TRUE( parser->validMsg() ) << parser->reason();
      EXPECT_TRUE( parser->fwkType()->isDerived( &LdpMsgParser::_vornType ) );
   }
}

TEST( LdpMsgParserGet, badHeaderStaysPlain ) {
   for ( Hex const & message : { msg( 0x3000, 1 ), msg( uBit | 0x3000, 1 ), msgLen( LdpHello, 3, 1 ),
                                 msg( LdpHello, 1, { tlvLen( commonHelloTlv, 5, "000f 0000" ) } ),
                                 msg( LdpHello, 1, { tlv( 258, "" ) } ) } ) {
      SCOPED_TRACE( message );
      auto const parser = ldpMsgParserGet( msgPkt( message ), msgOffset );
      EXPECT_EQ( parser->fwkType(), &LdpMsgParser::_vornType );
      EXPECT_FALSE( parser->validMsg() );
      EXPECT_EQ( parser->stringValue(), "Message Error: " + parser->reason() );
   }
}

TEST( LdpMsgParserGet, typedParserMayRefuseWhatThePlainOneTook ) {
   auto const parser = ldpMsgParserGet( msgPkt( msg( LdpHello, 1 ) ), msgOffset );
   EXPECT_EQ( parser->fwkType(), &LdpHelloMsgParser::_vornType );
   EXPECT_EQ( parser->statusCode(), missingMessageParams );
}

TEST( LdpMsgParserGet, assertsItsArguments ) {
   EXPECT_ASSERTION( ldpMsgParserGet( nullptr, 0 ), "pkt" );
   EXPECT_ASSERTION( ldpMsgParserGet( Lumo::Pkt::borrow( nullptr, 1 ), 0 ), "pkt->front()" );
   EXPECT_ASSERTION( ldpMsgParserGet( pkt( "" ), 0 ), "pkt->frontBytes()" );
   EXPECT_ASSERTION( ldpMsgParserGet( pkt( "00" ), 2 ), "pkt_->frontBytes() >= offset_" );
}

} // namespace
