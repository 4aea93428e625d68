// GET /metrics, and nothing else.
#include "commands/watch/MetricsServer.h"

#include "capture/PduSink.h"

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <microhttpd.h>
#include <netdb.h>
#include <pthread.h>
#include <string_view>
#include <utility>

namespace LdpTool {

namespace {

// What clients can take up: so many connections, each with so much memory for a request, and so long without
// a word.
constexpr unsigned mostConnections = 16;
constexpr unsigned silenceSeconds = 10;
constexpr std::size_t requestOctets = 16 * 1024;

constexpr std::chrono::seconds freshFor{ 1 };
constexpr std::chrono::seconds waitFor{ 2 }; // for whoever reads the capture; then the old text has to do

struct Addresses {
   addrinfo * first = nullptr;
   ~Addresses() {
      if ( first ) ::freeaddrinfo( first );
   }
};

/// Address and port of `127.0.0.1:9646` or `[::1]:9646`; empty if it is neither.
std::pair< std::string, std::string > partsOf( std::string const & where ) {
   std::size_t const colon = where.rfind( ':' );
   if ( colon == where.npos || colon == 0 ) return {};
   std::string host = where.substr( 0, colon );
   if ( host.front() == '[' && host.back() == ']' ) {
      host = host.substr( 1, host.size() - 2 );
   } else if ( host.find( ':' ) != host.npos ) {
      return {}; // where an IPv6 address ends and the port begins, brackets say
   }
   return { host, where.substr( colon + 1 ) };
}

bool look( std::string const & where, Addresses & addresses ) {
   auto const [host, port] = partsOf( where );
   if ( host.empty() || port.empty() ) return false;
   addrinfo hints{};
   hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
   hints.ai_socktype = SOCK_STREAM;
   if ( ::getaddrinfo( host.c_str(), port.c_str(), &hints, &addresses.first ) != 0 ) return false;
   constexpr unsigned long most = 65535; // of a greater one the resolver takes the last 16 bits
   return std::strtoul( port.c_str(), nullptr, 10 ) <= most;
}

MHD_Result answer( MHD_Connection * connection, unsigned status, MHD_Response * response ) {
   if ( !response ) return MHD_NO;
   MHD_Result const result = MHD_queue_response( connection, status, response );
   MHD_destroy_response( response ); // the connection has a share in it
   return result;
}

MHD_Response * fixedText( std::string_view text ) {
   return MHD_create_response_from_buffer( text.size(), const_cast< char * >( text.data() ),
                                           MHD_RESPMEM_PERSISTENT );
}

using SharedText = std::shared_ptr< std::string const >;

} // namespace

/// What the library calls, in its thread.
struct MetricsServer::Handler {
   static MHD_Result onRequest( void * self, MHD_Connection * connection, char const * url,
                                char const * method, char const *, char const *, std::size_t *, void ** ) {
      if ( std::string_view( url ) != "/metrics" )
         return answer( connection, MHD_HTTP_NOT_FOUND, fixedText( "the metrics are at /metrics\n" ) );
      if ( std::string_view( method ) != MHD_HTTP_METHOD_GET ) {
         MHD_Response * const response = fixedText( "only GET\n" );
         if ( response ) MHD_add_response_header( response, MHD_HTTP_HEADER_ALLOW, MHD_HTTP_METHOD_GET );
         return answer( connection, MHD_HTTP_METHOD_NOT_ALLOWED, response );
      }
      auto const text = static_cast< MetricsServer * >( self )->text();
      if ( !text )
         return answer( connection, MHD_HTTP_SERVICE_UNAVAILABLE, fixedText( "nothing was read yet\n" ) );
      // Each response holds the text for as long as its client takes to read it.
      auto share = std::make_unique< SharedText >( text );
      MHD_Response * const response = MHD_create_response_from_buffer_with_free_callback_cls(
           text->size(), const_cast< char * >( text->data() ),
           []( void * held ) { delete static_cast< SharedText * >( held ); }, share.get() );
      if ( !response ) return MHD_NO;
      static_cast< void >( share.release() );
      MHD_add_response_header( response, MHD_HTTP_HEADER_CONTENT_TYPE, "text/plain; version=0.0.4" );
      return answer( connection, MHD_HTTP_OK, response );
   }
};

bool MetricsServer::isAddress( std::string const & where ) {
   Addresses addresses;
   return look( where, addresses );
}

MetricsServer::MetricsServer( std::string const & where ) {
   Addresses addresses;
   if ( !look( where, addresses ) ) throw InputError( where + " is not an address with a port" );
   // Signals are for the thread that reads the capture, which they wake up.
   sigset_t all, before;
   sigfillset( &all );
   pthread_sigmask( SIG_SETMASK, &all, &before );
   unsigned const flags = MHD_USE_AUTO_INTERNAL_THREAD |
                          ( addresses.first->ai_family == AF_INET6 ? unsigned( MHD_USE_IPv6 ) : 0u );
   daemon_ = MHD_start_daemon( flags, 0, nullptr, nullptr, &Handler::onRequest, this, MHD_OPTION_SOCK_ADDR,
                               addresses.first->ai_addr, MHD_OPTION_CONNECTION_LIMIT, mostConnections,
                               MHD_OPTION_CONNECTION_TIMEOUT, silenceSeconds,
                               MHD_OPTION_CONNECTION_MEMORY_LIMIT, requestOctets, MHD_OPTION_END );
   int const error = errno;
   pthread_sigmask( SIG_SETMASK, &before, nullptr );
   if ( !daemon_ )
      throw InputError( "cannot listen on " + where +
                        ( error ? std::string( ": " ) + std::strerror( error ) : "" ) );
   auto const * const info = MHD_get_daemon_info( daemon_, MHD_DAEMON_INFO_BIND_PORT );
   url_ = "http://" + where.substr( 0, where.rfind( ':' ) + 1 ) + std::to_string( info ? info->port : 0 ) +
          "/metrics";
}

MetricsServer::~MetricsServer() {
   {
      std::lock_guard const lock( mutex_ );
      stopping_ = true;
   }
   made_.notify_all();
   MHD_stop_daemon( daemon_ );
}

void MetricsServer::textIs( std::string text ) {
   auto made = std::make_shared< std::string const >( std::move( text ) );
   {
      std::lock_guard const lock( mutex_ );
      text_.swap( made ); // the one before goes outside of the lock
      madeAt_ = std::chrono::steady_clock::now();
      wanted_ = false;
   }
   made_.notify_all();
}

/// The present text, which is made anew unless it is fresh.
std::shared_ptr< std::string const > MetricsServer::text() {
   std::unique_lock lock( mutex_ );
   auto const fresh = [&] {
      return stopping_ || ( text_ && std::chrono::steady_clock::now() - madeAt_ < freshFor );
   };
   if ( !fresh() ) {
      wanted_ = true;
      made_.wait_for( lock, waitFor, fresh );
   }
   return text_;
}

} // namespace LdpTool
