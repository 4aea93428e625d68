// Records of targets.
#include "Ldp/LdpTarget.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpTargetMembership, VORN_LDP_TARGET_MEMBERSHIPS )
VORN_RECORD( Ldp, LdpTargetBaseConfig )
VORN_RECORD( Ldp, LdpTargetCommonConfig )
VORN_RECORD( Ldp, LdpTargetConfig )
VORN_RECORD( Ldp, LdpTargetConfigColl )
VORN_RECORD( Ldp, LdpTargetStatus )
VORN_RECORD( Ldp, LdpTargetStatusColl )

} // namespace Ldp
