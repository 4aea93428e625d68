#include "ReadValue.h"

namespace Fuzz {

using namespace Ldp;

namespace {

U64 volatile sunk;

void readFields( Sink & sink, LdpTlvHdr const & view ) {
   using View = LdpTlvHdr;
   readGetters( sink, view, &View::tlvTypeField, &View::lengthNbo, &View::unknown, &View::forwardUnknown,
                &View::type, &View::length, &View::totalLength, &View::validateTlvHdr );
   LdpTlvTypeField const field = view.tlvTypeField();
   readGetters( sink, field, &LdpTlvTypeField::unknown, &LdpTlvTypeField::forwardUnknown,
                &LdpTlvTypeField::type );
}

void readFields( Sink & sink, LdpCommonHelloTlv const & view ) {
   using View = LdpCommonHelloTlv;
   readGetters( sink, view, &View::holdTimeNbo, &View::targetHelloField, &View::holdTime,
                &View::targetedHello, &View::requestSendTargetedHello );
   sink.take( view.targetHelloField().reserved() );
}

void readFields( Sink & sink, LdpIpTransportAddrTlv const & view ) { read( sink, view.ipAddr() ); }

void readFields( Sink & sink, LdpConfigSeqNumTlv const & view ) {
   readGetters( sink, view, &LdpConfigSeqNumTlv::configSeqNumNbo, &LdpConfigSeqNumTlv::configSeqNum );
}

void readFields( Sink & sink, LdpIp6TransportAddrTlv const & view ) { read( sink, view.ip6Addr() ); }

void readFields( Sink & sink, LdpCommonSessionParamTlv const & view ) {
   using View = LdpCommonSessionParamTlv;
   readGetters( sink, view, &View::protocolVersionNbo, &View::keepAliveTimeNbo, &View::adField,
                &View::maxPduLengthNbo, &View::protocolVersion, &View::keepAliveTime, &View::advDiscipline,
                &View::loopDetect, &View::pathVecLim, &View::maxPduLength, &View::recvLdpIdentifier );
   sink.take( view.adField().reserved() );
}

void readFields( Sink & sink, LdpFtSessionTlv const & view ) {
   using View = LdpFtSessionTlv;
   using Flags = LdpFtSessionFlags;
   readGetters( sink, view, &View::ftFlags, &View::reserved, &View::ftReconnectTimeout, &View::ftRecoveryTime,
                &View::learnFromNetwork );
   readGetters( sink, view.ftFlags(), &Flags::learnFromNetwork, &Flags::checkPoint, &Flags::allLabelProt,
                &Flags::saveState, &Flags::reserved, &Flags::reconnect );
}

void readFields( Sink & sink, LdpCapabilityParameterTlv const & view ) {
   readGetters( sink, view, &LdpCapabilityParameterTlv::stateBit, &LdpCapabilityParameterTlv::state );
   sink.take( view.stateBit().reserved() );
}

void readFields( Sink & sink, LdpGenLabelTlv const & view ) {
   readGetters( sink, view, &LdpGenLabelTlv::labelField, &LdpGenLabelTlv::label );
   sink.take( view.labelField().reserved() );
}

void readFields( Sink & sink, LdpLabelReqMsgIdTlv const & view ) {
   readGetters( sink, view, &LdpLabelReqMsgIdTlv::reqMsgIdNbo, &LdpLabelReqMsgIdTlv::reqMsgId );
}

void readFields( Sink & sink, LdpHopCountTlv const & view ) { sink.take( view.hopCount() ); }

void readFields( Sink & sink, LdpPathVectorTlv const & view ) {
   U32 const num = view.lsrIdNum();
   for ( U32 i = 0; i <= num; ++i ) {
      read( sink, view.lsrId( i ) );
   }
   if ( num ) VORN_ASSERT( view.lsrIdPosition( view.lsrId( num - 1 ) ) != 0 );
}

void readFields( Sink & sink, LdpStatusTlv const & view ) {
   using View = LdpStatusTlv;
   using Word = LdpStatusTlvStatusCode;
   readGetters( sink, view, &View::statusCode, &View::msgIdNbo, &View::msgTypeNbo, &View::statusData,
                &View::statusForwardUnknown, &View::statusError, &View::msgId, &View::msgType );
   readGetters( sink, view.statusCode(), &Word::statusDataNbo, &Word::forwardUnknown, &Word::error );
   sink.take( sessionStateStrForStatusCode( view.statusData() ) );
}

void readFields( Sink & sink, LdpAddressListTlv const & view ) {
   readGetters( sink, view, &LdpAddressListTlv::addressFamilyNbo, &LdpAddressListTlv::family );
   for ( U16 i = 0; i < view.numAddress(); ++i ) {
      read( sink, view.address( i ) );
   }
}

void readFields( Sink & sink, LdpPwStatusTlv const & view ) {
   using Word = LdpPwStatusField;
   read( sink, view.pwStatusField() );
   readGetters( sink, view.pwStatusField(), &Word::pwNotForwarding, &Word::localACIngrRecvFault,
                &Word::localACEgrTransFault, &Word::localPsnPwIngrRecvFault, &Word::localPsnPwEgrTransFault,
                &Word::pwForwarding, &Word::flags );
}

// A view that a message parser hands out; null if it found no such TLV.
template< class View >
void readView( Sink & sink, View const * view ) {
   if ( !view ) return;
   readFields( sink, static_cast< LdpTlvHdr const & >( *view ) );
   readFields( sink, *view );
   if constexpr ( requires { view->validate(); } ) {
      sink.take( view->validate() );
      sink.take( view->stringValue() );
   }
}

// One TLV through its own parser.
template< class Parser, class... Getters >
void readTlvBy( Sink & sink, Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset, Getters... getters ) {
   Vorn::Ptr< Parser const > const parser = Vorn::newObject< Parser >( pkt, offset );
   readGetters( sink, *parser, &Parser::unknown, &Parser::forwardUnknown, &Parser::type, &Parser::length );
   sink.take( parser->validate() );
   sink.take( parser->stringValue() );
   readGetters( sink, *parser, getters... );
   readView( sink, parser->header2() );
}

void readTlv( Sink & sink, Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset, LdpTlvType type ) {
   switch ( type ) {
   case commonHelloTlv: {
      using Parser = LdpCommonHelloTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::holdTime, &Parser::targetedHello,
                                  &Parser::requestSendTargetedHello );
   }
   case ipv4TransportAddrTlv: {
      using Parser = LdpIpTransportAddrTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::ipAddr );
   }
   case configSeqNumTlv: {
      using Parser = LdpConfigSeqNumTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::configSeqNum );
   }
   case ipv6TransportAddrTlv: {
      using Parser = LdpIp6TransportAddrTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::ip6Addr );
   }
   case commonSessionParamTlv: {
      using Parser = LdpCommonSessionParamTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::protocolVersion, &Parser::keepAliveTime,
                                  &Parser::advDiscipline, &Parser::loopDetect, &Parser::pathVecLim,
                                  &Parser::maxPduLength, &Parser::recvLdpIdentifier );
   }
   case ftSessionTlv: {
      using Parser = LdpFtSessionTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::ftRecoveryTime, &Parser::ftReconnectTimeout,
                                  &Parser::learnFromNetwork, &Parser::ftFlags );
   }
   case genLabelTlv: {
      using Parser = LdpGenLabelTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::label );
   }
   case labelReqMsgIdTlv: {
      using Parser = LdpLabelReqMsgIdTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::reqMsgId );
   }
   case hopCountTlv: {
      using Parser = LdpHopCountTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::hopCount );
   }
   case pathVectorTlv: {
      using Parser = LdpPathVectorTlvParser;
      Vorn::Ptr< Parser > const parser = ldpPathVectorTlvParserFactory( pkt, offset );
      read( sink, parser->lsrId( 0 ) );
      sink.take( parser->lsrIdPosition( parser->lsrId( 0 ) ) );
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::lsrIdNum );
   }
   case statusTlv: {
      using Parser = LdpStatusTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::statusError, &Parser::statusForwardUnknown,
                                  &Parser::statusData, &Parser::msgId, &Parser::msgType );
   }
   case addrListTlv: {
      using Parser = LdpAddressListTlvParser;
      Vorn::Ptr< Parser > const parser = ldpAddressListTlvParserFactory( pkt, offset );
      if ( U16 const num = parser->numAddress() ) read( sink, parser->address( U16( num - 1 ) ) );
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::family, &Parser::numAddress );
   }
   case pwStatusTlv: {
      using Parser = LdpPwStatusTlvParser;
      return readTlvBy< Parser >( sink, pkt, offset, &Parser::pwStatusField, &Parser::pwForwarding,
                                  &Parser::pwNotForwarding, &Parser::localACIngrRecvFault,
                                  &Parser::localACEgrTransFault, &Parser::localPsnPwIngrRecvFault,
                                  &Parser::localPsnPwEgrTransFault );
   }
   default: {
      using Parser = LdpTlvParser;
      Vorn::Ptr< Parser const > const parser = ldpTlvParserFactory( pkt, offset );
      readGetters( sink, *parser, &Parser::unknown, &Parser::forwardUnknown, &Parser::type, &Parser::length );
      readFields( sink, *parser->header() );
   }
   }
}

