/// \file
/// Peers: the adjacencies that lead to one LDP identifier, gathered.
#pragma once

#include "Ldp/LdpAdj.h"

namespace Ldp {

/// One peer: the adjacencies by which it is reached, and the one through which the session runs.
class VORN_API LdpPeerConfig : public Vorn::Entity {
   VORN_ENTITY( LdpPeerConfig, Vorn::Entity )

 public:
   explicit LdpPeerConfig( LdpIdentifier const & ldpIdentifier ) : ldpIdentifier_( ldpIdentifier ) {}

   VORN_KEY( 0x102, LdpIdentifier, ldpIdentifier );
   /// The peer's adjacencies.
   VORN_VALUE_COLL( 0x103, bool, LdpAdjId, ldpAdj, LdpAdj, replicated );
   /// The adjacency through which the session runs.
   VORN_MUTABLE( 0x104, LdpAdjId, activeAdj, ActiveAdj, local );
   /// Transport address of the peer.
   VORN_MUTABLE( 0x105, Lumo::IpGenAddr, peerIpAddr, PeerIpAddr, replicated ) = Lumo::IpAddr();
   /// Configuration sequence number of the last hello. 16 bits here, 32 in an adjacency's status: who
   /// compares the two compares the low half. Copies and tools depend on both widths.
   VORN_MUTABLE( 0x106, U16, peerConfigSeqNum, PeerConfigSeqNum, local ) = 0;
   /// Status of the peer.
   VORN_MUTABLE( 0x107, LdpStatusCode, statusCode, StatusCode, local ) = success;
   /// Status of the peer's last adjacency event.
   VORN_MUTABLE( 0x108, LdpStatusCode, latestAdjStatusCode, LatestAdjStatusCode, local ) = success;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpPeerConfig, ldpPeerConfigFactory )

/// The peers of a VRF.
class VORN_API LdpPeerConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpPeerConfigColl, Vorn::Entity )

 public:
   explicit LdpPeerConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The peers, by identifier.
   VORN_ENTITY_COLL( 0x102, LdpPeerConfig, LdpIdentifier, peerConfig, PeerConfig, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpPeerConfigColl, ldpPeerConfigCollFactory )

/// That a peer is known; it has no state besides.
class VORN_API LdpPeerStatus : public Vorn::Entity {
   VORN_ENTITY( LdpPeerStatus, Vorn::Entity )

 public:
   explicit LdpPeerStatus( LdpIdentifier const & ldpIdentifier ) : ldpIdentifier_( ldpIdentifier ) {}

   VORN_KEY( 0x102, LdpIdentifier, ldpIdentifier );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpPeerStatus, ldpPeerStatusFactory )

/// The peers that are known in a VRF.
class VORN_API LdpPeerStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpPeerStatusColl, Vorn::Entity )

 public:
   explicit LdpPeerStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The peers, by identifier.
   VORN_ENTITY_COLL( 0x102, LdpPeerStatus, LdpIdentifier, peerStatus, PeerStatus, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpPeerStatusColl, ldpPeerStatusCollFactory )

} // namespace Ldp
