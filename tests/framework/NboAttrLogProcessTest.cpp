// The attribute log between two processes: a reader over a socket pair that is killed again and again, and
// whose last copy equals the original.

#include "framework/LogWorld.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Test;

/// The reading process: applies what comes until the other end closes, then writes the text of its copy back
/// and ends.
[[noreturn]] void readUntilClosed( int fd ) {
   LogEnd end( StreamAdapter::readOnly );
   U8 buffer[257];
   for ( ssize_t n; ( n = read( fd, buffer, sizeof buffer ) ) > 0; ) {
      try {
         end.demuxer->bytesIs( buffer, std::size_t( n ) );
      } catch ( Vorn::AttrLogRecordException const & ) {
         _exit( 2 );
      }
   }
   std::string all;
   for ( auto const & root : end.demuxer->roots() ) {
      all += logged( *root );
   }
   for ( char const * at = all.data(); at != all.data() + all.size(); ) {
      ssize_t const n = write( fd, at, std::size_t( all.data() + all.size() - at ) );
      if ( n < 0 ) _exit( 3 );
      at += n;
   }
   _exit( 0 );
}

class Peer {
 public:
   Peer() {
      int fds[2];
      if ( socketpair( AF_UNIX, SOCK_STREAM, 0, fds ) ) throw std::runtime_error( "socketpair" );
      pid_ = fork();
      if ( pid_ == 0 ) {
         close( fds[0] );
         readUntilClosed( fds[1] );
      }
      close( fds[1] );
      fd_ = fds[0];
      fcntl( fd_, F_SETFL, O_NONBLOCK );
   }
   ~Peer() {
      if ( pid_ > 0 ) {
         kill( pid_, SIGKILL );
         waitpid( pid_, nullptr, 0 );
      }
      close( fd_ );
   }

   /// Sends some of what is ready; false when the reader takes no more for now.
   bool send( Out & out, std::size_t most ) {
      std::size_t const bytes = std::min( out.bytes(), most );
      if ( !bytes ) return false;
      ssize_t const n = ::send( fd_, out.data(), bytes, MSG_NOSIGNAL );
      if ( n < 0 ) return false;
      out.drained( std::size_t( n ) );
      return true;
   }
   void wait() {
      pollfd entry{ fd_, POLLOUT, 0 };
      poll( &entry, 1, -1 );
   }
   /// Ends the stream and takes the reader's text.
   std::string finish() {
      shutdown( fd_, SHUT_WR );
      fcntl( fd_, F_SETFL, 0 );
      std::string all;
      char buffer[4096];
      for ( ssize_t n; ( n = read( fd_, buffer, sizeof buffer ) ) > 0; ) {
         all.append( buffer, std::size_t( n ) );
      }
      int status = -1;
      waitpid( pid_, &status, 0 );
      pid_ = 0;
      EXPECT_EQ( 0, status );
      return all;
   }

 private:
   pid_t pid_ = 0;
   int fd_ = -1;
};

TEST( NboAttrLogProcess, theReaderIsKilledAndTheNextOneCatchesUp ) {
   U64 const seed = std::random_device()();
   U32 const rounds = std::getenv( "LDP_LONG_TESTS" ) ? 200 : 12;
   std::printf( "seed %llu\n", static_cast< unsigned long long >( seed ) );
   std::mt19937_64 random( seed );
   LogWorld world( random, 100 );
   world.steps( 1000 );
   for ( U32 round = 0; round < rounds; ++round ) {
      Peer peer;
      auto const out = Vorn::newObject< Out >( 64u << world.below( 12 ) );
      world.attach( out );
      for ( U32 i = world.below( 200 ); i--; ) {
         world.steps( world.below( 5 ) );
         peer.send( *out, 1 + world.below( 500 ) );
      }
      if ( round % 3 ) continue; // the reader is killed, whatever it was doing
      while ( !out->idle() ) {
         if ( !peer.send( *out, ~std::size_t( 0 ) ) ) peer.wait();
      }
      std::string original;
      for ( auto const & root : world.roots() ) {
         original += logged( *root );
      }
      ASSERT_EQ( original, peer.finish() );
   }
}

} // namespace
