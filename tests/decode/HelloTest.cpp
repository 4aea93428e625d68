// Hello messages.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const common = tlv( commonHelloTlv, "000f 8000" );
Hex const ipv4 = tlv( ipv4TransportAddrTlv, "0a000001" );
Hex const ipv6 = tlv( ipv6TransportAddrTlv, "20010db8 00000000 00000000 00000001" );
Hex const seq = tlv( configSeqNumTlv, "00000009" );

Hex hello( std::initializer_list< Hex > tlvs ) { return msg( LdpHello, 7, tlvs ); }

TEST( Hello, judgement ) {
   char const * const notFirst = "LdpCommonHelloTlv is not the 1st TLV in the message";
   char const * const commonSize = "Invalid size for LdpCommonHelloTlv";
   char const * const ipv4Size = "Invalid size for LdpIpTransportAddrTlv";
   char const * const seqSize = "Invalid size for LdpConfigSeqNumTlv";
   char const * const ipv6Size = "Invalid size for LdpIp6TransportAddrTlv";
   char const * const hasIpv6 = "LdpIpv6TransportAddrTlv already existed";
   char const * const hasIpv4 = "LdpIpv4TransportAddrTlv already existed";
   char const * const missing = "Missing LdpCommonHelloTlv";
   expectRows(
        ldpHelloMsgParserFactory, "Invalid LDP Hello Msg: ",
        {
             { "parameters alone", hello( { common } ), success, "" },
             { "all with IPv4", hello( { common, ipv4, seq } ), success, "" },
             { "all with IPv6", hello( { common, seq, ipv6 } ), success, "" },
             { "known TLVs of other messages, and unknown ones to be ignored, are passed over",
               hello( { common, tlv( fecTlv, "ff" ), tlv( uBit | 258, "ff" ), ipv4 } ), success, "" },
             { "one to be ignored between the transport addresses",
               hello( { common, ipv4, tlv( uBit | 258 ), ipv6 } ), malformedTlv, hasIpv4 },

             { "no TLV", hello( {} ), missingMessageParams, "Message has 0 TLV" },
             { "transport address alone", hello( { ipv4 } ), missingMessageParams, missing },
             { "only a TLV to be ignored", hello( { tlv( uBit | 258 ) } ), missingMessageParams, missing },
             { "parameters second", hello( { ipv4, common } ), missingMessageParams, notFirst },
             { "parameters behind one to be ignored", hello( { tlv( uBit | 258 ), common } ),
               missingMessageParams, notFirst },
             { "parameters twice", hello( { common, common } ), missingMessageParams, notFirst },
             { "position is judged before the size", hello( { ipv4, tlv( commonHelloTlv, "000f" ) } ),
               missingMessageParams, notFirst },
             { "a bad TLV in front of them wins", hello( { tlv( ipv4TransportAddrTlv, "0a" ), common } ),
               malformedTlv, ipv4Size },

             { "parameters of 0", hello( { tlv( commonHelloTlv ) } ), malformedTlv, commonSize },
             { "parameters of 3", hello( { tlv( commonHelloTlv, "000f00" ) } ), malformedTlv, commonSize },
             { "parameters of 5", hello( { tlv( commonHelloTlv, "000f800000" ) } ), malformedTlv,
               commonSize },
             { "IPv4 of 3", hello( { common, tlv( ipv4TransportAddrTlv, "0a0000" ) } ), malformedTlv,
               ipv4Size },
             { "IPv4 of 16", hello( { common, tlv( ipv4TransportAddrTlv, repeat( 16, 1 ) ) } ), malformedTlv,
               ipv4Size },
             { "sequence number of 3", hello( { common, tlv( configSeqNumTlv, "000000" ) } ), malformedTlv,
               seqSize },
             { "sequence number of 5", hello( { common, tlv( configSeqNumTlv, "0000000000" ) } ),
               malformedTlv, seqSize },
             { "IPv6 of 4", hello( { common, tlv( ipv6TransportAddrTlv, "0a000001" ) } ), malformedTlv,
               ipv6Size },
             { "IPv6 of 15", hello( { common, tlv( ipv6TransportAddrTlv, repeat( 15, 1 ) ) } ), malformedTlv,
               ipv6Size },
             { "IPv6 of 17", hello( { common, tlv( ipv6TransportAddrTlv, repeat( 17, 1 ) ) } ), malformedTlv,
               ipv6Size },
             // Total length 3; behind it a TLV to be ignored.
             { "wrapped length", hello( { common, "0402 ffff 3f 0000" } ), malformedTlv, seqSize },

             { "IPv4, then IPv6", hello( { common, ipv4, ipv6 } ), malformedTlv, hasIpv4 },
             { "IPv6, then IPv4", hello( { common, ipv6, ipv4 } ), malformedTlv, hasIpv6 },
             { "the other way round, with a TLV between", hello( { common, ipv6, seq, ipv4 } ), malformedTlv,
               hasIpv6 },
             { "size is judged before the exclusion",
               hello( { common, ipv4, tlv( ipv6TransportAddrTlv, "0a000001" ) } ), malformedTlv, ipv6Size },
             { "a refused TLV leaves no view that would exclude", hello( { ipv4, ipv6, common } ),
               malformedTlv, hasIpv4 },
             { "repeats pass", hello( { common, ipv4, seq, ipv4, seq } ), success, "" },

             { "what the header says stands", hello( { common, tlv( 258 ) } ), unknownTlv,
               "Unknown TLV Type: 258" },
        } );
}

