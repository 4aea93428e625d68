#include "model/ExpectedTypes.h"

#include <map>
#include <sstream>
#include <stdexcept>

namespace Test {

namespace {

// A line each: id, kind, whether the log carries it, name, key in brackets, type, default.
constexpr char entities[] = R"(
Ldp::LdpProtoParam
  0x102 constant  no  ldpUdpPort: U16 = 646
  0x103 constant  no  ldpTcpPort: U16 = 646
  0x104 constant  no  ldpPktBufferSize: U16 = 9600
  0x105 constant  no  ldpProtocolVersion: U16 = 1
  0x106 constant  no  defaultMaxPduLength: U16 = 4096
  0x107 constant  no  msgTypeIgnoreBegin: U16 = 32768
  0x108 constant  no  tlvTypeIgnoreBegin: U16 = 32768
  0x109 constant  no  infiniteHelloHoldTime: U16 = 65535
  0x10a constant  no  ldpNewAdjHelloWaitTime: double = 0.1
  0x10b constant  no  ldpNewSessionWaitTime: double = 0.5
  0x10c constant  no  defaultBasicHelloInterval: U16 = 5
  0x10d constant  no  defaultBasicHelloHoldTime: U16 = 15
  0x10e constant  no  defaultTargetHelloInterval: U16 = 15
  0x10f constant  no  defaultTargetHelloHoldTime: U16 = 45
  0x110 constant  no  defaultSessionKeepAliveTime: U16 = 30
  0x111 constant  no  defaultRetryBackoffTime: double = 15
  0x112 constant  no  defaultMaxRetryBackoffTime: double = 120
  0x113 constant  no  ldpNonFatalSessionRetryTime: double = 10
  0x114 constant  no  ldpImmediateHelloWaitTime: double = 0.1
  0x115 constant  no  ldpIpTos: Lumo::IpDscp = 192
  0x116 constant  no  ldpIpChangeSessionRetryTime: double = 2
  0x117 constant  no  ldpIdChangeSessionRetryTime: double = 2
  0x118 constant  no  ldpMldpChangeSessionRetryTime: double = 2
  0x119 constant  no  ldpGrReconnectChangeSessionRetryTime: double = 2
  0x11a constant  no  ldpTcpConnExponentialBackoffRetries: U16 = 5
  0x11b constant  no  ldpMaxStartListenerRetries: U32 = 5
  0x11c constant  no  defaultHelloRedundancyTimeout: double = 600
  0x11d mutable   log tlvIpTransportAddrIncude: bool = True
  0x11e mutable   log tlvIpTransportUnknownBit: bool = False
  0x11f mutable   log tlvConfigSeqNumInclude: bool = True
  0x120 mutable   log tlvConfigSeqNumUnknownBit: bool = False
  0x121 mutable   log fecTlvStrictPrefixWildcardOnlyElement: bool = True
  0x122 constant  no  serviceName: Vorn::String = 'ldp'
  0x123 constant  no  defaultGrHoldingTimeout: U32 = 90
  0x124 constant  no  defaultGrReconnectTimeout: U32 = 90
  0x125 constant  no  defaultGrNeighborLivenessTimeout: U32 = 180
  0x126 constant  no  defaultGrMaxRecoveryTimeout: U32 = 180
  0x127 constant  no  ldpProtoConfigSmDelay: double = 1
  0x128 constant  no  ldpRootSmDelay: double = 2

Ldp::LdpConfigColl
  0x102 entities  log config[L3::VrfName]: Ldp::Config
  0x103 mutable   log initialized: bool = True
  0x104 function  no  handleInitialized: void

Ldp::Config
  0x102 ctor      no  vrfName: L3::VrfName
  0x103 mutable   log enabled: bool = False
  0x104 mutable   log ipTransportAddrIntfId: Lumo::IntfId = ''
  0x105 mutable   log ldpLabelDistCtrl: Ldp::LdpLabelDistCtrl = orderedCtrl
  0x106 mutable   log ldpLabelAdvDspl: Ldp::LdpLabelAdvDspl = unSolicited
  0x107 mutable   log ldpLabelRetention: Ldp::LdpLabelRetention = liberalRetention
  0x108 mutable   log ldpLoopDetection: bool = False
  0x109 entities  log staticFecBindingColl[Mpls::FwdEqvClass]: Ldp::LdpStaticFecBindingEntry
  0x10a entities  log staticP2mpFecBindingColl[Ldp::LdpP2mpFecGenericOpaqueId]: Ldp::LdpStaticP2mpFecBindingEntry
  0x10b mutable   log ldpProtoParamSetting: Ldp::LdpProtoParamSetting = 0
  0x10c mutable   log routerId: Lumo::IpAddr = 0.0.0.0
  0x10d mutable   log routerIdIntfId: Lumo::IntfId = ''
  0x10e mutable   log forceRouterId: double = 0
  0x10f mutable   log md5Password: Vorn::String = ''
  0x110 constant  no  md5PasswordDefault: Vorn::String = ''
  0x111 values    log ldpNeighborClearRequest[Ldp::LdpIdentifier]: double
  0x112 values    log staticTarget[Lumo::IpGenAddr]: bool
  0x113 mutable   log fecFilterPrefixListName: Vorn::String = ''
  0x114 mutable   log linkReadyTimeout: double = 60
  0x115 constant  no  linkReadyTimeoutDefault: double = 60
  0x116 mutable   log linkReadyDelay: double = 5
  0x117 constant  no  linkReadyDelayDefault: double = 5
  0x118 mutable   log helloHoldTime: U16 = 15
  0x119 mutable   log helloInterval: U16 = 5
  0x11a mutable   log targetedHelloHoldTime: U16 = 45
  0x11b mutable   log targetedHelloInterval: U16 = 15
  0x11c entities  log intfConfigColl[Vorn::Name]: Ldp::LdpIntfConfig
  0x11d mutable   log mLdpEnabled: bool = False
  0x11e mutable   log onlyLdpEnabledIntfs: bool = False
  0x11f set       log ldpEnabledIntf[Lumo::IntfId]: bool
  0x120 mutable   log grOperFlag: Ldp::LdpGrOperationalFlag = Value('Ldp::LdpGrOperationalFlag', ** {'grFlagSpeaker': False, 'grFlagHelper': False})
  0x121 mutable   log grHoldingTimeout: U32 = 90
  0x122 mutable   log grReconnectTimeout: U32 = 90
  0x123 mutable   log grNeighborLivenessTimeout: U32 = 180
  0x124 mutable   log grMaxRecoveryTimeout: U32 = 180
  0x125 mutable   log helloRedundancy: bool = False
  0x126 mutable   log helloRedundancyTimeout: double = 600

Ldp::ProtoConfig
  0x102 ctor      no  vrfName: L3::VrfName
  0x103 mutable   log runningState: Ldp::LdpRunningState = ldpStopped
  0x104 mutable   log reason: Vorn::String = ''
  0x105 mutable   log routerId: Lumo::IpAddr = 0.0.0.0
  0x106 mutable   log intfId: Lumo::IntfId = ''
  0x107 child     log ldpProtoParam: Ldp::LdpProtoParam = Ldp::LdpProtoParam
  0x108 mutable   log ipTransportAddr: Lumo::IpGenAddr = 0.0.0.0
  0x109 mutable   log configCodefDelay: double = 1
  0x10a mutable   log ldpIdentifier: Ldp::LdpIdentifier = 0.0.0.0:0
  0x10b mutable   log ldpLabelDistCtrl: Ldp::LdpLabelDistCtrl = orderedCtrl
  0x10c mutable   log ldpLabelAdvDspl: Ldp::LdpLabelAdvDspl = unSolicited
  0x10d mutable   log ldpLabelRetention: Ldp::LdpLabelRetention = liberalRetention
  0x10e mutable   log ldpMultiLabelSupport: bool = False
  0x10f mutable   log ldpLoopDetection: bool = False
  0x110 mutable   log ldpHopCountMax: U8 = 64
  0x111 mutable   log md5Password: Vorn::String = ''
  0x112 constant  no  md5PasswordDefault: Vorn::String = ''
  0x113 values    log staticTarget[Lumo::IpGenAddr]: bool
  0x114 child     log fecFilter: Ldp::LdpFecFilter = null
  0x115 mutable   log linkReadyTimeout: double = 60
  0x116 constant  no  linkReadyTimeoutDefault: double = 60
  0x117 mutable   log linkReadyDelay: double = 5
  0x118 constant  no  linkReadyDelayDefault: double = 5
  0x119 mutable   log ldpProtoParamSetting: Ldp::LdpProtoParamSetting = 0
  0x11a mutable   log grOperMode: Ldp::LdpGrOperationalMode = grModeDisabled
  0x11b mutable   log grHoldingTimeout: U32 = 0
  0x11c mutable   log grReconnectTimeout: U32 = 0
  0x11d mutable   log grNeighborLivenessTimeout: U32 = 0
  0x11e mutable   log grMaxRecoveryTimeout: U32 = 0
  0x11f mutable   log mLdpEnabled: bool = False
  0x120 mutable   log onlyLdpEnabledIntfs: bool = False
  0x121 set       log ldpEnabledIntf[Lumo::IntfId]: bool
  0x122 mutable   log helloRedundancy: bool = False
  0x123 mutable   log helloRedundancyTimeout: double = 600

Ldp::LdpProtoConfigColl
  0x102 entities  log protoConfig[L3::VrfName]: Ldp::ProtoConfig

Ldp::LdpEnabledVrfColl
  0x102 values    log enabledVrf[L3::VrfName]: bool

Ldp::LdpIntfConfig
  0x102 mutable   log igpSync: Ldp::LdpIgpSyncMode = useGlobal

Ldp::LdpStaticFecBindingEntry
  0x102 ctor      no  fwdEqvClass: Mpls::FwdEqvClass
  0x103 mutable   log fecBindingInfo: Ldp::LdpFecBindingInfo = Value('Ldp::LdpFecBindingInfo', ** {'inputLabel': 1048576, 'outputLabel': 1048576, 'nexthopIntfIp': none})

Ldp::LdpStaticP2mpFecBindingEntry
  0x102 ctor      no  p2mpGenericOpaqueId: Ldp::LdpP2mpFecGenericOpaqueId

Ldp::PwTargetConfigColl
  0x102 values    log pwTarget[Lumo::IpGenAddr]: bool

Ldp::LdpAdjConfig
  0x102 ctor      no  ldpAdjId: Ldp::LdpAdjId
  0x103 mutable   log holdTime: U16 = 15

Ldp::LdpAdjConfigColl
  0x102 entities  log adjConfig[Ldp::LdpAdjId]: Ldp::LdpAdjConfig

Ldp::LdpAdjStatus
  0x102 ctor      no  ldpAdjId: Ldp::LdpAdjId
  0x103 mutable   log adjStatusCode: Ldp::LdpStatusCode = success
  0x104 mutable   no  msgId: U32 = 0
  0x105 mutable   log peerHoldTime: U16 = 0
  0x106 mutable   log operHoldTime: U16 = 0
  0x107 mutable   log adjExpireTime: double = 0
  0x108 mutable   log peerIpAddr: Lumo::IpGenAddr = 0.0.0.0
  0x109 mutable   log peerSrcIpAddr: Lumo::IpGenAddr = 0.0.0.0
  0x10a mutable   no  peerConfigSeqNum: U32 = 0
  0x10b mutable   no  rxPktCount: U32 = 0
  0x10c mutable   no  errPktCount: U32 = 0

Ldp::LdpAdjStatusColl
  0x102 entities  log adjStatus[Ldp::LdpAdjId]: Ldp::LdpAdjStatus

Ldp::LdpAdjPerLink
  0x102 ctor      no  intfId: Lumo::IntfId
  0x103 values    no  ldpAdj[Ldp::LdpAdjId]: bool

Ldp::LdpPeerConfig
  0x102 ctor      no  ldpIdentifier: Ldp::LdpIdentifier
  0x103 values    log ldpAdj[Ldp::LdpAdjId]: bool
  0x104 mutable   no  activeAdj: Ldp::LdpAdjId = 0.0.0.0:0_TARGET_0.0.0.0
  0x105 mutable   log peerIpAddr: Lumo::IpGenAddr = 0.0.0.0
  0x106 mutable   no  peerConfigSeqNum: U16 = 0
  0x107 mutable   no  statusCode: Ldp::LdpStatusCode = success
  0x108 mutable   no  latestAdjStatusCode: Ldp::LdpStatusCode = success

Ldp::LdpPeerConfigColl
  0x102 entities  log peerConfig[Ldp::LdpIdentifier]: Ldp::LdpPeerConfig

Ldp::LdpPeerStatus
  0x102 ctor      no  ldpIdentifier: Ldp::LdpIdentifier

Ldp::LdpPeerStatusColl
  0x102 entities  no  peerStatus[Ldp::LdpIdentifier]: Ldp::LdpPeerStatus

Ldp::LdpSessionCommonConfig
  0x102 mutable   no  ipTransportAddr: Lumo::IpGenAddr = 0.0.0.0
  0x103 mutable   no  ldpLabelAdvDspl: Ldp::LdpLabelAdvDspl = unSolicited
  0x104 values    log localIntfIp[Lumo::IpAddr]: bool
  0x105 mutable   log mLdpEnabled: bool = False

Ldp::LdpSessionConfig
  0x102 ctor      no  ldpSessionId: Ldp::LdpSessionId
  0x103 mutable   log localLdpIdentifier: Ldp::LdpIdentifier = 0.0.0.0:0
  0x104 mutable   no  peerIpAddr: Lumo::IpGenAddr = 0.0.0.0
  0x105 mutable   no  ldpSessionRole: Ldp::LdpSessionRole = roleUnknown
  0x106 mutable   no  ldpPeerStatusCode: Ldp::LdpStatusCode = success
  0x107 mutable   no  reason: Vorn::String = ''
  0x108 mutable   log keepAliveTime: U16 = 30
  0x109 mutable   log keepAliveTxInterval: U16 = 10
  0x10a mutable   no  maxPduLength: U16 = 4096
  0x10b mutable   no  peerConfigSeqNum: U16 = 0

Ldp::LdpSessionConfigColl
  0x102 child     log ldpSessionCommonConfig: Ldp::LdpSessionCommonConfig = null
  0x103 entities  log sessionConfig[Ldp::LdpSessionId]: Ldp::LdpSessionConfig

Ldp::LdpSessionStatus
  0x102 ctor      no  ldpSessionId: Ldp::LdpSessionId
  0x103 mutable   log localLdpIdentifier: Ldp::LdpIdentifier = 0.0.0.0:0
  0x104 mutable   no  tcpClientConnEnabled: bool = False
  0x105 mutable   no  tcpClientConnReqTime: double = 0
  0x106 mutable   log peerKeepAliveTime: U16 = 30
  0x107 mutable   log peerKeepAliveTxInterval: U16 = 10
  0x108 mutable   no  peerMaxPduLength: U16 = 4096
  0x109 mutable   log operKeepAliveTime: U16 = 30
  0x10a mutable   no  operMaxPduLength: U16 = 4096
  0x10b mutable   log operKeepAliveTxInterval: U16 = 10
  0x10c mutable   log peerLabelAdvDspl: Ldp::LdpLabelAdvDspl = unknownAdvDspl
  0x10d mutable   log operLabelAdvDspl: Ldp::LdpLabelAdvDspl = unSolicited
  0x10e values    log peerCapability[Ldp::LdpTlvType]: bool
  0x10f mutable   log sessionUptime: double = 0
  0x110 mutable   log ldpSessionState: Ldp::LdpSessionState = Value('Ldp::LdpSessionState', ** {'sessionState': stateUnknown, 'code': success})
  0x111 derived   no  sessionState: Ldp::SessionState = stateUnknown
  0x112 mutable   no  sessionOpState: Ldp::SessionOpState = opStateUnknown
  0x113 mutable   no  sessionStateLastChange: double = 0
  0x114 values    no  sessionStateCount[Ldp::SessionState]: U64
  0x115 derived   no  code: Ldp::LdpStatusCode = success
  0x116 mutable   log sessionStateReason: Vorn::String = ''
  0x117 child     log sessionStateLogEntryColl: Ldp::LdpSessionStateLogEntryColl = null
  0x118 mutable   log sessionExpireTime: double = 0
  0x119 mutable   no  addressMsgRcvd: bool = False
  0x11a mutable   no  addressMsgTsmt: bool = False
  0x11b mutable   log localIpAddr: Lumo::IpGenAddr = none
  0x11c mutable   log localPort: U16 = 0
  0x11d mutable   log peerIpAddr: Lumo::IpGenAddr = none
  0x11e mutable   log peerPort: U16 = 0
  0x11f values    log peerIntfIp[Lumo::IpGenAddr]: bool
  0x120 mutable   no  peerLabelRescAvailableCount: U32 = 0
  0x121 mutable   no  fatalRetryCount: U64 = 0
  0x122 mutable   log operGrSupported: bool = False
  0x123 mutable   log peerGrReconnectTimeout: U32 = 0
  0x124 mutable   log peerGrRecoveryTimeout: U32 = 0
  0x125 mutable   log operGrState: Ldp::GrState = grStateUnknown
  0x126 mutable   log operGrStateKick: U32 = 0
  0x127 function  no  checkInit: void

Ldp::LdpSessionStatusColl
  0x102 entities  log sessionStatus[Ldp::LdpSessionId]: Ldp::LdpSessionStatus

Ldp::LdpSessionStateLogEntryColl
  0x102 constant  no  maxSize: U32 = 10
  0x103 function  no  internalAddLogEntry_: void
  0x104 function  no  shouldAddSessionStateLogEntry: bool
  0x105 function  no  addSessionStateLogEntry: void
  0x106 queue     log sessionStateLogEntry[U32]: Ldp::LdpSessionStateLogEntry

Ldp::LdpFecFilter
  0x102 reference log prefixList: Acl::PrefixList = null
  0x103 function  no  isPermittedFec: bool
  0x104 mutable   no  filterVersion: U32 = 0
)";

constexpr char values[] = R"(
Ldp::LdpProtoParamSetting
  0x2 state     no  value: U64 = 0
  0x3 constant  no  bitAnvlTestCompatible: U32 = 0
  0x4 constant  no  bitAnvlTestAdvDsplForce: U32 = 2
  0x5 constant  no  bitAnvlTestAllFecs: U32 = 3
  0x6 constant  no  bitEdgeRouterRole: U32 = 8
  0x7 constant  no  bitPwStatusMethodLabelWithdraw: U32 = 9
  0x8 state     no  anvlTestCompatible: bool = False
  0x9 state     no  anvlTestAdvDsplForce: bool = False
  0xa state     no  anvlTestAllFecs: bool = False
  0xb state     no  edgeRouterRole: bool = False
  0xc state     no  pwStatusMethodLabelWithdraw: bool = False

Ldp::LdpFecBindingInfo
  0x2 ctor      no  inputLabel: Lumo::MplsLabel = 1048576
  0x3 ctor      no  outputLabel: Lumo::MplsLabel = 1048576
  0x4 ctor      no  nexthopIntfIp: Lumo::IpGenAddr = none

Ldp::LdpGrOperationalFlag
  0x2 state     no  value: U32 = 0
  0x3 constant  no  grFlagSpeaker_: U32 = 1
  0x4 constant  no  grFlagHelper_: U32 = 2
  0x5 state     no  grFlagSpeaker: bool = False
  0x6 state     no  grFlagHelper: bool = False

Ldp::LdpAdjId
  0x2 state     no  ldpIdentifier: Ldp::LdpIdentifier = 0.0.0.0:0
  0x3 state     no  intfId: Lumo::IntfId = ''
  0x4 state     no  targetIpAddr: Lumo::IpAddr = 0.0.0.0
  0x5 function  no  adjType: Ldp::LdpAdjType
  0x6 constant  no  defaultAttribute: Vorn::String = 'stringValue'
  0x7 state     no  stringValue: Vorn::String = '0.0.0.0:0_TARGET_0.0.0.0'
  0x8 derived   no  hash: U32

Ldp::LdpSessionId
  0x2 ctor      no  peerLdpId: Ldp::LdpIdentifier = 0.0.0.0:0
  0x3 derived   no  hash: U32
  0x4 derived   no  stringValue: Vorn::String = '0.0.0.0:0'

Ldp::LdpSessionState
  0x2 ctor      no  sessionState: Ldp::SessionState = stateUnknown
  0x3 ctor      no  code: Ldp::LdpStatusCode = success

Ldp::LdpSessionStateLogEntry
  0x2 ctor      no  timeStamp: double = 0
  0x3 ctor      no  sessionState: Ldp::SessionState = stateUnknown
  0x4 ctor      no  code: Ldp::LdpStatusCode = success
  0x5 ctor      no  reason: Vorn::String = ''

Ldp::LdpHdrMsgUbitAndTypeField
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0

Ldp::LdpTlvTypeField
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0

Ldp::LdpCommonHelloTargetField
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0

Ldp::LdpFtSessionFlags
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0

Ldp::LdpFecTlvPwIdElementHdrTypeField
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0

Ldp::LdpPwVccvParamField
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0

Ldp::LdpGenLabelTlvLabel
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0
  0x4 state     no  v2: U8 = 0
  0x5 state     no  v3: U8 = 0

Ldp::LdpStatusTlvStatusCode
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0
  0x4 state     no  v2: U8 = 0
  0x5 state     no  v3: U8 = 0

Ldp::LdpPwStatusField
  0x2 state     no  v0: U8 = 0
  0x3 state     no  v1: U8 = 0
  0x4 state     no  v2: U8 = 0
  0x5 state     no  v3: U8 = 0

Ldp::LdpFecTlvP2mpOpaqueLength
  0x2 state     no  totalOpaqueLen: Lumo::NetU16 = 0

Ldp::LdpMPBasicOpaqueValueElementHdr
  0x2 state     no  type: U8 = 0
  0x3 state     no  opaqueLenNbo: Lumo::NetU16 = 0

Ldp::LdpGenericLSPId
  0x2 state     no  type: U8 = 0
  0x3 state     no  opaqueLenNbo: Lumo::NetU16 = 0
  0x4 state     no  opaqueId: Lumo::NetU32 = 0

Ldp::LdpP2mpFecElement
  0x2 state     no  rootIp: Lumo::IpGenAddr = none
  0x3 state     no  opaqueStr: Vorn::String = ''

Ldp::LdpPwIntfParamFlags
  0x2 state     no  intfMtu: bool = False
  0x3 state     no  intfDesc: bool = False
  0x4 state     no  requestedVlanId: bool = False
  0x5 state     no  fragIndicator: bool = False
  0x6 state     no  vccvParam: bool = False

Ldp::PwFwdEqvClassParams
  0x2 state     no  groupId: Pseudowire::GroupId = 0
  0x3 state     no  mtu: U32 = 0
  0x4 state     no  intfDescription: Vorn::String = ''
  0x5 state     no  requestedVlanId: Bridging::VlanIdOrNone = 0
  0x6 state     no  fragCapable: bool = False
  0x7 state     no  vccvCcTypes: U8 = 0
  0x8 state     no  vccvCvTypes: Pseudowire::VccvCvTypes = 0

Ldp::PwFwdEqvClassInfo
  0x2 state     no  fwdEqvClass: Ldp::PwFwdEqvClass = pw0:pwTypeNone:cbit0
  0x3 state     no  params: Ldp::PwFwdEqvClassParams
)";

