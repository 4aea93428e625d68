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
VORN_MODULE( &LdpTargetMembership_vornType, &LdpTargetBaseConfig::_vornType,
             &LdpTargetCommonConfig::_vornType, &LdpTargetConfig::_vornType, &LdpTargetConfigColl::_vornType,
             &LdpTargetStatus::_vornType, &LdpTargetStatusColl::_vornType )

LdpTargetBaseConfig::~LdpTargetBaseConfig() = default;
LdpTargetCommonConfig::~LdpTargetCommonConfig() = default;
LdpTargetConfig::~LdpTargetConfig() = default;
LdpTargetConfigColl::~LdpTargetConfigColl() = default;
LdpTargetStatus::~LdpTargetStatus() = default;
LdpTargetStatusColl::~LdpTargetStatusColl() = default;

} // namespace Ldp
