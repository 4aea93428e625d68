// Records of enumerations that several subjects use.
#include "Ldp/LdpTypes.h"

#include "Vorn/ValueType.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpLabelAdvDspl, VORN_LDP_LABEL_ADV_DSPLS )
VORN_ENUM_RECORD( Ldp, LdpFecDeliveryType, VORN_LDP_FEC_DELIVERY_TYPES )

} // namespace Ldp
