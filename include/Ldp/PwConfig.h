/// \file
/// Pseudowire requests: what a service asks LDP to signal, and what came of it.
#pragma once

#include "Lumo/MplsLabel.h"
#include "Pseudowire/Types.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// How the status of a pseudowire is signalled (RFC 8077, 6.3).
#define VORN_PW_STATUS_METHODS( X )                                                                          \
   X( pwStatusMethodUndefined, 0 )                                                                           \
   X( pwStatusMethodTlv, 1 )                                                                                 \
   X( pwStatusMethodWithdraw, 2 )
VORN_ENUM( PwStatusMethod, VORN_PW_STATUS_METHODS )

/// One request.
class VORN_API PwConfig : public Vorn::Entity {
   VORN_ENTITY( PwConfig, Vorn::Entity )
   VORN_CTOR_TYPES( Pseudowire::PseudowireLdpRequestKey, Pseudowire::PseudowireType )

 public:
   PwConfig( Pseudowire::PseudowireLdpRequestKey const & pwKey, Pseudowire::PseudowireType pwType )
        : pwKey_( pwKey ), pwType_( pwType ) {}

   VORN_KEY( 0x102, Pseudowire::PseudowireLdpRequestKey, pwKey );
   /// Type of the pseudowire.
   VORN_CTOR_ARG( 0x103, Pseudowire::PseudowireType, pwType );
   /// Group of the pseudowire.
   VORN_MUTABLE( 0x104, Pseudowire::GroupId, groupId, GroupId, local );
   /// The label that the peer is to use.
   VORN_MUTABLE( 0x105, Lumo::MplsLabel, localLabel, LocalLabel, local );
   /// Whether a control word is preferred.
   VORN_MUTABLE( 0x106, bool, preferControlWord, PreferControlWord, local ) = false;
   /// MTU of the attachment circuit in octets; 0 for none.
   VORN_MUTABLE( 0x107, U32, mtu, Mtu, local ) = 0;
   /// State of the attachment circuit.
   VORN_MUTABLE( 0x108, Pseudowire::PseudowireConnectorStatus, status, Status,
                 local ) = Pseudowire::PseudowireConnectorStatus( 0 );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( PwConfig, pwConfigFactory )

/// The requests of a VRF.
class VORN_API PwConfigColl : public Vorn::Entity {
   VORN_ENTITY( PwConfigColl, Vorn::Entity )

 public:
   explicit PwConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The requests, by key.
   VORN_ENTITY_COLL( 0x102, PwConfig, Pseudowire::PseudowireLdpRequestKey, config, Config, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( PwConfigColl, pwConfigCollFactory )

/// What came of one request. The defaults are what is hoped for, status by TLV and a control word, until
/// negotiation says otherwise.
class VORN_API PwStatus : public Vorn::Entity {
   VORN_ENTITY( PwStatus, Vorn::Entity )

 public:
   explicit PwStatus( Pseudowire::PseudowireLdpRequestKey const & pwKey ) : pwKey_( pwKey ) {}

   VORN_KEY( 0x102, Pseudowire::PseudowireLdpRequestKey, pwKey );
   /// How status is signalled.
   VORN_MUTABLE( 0x103, PwStatusMethod, pwStatusMethod, PwStatusMethod, local ) = pwStatusMethodTlv;
   /// Whether a control word is used.
   VORN_MUTABLE( 0x104, bool, negotiatedControlWord, NegotiatedControlWord, local ) = true;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( PwStatus, pwStatusFactory )

/// What came of the requests of a VRF.
class VORN_API PwStatusColl : public Vorn::Entity {
   VORN_ENTITY( PwStatusColl, Vorn::Entity )

 public:
   explicit PwStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What came of each request, by key.
   VORN_ENTITY_COLL( 0x102, PwStatus, Pseudowire::PseudowireLdpRequestKey, status, Status, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( PwStatusColl, pwStatusCollFactory )

} // namespace Ldp
