#include "Ldp/LdpTypes.h"

#include "Vorn/ValueType.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpLabelAdvDspl, LDP_LABEL_ADV_DSPLS )
VORN_MODULE( &LdpLabelAdvDspl_vornType )

} // namespace Ldp