// What the parsers of one type of message add to the base. `views` are the getters of its views.
template< class Parser, class... Views >
void readAs( Sink & sink, LdpMsgParser const & base, Views... views ) {
   auto const * parser = dynamic_cast< Parser const * >( &base );
   if ( !parser ) return;
   VORN_ASSERT( parser->initialized() );
   if ( parser->validMsg() ) ( readView( sink, std::invoke( views, *parser ) ), ... );
}

void readCapabilities( Sink & sink, LdpMsgParser const & base ) {
   auto const * parser = dynamic_cast< LdpCapabilityParser const * >( &base );
   if ( !parser || !parser->validMsg() ) return;
   for ( auto const & capability : parser->capabilities() ) {
      read( sink, capability.key() );
      VORN_ASSERT( parser->capabilitiesHas( capability.key() ) );
      VORN_ASSERT( parser->capabilities( capability.key() ) == capability.value() );
      readView( sink, capability.value() );
   }
}

} // namespace

Sink::~Sink() { sunk = sum_; }

void readMessage( Sink & sink, LdpMsgParser const & parser ) {
   using Base = LdpMsgParser;
   readGetters( sink, parser, &Base::unknown, &Base::type, &Base::msgId, &Base::length, &Base::totalLength,
                &Base::statusCode, &Base::reason, &Base::tlvNum );
   sink.take( parser.stringValue() );
   bool const isInit = dynamic_cast< LdpInitMsgParser const * >( &parser );
   VORN_ASSERT( parser.validMsg() == ( parser.reason() == ( isInit ? "success" : "" ) ) );
   if ( Vorn::Ptr< LdpFecTlvParser > const fec = parser.ldpFecTlvParser() ) readFecTlv( sink, *fec );
   LdpTlvGroupParser const & tlvs = *parser.tlvGroupParser();
   if ( tlvs.valid() ) {
      for ( U32 i = 0; i < parser.tlvNum(); ++i ) {
         U32 const offset = parser.tlvOffset( i );
         readTlv( sink, parser.pkt(), offset, ldpTlvParserFactory( parser.pkt(), offset )->type() );
      }
   }
   if ( parser.validMsg() ) {
      LdpMsgHdr const & hdr = *parser.msgHdr();
      readGetters( sink, hdr, &LdpMsgHdr::msgUbitAndTypeField, &LdpMsgHdr::lengthNbo, &LdpMsgHdr::msgIdNbo,
                   &LdpMsgHdr::unknown, &LdpMsgHdr::type, &LdpMsgHdr::length, &LdpMsgHdr::totalLength,
                   &LdpMsgHdr::msgId );
      if ( parser.msgFecTlv() ) readFields( sink, *parser.msgFecTlv() );
      readView( sink, parser.msgStatusTlv() );
   }
   readCapabilities( sink, parser );
   using Hello = LdpHelloMsgParser;
   readAs< Hello >( sink, parser, &Hello::msgCommonHelloTlv, &Hello::msgIpTransportTlv,
                    &Hello::msgIp6TransportTlv, &Hello::msgConfigSeqTlv );
   using Init = LdpInitMsgParser;
   readAs< Init >( sink, parser, &Init::msgSessionParamTlv, &Init::msgFtSessionTlv );
   readAs< LdpCapabilityMsgParser >( sink, parser );
   readAs< LdpNotificationMsgParser >( sink, parser, &LdpNotificationMsgParser::msgPwStatusTlv );
   readAs< LdpAddressMsgParser >( sink, parser, &LdpAddressMsgParser::addressListTlv );
   readAs< LdpAddressWithdrawMsgParser >( sink, parser, &LdpAddressWithdrawMsgParser::addressListTlv );
   using Mapping = LdpLabelMappingMsgParser;
   readAs< Mapping >( sink, parser, &Mapping::msgGenLabelTlv, &Mapping::msgReqMsgIdTlv,
                      &Mapping::msgHopCountTlv, &Mapping::msgPathVectorTlv, &Mapping::msgPwStatusTlv );
   using Request = LdpLabelRequestMsgParser;
   readAs< Request >( sink, parser, &Request::msgHopCountTlv, &Request::msgPathVectorTlv );
   readAs< LdpLabelWithdrawMsgParser >( sink, parser, &LdpLabelWithdrawMsgParser::msgGenLabelTlv );
   readAs< LdpLabelReleaseMsgParser >( sink, parser, &LdpLabelReleaseMsgParser::msgGenLabelTlv );
   readAs< LdpLabelAbortReqMsgParser >( sink, parser, &LdpLabelAbortReqMsgParser::msgReqMsgIdTlv );
}

void readPdu( Sink & sink, Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   using Parser = LdpPduParser;
   Vorn::Ptr< Parser > const parser = ldpPduParserFactory( pkt, offset );
   readGetters( sink, *parser, &Parser::version, &Parser::length, &Parser::totalLength,
                &Parser::ldpIdentifier, &Parser::statusCode, &Parser::reason, &Parser::initialized );
   VORN_ASSERT( parser->validLdpPdu() == parser->reason().empty() );
   sink.take( parser->stringValue() );
   if ( !parser->validLdpPdu() ) return;
   LdpPduHdr const & hdr = *parser->header();
   readGetters( sink, hdr, &LdpPduHdr::versionNbo, &LdpPduHdr::lengthNbo, &LdpPduHdr::ldpIdentifier,
                &LdpPduHdr::version, &LdpPduHdr::length, &LdpPduHdr::totalLength, &LdpPduHdr::stringValue );
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
