// Parsers of a single TLV: getters where there is something and where there is nothing, setters, validate().

#include "Expect.h"
#include "Reflected.h"

#include "Ldp/LdpTlvParser.h"

#include <sstream>

using namespace Ldp;
using namespace Test;
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

// Of each parser: a good TLV, its text, its fields as reflection reads them, the same where the packet ends
// before the TLV does, what is written, and what the TLV is then.
char const * const table = R"(
CommonHello         0400 0004 000f bfff
   CommonHelloTlv: HT(15),1,0
   holdTime=15 targetedHello=True requestSendTargetedHello=False
   holdTime=0 targetedHello=False requestSendTargetedHello=False
   targetedHello=False requestSendTargetedHello=True holdTime=258
   0400 0004 0102 7fff
IpTransportAddr     0401 0004 0a000001
   IpTransportAddrTlv: 10.0.0.1
   ipAddr=10.0.0.1
   ipAddr=0.0.0.0
   ipAddr=1.2.3.4
   0401 0004 01020304
ConfigSeqNum        0402 0004 00000009
   ConfigSeqNumTlv: 9
   configSeqNum=9
   configSeqNum=0
   configSeqNum=16909060
   0402 0004 01020304
Ip6TransportAddr    0403 0010 20010db8 00000000 00000000 00000000
   Ip6TransportAddrTlv: 2001:db8::
   ip6Addr=2001:db8::
   ip6Addr=::
   ip6Addr=::1
   0403 0010 00000000 00000000 00000000 00000001
CommonSessionParam  0500 000e 0001 000f 7f 20 1000 0a000002 0007
   LdpCommonSessionParamTlv: KA(15), A(0), D(1), PduLen(4096), 10.0.0.2:7
   protocolVersion=1 keepAliveTime=15 advDiscipline=False loopDetect=True pathVecLim=32 maxPduLength=4096 recvLdpIdentifier=10.0.0.2:7
   protocolVersion=0 keepAliveTime=0 advDiscipline=False loopDetect=False pathVecLim=0 maxPduLength=0 recvLdpIdentifier=0.0.0.0:0
   protocolVersion=258 keepAliveTime=772 advDiscipline=True loopDetect=False pathVecLim=5 maxPduLength=1543 recvLdpIdentifier=8.9.10.11:3085
   0500 000e 0102 0304 bf 05 0607 08090a0b 0c0d
FtSession           0503 000c 8008 0000 00000001 00000002
   LdpFtSessionTlv: R(1), S(1), A(0), C(0), L(0), FTReconnect(1), FTRecovery(2)
   ftRecoveryTime=2 ftReconnectTimeout=1 learnFromNetwork=0 ftFlags=Value('Ldp::LdpFtSessionFlags', ** {'v0': 128, 'v1': 8})
   ftRecoveryTime=0 ftReconnectTimeout=0 learnFromNetwork=0 ftFlags=Value('Ldp::LdpFtSessionFlags', ** {'v0': 0, 'v1': 0})
   learnFromNetwork=1 ftReconnectTimeout=16909060 ftRecoveryTime=84281096
   0503 000c 8009 0000 01020304 05060708
GenLabel            0200 0004 abc00064
   GenLabelTlv: L(100)
   label=100
   label=1048576
   label=3
   0200 0004 abc00003
LabelReqMsgId       0600 0004 ffffffff
   LabelReqMsgIdTlv: ID(4294967295)
   reqMsgId=4294967295
   reqMsgId=0
   reqMsgId=16909060
   0600 0004 01020304
HopCount            0103 0001 ff
   LdpHopCountTlv: 255
   hopCount=255
   hopCount=0
   hopCount=7
   0103 0001 07
PathVector          0104 0008 0a000001 0a000002
   LdpPathVectorTlv: [10.0.0.1, 10.0.0.2]
   lsrIdNum=2
   lsrIdNum=0

   0104 0008 0a000001 0a000002
Status              0300 000a 8000000a 00000005 0400
   StatusTlv(shutdown): LdpLabelMapping:5 u(0), fu(0), e(1), efu(0)
   statusError=True statusForwardUnknown=False statusData=shutdown msgId=5 msgType=LdpLabelMapping
   statusError=False statusForwardUnknown=False statusData=success msgId=0 msgType=0
   statusData=4294967295 statusError=False
   0300 000a 3fffffff 00000005 0400
AddressList         0101 0006 0001 0a000001
   LdpAddressListTlv( ipv4, 1, 10.0.0.1 )
   family=ipv4 numAddress=1
   family=noFamily numAddress=0

   0101 0006 0001 0a000001
