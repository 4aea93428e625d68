// The root of a VRF's state: records, and the name of its namespace.
#include "Ldp/LdpStatus.h"

namespace Ldp {

Vorn::String const ldpStatusNsPrefix = "ns-";

VORN_RECORD( Ldp, LdpAgentStatus )
VORN_RECORD( Ldp, Statistics )
VORN_RECORD( Ldp, Status )
VORN_RECORD( Ldp, LdpStatusColl )

Lumo::NamespaceName Status::defaultNsName() const { return Lumo::NamespaceName::defaultNamespace(); }

} // namespace Ldp
