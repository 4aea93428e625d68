// Messages as lines.
#include "reporters/Lines.h"

#include "messages/Fault.h"
#include "text/Words.h"

namespace LdpTool {

using namespace Ldp;

namespace {

// No conversion: a literal is no Vorn::String.
template< std::same_as< Vorn::String > Text >
Output & operator<<( Output & out, Text const & text ) {
   return out << text.view();
}

} // namespace

void LineReporter::onPdu( Pdu const & pdu ) {
   prefix_ = numberedOriginText( pdu.origin );
   prefix_ += ' ';
   prefix_ += pdu.pdu.ldpIdentifier().stringValue().view();
   prefix_ += ' ';
   heading_.clear();
}

// What a line begins with, up to the message id. Most messages of a PDU are of one type, so it is kept.
std::string const & LineReporter::heading( LdpMsgType type ) {
   if ( heading_.empty() || type != headingType_ ) {
      heading_ = prefix_;
      heading_ += nameText( type );
      heading_ += " id ";
      headingType_ = type;
   }
   return heading_;
}

void LineReporter::onMessage( Message const & message ) {
   LdpMsgParser const & parser = message.parser;
   out_ << heading( parser.type() ) << parser.msgId();
   if ( message.bad() ) {
      out_ << ( message.verdict == Verdict::wrong ? " BAD " : " NOT SUPPORTED HERE " )
           << message.judge().statusCode() << ": ";
      out_.escaped( message.judge().reason().view() ) << faultOf( message );
   } else if ( !parser.validMsg() ) {
      out_ << " of unknown type, to be ignored";
   } else {
      body( message );
   }
   out_ << '\n';
}

void LineReporter::onBadPdu( Pdu const & pdu ) {
   onPdu( pdu );
   out_ << prefix_ << "BAD PDU " << pdu.pdu.statusCode() << ": ";
   out_.escaped( pdu.pdu.reason().view() ) << faultOf( pdu ) << '\n';
}

void LineReporter::onFatalPdu( Pdu const & pdu, LdpPduGuardResult const & fatal ) {
   out_ << numberedOriginText( pdu.origin )
        << ( verdictOf( fatal ) == Verdict::wrong ? " FATAL PDU" : " NOT SUPPORTED HERE PDU" )
        << ", not parsed: " << fatalName( fatal ) << faultOf( pdu ) << '\n';
}

void LineReporter::body( Message const & message ) {
   switch ( message.parser.type() ) {
   case LdpHello: return hello( message.as< LdpHelloMsgParser >() );
   case LdpInit: return init( message.as< LdpInitMsgParser >() );
   case LdpCapability: return capabilities( *message.capability );
   case LdpNotification: return notification( message.as< LdpNotificationMsgParser >() );
   case LdpAddress: return addresses( message.as< LdpAddressMsgParser >().addressListTlv() );
   case LdpAddressWithdraw: return addresses( message.as< LdpAddressWithdrawMsgParser >().addressListTlv() );
   case LdpLabelMapping: return mapping( message.as< LdpLabelMappingMsgParser >() );
   case LdpLabelRequest: return request( message.as< LdpLabelRequestMsgParser >() );
   case LdpLabelAbortReq: return abort( message.as< LdpLabelAbortReqMsgParser >() );
   case LdpLabelWithdraw:
      return withdraw( message.parser, message.as< LdpLabelWithdrawMsgParser >().msgGenLabelTlv() );
   case LdpLabelRelease:
      return withdraw( message.parser, message.as< LdpLabelReleaseMsgParser >().msgGenLabelTlv() );
   case LdpKeepAlive: return;
   }
}

void LineReporter::hello( LdpHelloMsgParser const & hello ) {
   LdpCommonHelloTlv const & common = *hello.msgCommonHelloTlv();
   out_ << " holdTime " << common.holdTime();
   if ( common.targetedHello() ) out_ << " targeted";
   if ( common.requestSendTargetedHello() ) out_ << " requestTargeted";
   if ( auto const * tlv = hello.msgIpTransportTlv() ) out_ << " ipv4 " << tlv->ipAddr();
   if ( auto const * tlv = hello.msgIp6TransportTlv() ) out_ << " ipv6 " << tlv->ip6Addr().stringValue();
   if ( auto const * tlv = hello.msgConfigSeqTlv() ) out_ << " configSeqNum " << tlv->configSeqNum();
}

void LineReporter::init( LdpInitMsgParser const & init ) {
   LdpCommonSessionParamTlv const & session = *init.msgSessionParamTlv();
   out_ << " keepAlive " << session.keepAliveTime()
        << ( session.advDiscipline() ? " onDemand" : " unsolicited" );
   if ( session.loopDetect() ) out_ << " loopDetect pathVecLim " << session.pathVecLim();
   out_ << " maxPdu " << session.maxPduLength() << " receiver " << session.recvLdpIdentifier().stringValue();
   if ( auto const * ft = init.msgFtSessionTlv() ) {
      ( out_ << " ft " ).hex( ft->ftFlags().value(), 4 )
           << " reconnect " << ft->ftReconnectTimeout() << " recovery " << ft->ftRecoveryTime();
   }
   capabilities( init );
}

// Those that are withdrawn have a minus in front.
void LineReporter::capabilities( LdpCapabilityParser const & parser ) {
   for ( auto const & node : parser.capabilities() )
      out_ << ( node.value()->state() ? " " : " -" ) << node.key();
}

void LineReporter::notification( LdpNotificationMsgParser const & notification ) {
   status( notification.msgStatusTlv() );
   if ( notification.msgPwStatusTlv() ) {
      pwStatus( notification.msgPwStatusTlv() );
      fec( notification.ldpFecTlvParser().ptr() );
   }
}

void LineReporter::addresses( LdpAddressListTlv const * list ) {
   char const * separator = " ";
   for ( U16 i = 0; i < list->numAddress(); ++i ) {
      out_ << separator << list->address( i );
      separator = ", ";
   }
}

void LineReporter::mapping( LdpLabelMappingMsgParser const & mapping ) {
   fec( mapping.ldpFecTlvParser().ptr() );
   label( mapping.msgGenLabelTlv() );
   if ( auto const * tlv = mapping.msgReqMsgIdTlv() ) out_ << " reqMsgId " << tlv->reqMsgId();
   hopCount( mapping.msgHopCountTlv() );
   pathVector( mapping.msgPathVectorTlv() );
   pwStatus( mapping.msgPwStatusTlv() );
}

void LineReporter::request( LdpLabelRequestMsgParser const & request ) {
   fec( request.ldpFecTlvParser().ptr() );
   hopCount( request.msgHopCountTlv() );
   pathVector( request.msgPathVectorTlv() );
}

void LineReporter::abort( LdpLabelAbortReqMsgParser const & abort ) {
   fec( abort.ldpFecTlvParser().ptr() );
   out_ << " reqMsgId " << abort.msgReqMsgIdTlv()->reqMsgId();
}

void LineReporter::withdraw( LdpMsgParser const & parser, LdpGenLabelTlv const * label ) {
   fec( parser.ldpFecTlvParser().ptr() );
   this->label( label );
   status( parser.msgStatusTlv() );
}

void LineReporter::fec( LdpFecTlvParser const * parser ) {
   char const * separator = " ";
   for ( U32 i = 0; i < parser->fecElements(); ++i ) {
      out_ << separator;
      element( *parser->fecElement( i ) );
      separator = ", ";
   }
   // Only a Label Release is good with a FEC that is not.
   if ( !parser->valid() ) {
      out_ << ( verdictOf( *parser ) == Verdict::wrong ? " (BAD FEC " : " (FEC NOT SUPPORTED HERE " )
           << parser->statusCode() << ": ";
      out_.escaped( parser->reason().view() ) << ')';
   }
}

void LineReporter::element( LdpFecTlvElement const & element ) {
   switch ( element.type() ) {
   case wildcardElement: out_ << "wildcard"; return;
   case prefixElement: out_ << element.fwdEqvCls().prefix(); return;
   case hostAddrElement: out_ << "host " << element.fwdEqvCls().prefix(); return;
   case pwIdElement: return pseudowire( static_cast< LdpFecTlvPwIdElement const & >( element ) );
   case p2mpElement: {
      LdpP2mpFecElement const & value = element.p2mpFecElem();
      out_ << "p2mp root " << value.rootIp() << " opaque ";
      out_.hexOctets( value.opaqueStr().view() );
      return;
   }
   default: return; // the FEC parser keeps no other
   }
}

void LineReporter::pseudowire( LdpFecTlvPwIdElement const & element ) {
   PwFwdEqvClassInfo const & info = element.pwFwdEqvCls();
   LdpPwIntfParamFlags const sent = element.parsedIntfParams();
   out_ << "pwId " << info.pwId().value() << " pwType " << info.fwdEqvClass().pwTypeValue();
   if ( info.fwdEqvClass().controlWord() ) out_ << " controlWord";
   out_ << " groupId " << info.groupId().value();
   if ( sent.intfMtu() ) out_ << " mtu " << info.params().mtu();
   if ( sent.intfDesc() ) ( out_ << " description \"" ).escaped( info.intfDescription().view() ) << '"';
   if ( sent.requestedVlanId() ) out_ << " requestedVlan " << info.requestedVlanId().value();
   if ( sent.fragIndicator() ) out_ << " fragmentation " << U32( info.params().fragCapable() );
   if ( sent.vccvParam() ) {
      ( out_ << " vccvCc " ).hex( info.params().vccvCcTypes(), 2 );
      ( out_ << " vccvCv " ).hex( info.params().vccvCvTypes().value(), 2 );
   }
}

void LineReporter::label( LdpGenLabelTlv const * label ) {
   if ( !label ) return;
   out_ << " label ";
   if ( char const * word = reservedLabelWord( label->label() ) ) {
      out_ << word;
   } else {
      out_ << label->label().value();
   }
}

void LineReporter::hopCount( LdpHopCountTlv const * hopCount ) {
   if ( hopCount ) out_ << " hopCount " << hopCount->hopCount();
}

void LineReporter::pathVector( LdpPathVectorTlv const * pathVector ) {
   if ( !pathVector ) return;
   out_ << " pathVector";
   for ( U32 i = 0; i < pathVector->lsrIdNum(); ++i )
      out_ << ' ' << pathVector->lsrId( i );
}

void LineReporter::status( LdpStatusTlv const * status ) {
   if ( !status ) return;
   out_ << " status " << status->statusData();
   if ( status->statusError() ) out_ << " error";
   if ( status->statusForwardUnknown() ) out_ << " forward";
   if ( status->msgId() || status->msgType() ) {
      out_ << " for " << status->msgType() << " id " << status->msgId();
   }
}

void LineReporter::pwStatus( LdpPwStatusTlv const * pwStatus ) {
   if ( !pwStatus ) return;
   U32 const flags = pwStatus->pwStatusField().value();
   ( out_ << " pwStatus " ).hex( flags, 8 ) << " (" << pwStatusText( flags ) << ')';
}

} // namespace LdpTool
