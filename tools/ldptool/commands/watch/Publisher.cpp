// The socket at which others read the attribute log.
#include "commands/watch/Publisher.h"

#include "Vorn/NboAttrLog.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace LdpTool {

namespace NboAttrLog = Vorn::NboAttrLog;

/// One that has connected.
class Publisher::Reader {
 public:
   Reader( int socket, Network & network ) : socket_( socket ) { network.vornNboAttrLogSaIs( 0, 0, out_ ); }
   ~Reader() {
      passOver(); // what was left unread would turn the end of the stream into an error
      ::close( socket_ );
   }
   Reader( Reader const & ) = delete;
   Reader & operator=( Reader const & ) = delete;

   pollfd descriptor() const {
      return { socket_, short( ( silent_ ? 0 : POLLIN ) | ( full_ ? POLLOUT : 0 ) ), 0 };
   }
   bool full() const { return full_; }

   /// False if it has gone.
   bool turn( short ready ) {
      if ( ready & ( POLLHUP | POLLERR ) ) return false;
      // One that only listens may have closed the other direction.
      if ( ready & POLLIN ) silent_ = passOver() == 0;
      return send();
   }

   /// Sends what it takes; false if it has gone, or there is no more to be had for want of memory.
   bool send() try {
      full_ = false;
      while ( auto const bytes = out_->bytes() ) {
         ssize_t const n = ::send( socket_, out_->data(), bytes, MSG_NOSIGNAL | MSG_DONTWAIT );
         full_ = n < 0 && ( errno == EAGAIN || errno == EWOULDBLOCK );
         if ( full_ ) return true;
         if ( n < 0 && errno == EINTR ) continue;
         if ( n < 0 ) return false;
         out_->drained( std::size_t( n ) );
      }
      return out_->failure().empty();
   } catch ( std::bad_alloc const & ) {
      return false;
   }

 private:
   ssize_t passOver() {
      char octets[4096];
      return ::recv( socket_, octets, sizeof octets, MSG_DONTWAIT );
   }

   int socket_;
   bool full_ = false;   ///< there is more, but it does not take it now
   bool silent_ = false; ///< it has said that it sends nothing
   Vorn::Ptr< NboAttrLog::Out > out_ = Vorn::newObject< NboAttrLog::Out >();
};

namespace {

[[noreturn]] void refuse( std::string const & path, std::string const & why ) {
   throw InputError( path + ": " + why );
}

/// Takes away a socket where nobody listens.
void clear( std::string const & path, sockaddr_un const & address ) {
   struct stat there;
   if ( ::lstat( path.c_str(), &there ) != 0 ) return;
   if ( !S_ISSOCK( there.st_mode ) ) refuse( path, "exists and is no socket" );
   int const probe = ::socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0 );
   if ( probe < 0 ) refuse( path, std::strerror( errno ) );
   bool const left =
        ::connect( probe, reinterpret_cast< sockaddr const * >( &address ), sizeof address ) < 0 &&
        errno == ECONNREFUSED;
   ::close( probe );
   if ( !left ) refuse( path, "another process listens there" );
   ::unlink( path.c_str() );
}

} // namespace

Publisher::Publisher( Network & network, std::string const & path ) : network_( network ), path_( path ) {
   try {
      listenAt( path );
   } catch ( ... ) {
      if ( socket_ >= 0 ) ::close( socket_ );
      throw;
   }
}

void Publisher::listenAt( std::string const & path ) {
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   if ( path.empty() || path.size() >= sizeof address.sun_path )
      refuse( path, "no path for a socket, or too long" );
   path.copy( address.sun_path, path.size() );
   clear( path, address );
   socket_ = ::socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0 );
   if ( socket_ < 0 ) refuse( path, std::strerror( errno ) );
   mode_t const mask = ::umask( 0177 );
   int const bound = ::bind( socket_, reinterpret_cast< sockaddr const * >( &address ), sizeof address );
   int const error = errno;
   ::umask( mask );
   if ( bound < 0 ) refuse( path, std::strerror( error ) );
   struct stat made;
   if ( ::lstat( path.c_str(), &made ) == 0 ) {
      device_ = made.st_dev;
      node_ = made.st_ino;
   }
   if ( ::listen( socket_, int( mostReaders ) ) < 0 ) refuse( path, std::strerror( errno ) );
}

Publisher::~Publisher() {
   ::close( socket_ );
   struct stat there;
   if ( ::lstat( path_.c_str(), &there ) == 0 && there.st_dev == device_ && there.st_ino == node_ )
      ::unlink( path_.c_str() );
}

std::vector< pollfd > Publisher::descriptors() const {
   std::vector< pollfd > all{ { socket_, short( readers_.size() < mostReaders ? POLLIN : 0 ), 0 } };
   for ( auto const & reader : readers_ )
      all.push_back( reader->descriptor() );
   return all;
}

void Publisher::turn( std::vector< pollfd > const & ready ) {
   std::size_t at = 1;
   std::erase_if( readers_, [&]( auto const & reader ) { return !reader->turn( ready[at++].revents ); } );
   if ( ready[0].revents ) accept();
}

void Publisher::accept() {
   while ( readers_.size() < mostReaders ) {
      int const socket = ::accept4( socket_, nullptr, nullptr, SOCK_CLOEXEC );
      if ( socket < 0 ) return;
      auto reader = std::make_unique< Reader >( socket, network_ );
      if ( reader->send() ) readers_.push_back( std::move( reader ) );
   }
}

void Publisher::serve() {
   std::vector< pollfd > all = descriptors();
   ::poll( all.data(), all.size(), 0 );
   turn( all );
}

void Publisher::serveUntil( Interruptible const & ending ) {
   serve();
   while ( !ending.interrupted() ) {
      std::vector< pollfd > all = descriptors();
      ending.wait( all, -1 );
      turn( all );
   }
}

void Publisher::finish() {
   using Clock = std::chrono::steady_clock;
   auto const end = Clock::now() + std::chrono::seconds( 1 );
   serve();
   while ( std::any_of( readers_.begin(), readers_.end(),
                        []( auto const & reader ) { return reader->full(); } ) &&
           Clock::now() < end ) {
      std::vector< pollfd > all = descriptors();
      all[0].events = 0;
      ::poll( all.data(), all.size(), 100 );
      turn( all );
   }
}

} // namespace LdpTool
