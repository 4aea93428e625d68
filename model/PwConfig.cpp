// Records of pseudowire configuration and status.
#include "Ldp/PwConfig.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, PwStatusMethod, VORN_PW_STATUS_METHODS )
VORN_RECORD( Ldp, PwConfig )
VORN_RECORD( Ldp, PwConfigColl )
VORN_RECORD( Ldp, PwStatus )
VORN_RECORD( Ldp, PwStatusColl )
VORN_MODULE( &PwStatusMethod_vornType, &PwConfig::_vornType, &PwConfigColl::_vornType, &PwStatus::_vornType,
             &PwStatusColl::_vornType )

PwConfig::~PwConfig() = default;
PwConfigColl::~PwConfigColl() = default;
PwStatus::~PwStatus() = default;
PwStatusColl::~PwStatusColl() = default;

} // namespace Ldp
