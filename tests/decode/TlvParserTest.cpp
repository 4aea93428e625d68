// Parsers of a single TLV: getters where there is something and where there is nothing, setters, validate().

#include "Expect.h"

#include "Ldp/LdpTlvParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

/// The packet with that TLV behind 3 other octets, ending with it.
constexpr U32 tlvAt = 3;
Vorn::Ptr< Lumo::Pkt > tlvPkt( Hex const & tlvHex ) { return pkt( "ffffff" + tlvHex ); }

Hex octetsOf( Lumo::Pkt const & packet ) {
   return hexOf( Octets( packet.front() + tlvAt, packet.front() + packet.frontBytes() ) );
}

TEST( TlvParser, header ) {
   auto const packet = tlvPkt( tlv( uBit | fBit | fecTlv, "0102" ) );
   auto const parser = ldpTlvParserFactory( packet, tlvAt );
   EXPECT_EQ( parser->pkt(), packet );
   EXPECT_EQ( parser->offset(), tlvAt );
   EXPECT_EQ( reinterpret_cast< U8 const * >( parser->header() ), packet->front() + tlvAt );
   EXPECT_TRUE( parser->unknown() );
   EXPECT_TRUE( parser->forwardUnknown() );
   EXPECT_EQ( parser->type(), fecTlv );
   EXPECT_EQ( parser->length(), 2 );
   EXPECT_STREQ( parser->fwkType()->name, "Ldp::LdpTlvParser" );
   for ( std::size_t there = 0; there < 4; ++there ) {
      auto const cut =
           ldpTlvParserFactory( tlvPkt( first( there, tlv( uBit | fBit | fecTlv, "" ) ) ), tlvAt );
      EXPECT_FALSE( cut->unknown() );
      EXPECT_FALSE( cut->forwardUnknown() );
      EXPECT_EQ( cut->type(), LdpTlvType( 0 ) );
      EXPECT_EQ( cut->length(), 0 );
   }
}

// One row for each parser: a good TLV, its text, and the text that one octet less of packet leaves.
template< class Parser >
using TlvFactory = Vorn::Ptr< Parser > ( * )( Vorn::Ptr< Lumo::Pkt > const &, U32 );

template< class Parser >
void expectParser( TlvFactory< Parser > factory, char const * typeName, Hex const & good,
                   char const * text ) {
   SCOPED_TRACE( typeName );
   auto const parser = factory( tlvPkt( good ), tlvAt );
   EXPECT_STREQ( parser->fwkType()->name, typeName );
   EXPECT_TRUE( parser->fwkType()->isDerived( &LdpTlvParser::_vornType ) );
   ASSERT_TRUE( parser->header2() );
   EXPECT_EQ( static_cast< void const * >( parser->header2() ), parser->header() );
   EXPECT_EQ( parser->validate(), success );
   EXPECT_EQ( parser->stringValue(), text );
   for ( std::size_t there = 0; there < octetNum( good ); ++there ) {
      auto const cut = factory( tlvPkt( first( there, good ) ), tlvAt );
      EXPECT_FALSE( cut->header2() );
      EXPECT_EQ( cut->stringValue(), "" );
   }
   // A length that is wrong is told, whatever stands behind the TLV.
   Hex const empty = first( 2, good ) + "0000";
   Vorn::String const refused = factory( tlvPkt( empty + repeat( 40, 1 ) ), tlvAt )->stringValue();
   EXPECT_NE( refused, text );
   EXPECT_EQ( factory( tlvPkt( empty ), tlvAt )->stringValue(), refused );
}

