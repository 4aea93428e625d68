// A copy of the state in a second process, fed by the attribute log.
#include "commands/watch/Replica.h"

#include "capture/PduSink.h"
#include "views/Tree.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace LdpTool {

namespace {

namespace NboAttrLog = Vorn::NboAttrLog;

bool writeAll( int descriptor, void const * octets, std::size_t bytes ) {
   auto const * at = static_cast< char const * >( octets );
   while ( bytes ) {
      ssize_t const n = ::send( descriptor, at, bytes, MSG_NOSIGNAL );
      if ( n < 0 && errno == EINTR ) continue;
      if ( n <= 0 ) return false;
      at += n;
      bytes -= std::size_t( n );
   }
   return true;
}

/// What the process sends back: a text behind its length.
bool writeText( int descriptor, std::string const & text ) {
   std::uint64_t const size = text.size();
   return writeAll( descriptor, &size, sizeof size ) && writeAll( descriptor, text.data(), text.size() );
}

std::string treeJson( Vorn::Entity const & entity, TreeContent content ) {
   std::string text;
   auto const out = std::make_unique< Output >( text );
   JsonWriter json( *out );
   writeTree( json, entity, content );
   out->flush();
   return text;
}

std::string dump( rapidjson::Value const & value ) {
   rapidjson::StringBuffer text;
   rapidjson::Writer< rapidjson::StringBuffer > writer( text );
   value.Accept( writer );
   return text.GetString();
}

/// The first place where two JSON trees differ.
std::string difference( rapidjson::Value const & a, rapidjson::Value const & b, std::string const & path ) {
   if ( !a.IsObject() || !b.IsObject() ) {
      std::string const one = dump( a ), other = dump( b );
      return one == other ? std::string() : path + " is " + other + " and should be " + one;
   }
   for ( auto const & [key, value] : a.GetObject() ) {
      std::string const below = path + "/" + key.GetString();
      auto const same = b.FindMember( key );
      if ( same == b.MemberEnd() ) return below + " is missing";
      if ( auto const found = difference( value, same->value, below ); !found.empty() ) return found;
   }
   for ( auto const & [key, value] : b.GetObject() )
      if ( !a.HasMember( key ) ) return path + "/" + key.GetString() + " should not be there";
   return {};
}

} // namespace

Replica::Replica( Network & network ) {
   int ends[2];
   if ( ::socketpair( AF_UNIX, SOCK_STREAM, 0, ends ) != 0 )
      throw InputError( std::string( "socketpair: " ) + std::strerror( errno ) );
   std::fflush( nullptr ); // or the process would write it once more
   pid_ = ::fork();
   if ( pid_ < 0 ) {
      ::close( ends[0] );
      ::close( ends[1] );
      throw InputError( std::string( "fork: " ) + std::strerror( errno ) );
   }
   if ( pid_ == 0 ) {
      ::close( ends[0] );
      run( ends[1] );
   }
   ::close( ends[1] );
   socket_ = ends[0];
   out_ = Vorn::newObject< NboAttrLog::Out >();
   network.vornNboAttrLogSaIs( 0, 0, out_ );
}

Replica::~Replica() {
   if ( socket_ >= 0 ) ::close( socket_ );
   if ( pid_ > 0 ) ::waitpid( pid_, nullptr, 0 );
}

void Replica::flush() {
   while ( auto const bytes = out_->bytes() ) {
      sendAll( out_->data(), bytes );
      out_->drained( bytes );
   }
}

void Replica::sendAll( void const * octets, std::size_t bytes ) {
   if ( writeAll( socket_, octets, bytes ) ) return;
   receiveVerdict(); // it may have said why before it went
   throw InputError( "the replica went away" );
}

void Replica::receiveVerdict() {
   std::string const error = receive();
   if ( !error.empty() ) throw InputError( "the replica: " + error );
}

std::string Replica::receive() {
   auto const take = [this]( void * to, std::size_t bytes ) {
      auto * at = static_cast< char * >( to );
      while ( bytes ) {
         ssize_t const n = ::recv( socket_, at, bytes, 0 );
         if ( n < 0 && errno == EINTR ) continue;
         if ( n <= 0 ) throw InputError( "the replica went away" );
         at += n;
         bytes -= std::size_t( n );
      }
   };
   std::uint64_t size = 0;
   take( &size, sizeof size );
   std::string text( size, 0 );
   take( text.data(), text.size() );
   return text;
}

std::string Replica::finish( bool json ) {
   flush();
   ::shutdown( socket_, SHUT_WR ); // the end of the log
   receiveVerdict();
   std::string const text = receive();
   std::string const all = receive();
   logged_ = receive();
   return json ? all + "\n" : text;
}

void Replica::run( int socket ) {
   // The terminal's Ctrl-C is for the other process; this one ends with the log.
   std::signal( SIGINT, SIG_IGN );
   std::signal( SIGTERM, SIG_IGN );
   std::set_terminate( [] { ::_exit( 1 ); } ); // the other process says that this one went away
   bool sent = false;
   try {
      auto const demuxer = Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
      char octets[64 * 1024];
      for ( ;; ) {
         ssize_t const n = ::recv( socket, octets, sizeof octets, 0 );
         if ( n < 0 && errno == EINTR ) continue;
         if ( n <= 0 ) break;
         demuxer->bytesIs( octets, std::size_t( n ) );
      }
      Vorn::Ptr< Vorn::Entity > const copy =
           demuxer->roots().empty() ? networkFactory( Vorn::Name( "network" ) ) : demuxer->roots().front();
      std::string const texts[] = { "", treeText( *copy, TreeContent::stored ),
                                    treeJson( *copy, TreeContent::stored ),
                                    treeJson( *copy, TreeContent::logged ) };
      sent = std::all_of( std::begin( texts ), std::end( texts ),
                          [socket]( std::string const & text ) { return writeText( socket, text ); } );
   } catch ( std::exception const & error ) {
      writeText( socket, error.what() ); // in the place of the empty text
   }
   // Without the exit handlers and buffers that belong to the process this one was forked from.
   ::_exit( sent ? 0 : 1 );
}

std::string firstDifference( Network const & network, std::string const & logged ) {
   rapidjson::Document own, copy;
   own.Parse( treeJson( network, TreeContent::logged ).c_str() );
   copy.Parse( logged.c_str() );
   return difference( own, copy, "" );
}

} // namespace LdpTool
