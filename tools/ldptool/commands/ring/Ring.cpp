// ldptool ring: a ring trace as text or JSON.
#include "commands/Commands.h"
#include "ring/RingReader.h"
#include "text/JsonWriter.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <deque>
#include <fcntl.h>
#include <iostream>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LdpTool {

namespace {

struct RingOptions {
   std::string file;
   std::size_t last = 0; // 0: all
   bool json = false;
};

/// A file in memory, page by page as it is read.
class MappedFile {
 public:
   explicit MappedFile( std::string const & path ) {
      constexpr off_t most = off_t( 1 ) << 32; // no ring is made larger
      int const file = ::open( path.c_str(), O_RDONLY | O_CLOEXEC );
      if ( file < 0 ) throw RingError( std::strerror( errno ) );
      struct stat status;
      bool const fits = ::fstat( file, &status ) == 0 && S_ISREG( status.st_mode ) && status.st_size <= most;
      size_ = fits ? std::size_t( status.st_size ) : 0;
      if ( size_ ) at_ = ::mmap( nullptr, size_, PROT_READ, MAP_PRIVATE, file, 0 );
      int const error = errno;
      ::close( file );
      if ( !size_ ) throw RingError( "no ring trace" );
      if ( at_ == MAP_FAILED ) throw RingError( std::strerror( error ) );
   }
   ~MappedFile() { ::munmap( at_, size_ ); }
   MappedFile( MappedFile const & ) = delete;
   MappedFile & operator=( MappedFile const & ) = delete;

   std::string_view octets() const { return { static_cast< char const * >( at_ ), size_ }; }

 private:
   void * at_ = MAP_FAILED;
   std::size_t size_ = 0;
};

std::string timeText( U64 nanoseconds ) {
   std::time_t const second = std::time_t( nanoseconds / 1000000000 );
   std::tm parts{};
   gmtime_r( &second, &parts );
   char text[64];
   std::strftime( text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts );
   std::snprintf( text + std::strlen( text ), 32, ".%09lluZ",
                  static_cast< unsigned long long >( nanoseconds % 1000000000 ) );
   return text;
}

/// Time, place and text of a record; the blocks show as indentation. A record that took no clock has no time:
/// it lies between those above and below that have one.
std::string lineOf( RingRecord const & record, bool threaded ) {
   std::string line = record.timed ? timeText( record.nanoseconds ) : "";
   line.resize( 31, ' ' );
   if ( threaded ) line += "#" + std::to_string( record.writer ) + " ";
   std::size_t const place = line.size();
   line += record.site->file + ":" + std::to_string( record.site->line );
   line.resize( std::max( line.size() + 1, place + 28 ), ' ' );
   line.append( 2 * record.depth, ' ' );
   if ( record.kind != RingRecord::close ) return line + record.text + "\n";
   line += "end of " + record.text;
   if ( record.took ) {
      if ( line.back() != ' ' ) line += ' ';
      line += std::string( "took " ) + ( record.exact ? "" : "at most " ) + std::to_string( record.took ) +
              " ns";
   }
   return line + "\n";
}

std::string jsonOf( RingRecord const & record ) {
   static constexpr char const * kinds[] = { "message", "open", "close" };
   std::string line;
   Output out( line );
   JsonWriter json( out );
   json.object();
   json.member( "time", timeText( record.nanoseconds ) );
   json.member( "timed", record.timed );
   json.member( "kind", kinds[record.kind] );
   json.member( "thread", record.writer );
   json.member( "depth", record.depth );
   json.member( "file", record.site->file );
   json.member( "line", record.site->line );
   json.member( "function", record.site->function );
   json.member( "level", record.site->level );
   json.member( "text", record.text );
   if ( record.took ) json.member( record.exact ? "took" : "tookAtMost", record.took );
   json.endObject();
   json.endLine();
   out.flush();
   return line;
}

void printRing( RingOptions const & options ) {
   MappedFile const file( options.file );
   RingReader reader( RingReader::Mapped{ file.octets() } );
   auto const out = std::make_unique< Output >( stdout );
   auto const text = [&]( RingRecord const & record ) {
      return options.json ? jsonOf( record ) : lineOf( record, reader.threaded() );
   };
   std::deque< std::string > kept;
   if ( !options.json ) *out << "Ring trace of process " << reader.processId() << "\n";
   reader.forEach( [&]( RingRecord const & record ) {
      if ( options.last == 0 ) {
         *out << text( record );
      } else {
         kept.push_back( text( record ) );
         if ( kept.size() > options.last ) kept.pop_front();
      }
   } );
   for ( std::string const & line : kept )
      *out << line;
   out->flush();
   if ( reader.damaged() )
      std::cerr << "ldptool: " << options.file << ": left out what could not be read in " << reader.damaged()
                << " place(s)\n";
}

} // namespace

void addRingCommand( CLI::App & app ) {
   auto const options = std::make_shared< RingOptions >();
   CLI::App * const ring = app.add_subcommand( "ring", "Print the ring trace that a process has left" );
   ring->footer(
        "The oldest record comes first. A record without a time lies between its neighbours that have "
        "one.\n\nExamples:\n  ldptool ring LdpAgent-4711.sk\n  ldptool ring --last 50 LdpAgent-4711.sk" );
   ring->add_option( "FILE", options->file, "The ring file" )->required();
   ring->add_option( "--last", options->last, "Only the last N records" )->type_name( "N" );
   ring->add_flag( "--json", options->json, "One JSON object a line" );
   ring->callback( [options] {
      try {
         printRing( *options );
      } catch ( RingError const & error ) {
         std::cerr << "ldptool: " << options->file << ": " << error.what() << "\n";
         throw CLI::RuntimeError( exitUsage );
      } catch ( OutputError const & error ) {
         std::cerr << "ldptool: " << error.what() << "\n";
         throw CLI::RuntimeError( exitUsage );
      }
   } );
}

} // namespace LdpTool
