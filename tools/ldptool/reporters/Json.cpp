// Messages as JSON, one object a line.
#include "reporters/Json.h"

#include "messages/Fault.h"

namespace LdpTool {

using namespace Ldp;

namespace {

void writeOrigin( JsonWriter & json, Origin const & origin ) {
   Arrival const & arrival = origin.arrival;
   if ( !origin.flow ) return json.member( "line", arrival.frame );
   Flow const & flow = *origin.flow;
   json.member( "frame", arrival.frame );
   json.key( "time" );
   json.time( arrival.seconds, arrival.nanoseconds );
   json.member( "src", addressText( flow, flow.source ) );
   json.member( "dst", addressText( flow, flow.destination ) );
   json.member( "sport", flow.sourcePort );
   json.member( "dport", flow.destinationPort );
   json.member( "proto", flow.protocol == protocolTcp ? "tcp" : "udp" );
}

// Where the PDU comes from, and its header as far as it is there.
void writePdu( JsonWriter & json, Pdu const & pdu ) {
   LdpPduHdr header;
   if ( pdu.octets.size() >= sizeof header ) {
      header = *reinterpret_cast< LdpPduHdr const * >( pdu.octets.data() );
   }
   writeOrigin( json, pdu.origin );
   json.member( "lsrId", Lumo::IpAddr( header.ldpIdentifier().lsrId() ) );
   json.member( "labelSpace", header.ldpIdentifier().lblSpace() );
   json.member( "pduLength", header.length() );
}

void writePduVerdict( JsonWriter & json, Pdu const & pdu ) {
   json.member( "pduStatus", pdu.pdu.statusCode() );
   json.member( "pduReason", pdu.pdu.reason() );
}

void writeHello( JsonWriter & json, LdpHelloMsgParser const & hello ) {
   LdpCommonHelloTlv const & common = *hello.msgCommonHelloTlv();
   json.object();
   json.member( "holdTime", common.holdTime() );
   json.member( "targeted", common.targetedHello() );
   json.member( "requestTargeted", common.requestSendTargetedHello() );
   if ( auto const * tlv = hello.msgIpTransportTlv() ) json.member( "ipv4", tlv->ipAddr() );
   if ( auto const * tlv = hello.msgIp6TransportTlv() )
      json.member( "ipv6", Lumo::IpGenAddr( tlv->ip6Addr() ) );
   if ( auto const * tlv = hello.msgConfigSeqTlv() ) json.member( "configSeqNum", tlv->configSeqNum() );
   json.endObject();
}

void writeCapabilities( JsonWriter & json, LdpCapabilityParser const & parser ) {
   json.key( "capabilities" );
   json.array();
   for ( auto const & node : parser.capabilities() ) {
      json.object();
      json.member( "type", U32( node.key() ) );
      json.member( "name", node.key() );
      json.member( "state", node.value()->state() );
      json.endObject();
   }
   json.endArray();
}

void writeInit( JsonWriter & json, LdpInitMsgParser const & init ) {
   LdpCommonSessionParamTlv const & session = *init.msgSessionParamTlv();
   json.object();
   json.member( "version", session.protocolVersion() );
   json.member( "keepAlive", session.keepAliveTime() );
   json.member( "advDiscipline", session.advDiscipline() );
   json.member( "loopDetect", session.loopDetect() );
   json.member( "pathVecLim", session.pathVecLim() );
   json.member( "maxPdu", session.maxPduLength() );
   json.member( "receiver", session.recvLdpIdentifier().stringValue() );
   writeCapabilities( json, init );
   if ( auto const * ft = init.msgFtSessionTlv() ) {
      json.key( "ft" );
      json.object();
      json.member( "flags", ft->ftFlags().value() );
      json.member( "reconnect", ft->ftReconnectTimeout() );
      json.member( "recovery", ft->ftRecoveryTime() );
      json.endObject();
   }
   json.endObject();
}

void writeCapability( JsonWriter & json, LdpCapabilityMsgParser const & capability, bool texts ) {
   json.object();
   json.member( "valid", capability.validMsg() );
   json.member( "status", capability.statusCode() );
   json.member( "reason", capability.reason() );
   if ( texts ) json.member( "text", capability.stringValue() );
   writeCapabilities( json, capability );
   json.endObject();
}

void writeStatus( JsonWriter & json, LdpStatusTlv const & status ) {
   json.member( "error", status.statusError() );
   json.member( "forward", status.statusForwardUnknown() );
   json.member( "statusData", U32( status.statusData() ) );
   json.member( "statusName", status.statusData() );
   json.member( "refMsgId", status.msgId() );
   json.member( "refMsgType", U32( status.msgType() ) );
}

void writePwStatus( JsonWriter & json, LdpPwStatusTlv const * tlv ) {
   if ( tlv ) json.member( "pwStatus", tlv->pwStatusField().value() );
}

void writeNotification( JsonWriter & json, LdpNotificationMsgParser const & notification ) {
   json.object();
   writeStatus( json, *notification.msgStatusTlv() );
   writePwStatus( json, notification.msgPwStatusTlv() );
   json.endObject();
}

void writeAddresses( JsonWriter & json, LdpAddressListTlv const & tlv ) {
   json.object();
   json.member( "family", tlv.family() );
   json.key( "list" );
   json.array();
   for ( U16 i = 0; i < tlv.numAddress(); ++i )
      json.value( tlv.address( i ) );
   json.endArray();
   json.endObject();
}

void writePwId( JsonWriter & json, LdpFecTlvPwIdElement const & element ) {
   PwFwdEqvClassInfo const & info = element.pwFwdEqvCls();
   LdpPwIntfParamFlags const sent = element.parsedIntfParams();
   json.member( "type", "pwId" );
   if ( info.pwId().value() ) json.member( "pwId", info.pwId().value() ); // 0: the short form, which has none
   json.member( "pwType", info.fwdEqvClass().pwTypeValue() );
   json.member( "controlWord", info.fwdEqvClass().controlWord() );
   json.member( "groupId", info.groupId().value() );
   if ( sent.intfMtu() ) json.member( "mtu", info.params().mtu() );
   if ( sent.intfDesc() ) json.member( "description", info.intfDescription() );
   if ( sent.requestedVlanId() ) json.member( "requestedVlan", info.requestedVlanId().value() );
   if ( sent.fragIndicator() ) json.member( "fragmentation", info.params().fragCapable() );
   if ( sent.vccvParam() ) {
      json.member( "vccvCc", info.params().vccvCcTypes() );
      json.member( "vccvCv", info.params().vccvCvTypes().value() );
   }
}

void writeElement( JsonWriter & json, LdpFecTlvElement const & element ) {
   json.object();
   switch ( element.type() ) {
   case wildcardElement: json.member( "type", "wildcard" ); break;
   case prefixElement:
   case hostAddrElement:
      json.member( "type", element.type() == prefixElement ? "prefix" : "host" );
      json.member( "prefix", element.fwdEqvCls().prefix() );
      break;
   case p2mpElement:
      json.member( "type", "p2mp" );
      json.member( "root", element.p2mpFecElem().rootIp() );
      json.key( "opaque" );
      json.hex( element.p2mpFecElem().opaqueStr().view() );
      break;
   case pwIdElement: writePwId( json, static_cast< LdpFecTlvPwIdElement const & >( element ) ); break;
   default: break; // the FEC parser keeps no other
   }
   json.endObject();
}

void writeFec( JsonWriter & json, LdpFecTlvParser const & fec ) {
   json.object();
   json.member( "valid", fec.valid() );
   json.member( "status", fec.statusCode() );
   json.member( "reason", fec.reason() );
   json.key( "elements" );
   json.array();
   for ( U32 i = 0; i < fec.fecElements(); ++i )
      writeElement( json, *fec.fecElement( i ) );
   json.endArray();
   json.endObject();
}

void writePathVector( JsonWriter & json, LdpPathVectorTlv const & tlv ) {
   json.key( "pathVector" );
   json.array();
   for ( U32 i = 0; i < tlv.lsrIdNum(); ++i )
      json.value( tlv.lsrId( i ) );
   json.endArray();
}

// The views of the label messages, each of which only some of them have.
template< class Parser >
void writeLabelViews( JsonWriter & json, Parser const & parser ) {
   if constexpr ( requires { parser.msgGenLabelTlv(); } ) {
      if ( auto const * tlv = parser.msgGenLabelTlv() ) json.member( "label", tlv->label().value() );
   }
   if constexpr ( requires { parser.msgHopCountTlv(); } ) {
      if ( auto const * tlv = parser.msgHopCountTlv() ) json.member( "hopCount", tlv->hopCount() );
   }
   if constexpr ( requires { parser.msgPathVectorTlv(); } ) {
      if ( auto const * tlv = parser.msgPathVectorTlv() ) writePathVector( json, *tlv );
   }
   if constexpr ( requires { parser.msgReqMsgIdTlv(); } ) {
      if ( auto const * tlv = parser.msgReqMsgIdTlv() ) json.member( "reqMsgId", tlv->reqMsgId() );
   }
   if constexpr ( requires { parser.msgPwStatusTlv(); } ) writePwStatus( json, parser.msgPwStatusTlv() );
   if ( auto const * tlv = parser.msgStatusTlv() ) {
      json.key( "statusTlv" );
      json.object();
      writeStatus( json, *tlv );
      json.endObject();
   }
}

// What a valid message holds, by its type.
void writeBody( JsonWriter & json, Message const & message, bool texts ) {
   switch ( message.parser.type() ) {
   case LdpHello: json.key( "hello" ); return writeHello( json, message.as< LdpHelloMsgParser >() );
   case LdpInit: json.key( "init" ); return writeInit( json, message.as< LdpInitMsgParser >() );
   case LdpCapability: json.key( "capability" ); return writeCapability( json, *message.capability, texts );
   case LdpNotification:
      json.key( "notification" );
      return writeNotification( json, message.as< LdpNotificationMsgParser >() );
   case LdpAddress:
      json.key( "addresses" );
      return writeAddresses( json, *message.as< LdpAddressMsgParser >().addressListTlv() );
   case LdpAddressWithdraw:
      json.key( "addresses" );
      return writeAddresses( json, *message.as< LdpAddressWithdrawMsgParser >().addressListTlv() );
   case LdpLabelMapping: return writeLabelViews( json, message.as< LdpLabelMappingMsgParser >() );
   case LdpLabelRequest: return writeLabelViews( json, message.as< LdpLabelRequestMsgParser >() );
   case LdpLabelWithdraw: return writeLabelViews( json, message.as< LdpLabelWithdrawMsgParser >() );
   case LdpLabelRelease: return writeLabelViews( json, message.as< LdpLabelReleaseMsgParser >() );
   case LdpLabelAbortReq: return writeLabelViews( json, message.as< LdpLabelAbortReqMsgParser >() );
   case LdpKeepAlive: return;
   }
}

void writeFault( JsonWriter & json, Fault const & fault, Verdict verdict ) {
   auto const hex = [&]( char const * name, Octets octets ) {
      json.key( name );
      json.hex( { reinterpret_cast< char const * >( octets.data() ), octets.size() } );
   };
   json.key( "fault" );
   json.object();
   json.member( "supported", verdict != Verdict::unsupported );
   json.member( "offset", fault.offset );
   if ( !fault.ofPdu ) json.member( "messageOffset", fault.begin );
   json.member( "whole", fault.whole() );
   if ( fault.tlv ) {
      json.member( "tlv", U32( *fault.tlv ) );
      json.member( "tlvName", *fault.tlv );
   }
   if ( fault.element ) {
      json.member( "element", U32( *fault.element ) );
      json.member( "elementName", *fault.element );
   }
   hex( "before", fault.before );
   hex( "octets", fault.at );
   json.endObject();
}

} // namespace

void JsonReporter::onPdu( Pdu const & pdu ) {
   pdu_.clear();
   shared_.object();
   writePdu( shared_, pdu );
   writePduVerdict( shared_, pdu );
   shared_.endObject();
   shared_.endLine();
   sharedOut_.flush();
}

void JsonReporter::onMessage( Message const & message ) {
   constexpr std::size_t braces = sizeof "{}\n" - 1;
   LdpMsgParser const & parser = message.parser;
   json_.object();
   json_.members( std::string_view( pdu_ ).substr( 1, pdu_.size() - braces ) );
   json_.member( "type", parser.type() );
   json_.member( "typeValue", U32( parser.type() ) );
   json_.member( "unknownBit", parser.unknown() );
   json_.member( "msgId", parser.msgId() );
   json_.member( "msgLength", parser.length() );
   json_.member( "status", parser.statusCode() );
   json_.member( "reason", parser.reason() );
   json_.member( "valid", parser.validMsg() );
   if ( texts_ ) json_.member( "text", parser.stringValue() );
   // The FEC parser owns what it found; the views are to be looked at only in a message that is valid.
   if ( auto const & fec = parser.ldpFecTlvParser() ) {
      json_.key( "fec" );
      writeFec( json_, *fec );
   }
   if ( parser.validMsg() ) writeBody( json_, message, texts_ );
   if ( message.bad() ) writeFault( json_, faultOf( message ), message.verdict );
   json_.endObject();
   json_.endLine();
}

void JsonReporter::onBadPdu( Pdu const & pdu ) {
   json_.object();
   writePdu( json_, pdu );
   writePduVerdict( json_, pdu );
   json_.member( "valid", false );
   if ( texts_ ) json_.member( "text", badPduText( pdu.pdu ) );
   writeFault( json_, faultOf( pdu ), Verdict::wrong );
   json_.endObject();
   json_.endLine();
}

void JsonReporter::onFatalPdu( Pdu const & pdu, LdpPduGuardResult const & fatal ) {
   json_.object();
   writePdu( json_, pdu );
   json_.member( "valid", false );
   json_.member( "fatal", fatalName( fatal ) );
   json_.member( "fatalOffset", fatal.offset );
   writeFault( json_, faultOf( pdu ), verdictOf( fatal ) );
   json_.endObject();
   json_.endLine();
}

} // namespace LdpTool
