/// \file
/// The listener for the connections of sessions.
#pragma once

#include "Lumo/Ip.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// What is wanted of the listener.
class VORN_API LdpTcpServerConfig : public Vorn::Entity {
   VORN_ENTITY( LdpTcpServerConfig, Vorn::Entity )

 public:
   explicit LdpTcpServerConfig( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Address on which it listens; 0.0.0.0 for every one.
   VORN_MUTABLE( 0x102, Lumo::IpAddr, listenIpAddr, ListenIpAddr, local );
   /// TCP port on which it listens; the default is that of the protocol.
   VORN_MUTABLE( 0x103, U16, listenPort, ListenPort, local ) = 646;
   /// Seconds before a failed listener is tried again.
   VORN_MUTABLE( 0x104, U32, retryInterval, RetryInterval, local ) = 1;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTcpServerConfig, ldpTcpServerConfigFactory )

/// Run-time state of the listener.
class VORN_API LdpTcpServerStatus : public Vorn::Entity {
   VORN_ENTITY( LdpTcpServerStatus, Vorn::Entity )

 public:
   explicit LdpTcpServerStatus( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Whether it listens.
   VORN_MUTABLE( 0x102, bool, listening, Listening, local ) = false;
   /// Why it does not listen, for a person.
   VORN_MUTABLE( 0x103, Vorn::String, reason, Reason, local );
   /// Connections accepted from each client address.
   VORN_COUNTER_COLL( 0x104, U32, Lumo::IpAddr, clientCount, ClientCount, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTcpServerStatus, ldpTcpServerStatusFactory )

} // namespace Ldp
