// A capture through all of the tool's input side: file, link and IP headers, fragments, TCP, framer, decoder,
// and one of what stands behind them.
//
// The first octet of the input chooses who reads, the second the kind of capture: a whole file as it stands,
// or frames of a link type, each behind the seconds since the one before (1 octet) and its length (2), so
// that a mutation cannot lose all frames behind it.
#include "capture/Capture.h"
#include "findings/Account.h"
#include "messages/Decoder.h"
#include "monitor/Monitor.h"
#include "reporters/Full.h"
#include "reporters/Json.h"
#include "reporters/Lines.h"
#include "reporters/Stats.h"
#include "views/Tree.h"
#include "views/TreeWatcher.h"
#include "views/Views.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <pcap/dlt.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace LdpTool;

namespace {

constexpr std::uint32_t linkTypes[] = { DLT_EN10MB, DLT_LINUX_SLL, DLT_RAW, DLT_NULL };
constexpr std::uint8_t wholeFile = 0x80;

template< class Number >
void add( std::string & file, Number number ) {
   file.append( reinterpret_cast< char const * >( &number ), sizeof number );
}

std::string captureOf( Octets frames, std::uint32_t linkType ) {
   std::string file;
   for ( std::uint32_t const word : { 0xa1b2c3d4u, 0x00040002u, 0u, 0u, 0x40000u, linkType } )
      add( file, word );
   std::uint32_t seconds = 1;
   while ( frames.size() > 3 ) {
      seconds += frames[0];
      std::uint32_t const length =
           std::min( std::uint32_t( frames[1] << 8 | frames[2] ), std::uint32_t( frames.size() - 3 ) );
      for ( std::uint32_t const word : { seconds, 0u, length, length } )
         add( file, word );
      file.append( reinterpret_cast< char const * >( frames.data() + 3 ), length );
      frames = frames.subspan( 3 + length );
   }
   return file;
}

/// What the tool writes goes nowhere, and what it warns of neither.
struct Silence {
   Silence() { std::cerr.setstate( std::ios::failbit ); }
   std::FILE * const null = std::fopen( "/dev/null", "w" );
   int const file = memfd_create( "capture", 0 );
};

class Run {
 public:
   Run( std::string name, Output & out ) : name_( std::move( name ) ), out_( out ) {}
   void operator()( Reporter & reporter ) const {
      Decoder decoder( reporter, Selection(), out_ );
      try {
         Capture capture = Capture::file( name_ );
         capture.run( decoder );
      } catch ( InputError const & ) {}
   }

 private:
   std::string name_;
   Output & out_;
};

// The monitor, and one of the things that are made of what it knows.
void monitor( Run const & run, Output & out, unsigned view ) {
   auto const network = networkFactory( Vorn::Name( "network" ) );
   Monitor monitor( *network, {}, 32768, view == 0 ? Monitor::compact : Monitor::live );
   JsonWriter json( out );
   std::optional< TreeWatcher > watcher;
   if ( view == 3 ) {
      watcher.emplace( *network, [&]( TreeChange const & change ) {
         out << changeText( change );
         writeChange( json, monitor.journal().arrival(), change );
      } );
   }
   Evidence evidence( monitor );
   run( evidence );
   switch ( view ) {
   case 0:
      printAccounts( out, evidence, *network, monitor, {} );
      printHistory( out, monitor.journal(), {} );
      printSummary( out, *network, monitor.journal() );
      printNeighbors( out, *network, monitor.journal(), {} );
      printBindings( out, *network, monitor, {}, {} );
      printPseudowires( out, *network, {} );
      printDot( out, *network );
      break;
   case 1: out << treeText( *network, TreeContent::stored ); break;
   case 2: writeTree( json, *network, TreeContent::stored ); break;
   }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   static Silence const silence;
   if ( size < 2 ) return 0;
   Octets const rest( data + 2, size - 2 );
   std::string const file = data[1] & wholeFile
                                 ? std::string( rest.begin(), rest.end() )
                                 : captureOf( rest, linkTypes[data[1] % std::size( linkTypes )] );
   if ( ftruncate( silence.file, 0 ) ||
        pwrite( silence.file, file.data(), file.size(), 0 ) != ssize_t( file.size() ) )
      std::abort();

   Output out( silence.null );
   Run const run( "/proc/self/fd/" + std::to_string( silence.file ), out );
   switch ( data[0] % 8 ) {
   case 0: {
      JsonReporter reporter( out, true );
      run( reporter );
      break;
   }
   case 1: {
      FullReporter reporter( out );
      run( reporter );
      break;
   }
   case 2: {
      LineReporter reporter( out );
      run( reporter );
      break;
   }
   case 3: {
      StatsReporter reporter;
      run( reporter );
      reporter.print( out, nullptr, {} );
      break;
   }
   default: monitor( run, out, data[0] % 8 - 4 );
   }
   out.flush();
   return 0;
}
