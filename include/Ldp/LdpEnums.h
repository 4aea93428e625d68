/// \file
/// The protocol's registries: message types, TLV types, status codes and FEC element types, with all that is
/// fixed about each value in one row.
///
/// A value that is in no row is an ordinary value of its enumeration: it prints in decimal, and nothing
/// asserts.
#pragma once

#include "Vorn/Strep.h"

namespace Ldp {

/// Message types (RFC 5036, 3.7; RFC 5561 for Capability): the 15 bits behind the U bit.
#define VORN_LDP_MSG_TYPES( X )                                                                              \
   X( LdpNotification, 1 )                                                                                   \
   X( LdpHello, 256 )                                                                                        \
   X( LdpInit, 512 )                                                                                         \
   X( LdpKeepAlive, 513 )                                                                                    \
   X( LdpCapability, 514 )                                                                                   \
   X( LdpAddress, 768 )                                                                                      \
   X( LdpAddressWithdraw, 769 )                                                                              \
   X( LdpLabelMapping, 1024 )                                                                                \
   X( LdpLabelRequest, 1025 )                                                                                \
   X( LdpLabelWithdraw, 1026 )                                                                               \
   X( LdpLabelRelease, 1027 )                                                                                \
   X( LdpLabelAbortReq, 1028 )
VORN_ENUM( LdpMsgType, VORN_LDP_MSG_TYPES )

/// Whether the type is one of those: any other message is refused by its type alone.
VORN_API bool ldpIsKnownMsgType( LdpMsgType type ) noexcept;

/// TLV types (RFC 5036, 3.3 and 3.8, and the IANA registry): the 14 bits behind the U and F bits. The third
/// column says whether header validation knows the type.
///
/// Two oddities, which decide what a peer is answered and so stay. The Unrecognized Notification capability
/// has a name and a size rule, but is no known type, so it passes only by its U bit. The vendor-private and
/// experimental names are four single known values; the types between them are unknown.
#define VORN_LDP_TLV_TYPES( X )                                                                              \
   X( fecTlv, 256, true )                                                                                    \
   X( addrListTlv, 257, true )                                                                               \
   X( hopCountTlv, 259, true )                                                                               \
   X( pathVectorTlv, 260, true )                                                                             \
   X( genLabelTlv, 512, true )                                                                               \
   X( atmLabelTlv, 513, true )                                                                               \
   X( frLabelTlv, 514, true )                                                                                \
   X( statusTlv, 768, true )                                                                                 \
   X( extStatusTlv, 769, true )                                                                              \
   X( retPduTlv, 770, true )                                                                                 \
   X( retMsgTlv, 771, true )                                                                                 \
   X( commonHelloTlv, 1024, true )                                                                           \
   X( ipv4TransportAddrTlv, 1025, true )                                                                     \
   X( configSeqNumTlv, 1026, true )                                                                          \
   X( ipv6TransportAddrTlv, 1027, true )                                                                     \
   X( commonSessionParamTlv, 1280, true )                                                                    \
   X( atmSessionTlv, 1281, true )                                                                            \
   X( frSessionTlv, 1282, true )                                                                             \
   X( ftSessionTlv, 1283, true )                                                                             \
   X( dynamicCapabilityTlv, 1286, true )                                                                     \
   X( upstreamLabelAssignmentCapabilityTlv, 1287, true )                                                     \
   X( p2mpCapabilityTlv, 1288, true )                                                                        \
   X( mp2mpCapabilityTlv, 1289, true )                                                                       \
   X( mbbCapabilityTlv, 1290, true )                                                                         \
   X( typedWildcardFecCapabilityTlv, 1291, true )                                                            \
   X( multiTopologyCapabilityTlv, 1292, true )                                                               \
   X( stateAdvertisementControlCapabilityTlv, 1293, true )                                                   \
   X( mrtCapabilityTlv, 1294, true )                                                                         \
   X( targetedApplicationCapabilityTlv, 1295, true )                                                         \
   X( labelReqMsgIdTlv, 1536, true )                                                                         \
   X( unrecognizedNotificationCapabilityTlv, 1539, false )                                                   \
   X( pwStatusTlv, 2410, true )                                                                              \
   X( vendorPrivTlvBegin, 15872, true )                                                                      \
   X( vendorPrivTlvEnd, 16127, true )                                                                        \
   X( expTlvBegin, 16128, true )                                                                             \
   X( expTlvEnd, 16383, true )
VORN_ENUM( LdpTlvType, VORN_LDP_TLV_TYPES )

/// Status codes (RFC 5036, 3.9; RFC 8077 for the pseudowire codes), the one currency of failure of the
/// decoders; zero is good. Columns: value, E bit (RFC 5036, 3.4.6), text of a session's state; where that is
/// null, the enumerator's name serves.
///
/// Codes with the top bit set have no wire form: the status data of a Status TLV has 30 bits.
/// `unknownMessageTypeIgnore` marks an unknown message or TLV type whose U bit is set, which the protocol
/// tells the receiver to ignore.
#define VORN_LDP_STATUS_CODES( X )                                                                           \
   X( success, 0, false, "success" )                                                                         \
   X( badLdpId, 1, true, "bad LDP identifier" )                                                              \
   X( badVersion, 2, true, "bad protocol version" )                                                          \
   X( badPduLength, 3, true, "bad PDU length" )                                                              \
   X( unknownMessageType, 4, false, "unknown message type" )                                                 \
   X( badMessageLength, 5, true, "bad message length" )                                                      \
   X( unknownTlv, 6, false, "unknown TLV" )                                                                  \
   X( badTlvLength, 7, true, "bad TLV length" )                                                              \
   X( malformedTlv, 8, true, "malformed TLV value" )                                                         \
   X( holdTimerExpired, 9, true, "hold timer expired" )                                                      \
   X( shutdown, 10, true, "shutdown" )                                                                       \
   X( loopDetected, 11, false, "loop detected" )                                                             \
   X( unknownFec, 12, false, "unknown FEC" )                                                                 \
   X( noRoute, 13, false, "no route" )                                                                       \
   X( noLabelResources, 14, false, "no label resources available" )                                          \
   X( labelResourcesAvailable, 15, false, "label resources available" )                                      \
   X( rejectNoHello, 16, true, "session rejected: no hello" )                                                \
   X( rejectParamAdvMode, 17, true, "session rejected: advertisement mode" )                                 \
   X( rejectMaxPduLength, 18, true, "session rejected: max PDU length" )                                     \
   X( rejectParamLabelRange, 19, true, "session rejected: label range" )                                     \
   X( keepAliveExpired, 20, true, "keepAlive timer expired" )                                                \
   X( labelRequestAborted, 21, false, "label request aborted" )                                              \
   X( missingMessageParams, 22, false, "missing message parameters" )                                        \
   X( unsupportedAddressFamily, 23, false, "unsupported address family" )                                    \
   X( sessionRejectBadKeepAliveTime, 24, true, "session rejected: bad keepAlive time" )                      \
   X( internalError, 25, true, "internal error" )                                                            \
   X( illegalCBit, 36, false, nullptr )                                                                      \
   X( wrongCBit, 37, false, nullptr )                                                                        \
   X( pwStatus, 40, false, nullptr )                                                                         \
   X( unknownMessageTypeIgnore, 0x80000004, false, nullptr )                                                 \
   X( establishingTcpConnection, 0x80000042, false, "attempting to establish TCP connection" )               \
   X( sessionInitFailed, 0x80000100, false, "session initialization failed" )                                \
   X( sessionRoleChanged, 0x80000101, false, "session role changed" )                                        \
   X( tcpConnectionClosed, 0x80000102, false, "TCP connection closed" )                                      \
   X( ipChange, 0x80000103, false, nullptr )                                                                 \
   X( idChange, 0x80000104, false, nullptr )                                                                 \
   X( mLdpChange, 0x80000105, false, "capability change - mLDP" )                                            \
   X( grConfigChange, 0x80000106, false, nullptr )
VORN_ENUM( LdpStatusCode, VORN_LDP_STATUS_CODES )

/// The enumerator's name, as `valueToStrep` prints it.
VORN_API Vorn::String stringValue( LdpStatusCode status );

/// FEC element types (RFC 5036, 3.4.1; RFC 5918, RFC 6388, RFC 8077). The FEC parser takes 1, 2, 3, 6 and
/// 128; `pwGenIdelement` is spelled so.
#define VORN_LDP_FEC_ELEMENT_TYPES( X )                                                                      \
   X( wildcardElement, 1 )                                                                                   \
   X( prefixElement, 2 )                                                                                     \
   X( hostAddrElement, 3 )                                                                                   \
   X( crLspElement, 4 )                                                                                      \
   X( typedWildcardElement, 5 )                                                                              \
   X( p2mpElement, 6 )                                                                                       \
   X( mp2mpUpElement, 7 )                                                                                    \
   X( mp2mpDownElement, 8 )                                                                                  \
   X( hsmpUpstreamElement, 9 )                                                                               \
   X( pwIdElement, 128 )                                                                                     \
   X( pwGenIdelement, 129 )                                                                                  \
   X( pwP2mpUpstreamElement, 130 )                                                                           \
   X( pwProtectionElement, 131 )                                                                             \
   X( pwP2mpDownstreamElement, 132 )
VORN_ENUM( LdpFecElementType, VORN_LDP_FEC_ELEMENT_TYPES )

/// Interface parameter sub-TLVs of the PW ID FEC element (RFC 8077, 6.4 and the IANA registry).
#define VORN_LDP_PW_INTF_PARAM_SUB_TLV_TYPES( X )                                                            \
   X( intfMtu, 1 )                                                                                           \
   X( intfDesc, 3 )                                                                                          \
   X( requestedVlanId, 6 )                                                                                   \
   X( fragIndicator, 9 )                                                                                     \
   X( vccvParam, 12 )
VORN_ENUM( LdpPwIntfParamSubTlvType, VORN_LDP_PW_INTF_PARAM_SUB_TLV_TYPES )

} // namespace Ldp