TEST( TlvParser, allOfThem ) {
   expectParser( ldpCommonHelloTlvParserFactory, "Ldp::LdpCommonHelloTlvParser",
                 tlv( commonHelloTlv, "000f 4000" ), "CommonHelloTlv: HT(15),0,1" );
   expectParser( ldpIpTransportAddrTlvParserFactory, "Ldp::LdpIpTransportAddrTlvParser",
                 tlv( ipv4TransportAddrTlv, "0a000001" ), "IpTransportAddrTlv: 10.0.0.1" );
   expectParser( ldpConfigSeqNumTlvParserFactory, "Ldp::LdpConfigSeqNumTlvParser",
                 tlv( configSeqNumTlv, "00000009" ), "ConfigSeqNumTlv: 9" );
   expectParser( ldpIp6TransportAddrTlvParserFactory, "Ldp::LdpIp6TransportAddrTlvParser",
                 tlv( ipv6TransportAddrTlv, "20010db8" + repeat( 12, 0 ) ),
                 "Ip6TransportAddrTlv: 2001:db8::" );
   expectParser( ldpCommonSessionParamTlvParserFactory, "Ldp::LdpCommonSessionParamTlvParser",
                 tlv( commonSessionParamTlv, "0001 000f c0 20 1000 0a000002 0007" ),
                 "LdpCommonSessionParamTlv: KA(15), A(1), D(1), PduLen(4096), 10.0.0.2:7" );
   expectParser( ldpFtSessionTlvParserFactory, "Ldp::LdpFtSessionTlvParser",
                 tlv( ftSessionTlv, "8001 0000 00000001 00000002" ),
                 "LdpFtSessionTlv: R(1), S(0), A(0), C(0), L(1), FTReconnect(1), FTRecovery(2)" );
   expectParser( ldpGenLabelTlvParserFactory, "Ldp::LdpGenLabelTlvParser", tlv( genLabelTlv, "00000064" ),
                 "GenLabelTlv: L(100)" );
   expectParser( ldpLabelReqMsgIdTlvParserFactory, "Ldp::LdpLabelReqMsgIdTlvParser",
                 tlv( labelReqMsgIdTlv, "00000009" ), "LabelReqMsgIdTlv: ID(9)" );
   expectParser( ldpHopCountTlvParserFactory, "Ldp::LdpHopCountTlvParser", tlv( hopCountTlv, "05" ),
                 "LdpHopCountTlv: 5" );
   expectParser( ldpPathVectorTlvParserFactory, "Ldp::LdpPathVectorTlvParser",
                 tlv( pathVectorTlv, "0a000001 0a000002" ), "LdpPathVectorTlv: [10.0.0.1, 10.0.0.2]" );
   expectParser( ldpStatusTlvParserFactory, "Ldp::LdpStatusTlvParser",
                 tlv( statusTlv, "8000000a 00000005 0400" ),
                 "StatusTlv(shutdown): LdpLabelMapping:5 u(0), fu(0), e(1), efu(0)" );
   expectParser( ldpAddressListTlvParserFactory, "Ldp::LdpAddressListTlvParser",
                 tlv( addrListTlv, "0001 0a000001" ), "LdpAddressListTlv( ipv4, 1, 10.0.0.1 )" );
   expectParser( ldpPwStatusTlvParserFactory, "Ldp::LdpPwStatusTlvParser", tlv( pwStatusTlv, "00000001" ),
                 "LdpPwStatusTlv: 0x00000001" );
}

TEST( TlvParser, hello ) {
   auto const packet = tlvPkt( tlv( commonHelloTlv, "000f bfff" ) );
   auto const parser = ldpCommonHelloTlvParserFactory( packet, tlvAt );
   EXPECT_EQ( parser->holdTime(), 15 );
   EXPECT_TRUE( parser->targetedHello() );
   EXPECT_FALSE( parser->requestSendTargetedHello() );
   parser->targetedHelloIs( false );
   EXPECT_EQ( octetsOf( *packet ), "04000004000f3fff" ); // the R bit and the reserved ones as they were
   parser->requestSendTargetedHelloIs( true );
   parser->holdTimeIs( 0x0102 );
   EXPECT_EQ( octetsOf( *packet ), "0400000401027fff" );

   auto const nothing = ldpCommonHelloTlvParserFactory( tlvPkt( "" ), tlvAt );
   EXPECT_EQ( nothing->holdTime(), 0 );
   EXPECT_FALSE( nothing->targetedHello() );
   EXPECT_FALSE( nothing->requestSendTargetedHello() );
}

