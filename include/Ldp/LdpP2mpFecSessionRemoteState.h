/// \file
/// What each peer has said about each P2MP FEC: a tree by session first and by FEC second, as for the
/// speaker's own side.
#pragma once

#include "Ldp/LdpFecSession.h"

namespace Ldp {

/// One P2MP FEC on one session: the one label that the peer has for it.
class VORN_API LdpP2mpFecSessionRemoteState : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionRemoteState, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionRemoteState( LdpFecSessionId const & ldpP2mpFecSessionId )
        : ldpP2mpFecSessionId_( ldpP2mpFecSessionId ) {}

   /// State of the peer's label.
   VORN_MUTABLE( 0x102, LdpPeerLabelState, peerLabelState, PeerLabelState, local ) = noneRcvd;
   /// The peer's label.
   VORN_MUTABLE( 0x103, Lumo::MplsLabel, peerLabel, PeerLabel, local );
   /// Whether the FEC session is in use on the peer's side.
   VORN_MUTABLE( 0x104, bool, remoteFecSessionInUse, RemoteFecSessionInUse, local ) = false;
   VORN_KEY( 0x105, LdpFecSessionId, ldpP2mpFecSessionId );
   /// Messages received, by type.
   VORN_COUNTER_COLL( 0x106, U64, LdpMsgType, ldpMsgRx, LdpMsgRx, local );
   /// Messages sent, by type.
   VORN_COUNTER_COLL( 0x107, U64, LdpMsgType, ldpMsgTx, LdpMsgTx, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionRemoteState, ldpP2mpFecSessionRemoteStateFactory )

/// The P2MP FECs on one session.
class VORN_API LdpP2mpFecSessionRemoteStatePerSessionColl : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionRemoteStatePerSessionColl, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionRemoteStatePerSessionColl( LdpSessionId const & ldpSessionId )
        : ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x102, LdpSessionId, ldpSessionId );
   /// The P2MP FECs, each with the session.
   VORN_ENTITY_COLL( 0x103, LdpP2mpFecSessionRemoteState, LdpFecSessionId, p2mpFecSessionRemoteState,
                     P2mpFecSessionRemoteState, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionRemoteStatePerSessionColl, ldpP2mpFecSessionRemoteStatePerSessionCollFactory )

/// The sessions of a VRF.
class VORN_API LdpP2mpFecSessionRemoteStateColl : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionRemoteStateColl, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionRemoteStateColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The P2MP FECs of each session.
   VORN_ENTITY_COLL( 0x102, LdpP2mpFecSessionRemoteStatePerSessionColl, LdpSessionId,
                     p2mpFecSessionRemoteStateColl, P2mpFecSessionRemoteStateColl, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionRemoteStateColl, ldpP2mpFecSessionRemoteStateCollFactory )

/// Tells one observer of a change in any P2MP FEC of a session: the writer stores id and message type, then
/// moves the count. Both stay in place behind that.
class VORN_API LdpP2mpFecSessionRemoteStateNotifier : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionRemoteStateNotifier, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionRemoteStateNotifier( LdpSessionId const & ldpSessionId )
        : ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x102, LdpSessionId, ldpSessionId );
   /// The FEC session that changed last.
   VORN_MUTABLE( 0x103, LdpFecSessionId, p2mpFecSessionId, P2mpFecSessionId, local );
   /// Type of the message that changed it.
   VORN_MUTABLE( 0x104, LdpMsgType, msgType, MsgType, local ) = LdpNotification;
   /// Moves with each change; 255 goes on with 0.
   VORN_COUNTER( 0x105, U8, notifyCounter, NotifyCounter, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionRemoteStateNotifier, ldpP2mpFecSessionRemoteStateNotifierFactory )

/// The notifiers of all sessions.
class VORN_API LdpP2mpFecSessionRemoteStateNotifierColl : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionRemoteStateNotifierColl, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionRemoteStateNotifierColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// For the writer, as context; it is tied to no key.
   VORN_MUTABLE( 0x102, LdpSessionId, ldpSessionId, LdpSessionId, local );
   /// The notifiers, by session.
   VORN_ENTITY_COLL( 0x103, LdpP2mpFecSessionRemoteStateNotifier, LdpSessionId,
                     p2mpFecSessionRemoteStateNotifier, P2mpFecSessionRemoteStateNotifier, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionRemoteStateNotifierColl, ldpP2mpFecSessionRemoteStateNotifierCollFactory )

} // namespace Ldp
