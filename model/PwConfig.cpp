// Records of pseudowire configuration and status.
#include "Ldp/PwConfig.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, PwStatusMethod, VORN_PW_STATUS_METHODS )
VORN_RECORD( Ldp, PwConfig )
VORN_RECORD( Ldp, PwConfigColl )
VORN_RECORD( Ldp, PwStatus )
VORN_RECORD( Ldp, PwStatusColl )

} // namespace Ldp
