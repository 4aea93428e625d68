// Records of the TCP listener.
#include "Ldp/LdpTcpServer.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpTcpServerConfig )
VORN_RECORD( Ldp, LdpTcpServerStatus )
VORN_MODULE( &LdpTcpServerConfig::_vornType, &LdpTcpServerStatus::_vornType )

LdpTcpServerConfig::~LdpTcpServerConfig() = default;
LdpTcpServerStatus::~LdpTcpServerStatus() = default;

} // namespace Ldp
