/// \file
/// Reverse maps, by which the agent answers questions that would otherwise need a walk over the model. The
/// agent adds and removes entries as it changes what they point to; an entry that it forgot stays.
#pragma once

#include "Ldp/LdpAdj.h"
#include "Ldp/PwFecSession.h"

namespace Ldp {

/// The sessions to one transport address of a peer.
class VORN_API PeerSession : public Vorn::Entity {
   VORN_ENTITY( PeerSession, Vorn::Entity )

 public:
   explicit PeerSession( Lumo::IpGenAddr const & peerTransportIp ) : peerTransportIp_( peerTransportIp ) {}

   VORN_KEY( 0x102, Lumo::IpGenAddr, peerTransportIp );
   /// The sessions.
   VORN_VALUE_COLL( 0x103, bool, LdpSessionId, sessionId, SessionId, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( PeerSession, peerSessionFactory )

/// The identifiers behind one transport address; it can stand for several.
class VORN_API PeerTransportIpMap : public Vorn::Entity {
   VORN_ENTITY( PeerTransportIpMap, Vorn::Entity )

 public:
   explicit PeerTransportIpMap( Lumo::IpGenAddr const & transportIp ) : transportIp_( transportIp ) {}

   VORN_KEY( 0x102, Lumo::IpGenAddr, transportIp );
   /// The identifiers.
   VORN_VALUE_COLL( 0x103, bool, LdpIdentifier, ldpIdentifier, LdpIdentifier, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( PeerTransportIpMap, peerTransportIpMapFactory )

/// The pseudowire requests towards one peer.
class VORN_API PeerPwRequest : public Vorn::Entity {
   VORN_ENTITY( PeerPwRequest, Vorn::Entity )

 public:
   explicit PeerPwRequest( Lumo::IpGenAddr const & peerTransportIp ) : peerTransportIp_( peerTransportIp ) {}

   VORN_KEY( 0x102, Lumo::IpGenAddr, peerTransportIp );
   /// The requests.
   VORN_VALUE_COLL( 0x103, bool, Pseudowire::PseudowireLdpRequestKey, request, Request, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( PeerPwRequest, peerPwRequestFactory )

/// The FECs that use one label.
class VORN_API LabelFecMap : public Vorn::Entity {
   VORN_ENTITY( LabelFecMap, Vorn::Entity )

 public:
   explicit LabelFecMap( Lumo::MplsLabel const & label ) : label_( label ) {}

   VORN_KEY( 0x102, Lumo::MplsLabel, label );
   /// The FECs.
   VORN_SET( 0x103, Mpls::FwdEqvClass, fec, Fec, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LabelFecMap, labelFecMapFactory )

/// The key under which a pseudowire object is referred to: its own id.
struct PwFecSessionIdOf {
   /// The key of that object.
   template< class Type >
   PwFecSessionId operator()( Vorn::Ptr< Type > const & object ) const {
      return object->pwFecSessionId();
   }
};

/// Everything about one pseudowire request. The objects are those of the collections of PwFecSession.h; a
/// reference keeps one alive that its owner has deleted.
class VORN_API PwFecSessionInfoMap : public Vorn::Entity {
   VORN_ENTITY( PwFecSessionInfoMap, Vorn::Entity )

 public:
   explicit PwFecSessionInfoMap( Pseudowire::PseudowireLdpRequestKey const & pwKey ) : pwKey_( pwKey ) {}

   VORN_KEY( 0x102, Pseudowire::PseudowireLdpRequestKey, pwKey );
   /// The requests that the map stands for.
   VORN_VALUE_COLL( 0x103, bool, Pseudowire::PseudowireLdpRequestKey, ldpRequest, LdpRequest, local );
   /// What is to be signalled, in our direction, by FEC session.
   VORN_KEYED_REFERENCE_COLL( 0x104, PwFecSessionConfig, PwFecSessionId, PwFecSessionIdOf, localConfig,
                              LocalConfig, local );
   /// The same in the peer's direction.
   VORN_KEYED_REFERENCE_COLL( 0x105, PwFecSessionConfig, PwFecSessionId, PwFecSessionIdOf, remoteConfig,
                              RemoteConfig, local );
   /// What this speaker has sent, by FEC session.
   VORN_KEYED_REFERENCE_COLL( 0x106, LocalPwFecSessionStatus, PwFecSessionId, PwFecSessionIdOf, localStatus,
                              LocalStatus, local );
   /// What the peers have sent, by FEC session.
   VORN_KEYED_REFERENCE_COLL( 0x107, RemotePwFecSessionStatus, PwFecSessionId, PwFecSessionIdOf, remoteStatus,
                              RemoteStatus, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( PwFecSessionInfoMap, pwFecSessionInfoMapFactory )

/// The reverse maps of a VRF.
class VORN_API LdpIndex : public Vorn::Entity {
   VORN_ENTITY( LdpIndex, Vorn::Entity )

 public:
   explicit LdpIndex( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Sessions of a peer's transport address.
   VORN_ENTITY_COLL( 0x102, PeerSession, Lumo::IpGenAddr, peerToSession, PeerToSession, local );
   /// Adjacencies of an interface.
   VORN_ENTITY_COLL( 0x103, LdpAdjPerLink, Lumo::IntfId, ldpAdjPerLinkColl, LdpAdjPerLinkColl, local );
   /// The adjacency of a target address.
   VORN_VALUE_COLL( 0x104, LdpAdjId, Lumo::IpAddr, targetIpToLdpAdjId, TargetIpToLdpAdjId, local );
   /// Identifiers behind a transport address.
   VORN_ENTITY_COLL( 0x105, PeerTransportIpMap, Lumo::IpGenAddr, transportIpToPeer, TransportIpToPeer,
                     local );
   /// Everything about a pseudowire request.
   VORN_ENTITY_COLL( 0x106, PwFecSessionInfoMap, Pseudowire::PseudowireLdpRequestKey, pwKeyToPwFecSessionInfo,
                     PwKeyToPwFecSessionInfo, local );
   /// Pseudowire requests towards a peer.
   VORN_ENTITY_COLL( 0x107, PeerPwRequest, Lumo::IpGenAddr, peerToPwRequest, PeerToPwRequest, local );
   /// FECs that use a label.
   VORN_ENTITY_COLL( 0x108, LabelFecMap, Lumo::MplsLabel, labelToFec, LabelToFec, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpIndex, ldpIndexFactory )

} // namespace Ldp