TEST( Hello, views ) {
   auto const parser = parse( ldpHelloMsgParserFactory, hello( { common, seq, ipv4 } ) );
   ASSERT_TRUE( parser->msgCommonHelloTlv() );
   EXPECT_EQ( offsetOf( *parser, parser->msgCommonHelloTlv() ), msgOffset + 8 );
   EXPECT_EQ( parser->msgCommonHelloTlv()->holdTime(), 15 );
   EXPECT_TRUE( parser->msgCommonHelloTlv()->targetedHello() );
   EXPECT_FALSE( parser->msgCommonHelloTlv()->requestSendTargetedHello() );
   EXPECT_EQ( offsetOf( *parser, parser->msgConfigSeqTlv() ), msgOffset + 16 );
   EXPECT_EQ( parser->msgConfigSeqTlv()->configSeqNum(), 9u );
   EXPECT_EQ( offsetOf( *parser, parser->msgIpTransportTlv() ), msgOffset + 24 );
   EXPECT_EQ( parser->msgIpTransportTlv()->ipAddr(), Lumo::IpAddr( 0x0a000001 ) );
   EXPECT_FALSE( parser->msgIp6TransportTlv() );

   auto const bare = parse( ldpHelloMsgParserFactory, hello( { common } ) );
   EXPECT_FALSE( bare->msgIpTransportTlv() );
   EXPECT_FALSE( bare->msgIp6TransportTlv() );
   EXPECT_FALSE( bare->msgConfigSeqTlv() );
}

TEST( Hello, ofRepeatsTheLastWins ) {
   auto const four =
        parse( ldpHelloMsgParserFactory, hello( { common, ipv4, seq, tlv( ipv4TransportAddrTlv, "0a000002" ),
                                                  tlv( configSeqNumTlv, "0000000a" ) } ) );
   EXPECT_EQ( four->msgIpTransportTlv()->ipAddr(), Lumo::IpAddr( 0x0a000002 ) );
   EXPECT_EQ( four->msgConfigSeqTlv()->configSeqNum(), 10u );
   auto const six = parse( ldpHelloMsgParserFactory,
                           hello( { common, ipv6, tlv( ipv6TransportAddrTlv, repeat( 16, 0x11 ) ) } ) );
   EXPECT_EQ( offsetOf( *six, six->msgIp6TransportTlv() ), msgOffset + 36 );
}

TEST( Hello, viewsFoundBeforeAFailureStay ) {
   auto const parser = parse( ldpHelloMsgParserFactory, hello( { common, ipv4, ipv6, seq } ) );
   EXPECT_FALSE( parser->validMsg() );
   EXPECT_TRUE( parser->msgCommonHelloTlv() );
   EXPECT_TRUE( parser->msgIpTransportTlv() );
   EXPECT_FALSE( parser->msgIp6TransportTlv() ); // refused before it was stored
   EXPECT_FALSE( parser->msgConfigSeqTlv() );    // not reached
   auto const wrongSize = parse( ldpHelloMsgParserFactory, hello( { tlv( commonHelloTlv, "00" ) } ) );
   EXPECT_FALSE( wrongSize->msgCommonHelloTlv() );
   auto const header = parse( ldpHelloMsgParserFactory, hello( { common, tlv( 258 ) } ) );
   EXPECT_FALSE( header->msgCommonHelloTlv() ); // the header's judgement ended it
}

TEST( Hello, text ) {
   EXPECT_EQ( parse( ldpHelloMsgParserFactory, hello( { common } ) )->stringValue(),
              "LDP Hello Msg:\n   Msg Id: 7,   CommonHelloTlv: HT(15),1,0" );
   // IPv4, sequence number, IPv6, whatever the order on the wire.
   EXPECT_EQ( parse( ldpHelloMsgParserFactory, hello( { common, seq, ipv4 } ) )->stringValue(),
              "LDP Hello Msg:\n   Msg Id: 7,   CommonHelloTlv: HT(15),1,0\n"
              "   IpTransportAddrTlv: 10.0.0.1\n"
              "   ConfigSeqNumTlv: 9" );
   EXPECT_EQ( parse( ldpHelloMsgParserFactory, hello( { common, ipv6, seq } ) )->stringValue(),
              "LDP Hello Msg:\n   Msg Id: 7,   CommonHelloTlv: HT(15),1,0\n"
              "   ConfigSeqNumTlv: 9\n"
              "   Ip6TransportAddrTlv: 2001:db8::1" );
   // As a signed number.
   EXPECT_EQ( parse( ldpHelloMsgParserFactory, msg( LdpHello, 0xffffffff, { common } ) )->stringValue(),
              "LDP Hello Msg:\n   Msg Id: -1,   CommonHelloTlv: HT(15),1,0" );
}

TEST( Hello, assertsItsType ) {
   EXPECT_ASSERTION( parse( ldpHelloMsgParserFactory, msg( LdpKeepAlive, 7 ) ),
                     "msgHdr_->type() == LdpHello_" );
   // But a message that is bad already is left alone.
   EXPECT_EQ( parse( ldpHelloMsgParserFactory, msg( 0x3000, 7 ) )->statusCode(), unknownMessageType );
}

} // namespace
