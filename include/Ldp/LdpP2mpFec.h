/// \file
/// Point-to-multipoint FECs (RFC 6388): each with its role in the tree, the peer towards the root, and the
/// sessions on both sides. A FEC is known by its root address and the index of its opaque value; whoever
/// makes or deletes one also tells the opaque table (LdpP2mpOpaqueTable.h).
#pragma once

#include "Ldp/LdpFec.h"

namespace Ldp {

/// Why a P2MP FEC exists.
#define VORN_LDP_P2MP_FEC_STATE_MEMBERSHIPS( X )                                                             \
   X( p2mpFecMemberFib, 0 )                                                                                  \
   X( p2mpFecMemberLocalSession, 1 )                                                                         \
   X( p2mpFecMemberRemoteSession, 2 )                                                                        \
   X( p2mpFecMemberStatic, 3 )
VORN_ENUM( LdpP2mpFecStateMembership, VORN_LDP_P2MP_FEC_STATE_MEMBERSHIPS )

/// Place of this router in the tree.
#define VORN_LDP_P2MP_FEC_ROLES( X )                                                                         \
   X( unknown, 0 )                                                                                           \
   X( leaf, 1 )                                                                                              \
   X( bud, 2 )                                                                                               \
   X( transit, 3 )
VORN_ENUM( LdpP2mpFecRole, VORN_LDP_P2MP_FEC_ROLES )

/// One P2MP FEC. As with `LdpFecConfig`, `membership` is the writer's to keep in step.
class VORN_API LdpP2mpFecState : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecState, Vorn::Entity )

 public:
   /// Makes the two children as well.
   explicit LdpP2mpFecState( Mpls::FwdEqvClass const & p2mpFecId );

   VORN_KEY( 0x102, Mpls::FwdEqvClass, p2mpFecId );
   /// Labels of the FEC. Made by the constructor, under the name labelSet.
   VORN_CHILD( 0x103, MplsLabelSet, mplsLabelSet, MplsLabelSet, local );
   /// Peers to which the FEC has been advertised. Made by the constructor.
   VORN_CHILD( 0x104, LdpIdentifierSet, advertisedTo, AdvertisedTo, replicated );
   /// Why the FEC exists.
   VORN_VALUE_COLL( 0x105, bool, LdpP2mpFecStateMembership, membership, Membership, local );
   /// Sessions to which we have sent a label.
   VORN_VALUE_COLL( 0x106, bool, LdpSessionId, localSessionMember, LocalSessionMember, replicated );
   /// Sessions from which we have a label.
   VORN_VALUE_COLL( 0x107, bool, LdpSessionId, remoteSessionMember, RemoteSessionMember, replicated );
   /// Place of this router in the tree.
   VORN_MUTABLE( 0x108, LdpP2mpFecRole, p2mpFecRole, P2mpFecRole, replicated ) = unknown;
   /// The peer towards the root.
   VORN_MUTABLE( 0x109, LdpIdentifier, upstreamLsr, UpstreamLsr, local );
   /// Next hops towards the root.
   VORN_VALUE_COLL( 0x10a, bool, Via, via, Via, local );
   /// Next hops by interface address; like the next two a reverse map, for the writer's own look-ups.
   VORN_LOCAL_ENTITY_COLL( 0x10b, IntfIpViaMapping, Lumo::IpGenAddr, intfIpViaMapping );
   /// The peer behind each next hop.
   VORN_LOCAL_VALUE_COLL( 0x10c, LdpIdentifier, Via, viaLdpIdMapping );
   /// Next hops by peer.
   VORN_LOCAL_ENTITY_COLL( 0x10d, LdpIdViaMapping, LdpIdentifier, ldpIdViaMapping );
   /// Whether the protocol works for this FEC.
   VORN_MUTABLE( 0x10e, bool, isProtocolOperational, IsProtocolOperational, local ) = false;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecState, ldpP2mpFecStateFactory )

/// The P2MP FECs of a VRF.
class VORN_API LdpP2mpFecStateColl : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecStateColl, Vorn::Entity )

 public:
   explicit LdpP2mpFecStateColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The P2MP FECs, by their value.
   VORN_ENTITY_COLL( 0x102, LdpP2mpFecState, Mpls::FwdEqvClass, p2mpFecState, P2mpFecState, replicated );
   /// Means nothing but its changes: observers are to look at their own state. 255 goes on with 0.
   VORN_COUNTER( 0x103, U8, notifyCounter, NotifyCounter, local ) = 0;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecStateColl, ldpP2mpFecStateCollFactory )

/// The P2MP FECs that end at one local label.
class VORN_API LdpP2mpLabelTerminatingInfo : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpLabelTerminatingInfo, Vorn::Entity )

 public:
   explicit LdpP2mpLabelTerminatingInfo( Lumo::MplsLabel const & label ) : label_( label ) {}

   VORN_KEY( 0x102, Lumo::MplsLabel, label );
   /// The P2MP FECs.
   VORN_SET( 0x103, Mpls::FwdEqvClass, p2mpFec, P2mpFec, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpLabelTerminatingInfo, ldpP2mpLabelTerminatingInfoFactory )

/// The local labels at which P2MP FECs end.
class VORN_API LdpP2mpLabelTerminatingInfoColl : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpLabelTerminatingInfoColl, Vorn::Entity )

 public:
   explicit LdpP2mpLabelTerminatingInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What ends at each label.
   VORN_ENTITY_COLL( 0x102, LdpP2mpLabelTerminatingInfo, Lumo::MplsLabel, labelTerminatingInfo,
                     LabelTerminatingInfo, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpLabelTerminatingInfoColl, ldpP2mpLabelTerminatingInfoCollFactory )

/// Counters of the TLVs in label mappings for P2MP FECs, by type.
class VORN_API LdpP2mpFecCounters : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpFecCounters, Vorn::Entity )

 public:
   explicit LdpP2mpFecCounters( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// TLVs in mappings received, by type.
   VORN_COUNTER_COLL( 0x102, U64, LdpTlvType, labelMappingRxTlv, LabelMappingRxTlv, local );
   /// TLVs in mappings sent, by type.
   VORN_COUNTER_COLL( 0x103, U64, LdpTlvType, labelMappingTxTlv, LabelMappingTxTlv, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpFecCounters, ldpP2mpFecCountersFactory )

} // namespace Ldp
