// Records of session statistics.
#include "Ldp/LdpSessionStatistics.h"

namespace Ldp {

VORN_VALUE_RECORD( Ldp, LdpMsgIdFecMappingInfo )
VORN_VALUE_RECORD( Ldp, PwMsgIdFecMappingInfo )
VORN_RECORD( Ldp, LdpSessionStatistics )
VORN_RECORD( Ldp, LdpSessionStatisticsColl )

VORN_TEXT_OF_RECORD( LdpMsgIdFecMappingInfo )
VORN_TEXT_OF_RECORD( PwMsgIdFecMappingInfo )

} // namespace Ldp
