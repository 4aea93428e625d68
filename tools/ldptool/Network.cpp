#include "Network.h"

namespace LdpTool {

VORN_RECORD( LdpTool, Speaker )
VORN_RECORD( LdpTool, Network )
VORN_MODULE( &Speaker::_vornType, &Network::_vornType )

Speaker::~Speaker() { vornTeardown(); }
Network::~Network() { vornTeardown(); }

} // namespace LdpTool
