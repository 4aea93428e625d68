// Records of the TCP listener.
#include "Ldp/LdpTcpServer.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpTcpServerConfig )
VORN_RECORD( Ldp, LdpTcpServerStatus )

} // namespace Ldp
