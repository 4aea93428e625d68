// The line of progress on a terminal.
#include "Progress.h"

#include <sys/stat.h>
#include <unistd.h>

namespace LdpTool {

namespace {

constexpr std::int64_t large = 32 << 20;

} // namespace

Progress::Progress( std::FILE * file ) {
   struct stat status;
   if ( !file || !isatty( STDERR_FILENO ) || fstat( fileno( file ), &status ) != 0 ) return;
   if ( !S_ISREG( status.st_mode ) || status.st_size < large ) return;
   file_ = file;
   size_ = status.st_size;
}

void Progress::show() {
   if ( !file_ ) return;
   int const percent = int( std::int64_t( ftello( file_ ) ) * 100 / size_ );
   if ( percent == shown_ ) return;
   shown_ = percent;
   std::fprintf( stderr, "\rldptool: %d %% read", percent );
}

void Progress::clear() {
   if ( shown_ >= 0 ) std::fprintf( stderr, "\r\033[K" );
   shown_ = -1;
}

} // namespace LdpTool
