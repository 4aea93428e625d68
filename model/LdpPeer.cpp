// Records of peers.
#include "Ldp/LdpPeer.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpPeerConfig )
VORN_RECORD( Ldp, LdpPeerConfigColl )
VORN_RECORD( Ldp, LdpPeerStatus )
VORN_RECORD( Ldp, LdpPeerStatusColl )

} // namespace Ldp
