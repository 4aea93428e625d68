// Records of the listener for targeted hellos.
#include "Ldp/LdpTargetServer.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpTargetServerConfig )
VORN_RECORD( Ldp, LdpTargetServerStatus )

} // namespace Ldp
