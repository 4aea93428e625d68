/// \file
/// Adjacencies: hello relationships with one peer on one link, or with one peer at one target address, and
/// the peers that they lead to.
#pragma once

#include "Ldp/LdpEnums.h"
#include "Ldp/LdpIdentifier.h"
#include "Lumo/IntfId.h"
#include "Lumo/Ip.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// Kinds of adjacency.
#define VORN_LDP_ADJ_TYPES( X )                                                                              \
   X( LdpLinkAdj, 1 )                                                                                        \
   X( LdpTargetAdj, 2 )
VORN_ENUM( LdpAdjType, VORN_LDP_ADJ_TYPES )

/// Identity of an adjacency: the peer, and the interface or the target address by which it is reached. Its
/// text is `10.0.0.1:0_Ethernet1` or `10.0.0.1:0_TARGET_10.0.0.1`.
class VORN_API LdpAdjId {
   VORN_VALUE( LdpAdjId )
   /// LSR id and label space of the peer.
   VORN_FIELD( 0x2, LdpIdentifier, ldpIdentifier );
   /// Interface of a link adjacency; empty for a targeted one.
   VORN_FIELD( 0x3, Lumo::IntfId, intfId );
   /// Address of a targeted adjacency; 0.0.0.0 for a link one.
   VORN_FIELD( 0x4, Lumo::IpAddr, targetIpAddr );

 public:
   LdpAdjId() noexcept = default;
   /// A link adjacency.
   LdpAdjId( LdpIdentifier const & peer, Lumo::IntfId const & intfId )
        : ldpIdentifier_( peer ), intfId_( intfId ) {}
   /// A targeted adjacency.
   LdpAdjId( LdpIdentifier const & peer, Lumo::IpAddr const & target )
        : ldpIdentifier_( peer ), targetIpAddr_( target ) {}

   /// A link adjacency has an interface; without one it is targeted.
   VORN_VALUE_FUNCTION( 0x5, LdpAdjType, adjType );
   /// Name of the attribute that stands for the whole value.
   VORN_CONSTANT( 0x6, Vorn::String, defaultAttribute, "stringValue" );
   /// The text above, written and read. The reader throws RangeException for a text that is not of that form.
   VORN_VALUE_TEXT( 0x7, stringValue, stringValueIs );
   /// Leaves out the target address: all targeted adjacencies of a peer fall into one chain, where equality
   /// tells them apart. A `HashMap2018` bears 16,383 of them (`LdpPeerConfig::ldpAdj`, `LdpTargetStatus`; one
   /// more asserts) and a `HashMap` gets slow, so who makes adjacencies out of hellos sets a bound far below
   /// that: anybody can send targeted hellos of one identifier from as many addresses as it likes.
   VORN_VALUE_DERIVED( 0x8, U32, hash );

   friend bool operator==( LdpAdjId const &, LdpAdjId const & ) noexcept = default;
   /// By peer, then by interface, then by target address.
   friend VORN_API bool operator<( LdpAdjId const & a, LdpAdjId const & b ) noexcept;
};
VORN_TEXT( LdpAdjId )

/// What is wanted of one adjacency.
class VORN_API LdpAdjConfig : public Vorn::Entity {
   VORN_ENTITY( LdpAdjConfig, Vorn::Entity )

 public:
   explicit LdpAdjConfig( LdpAdjId const & ldpAdjId ) : ldpAdjId_( ldpAdjId ) {}

   VORN_KEY( 0x102, LdpAdjId, ldpAdjId );
   /// Hold time proposed on this adjacency, in seconds.
   VORN_MUTABLE( 0x103, U16, holdTime, HoldTime, replicated ) = 15;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpAdjConfig, ldpAdjConfigFactory )

/// The adjacencies' configurations.
class VORN_API LdpAdjConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpAdjConfigColl, Vorn::Entity )

 public:
   explicit LdpAdjConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The configurations, by adjacency.
   VORN_ENTITY_COLL( 0x102, LdpAdjConfig, LdpAdjId, adjConfig, AdjConfig, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpAdjConfigColl, ldpAdjConfigCollFactory )

/// Run-time state of one hello adjacency.
class VORN_API LdpAdjStatus : public Vorn::Entity {
   VORN_ENTITY( LdpAdjStatus, Vorn::Entity )

 public:
   explicit LdpAdjStatus( LdpAdjId const & ldpAdjId ) : ldpAdjId_( ldpAdjId ) {}

   VORN_KEY( 0x102, LdpAdjId, ldpAdjId );
   /// Last status of the adjacency.
   VORN_MUTABLE( 0x103, LdpStatusCode, adjStatusCode, AdjStatusCode, replicated ) = success;
   /// Id of the last message.
   VORN_MUTABLE( 0x104, U32, msgId, MsgId, local ) = 0;
   /// Hold time that the peer proposes, in seconds.
   VORN_MUTABLE( 0x105, U16, peerHoldTime, PeerHoldTime, replicated ) = 0;
   /// Hold time in force, in seconds.
   VORN_MUTABLE( 0x106, U16, operHoldTime, OperHoldTime, replicated ) = 0;
   /// When the adjacency expires, in seconds of `Vorn::System::currentTime()`.
   VORN_MUTABLE( 0x107, double, adjExpireTime, AdjExpireTime, replicated ) = 0.0;
   /// Transport address of the peer.
   VORN_MUTABLE( 0x108, Lumo::IpGenAddr, peerIpAddr, PeerIpAddr, replicated ) = Lumo::IpAddr();
   /// Source address of the peer's hellos.
   VORN_MUTABLE( 0x109, Lumo::IpGenAddr, peerSrcIpAddr, PeerSrcIpAddr, replicated ) = Lumo::IpAddr();
   /// Configuration sequence number of the last hello.
   VORN_MUTABLE( 0x10a, U32, peerConfigSeqNum, PeerConfigSeqNum, local ) = 0;
   /// Hellos received.
   VORN_COUNTER( 0x10b, U32, rxPktCount, RxPktCount, local ) = 0;
   /// Hellos received that were bad; `rxPktCount` counts them as well.
   VORN_COUNTER( 0x10c, U32, errPktCount, ErrPktCount, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpAdjStatus, ldpAdjStatusFactory )

/// The adjacencies of a VRF.
class VORN_API LdpAdjStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpAdjStatusColl, Vorn::Entity )

 public:
   explicit LdpAdjStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The adjacencies, by their identity.
   VORN_ENTITY_COLL( 0x102, LdpAdjStatus, LdpAdjId, adjStatus, AdjStatus, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpAdjStatusColl, ldpAdjStatusCollFactory )

/// The adjacencies on one interface.
class VORN_API LdpAdjPerLink : public Vorn::Entity {
   VORN_ENTITY( LdpAdjPerLink, Vorn::Entity )

 public:
   explicit LdpAdjPerLink( Lumo::IntfId const & intfId ) : intfId_( intfId ) {}

   VORN_KEY( 0x102, Lumo::IntfId, intfId );
   /// The adjacencies.
   VORN_VALUE_COLL( 0x103, bool, LdpAdjId, ldpAdj, LdpAdj, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpAdjPerLink, ldpAdjPerLinkFactory )

} // namespace Ldp