TEST( TlvParser, transportAddressesAndSequenceNumber ) {
   auto packet = tlvPkt( tlv( ipv4TransportAddrTlv, "0a000001" ) );
   auto const four = ldpIpTransportAddrTlvParserFactory( packet, tlvAt );
   EXPECT_EQ( four->ipAddr(), Lumo::IpAddr( 0x0a000001 ) );
   four->ipAddrIs( Lumo::IpAddr( 0x01020304 ) );
   EXPECT_EQ( octetsOf( *packet ), "0401000401020304" );
   EXPECT_EQ( ldpIpTransportAddrTlvParserFactory( tlvPkt( "" ), tlvAt )->ipAddr(), Lumo::IpAddr() );

   auto const six = ldpIp6TransportAddrTlvParserFactory(
        tlvPkt( tlv( ipv6TransportAddrTlv, "20010db8" + repeat( 12, 0 ) ) ), tlvAt );
   EXPECT_EQ( six->ip6Addr().stringValue(), "2001:db8::" );
   six->ip6AddrIs( Lumo::Ip6Addr() );
   EXPECT_EQ( six->stringValue(), "Ip6TransportAddrTlv: ::" );

   auto const sequence =
        ldpConfigSeqNumTlvParserFactory( tlvPkt( tlv( configSeqNumTlv, "01020304" ) ), tlvAt );
   EXPECT_EQ( sequence->configSeqNum(), 0x01020304u );
   sequence->configSeqNumIs( 7 );
   EXPECT_EQ( sequence->configSeqNum(), 7u );
   EXPECT_EQ( ldpConfigSeqNumTlvParserFactory( tlvPkt( "" ), tlvAt )->configSeqNum(), 0u );
}

TEST( TlvParser, sessionParameters ) {
   auto const packet = tlvPkt( tlv( commonSessionParamTlv, "0001 000f 3f 20 1000 0a000002 0007" ) );
   auto const parser = ldpCommonSessionParamTlvParserFactory( packet, tlvAt );
   EXPECT_EQ( parser->protocolVersion(), 1 );
   EXPECT_EQ( parser->keepAliveTime(), 15 );
   EXPECT_FALSE( parser->advDiscipline() );
   EXPECT_FALSE( parser->loopDetect() );
   EXPECT_EQ( parser->pathVecLim(), 32 );
   EXPECT_EQ( parser->maxPduLength(), 4096 );
   EXPECT_EQ( parser->recvLdpIdentifier(), LdpIdentifier( 0x0a000002, 7 ) );
   parser->protocolVersionIs( 0x0102 );
   parser->keepAliveTimeIs( 0x0304 );
   parser->advDisciplineIs( true );
   parser->pathVecLimIs( 0x05 );
   parser->maxPduLengthIs( 0x0607 );
   parser->recvLdpIdentifierIs( LdpIdentifier( 0x08090a0b, 0x0c0d ) );
   EXPECT_EQ( octetsOf( *packet ), "0500000e01020304bf05060708090a0b0c0d" );
   parser->loopDetectIs( true );
   EXPECT_TRUE( parser->loopDetect() );

   auto const nothing = ldpCommonSessionParamTlvParserFactory( tlvPkt( "0500" ), tlvAt );
   EXPECT_EQ( nothing->keepAliveTime(), 0 );
   EXPECT_EQ( nothing->pathVecLim(), 0 );
   EXPECT_EQ( nothing->recvLdpIdentifier(), LdpIdentifier() );
}

