// The types of the decoders, and others that are written by hand, as reflection shows them: a table apart
// from the code, and what the operations of each kind of attribute promise.
#include "Ldp/LdpUtils.h"
#include "Vorn/GenericIf.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

namespace {

using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;
namespace GenericIf = Vorn::GenericIf;

// Name, kind, size on the wire (0: any), base, id of the first attribute of its own; then its attributes in
// their order. A "view" is state that reflection does not write. Names without a namespace are of Ldp.
constexpr char table[] = R"(
LdpIdentifier value 6 - 0x2
  ctor lsrId: U32, lblSpace: U16
  derived stringValue: Vorn::String, hash: U32

LdpHdrMsgUbitAndTypeField value 2 Lumo::NetU16 0x2
  state v0: U8, v1: U8, unknown: bool, type: U16
LdpTlvTypeField value 2 Lumo::NetU16 0x2
  state v0: U8, v1: U8, unknown: bool, forwardUnknown: bool, type: U16
LdpCommonHelloTargetField value 2 Lumo::NetU16 0x2
  state v0: U8, v1: U8, targetedHello: bool, requestSendTargetedHello: bool, reserved: U16
LdpFtSessionFlags value 2 Lumo::NetU16 0x2
  state v0: U8, v1: U8, learnFromNetwork: U16, checkPoint: U16, allLabelProt: U16, saveState: U16, reserved: U16
  state reconnect: U16
LdpGenLabelTlvLabel value 4 Lumo::NetU32 0x2
  state v0: U8, v1: U8, v2: U8, v3: U8, labelNbo: U32, reserved: U32
LdpStatusTlvStatusCode value 4 Lumo::NetU32 0x2
  state v0: U8, v1: U8, v2: U8, v3: U8, statusDataNbo: U32, forwardUnknown: bool, error: bool
LdpFecTlvPwIdElementHdrTypeField value 2 Lumo::NetU16 0x2
  state v0: U8, v1: U8, controlWordBit: bool, pwType: U16
LdpPwVccvParamField value 2 Lumo::NetU16 0x2
  state v0: U8, v1: U8, ccTypes: U8, cvTypes: U8
LdpPwStatusField value 4 Lumo::NetU32 0x2
  state v0: U8, v1: U8, v2: U8, v3: U8, pwNotForwarding: bool, localACIngrRecvFault: bool
  state localACEgrTransFault: bool, localPsnPwIngrRecvFault: bool, localPsnPwEgrTransFault: bool
  derived pwForwarding: bool
  state flags: Pseudowire::PseudowireLdpStatusFlags
LdpCommonSessionParamTlvAdField value 1 Lumo::NetU8 0x2
  state value: U8, advDiscipline: bool, loopDetect: bool, reserved: U8
LdpStateBit value 1 Lumo::NetU8 0x2
  state value: U8, state: bool, reserved: U8
LdpFecTlvElementHdrTypeField value 1 Lumo::NetU8 0x2
  state type: U8

LdpFecTlvP2mpOpaqueLength value 2 - 0x2
  state totalOpaqueLen: Lumo::NetU16
LdpMPBasicOpaqueValueElementHdr value 3 - 0x2
  state type: U8, opaqueLenNbo: Lumo::NetU16
LdpGenericLSPId value 7 - 0x2
  state type: U8, opaqueLenNbo: Lumo::NetU16, opaqueId: Lumo::NetU32
LdpP2mpFecElement value 0 - 0x2
  state rootIp: Lumo::IpGenAddr, opaqueStr: Vorn::String
  derived stringValue: Vorn::String
LdpP2mpFecGenericOpaqueId value 0 - 0x2
  ctor rootIp: Lumo::IpGenAddr, gOpaqueId: U32
  state stringValue: Vorn::String
  derived hash: U32
  constant defaultAttribute: Vorn::String = 'stringValue'
LdpPwIntfParamFlags value 4 - 0x2
  state value: U32
  constant intfMtu_: U32 = 1, intfDesc_: U32 = 2, requestedVlanId_: U32 = 4, fragIndicator_: U32 = 8
  constant vccvParam_: U32 = 16
  state intfMtu: bool, intfDesc: bool, requestedVlanId: bool, fragIndicator: bool, vccvParam: bool
PwFwdEqvClass value 0 - 0x2
  ctor pwId: Pseudowire::PseudowireId, pwType: Pseudowire::PseudowireType, controlWord: bool
  constant defaultAttribute: Vorn::String = 'stringValue'
  state stringValue: Vorn::String
  derived pwTypeValue: U32, hash: U32
PwFwdEqvClassParams value 0 - 0x2
  state groupId: Pseudowire::GroupId, mtu: U32, intfDescription: Vorn::String
  state requestedVlanId: Bridging::VlanIdOrNone, fragCapable: bool, vccvCcTypes: U8
  state vccvCvTypes: Pseudowire::VccvCvTypes
  constant unspecifiedMtu: U32 = 0
  derived stringValue: Vorn::String
PwFwdEqvClassInfo value 0 - 0x2
  state fwdEqvClass: PwFwdEqvClass, params: PwFwdEqvClassParams
  derived pwId: Pseudowire::PseudowireId
  state groupId: Pseudowire::GroupId, intfDescription: Vorn::String, requestedVlanId: Bridging::VlanIdOrNone
  derived stringValue: Vorn::String

LdpPduHdr overlay 10 - 0x102
  state versionNbo: Lumo::NetU16, lengthNbo: Lumo::NetU16, ldpIdentifier: LdpIdentifier
  constant pduHdrSizeExclude: U16 = 4
  derived version: U16, length: U16, totalLength: U16, stringValue: Vorn::String
LdpMsgHdr overlay 8 - 0x102
  state msgUbitAndTypeField: LdpHdrMsgUbitAndTypeField, lengthNbo: Lumo::NetU16, msgIdNbo: Lumo::NetU32
  constant msgHdrSizeExclude: U16 = 4, ldpMsgHdrSize: U16 = 8
  state unknown: bool, type: LdpMsgType
  derived length: U16, msgId: U32, totalLength: U16
LdpTlvHdr overlay 4 - 0x102
  state tlvTypeField: LdpTlvTypeField, lengthNbo: Lumo::NetU16, type: LdpTlvType, unknown: bool
  state forwardUnknown: bool
  derived length: U16
  constant tlvHdrSizeExclude: U16 = 4
  derived totalLength: U16
  function validateTlvHdr: LdpStatusCode
LdpCommonHelloTlv overlay 8 LdpTlvHdr 0x182
  state holdTimeNbo: Lumo::NetU16, targetHelloField: LdpCommonHelloTargetField, holdTime: U16
  state targetedHello: bool, requestSendTargetedHello: bool
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpIpTransportAddrTlv overlay 8 LdpTlvHdr 0x182
  state ipAddr: Lumo::IpAddr
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpConfigSeqNumTlv overlay 8 LdpTlvHdr 0x182
  state configSeqNumNbo: Lumo::NetU32, configSeqNum: U32
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpIp6TransportAddrTlv overlay 20 LdpTlvHdr 0x182
  state ip6Addr: Lumo::Ip6Addr
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpCommonSessionParamTlv overlay 18 LdpTlvHdr 0x182
  state protocolVersionNbo: Lumo::NetU16, keepAliveTimeNbo: Lumo::NetU16
  state adField: LdpCommonSessionParamTlvAdField, pathVecLim: U8, maxPduLengthNbo: Lumo::NetU16
  state recvLdpIdentifier: LdpIdentifier, protocolVersion: U16, keepAliveTime: U16, maxPduLength: U16
  state advDiscipline: bool, loopDetect: bool
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpFtSessionTlv overlay 16 LdpTlvHdr 0x182
  state ftFlags: LdpFtSessionFlags, reserved: Lumo::NetU16, ftReconnectTimeout: U32, ftRecoveryTime: U32
  state learnFromNetwork: U16
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpCapabilityParameterTlv overlay 5 LdpTlvHdr 0x182
  state stateBit: LdpStateBit, state: bool
LdpGenLabelTlv overlay 8 LdpTlvHdr 0x182
  state labelField: LdpGenLabelTlvLabel, label: Lumo::MplsLabel
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpLabelReqMsgIdTlv overlay 8 LdpTlvHdr 0x182
  state reqMsgIdNbo: Lumo::NetU32, reqMsgId: U32
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpHopCountTlv overlay 5 LdpTlvHdr 0x182
  state hopCount: U8
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpPathVectorTlv overlay 4 LdpTlvHdr 0x182
  derived lsrIdNum: U32, lsrId[U32]: Lumo::IpAddr, lsrIdPosition[Lumo::IpAddr]: U32
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpStatusTlv overlay 14 LdpTlvHdr 0x182
  state statusCode: LdpStatusTlvStatusCode, msgIdNbo: Lumo::NetU32, msgTypeNbo: Lumo::NetU16
  state statusData: LdpStatusCode, statusForwardUnknown: bool, statusError: bool, msgId: U32
  state msgType: LdpMsgType
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpAddressListTlv overlay 4 LdpTlvHdr 0x182
  derived addressFamilyNbo: Lumo::NetU16, family: Lumo::AddressFamily, numAddress: U16
  derived address[U16]: Lumo::IpGenAddr
  function validate: LdpStatusCode
  derived stringValue: Vorn::String
LdpPwStatusTlv overlay 8 LdpTlvHdr 0x182
  state pwStatusField: LdpPwStatusField
  function validate: LdpStatusCode
  derived stringValue: Vorn::String

LdpFecTlvElementHdr overlay 1 - 0x102
  state typeField: LdpFecTlvElementHdrTypeField, type: LdpFecElementType
LdpFecTlvWildcardElementHdr overlay 1 LdpFecTlvElementHdr 0x182
LdpFecTlvPrefixElementHdr overlay 4 LdpFecTlvElementHdr 0x182
  state familyNbo: Lumo::NetU16, prefixBits: U8
  derived family: Lumo::AddressFamily
LdpFecTlvHostAddressElementHdr overlay 4 LdpFecTlvElementHdr 0x182
  state familyNbo: Lumo::NetU16, hostAddrLen: U8
  derived family: Lumo::AddressFamily
LdpFecTlvP2mpElementHdr overlay 4 LdpFecTlvElementHdr 0x182
  state familyNbo: Lumo::NetU16, rootIpLenOctets: U8
  derived family: Lumo::AddressFamily
LdpFecTlvPwIdElementHdr overlay 8 LdpFecTlvElementHdr 0x182
  state pwTypeField: LdpFecTlvPwIdElementHdrTypeField, pwInfoLen: U8, groupIdNbo: Lumo::NetU32
  state groupId: Pseudowire::GroupId, controlWord: bool, pwType: Pseudowire::PseudowireType
  state pwId: Pseudowire::PseudowireId
LdpPwIntfParamSubTlv overlay 2 - 0x102
  state typeField: U8, length: U8
  derived totalLength: U8
  constant tlvHdrSizeExclude: U8 = 2
  derived type: LdpPwIntfParamSubTlvType
LdpPwIntfMtuSubTlv overlay 4 LdpPwIntfParamSubTlv 0x182
  state mtu: Lumo::NetU16
  function validate: LdpStatusCode
LdpPwIntfDescSubTlv overlay 2 LdpPwIntfParamSubTlv 0x182
  derived description: Vorn::String
  constant maxLength: U8 = 82
  function validate: LdpStatusCode
LdpPwRequestedVlanIdSubTlv overlay 4 LdpPwIntfParamSubTlv 0x182
  state vlanId: Lumo::NetU16
  function validate: LdpStatusCode
LdpPwFragIndicatorSubTlv overlay 4 LdpPwIntfParamSubTlv 0x182
  state fragIndicator: Lumo::NetU16
  function validate: LdpStatusCode
LdpPwVccvParamSubTlv overlay 4 LdpPwIntfParamSubTlv 0x182
  state vccvParam: LdpPwVccvParamField
  derived ccTypes: U8, cvTypes: U8
  function validate: LdpStatusCode

LdpTlvGroupParser object 0 - 0x102
  state pkt: Lumo::Pkt, offset: U32, size: U32
  derived valid: bool
  state reason: Vorn::String, statusCode: LdpStatusCode
  values tlvOffset[U32]: U32
  derived tlvNum: U32
  function parseTlvGroup: bool
LdpPduParser object 0 - 0x102
  ctor pkt: Lumo::Pkt, offset: U32
  view header: LdpPduHdr
  derived version: U16, length: U16, totalLength: U16, ldpIdentifier: LdpIdentifier, stringValue: Vorn::String
  state statusCode: LdpStatusCode, reason: Vorn::String
  derived validLdpPdu: bool
  child tlvGroupParser: LdpTlvGroupParser
  derived messageNum: U32, messageOffset[U32]: U32
  state initialized: bool
  function handleInitialized: void
LdpMsgParser object 0 - 0x102
  ctor pkt: Lumo::Pkt, offset: U32
  view msgHdr: LdpMsgHdr
  derived unknown: bool, type: LdpMsgType, msgId: U32, length: U16, totalLength: U16, stringValue: Vorn::String
  child tlvGroupParser: LdpTlvGroupParser
  derived tlvNum: U32, tlvOffset[U32]: U32, validMsg: bool
  state reason: Vorn::String, statusCode: LdpStatusCode
  view msgFecTlv: LdpTlvHdr
  child ldpFecTlvParser: LdpFecTlvParser
  view msgStatusTlv: LdpStatusTlv
LdpHelloMsgParser object 0 LdpMsgParser 0x182
  view msgCommonHelloTlv: LdpCommonHelloTlv, msgIpTransportTlv: LdpIpTransportAddrTlv
  view msgIp6TransportTlv: LdpIp6TransportAddrTlv, msgConfigSeqTlv: LdpConfigSeqNumTlv
  state initialized: bool
  function handleInitialized: void
LdpCapabilityParser object 0 LdpMsgParser 0x182
  values capabilities[LdpTlvType]: LdpCapabilityParameterTlv
  function parseCapabilityTlvs: void
LdpInitMsgParser object 0 LdpCapabilityParser 0x202
  view msgSessionParamTlv: LdpCommonSessionParamTlv, msgFtSessionTlv: LdpFtSessionTlv
  state initialized: bool
  function handleInitialized: void
LdpCapabilityMsgParser object 0 LdpCapabilityParser 0x202
  state initialized: bool
  function handleInitialized: void
LdpNotificationMsgParser object 0 LdpMsgParser 0x182
  view msgPwStatusTlv: LdpPwStatusTlv
  state initialized: bool
  function handleInitialized: void
LdpAddressMsgParser object 0 LdpMsgParser 0x182
  view addressListTlv: LdpAddressListTlv
  state initialized: bool
  function handleInitialized: void
LdpAddressWithdrawMsgParser object 0 LdpMsgParser 0x182
  view addressListTlv: LdpAddressListTlv
  state initialized: bool
  function handleInitialized: void
LdpLabelMappingMsgParser object 0 LdpMsgParser 0x182
  view msgGenLabelTlv: LdpGenLabelTlv, msgReqMsgIdTlv: LdpLabelReqMsgIdTlv, msgHopCountTlv: LdpHopCountTlv
  view msgPathVectorTlv: LdpPathVectorTlv, msgPwStatusTlv: LdpPwStatusTlv
  state initialized: bool
  function handleInitialized: void
LdpLabelRequestMsgParser object 0 LdpMsgParser 0x182
  view msgHopCountTlv: LdpHopCountTlv, msgPathVectorTlv: LdpPathVectorTlv
  state initialized: bool
  function handleInitialized: void
LdpLabelWithdrawMsgParser object 0 LdpMsgParser 0x182
  view msgGenLabelTlv: LdpGenLabelTlv
  state initialized: bool
  function handleInitialized: void
LdpLabelReleaseMsgParser object 0 LdpMsgParser 0x182
  view msgGenLabelTlv: LdpGenLabelTlv
  state initialized: bool
  function handleInitialized: void
LdpLabelAbortReqMsgParser object 0 LdpMsgParser 0x182
  view msgReqMsgIdTlv: LdpLabelReqMsgIdTlv
  state initialized: bool
  function handleInitialized: void

LdpMsg object 0 - 0x102
  ctor ldpIdentifier: LdpIdentifier
  state srcIpAddr: Lumo::IpAddr
  ctor pkt: Lumo::Pkt, offset: U16
  state priority: U8

LdpTlvParser object 0 - 0x102
  ctor pkt: Lumo::Pkt, offset: U32
  view header: LdpTlvHdr
  derived unknown: bool, forwardUnknown: bool, type: LdpTlvType, length: U16
LdpCommonHelloTlvParser object 0 LdpTlvParser 0x182
  state holdTime: U16, targetedHello: bool, requestSendTargetedHello: bool
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpIpTransportAddrTlvParser object 0 LdpTlvParser 0x182
  state ipAddr: Lumo::IpAddr
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpConfigSeqNumTlvParser object 0 LdpTlvParser 0x182
  state configSeqNum: U32
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpIp6TransportAddrTlvParser object 0 LdpTlvParser 0x182
  state ip6Addr: Lumo::Ip6Addr
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpCommonSessionParamTlvParser object 0 LdpTlvParser 0x182
  state protocolVersion: U16, keepAliveTime: U16, advDiscipline: bool, loopDetect: bool, pathVecLim: U8
  state maxPduLength: U16, recvLdpIdentifier: LdpIdentifier
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpFtSessionTlvParser object 0 LdpTlvParser 0x182
  state ftRecoveryTime: U32, ftReconnectTimeout: U32, learnFromNetwork: U16, ftFlags: LdpFtSessionFlags
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpGenLabelTlvParser object 0 LdpTlvParser 0x182
  state label: Lumo::MplsLabel
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpLabelReqMsgIdTlvParser object 0 LdpTlvParser 0x182
  state reqMsgId: U32
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpHopCountTlvParser object 0 LdpTlvParser 0x182
  state hopCount: U8
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpPathVectorTlvParser object 0 LdpTlvParser 0x182
  derived lsrIdNum: U32, lsrId[U32]: Lumo::IpAddr, lsrIdPosition[Lumo::IpAddr]: U32, stringValue: Vorn::String
  function validate: LdpStatusCode
LdpStatusTlvParser object 0 LdpTlvParser 0x182
  state statusError: bool, statusForwardUnknown: bool, statusData: LdpStatusCode, msgId: U32
  state msgType: LdpMsgType
  derived stringValue: Vorn::String
  function validate: LdpStatusCode
LdpAddressListTlvParser object 0 LdpTlvParser 0x182
  derived family: Lumo::AddressFamily, address[U16]: Lumo::IpGenAddr, numAddress: U16, stringValue: Vorn::String
  function validate: LdpStatusCode
LdpPwStatusTlvParser object 0 LdpTlvParser 0x182
  derived pwForwarding: bool, pwNotForwarding: bool, localACIngrRecvFault: bool, localACEgrTransFault: bool
  derived localPsnPwIngrRecvFault: bool, localPsnPwEgrTransFault: bool, stringValue: Vorn::String
  function validate: LdpStatusCode
LdpFecTlvParser object 0 LdpTlvParser 0x182
  ctor ldpProtoParam: LdpProtoParam
  derived valid: bool
  state statusCode: LdpStatusCode, reason: Vorn::String
  references fecElement[U32]: LdpFecTlvElement
  state hasWildcardFecElement: bool, initialized: bool
  function parseElements: bool
  derived stringValue: Vorn::String

LdpFecTlvElement object 0 - 0x102
  state fwdEqvCls: Mpls::FwdEqvClass, pwFwdEqvCls: PwFwdEqvClassInfo, p2mpFecElem: LdpP2mpFecElement
  derived type: LdpFecElementType, stringValue: Vorn::String
LdpFecTlvWildcardElement object 0 LdpFecTlvElement 0x182
LdpFecTlvPrefixElement object 0 LdpFecTlvElement 0x182
LdpFecTlvHostAddrElement object 0 LdpFecTlvElement 0x182
LdpFecTlvP2mpElement object 0 LdpFecTlvElement 0x182
LdpFecTlvPwIdElement object 0 LdpFecTlvElement 0x182
  state parsedIntfParams: LdpPwIntfParamFlags
)";

