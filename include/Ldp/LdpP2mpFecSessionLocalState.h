/// \file
/// What this speaker has said about each P2MP FEC on each session: a tree by session first and by FEC second,
/// so that a session is dropped at once. The model does not compare the session of the outer key with the one
/// inside the FEC session id.
#pragma once

#include "Ldp/LdpFecSession.h"

namespace Ldp {

/// Why the work on a FEC session begins; for the agent's queues, no attribute here has this type.
#define VORN_LDP_P2MP_FEC_SESSION_EVENTS( X )                                                                \
   X( LdpP2mpFecSessionEventNone, 0 )                                                                        \
   X( LdpP2mpFecSessionEventNotifier, 1 )                                                                    \
   X( LdpP2mpFecSessionEventWorkQueue, 2 )
VORN_ENUM( LdpP2mpFecSessionEvent, VORN_LDP_P2MP_FEC_SESSION_EVENTS )

/// The label that is active now, with its state; it can be dropped and made anew by itself.
class VORN_API LdpP2mpFecSessionLocalEphemeralState : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionLocalEphemeralState, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionLocalEphemeralState( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// State of the active label.
   VORN_MUTABLE( 0x102, LdpLocalLabelState, activeLabelState, ActiveLabelState, local ) = noneSent;
   /// The active label.
   VORN_MUTABLE( 0x103, Lumo::MplsLabel, activeLabel, ActiveLabel, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionLocalEphemeralState, ldpP2mpFecSessionLocalEphemeralStateFactory )

/// One P2MP FEC on one session.
class VORN_API LdpP2mpFecSessionLocalState : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionLocalState, Vorn::Entity )

 public:
   /// Makes the child as well.
   explicit LdpP2mpFecSessionLocalState( LdpFecSessionId const & ldpP2mpFecSessionId );

   VORN_KEY( 0x102, LdpFecSessionId, ldpP2mpFecSessionId );
   /// State of the exchange about our label.
   VORN_MUTABLE( 0x103, LdpLocalLabelSessionState, localLabelSessionState, LocalLabelSessionState, local );
   /// The label that is active now. Made by the constructor, under the empty name.
   VORN_CHILD( 0x104, LdpP2mpFecSessionLocalEphemeralState, ephemeralState, EphemeralState, local );
   /// Messages received, by type.
   VORN_COUNTER_COLL( 0x105, U64, LdpMsgType, ldpMsgRx, LdpMsgRx, local );
   /// Messages sent, by type.
   VORN_COUNTER_COLL( 0x106, U64, LdpMsgType, ldpMsgTx, LdpMsgTx, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionLocalState, ldpP2mpFecSessionLocalStateFactory )

/// The P2MP FECs on one session.
class VORN_API LdpP2mpFecSessionLocalStatePerSessionColl : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionLocalStatePerSessionColl, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionLocalStatePerSessionColl( LdpSessionId const & ldpSessionId )
        : ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x102, LdpSessionId, ldpSessionId );
   /// The P2MP FECs, each with the session.
   VORN_ENTITY_COLL( 0x103, LdpP2mpFecSessionLocalState, LdpFecSessionId, p2mpFecSessionLocalState,
                     P2mpFecSessionLocalState, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionLocalStatePerSessionColl, ldpP2mpFecSessionLocalStatePerSessionCollFactory )

/// The sessions of a VRF.
class VORN_API LdpP2mpFecSessionLocalStateColl : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionLocalStateColl, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionLocalStateColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The P2MP FECs of each session.
   VORN_ENTITY_COLL( 0x102, LdpP2mpFecSessionLocalStatePerSessionColl, LdpSessionId,
                     p2mpFecSessionLocalStateColl, P2mpFecSessionLocalStateColl, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionLocalStateColl, ldpP2mpFecSessionLocalStateCollFactory )

/// Tells one observer of a change in any P2MP FEC of a session: the writer stores the id, then moves the
/// count. The id stays in place behind that.
class VORN_API LdpP2mpFecSessionLocalStateNotifier : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionLocalStateNotifier, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionLocalStateNotifier( LdpSessionId const & ldpSessionId )
        : ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x102, LdpSessionId, ldpSessionId );
   /// The FEC session that changed last.
   VORN_MUTABLE( 0x103, LdpFecSessionId, p2mpFecSessionId, P2mpFecSessionId, local );
   /// Moves with each change; 255 goes on with 0.
   VORN_COUNTER( 0x104, U8, notifyCounter, NotifyCounter, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionLocalStateNotifier, ldpP2mpFecSessionLocalStateNotifierFactory )

/// The notifiers of all sessions.
class VORN_API LdpP2mpFecSessionLocalStateNotifierColl : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecSessionLocalStateNotifierColl, Vorn::Entity )

 public:
   explicit LdpP2mpFecSessionLocalStateNotifierColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// For the writer, as context; it is tied to no key.
   VORN_MUTABLE( 0x102, LdpSessionId, ldpSessionId, LdpSessionId, local );
   /// The notifiers, by session.
   VORN_ENTITY_COLL( 0x103, LdpP2mpFecSessionLocalStateNotifier, LdpSessionId,
                     p2mpFecSessionLocalStateNotifier, P2mpFecSessionLocalStateNotifier, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecSessionLocalStateNotifierColl, ldpP2mpFecSessionLocalStateNotifierCollFactory )

} // namespace Ldp
