// What reflection knows of the views over a packet and of their fields.

#include "Ldp/LdpLabelTlv.h"
#include "Ldp/LdpPwHdr.h"
#include "Ldp/LdpSessionTlv.h"

#include "Vorn/AttributeRows.h"

namespace Ldp {

using namespace Vorn::Rows;

namespace {

// What asserts where a view lies over a TLV of another type; there reflection is refused.
template< class View >
constexpr auto validateRow() {
   return where< &View::liesOverItsType >( function< &View::validate >( "validate" ) );
}
template< class View >
constexpr auto textRow() {
   return where< &View::liesOverItsType >( read< &View::stringValue >( "stringValue" ) );
}

} // namespace

// What asserts on a view over another type applies where that lies over its own; who goes by the record alone
// cannot know.

// The words: their octets, of which the text form is made, then the parts that they are divided into.
constexpr Vorn::VornAttr LdpHdrMsgUbitAndTypeField::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ), part< &Self::v1, &Self::v1Is >( "v1" ),
   write< &Self::unknown, &Self::unknownIs >( "unknown" ), write< &Self::type, &Self::typeIs >( "type" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpHdrMsgUbitAndTypeField )
VORN_TEXT_OF_RECORD( LdpHdrMsgUbitAndTypeField )

constexpr Vorn::VornAttr LdpTlvTypeField::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ), part< &Self::v1, &Self::v1Is >( "v1" ),
   write< &Self::unknown, &Self::unknownIs >( "unknown" ),
   write< &Self::forwardUnknown, &Self::forwardUnknownIs >( "forwardUnknown" ),
   write< &Self::type, &Self::typeIs >( "type" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpTlvTypeField )
VORN_TEXT_OF_RECORD( LdpTlvTypeField )

constexpr Vorn::VornAttr LdpCommonHelloTargetField::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ), part< &Self::v1, &Self::v1Is >( "v1" ),
   write< &Self::targetedHello, &Self::targetedHelloIs >( "targetedHello" ),
   write< &Self::requestSendTargetedHello, &Self::requestSendTargetedHelloIs >( "requestSendTargetedHello" ),
   write< &Self::reserved, &Self::reservedIs >( "reserved" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpCommonHelloTargetField )
VORN_TEXT_OF_RECORD( LdpCommonHelloTargetField )

constexpr Vorn::VornAttr LdpFtSessionFlags::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ),
   part< &Self::v1, &Self::v1Is >( "v1" ),
   write< &Self::learnFromNetwork, &Self::learnFromNetworkIs >( "learnFromNetwork" ),
   write< &Self::checkPoint, &Self::checkPointIs >( "checkPoint" ),
   write< &Self::allLabelProt, &Self::allLabelProtIs >( "allLabelProt" ),
   write< &Self::saveState, &Self::saveStateIs >( "saveState" ),
   write< &Self::reserved, &Self::reservedIs >( "reserved" ),
   write< &Self::reconnect, &Self::reconnectIs >( "reconnect" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpFtSessionFlags )
VORN_TEXT_OF_RECORD( LdpFtSessionFlags )

constexpr Vorn::VornAttr LdpGenLabelTlvLabel::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ),
   part< &Self::v1, &Self::v1Is >( "v1" ),
   part< &Self::v2, &Self::v2Is >( "v2" ),
   part< &Self::v3, &Self::v3Is >( "v3" ),
   write< &Self::labelNbo, &Self::labelNboIs >( "labelNbo" ),
   write< &Self::reserved, &Self::reservedIs >( "reserved" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpGenLabelTlvLabel )
VORN_TEXT_OF_RECORD( LdpGenLabelTlvLabel )

constexpr Vorn::VornAttr LdpStatusTlvStatusCode::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ),
   part< &Self::v1, &Self::v1Is >( "v1" ),
   part< &Self::v2, &Self::v2Is >( "v2" ),
   part< &Self::v3, &Self::v3Is >( "v3" ),
   write< &Self::statusDataNbo, &Self::statusDataNboIs >( "statusDataNbo" ),
   write< &Self::forwardUnknown, &Self::forwardUnknownIs >( "forwardUnknown" ),
   write< &Self::error, &Self::errorIs >( "error" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpStatusTlvStatusCode )
