// Records of the monitor's own types.
#include "monitor/speaker/Network.h"

namespace LdpTool {

VORN_RECORD( LdpTool, Speaker )
VORN_RECORD( LdpTool, Network )

} // namespace LdpTool