struct Row {
   VornKind kind;
   bool writable;
   std::string name, key, type, value; // value of a constant
};
struct ExpectedRecord {
   std::string name, kind, base;
   std::size_t size;
   U32 firstId;
   std::vector< Row > rows;
};

std::string full( std::string const & name ) {
   bool const ours = name.starts_with( "Ldp" ) || name.starts_with( "PwF" );
   return ours ? "Ldp::" + name : name;
}

Row row( std::string const & kind, std::string const & text ) {
   static std::map< std::string, VornKind > const kinds{ { "ctor", VornKind::constructor },
                                                         { "state", VornKind::state },
                                                         { "view", VornKind::state },
                                                         { "derived", VornKind::derived },
                                                         { "constant", VornKind::constant },
                                                         { "function", VornKind::function },
                                                         { "child", VornKind::child },
                                                         { "values", VornKind::localValueColl },
                                                         { "references", VornKind::referenceColl } };
   std::istringstream words( text );
   std::string name, type, equals;
   Row row{ kinds.at( kind ), kind == "state", "", "", "", "" };
   words >> name >> type >> equals >> row.value;
   name.pop_back(); // the colon
   auto const bracket = name.find( '[' );
   row.name = name.substr( 0, bracket );
   if ( bracket != std::string::npos )
      row.key = full( name.substr( bracket + 1, name.size() - bracket - 2 ) );
   row.type = full( type );
   return row;
}