VORN_TEXT_OF_RECORD( LdpStatusTlvStatusCode )

constexpr Vorn::VornAttr LdpFecTlvPwIdElementHdrTypeField::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ), part< &Self::v1, &Self::v1Is >( "v1" ),
   write< &Self::controlWordBit, &Self::controlWordBitIs >( "controlWordBit" ),
   write< &Self::pwType, &Self::pwTypeIs >( "pwType" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpFecTlvPwIdElementHdrTypeField )
VORN_TEXT_OF_RECORD( LdpFecTlvPwIdElementHdrTypeField )

constexpr Vorn::VornAttr LdpPwVccvParamField::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ), part< &Self::v1, &Self::v1Is >( "v1" ),
   write< &Self::ccTypes, &Self::ccTypesIs >( "ccTypes" ),
   write< &Self::cvTypes, &Self::cvTypesIs >( "cvTypes" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpPwVccvParamField )
VORN_TEXT_OF_RECORD( LdpPwVccvParamField )

constexpr Vorn::VornAttr LdpPwStatusField::vornRows[] = {
   part< &Self::v0, &Self::v0Is >( "v0" ),
   part< &Self::v1, &Self::v1Is >( "v1" ),
   part< &Self::v2, &Self::v2Is >( "v2" ),
   part< &Self::v3, &Self::v3Is >( "v3" ),
   write< &Self::pwNotForwarding, &Self::pwNotForwardingIs >( "pwNotForwarding" ),
   write< &Self::localACIngrRecvFault, &Self::localACIngrRecvFaultIs >( "localACIngrRecvFault" ),
   write< &Self::localACEgrTransFault, &Self::localACEgrTransFaultIs >( "localACEgrTransFault" ),
   write< &Self::localPsnPwIngrRecvFault, &Self::localPsnPwIngrRecvFaultIs >( "localPsnPwIngrRecvFault" ),
   write< &Self::localPsnPwEgrTransFault, &Self::localPsnPwEgrTransFaultIs >( "localPsnPwEgrTransFault" ),
   read< &Self::pwForwarding >( "pwForwarding" ),
   write< &Self::flags, &Self::flagsIs >( "flags" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpPwStatusField )
VORN_TEXT_OF_RECORD( LdpPwStatusField )

// Single octets, whose text form is the number.
constexpr Vorn::VornAttr LdpCommonSessionParamTlvAdField::vornRows[] = {
   part< &Self::value, &Self::valueIs >( "value" ),
   write< &Self::advDiscipline, &Self::advDisciplineIs >( "advDiscipline" ),
   write< &Self::loopDetect, &Self::loopDetectIs >( "loopDetect" ),
   write< &Self::reserved, &Self::reservedIs >( "reserved" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpCommonSessionParamTlvAdField )

constexpr Vorn::VornAttr LdpStateBit::vornRows[] = {
   part< &Self::value, &Self::valueIs >( "value" ), write< &Self::state, &Self::stateIs >( "state" ),
   write< &Self::reserved, &Self::reservedIs >( "reserved" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpStateBit )

constexpr Vorn::VornAttr LdpFecTlvElementHdrTypeField::vornRows[] = { part< &Self::type, &Self::typeIs >(
     "type" ) };
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpFecTlvElementHdrTypeField )

// The headers.
constexpr Vorn::VornAttr LdpPduHdr::vornRows[] = { field< &Self::version_ >( "versionNbo" ),
                                                   field< &Self::length_ >( "lengthNbo" ),
                                                   field< &Self::ldpIdentifier_ >( "ldpIdentifier" ),
                                                   constant< &Self::pduHdrSizeExclude >(
                                                        "pduHdrSizeExclude" ),
                                                   read< &Self::version >( "version" ),
                                                   read< &Self::length >( "length" ),
                                                   read< &Self::totalLength >( "totalLength" ),
                                                   read< &Self::stringValue >( "stringValue" ) };
VORN_VIEW_RECORD( Ldp, LdpPduHdr )

constexpr Vorn::VornAttr LdpMsgHdr::vornRows[] = {
   field< &Self::msgUbitAndTypeField_ >( "msgUbitAndTypeField" ),
   field< &Self::length_ >( "lengthNbo" ),
   field< &Self::msgId_ >( "msgIdNbo" ),
   constant< &Self::msgHdrSizeExclude >( "msgHdrSizeExclude" ),
   constant< &Self::ldpMsgHdrSize >( "ldpMsgHdrSize" ),
   write< &Self::unknown, &Self::unknownIs >( "unknown" ),
   write< &Self::type, &Self::typeIs >( "type" ),
   read< &Self::length >( "length" ),
   read< &Self::msgId >( "msgId" ),
   read< &Self::totalLength >( "totalLength" )
};
VORN_VIEW_RECORD( Ldp, LdpMsgHdr )

constexpr Vorn::VornAttr LdpTlvHdr::vornRows[] = {
   field< &Self::tlvTypeField_ >( "tlvTypeField" ),
   field< &Self::length_ >( "lengthNbo" ),
   write< &Self::type, &Self::typeIs >( "type" ),
   write< &Self::unknown, &Self::unknownIs >( "unknown" ),
   write< &Self::forwardUnknown, &Self::forwardUnknownIs >( "forwardUnknown" ),
   read< &Self::length >( "length" ),
   constant< &Self::tlvHdrSizeExclude >( "tlvHdrSizeExclude" ),
   read< &Self::totalLength >( "totalLength" ),
   function< &Self::validateTlvHdr >( "validateTlvHdr" )
};
VORN_VIEW_RECORD( Ldp, LdpTlvHdr )

// What Hello, Initialization and Capability messages carry.
constexpr Vorn::VornAttr LdpCommonHelloTlv::vornRows[] = {
   field< &Self::holdTime_ >( "holdTimeNbo" ),
   field< &Self::targetHelloField_ >( "targetHelloField" ),
   write< &Self::holdTime, &Self::holdTimeIs >( "holdTime" ),
   write< &Self::targetedHello, &Self::targetedHelloIs >( "targetedHello" ),
   write< &Self::requestSendTargetedHello, &Self::requestSendTargetedHelloIs >( "requestSendTargetedHello" ),
   validateRow< Self >(),
   textRow< Self >()
};
VORN_VIEW_RECORD( Ldp, LdpCommonHelloTlv )

constexpr Vorn::VornAttr LdpIpTransportAddrTlv::vornRows[] = { field< &Self::ipAddr_ >( "ipAddr" ),
                                                               validateRow< Self >(), textRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpIpTransportAddrTlv )

constexpr Vorn::VornAttr LdpConfigSeqNumTlv::vornRows[] = {
   field< &Self::configSeqNum_ >( "configSeqNumNbo" ),
   write< &Self::configSeqNum, &Self::configSeqNumIs >( "configSeqNum" ), validateRow< Self >(),
   textRow< Self >()
};
VORN_VIEW_RECORD( Ldp, LdpConfigSeqNumTlv )

constexpr Vorn::VornAttr LdpIp6TransportAddrTlv::vornRows[] = { field< &Self::ip6Addr_ >( "ip6Addr" ),
                                                                validateRow< Self >(), textRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpIp6TransportAddrTlv )

constexpr Vorn::VornAttr LdpCommonSessionParamTlv::vornRows[] = {
   field< &Self::protocolVersion_ >( "protocolVersionNbo" ),
   field< &Self::keepAliveTime_ >( "keepAliveTimeNbo" ),
   field< &Self::adField_ >( "adField" ),
   field< &Self::pathVecLim_ >( "pathVecLim" ),
   field< &Self::maxPduLength_ >( "maxPduLengthNbo" ),
   field< &Self::recvLdpIdentifier_ >( "recvLdpIdentifier" ),
   write< &Self::protocolVersion, &Self::protocolVersionIs >( "protocolVersion" ),
   write< &Self::keepAliveTime, &Self::keepAliveTimeIs >( "keepAliveTime" ),
   write< &Self::maxPduLength, &Self::maxPduLengthIs >( "maxPduLength" ),
   write< &Self::advDiscipline, &Self::advDisciplineIs >( "advDiscipline" ),
   write< &Self::loopDetect, &Self::loopDetectIs >( "loopDetect" ),
   function< &Self::validate >( "validate" ),
   read< &Self::stringValue >( "stringValue" )
};
VORN_VIEW_RECORD( Ldp, LdpCommonSessionParamTlv )

constexpr Vorn::VornAttr LdpFtSessionTlv::vornRows[] = {
   field< &Self::ftFlags_ >( "ftFlags" ),
   field< &Self::reserved_ >( "reserved" ),
   write< &Self::ftReconnectTimeout, &Self::ftReconnectTimeoutIs >( "ftReconnectTimeout" ),
   write< &Self::ftRecoveryTime, &Self::ftRecoveryTimeIs >( "ftRecoveryTime" ),
   write< &Self::learnFromNetwork, &Self::learnFromNetworkIs >( "learnFromNetwork" ),
   function< &Self::validate >( "validate" ),
   read< &Self::stringValue >( "stringValue" )
};
VORN_VIEW_RECORD( Ldp, LdpFtSessionTlv )

constexpr Vorn::VornAttr LdpCapabilityParameterTlv::vornRows[] = {
   field< &Self::stateBit_ >( "stateBit" ), write< &Self::state, &Self::stateIs >( "state" )
};
VORN_VIEW_RECORD( Ldp, LdpCapabilityParameterTlv )

// What Notification, Address and label messages carry.
constexpr Vorn::VornAttr LdpGenLabelTlv::vornRows[] = { field< &Self::labelField_ >( "labelField" ),
                                                        write< &Self::label, &Self::labelIs >( "label" ),
                                                        validateRow< Self >(), textRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpGenLabelTlv )

constexpr Vorn::VornAttr LdpLabelReqMsgIdTlv::vornRows[] = {
   field< &Self::reqMsgId_ >( "reqMsgIdNbo" ), write< &Self::reqMsgId, &Self::reqMsgIdIs >( "reqMsgId" ),
   validateRow< Self >(), textRow< Self >()
};
VORN_VIEW_RECORD( Ldp, LdpLabelReqMsgIdTlv )

constexpr Vorn::VornAttr LdpHopCountTlv::vornRows[] = { field< &Self::hopCount_ >( "hopCount" ),
                                                        validateRow< Self >(), textRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpHopCountTlv )

constexpr Vorn::VornAttr LdpPathVectorTlv::vornRows[] = { read< &Self::lsrIdNum >( "lsrIdNum" ),
                                                          indexed< &Self::lsrId, &Self::lsrIdNum >( "lsrId" ),
                                                          keyed< &Self::lsrIdPosition >( "lsrIdPosition" ),
                                                          validateRow< Self >(), textRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpPathVectorTlv )

constexpr Vorn::VornAttr LdpStatusTlv::vornRows[] = {
   field< &Self::statusCode_ >( "statusCode" ),
   field< &Self::msgId_ >( "msgIdNbo" ),
   field< &Self::msgType_ >( "msgTypeNbo" ),
   write< &Self::statusData, &Self::statusDataIs >( "statusData" ),
   write< &Self::statusForwardUnknown, &Self::statusForwardUnknownIs >( "statusForwardUnknown" ),
   write< &Self::statusError, &Self::statusErrorIs >( "statusError" ),
   write< &Self::msgId, &Self::msgIdIs >( "msgId" ),
   write< &Self::msgType, &Self::msgTypeIs >( "msgType" ),
   validateRow< Self >(),
   textRow< Self >()
};
VORN_VIEW_RECORD( Ldp, LdpStatusTlv )

constexpr Vorn::VornAttr LdpAddressListTlv::vornRows[] = {
   read< &Self::addressFamilyNbo >( "addressFamilyNbo" ),
   read< &Self::family >( "family" ),
   read< &Self::numAddress >( "numAddress" ),
   indexed< &Self::address, &Self::numAddress >( "address" ),
   function< &Self::validate >( "validate" ),
   read< &Self::stringValue >( "stringValue" )
};
VORN_VIEW_RECORD( Ldp, LdpAddressListTlv )

constexpr Vorn::VornAttr LdpPwStatusTlv::vornRows[] = { field< &Self::pwStatusField_ >( "pwStatusField" ),
                                                        function< &Self::validate >( "validate" ),
                                                        read< &Self::stringValue >( "stringValue" ) };
VORN_VIEW_RECORD( Ldp, LdpPwStatusTlv )

// FEC elements, and the interface parameters of a pseudowire.
constexpr Vorn::VornAttr LdpFecTlvElementHdr::vornRows[] = { field< &Self::typeField_ >( "typeField" ),
                                                             write< &Self::type, &Self::typeIs >( "type" ) };
VORN_VIEW_RECORD( Ldp, LdpFecTlvElementHdr )

constexpr Vorn::VornAttr LdpFecTlvWildcardElementHdr::vornRows[] = { none };
VORN_VIEW_RECORD( Ldp, LdpFecTlvWildcardElementHdr )

constexpr Vorn::VornAttr LdpFecTlvPrefixElementHdr::vornRows[] = {
   field< &Self::family_ >( "familyNbo" ), field< &Self::prefixBits_ >( "prefixBits" ),
   read< &Self::family >( "family" )
};
VORN_VIEW_RECORD( Ldp, LdpFecTlvPrefixElementHdr )

constexpr Vorn::VornAttr LdpFecTlvHostAddressElementHdr::vornRows[] = {
   field< &Self::family_ >( "familyNbo" ), field< &Self::hostAddrLen_ >( "hostAddrLen" ),
   read< &Self::family >( "family" )
};
VORN_VIEW_RECORD( Ldp, LdpFecTlvHostAddressElementHdr )

constexpr Vorn::VornAttr LdpFecTlvP2mpElementHdr::vornRows[] = {
   field< &Self::family_ >( "familyNbo" ), field< &Self::rootIpLenOctets_ >( "rootIpLenOctets" ),
   read< &Self::family >( "family" )
};
VORN_VIEW_RECORD( Ldp, LdpFecTlvP2mpElementHdr )

constexpr Vorn::VornAttr LdpFecTlvPwIdElementHdr::vornRows[] = {
   field< &Self::pwTypeField_ >( "pwTypeField" ),
   field< &Self::pwInfoLen_ >( "pwInfoLen" ),
   field< &Self::groupId_ >( "groupIdNbo" ),
   write< &Self::groupId, &Self::groupIdIs >( "groupId" ),
   write< &Self::controlWord, &Self::controlWordIs >( "controlWord" ),
   write< &Self::pwType, &Self::pwTypeIs >( "pwType" ),
   writtenWhere< &Self::hasPwId >( write< &Self::pwId, &Self::pwIdIs >( "pwId" ) )
};
VORN_VIEW_RECORD( Ldp, LdpFecTlvPwIdElementHdr )

constexpr Vorn::VornAttr LdpPwIntfParamSubTlv::vornRows[] = {
   field< &Self::typeField_ >( "typeField" ), field< &Self::length_ >( "length" ),
   read< &Self::totalLength >( "totalLength" ), constant< &Self::tlvHdrSizeExclude >( "tlvHdrSizeExclude" ),
   read< &Self::type >( "type" )
};
VORN_VIEW_RECORD( Ldp, LdpPwIntfParamSubTlv )

constexpr Vorn::VornAttr LdpPwIntfMtuSubTlv::vornRows[] = { field< &Self::mtu_ >( "mtu" ),
                                                            validateRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpPwIntfMtuSubTlv )

constexpr Vorn::VornAttr LdpPwIntfDescSubTlv::vornRows[] = { read< &Self::description >( "description" ),
                                                             constant< &Self::maxLength >( "maxLength" ),
                                                             validateRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpPwIntfDescSubTlv )

constexpr Vorn::VornAttr LdpPwRequestedVlanIdSubTlv::vornRows[] = { field< &Self::vlanId_ >( "vlanId" ),
                                                                    validateRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpPwRequestedVlanIdSubTlv )

constexpr Vorn::VornAttr LdpPwFragIndicatorSubTlv::vornRows[] = {
   field< &Self::fragIndicator_ >( "fragIndicator" ), validateRow< Self >()
};
VORN_VIEW_RECORD( Ldp, LdpPwFragIndicatorSubTlv )

constexpr Vorn::VornAttr LdpPwVccvParamSubTlv::vornRows[] = { field< &Self::vccvParam_ >( "vccvParam" ),
                                                              read< &Self::ccTypes >( "ccTypes" ),
                                                              read< &Self::cvTypes >( "cvTypes" ),
                                                              validateRow< Self >() };
VORN_VIEW_RECORD( Ldp, LdpPwVccvParamSubTlv )

} // namespace Ldp
