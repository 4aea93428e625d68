// Messages as JSON, one object a line.
#include "reporters/Json.h"

#include "messages/Fault.h"
#include "text/Words.h"

#include <nlohmann/json.hpp>

namespace LdpTool {

using namespace Ldp;
using Json = nlohmann::ordered_json;

namespace {

// A text is octets that a peer may have chosen. Each becomes the code point of its value, so that none is
// lost and the JSON is valid whatever they are.
std::string latin1( Vorn::String const & octets ) {
   std::string text;
   for ( char c : octets ) {
      auto const octet = static_cast< unsigned char >( c );
      if ( octet < 0x80 ) {
         text += c;
      } else {
         text += char( 0xc0 | octet >> 6 );
         text += char( 0x80 | ( octet & 0x3f ) );
      }
   }
   return text;
}

template< class Enum >
std::string nameOrNumber( Enum value ) {
   return latin1( valueToStrep( value ) );
}

template< class Value >
std::string text( Value const & value ) {
   return latin1( value.stringValue() );
}

std::string hexText( Vorn::String const & octets ) {
   std::string hex;
   for ( char c : octets ) {
      auto const octet = static_cast< unsigned char >( c );
      hex += "0123456789abcdef"[octet >> 4];
      hex += "0123456789abcdef"[octet & 0xf];
   }
   return hex;
}

Json originJson( Origin const & origin ) {
   Arrival const & arrival = origin.arrival;
   if ( !origin.flow ) return { { "line", arrival.frame } };
   Flow const & flow = *origin.flow;
   return {
      { "frame", arrival.frame },
      { "time", double( arrival.seconds ) + arrival.nanoseconds / 1e9 },
      { "src", addressText( flow, flow.source ) },
      { "dst", addressText( flow, flow.destination ) },
      { "sport", flow.sourcePort },
      { "dport", flow.destinationPort },
      { "proto", flow.protocol == protocolTcp ? "tcp" : "udp" },
   };
}

// Where the PDU comes from, and its header as far as it is there.
Json pduJson( Pdu const & pdu ) {
   LdpPduHdr header;
   if ( pdu.octets.size() >= sizeof header ) {
      header = *reinterpret_cast< LdpPduHdr const * >( pdu.octets.data() );
   }
   Json json = originJson( pdu.origin );
   json["lsrId"] = text( Lumo::IpAddr( header.ldpIdentifier().lsrId() ) );
   json["labelSpace"] = header.ldpIdentifier().lblSpace();
   json["pduLength"] = header.length();
   return json;
}

std::string textOf( Json const & json ) {
   constexpr bool onlyAscii = true; // so that no reader takes an octet for a line end
   return json.dump( -1, ' ', onlyAscii );
}

Json helloJson( LdpHelloMsgParser const & hello ) {
   LdpCommonHelloTlv const & common = *hello.msgCommonHelloTlv();
   Json json = {
      { "holdTime", common.holdTime() },
      { "targeted", common.targetedHello() },
      { "requestTargeted", common.requestSendTargetedHello() },
   };
   if ( auto const * tlv = hello.msgIpTransportTlv() ) json["ipv4"] = text( tlv->ipAddr() );
   if ( auto const * tlv = hello.msgIp6TransportTlv() ) json["ipv6"] = text( tlv->ip6Addr() );
   if ( auto const * tlv = hello.msgConfigSeqTlv() ) json["configSeqNum"] = tlv->configSeqNum();
   return json;
}

Json capabilitiesJson( LdpCapabilityParser const & parser ) {
   Json list = Json::array();
   for ( auto const & node : parser.capabilities() ) {
      list.push_back( { { "type", U32( node.key() ) },
                        { "name", nameOrNumber( node.key() ) },
                        { "state", node.value()->state() } } );
   }
   return list;
}

Json initJson( LdpInitMsgParser const & init ) {
   LdpCommonSessionParamTlv const & session = *init.msgSessionParamTlv();
   Json json = {
      { "version", session.protocolVersion() },
      { "keepAlive", session.keepAliveTime() },
      { "advDiscipline", session.advDiscipline() },
      { "loopDetect", session.loopDetect() },
      { "pathVecLim", session.pathVecLim() },
      { "maxPdu", session.maxPduLength() },
      { "receiver", text( session.recvLdpIdentifier() ) },
      { "capabilities", capabilitiesJson( init ) },
   };
   if ( auto const * ft = init.msgFtSessionTlv() ) {
      json["ft"] = {
         { "flags", ft->ftFlags().value() },
         { "reconnect", ft->ftReconnectTimeout() },
         { "recovery", ft->ftRecoveryTime() },
      };
   }
   return json;
}

Json capabilityJson( LdpCapabilityMsgParser const & capability ) {
   return {
      { "valid", capability.validMsg() },
      { "status", nameOrNumber( capability.statusCode() ) },
      { "reason", latin1( capability.reason() ) },
      { "text", text( capability ) },
      { "capabilities", capabilitiesJson( capability ) },
   };
}

Json statusJson( LdpStatusTlv const & status ) {
   return {
      { "error", status.statusError() },
      { "forward", status.statusForwardUnknown() },
      { "statusData", U32( status.statusData() ) },
      { "statusName", nameOrNumber( status.statusData() ) },
      { "refMsgId", status.msgId() },
      { "refMsgType", U32( status.msgType() ) },
   };
}

Json addressesJson( LdpAddressListTlv const & tlv ) {
   Json list = Json::array();
   for ( U16 i = 0; i < tlv.numAddress(); ++i )
      list.push_back( text( tlv.address( i ) ) );
   return { { "family", nameOrNumber( tlv.family() ) }, { "list", std::move( list ) } };
}

Json pwIdJson( LdpFecTlvPwIdElement const & element ) {
   PwFwdEqvClassInfo const & info = element.pwFwdEqvCls();
   LdpPwIntfParamFlags const sent = element.parsedIntfParams();
   Json json = { { "type", "pwId" } };
   if ( info.pwId().value() ) json["pwId"] = info.pwId().value(); // 0 is the short form, which has none
   json["pwType"] = info.fwdEqvClass().pwTypeValue();
   json["controlWord"] = info.fwdEqvClass().controlWord();
   json["groupId"] = info.groupId().value();
   if ( sent.intfMtu() ) json["mtu"] = info.params().mtu();
   if ( sent.intfDesc() ) json["description"] = latin1( info.intfDescription() );
   if ( sent.requestedVlanId() ) json["requestedVlan"] = info.requestedVlanId().value();
   if ( sent.fragIndicator() ) json["fragmentation"] = info.params().fragCapable();
   if ( sent.vccvParam() ) {
      json["vccvCc"] = info.params().vccvCcTypes();
      json["vccvCv"] = info.params().vccvCvTypes().value();
   }
   return json;
}

Json elementJson( LdpFecTlvElement const & element ) {
   switch ( element.type() ) {
   case wildcardElement: return { { "type", "wildcard" } };
   case prefixElement: return { { "type", "prefix" }, { "prefix", text( element.fwdEqvCls().prefix() ) } };
   case hostAddrElement: return { { "type", "host" }, { "prefix", text( element.fwdEqvCls().prefix() ) } };
   case p2mpElement:
      return {
         { "type", "p2mp" },
         { "root", text( element.p2mpFecElem().rootIp() ) },
         { "opaque", hexText( element.p2mpFecElem().opaqueStr() ) },
      };
   case pwIdElement: return pwIdJson( static_cast< LdpFecTlvPwIdElement const & >( element ) );
   default: return {}; // the FEC parser keeps no other
   }
}

Json fecJson( LdpFecTlvParser const & fec ) {
   Json elements = Json::array();
   for ( U32 i = 0; i < fec.fecElements(); ++i )
      elements.push_back( elementJson( *fec.fecElement( i ) ) );
   return {
      { "valid", fec.valid() },
      { "status", nameOrNumber( fec.statusCode() ) },
      { "reason", latin1( fec.reason() ) },
      { "elements", std::move( elements ) },
   };
}

Json pathVectorJson( LdpPathVectorTlv const & tlv ) {
   Json list = Json::array();
   for ( U32 i = 0; i < tlv.lsrIdNum(); ++i )
      list.push_back( text( tlv.lsrId( i ) ) );
   return list;
}

// The views of the label messages, each of which only some of them have.
template< class Parser >
void addLabelViews( Json & json, Parser const & parser ) {
   if constexpr ( requires { parser.msgGenLabelTlv(); } ) {
      if ( auto const * tlv = parser.msgGenLabelTlv() ) json["label"] = tlv->label().value();
   }
   if constexpr ( requires { parser.msgHopCountTlv(); } ) {
      if ( auto const * tlv = parser.msgHopCountTlv() ) json["hopCount"] = tlv->hopCount();
   }
   if constexpr ( requires { parser.msgPathVectorTlv(); } ) {
      if ( auto const * tlv = parser.msgPathVectorTlv() ) json["pathVector"] = pathVectorJson( *tlv );
   }
   if constexpr ( requires { parser.msgReqMsgIdTlv(); } ) {
      if ( auto const * tlv = parser.msgReqMsgIdTlv() ) json["reqMsgId"] = tlv->reqMsgId();
   }
   if constexpr ( requires { parser.msgPwStatusTlv(); } ) {
      if ( auto const * tlv = parser.msgPwStatusTlv() ) json["pwStatus"] = tlv->pwStatusField().value();
   }
   if ( auto const * tlv = parser.msgStatusTlv() ) json["statusTlv"] = statusJson( *tlv );
}

Json notificationJson( LdpNotificationMsgParser const & notification ) {
   Json json = statusJson( *notification.msgStatusTlv() );
   if ( auto const * tlv = notification.msgPwStatusTlv() ) json["pwStatus"] = tlv->pwStatusField().value();
   return json;
}

// What a valid message holds, by its type.
void addBody( Json & json, Message const & message ) {
   switch ( message.parser.type() ) {
   case LdpHello: json["hello"] = helloJson( message.as< LdpHelloMsgParser >() ); return;
   case LdpInit: json["init"] = initJson( message.as< LdpInitMsgParser >() ); return;
   case LdpCapability: json["capability"] = capabilityJson( *message.capability ); return;
   case LdpNotification:
      json["notification"] = notificationJson( message.as< LdpNotificationMsgParser >() );
      return;
   case LdpAddress:
      json["addresses"] = addressesJson( *message.as< LdpAddressMsgParser >().addressListTlv() );
      return;
   case LdpAddressWithdraw:
      json["addresses"] = addressesJson( *message.as< LdpAddressWithdrawMsgParser >().addressListTlv() );
      return;
   case LdpLabelMapping: return addLabelViews( json, message.as< LdpLabelMappingMsgParser >() );
   case LdpLabelRequest: return addLabelViews( json, message.as< LdpLabelRequestMsgParser >() );
   case LdpLabelWithdraw: return addLabelViews( json, message.as< LdpLabelWithdrawMsgParser >() );
   case LdpLabelRelease: return addLabelViews( json, message.as< LdpLabelReleaseMsgParser >() );
   case LdpLabelAbortReq: return addLabelViews( json, message.as< LdpLabelAbortReqMsgParser >() );
   case LdpKeepAlive: return;
   }
}

Json faultJson( Fault const & fault, Verdict verdict ) {
   auto const hex = []( Octets octets ) {
      return hexText( Vorn::String( octets.data(), U32( octets.size() ) ) );
   };
   Json json = { { "supported", verdict != Verdict::unsupported }, { "offset", fault.offset } };
   if ( !fault.ofPdu ) json["messageOffset"] = fault.begin;
   json["whole"] = fault.whole();
   if ( fault.tlv ) {
      json["tlv"] = U32( *fault.tlv );
      json["tlvName"] = nameText( *fault.tlv );
   }
   if ( fault.element ) {
      json["element"] = U32( *fault.element );
      json["elementName"] = nameText( *fault.element );
   }
   json["before"] = hex( fault.before );
   json["octets"] = hex( fault.at );
   return json;
}

} // namespace

void JsonReporter::onPdu( Pdu const & pdu ) {
   Json shared = pduJson( pdu );
   shared["pduStatus"] = nameOrNumber( pdu.pdu.statusCode() );
   shared["pduReason"] = latin1( pdu.pdu.reason() );
   pdu_ = textOf( shared );
   pdu_.back() = ','; // the message's own fields go on here
}

void JsonReporter::onMessage( Message const & message ) {
   LdpMsgParser const & parser = message.parser;
   Json json;
   json["type"] = nameText( parser.type() );
   json["typeValue"] = U32( parser.type() );
   json["unknownBit"] = parser.unknown();
   json["msgId"] = parser.msgId();
   json["msgLength"] = parser.length();
   json["status"] = nameOrNumber( parser.statusCode() );
   json["reason"] = latin1( parser.reason() );
   json["valid"] = parser.validMsg();
   json["text"] = text( parser );
   // The FEC parser owns what it found; the views are to be looked at only in a message that is valid.
   if ( auto const & fec = parser.ldpFecTlvParser() ) json["fec"] = fecJson( *fec );
   if ( parser.validMsg() ) addBody( json, message );
   if ( message.bad() ) json["fault"] = faultJson( faultOf( message ), message.verdict );
   out_ << pdu_ << std::string_view( textOf( json ) ).substr( 1 ) << '\n';
}

void JsonReporter::onBadPdu( Pdu const & pdu ) {
   Json json = pduJson( pdu );
   json["pduStatus"] = nameOrNumber( pdu.pdu.statusCode() );
   json["pduReason"] = latin1( pdu.pdu.reason() );
   json["valid"] = false;
   json["text"] = latin1( badPduText( pdu.pdu ) );
   json["fault"] = faultJson( faultOf( pdu ), Verdict::wrong );
   out_ << textOf( json ) << '\n';
}

void JsonReporter::onFatalPdu( Pdu const & pdu, LdpPduGuardResult const & fatal ) {
   Json json = pduJson( pdu );
   json["valid"] = false;
   json["fatal"] = fatalName( fatal );
   json["fatalOffset"] = fatal.offset;
   json["fault"] = faultJson( faultOf( pdu ), verdictOf( fatal ) );
   out_ << textOf( json ) << '\n';
}

} // namespace LdpTool
