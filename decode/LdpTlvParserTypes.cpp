// What reflection knows of the parsers of single TLVs, of the FEC TLV and of its elements.

#include "Ldp/LdpPwGenMsgParser.h"

#include "Vorn/AttributeRows.h"

namespace Ldp {

using namespace Vorn::Rows;

constexpr Vorn::VornAttr LdpTlvParser::vornRows[] = { ctor< &Self::pkt >( "pkt" ),
                                                      ctor< &Self::offset >( "offset" ),
                                                      view< &Self::wholeHeader >( "header" ),
                                                      read< &Self::unknown >( "unknown" ),
                                                      read< &Self::forwardUnknown >( "forwardUnknown" ),
                                                      read< &Self::type >( "type" ),
                                                      read< &Self::length >( "length" ) };
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpTlvParser, &ldpTlvParserFactory )

// A field of the body. Setters and `validate` act on the bytes directly, so they apply only where those lie
// in the packet; a getter sees to that itself. Judgement and text are for a TLV of the parser's own type.
constexpr Vorn::VornAttr LdpCommonHelloTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >( write< &Self::holdTime, &Self::holdTimeIs >( "holdTime" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::targetedHello, &Self::targetedHelloIs >( "targetedHello" ) ),
   writtenWhere< &Self::hasBody >(
        write< &Self::requestSendTargetedHello, &Self::requestSendTargetedHelloIs >(
             "requestSendTargetedHello" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpCommonHelloTlvParser, &ldpCommonHelloTlvParserFactory )

constexpr Vorn::VornAttr LdpIpTransportAddrTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >( write< &Self::ipAddr, &Self::ipAddrIs >( "ipAddr" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpIpTransportAddrTlvParser, &ldpIpTransportAddrTlvParserFactory )

constexpr Vorn::VornAttr LdpConfigSeqNumTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >( write< &Self::configSeqNum, &Self::configSeqNumIs >( "configSeqNum" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpConfigSeqNumTlvParser, &ldpConfigSeqNumTlvParserFactory )

constexpr Vorn::VornAttr LdpIp6TransportAddrTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >( write< &Self::ip6Addr, &Self::ip6AddrIs >( "ip6Addr" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpIp6TransportAddrTlvParser, &ldpIp6TransportAddrTlvParserFactory )

constexpr Vorn::VornAttr LdpCommonSessionParamTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >(
        write< &Self::protocolVersion, &Self::protocolVersionIs >( "protocolVersion" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::keepAliveTime, &Self::keepAliveTimeIs >( "keepAliveTime" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::advDiscipline, &Self::advDisciplineIs >( "advDiscipline" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::loopDetect, &Self::loopDetectIs >( "loopDetect" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::pathVecLim, &Self::pathVecLimIs >( "pathVecLim" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::maxPduLength, &Self::maxPduLengthIs >( "maxPduLength" ) ),
   writtenWhere< &Self::hasBody >(
        write< &Self::recvLdpIdentifier, &Self::recvLdpIdentifierIs >( "recvLdpIdentifier" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpCommonSessionParamTlvParser, &ldpCommonSessionParamTlvParserFactory )

constexpr Vorn::VornAttr LdpFtSessionTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >(
        write< &Self::ftRecoveryTime, &Self::ftRecoveryTimeIs >( "ftRecoveryTime" ) ),
   writtenWhere< &Self::hasBody >(
        write< &Self::ftReconnectTimeout, &Self::ftReconnectTimeoutIs >( "ftReconnectTimeout" ) ),
   writtenWhere< &Self::hasBody >(
        write< &Self::learnFromNetwork, &Self::learnFromNetworkIs >( "learnFromNetwork" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::ftFlags, &Self::ftFlagsIs >( "ftFlags" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFtSessionTlvParser, &ldpFtSessionTlvParserFactory )

constexpr Vorn::VornAttr LdpGenLabelTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >( write< &Self::label, &Self::labelIs >( "label" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpGenLabelTlvParser, &ldpGenLabelTlvParserFactory )

constexpr Vorn::VornAttr LdpLabelReqMsgIdTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >( write< &Self::reqMsgId, &Self::reqMsgIdIs >( "reqMsgId" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelReqMsgIdTlvParser, &ldpLabelReqMsgIdTlvParserFactory )

constexpr Vorn::VornAttr LdpHopCountTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >( write< &Self::hopCount, &Self::hopCountIs >( "hopCount" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpHopCountTlvParser, &ldpHopCountTlvParserFactory )

constexpr Vorn::VornAttr LdpPathVectorTlvParser::vornRows[] = {
   read< &Self::lsrIdNum >( "lsrIdNum" ), indexed< &Self::lsrId, &Self::lsrIdNum >( "lsrId" ),
   keyed< &Self::lsrIdPosition >( "lsrIdPosition" ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpPathVectorTlvParser, &ldpPathVectorTlvParserFactory )

constexpr Vorn::VornAttr LdpStatusTlvParser::vornRows[] = {
   writtenWhere< &Self::hasBody >( write< &Self::statusError, &Self::statusErrorIs >( "statusError" ) ),
   writtenWhere< &Self::hasBody >(
        write< &Self::statusForwardUnknown, &Self::statusForwardUnknownIs >( "statusForwardUnknown" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::statusData, &Self::statusDataIs >( "statusData" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::msgId, &Self::msgIdIs >( "msgId" ) ),
   writtenWhere< &Self::hasBody >( write< &Self::msgType, &Self::msgTypeIs >( "msgType" ) ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpStatusTlvParser, &ldpStatusTlvParserFactory )

constexpr Vorn::VornAttr LdpAddressListTlvParser::vornRows[] = {
   read< &Self::family >( "family" ), indexed< &Self::address, &Self::numAddress >( "address" ),
   read< &Self::numAddress >( "numAddress" ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpAddressListTlvParser, &ldpAddressListTlvParserFactory )

constexpr Vorn::VornAttr LdpPwStatusTlvParser::vornRows[] = {
   read< &Self::pwForwarding >( "pwForwarding" ),
   read< &Self::pwNotForwarding >( "pwNotForwarding" ),
   read< &Self::localACIngrRecvFault >( "localACIngrRecvFault" ),
   read< &Self::localACEgrTransFault >( "localACEgrTransFault" ),
   read< &Self::localPsnPwIngrRecvFault >( "localPsnPwIngrRecvFault" ),
   read< &Self::localPsnPwEgrTransFault >( "localPsnPwEgrTransFault" ),
   where< &Self::hasTextOfItsType >( read< &Self::stringValue >( "stringValue" ) ),
   where< &Self::hasBodyOfItsType >( function< &Self::validate >( "validate" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpPwStatusTlvParser, &ldpPwStatusTlvParserFactory )

// An accessor of a value asserts that the element is of its kind; who goes by the record alone cannot know.
constexpr Vorn::VornAttr LdpFecTlvElement::vornRows[] = {
   where< &Self::isIp >( write< &Self::fwdEqvCls, &Self::fwdEqvClsIs >( "fwdEqvCls" ) ),
   where< &Self::isPw >( write< &Self::pwFwdEqvCls, &Self::pwFwdEqvClsIs >( "pwFwdEqvCls" ) ),
   where< &Self::isP2mp >( write< &Self::p2mpFecElem, &Self::p2mpFecElemIs >( "p2mpFecElem" ) ),
   read< &Self::type >( "type" ), where< &Self::hasText >( read< &Self::stringValue >( "stringValue" ) )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvElement, nullptr )

constexpr Vorn::VornAttr LdpFecTlvWildcardElement::vornRows[] = { none };
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvWildcardElement, &ldpFecTlvWildcardElementFactory )

constexpr Vorn::VornAttr LdpFecTlvPrefixElement::vornRows[] = { none };
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvPrefixElement, &ldpFecTlvPrefixElementFactory )

constexpr Vorn::VornAttr LdpFecTlvHostAddrElement::vornRows[] = { none };
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvHostAddrElement, &ldpFecTlvHostAddrElementFactory )

constexpr Vorn::VornAttr LdpFecTlvP2mpElement::vornRows[] = { none };
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvP2mpElement, &ldpFecTlvP2mpElementFactory )

constexpr Vorn::VornAttr LdpFecTlvPwIdElement::vornRows[] = { field< &Self::parsedIntfParams_ >(
     "parsedIntfParams" ) };
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvPwIdElement, &ldpFecTlvPwIdElementFactory )

constexpr Vorn::VornAttr LdpFecTlvParser::vornRows[] = {
   ctor< &Self::ldpProtoParam >( "ldpProtoParam" ),
   read< &Self::valid >( "valid" ),
   field< &Self::statusCode_ >( "statusCode" ),
   field< &Self::reason_ >( "reason" ),
   objects< &Self::fecElementColl, &Self::fecElementIs, &Self::fecElementDel >( "fecElement" ),
   field< &Self::hasWildcardFecElement_ >( "hasWildcardFecElement" ),
   field< &Self::initialized_ >( "initialized" ),
   function< &Self::parseElements >( "parseElements" ),
   read< &Self::stringValue >( "stringValue" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvParser, &ldpFecTlvParserFactory )

} // namespace Ldp
