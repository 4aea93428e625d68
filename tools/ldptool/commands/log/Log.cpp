// `ldptool log`: an attribute log of any program that uses the library.

#include "commands/Commands.h"
#include "commands/Interruptible.h"
#include "log/LogStream.h"
#include "log/RecordText.h"
#include "views/Tree.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace LdpTool {

namespace {

namespace NboAttrLog = Vorn::NboAttrLog;

constexpr char const * examples = R"(
Examples:
  ldptool log /run/ldp.sock             each record as it comes
  ldptool log --json state.log          the state at the end of the log
  ldptool log --check /run/ldp.sock     whether the library takes it, and where it does not, why

Exit status: 0, 1 when the log is not as it should be or holds what is not known here, 2 for wrong
arguments or what cannot be read.)";

struct LogOptions {
   std::string source;
   bool check = false;
   bool tree = false;
   bool json = false;
};

/// A file, a Unix socket or standard input.
class Source {
 public:
   explicit Source( std::string const & name ) : name_( name ) {
      struct stat there {};
      bool const socket = ::stat( name.c_str(), &there ) == 0 && S_ISSOCK( there.st_mode );
      file_ = name == "-" ? STDIN_FILENO
              : socket    ? connected()
                          : ::open( name.c_str(), O_RDONLY | O_CLOEXEC );
      if ( file_ < 0 ) fail();
   }
   ~Source() {
      if ( file_ != STDIN_FILENO ) ::close( file_ );
   }
   Source( Source const & ) = delete;
   Source & operator=( Source const & ) = delete;

   /// What comes next; empty at the end, or once it was interrupted.
   std::string_view next( Interruptible const & ending ) {
      for ( ;; ) {
         pollfd waits[] = { { file_, POLLIN, 0 } };
         ending.wait( waits, -1 );
         if ( ending.interrupted() ) return {};
         ssize_t const n = ::read( file_, octets_, sizeof octets_ );
         if ( n >= 0 ) return { octets_, std::size_t( n ) };
         if ( errno == ECONNRESET ) return {}; // the other end has gone without reading our header
         if ( errno != EINTR && errno != EAGAIN ) fail();
      }
   }

 private:
   int connected() const {
      sockaddr_un address{};
      address.sun_family = AF_UNIX;
      errno = ENAMETOOLONG;
      if ( name_.size() >= sizeof address.sun_path ) return -1;
      name_.copy( address.sun_path, name_.size() );
      int const file = ::socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0 );
      if ( file < 0 ) return -1;
      // The other direction of the connection has a header and stays empty.
      auto const out = Vorn::newObject< NboAttrLog::Out >();
      std::size_t const bytes = out->bytes();
      if ( ::connect( file, reinterpret_cast< sockaddr const * >( &address ), sizeof address ) == 0 &&
           ::send( file, out->data(), bytes, MSG_NOSIGNAL ) == ssize_t( bytes ) )
         return file;
      ::close( file );
      return -1;
   }
   [[noreturn]] void fail() const { throw InputError( name_ + ": " + std::strerror( errno ) ); }

   std::string name_;
   int file_;
   char octets_[64 * 1024];
};

/// The copy that the library makes of it.
class Copy {
 public:
   void recordIs( LogRecord const & record ) {
      demuxer_->bytesIs( record.octets.data(), record.octets.size() );
   }
   std::string summary() const {
      return std::to_string( demuxer_->records() ) + " records, " +
             std::to_string( demuxer_->out()->adapters() ) + " entities";
   }
   /// The entities that stand alone, with all below them.
   void print( Output & out, bool asJson ) const {
      for ( auto const & root : demuxer_->roots() ) {
         if ( !asJson ) {
            out << treeText( *root, TreeContent::logged );
            continue;
         }
         JsonWriter json( out );
         writeTree( json, *root, TreeContent::logged );
         json.endLine();
      }
   }

 private:
   Vorn::Ptr< NboAttrLog::Demuxer > demuxer_ =
        Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
};

int printLog( LogOptions const & options ) {
   try {
      Output out( stdout );
      Interruptible const ending;
      auto const source = std::make_unique< Source >( options.source );
      std::optional< Copy > copy;
      if ( options.check || options.tree || options.json ) copy.emplace();
      RecordText text;
      bool good = true;
      LogStream stream( [&]( LogRecord const & record ) {
         if ( copy ) {
            copy->recordIs( record );
         } else if ( record.offset ) {
            good &= text.print( out, record );
         }
      } );
      std::string refused;
      try {
         for ( std::string_view octets; octets = source->next( ending ), !octets.empty(); ) {
            stream.octetsIs( octets );
            if ( !copy ) out.flush();
         }
         if ( !ending.interrupted() ) stream.endIs();
      } catch ( LogError const & error ) {
         refused = error.what();
      } catch ( Vorn::AttrLogRecordException const & error ) {
         refused = error.message().view();
      }
      if ( options.check && refused.empty() ) out << "the log is well formed: " << copy->summary() << '\n';
      if ( options.tree || options.json ) copy->print( out, options.json ); // up to where it was refused
      out.flush();
      if ( refused.empty() ) return good ? exitGood : exitBadMessage;
      std::string shown;
      Output line( shown );
      line.escaped( refused );
      line.flush();
      std::cerr << "ldptool: " << options.source << ": refused at octet " << stream.offset() << ": " << shown
                << '\n';
      return exitBadMessage;
   } catch ( OutputError const & error ) {
      std::cerr << "ldptool: " << error.what() << '\n';
   } catch ( InputError const & error ) {
      std::cerr << "ldptool: " << error.what() << '\n';
   }
   return exitUsage;
}

} // namespace

void addLogCommand( CLI::App & app ) {
   auto const options = std::make_shared< LogOptions >();
   CLI::App & command =
        *app.add_subcommand( "log", "Print the attribute log of a program, or the state that it carries." );
   command.add_option( "SOURCE", options->source, "a Unix socket, a file, or - for standard input" )
        ->required();
   command.add_flag( "--check", options->check,
                     "say whether the library takes it, and where and why it does not" );
   auto * const tree =
        command.add_flag( "--tree", options->tree, "print the state that it carries, at its end" );
   command
        .add_flag( "--json", options->json,
                   "print that state as JSON, one object for each entity that stands alone" )
        ->excludes( tree );
   command.footer( examples );
   command.callback( [options] { throw CLI::RuntimeError( printLog( *options ) ); } );
}

} // namespace LdpTool
