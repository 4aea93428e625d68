// A PDU parsed with both traces on, all levels: what a peer sends passes through every codec. Lines of the
// text trace stay single printable lines, and the ring is a file that its reader understands whole.
//
// The first octet of the input says where in the packet the PDU begins, and whether the ring is read
// afterwards.
#include "UnitMutator.h"
#include "ring/RingReader.h"

#include "Ldp/LdpUtils.h"
#include "Skein/Ring.h"
#include "Vorn/Trace.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <ostream>
#include <streambuf>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// Takes trace lines and looks at each octet.
class LineCheck : public std::streambuf {
   int_type overflow( int_type c ) override {
      VORN_ASSERT( c == '\n' || ( c >= ' ' && c <= '~' ) );
      return c;
   }
};

// The ring of this process, which no name leads to.
class TracedProcess {
 public:
   TracedProcess() {
      std::string folder = "/tmp/TraceFuzz-XXXXXX";
      VORN_ASSERT( mkdtemp( folder.data() ) );
      Skein::SizeSpec sizes{ 64 };
      int const failed =
           Skein::initialize( "ring", &sizes, folder.c_str(), 0, 24, Skein::MultiThreading::one, false, 64 );
      VORN_ASSERT( !failed );
      std::string const path = folder + "/ring";
      file_ = open( path.c_str(), O_RDONLY | O_CLOEXEC );
      VORN_ASSERT( file_ >= 0 );
      unlink( path.c_str() );
      rmdir( folder.c_str() );
      Vorn::TraceFacility::sinkIs( &lines_ );
      for ( char const * name : { "LdpGenMsgParser", "LdpHdr", "LdpMsgParser", "LdpPwGenMsgParser" } )
         Vorn::TraceFacility::levelsIs( name, ~0u );
   }
   std::string ring() const {
      std::string octets( std::size_t( lseek( file_, 0, SEEK_END ) ), '\0' );
      VORN_ASSERT( pread( file_, octets.data(), octets.size(), 0 ) == ssize_t( octets.size() ) );
      return octets;
   }

 private:
   int file_ = -1;
   LineCheck check_;
   std::ostream lines_{ &check_ };
};

void parse( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   if ( Ldp::ldpPduGuard( pkt, offset ) ) return;
   auto const parser = Ldp::ldpPduParserFactory( pkt, offset );
   if ( !parser->validLdpPdu() ) return;
   for ( U32 i = 0; i < parser->messageNum(); ++i )
      Ldp::ldpMsgParserGet( pkt, parser->messageOffset( i ) );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   static TracedProcess const & process = *new TracedProcess;
   if ( size < 2 ) return 0;
   std::vector< U8 > octets( data + 1, data + size );
   parse( Lumo::pktFactory( octets.data(), octets.size() ),
          std::min( U32( octets.size() ), data[0] & 0x1fu ) );
   if ( data[0] >> 6 == 3 ) { // seldom: it takes longer than all the rest
      LdpTool::RingReader reader( process.ring() );
      reader.forEach( []( LdpTool::RingRecord const & ) {} );
      VORN_ASSERT( reader.damaged() == 0 );
   }
   return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator( U8 * data, std::size_t size, std::size_t maxSize,
                                                unsigned seed ) {
   return Fuzz::mutatePdu( data, size, maxSize, seed );
}
