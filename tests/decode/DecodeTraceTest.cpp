// What the decoders trace: the lines of one message's road, and the reason of each failure that is traced.

#include "Expect.h"

#include "Ldp/LdpUtils.h"
#include "Twain/Trace.h"

#include <regex>
#include <sstream>

using namespace Ldp;
using namespace Wire;

namespace {

using Lines = std::vector< std::string >;
char const * const facilities[] = { "LdpGenMsgParser", "LdpMsgParser", "LdpPwGenMsgParser", "LdpHdr" };

/// Collects the lines of those levels of all decoders, each as `Facility/level text`.
class DecodeTrace {
 public:
   explicit DecodeTrace( std::initializer_list< int > levels ) {
      U32 bits = 0;
      for ( int const level : levels ) {
         bits |= 1u << level;
      }
      levelsAre( bits );
      Vorn::TraceFacility::sinkIs( &out_ );
   }
   ~DecodeTrace() {
      levelsAre( 0 );
      Vorn::TraceFacility::sinkIs( nullptr );
   }
   Lines take() {
      // Time, facility and level, place, function, text.
      static std::regex const line( "[^ ]+ ([^ ]+) [^ ]+ [^ ]+ (.*)" );
      std::istringstream in( out_.str() );
      out_.str( "" );
      Lines lines;
      for ( std::string text; std::getline( in, text ); ) {
         lines.push_back( std::regex_replace( text, line, "$1 $2" ) );
      }
      return lines;
   }

