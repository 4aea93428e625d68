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

} // namespace