std::vector< ExpectedRecord > const & expectedRecords() {
   static std::vector< ExpectedRecord > const records = [] {
      std::vector< ExpectedRecord > read;
      std::istringstream lines( table );
      for ( std::string line; std::getline( lines, line ); ) {
         std::istringstream words( line );
         std::string first, id;
         if ( !( words >> first ) ) continue;
         if ( line.front() != ' ' ) {
            ExpectedRecord record{ full( first ), "", "", 0, 0, {} };
            words >> record.kind >> record.size >> record.base >> id;
            record.base = full( record.base );
            record.firstId = U32( std::stoul( id, nullptr, 16 ) );
            read.push_back( record );
            continue;
         }
         for ( std::string text; std::getline( words >> std::ws, text, ',' ); ) {
            read.back().rows.push_back( row( first, text ) );
         }
      }
      return read;
   }();
   return records;
}

VornType const & typeOf( std::string const & name ) {
   VornType const * const type = Vorn::typeNode( name.c_str() );
   if ( !type ) throw std::runtime_error( name + " is not registered" );
   return *type;
}

TEST( DecoderTypes, RecordsAreAsWrittenDown ) {
   std::map< std::string, U32 > const flags{ { "value", 0x0000ffff },
                                             { "overlay", 0x0000ffff },
                                             { "object", 0x0200ffff } };
   for ( ExpectedRecord const & expected : expectedRecords() ) {
      SCOPED_TRACE( expected.name );
      VornType const & type = typeOf( expected.name );
      EXPECT_EQ( type.base ? type.base->name : "-", expected.base );
      EXPECT_EQ( type.flags, flags.at( expected.kind ) );
      EXPECT_EQ( type.sizeAndFlags >> 28, expected.kind == "overlay" ? 1u : 8u );
      EXPECT_TRUE( expected.size == 0 || type.size() == expected.size );
      U32 const inherited = type.base ? type.base->attributeNum : 0;
      ASSERT_EQ( type.attributeNum, inherited + expected.rows.size() );
      for ( U32 i = 0; i < inherited; ++i ) {
         EXPECT_EQ( type.attributes[i].name, type.base->attributes[i].name ) << "the base's come first";
      }
      for ( U32 i = 0; i < expected.rows.size(); ++i ) {
         Row const & row = expected.rows[i];
         SCOPED_TRACE( row.name );
         VornAttr const & attr = type.attributes[inherited + i];
         EXPECT_EQ( attr.name, row.name );
         EXPECT_EQ( attr.id(), expected.firstId + i );
         EXPECT_EQ( attr.kind(), row.kind );
         EXPECT_EQ( bool( attr.flags & Vorn::writeAccess ), row.writable );
         EXPECT_FALSE( attr.logged() );
         EXPECT_EQ( attr.owner, &type );
         EXPECT_EQ( attr.type->name, row.type );
         EXPECT_EQ( attr.keyType ? attr.keyType->name : "", row.key );
         if ( row.value.empty() ) continue;
         EXPECT_EQ( GenericIf::attributeText( nullptr, type, attr ), row.value.c_str() );
      }
      EXPECT_TRUE( !type.attributes || !type.attributes[type.attributeNum].name );
   }
}

