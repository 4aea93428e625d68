/// \file
/// Outgoing connections of sessions: what a TCP client is asked for, and what became of it.
#pragma once

#include "Ldp/LdpIdentifier.h"
#include "Lumo/TcpClient.h"

namespace Ldp {

/// A connection to one peer.
class VORN_API LdpTcpConnConfig : public Lumo::TcpClientConfig {
   VORN_ENTITY( LdpTcpConnConfig, Lumo::TcpClientConfig )
   VORN_CTOR_TYPES( Lumo::IpGenAddr, Lumo::Port, Lumo::IpGenAddr, LdpIdentifier )

 public:
   /// A connection from `clientIpAddr` to the server; `requestTime` becomes the present time.
   LdpTcpConnConfig( Lumo::IpGenAddr const & serverIpAddr, Lumo::Port serverPort,
                     Lumo::IpGenAddr const & clientIpAddr, LdpIdentifier const & ldpIdentifier );

   VORN_KEY( 0x202, LdpIdentifier, ldpIdentifier );
   /// Whether the client is to act.
   VORN_MUTABLE( 0x203, bool, enabled, Enabled, local ) = false;
   /// When the connection was asked for, in seconds: when the object was made, to begin with.
   VORN_MUTABLE( 0x204, double, requestTime, RequestTime, local ) = 0.0;

   VORN_NEXT_LINK;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpTcpConnConfig, ldpTcpConnConfigFactory )

/// The connections of a VRF, by peer. `connConfigIs` for a known peer fails with NameInUseException if the
/// server address is another, and else writes port and client address.
class VORN_API LdpTcpConnConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpTcpConnConfigColl, Vorn::Entity )

 public:
   explicit LdpTcpConnConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The connections, by peer.
   VORN_ENTITY_COLL( 0x102, LdpTcpConnConfig, LdpIdentifier, connConfig, ConnConfig, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTcpConnConfigColl, ldpTcpConnConfigCollFactory )

/// What became of a connection to one peer.
class VORN_API LdpTcpConnStatus : public Lumo::TcpClientStatus {
   VORN_ENTITY( LdpTcpConnStatus, Lumo::TcpClientStatus )
   VORN_CTOR_TYPES( LdpIdentifier, U32 )

 public:
   LdpTcpConnStatus( LdpIdentifier const & ldpIdentifier, U32 clientId )
        : ldpIdentifier_( ldpIdentifier ), clientId_( clientId ) {}

   VORN_KEY( 0x182, LdpIdentifier, ldpIdentifier );
   /// Which client reports.
   VORN_CTOR_ARG( 0x183, U32, clientId );
   /// `requestTime` of the request that this is about, in seconds.
   VORN_MUTABLE( 0x184, double, requestTime, RequestTime, local ) = 0.0;

   VORN_NEXT_LINK;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpTcpConnStatus, ldpTcpConnStatusFactory )

/// What became of the connections of a VRF, by peer.
class VORN_API LdpTcpConnStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpTcpConnStatusColl, Vorn::Entity )

 public:
   explicit LdpTcpConnStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What became of each connection, by peer.
   VORN_ENTITY_COLL( 0x102, LdpTcpConnStatus, LdpIdentifier, connStatus, ConnStatus, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTcpConnStatusColl, ldpTcpConnStatusCollFactory )

} // namespace Ldp