 private:
   static void levelsAre( U32 bits ) {
      for ( char const * facility : facilities ) {
         Vorn::TraceFacility::levelsIs( facility, bits );
      }
   }
   std::ostringstream out_;
};

TEST( DecodeTrace, roadOfAMapping ) {
   auto const packet = pkt( pdu(
        "10.0.0.1", 0,
        { msg( LdpLabelMapping, 7,
               { tlv( fecTlv, "02 0001 08 0a 03 0001 04 0a000001" ), tlv( genLabelTlv, "00000064" ) } ) } ) );
   DecodeTrace trace( { 5, 6, 8, 9 } );
   auto const parser = ldpPduParserFactory( packet, 0 );
   EXPECT_EQ( trace.take(),
              ( Lines{ "LdpGenMsgParser/8 [1] LdpPduParser::handleInitialized() ",
                       "LdpGenMsgParser/9    LdpHeader: LdpPduHdr: Ver(1),Len(39),LdpId: 10.0.0.1:0",
                       "LdpGenMsgParser/8 [2] LdpTlvGroupParser::parseTlvGroup() ",
                       "LdpGenMsgParser/6 Parse packet frontBytes: 43, offset: 10, size 33",
                       "LdpGenMsgParser/6    Msg/TLV 0: offset 10, size 33" } ) );
   Lines const header{ "LdpMsgParser/8 [1] LdpMsgParser::handleHeader() ",
                       "LdpGenMsgParser/8 [2] LdpTlvGroupParser::parseTlvGroup() ",
                       "LdpGenMsgParser/6 Parse packet frontBytes: 43, offset: 18, size 25",
                       "LdpGenMsgParser/6    Msg/TLV 0: offset 18, size 17",
                       "LdpGenMsgParser/6    Msg/TLV 1: offset 35, size 8" };
   Lines expected = header; // by the plain parser, then by the typed one
   expected.insert( expected.end(), header.begin(), header.end() );
   for ( char const * line :
         { "LdpMsgParser/8 [1] LdpLabelMappingMsgParser::handleInitialized() ",
           "LdpGenMsgParser/8 [2] LdpFecTlvParser::parseElements() ",
           "LdpGenMsgParser/6    Parse FEC TLV frontBytes: 43, offset: 18, TLV len: 13",
           "LdpGenMsgParser/6       Msg/TLV/FecTlvElement 0: offset 22, type prefixElement",
           "LdpGenMsgParser/6          Prefix FEC Element, Address Family: ipv4, PreLen: 8 (1 octets), "
           "Prefix: "
           "10.0.0.0/8",
           "LdpGenMsgParser/6       Msg/TLV/FecTlvElement 1: offset 27, type hostAddrElement",
           "LdpGenMsgParser/6          Host Address FEC Element, Address Family: ipv4, HostAddrLen: 4, Addr: "
           "10.0.0.1/32",
           "LdpGenMsgParser/6 FEC TLV parsed 2 elements" } ) {
      expected.push_back( line );
   }
   ldpMsgParserGet( packet, parser->messageOffset( 0 ) );
   EXPECT_EQ( trace.take(), expected );
   EXPECT_EQ( callDepth, 0 );
}

TEST( DecodeTrace, entryOfEachMessageParser ) {
   DecodeTrace trace( { 8 } );
   for ( auto const & [type, name] : { std::pair{ LdpNotification, "LdpNotificationMsgParser" },
                                       { LdpHello, "LdpHelloMsgParser" },
                                       { LdpInit, "LdpInitMsgParser" },
                                       { LdpAddress, "LdpAddressMsgParser" },
                                       { LdpAddressWithdraw, "LdpAddressWithdrawMsgParser" },
                                       { LdpLabelMapping, "LdpLabelMappingMsgParser" },
                                       { LdpLabelRequest, "LdpLabelRequestMsgParser" },
                                       { LdpLabelWithdraw, "LdpLabelWithdrawMsgParser" },
                                       { LdpLabelRelease, "LdpLabelReleaseMsgParser" },
                                       { LdpLabelAbortReq, "LdpLabelAbortReqMsgParser" } } ) {
      ldpMsgParserGet( msgPkt( msg( type, 7 ) ), msgOffset );
      EXPECT_EQ( trace.take().back(),
                 "LdpMsgParser/8 [1] " + std::string( name ) + "::handleInitialized() " );
   }
   parse( ldpCapabilityMsgParserFactory, msg( LdpCapability, 7 ) );
   EXPECT_EQ( trace.take().back(), "LdpMsgParser/8 [1] LdpCapabilityMsgParser::handleInitialized() " );
   // Also of a message that is refused already.
   parse( ldpHelloMsgParserFactory, msg( 0x3000, 7 ) );
   EXPECT_EQ( trace.take().back(), "LdpMsgParser/8 [1] LdpHelloMsgParser::handleInitialized() " );
}

TEST( DecodeTrace, reasonsOfFailures ) {
   DecodeTrace trace( { 5 } );
   struct Row {
      char const * name;
      Hex message;
      Lines lines;
   };
   auto const request = []( char const * fec ) { return msg( LdpLabelRequest, 7, { tlv( fecTlv, fec ) } ); };
   for ( Row const & row : {
              Row{ "message cut short",
                   first( 7, msg( LdpHello, 7 ) ),
                   { "LdpMsgParser/5 MSG too small, size = 12" } },
              { "too long",
                msgLen( LdpHello, 4093, 7 ),
                { "LdpMsgParser/5 MSG length field too big, length = 4097" } },
              { "too short",
                msgLen( LdpHello, 3, 7 ),
                { "LdpMsgParser/5 MSG length field too small, length = 7" } },
              { "past the packet",
                msgLen( LdpHello, 8, 7 ),
                { "LdpGenMsgParser/5 Packet is too small, size: 13" } },
              { "TLV past the message",
                msg( LdpHello, 7, { tlvLen( commonHelloTlv, 1 ) } ),
                { "LdpGenMsgParser/5 Msg/Tlv is corrupted/truncated" } },
              { "TLV header cut short",
                msg( LdpHello, 7, { "0400" } ),
                { "LdpGenMsgParser/5 Msg/Tlv header is corrupted" } },
              { "FEC element", request( "05" ), { "LdpGenMsgParser/5 Unhandled FEC TLV Element type 0x05" } },
              { "P2MP element",
                request( "06" ),
                { "LdpGenMsgParser/5 Invalid FEC P2MP Element: TLV value is too small" } },
              { "PW ID element: once, and by its own facility",
                request( "80" ),
                { "LdpPwGenMsgParser/5 Invalid FEC PW ID Element: TLV is too small" } },
              { "interface parameter",
                request( "80 0005 05 00000001 00000064 01" ),
                { "LdpPwGenMsgParser/5 Invalid PW Intf param element: TLV is too small" } },
              // What is wrong with a type or with the rules of a message is told by the parser alone.
              { "unknown message type", msg( 0x3000, 7 ), {} },
              { "unknown TLV", msg( LdpHello, 7, { tlv( 258 ) } ), {} },
         } ) {
      SCOPED_TRACE( row.name );
      ldpMsgParserGet( msgPkt( row.message ), msgOffset );
      EXPECT_EQ( trace.take(), row.lines );
   }
   auto const pduLines = [&]( Hex const & packet ) {
      ldpPduParserFactory( pkt( packet ), 0 );
      return trace.take();
   };
   Hex const keepAlive = msg( LdpKeepAlive, 7 );
   EXPECT_EQ( pduLines( "00" ), Lines{ "LdpGenMsgParser/5 PDU too small, size = 1" } );
   EXPECT_EQ( pduLines( pduLen( 9597, "10.0.0.1", 0, { keepAlive } ) ),
              Lines{ "LdpGenMsgParser/5 PDU length field too big, length = 9601" } );
   EXPECT_EQ( pduLines( pduLen( 9, "10.0.0.1", 0, { keepAlive } ) ),
              Lines{ "LdpGenMsgParser/5 PDU length field too small, length = 13" } );
   EXPECT_EQ( pduLines( pdu( "10.0.0.1", 0, { keepAlive }, 2 ) ),
              Lines{ "LdpGenMsgParser/5 LDP Version 2 not supported" } );
   // Bad framing is traced by the walk, not once more by the PDU.
   EXPECT_EQ( pduLines( pduLen( 18, "10.0.0.1", 0, { keepAlive } ) ),
              Lines{ "LdpGenMsgParser/5 Packet is too small, size: 18" } );
}

TEST( DecodeTrace, rejectedSessionParameters ) {
   DecodeTrace trace( { 5 } );
   for ( auto const & [params, line] :
         { std::pair{ "0002 000f 00 00 1000 0a000002 0000",
                      "LdpHdr/5    Rejected. Protocol version is not 1" },
           { "0001 0002 00 00 1000 0a000002 0000", "LdpHdr/5    Rejected. keepAliveTime is out of range." },
           { "0001 0003 00 00 2581 0a000002 0000",
             "LdpHdr/5    Rejected. maxPduLength is out of range." } } ) {
      parse( ldpInitMsgParserFactory, msg( LdpInit, 7, { tlv( commonSessionParamTlv, params ) } ) );
      EXPECT_EQ( trace.take(), Lines{ line } );
   }
}

TEST( DecodeTrace, elementsOfOtherKinds ) {
   DecodeTrace trace( { 6, 9 } );
   auto const linesOf = [&]( char const * fec ) {
      ldpFecTlvParserFactory( pkt( tlv( fecTlv, fec ) ), 0, nullptr );
      Lines lines = trace.take();
      lines.erase( lines.begin() ); // the TLV's own, seen above
      return lines;
   };
   EXPECT_EQ( linesOf( "01" ),
              ( Lines{ "LdpGenMsgParser/6       Msg/TLV/FecTlvElement 0: offset 4, type wildcardElement",
                       "LdpGenMsgParser/6          Wildcard FEC Element",
                       "LdpGenMsgParser/6 FEC TLV parsed 1 elements" } ) );
   EXPECT_EQ( linesOf( "63" ),
              ( Lines{ "LdpGenMsgParser/6       Msg/TLV/FecTlvElement 0: offset 4, type 99" } ) );
   EXPECT_EQ( linesOf( "80 0005 06 00000001 00000064 c8 02" ),
              ( Lines{ "LdpGenMsgParser/6       Msg/TLV/FecTlvElement 0: offset 4, type pwIdElement",
                       "LdpPwGenMsgParser/6 Ignoring unrecognized PW intf sub-TLV (code 0xc8)",
                       "LdpGenMsgParser/6 FEC TLV parsed 1 elements" } ) );
   Lines p2mp = linesOf( "06 0001 04 0a000001 0003 010004" );
   ASSERT_EQ( p2mp.size(), 2u + 13 + 4 ); // a line for each octet of the element
   p2mp.erase( p2mp.begin() + 2, p2mp.begin() + 2 + 13 );
   EXPECT_EQ( p2mp,
              ( Lines{ "LdpGenMsgParser/6       Msg/TLV/FecTlvElement 0: offset 4, type p2mpElement",
                       "LdpGenMsgParser/6 currOffset = 4 endOffset = 17",
                       "LdpGenMsgParser/9 rootIpLenOctets = 4 af = ipv4",
                       "LdpGenMsgParser/9 opaqueLenIs 3 opaqueStr is \\x01\\x00\\x04",
                       "LdpGenMsgParser/6          P2mp FEC Element, Address Family: ipv4, RootIpLen: 4 (13 "
                       "octetsRead), ",
                       "LdpGenMsgParser/6 FEC TLV parsed 1 elements" } ) );
}

} // namespace
