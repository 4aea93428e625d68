#include "Ldp/LdpGr.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, GrMembership, LDP_GR_MEMBERSHIPS )
VORN_RECORD( Ldp, LocalGrStatus )
VORN_RECORD( Ldp, LdpGrStatus )
VORN_MODULE( &GrMembership_vornType, &LocalGrStatus::_vornType, &LdpGrStatus::_vornType )

LocalGrStatus::~LocalGrStatus() { vornTeardown(); }
LdpGrStatus::~LdpGrStatus() { vornTeardown(); }

} // namespace Ldp
