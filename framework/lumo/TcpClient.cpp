// Records of what a TCP client is asked for.
#include "Lumo/TcpClient.h"

namespace Lumo {

VORN_ENUM_RECORD( Lumo, TcpClientStatus_ConnectionStatus, VORN_LUMO_TCP_CONNECTION_STATUSES )
VORN_RECORD( Lumo, TcpConfigBase )
VORN_RECORD( Lumo, TcpClientConfig )
VORN_RECORD( Lumo, TcpClientStatus )

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, TcpSocketOptions )
VORN_OUTSIDE_RECORD( Lumo, TcpConnSocket )
