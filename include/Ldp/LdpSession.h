/// \file
/// Sessions: what the agent wants a session to be, and what it is. A session is known by the peer's LDP
/// identifier alone. The state machine is the agent's, and writes these objects.
#pragma once

#include "Ldp/LdpIdentifier.h"
#include "Ldp/LdpSessionStateLog.h"
#include "Ldp/LdpTypes.h"
#include "Lumo/Ip.h"

namespace Ldp {

/// Phases of an operational session.
#define VORN_LDP_SESSION_OP_STATES( X )                                                                      \
   X( opStateUnknown, 0 )                                                                                    \
   X( opStateAddrExchange, 1 )                                                                               \
   X( opStateLabelExchange, 2 )                                                                              \
   X( opStateRestart, 3 )
VORN_ENUM( SessionOpState, VORN_LDP_SESSION_OP_STATES )

/// Who opens the session's connection (RFC 5036, 2.5.2).
#define VORN_LDP_SESSION_ROLES( X )                                                                          \
   X( roleUnknown, 0 )                                                                                       \
   X( roleActive, 1 )                                                                                        \
   X( rolePassive, 2 )
VORN_ENUM( LdpSessionRole, VORN_LDP_SESSION_ROLES )

/// Whether the peer is being waited for in graceful restart (RFC 3478).
#define VORN_LDP_GR_STATES( X )                                                                              \
   X( grStateUnknown, 0 )                                                                                    \
   X( grStateInactive, 1 )                                                                                   \
   X( grStateActive, 2 )
VORN_ENUM( GrState, VORN_LDP_GR_STATES )

/// Identity of a session in its VRF: the peer. The speaker's own identifier is no part of it, so there is at
/// most one session to a peer's label space. Its text is that of the identifier.
class VORN_API LdpSessionId {
   VORN_VALUE( LdpSessionId )
   /// LSR id and label space of the peer.
   VORN_CTOR_FIELD( 0x2, LdpIdentifier, peerLdpId );
   /// Equal values have equal hashes.
   VORN_VALUE_DERIVED( 0x3, U32, hash );
   /// Text of the peer's identifier.
   VORN_VALUE_DERIVED( 0x4, Vorn::String, stringValue );

 public:
   LdpSessionId() noexcept = default;
   explicit LdpSessionId( LdpIdentifier const & peerLdpId ) noexcept : peerLdpId_( peerLdpId ) {}

   friend bool operator==( LdpSessionId const &, LdpSessionId const & ) noexcept = default;
   friend bool operator<( LdpSessionId const & a, LdpSessionId const & b ) noexcept {
      return a.peerLdpId_ < b.peerLdpId_;
   }
};
VORN_TEXT( LdpSessionId )

/// A session's state and the status code that caused it, never seen apart: a changed state is a new value.
class VORN_API LdpSessionState {
   VORN_VALUE( LdpSessionState )
   /// The state.
   VORN_CTOR_FIELD( 0x2, SessionState, sessionState ) = stateUnknown;
   /// The status code that caused it.
   VORN_CTOR_FIELD( 0x3, LdpStatusCode, code ) = success;

 public:
   LdpSessionState() noexcept = default;
   LdpSessionState( SessionState sessionState, LdpStatusCode code ) noexcept
        : sessionState_( sessionState ), code_( code ) {}

   friend bool operator==( LdpSessionState const &, LdpSessionState const & ) noexcept = default;
};
VORN_TEXT( LdpSessionState )

/// What all sessions of a VRF share.
class VORN_API LdpSessionCommonConfig : public Vorn::Entity {
   VORN_ENTITY( LdpSessionCommonConfig, Vorn::Entity )

 public:
   explicit LdpSessionCommonConfig( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Transport address of the speaker.
   VORN_MUTABLE( 0x102, Lumo::IpGenAddr, ipTransportAddr, IpTransportAddr, local ) = Lumo::IpAddr();
   /// Advertisement discipline that is proposed.
   VORN_MUTABLE( 0x103, LdpLabelAdvDspl, ldpLabelAdvDspl, LdpLabelAdvDspl, local ) = unSolicited;
   /// Addresses of the speaker's interfaces, which it announces.
   VORN_VALUE_COLL( 0x104, bool, Lumo::IpAddr, localIntfIp, LocalIntfIp, replicated );
   /// Whether multicast LDP runs (RFC 6388).
   VORN_MUTABLE( 0x105, bool, mLdpEnabled, MLdpEnabled, replicated ) = false;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionCommonConfig, ldpSessionCommonConfigFactory )

/// What is wanted of one session.
class VORN_API LdpSessionConfig : public Vorn::Entity {
   VORN_ENTITY( LdpSessionConfig, Vorn::Entity )

