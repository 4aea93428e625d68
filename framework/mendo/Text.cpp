// Text from octets: hexadecimal, and what prints.
#include "Mendo/Text.h"

namespace Mendo {

void appendHex( std::string & line, void const * data, std::size_t size ) {
   static constexpr char digits[] = "0123456789abcdef";
   auto const * const octets = static_cast< U8 const * >( data );
   for ( std::size_t i = 0; i < size; ++i ) {
      line += "\\x";
      line += digits[octets[i] >> 4];
      line += digits[octets[i] & 15];
   }
}

void appendPrintable( std::string & line, std::string_view octets ) {
   for ( char const & c : octets ) {
      if ( c >= ' ' && c <= '~' ) {
         line += c;
      } else {
         appendHex( line, &c, 1 );
      }
   }
}

} // namespace Mendo