constexpr char enums[] = R"(Ldp::LdpLabelDistCtrl independentCtrl=1 orderedCtrl=2
Ldp::LdpLabelAdvDspl onDemand=1 unSolicited=2 unknownAdvDspl=3
Ldp::LdpLabelRetention conservativeRetention=1 liberalRetention=2
Ldp::LdpRunningState ldpRunning=1 ldpStopping=2 ldpStopped=3
Ldp::LdpGrOperationalMode grModeDisabled=0 grModeHelper=1 grModeSpeaker=2
Ldp::LdpIgpSyncMode off=1 on=2 useGlobal=3
Ldp::LdpAdjType LdpLinkAdj=1 LdpTargetAdj=2
Ldp::SessionState stateUnknown=0 stateNonExist=1 stateInitialized=2 stateOpenSent=3 stateOpenRecv=4 stateOperational=5 stateExpired=6
Ldp::SessionOpState opStateUnknown=0 opStateAddrExchange=1 opStateLabelExchange=2 opStateRestart=3
Ldp::LdpSessionRole roleUnknown=0 roleActive=1 rolePassive=2
Ldp::GrState grStateUnknown=0 grStateInactive=1 grStateActive=2
)";

ExpectedAttr readAttr( std::istringstream & line, std::string const & id ) {
   using Vorn::VornKind;
   static std::map< std::string, VornKind > const kinds{
      { "ctor", VornKind::constructor },    { "mutable", VornKind::mutableAttr },
      { "entities", VornKind::entityColl }, { "values", VornKind::valueColl },
      { "set", VornKind::valueColl },       { "child", VornKind::child },
      { "queue", VornKind::queue },         { "reference", VornKind::reference },
      { "constant", VornKind::constant },   { "derived", VornKind::derived },
      { "function", VornKind::function },   { "state", VornKind::state },
   };
   std::string kind, log, name, type, equals;
   if ( !( line >> kind >> log >> name >> type ) || name.back() != ':' )
      throw std::invalid_argument( "bad line in the table of expected types: " + line.str() );
   name.pop_back();
   ExpectedAttr attr{ kinds.at( kind ), name, U32( std::stoul( id, nullptr, 16 ) ), type, "", log == "log",
                      kind == "set",    "" };
   if ( auto const bracket = name.find( '[' ); bracket != std::string::npos ) {
      attr.name = name.substr( 0, bracket );
      attr.key = name.substr( bracket + 1, name.size() - bracket - 2 );
   }
   if ( line >> equals ) std::getline( line >> std::ws, attr.defaultText );
   return attr;
}

