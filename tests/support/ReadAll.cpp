// Messages and PDUs, read whole.
#include "support/ReadAll.h"

#include "Ldp/LdpUtils.h"

#include "Vorn/GenericIf.h"

namespace Fuzz {

using namespace Ldp;

namespace {

U64 volatile sunk;

// One TLV through its own parser.
template< class Parser >
void readTlvBy( Sink & sink, Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   Vorn::Ptr< Parser > const parser = Vorn::newObject< Parser >( pkt, offset );
   readObject( sink, *parser );
   if constexpr ( requires { parser->validate(); } ) {
      sink.take( parser->validate() );
      if ( auto const * const view = parser->header2() ) readView( sink, *view );
   }
}

void readTlv( Sink & sink, Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset, LdpTlvType type ) {
   switch ( type ) {
   case commonHelloTlv: return readTlvBy< LdpCommonHelloTlvParser >( sink, pkt, offset );
   case ipv4TransportAddrTlv: return readTlvBy< LdpIpTransportAddrTlvParser >( sink, pkt, offset );
   case configSeqNumTlv: return readTlvBy< LdpConfigSeqNumTlvParser >( sink, pkt, offset );
   case ipv6TransportAddrTlv: return readTlvBy< LdpIp6TransportAddrTlvParser >( sink, pkt, offset );
   case commonSessionParamTlv: return readTlvBy< LdpCommonSessionParamTlvParser >( sink, pkt, offset );
   case ftSessionTlv: return readTlvBy< LdpFtSessionTlvParser >( sink, pkt, offset );
   case genLabelTlv: return readTlvBy< LdpGenLabelTlvParser >( sink, pkt, offset );
   case labelReqMsgIdTlv: return readTlvBy< LdpLabelReqMsgIdTlvParser >( sink, pkt, offset );
   case hopCountTlv: return readTlvBy< LdpHopCountTlvParser >( sink, pkt, offset );
   case pathVectorTlv: {
      Vorn::Ptr< LdpPathVectorTlvParser > const parser = ldpPathVectorTlvParserFactory( pkt, offset );
      U32 const num = parser->lsrIdNum();
      VORN_ASSERT( parser->lsrId( num ) == Lumo::IpAddr() );
      if ( num ) VORN_ASSERT( parser->lsrIdPosition( parser->lsrId( num - 1 ) ) != 0 );
      return readTlvBy< LdpPathVectorTlvParser >( sink, pkt, offset );
   }
   case statusTlv: return readTlvBy< LdpStatusTlvParser >( sink, pkt, offset );
   case addrListTlv: return readTlvBy< LdpAddressListTlvParser >( sink, pkt, offset );
   case pwStatusTlv: return readTlvBy< LdpPwStatusTlvParser >( sink, pkt, offset );
   default: return readTlvBy< LdpTlvParser >( sink, pkt, offset );
   }
}

void readCapabilities( LdpMsgParser const & base ) {
   auto const * parser = dynamic_cast< LdpCapabilityParser const * >( &base );
   if ( !parser ) return;
   for ( auto const & capability : parser->capabilities() ) {
      VORN_ASSERT( parser->capabilitiesHas( capability.key() ) );
      VORN_ASSERT( parser->capabilities( capability.key() ) == capability.value() );
   }
}

} // namespace

Sink::~Sink() { sunk = sum_; }

void readMessage( Sink & sink, LdpMsgParser const & parser ) {
   readObject( sink, parser );
   bool const isInit = dynamic_cast< LdpInitMsgParser const * >( &parser );
   VORN_ASSERT( parser.validMsg() == ( parser.reason() == ( isInit ? "success" : "" ) ) );
   if ( auto const * initialized = parser.fwkType()->attribute( "initialized" ) ) {
      VORN_ASSERT( Vorn::GenericIf::attributeText( &parser, *parser.fwkType(), *initialized ) == "True" );
   }
   if ( Vorn::Ptr< LdpFecTlvParser > const fec = parser.ldpFecTlvParser() ) readFecTlv( sink, *fec );
   LdpTlvGroupParser const & tlvs = *parser.tlvGroupParser();
   if ( tlvs.valid() ) {
      for ( U32 i = 0; i < parser.tlvNum(); ++i ) {
         U32 const offset = parser.tlvOffset( i );
         readTlv( sink, parser.pkt(), offset, ldpTlvParserFactory( parser.pkt(), offset )->type() );
      }
   }
   if ( parser.validMsg() && parser.msgStatusTlv() ) {
      sink.take( sessionStateStrForStatusCode( parser.msgStatusTlv()->statusData() ) );
   }
   readCapabilities( parser );
}

void readPdu( Sink & sink, Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   Vorn::Ptr< LdpPduParser > const parser = ldpPduParserFactory( pkt, offset );
   readObject( sink, *parser );
   VORN_ASSERT( parser->validLdpPdu() == parser->reason().empty() );
   if ( !parser->validLdpPdu() ) return;
   for ( U32 i = 0; i < parser->messageNum(); ++i ) {
      U32 const at = parser->messageOffset( i );
      Vorn::Ptr< LdpMsgParser > const message = ldpMsgParserGet( pkt, at );
      readMessage( sink, *message );
      if ( message->validMsg() && message->type() == LdpCapability ) {
         readMessage( sink, *ldpCapabilityMsgParserFactory( pkt, at ) );
      }
   }
}

} // namespace Fuzz
