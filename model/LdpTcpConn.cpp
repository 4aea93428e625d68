// TCP connections: records, and what the client is asked for.
#include "Ldp/LdpTcpConn.h"

#include "Vorn/System.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpTcpConnConfig )
VORN_RECORD( Ldp, LdpTcpConnConfigColl )
VORN_RECORD( Ldp, LdpTcpConnStatus )
VORN_RECORD( Ldp, LdpTcpConnStatusColl )

LdpTcpConnConfig::LdpTcpConnConfig( Lumo::IpGenAddr const & serverIpAddr, Lumo::Port serverPort,
                                    Lumo::IpGenAddr const & clientIpAddr,
                                    LdpIdentifier const & ldpIdentifier )
     : Lumo::TcpClientConfig( serverIpAddr, serverPort ), ldpIdentifier_( ldpIdentifier ),
       requestTime_( Vorn::System::currentTime() ) {
   clientIpAddrIs( clientIpAddr );
}

} // namespace Ldp