TEST( TlvParser, ftSession ) {
   auto const packet = tlvPkt( tlv( ftSessionTlv, "8000 0000 00000001 00000002" ) );
   auto const parser = ldpFtSessionTlvParserFactory( packet, tlvAt );
   EXPECT_EQ( parser->validate(), malformedTlv );
   EXPECT_EQ( parser->learnFromNetwork(), 0 );
   parser->learnFromNetworkIs( 1 );
   parser->ftReconnectTimeoutIs( 0x01020304 );
   parser->ftRecoveryTimeIs( 0x05060708 );
   EXPECT_EQ( octetsOf( *packet ), "0503000c800100000102030405060708" );
   EXPECT_EQ( parser->validate(), success );
   EXPECT_EQ( parser->learnFromNetwork(), 1 );
   EXPECT_EQ( parser->ftReconnectTimeout(), 0x01020304u );
   EXPECT_EQ( parser->ftRecoveryTime(), 0x05060708u );
   EXPECT_EQ( parser->ftFlags(), LdpFtSessionFlags( 0x8001 ) );
   EXPECT_EQ( ldpFtSessionTlvParserFactory( tlvPkt( "" ), tlvAt )->ftFlags(), LdpFtSessionFlags() );
}

TEST( TlvParser, labelsHopsAndStatus ) {
   auto packet = tlvPkt( tlv( genLabelTlv, "abc00064" ) );
   auto const label = ldpGenLabelTlvParserFactory( packet, tlvAt );
   EXPECT_EQ( label->label(), Lumo::MplsLabel( 100 ) );
   label->labelIs( Lumo::MplsLabel( 3 ) );
   EXPECT_EQ( octetsOf( *packet ), "02000004abc00003" );
   EXPECT_EQ( ldpGenLabelTlvParserFactory( tlvPkt( "" ), tlvAt )->label(), Lumo::MplsLabel() );

   auto const request =
        ldpLabelReqMsgIdTlvParserFactory( tlvPkt( tlv( labelReqMsgIdTlv, "ffffffff" ) ), tlvAt );
   EXPECT_EQ( request->reqMsgId(), 0xffffffffu );
   EXPECT_EQ( ldpLabelReqMsgIdTlvParserFactory( tlvPkt( "" ), tlvAt )->reqMsgId(), 0u );
   auto const hops = ldpHopCountTlvParserFactory( tlvPkt( tlv( hopCountTlv, "ff" ) ), tlvAt );
   EXPECT_EQ( hops->hopCount(), 255 );
   EXPECT_EQ( ldpHopCountTlvParserFactory( tlvPkt( "" ), tlvAt )->hopCount(), 0 );

   packet = tlvPkt( tlv( statusTlv, "8000000a 00000005 0400" ) );
   auto const status = ldpStatusTlvParserFactory( packet, tlvAt );
   EXPECT_TRUE( status->statusError() );
   EXPECT_FALSE( status->statusForwardUnknown() );
   EXPECT_EQ( status->statusData(), shutdown );
   EXPECT_EQ( status->msgId(), 5u );
   EXPECT_EQ( status->msgType(), LdpLabelMapping );
   status->statusDataIs( LdpStatusCode( 0xffffffff ) );
   status->statusErrorIs( false );
   EXPECT_EQ( octetsOf( *packet ), "0300000a3fffffff000000050400" );
   auto const nothing = ldpStatusTlvParserFactory( tlvPkt( "0300" ), tlvAt );
   EXPECT_FALSE( nothing->statusError() );
   EXPECT_EQ( nothing->statusData(), success );
   EXPECT_EQ( nothing->msgType(), LdpMsgType( 0 ) );
}

