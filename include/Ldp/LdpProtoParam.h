/// \file
/// The numbers of the protocol, and the switches that change what is sent and how strictly a FEC TLV is read.
/// Times are in seconds.
#pragma once

#include "Lumo/IpDscp.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// Parameters of the protocol in one VRF: constants that are the same in every instance, and five switches.
/// A parser that is given one reads it while it parses; later changes concern later parsers only.
class VORN_API LdpProtoParam : public Vorn::Entity {
   VORN_ENTITY( LdpProtoParam, Vorn::Entity )

 public:
   /// The parameters of the VRF of that name, with their defaults.
   explicit LdpProtoParam( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// UDP port of discovery.
   VORN_CONSTANT( 0x102, U16, ldpUdpPort, 646 );
   /// TCP port of sessions.
   VORN_CONSTANT( 0x103, U16, ldpTcpPort, 646 );
   /// Size of a packet buffer in octets: the largest PDU that is received, and the largest maximum PDU length
   /// that a peer may propose.
   VORN_CONSTANT( 0x104, U16, ldpPktBufferSize, 9600 );
   /// The one version of the protocol.
   VORN_CONSTANT( 0x105, U16, ldpProtocolVersion, 1 );
   /// PDU length in effect by default, in octets.
   VORN_CONSTANT( 0x106, U16, defaultMaxPduLength, 4096 );
   /// First type field of a message with the U bit set.
   VORN_CONSTANT( 0x107, U16, msgTypeIgnoreBegin, 32768 );
   /// First type field of a TLV with the U bit set.
   VORN_CONSTANT( 0x108, U16, tlvTypeIgnoreBegin, 32768 );
   /// Hold time that never expires, as hellos carry it.
   VORN_CONSTANT( 0x109, U16, infiniteHelloHoldTime, 65535 );
   /// Wait before the hello for a new adjacency, in seconds.
   VORN_CONSTANT( 0x10a, double, ldpNewAdjHelloWaitTime, 0.1 );
   /// Wait before a new session is started, in seconds.
   VORN_CONSTANT( 0x10b, double, ldpNewSessionWaitTime, 0.5 );
   /// Interval of link hellos, in seconds.
   VORN_CONSTANT( 0x10c, U16, defaultBasicHelloInterval, 5 );
   /// Hold time of link hellos, in seconds.
   VORN_CONSTANT( 0x10d, U16, defaultBasicHelloHoldTime, 15 );
   /// Interval of targeted hellos, in seconds.
   VORN_CONSTANT( 0x10e, U16, defaultTargetHelloInterval, 15 );
   /// Hold time of targeted hellos, in seconds.
   VORN_CONSTANT( 0x10f, U16, defaultTargetHelloHoldTime, 45 );
   /// Keep-alive time of sessions, in seconds.
   VORN_CONSTANT( 0x110, U16, defaultSessionKeepAliveTime, 30 );
   /// First delay before a session is tried again, in seconds.
   VORN_CONSTANT( 0x111, double, defaultRetryBackoffTime, 15.0 );
   /// Largest delay before a session is tried again, in seconds.
   VORN_CONSTANT( 0x112, double, defaultMaxRetryBackoffTime, 120.0 );
   /// Delay before a session is tried again that ended without a fatal error, in seconds.
   VORN_CONSTANT( 0x113, double, ldpNonFatalSessionRetryTime, 10.0 );
   /// Wait before an immediate hello, in seconds.
   VORN_CONSTANT( 0x114, double, ldpImmediateHelloWaitTime, 0.1 );
   /// Type-of-service octet of the protocol's packets.
   VORN_CONSTANT( 0x115, Lumo::IpDscp, ldpIpTos, Lumo::IpDscp( 192 ) );
   /// Delay before a session is tried again after a change of an address, in seconds.
   VORN_CONSTANT( 0x116, double, ldpIpChangeSessionRetryTime, 2.0 );
   /// The same after a change of the LDP identifier.
   VORN_CONSTANT( 0x117, double, ldpIdChangeSessionRetryTime, 2.0 );
   /// The same after multicast LDP was turned on or off.
   VORN_CONSTANT( 0x118, double, ldpMldpChangeSessionRetryTime, 2.0 );
   /// The same after a change of the graceful restart reconnect time.
   VORN_CONSTANT( 0x119, double, ldpGrReconnectChangeSessionRetryTime, 2.0 );
   /// Retries of the TCP connection with exponential backoff.
   VORN_CONSTANT( 0x11a, U16, ldpTcpConnExponentialBackoffRetries, 5 );
   /// Retries to start the listener.
   VORN_CONSTANT( 0x11b, U32, ldpMaxStartListenerRetries, 5 );
   /// How long hello redundancy keeps a session whose last adjacency has gone, in seconds.
   VORN_CONSTANT( 0x11c, double, defaultHelloRedundancyTimeout, 600.0 );
   /// Whether hellos carry the IPv4 transport address TLV. The attribute's name is spelled so.
   VORN_MUTABLE( 0x11d, bool, tlvIpTransportAddrIncude, TlvIpTransportAddrIncude, replicated ) = true;
   /// Whether that TLV has its U bit set.
   VORN_MUTABLE( 0x11e, bool, tlvIpTransportUnknownBit, TlvIpTransportUnknownBit, replicated ) = false;
   /// Whether hellos carry the configuration sequence number TLV.
   VORN_MUTABLE( 0x11f, bool, tlvConfigSeqNumInclude, TlvConfigSeqNumInclude, replicated ) = true;
   /// Whether that TLV has its U bit set.
   VORN_MUTABLE( 0x120, bool, tlvConfigSeqNumUnknownBit, TlvConfigSeqNumUnknownBit, replicated ) = false;
   /// Whether a Wildcard element must be alone in its FEC TLV (RFC 5036, 3.4.1).
   VORN_MUTABLE( 0x121, bool, fecTlvStrictPrefixWildcardOnlyElement, FecTlvStrictPrefixWildcardOnlyElement,
                 replicated ) = true;
   /// Service name, in lower case.
   VORN_CONSTANT( 0x122, Vorn::String, serviceName, "ldp" );
   /// Holding timeout of graceful restart (RFC 3478), in seconds.
   VORN_CONSTANT( 0x123, U32, defaultGrHoldingTimeout, 90 );
   /// Reconnect timeout of graceful restart, in seconds.
   VORN_CONSTANT( 0x124, U32, defaultGrReconnectTimeout, 90 );
   /// Neighbor liveness timeout of graceful restart, in seconds.
   VORN_CONSTANT( 0x125, U32, defaultGrNeighborLivenessTimeout, 180 );
   /// Largest recovery timeout of graceful restart, in seconds.
   VORN_CONSTANT( 0x126, U32, defaultGrMaxRecoveryTimeout, 180 );
   /// Delay of the state machines over the configuration, in seconds.
   VORN_CONSTANT( 0x127, double, ldpProtoConfigSmDelay, 1.0 );
   /// Delay of the state machines at the root, in seconds.
   VORN_CONSTANT( 0x128, double, ldpRootSmDelay, 2.0 );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpProtoParam, ldpProtoParamFactory )

/// Switches of the agent's behaviour, a word of 64 bits. Bits without a name are kept. The constants are bit
/// numbers. Its text is the word in decimal.
class VORN_API LdpProtoParamSetting {
   VORN_VALUE( LdpProtoParamSetting )
   /// The whole word.
   VORN_FIELD( 0x2, U64, value ) = 0;
   /// Bit numbers of the flags below.
   VORN_CONSTANT( 0x3, U32, bitAnvlTestCompatible, 0 );
   VORN_CONSTANT( 0x4, U32, bitAnvlTestAdvDsplForce, 2 );
   VORN_CONSTANT( 0x5, U32, bitAnvlTestAllFecs, 3 );
   VORN_CONSTANT( 0x6, U32, bitEdgeRouterRole, 8 );
   VORN_CONSTANT( 0x7, U32, bitPwStatusMethodLabelWithdraw, 9 );
   /// For a conformance test run.
   VORN_BIT( 0x8, bitAnvlTestCompatible(), anvlTestCompatible );
   /// Force the advertisement discipline in such a run.
   VORN_BIT( 0x9, bitAnvlTestAdvDsplForce(), anvlTestAdvDsplForce );
   /// Take in all FECs in such a run.
   VORN_BIT( 0xa, bitAnvlTestAllFecs(), anvlTestAllFecs );
   /// The router plays the edge role.
   VORN_BIT( 0xb, bitEdgeRouterRole(), edgeRouterRole );
   /// Pseudowire status is signalled by label withdraw.
   VORN_BIT( 0xc, bitPwStatusMethodLabelWithdraw(), pwStatusMethodLabelWithdraw );

 public:
   constexpr LdpProtoParamSetting() noexcept = default;
   constexpr explicit LdpProtoParamSetting( U64 value ) noexcept : value_( value ) {}

   friend constexpr bool operator==( LdpProtoParamSetting, LdpProtoParamSetting ) noexcept = default;
};
VORN_TEXT( LdpProtoParamSetting )

} // namespace Ldp
