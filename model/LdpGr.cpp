// Graceful restart: records, and what remains of the holding time.
#include "Ldp/LdpGr.h"

#include "Vorn/System.h"

#include <limits>

namespace Ldp {

VORN_ENUM_RECORD( Ldp, GrMembership, VORN_LDP_GR_MEMBERSHIPS )
VORN_RECORD( Ldp, LocalGrStatus )
VORN_RECORD( Ldp, LdpGrStatus )

double LocalGrStatus::remainingHoldingTime() const {
   if ( holdingTimerExpirationTime_ > std::numeric_limits< double >::max() ) return 0.0;
   double const remaining = holdingTimerExpirationTime_ - Vorn::System::currentTime();
   return remaining > 0.0 ? remaining : 0.0;
}

} // namespace Ldp
