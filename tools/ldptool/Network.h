#pragma once

// What a passive monitor keeps of the speakers that it hears.

#include "Ldp/LdpAdj.h"
#include "Ldp/LdpPeer.h"
#include "Ldp/LdpSession.h"

namespace LdpTool {

/// One speaker: what it hears of its neighbours, as far as the capture shows it.
class Speaker : public Vorn::Entity {
   VORN_ENTITY( Speaker, Vorn::Entity )
   VORN_NOTIFIEE( VORN_ON( AdjStatusColl ); VORN_ON( PeerConfigColl ); VORN_ON( SessionStatusColl ); )

 public:
   explicit Speaker( Ldp::LdpIdentifier const & ldpIdentifier );
   ~Speaker() override;

   VORN_KEY( 0x102, Ldp::LdpIdentifier, ldpIdentifier );
   /// Neighbours whose hellos it can hear.
   VORN_CHILD( 0x103, Ldp::LdpAdjStatusColl, adjStatusColl, AdjStatusColl, replicated );
   /// Neighbours with at least one adjacency.
   VORN_CHILD( 0x104, Ldp::LdpPeerConfigColl, peerConfigColl, PeerConfigColl, replicated );
   /// Its sessions; "peer" in them is the other end.
   VORN_CHILD( 0x105, Ldp::LdpSessionStatusColl, sessionStatusColl, SessionStatusColl, replicated );
};

/// All speakers heard.
class Network : public Vorn::Entity {
   VORN_ENTITY( Network, Vorn::Entity )
   VORN_NOTIFIEE( VORN_ON_KEYED( Ldp::LdpIdentifier, Speaker ); )

 public:
   explicit Network( Vorn::Name const & name ) : name_( name ) {}
   ~Network() override;

   VORN_NAME;
   VORN_ENTITY_COLL( 0x102, LdpTool::Speaker, Ldp::LdpIdentifier, speaker, Speaker, replicated );
};
VORN_FACTORY( Network, networkFactory )

} // namespace LdpTool