TEST( DecoderTypes, NoneIsLeftOut ) {
   std::set< std::string > expected;
   for ( ExpectedRecord const & record : expectedRecords() ) {
      expected.insert( record.name );
   }
   for ( VornType const * type : Vorn::typeNodes() ) {
      bool const counted = type->isPolymorphic() && !type->attribute( "parentAttrName" );
      if ( !( type->isOverlay() || counted ) || !std::string( type->name ).starts_with( "Ldp::" ) ) continue;
      EXPECT_TRUE( expected.count( type->name ) ) << type->name;
   }
}

// A Mapping of 10.0.0.0/8 with label 16, a hop count and a path vector of two, behind two octets of something
// else.
constexpr U8 mapping[] = { 0xee, 0xee,                                           //
                           0x04, 0x00, 0x00, 0x26, 0x00, 0x00, 0x00, 0x07,       //
                           0x01, 0x00, 0x00, 0x05, 0x02, 0x00, 0x01, 0x08, 0x0a, //
                           0x02, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00, 0x10,       //
                           0x01, 0x03, 0x00, 0x01, 0x05,                         //
                           0x01, 0x04, 0x00, 0x08, 0x01, 0x01, 0x01, 0x01, 0x02, 0x02, 0x02, 0x02 };
constexpr U32 start = 2, hopCountAt = 27;

