/// \file
/// Links: basic discovery on interfaces, and which interfaces carry which addresses.
#pragma once

#include "Interface/OperStatus.h"
#include "Ldp/LdpAdj.h"
#include "Lumo/IpMask.h"
#include "Lumo/Port.h"

namespace Ldp {

/// Whether an interface or a target is configured. Disabling takes time: the agent says goodbye first.
#define VORN_LDP_CONFIG_STATES( X )                                                                          \
   X( configEnabled, 1 )                                                                                     \
   X( configDisabling, 2 )                                                                                   \
   X( configDisabled, 3 )
VORN_ENUM( ConfigState, VORN_LDP_CONFIG_STATES )

/// Timers of link hellos, in seconds (RFC 5036, 2.5.5).
class VORN_API LdpLinkBaseConfig : public Vorn::Entity {
   VORN_ENTITY( LdpLinkBaseConfig, Vorn::Entity )

 public:
   explicit LdpLinkBaseConfig( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Between two hellos, in seconds.
   VORN_MUTABLE( 0x102, U16, interval, Interval, local ) = 5;
   /// Hold time that hellos propose, in seconds.
   VORN_MUTABLE( 0x103, U16, holdTime, HoldTime, local ) = 15;
   /// Before a socket is tried again, in seconds.
   VORN_MUTABLE( 0x104, U32, retryInterval, RetryInterval, local ) = 1;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpLinkBaseConfig, ldpLinkBaseConfigFactory )

/// What is common to the hellos of all links of a VRF.
class VORN_API LdpLinkCommonConfig : public LdpLinkBaseConfig {
   VORN_ENTITY( LdpLinkCommonConfig, LdpLinkBaseConfig )

 public:
   explicit LdpLinkCommonConfig( Vorn::Name const & name ) : LdpLinkBaseConfig( name ) {}

   /// Time to live of the packets: a link hello does not leave its link.
   VORN_MUTABLE( 0x182, Lumo::IpTtl, ttl, Ttl, local ) = Lumo::IpTtl( 1 );
   /// Transport address that hellos announce.
   VORN_MUTABLE( 0x183, Lumo::IpGenAddr, ipTransportAddr, IpTransportAddr, local ) = Lumo::IpAddr();
   /// The speaker's own identifier.
   VORN_MUTABLE( 0x184, LdpIdentifier, ldpId, LdpId, local );
   /// Whether multicast LDP runs (RFC 6388).
   VORN_MUTABLE( 0x185, bool, mLdpEnabled, MLdpEnabled, local ) = false;
   /// What the Configuration Sequence Number TLV says (RFC 5036, 3.5.2).
   VORN_MUTABLE( 0x186, U32, configSeqNum, ConfigSeqNum, local ) = 0;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpLinkCommonConfig, ldpLinkCommonConfigFactory )

/// What is wanted of one link.
class VORN_API LdpLinkConfig : public LdpLinkBaseConfig {
   VORN_ENTITY( LdpLinkConfig, LdpLinkBaseConfig )

 public:
   explicit LdpLinkConfig( Lumo::IntfId const & intfId )
        : LdpLinkBaseConfig( Vorn::Name() ), intfId_( intfId ) {}

   VORN_KEY( 0x182, Lumo::IntfId, intfId );
   /// Address of the interface from which hellos are sent.
   VORN_MUTABLE( 0x183, Lumo::IpAddr, ipAddr, IpAddr, replicated );
   /// Whether LDP is configured on the interface.
   VORN_MUTABLE( 0x184, ConfigState, configState, ConfigState, local ) = configEnabled;
   /// Operational status of the interface.
   VORN_MUTABLE( 0x185, Interface::IntfOperStatus, operStatus, OperStatus,
                 local ) = Interface::IntfOperStatus( 4 );

   VORN_NEXT_LINK;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpLinkConfig, ldpLinkConfigFactory )

/// What is wanted of the links of a VRF.
class VORN_API LdpLinkConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpLinkConfigColl, Vorn::Entity )

 public:
   explicit LdpLinkConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What they share; null until somebody makes it.
   VORN_CHILD( 0x102, LdpLinkCommonConfig, ldpLinkCommonConfig, LdpLinkCommonConfig, local );
   /// What is wanted of each link, by interface.
   VORN_ENTITY_COLL( 0x103, LdpLinkConfig, Lumo::IntfId, adjLinkConfig, AdjLinkConfig, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpLinkConfigColl, ldpLinkConfigCollFactory )

/// Run-time state of discovery on one interface.
class VORN_API LdpLinkStatus : public Vorn::Entity {
   VORN_ENTITY( LdpLinkStatus, Vorn::Entity )