PwStatus            096a 0004 00000000
   LdpPwStatusTlv: 0x00000000
   pwForwarding=True pwNotForwarding=False localACIngrRecvFault=False localACEgrTransFault=False localPsnPwIngrRecvFault=False localPsnPwEgrTransFault=False
   pwForwarding=False pwNotForwarding=False localACIngrRecvFault=False localACEgrTransFault=False localPsnPwIngrRecvFault=False localPsnPwEgrTransFault=False

   096a 0004 00000000
)";

/// Whatever the type itself reads without a key.
std::string fieldsOf( Reflected const & parser ) {
   std::string all;
   for ( Vorn::VornAttr const * attr = parser.type().attributes; attr->name; ++attr ) {
      bool const isField = attr->owner == &parser.type() && !attr->keyed() &&
                           attr->kind() != Vorn::VornKind::function &&
                           std::string( "stringValue" ) != attr->name;
      if ( isField )
         all += std::string( all.empty() ? "" : " " ) + attr->name + "=" + parser.text( attr->name );
   }
   return all;
}

TEST( TlvParser, readsAndWritesOnlyWhereTheTlvIsWhole ) {
   std::istringstream lines( table );
   auto const next = [&] {
      std::string line;
      std::getline( lines, line );
      return line.starts_with( "   " ) ? line.substr( 3 ) : line;
   };
   next();
   int parsers = 0;
   for ( std::string head; !( head = next() ).empty(); ++parsers ) {
      std::string const type = "Ldp::Ldp" + head.substr( 0, head.find( ' ' ) ) + "TlvParser";
      SCOPED_TRACE( type );
      Hex const good = head.substr( 20 );
      std::string const text = "'" + next() + "'", fields = next(), nothing = next(), written = next(),
                        after = next();
      auto const over = [&]( Hex const & octets ) {
         return Reflected::made( type, tlvPkt( octets ), tlvAt );
      };
      auto const packet = tlvPkt( good );
      auto const parser = Reflected::made( type, packet, tlvAt );
      LdpStatusCode status = internalError;
      EXPECT_EQ( parser.op( "validate", GenericIf::write, &status, nullptr, nullptr ), GenericIf::done );
      EXPECT_EQ( status, success );
      EXPECT_EQ( parser.text( "stringValue" ), text );
      EXPECT_EQ( fieldsOf( parser ), fields );
      for ( std::size_t there = 0; there < octetNum( good ); ++there ) {
         auto const cut = over( first( there, good ) );
         EXPECT_EQ( cut.text( "stringValue" ), "''" );
         EXPECT_EQ( fieldsOf( cut ), nothing ) << there;
      }
      // A length that is wrong is told, whatever stands behind the TLV.
      Hex const empty = first( 2, good ) + "0000";
      std::string const refused = over( empty + repeat( 40, 1 ) ).text( "stringValue" );
      EXPECT_NE( refused, text );
      EXPECT_EQ( over( empty ).text( "stringValue" ), refused );
      std::istringstream writes( written );
      for ( std::string write; writes >> write; ) {
         auto const equals = write.find( '=' );
         EXPECT_EQ( parser.write( write.substr( 0, equals ), write.substr( equals + 1 ) ), GenericIf::done );
      }
      EXPECT_EQ( octetsOf( *packet ), hexOf( octets( after ) ) );
   }
   EXPECT_EQ( parsers, 13 );
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

TEST( TlvParser, pwStatusBits ) {
   for ( auto const & [word, bits] : { std::pair{ "00000020", "000000" }, // a bit without a name
                                       { "00000001", "010000" },
                                       { "00000002", "001000" },
                                       { "00000004", "000100" },
                                       { "00000008", "000010" },
                                       { "00000010", "000001" } } ) {
      std::string seen;
      std::istringstream fields( fieldsOf(
           Reflected::made( "Ldp::LdpPwStatusTlvParser", tlvPkt( tlv( pwStatusTlv, word ) ), tlvAt ) ) );
      for ( std::string field; fields >> field; )
         seen += field.ends_with( "=True" ) ? '1' : '0';
      EXPECT_EQ( seen, bits ) << word;
   }
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
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0005 0001 0a" ),
              "LdpAddressListTlv( Invalid TLV )" );
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 fffd 0001 0a" ),
              "LdpAddressListTlv( Invalid TLV )" );
   // How long a list may be follows from its family.
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0002" ), "LdpAddressListTlv( Invalid TLV )" );
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0006 00" ), "" );
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0007 0001" ), "LdpAddressListTlv( Invalid TLV )" );
   EXPECT_EQ( text( ldpAddressListTlvParserFactory, "0101 0006 0001" ), "" );
}

} // namespace
