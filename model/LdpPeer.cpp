// Records of peers.
#include "Ldp/LdpPeer.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpPeerConfig )
VORN_RECORD( Ldp, LdpPeerConfigColl )
VORN_RECORD( Ldp, LdpPeerStatus )
VORN_RECORD( Ldp, LdpPeerStatusColl )
VORN_MODULE( &LdpPeerConfig::_vornType, &LdpPeerConfigColl::_vornType, &LdpPeerStatus::_vornType,
             &LdpPeerStatusColl::_vornType )

LdpPeerConfig::~LdpPeerConfig() = default;
LdpPeerConfigColl::~LdpPeerConfigColl() = default;
LdpPeerStatus::~LdpPeerStatus() = default;
LdpPeerStatusColl::~LdpPeerStatusColl() = default;

} // namespace Ldp
