// Records of label allocation.
#include "Ldp/LdpLabelAlloc.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LabelAllocStatusEnum, VORN_LDP_LABEL_ALLOC_STATUSES )
VORN_RECORD( Ldp, LabelAllocRequest )
VORN_RECORD( Ldp, LabelAllocRequestTable )
VORN_RECORD( Ldp, LabelAllocGlobalStatus )
VORN_RECORD( Ldp, MplsLabelSet )

} // namespace Ldp
