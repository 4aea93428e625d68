// A ring trace file: whatever its octets, the reader refuses it with a reason or reads what can be read.
#include "ring/RingReader.h"

#include "Vorn/Assert.h"

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   try {
      LdpTool::RingReader reader( std::string( reinterpret_cast< char const * >( data ), size ) );
      reader.forEach( []( LdpTool::RingRecord const & record ) {
         VORN_ASSERT( record.site );
         for ( char const c : record.text )
            VORN_ASSERT( c >= ' ' && c <= '~' );
      } );
   } catch ( LdpTool::RingError const & ) {}
   return 0;
}