 public:
   explicit LdpSessionConfig( LdpSessionId const & ldpSessionId ) : ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x102, LdpSessionId, ldpSessionId );
   /// The speaker's own identifier.
   VORN_MUTABLE( 0x103, LdpIdentifier, localLdpIdentifier, LocalLdpIdentifier, replicated );
   /// Transport address of the peer.
   VORN_MUTABLE( 0x104, Lumo::IpGenAddr, peerIpAddr, PeerIpAddr, local ) = Lumo::IpAddr();
   /// Who opens the connection.
   VORN_MUTABLE( 0x105, LdpSessionRole, ldpSessionRole, LdpSessionRole, local ) = roleUnknown;
   /// Status of the peer.
   VORN_MUTABLE( 0x106, LdpStatusCode, ldpPeerStatusCode, LdpPeerStatusCode, local ) = success;
   /// Why the session is wanted as it is, for a person.
   VORN_MUTABLE( 0x107, Vorn::String, reason, Reason, local );
   /// Keep-alive time to propose, in seconds.
   VORN_MUTABLE( 0x108, U16, keepAliveTime, KeepAliveTime, replicated ) = 30;
   /// How often a KeepAlive is sent, in seconds.
   VORN_MUTABLE( 0x109, U16, keepAliveTxInterval, KeepAliveTxInterval, replicated ) = 10;
   /// Largest PDU to propose, in octets.
   VORN_MUTABLE( 0x10a, U16, maxPduLength, MaxPduLength, local ) = 4096;
   /// Configuration sequence number of the peer's last hello.
   VORN_MUTABLE( 0x10b, U16, peerConfigSeqNum, PeerConfigSeqNum, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionConfig, ldpSessionConfigFactory )

/// What is wanted of the sessions of a VRF.
class VORN_API LdpSessionConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpSessionConfigColl, Vorn::Entity )

 public:
   explicit LdpSessionConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What they share; null until somebody makes it.
   VORN_CHILD( 0x102, LdpSessionCommonConfig, ldpSessionCommonConfig, LdpSessionCommonConfig, replicated );
   /// What is wanted of each session, by the peer.
   VORN_ENTITY_COLL( 0x103, LdpSessionConfig, LdpSessionId, sessionConfig, SessionConfig, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionConfigColl, ldpSessionConfigCollFactory )

/// Run-time state of one session. The defaults are those of the protocol before negotiation: one discipline
/// is in force from the start, since labels are handed out by it, while the peer's own is unknown until its
/// Initialization.
class VORN_API LdpSessionStatus : public Vorn::Entity {
   VORN_ENTITY( LdpSessionStatus, Vorn::Entity )

