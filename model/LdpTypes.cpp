#include "Ldp/LdpTypes.h"

#include "Vorn/ValueType.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpLabelAdvDspl, LDP_LABEL_ADV_DSPLS )
VORN_ENUM_RECORD( Ldp, LdpFecDeliveryType, LDP_FEC_DELIVERY_TYPES )
VORN_MODULE( &LdpLabelAdvDspl_vornType, &LdpFecDeliveryType_vornType )

} // namespace Ldp
