// What reflection knows of the parsers of PDUs and messages.

#include "Ldp/LdpMsgParser.h"

#include "Vorn/AttributeRows.h"

namespace Ldp {

using namespace Vorn::Rows;

constexpr Vorn::VornAttr LdpTlvGroupParser::vornRows[] = {
   part< &Self::pkt, &Self::pktIs >( "pkt" ),
   part< &Self::offset, &Self::offsetIs >( "offset" ),
   part< &Self::size, &Self::sizeIs >( "size" ),
   read< &Self::valid >( "valid" ),
   field< &Self::reason_ >( "reason" ),
   field< &Self::statusCode_ >( "statusCode" ),
   values< &Self::tlvOffsetColl, &Self::tlvOffsetIs, &Self::tlvOffsetDel >( "tlvOffset" ),
   read< &Self::tlvNum >( "tlvNum" ),
   function< &Self::parseTlvGroup >( "parseTlvGroup" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpTlvGroupParser,
                              (&Vorn::newObject< LdpTlvGroupParser, Vorn::Name const & >))

constexpr Vorn::VornAttr LdpPduParser::vornRows[] = {
   ctor< &Self::pkt >( "pkt" ),
   ctor< &Self::offset >( "offset" ),
   view< &Self::wholeHeader >( "header" ),
   read< &Self::version >( "version" ),
   read< &Self::length >( "length" ),
   read< &Self::totalLength >( "totalLength" ),
   read< &Self::ldpIdentifier >( "ldpIdentifier" ),
   where< &Self::hasText >( read< &Self::stringValue >( "stringValue" ) ),
   field< &Self::statusCode_ >( "statusCode" ),
   field< &Self::reason_ >( "reason" ),
   read< &Self::validLdpPdu >( "validLdpPdu" ),
   child< &Self::tlvGroupParser, &Self::tlvGroupParserIs, &Self::tlvGroupParserDel >( "tlvGroupParser" ),
   read< &Self::messageNum >( "messageNum" ),
   indexed< &Self::messageOffset, &Self::messageNum >( "messageOffset" ),
   field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpPduParser, &ldpPduParserFactory )

constexpr Vorn::VornAttr LdpMsgParser::vornRows[] = {
   ctor< &Self::pkt >( "pkt" ),
   ctor< &Self::offset >( "offset" ),
   view< &Self::wholeMsgHdr >( "msgHdr" ),
   read< &Self::unknown >( "unknown" ),
   read< &Self::type >( "type" ),
   read< &Self::msgId >( "msgId" ),
   read< &Self::length >( "length" ),
   read< &Self::totalLength >( "totalLength" ),
   where< &Self::hasText >( read< &Self::stringValue >( "stringValue" ) ),
   child< &Self::tlvGroupParser, &Self::tlvGroupParserIs, &Self::tlvGroupParserDel >( "tlvGroupParser" ),
   read< &Self::tlvNum >( "tlvNum" ),
   indexed< &Self::tlvOffset, &Self::tlvNum >( "tlvOffset" ),
   read< &Self::validMsg >( "validMsg" ),
   field< &Self::reason_ >( "reason" ),
   field< &Self::statusCode_ >( "statusCode" ),
   view< &Self::msgFecTlv >( "msgFecTlv" ),
   child< &Self::ldpFecTlvParser, &Self::ldpFecTlvParserIs, &Self::ldpFecTlvParserDel >( "ldpFecTlvParser" ),
   view< &Self::msgStatusTlv >( "msgStatusTlv" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpMsgParser, &ldpMsgParserFactory )

constexpr Vorn::VornAttr LdpHelloMsgParser::vornRows[] = {
   view< &Self::msgCommonHelloTlv >( "msgCommonHelloTlv" ),
   view< &Self::msgIpTransportTlv >( "msgIpTransportTlv" ),
   view< &Self::msgIp6TransportTlv >( "msgIp6TransportTlv" ),
   view< &Self::msgConfigSeqTlv >( "msgConfigSeqTlv" ),
   field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpHelloMsgParser, &ldpHelloMsgParserFactory )

constexpr Vorn::VornAttr LdpCapabilityParser::vornRows[] = {
   values< &Self::capabilities_, &Self::capabilitiesIs, &Self::capabilitiesDel >( "capabilities" ),
   function< &Self::parseCapabilityTlvs >( "parseCapabilityTlvs" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpCapabilityParser, nullptr )

constexpr Vorn::VornAttr LdpInitMsgParser::vornRows[] = {
   view< &Self::msgSessionParamTlv >( "msgSessionParamTlv" ),
   view< &Self::msgFtSessionTlv >( "msgFtSessionTlv" ), field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpInitMsgParser, &ldpInitMsgParserFactory )

constexpr Vorn::VornAttr LdpCapabilityMsgParser::vornRows[] = { field< &Self::initialized_ >( "initialized" ),
                                                                function< &Self::handleInitialized >(
                                                                     "handleInitialized" ) };
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpCapabilityMsgParser, &ldpCapabilityMsgParserFactory )

constexpr Vorn::VornAttr LdpNotificationMsgParser::vornRows[] = {
   view< &Self::msgPwStatusTlv >( "msgPwStatusTlv" ), field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpNotificationMsgParser, &ldpNotificationMsgParserFactory )

constexpr Vorn::VornAttr LdpAddressMsgParser::vornRows[] = {
   view< &Self::addressListTlv >( "addressListTlv" ), field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpAddressMsgParser, &ldpAddressMsgParserFactory )

constexpr Vorn::VornAttr LdpAddressWithdrawMsgParser::vornRows[] = {
   view< &Self::addressListTlv >( "addressListTlv" ), field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpAddressWithdrawMsgParser, &ldpAddressWithdrawMsgParserFactory )

constexpr Vorn::VornAttr LdpLabelMappingMsgParser::vornRows[] = {
   view< &Self::msgGenLabelTlv >( "msgGenLabelTlv" ),
   view< &Self::msgReqMsgIdTlv >( "msgReqMsgIdTlv" ),
   view< &Self::msgHopCountTlv >( "msgHopCountTlv" ),
   view< &Self::msgPathVectorTlv >( "msgPathVectorTlv" ),
   view< &Self::msgPwStatusTlv >( "msgPwStatusTlv" ),
   field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelMappingMsgParser, &ldpLabelMappingMsgParserFactory )

constexpr Vorn::VornAttr LdpLabelRequestMsgParser::vornRows[] = {
   view< &Self::msgHopCountTlv >( "msgHopCountTlv" ), view< &Self::msgPathVectorTlv >( "msgPathVectorTlv" ),
   field< &Self::initialized_ >( "initialized" ), function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelRequestMsgParser, &ldpLabelRequestMsgParserFactory )

constexpr Vorn::VornAttr LdpLabelWithdrawMsgParser::vornRows[] = {
   view< &Self::msgGenLabelTlv >( "msgGenLabelTlv" ), field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelWithdrawMsgParser, &ldpLabelWithdrawMsgParserFactory )

constexpr Vorn::VornAttr LdpLabelReleaseMsgParser::vornRows[] = {
   view< &Self::msgGenLabelTlv >( "msgGenLabelTlv" ), field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelReleaseMsgParser, &ldpLabelReleaseMsgParserFactory )

constexpr Vorn::VornAttr LdpLabelAbortReqMsgParser::vornRows[] = {
   view< &Self::msgReqMsgIdTlv >( "msgReqMsgIdTlv" ), field< &Self::initialized_ >( "initialized" ),
   function< &Self::handleInitialized >( "handleInitialized" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelAbortReqMsgParser, &ldpLabelAbortReqMsgParserFactory )

} // namespace Ldp
