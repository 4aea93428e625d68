// Records of the listener for targeted hellos.
#include "Ldp/LdpTargetServer.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpTargetServerConfig )
VORN_RECORD( Ldp, LdpTargetServerStatus )
VORN_MODULE( &LdpTargetServerConfig::_vornType, &LdpTargetServerStatus::_vornType )

LdpTargetServerConfig::~LdpTargetServerConfig() = default;
LdpTargetServerStatus::~LdpTargetServerStatus() = default;

} // namespace Ldp
