#include "Network.h"

namespace LdpTool {

VORN_RECORD( LdpTool, Speaker )
VORN_RECORD( LdpTool, Network )
VORN_MODULE( &Speaker::_vornType, &Network::_vornType )

Speaker::Speaker( Ldp::LdpIdentifier const & ldpIdentifier ) : ldpIdentifier_( ldpIdentifier ) {
   adjStatusCollIs( Vorn::Name( "adjacencies" ) );
   peerConfigCollIs( Vorn::Name( "peers" ) );
   sessionStatusCollIs( Vorn::Name( "sessions" ) );
}

Speaker::~Speaker() { vornTeardown(); }
Network::~Network() { vornTeardown(); }

} // namespace LdpTool