// An object or view that is known by its record alone.
class Thing {
 public:
   Thing( Ptr< PtrInterface > const & object )
        : keep_( object ), at_( object.ptr() ), type_( *object->fwkType() ) {}
   Thing( void * at, VornType const & type ) : at_( at ), type_( type ) {}

   // Made by its factory over the first octets of the packet.
   static Thing made( char const * type, U32 offset, std::size_t octets = sizeof mapping ) {
      Ptr< PtrInterface > const pkt = Lumo::pktFactory( mapping, octets );
      void const * const args[] = { &pkt, &offset };
      Ptr< PtrInterface > object;
      typeOf( type ).genericIfConstructFromCtorArgs( &object, args );
      return object;
   }

   U32 op( char const * attr, U32 op, void * result, void const * key, void const * arg ) const {
      return GenericIf::attributeOp( type_, result, at_, *type_.attribute( attr ), op, key, &arg );
   }
   std::string text( char const * attr ) const {
      return GenericIf::attributeText( at_, type_, *type_.attribute( attr ) ).charPtr();
   }
   U32 write( char const * attr, char const * text ) const {
      Value value( type_.attribute( attr )->type );
      value.stringValueIs( text );
      return op( attr, GenericIf::write, nullptr, nullptr, value.data() );
   }
   Thing child( char const * attr ) const {
      Ptr< PtrInterface > object;
      EXPECT_EQ( op( attr, GenericIf::read, &object, nullptr, nullptr ), GenericIf::done );
      return object;
   }
   Thing view( char const * attr ) const {
      Vorn::NrcPtrInterface const * view = nullptr;
      EXPECT_EQ( op( attr, GenericIf::read, &view, nullptr, nullptr ), GenericIf::done );
      return { const_cast< Vorn::NrcPtrInterface * >( view ), *type_.attribute( attr )->type };
   }
   explicit operator bool() const { return at_; }
   // Keys and members of a walk.
   std::string walk( char const * name ) const {
      VornAttr const & attr = *type_.attribute( name );
      std::string seen;
      for ( GenericIf::Iterator it( at_, attr ); it; it.advance() ) {
         Value key( attr.keyType ), member( attr.type );
         it.key( key.data() );
         it.object( member.data() );
         seen += std::string( seen.empty() ? "" : " " ) + key.stringValue().charPtr() + "=" +
                 member.stringValue().charPtr();
      }
      return seen;
   }

