#pragma once

// What is said of each message and PDU, field by field and in one order, for whichever writer: the JSON and
// all of the text have the same fields.

#include "messages/Fault.h"
#include "text/Words.h"

namespace LdpTool::Shape {

using namespace Ldp;

template< class Writer >
void writeOrigin( Writer & out, Origin const & origin ) {
   Arrival const & arrival = origin.arrival;
   if ( !origin.flow ) return out.member( origin.unit, arrival.frame );
   Flow const & flow = *origin.flow;
   out.member( "frame", arrival.frame );
   out.key( "time" );
   out.time( arrival.seconds, arrival.nanoseconds );
   out.member( "src", addressOf( flow, flow.source ) );
   out.member( "dst", addressOf( flow, flow.destination ) );
   out.member( "sport", flow.sourcePort );
   out.member( "dport", flow.destinationPort );
   out.member( "proto", flow.protocol == protocolTcp ? "tcp" : "udp" );
}

// Where the PDU comes from, and its header as far as it is there.
template< class Writer >
void writePdu( Writer & out, Pdu const & pdu ) {
   LdpPduHdr header;
   if ( pdu.octets.size() >= sizeof header ) {
      header = *reinterpret_cast< LdpPduHdr const * >( pdu.octets.data() );
   }
   writeOrigin( out, pdu.origin );
   out.member( "lsrId", Lumo::IpAddr( header.ldpIdentifier().lsrId() ) );
   out.member( "labelSpace", header.ldpIdentifier().lblSpace() );
   out.member( "pduLength", header.length() );
}

template< class Writer >
void writePduVerdict( Writer & out, Pdu const & pdu ) {
   out.member( "pduStatus", pdu.pdu.statusCode() );
   out.member( "pduReason", pdu.pdu.reason() );
}

template< class Writer >
void writeHello( Writer & out, LdpHelloMsgParser const & hello ) {
   LdpCommonHelloTlv const & common = *hello.msgCommonHelloTlv();
   out.object();
   out.member( "holdTime", common.holdTime() );
   out.member( "targeted", common.targetedHello() );
   out.member( "requestTargeted", common.requestSendTargetedHello() );
   if ( auto const * tlv = hello.msgIpTransportTlv() ) out.member( "ipv4", tlv->ipAddr() );
   if ( auto const * tlv = hello.msgIp6TransportTlv() )
      out.member( "ipv6", Lumo::IpGenAddr( tlv->ip6Addr() ) );
   if ( auto const * tlv = hello.msgConfigSeqTlv() ) out.member( "configSeqNum", tlv->configSeqNum() );
   out.endObject();
}

template< class Writer >
void writeCapabilities( Writer & out, LdpCapabilityParser const & parser ) {
   out.key( "capabilities" );
   out.array();
   for ( auto const & node : parser.capabilities() ) {
      out.object();
      out.typeNumber( "type", node.key() );
      out.member( "name", node.key() );
      out.member( "state", node.value()->state() );
      out.endObject();
   }
   out.endArray();
}

template< class Writer >
void writeInit( Writer & out, LdpInitMsgParser const & init ) {
   LdpCommonSessionParamTlv const & session = *init.msgSessionParamTlv();
   out.object();
   out.member( "version", session.protocolVersion() );
   out.member( "keepAlive", session.keepAliveTime() );
   out.member( "advDiscipline", session.advDiscipline() );
   out.member( "loopDetect", session.loopDetect() );
   out.member( "pathVecLim", session.pathVecLim() );
   out.member( "maxPdu", session.maxPduLength() );
   out.member( "receiver", session.recvLdpIdentifier().stringValue() );
   writeCapabilities( out, init );
   if ( auto const * ft = init.msgFtSessionTlv() ) {
      out.key( "ft" );
      out.object();
      out.member( "flags", ft->ftFlags().value() );
      out.member( "reconnect", ft->ftReconnectTimeout() );
      out.member( "recovery", ft->ftRecoveryTime() );
      out.endObject();
   }
   out.endObject();
}

template< class Writer >
void writeCapability( Writer & out, LdpCapabilityMsgParser const & capability, bool texts ) {
   out.object();
   out.member( "valid", capability.validMsg() );
   out.member( "status", capability.statusCode() );
   out.member( "reason", capability.reason() );
   if ( texts ) out.member( "text", capability.stringValue() );
   writeCapabilities( out, capability );
   out.endObject();
}

template< class Writer >
void writeStatus( Writer & out, LdpStatusTlv const & status ) {
   out.member( "error", status.statusError() );
   out.member( "forward", status.statusForwardUnknown() );
   out.member( "statusData", U32( status.statusData() ) );
   out.member( "statusName", status.statusData() );
   out.member( "refMsgId", status.msgId() );
   out.typeNumber( "refMsgType", status.msgType() );
}

template< class Writer >
void writePwStatus( Writer & out, LdpPwStatusTlv const * tlv ) {
   if ( tlv ) out.member( "pwStatus", tlv->pwStatusField().value() );
}

template< class Writer >
void writeNotification( Writer & out, LdpNotificationMsgParser const & notification ) {
   out.object();
   writeStatus( out, *notification.msgStatusTlv() );
   writePwStatus( out, notification.msgPwStatusTlv() );
   out.endObject();
}

template< class Writer >
void writeAddresses( Writer & out, LdpAddressListTlv const & tlv ) {
   out.object();
   out.member( "family", tlv.family() );
   out.key( "list" );
   out.array();
   for ( U16 i = 0; i < tlv.numAddress(); ++i )
      out.value( tlv.address( i ) );
   out.endArray();
   out.endObject();
}

template< class Writer >
void writePwId( Writer & out, LdpFecTlvPwIdElement const & element ) {
   PwFwdEqvClassInfo const & info = element.pwFwdEqvCls();
   LdpPwIntfParamFlags const sent = element.parsedIntfParams();
   out.member( "type", "pwId" );
   if ( info.pwId().value() ) out.member( "pwId", info.pwId().value() ); // 0: the short form, which has none
   out.member( "pwType", info.fwdEqvClass().pwTypeValue() );
   out.member( "controlWord", info.fwdEqvClass().controlWord() );
   out.member( "groupId", info.groupId().value() );
   if ( sent.intfMtu() ) out.member( "mtu", info.params().mtu() );
   if ( sent.intfDesc() ) out.member( "description", info.intfDescription() );
   if ( sent.requestedVlanId() ) out.member( "requestedVlan", info.requestedVlanId().value() );
   if ( sent.fragIndicator() ) out.member( "fragmentation", info.params().fragCapable() );
   if ( sent.vccvParam() ) {
      out.member( "vccvCc", info.params().vccvCcTypes() );
      out.member( "vccvCv", info.params().vccvCvTypes().value() );
   }
}

template< class Writer >
void writeElement( Writer & out, LdpFecTlvElement const & element ) {
   out.object();
   switch ( element.type() ) {
   case wildcardElement: out.member( "type", "wildcard" ); break;
   case prefixElement:
   case hostAddrElement:
      out.member( "type", element.type() == prefixElement ? "prefix" : "host" );
      out.member( "prefix", element.fwdEqvCls().prefix() );
      break;
   case p2mpElement:
      out.member( "type", "p2mp" );
      out.member( "root", element.p2mpFecElem().rootIp() );
      out.key( "opaque" );
      out.hex( element.p2mpFecElem().opaqueStr().view() );
      break;
   case pwIdElement: writePwId( out, static_cast< LdpFecTlvPwIdElement const & >( element ) ); break;
   default: break; // the FEC parser keeps no other
   }
   out.endObject();
}

template< class Writer >
void writeFec( Writer & out, LdpFecTlvParser const & fec ) {
   out.object();
   out.member( "valid", fec.valid() );
   out.member( "status", fec.statusCode() );
   out.member( "reason", fec.reason() );
   out.key( "elements" );
   out.array();
   for ( U32 i = 0; i < fec.fecElements(); ++i )
      writeElement( out, *fec.fecElement( i ) );
   out.endArray();
   out.endObject();
}

template< class Writer >
void writePathVector( Writer & out, LdpPathVectorTlv const & tlv ) {
   out.key( "pathVector" );
   out.array();
   for ( U32 i = 0; i < tlv.lsrIdNum(); ++i )
      out.value( tlv.lsrId( i ) );
   out.endArray();
}

// The views of the label messages, each of which only some of them have.
template< class Writer, class Parser >
void writeLabelViews( Writer & out, Parser const & parser ) {
   if constexpr ( requires { parser.msgGenLabelTlv(); } ) {
      if ( auto const * tlv = parser.msgGenLabelTlv() ) out.member( "label", tlv->label().value() );
   }
   if constexpr ( requires { parser.msgHopCountTlv(); } ) {
      if ( auto const * tlv = parser.msgHopCountTlv() ) out.member( "hopCount", tlv->hopCount() );
   }
   if constexpr ( requires { parser.msgPathVectorTlv(); } ) {
      if ( auto const * tlv = parser.msgPathVectorTlv() ) writePathVector( out, *tlv );
   }
   if constexpr ( requires { parser.msgReqMsgIdTlv(); } ) {
      if ( auto const * tlv = parser.msgReqMsgIdTlv() ) out.member( "reqMsgId", tlv->reqMsgId() );
   }
   if constexpr ( requires { parser.msgPwStatusTlv(); } ) writePwStatus( out, parser.msgPwStatusTlv() );
   if ( auto const * tlv = parser.msgStatusTlv() ) {
      out.key( "statusTlv" );
      out.object();
      writeStatus( out, *tlv );
      out.endObject();
   }
}

// What a valid message holds, by its type.
template< class Writer >
void writeBody( Writer & out, Message const & message, bool texts ) {
   switch ( message.parser.type() ) {
   case LdpHello: out.key( "hello" ); return writeHello( out, message.as< LdpHelloMsgParser >() );
   case LdpInit: out.key( "init" ); return writeInit( out, message.as< LdpInitMsgParser >() );
   case LdpCapability: out.key( "capability" ); return writeCapability( out, *message.capability, texts );
   case LdpNotification:
      out.key( "notification" );
      return writeNotification( out, message.as< LdpNotificationMsgParser >() );
   case LdpAddress:
      out.key( "addresses" );
      return writeAddresses( out, *message.as< LdpAddressMsgParser >().addressListTlv() );
   case LdpAddressWithdraw:
      out.key( "addresses" );
      return writeAddresses( out, *message.as< LdpAddressWithdrawMsgParser >().addressListTlv() );
   case LdpLabelMapping: return writeLabelViews( out, message.as< LdpLabelMappingMsgParser >() );
   case LdpLabelRequest: return writeLabelViews( out, message.as< LdpLabelRequestMsgParser >() );
   case LdpLabelWithdraw: return writeLabelViews( out, message.as< LdpLabelWithdrawMsgParser >() );
   case LdpLabelRelease: return writeLabelViews( out, message.as< LdpLabelReleaseMsgParser >() );
   case LdpLabelAbortReq: return writeLabelViews( out, message.as< LdpLabelAbortReqMsgParser >() );
   case LdpKeepAlive: return;
   }
}

template< class Writer >
void writeFault( Writer & out, Fault const & fault, Verdict verdict ) {
   auto const hex = [&]( char const * name, Octets octets ) {
      out.key( name );
      out.hex( { reinterpret_cast< char const * >( octets.data() ), octets.size() } );
   };
   out.key( "fault" );
   out.object();
   out.member( "supported", verdict != Verdict::unsupported );
   out.member( "offset", fault.offset );
   if ( !fault.ofPdu ) out.member( "messageOffset", fault.begin );
   out.member( "whole", fault.whole() );
   if ( fault.tlv ) {
      out.typeNumber( "tlv", *fault.tlv );
      out.member( "tlvName", *fault.tlv );
   }
   if ( fault.element ) {
      out.member( "element", U32( *fault.element ) );
      out.member( "elementName", *fault.element );
   }
   hex( "before", fault.before );
   hex( "octets", fault.at );
   out.endObject();
}

/// All of a PDU whose messages follow.
template< class Writer >
void writeGoodPdu( Writer & out, Pdu const & pdu ) {
   writePdu( out, pdu );
   writePduVerdict( out, pdu );
}

/// All of a PDU that is bad as a whole.
template< class Writer >
void writeBadPdu( Writer & out, Pdu const & pdu, bool texts ) {
   writeGoodPdu( out, pdu );
   out.member( "valid", false );
   if ( texts ) out.member( "text", badPduText( pdu.pdu ) );
   writeFault( out, faultOf( pdu ), Verdict::wrong );
}

/// All of a PDU that must not be parsed.
template< class Writer >
void writeFatalPdu( Writer & out, Pdu const & pdu, LdpPduGuardResult const & fatal ) {
   writePdu( out, pdu );
   out.member( "valid", false );
   out.member( "fatal", fatalName( fatal ) );
   out.member( "fatalOffset", fatal.offset );
   writeFault( out, faultOf( pdu ), verdictOf( fatal ) );
}

/// All of a message, but its PDU.
template< class Writer >
void writeMessage( Writer & out, Message const & message, bool texts ) {
   LdpMsgParser const & parser = message.parser;
   out.member( "type", parser.type() );
   out.typeNumber( "typeValue", parser.type() );
   out.member( "unknownBit", parser.unknown() );
   out.member( "msgId", parser.msgId() );
   out.member( "msgLength", parser.length() );
   out.member( "status", parser.statusCode() );
   out.member( "reason", parser.reason() );
   out.member( "valid", parser.validMsg() );
   if ( texts ) out.member( "text", parser.stringValue() );
   // The FEC parser owns what it found; the views are to be looked at only in a message that is valid.
   if ( auto const & fec = parser.ldpFecTlvParser() ) {
      out.key( "fec" );
      writeFec( out, *fec );
   }
   if ( parser.validMsg() ) writeBody( out, message, texts );
   if ( message.bad() ) writeFault( out, faultOf( message ), message.verdict );
}

} // namespace LdpTool::Shape
