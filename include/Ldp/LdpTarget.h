/// \file
/// Targets: extended discovery, by hellos to an address (RFC 5036, 2.4.2).
#pragma once

#include "Ldp/LdpLink.h"

namespace Ldp {

/// Why a target exists; there can be several reasons at once.
#define VORN_LDP_TARGET_MEMBERSHIPS( X )                                                                     \
   X( targetMemberStatic, 0 )                                                                                \
   X( targetMemberPw, 1 )                                                                                    \
   X( targetMemberHr, 2 )
VORN_ENUM( LdpTargetMembership, VORN_LDP_TARGET_MEMBERSHIPS )

/// Timers of targeted hellos, in seconds.
class VORN_API LdpTargetBaseConfig : public Vorn::Entity {
   VORN_ENTITY( LdpTargetBaseConfig, Vorn::Entity )

 public:
   explicit LdpTargetBaseConfig( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Between two hellos, in seconds.
   VORN_MUTABLE( 0x102, U16, interval, Interval, local ) = 15;
   /// Hold time that hellos propose, in seconds.
   VORN_MUTABLE( 0x103, U16, holdTime, HoldTime, local ) = 45;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTargetBaseConfig, ldpTargetBaseConfigFactory )

/// What is common to the hellos to all targets of a VRF.
class VORN_API LdpTargetCommonConfig : public LdpTargetBaseConfig {
   VORN_ENTITY( LdpTargetCommonConfig, LdpTargetBaseConfig )

 public:
   explicit LdpTargetCommonConfig( Vorn::Name const & name ) : LdpTargetBaseConfig( name ) {}

   /// Time to live of the packets.
   VORN_MUTABLE( 0x182, Lumo::IpTtl, ttl, Ttl, local ) = Lumo::IpTtl( 1 );
   /// Transport address that hellos announce.
   VORN_MUTABLE( 0x183, Lumo::IpGenAddr, ipTransportAddr, IpTransportAddr, replicated ) = Lumo::IpAddr();
   /// The speaker's own identifier.
   VORN_MUTABLE( 0x184, LdpIdentifier, ldpId, LdpId, local );
   /// What the Configuration Sequence Number TLV says (RFC 5036, 3.5.2).
   VORN_MUTABLE( 0x185, U32, configSeqNum, ConfigSeqNum, local ) = 0;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpTargetCommonConfig, ldpTargetCommonConfigFactory )

/// What is wanted of one target. It begins disabled, unlike a link: its reasons to be come one by one behind
/// it. A target without a reason left is for the agent to delete.
class VORN_API LdpTargetConfig : public LdpTargetBaseConfig {
   VORN_ENTITY( LdpTargetConfig, LdpTargetBaseConfig )

 public:
   explicit LdpTargetConfig( Lumo::IpAddr const & targetIpAddr )
        : LdpTargetBaseConfig( Vorn::Name() ), targetIpAddr_( targetIpAddr ) {}

   VORN_KEY( 0x182, Lumo::IpAddr, targetIpAddr );
   /// Whether the target is configured.
   VORN_MUTABLE( 0x183, ConfigState, configState, ConfigState, local ) = configDisabled;
   /// The reasons for which the target exists.
   VORN_VALUE_COLL( 0x184, bool, LdpTargetMembership, targetMembership, TargetMembership, replicated );

   VORN_NEXT_LINK;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpTargetConfig, ldpTargetConfigFactory )

/// What is wanted of the targets of a VRF.
class VORN_API LdpTargetConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpTargetConfigColl, Vorn::Entity )

 public:
   explicit LdpTargetConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What they share; null until somebody makes it.
   VORN_CHILD( 0x102, LdpTargetCommonConfig, ldpTargetCommonConfig, LdpTargetCommonConfig, replicated );
   /// What is wanted of each target, by address.
   VORN_ENTITY_COLL( 0x103, LdpTargetConfig, Lumo::IpAddr, adjTargetConfig, AdjTargetConfig, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTargetConfigColl, ldpTargetConfigCollFactory )

/// Run-time state of discovery of one target. Its timers are 0 until they are configured.
class VORN_API LdpTargetStatus : public Vorn::Entity {
   VORN_ENTITY( LdpTargetStatus, Vorn::Entity )

 public:
   explicit LdpTargetStatus( Lumo::IpAddr const & targetIpAddr ) : targetIpAddr_( targetIpAddr ) {}

   VORN_KEY( 0x102, Lumo::IpAddr, targetIpAddr );
   /// Version of the packet that is sent, raised whenever its contents change.
   VORN_MUTABLE( 0x103, U32, pktVersion, PktVersion, local ) = 0;
   /// Whether hellos are being sent.
   VORN_MUTABLE( 0x104, bool, running, Running, local ) = false;
   /// Interval of hellos in force, in seconds.
   VORN_MUTABLE( 0x105, U16, interval, Interval, replicated ) = 0;
   /// Hold time in force, in seconds.
   VORN_MUTABLE( 0x106, U16, holdTime, HoldTime, local ) = 0;
   /// Hellos received.
   VORN_COUNTER( 0x107, U32, rxPktCount, RxPktCount, local ) = 0;
   /// Hellos sent.
   VORN_COUNTER( 0x108, U32, txPktCount, TxPktCount, local ) = 0;
   /// Hellos received that were bad.
   VORN_COUNTER( 0x109, U32, errPktCount, ErrPktCount, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTargetStatus, ldpTargetStatusFactory )

/// Run-time state of the targets of a VRF.
class VORN_API LdpTargetStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpTargetStatusColl, Vorn::Entity )

 public:
   explicit LdpTargetStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Run-time state of each target, by address.
   VORN_ENTITY_COLL( 0x102, LdpTargetStatus, Lumo::IpAddr, adjTargetStatus, AdjTargetStatus, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTargetStatusColl, ldpTargetStatusCollFactory )

} // namespace Ldp