 private:
   Ptr< PtrInterface > keep_;
   void * at_;
   VornType const & type_;
};

TEST( DecoderTypes, AMessageIsReadByRecordsAlone ) {
   Thing const parser = Thing::made( "Ldp::LdpLabelMappingMsgParser", start );
   EXPECT_EQ( parser.text( "validMsg" ), "True" );
   EXPECT_EQ( parser.text( "msgId" ), "7" );
   EXPECT_EQ( parser.walk( "tlvOffset" ), "0=10 1=19 2=27 3=32" );
   EXPECT_EQ( parser.child( "tlvGroupParser" ).text( "tlvNum" ), "4" );
   EXPECT_EQ( parser.view( "msgGenLabelTlv" ).text( "label" ), "16" );
   EXPECT_EQ( parser.view( "msgGenLabelTlv" ).text( "type" ), "genLabelTlv" ) << "of the base";
   EXPECT_EQ( parser.view( "msgPathVectorTlv" ).walk( "lsrId" ), "0=1.1.1.1 1=2.2.2.2" );
   EXPECT_FALSE( parser.view( "msgPwStatusTlv" ) );
   Thing const fec = parser.child( "ldpFecTlvParser" );
   EXPECT_EQ( fec.walk( "fecElement" ), "0=Ldp::LdpFecTlvPrefixElement" );
   U32 const first = 0;
   Ptr< PtrInterface > element;
   EXPECT_EQ( fec.op( "fecElement", GenericIf::read, &element, &first, nullptr ), GenericIf::done );
   EXPECT_EQ( Thing( element ).text( "fwdEqvCls" ), "10.0.0.0/8" );
   Value other( &Ldp::PwFwdEqvClassInfo::_vornType );
   EXPECT_EQ( Thing( element ).op( "pwFwdEqvCls", GenericIf::read, other.data(), nullptr, nullptr ),
              GenericIf::notApplicable )
        << "it is of another kind, and nothing asserts";
}

