/// \file
/// What a generic TCP client is asked for and what it reports. The types of the model that stand for a
/// connection derive from these, so that the client serves them with no knowledge of LDP. A host that has
/// such a client puts it in the place of this header.
#pragma once

#include "Lumo/IpDscp.h"
#include "Lumo/IpMask.h"
#include "Lumo/NamespaceName.h"
#include "Lumo/Port.h"
#include "Vorn/Attributes.h"

namespace Lumo {

/// Options of a socket, a bit each.
using TcpSocketOptions = Vorn::Number< struct TcpSocketOptionsTag, U32 >;
/// A connected socket by its file descriptor; 0xffffffff for none.
using TcpConnSocket = Vorn::Number< struct TcpConnSocketTag, U32, 0xffffffff >;

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::TcpSocketOptions )
VORN_OUTSIDE_VALUE( Lumo::TcpConnSocket )

namespace Lumo {

/// Where a connection stands.
#define VORN_LUMO_TCP_CONNECTION_STATUSES( X )                                                               \
   X( tcpNotConnected, 0 )                                                                                   \
   X( tcpConnecting, 1 )                                                                                     \
   X( tcpConnected, 2 )
VORN_ENUM( TcpClientStatus_ConnectionStatus, VORN_LUMO_TCP_CONNECTION_STATUSES )

/// Settings of a TCP socket.
class VORN_API TcpConfigBase : public Vorn::Entity {
   VORN_ENTITY( TcpConfigBase, Vorn::Entity )

 public:
   TcpConfigBase() = default;

   /// Network namespace of the socket.
   VORN_MUTABLE( 0x102, NamespaceName, networkNamespace, NetworkNamespace, local );
   /// Seconds before a failed connection is tried again.
   VORN_MUTABLE( 0x103, U32, retryInterval, RetryInterval, local ) = 1;
   /// Seconds after which an attempt is given up; 0 for the kernel's own.
   VORN_MUTABLE( 0x104, double, timeout, Timeout, local ) = 0.0;
   /// Options of the socket.
   VORN_MUTABLE( 0x105, TcpSocketOptions, options, Options, local );
   /// Time to live of what is sent; 0 for the kernel's own.
   VORN_MUTABLE( 0x106, IpTtl, txTtl, TxTtl, local );
   /// Type of service of what is sent; 0 for the kernel's own.
   VORN_MUTABLE( 0x107, IpDscp, txDs, TxDs, local );
   /// The least time to live that is accepted; 0 for the kernel's own.
   VORN_MUTABLE( 0x108, IpTtl, rxMinTtl, RxMinTtl, local );
   /// TCP MD5 keys by the peers they are for (RFC 2385).
   VORN_VALUE_COLL( 0x109, Vorn::String, IpGenAddrWithMask, md5Auth, Md5Auth, local );
   /// Largest segment in octets; 0 for the kernel's own.
   VORN_MUTABLE( 0x10a, U16, sockMaxSegSize, SockMaxSegSize, local ) = 0;
   /// Whether the client watches the socket's descriptor edge-triggered.
   VORN_MUTABLE( 0x10b, bool, edgeTriggeredFileDescriptor, EdgeTriggeredFileDescriptor, local ) = false;

   VORN_OBSERVERS;
};

/// A connection that a client is to open.
class VORN_API TcpClientConfig : public TcpConfigBase {
   VORN_ENTITY( TcpClientConfig, TcpConfigBase )

 public:
   TcpClientConfig( IpGenAddr const & serverIpAddr, Port serverPort )
        : serverIpAddr_( serverIpAddr ), serverPort_( serverPort ) {}

   /// Address to connect to.
   VORN_CTOR_ARG( 0x182, IpGenAddr, serverIpAddr );
   /// Port to connect to.
   VORN_MUTABLE_CTOR_ARG( 0x183, Port, serverPort, ServerPort, local );
   /// Address to connect from. The types below take it as an argument too.
   VORN_MUTABLE_CTOR_ARG( 0x184, IpGenAddr, clientIpAddr, ClientIpAddr, local );
   /// Interface to connect from; 0 for any.
   VORN_MUTABLE( 0x185, U32, ifIndex, IfIndex, local ) = 0;
   /// How often the retry interval doubles.
   VORN_MUTABLE( 0x186, U32, exponentialBackoffRetries, ExponentialBackoffRetries, local ) = 0;
   /// Default of `kernelTcpTimeout`, in seconds.
   VORN_CONSTANT( 0x187, U32, kernelTcpTimeoutDefault, 0 );
   /// TCP user timeout in seconds; 0 for the kernel's own.
   VORN_MUTABLE( 0x188, U32, kernelTcpTimeout, KernelTcpTimeout, local ) = kernelTcpTimeoutDefault();

   VORN_BASE_OBSERVERS;
};

/// What became of it.
class VORN_API TcpClientStatus : public Vorn::Entity {
   VORN_ENTITY( TcpClientStatus, Vorn::Entity )

 public:
   TcpClientStatus() = default;

   /// Why there is no connection, for a person.
   VORN_MUTABLE( 0x102, Vorn::String, reason, Reason, local );
   /// Attempts to connect.
   VORN_MUTABLE( 0x103, U32, connectionAttemptCount, ConnectionAttemptCount, local ) = 0;
   /// Attempts that failed.
   VORN_MUTABLE( 0x104, U32, connectionErrorCount, ConnectionErrorCount, local ) = 0;
   /// Attempts that succeeded.
   VORN_MUTABLE( 0x105, U32, connectionSuccessCount, ConnectionSuccessCount, local ) = 0;
   /// Where the connection stands.
   VORN_MUTABLE( 0x106, TcpClientStatus_ConnectionStatus, connectionStatus, ConnectionStatus,
                 local ) = tcpNotConnected;
   /// When the connection is tried again, in seconds.
   VORN_MUTABLE( 0x107, double, retryTimerNext, RetryTimerNext, local ) = 0.0;
   /// The retry interval in force, in seconds.
   VORN_MUTABLE( 0x108, U32, retryTimerInterval, RetryTimerInterval, local ) = 0;
   /// The connection's socket.
   VORN_MUTABLE( 0x109, TcpConnSocket, connSocket, ConnSocket, local );
   VORN_FUNCTION( 0x10a, getConnSocket );
   VORN_FUNCTION( 0x10b, resetConnSocket );
   /// The connection's socket.
   TcpConnSocket getConnSocket() const { return connSocket_; }
   /// Takes the socket away.
   void resetConnSocket() { connSocketIs( TcpConnSocket() ); }

   VORN_OBSERVERS;
};

} // namespace Lumo