 public:
   explicit LdpLinkStatus( Lumo::IntfId const & intfId ) : intfId_( intfId ) {}

   VORN_KEY( 0x102, Lumo::IntfId, intfId );
   /// Version of the packet that is sent, raised whenever its contents change.
   VORN_MUTABLE( 0x103, U32, pktVersion, PktVersion, local ) = 0;
   /// Whether hellos are being sent.
   VORN_MUTABLE( 0x104, bool, running, Running, local ) = false;
   /// The adjacencies on the interface.
   VORN_VALUE_COLL( 0x105, bool, LdpAdjId, adjIdSet, AdjIdSet, local );
   /// Interval of hellos in force, in seconds.
   VORN_MUTABLE( 0x106, U16, interval, Interval, replicated ) = 5;
   /// Hold time in force, in seconds.
   VORN_MUTABLE( 0x107, U16, holdTime, HoldTime, local ) = 15;
   /// Hellos received.
   VORN_COUNTER( 0x108, U32, rxPktCount, RxPktCount, local ) = 0;
   /// Hellos sent.
   VORN_COUNTER( 0x109, U32, txPktCount, TxPktCount, local ) = 0;
   /// Hellos received that were bad.
   VORN_COUNTER( 0x10a, U32, errPktCount, ErrPktCount, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpLinkStatus, ldpLinkStatusFactory )

/// The place of what the links of a VRF share at run time. It has no state so far.
class VORN_API LdpLinkCommonStatus : public Vorn::Entity {
   VORN_ENTITY( LdpLinkCommonStatus, Vorn::Entity )

 public:
   explicit LdpLinkCommonStatus( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpLinkCommonStatus, ldpLinkCommonStatusFactory )

/// Run-time state of the links of a VRF.
class VORN_API LdpLinkStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpLinkStatusColl, Vorn::Entity )

 public:
   /// Makes the common status as well.
   explicit LdpLinkStatusColl( Vorn::Name const & name );

   VORN_NAME;
   /// What the links share. Made by the constructor, under the name llcs.
   VORN_CHILD( 0x102, LdpLinkCommonStatus, ldpLinkCommonStatus, LdpLinkCommonStatus, local );
   /// Run-time state of each link, by interface.
   VORN_ENTITY_COLL( 0x103, LdpLinkStatus, Lumo::IntfId, adjLinkStatus, AdjLinkStatus, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpLinkStatusColl, ldpLinkStatusCollFactory )

/// State of the packet mover that serves the links.
class VORN_API LdpLinkUdpPamStatus : public Vorn::Entity {
   VORN_ENTITY( LdpLinkUdpPamStatus, Vorn::Entity )

 public:
   explicit LdpLinkUdpPamStatus( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Whether the packet mover is on.
   VORN_MUTABLE( 0x102, bool, enabled, Enabled, local ) = false;
   /// Why it is off, for a person.
   VORN_MUTABLE( 0x103, Vorn::String, reason, Reason, local );
   /// Packets received.
   VORN_COUNTER( 0x104, U32, rxPktCount, RxPktCount, local ) = 0;
   /// Packets sent.
   VORN_COUNTER( 0x105, U32, txPktCount, TxPktCount, local ) = 0;
   /// Packets received that were bad.
   VORN_COUNTER( 0x106, U32, errPktCount, ErrPktCount, local ) = 0;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpLinkUdpPamStatus, ldpLinkUdpPamStatusFactory )

/// One local address, and the interfaces that carry it: it can stand on several.
class VORN_API IpIntfMember : public Vorn::Entity {
   VORN_ENTITY( IpIntfMember, Vorn::Entity )

 public:
   explicit IpIntfMember( Lumo::IpAddrWithMask const & ipAddrWithMask ) : ipAddrWithMask_( ipAddrWithMask ) {}

   VORN_KEY( 0x102, Lumo::IpAddrWithMask, ipAddrWithMask );
   /// The interfaces.
   VORN_VALUE_COLL( 0x103, bool, Lumo::IntfId, intfId, IntfId, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( IpIntfMember, ipIntfMemberFactory )

/// The local addresses of a VRF.
class VORN_API LocalIntfIpColl : public Vorn::Entity {
   VORN_ENTITY( LocalIntfIpColl, Vorn::Entity )

 public:
   explicit LocalIntfIpColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The addresses, each with its mask.
   VORN_ENTITY_COLL( 0x102, IpIntfMember, Lumo::IpAddrWithMask, intfIpWithMask, IntfIpWithMask, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LocalIntfIpColl, localIntfIpCollFactory )

} // namespace Ldp
