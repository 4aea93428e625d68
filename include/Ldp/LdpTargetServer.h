/// \file
/// The listener for targeted hellos.
#pragma once

#include "Lumo/Ip.h"
#include "Lumo/UdpPam.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// What is wanted of the listener.
class VORN_API LdpTargetServerConfig : public Vorn::Entity {
   VORN_ENTITY( LdpTargetServerConfig, Vorn::Entity )

 public:
   explicit LdpTargetServerConfig( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Whether it is to listen.
   VORN_MUTABLE( 0x102, bool, enabled, Enabled, local ) = false;
   /// Address on which it listens; 0.0.0.0 for every one.
   VORN_MUTABLE( 0x103, Lumo::IpAddr, listenIpAddr, ListenIpAddr, local );
   /// UDP port on which it listens; the default is that of the protocol.
   VORN_MUTABLE( 0x104, U16, listenPort, ListenPort, local ) = 646;
   /// The packet mover through which it receives.
   VORN_REFERENCE( 0x105, Lumo::UdpPam, rxUdpPam, RxUdpPam, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTargetServerConfig, ldpTargetServerConfigFactory )

/// Run-time state of the listener.
class VORN_API LdpTargetServerStatus : public Vorn::Entity {
   VORN_ENTITY( LdpTargetServerStatus, Vorn::Entity )

 public:
   explicit LdpTargetServerStatus( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Whether it listens.
   VORN_MUTABLE( 0x102, bool, listening, Listening, local ) = false;
   /// Why it does not listen, for a person.
   VORN_MUTABLE( 0x103, Vorn::String, reason, Reason, local );
   /// Hellos received.
   VORN_COUNTER( 0x104, U32, rxPktCount, RxPktCount, local ) = 0;
   /// Hellos received that were bad; `rxPktCount` counts them as well.
   VORN_COUNTER( 0x105, U32, errPktCount, ErrPktCount, local ) = 0;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTargetServerStatus, ldpTargetServerStatusFactory )

} // namespace Ldp
