// Records of what a TCP client is asked for.
#include "Lumo/TcpClient.h"

namespace Lumo {

VORN_ENUM_RECORD( Lumo, TcpClientStatus_ConnectionStatus, VORN_LUMO_TCP_CONNECTION_STATUSES )
VORN_RECORD( Lumo, TcpConfigBase )
VORN_RECORD( Lumo, TcpClientConfig )
VORN_RECORD( Lumo, TcpClientStatus )

TcpConfigBase::~TcpConfigBase() = default;
TcpClientConfig::~TcpClientConfig() = default;
TcpClientStatus::~TcpClientStatus() = default;

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, TcpSocketOptions )
VORN_OUTSIDE_RECORD( Lumo, TcpConnSocket )
VORN_MODULE( &Lumo::TcpClientStatus_ConnectionStatus_vornType, &Lumo::TcpConfigBase::_vornType,
             &Lumo::TcpClientConfig::_vornType, &Lumo::TcpClientStatus::_vornType,
             ::Vorn::recordOf< Lumo::TcpSocketOptions >(), ::Vorn::recordOf< Lumo::TcpConnSocket >() )
