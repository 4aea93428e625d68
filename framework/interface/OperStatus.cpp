// Record of the operational status.
#include "Interface/OperStatus.h"

#include "Vorn/ValueType.h"

namespace Interface {

VORN_ENUM_RECORD( Interface, IntfOperStatus, VORN_INTERFACE_OPER_STATUSES )

} // namespace Interface
