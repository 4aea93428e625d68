/// \file
/// Graceful restart (RFC 3478): the speaker's own state, and the tables that outlive a restart.
#pragma once

#include "L3/VrfName.h"
#include "Ldp/LdpSession.h"
#include "Ldp/LdpTables.h"
#include "Mpls/Tables.h"

namespace Ldp {

/// Whether the speaker's own restart or that of a session's peer keeps a FEC alive.
#define VORN_LDP_GR_MEMBERSHIPS( X )                                                                         \
   X( grMembershipLocal, 0 )                                                                                 \
   X( grMembershipSession, 1 )
VORN_ENUM( GrMembership, VORN_LDP_GR_MEMBERSHIPS )

/// The speaker's own restart.
class VORN_API LocalGrStatus : public Vorn::Entity {
   VORN_ENTITY( LocalGrStatus, Vorn::Entity )
   VORN_CTOR_TYPES()

 public:
   LocalGrStatus() = default;

   /// Whether it is restarting.
   VORN_MUTABLE( 0x102, GrState, operGrState, OperGrState, replicated ) = grStateUnknown;
   /// When the forwarding state that was kept is given up, in seconds of `Vorn::System::currentTime()`;
   /// infinity for never.
   VORN_MUTABLE( 0x103, double, holdingTimerExpirationTime, HoldingTimerExpirationTime, replicated ) = 0.0;
   VORN_FUNCTION( 0x104, remainingHoldingTime );
   /// Seconds until then; 0 for a timer that has expired, was not set or never expires.
   double remainingHoldingTime() const;

   VORN_OBSERVERS;
};
VORN_FACTORY( LocalGrStatus, localGrStatusFactory )

/// What a VRF keeps of the time before a restart.
class VORN_API LdpGrStatus : public Vorn::Entity {
   VORN_ENTITY( LdpGrStatus, Vorn::Entity )

 public:
   explicit LdpGrStatus( L3::VrfName const & vrfName ) : vrfName_( vrfName ) {}

   VORN_KEY( 0x102, L3::VrfName, vrfName );
   /// Which peer had which interface address.
   VORN_CHILD( 0x103, LdpIdIntfIpMappingTable, ldpIdIntfIpMappingTable, LdpIdIntfIpMappingTable, replicated );
   /// The local labels, by FEC.
   VORN_CHILD( 0x104, Mpls::LabelBindingTable, localLabelAllocTable, LocalLabelAllocTable, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpGrStatus, ldpGrStatusFactory )

} // namespace Ldp
