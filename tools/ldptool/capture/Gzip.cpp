// gzip, member after member.
#include "capture/Gzip.h"

#include <cerrno>
#include <memory>
#include <zlib.h>

namespace LdpTool {

namespace {

struct Gzip {
   explicit Gzip( std::FILE * file ) : compressed( file ) {
      constexpr int gzipOnly = 16;
      good = inflateInit2( &stream, gzipOnly + MAX_WBITS ) == Z_OK;
   }
   ~Gzip() {
      inflateEnd( &stream );
      std::fclose( compressed );
   }
   Gzip( Gzip const & ) = delete;
   Gzip & operator=( Gzip const & ) = delete;

   ssize_t read( char * to, std::size_t bytes ) {
      stream.next_out = reinterpret_cast< Bytef * >( to );
      stream.avail_out = uInt( bytes );
      while ( good && !over && stream.avail_out == bytes ) {
         if ( stream.avail_in == 0 ) {
            stream.next_in = octets;
            stream.avail_in = uInt( std::fread( octets, 1, sizeof octets, compressed ) );
            if ( stream.avail_in == 0 ) {
               over = !inMember;
               good = over;
               continue;
            }
         }
         int const status = inflate( &stream, Z_NO_FLUSH );
         inMember = status != Z_STREAM_END;
         good = status == Z_OK || ( status == Z_STREAM_END && inflateReset( &stream ) == Z_OK );
      }
      if ( !good ) {
         errno = EIO;
         return -1;
      }
      return ssize_t( bytes - stream.avail_out );
   }

   std::FILE * compressed;
   z_stream stream{};
   Bytef octets[1 << 15];
   bool good = false;
   bool inMember = true; ///< a member has begun, and its end has not come
   bool over = false;
};

} // namespace

std::FILE * gunzip( std::FILE * compressed ) {
   auto gzip = std::make_unique< Gzip >( compressed );
   cookie_io_functions_t const calls{ []( void * self, char * to, std::size_t bytes ) {
                                        return static_cast< Gzip * >( self )->read( to, bytes );
                                     },
                                      nullptr, nullptr,
                                      []( void * self ) {
                                         delete static_cast< Gzip * >( self );
                                         return 0;
                                      } };
   std::FILE * const plain = fopencookie( gzip.get(), "rb", calls );
   if ( plain ) (void)gzip.release();
   return plain;
}

} // namespace LdpTool