TEST( DecoderTypes, WhatReflectionMayWriteAndCall ) {
   Thing const parser = Thing::made( "Ldp::LdpLabelMappingMsgParser", start );
   EXPECT_EQ( parser.write( "statusCode", "shutdown" ), GenericIf::done );
   EXPECT_EQ( parser.text( "validMsg" ), "False" );
   for ( char const * attr : { "offset", "msgId", "validMsg" } ) {
      EXPECT_EQ( parser.write( attr, attr == std::string( "validMsg" ) ? "True" : "1" ),
                 GenericIf::notApplicable )
           << attr;
   }
   EXPECT_EQ( parser.op( "msgHdr", GenericIf::write, nullptr, nullptr, nullptr ), GenericIf::notApplicable );
   U32 const at = 4;
   U32 offset = 0;
   EXPECT_EQ( parser.op( "tlvOffset", GenericIf::read, &offset, &at, nullptr ), GenericIf::notApplicable )
        << "behind the last";
   Ldp::LdpStatusCode status = Ldp::internalError;
   Thing const tlv = Thing::made( "Ldp::LdpHopCountTlvParser", hopCountAt );
   EXPECT_EQ( tlv.op( "validate", GenericIf::read, &status, nullptr, nullptr ), GenericIf::notApplicable );
   EXPECT_EQ( tlv.op( "validate", GenericIf::write, &status, nullptr, nullptr ), GenericIf::done );
   EXPECT_EQ( status, Ldp::success );
   Thing const group = parser.child( "tlvGroupParser" );
   U32 const first = 0;
   EXPECT_EQ( group.op( "tlvOffset", GenericIf::del, &offset, &first, nullptr ), GenericIf::done );
   EXPECT_EQ( offset, 10u );
   EXPECT_EQ( group.text( "tlvNum" ), "3" );
}

// A view that does not lie in the packet is not given out, and a setter does not act where its octets are
// not.
TEST( DecoderTypes, NothingReachesBehindThePacket ) {
   for ( std::size_t octets = start; octets <= start + 8; ++octets ) {
      bool const whole = octets == start + 8;
      EXPECT_EQ( bool( Thing::made( "Ldp::LdpMsgParser", start, octets ).view( "msgHdr" ) ), whole )
           << octets;
   }
   for ( std::size_t octets = hopCountAt; octets <= hopCountAt + 5; ++octets ) {
      Thing const tlv = Thing::made( "Ldp::LdpHopCountTlvParser", hopCountAt, octets );
      bool const whole = octets == hopCountAt + 5;
      EXPECT_EQ( bool( tlv.view( "header" ) ), octets >= hopCountAt + 4 ) << octets;
      EXPECT_EQ( tlv.text( "hopCount" ), whole ? "5" : "0" );
      EXPECT_EQ( tlv.write( "hopCount", "9" ), whole ? GenericIf::done : GenericIf::notApplicable );
      EXPECT_EQ( tlv.text( "hopCount" ), whole ? "9" : "0" );
   }
}

} // namespace
