// Two ends of a log, and the wire between them.
#include "framework/LogPair.h"

#include <algorithm>

namespace Test {

std::size_t LogPair::carry( LogEnd & from, LogEnd & to, std::size_t most ) {
   std::size_t const bytes = std::min( from.out->bytes(), most );
   if ( bytes ) {
      to.demuxer->bytesIs( from.out->data(), bytes );
      from.out->drained( bytes );
   }
   return bytes;
}

void LogPair::flush() {
   while ( carry() ) {}
   ASSERT_TRUE( source.out->idle() );
}

std::vector< U8 > LogPair::take() {
   std::size_t const bytes = source.out->bytes();
   std::vector< U8 > taken( source.out->data(), source.out->data() + bytes );
   source.out->drained( bytes );
   return taken;
}

} // namespace Test