std::vector< ExpectedType > readTypes( char const * text ) {
   std::vector< ExpectedType > types;
   std::istringstream lines( text );
   for ( std::string line; std::getline( lines, line ); ) {
      std::istringstream words( line );
      std::string first;
      if ( !( words >> first ) ) continue;
      if ( line.front() == ' ' ) {
         types.back().attributes.push_back( readAttr( words, first ) );
      } else {
         types.push_back( { first, {} } );
      }
   }
   return types;
}

} // namespace

std::vector< ExpectedType > const & expectedEntities() {
   static std::vector< ExpectedType > const types = readTypes( entities );
   return types;
}

std::vector< ExpectedType > const & expectedValues() {
   static std::vector< ExpectedType > const types = readTypes( values );
   return types;
}

std::vector< ExpectedEnum > const & expectedEnums() {
   static std::vector< ExpectedEnum > const types = [] {
      std::vector< ExpectedEnum > read;
      std::istringstream lines( enums );
      for ( std::string line; std::getline( lines, line ); ) {
         std::istringstream words( line );
         ExpectedEnum type;
         words >> type.name;
         for ( std::string word; words >> word; ) {
            auto const equals = word.find( '=' );
            type.enumerators.emplace_back( word.substr( 0, equals ),
                                           U32( std::stoul( word.substr( equals + 1 ) ) ) );
         }
         read.push_back( type );
      }
      return read;
   }();
   return types;
}

} // namespace Test
