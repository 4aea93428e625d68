#include "Ldp/LdpTcpServer.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpTcpServerConfig )
VORN_RECORD( Ldp, LdpTcpServerStatus )
VORN_MODULE( &LdpTcpServerConfig::_vornType, &LdpTcpServerStatus::_vornType )

LdpTcpServerConfig::~LdpTcpServerConfig() { vornTeardown(); }
LdpTcpServerStatus::~LdpTcpServerStatus() { vornTeardown(); }

} // namespace Ldp