 public:
   explicit LdpSessionStatus( LdpSessionId const & ldpSessionId ) : ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x102, LdpSessionId, ldpSessionId );
   /// The speaker's own identifier.
   VORN_MUTABLE( 0x103, LdpIdentifier, localLdpIdentifier, LocalLdpIdentifier, replicated );
   /// Whether the speaker opens the connection.
   VORN_MUTABLE( 0x104, bool, tcpClientConnEnabled, TcpClientConnEnabled, local ) = false;
   /// When that was asked for, in seconds.
   VORN_MUTABLE( 0x105, double, tcpClientConnReqTime, TcpClientConnReqTime, local ) = 0.0;
   /// Keep-alive time that the peer proposes, in seconds.
   VORN_MUTABLE( 0x106, U16, peerKeepAliveTime, PeerKeepAliveTime, replicated ) = 30;
   /// Interval of KeepAlive messages that goes with it, in seconds.
   VORN_MUTABLE( 0x107, U16, peerKeepAliveTxInterval, PeerKeepAliveTxInterval, replicated ) = 10;
   /// Largest PDU length that the peer proposes, in octets.
   VORN_MUTABLE( 0x108, U16, peerMaxPduLength, PeerMaxPduLength, local ) = 4096;
   /// Keep-alive time in force, in seconds.
   VORN_MUTABLE( 0x109, U16, operKeepAliveTime, OperKeepAliveTime, replicated ) = 30;
   /// Largest PDU length in force, in octets.
   VORN_MUTABLE( 0x10a, U16, operMaxPduLength, OperMaxPduLength, local ) = 4096;
   /// Interval of KeepAlive messages in force, in seconds.
   VORN_MUTABLE( 0x10b, U16, operKeepAliveTxInterval, OperKeepAliveTxInterval, replicated ) = 10;
   /// Label advertisement discipline that the peer proposes.
   VORN_MUTABLE( 0x10c, LdpLabelAdvDspl, peerLabelAdvDspl, PeerLabelAdvDspl, replicated ) = unknownAdvDspl;
   /// Label advertisement discipline in force.
   VORN_MUTABLE( 0x10d, LdpLabelAdvDspl, operLabelAdvDspl, OperLabelAdvDspl, replicated ) = unSolicited;
   /// Capabilities that the peer announced (RFC 5561).
   VORN_VALUE_COLL( 0x10e, bool, LdpTlvType, peerCapability, PeerCapability, replicated );
   /// When the session became operational, in seconds.
   VORN_MUTABLE( 0x10f, double, sessionUptime, SessionUptime, replicated ) = 0.0;
   /// The state with its cause; the one way to change either.
   VORN_MUTABLE( 0x110, LdpSessionState, ldpSessionState, LdpSessionState, replicated );
   /// The state alone.
   VORN_DERIVED( 0x111, SessionState, sessionState );
   /// Phase of an operational session.
   VORN_MUTABLE( 0x112, SessionOpState, sessionOpState, SessionOpState, local ) = opStateUnknown;
   /// When the state changed last, in seconds.
   VORN_MUTABLE( 0x113, double, sessionStateLastChange, SessionStateLastChange, local ) = 0.0;
   /// How often each state was entered.
   VORN_COUNTER_COLL( 0x114, U64, SessionState, sessionStateCount, SessionStateCount, local );
   /// The status code alone that caused the state.
   VORN_DERIVED( 0x115, LdpStatusCode, code );
   /// Reason of the state, for a person.
   VORN_MUTABLE( 0x116, Vorn::String, sessionStateReason, SessionStateReason, replicated );
   /// The history of the state; null until `checkInit`.
   VORN_CHILD( 0x117, LdpSessionStateLogEntryColl, sessionStateLogEntryColl, SessionStateLogEntryColl,
               replicated );
   /// When the session expires unless something is received, in seconds.
   VORN_MUTABLE( 0x118, double, sessionExpireTime, SessionExpireTime, replicated ) = 0.0;
   /// Whether an Address message was received.
   VORN_MUTABLE( 0x119, bool, addressMsgRcvd, AddressMsgRcvd, local ) = false;
   /// Whether an Address message was sent.
   VORN_MUTABLE( 0x11a, bool, addressMsgTsmt, AddressMsgTsmt, local ) = false;
   /// Our end of the connection: address.
   VORN_MUTABLE( 0x11b, Lumo::IpGenAddr, localIpAddr, LocalIpAddr, replicated );
   /// Our end of the connection: TCP port.
   VORN_MUTABLE( 0x11c, U16, localPort, LocalPort, replicated ) = 0;
   /// The peer's end of the connection: address.
   VORN_MUTABLE( 0x11d, Lumo::IpGenAddr, peerIpAddr, PeerIpAddr, replicated );
   /// The peer's end of the connection: TCP port.
   VORN_MUTABLE( 0x11e, U16, peerPort, PeerPort, replicated ) = 0;
   /// Addresses of the peer's interfaces, which it announced.
   VORN_VALUE_COLL( 0x11f, bool, Lumo::IpGenAddr, peerIntfIp, PeerIntfIp, replicated );
   /// How often the peer said that it has label resources again (RFC 5036, 3.5.8.1).
   VORN_COUNTER( 0x120, U32, peerLabelRescAvailableCount, PeerLabelRescAvailableCount, local ) = 0;
   /// How often the session was tried again after a fatal error.
   VORN_COUNTER( 0x121, U64, fatalRetryCount, FatalRetryCount, local ) = 0;
   /// Whether both ends can restart gracefully (RFC 3478).
   VORN_MUTABLE( 0x122, bool, operGrSupported, OperGrSupported, replicated ) = false;
   /// The peer's reconnect timeout of graceful restart, in seconds.
   VORN_MUTABLE( 0x123, U32, peerGrReconnectTimeout, PeerGrReconnectTimeout, replicated ) = 0;
   /// The peer's recovery timeout of graceful restart, in seconds.
   VORN_MUTABLE( 0x124, U32, peerGrRecoveryTimeout, PeerGrRecoveryTimeout, replicated ) = 0;
   /// Whether the peer is being waited for in graceful restart.
   VORN_MUTABLE( 0x125, GrState, operGrState, OperGrState, replicated ) = grStateUnknown;
   /// Means nothing but its changes: observers are to look at `operGrState` again.
   VORN_COUNTER( 0x126, U32, operGrStateKick, OperGrStateKick, replicated ) = 0;
   VORN_FUNCTION( 0x127, checkInit );
   /// Makes the history, under the empty name, if there is none. Whoever makes a status calls it before the
   /// history is used.
   void checkInit();

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionStatus, ldpSessionStatusFactory )

/// The sessions of a VRF.
class VORN_API LdpSessionStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpSessionStatusColl, Vorn::Entity )

 public:
   explicit LdpSessionStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The sessions, by the peer.
   VORN_ENTITY_COLL( 0x102, LdpSessionStatus, LdpSessionId, sessionStatus, SessionStatus, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionStatusColl, ldpSessionStatusCollFactory )

} // namespace Ldp
