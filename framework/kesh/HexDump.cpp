// The hexadecimal dump that a Python script can read.
#include "Kesh/HexDump.h"

#include <string>

namespace Kesh {

Vorn::String hexDumpPythonCompatible( void const * data, std::size_t size, std::size_t maxBytes ) {
   static constexpr char digits[] = "0123456789abcdef";
   std::string text;
   std::size_t shown = size;
   if ( maxBytes && maxBytes < size ) {
      text = "(truncated from " + std::to_string( size ) + ") ";
      shown = maxBytes;
   }
   auto const * octets = static_cast< U8 const * >( data );
   for ( std::size_t i = 0; i < shown; ++i ) {
      text += { '\\', 'x', digits[octets[i] >> 4], digits[octets[i] & 15] };
   }
   return Vorn::String( std::string_view( text ) );
}

} // namespace Kesh
