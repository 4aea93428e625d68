// The line of progress on a terminal.
#include "text/Progress.h"

#include <cstdio>
#include <unistd.h>

namespace LdpTool {

void Progress::show( std::int64_t read, std::int64_t size ) {
   constexpr std::int64_t large = 32 << 20;
   if ( size < large || !isatty( STDERR_FILENO ) ) return;
   if ( read >= size ) {
      if ( shown_ >= 0 ) std::fprintf( stderr, "\r\033[K" );
      shown_ = -1;
      return;
   }
   int const percent = int( read * 100 / size );
   if ( percent == shown_ ) return;
   shown_ = percent;
   std::fprintf( stderr, "\rldptool: %d %% read", percent );
}

} // namespace LdpTool
