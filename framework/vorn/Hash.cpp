#include "Vorn/Hash.h"

namespace Vorn {

U32 hashBytes( void const * data, std::size_t bytes ) noexcept {
   auto const * at = static_cast< U8 const * >( data );
   U64 h = 0xcbf29ce484222325u ^ bytes;
   for ( ; bytes >= 8; bytes -= 8, at += 8 ) {
      U64 word;
      std::memcpy( &word, at, 8 );
      h = ( h ^ word ) * 0xd6e8feb86659fd93u;
      h ^= h >> 32;
   }
   for ( ; bytes; --bytes, ++at ) {
      h = ( h ^ *at ) * 0x100000001b3u;
   }
   return VornHashBase< false >::hashU64( h );
}

} // namespace Vorn