TEST( TlvParser, pathVectorAndAddressList ) {
   auto const path =
        ldpPathVectorTlvParserFactory( tlvPkt( tlv( pathVectorTlv, "0a000001 0a000002" ) ), tlvAt );
   EXPECT_EQ( path->lsrIdNum(), 2u );
   EXPECT_EQ( path->lsrId( 1 ), Lumo::IpAddr( 0x0a000002 ) );
   EXPECT_EQ( path->lsrIdPosition( Lumo::IpAddr( 0x0a000002 ) ), 2u );
   auto const list =
        ldpAddressListTlvParserFactory( tlvPkt( tlv( addrListTlv, "0001 0a000001 0a000002" ) ), tlvAt );
   EXPECT_EQ( list->family(), Lumo::ipv4 );
   EXPECT_EQ( list->numAddress(), 2 );
   EXPECT_EQ( list->address( 1 ), Lumo::IpGenAddr( Lumo::IpAddr( 0x0a000002 ) ) );
   EXPECT_ASSERTION( list->address( 2 ), "position < numAddress()" );
   // A length that runs past the packet is read no further than the packet goes.
   auto const longPath =
        ldpPathVectorTlvParserFactory( tlvPkt( tlvLen( pathVectorTlv, 8, "0a000001" ) ), tlvAt );
   EXPECT_EQ( longPath->lsrIdNum(), 0u );
   EXPECT_EQ( longPath->lsrId( 0 ), Lumo::IpAddr() );
   EXPECT_EQ( longPath->lsrIdPosition( Lumo::IpAddr( 0x0a000001 ) ), 0u );
   auto const longList =
        ldpAddressListTlvParserFactory( tlvPkt( tlvLen( addrListTlv, 10, "0001 0a000001" ) ), tlvAt );
   EXPECT_EQ( longList->numAddress(), 0 );
   EXPECT_EQ( longList->family(), Lumo::noFamily );
}

TEST( TlvParser, pwStatus ) {
   auto const of = []( char const * word ) {
      return ldpPwStatusTlvParserFactory( tlvPkt( tlv( pwStatusTlv, word ) ), tlvAt );
   };
   EXPECT_TRUE( of( "00000000" )->pwForwarding() );
   EXPECT_FALSE( of( "00000020" )->pwForwarding() ); // a bit without a name
   EXPECT_FALSE( of( "00000020" )->pwNotForwarding() );
   EXPECT_TRUE( of( "00000001" )->pwNotForwarding() );
   EXPECT_TRUE( of( "00000002" )->localACIngrRecvFault() );
   EXPECT_TRUE( of( "00000004" )->localACEgrTransFault() );
   EXPECT_TRUE( of( "00000008" )->localPsnPwIngrRecvFault() );
   EXPECT_TRUE( of( "00000010" )->localPsnPwEgrTransFault() );
   auto const nothing = ldpPwStatusTlvParserFactory( tlvPkt( "" ), tlvAt );
   EXPECT_FALSE( nothing->pwForwarding() ); // nobody says so
   EXPECT_FALSE( nothing->pwNotForwarding() );
}

TEST( TlvParser, aTlvTooShortForItsBodyIsRefusedInItsText ) {
   auto const text = []( auto factory, Hex const & octets ) {
      return factory( tlvPkt( octets ), tlvAt )->stringValue();
   };
   EXPECT_EQ( text( ldpHopCountTlvParserFactory, "0103 0000" ), "Error LdpHopCountTlv: badTlvLength" );
   EXPECT_EQ( text( ldpHopCountTlvParserFactory, "0103 0001" ), "" );
   EXPECT_EQ( text( ldpHopCountTlvParserFactory, "0103 0002 01" ), "Error LdpHopCountTlv: badTlvLength" );
   EXPECT_EQ( text( ldpPathVectorTlvParserFactory, "0104 0006 0a00" ),
              "Error LdpPathVectorTlv: badTlvLength" );
   EXPECT_EQ( text( ldpPathVectorTlvParserFactory, "0104 0004 0a00" ), "" );
   // How long a list may be follows from its family.
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0002" ), "LdpAddressListTlv( Invalid TLV )" );
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0007 00" ), "" );
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0007 0001" ), "LdpAddressListTlv( Invalid TLV )" );
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0006 0001" ), "" );
}

TEST( TlvParser, keepsItsPacket ) {
   U64 const before = Lumo::Pkt::allocTrack().objects();
   auto parser = ldpHopCountTlvParserFactory( tlvPkt( tlv( hopCountTlv, "05" ) ), tlvAt );
   EXPECT_EQ( parser->hopCount(), 5 );
   EXPECT_EQ( Lumo::Pkt::allocTrack().objects(), before + 1 );
   parser = nullptr;
   EXPECT_EQ( Lumo::Pkt::allocTrack().objects(), before );
}

} // namespace
