// PDUs in hexadecimal, a line each.
#include "capture/HexInput.h"

#include <vector>

namespace LdpTool {

namespace {

constexpr int noDigit = -1;

int digitValue( char c ) {
   if ( c >= '0' && c <= '9' ) return c - '0';
   if ( c >= 'a' && c <= 'f' ) return c - 'a' + 10;
   if ( c >= 'A' && c <= 'F' ) return c - 'A' + 10;
   return noDigit;
}

bool blank( char c ) { return c == ' ' || c == '\t' || c == '\r'; }

} // namespace

void readHex( std::istream & input, std::string const & name, PduSink & sink ) {
   std::string line;
   std::vector< std::uint8_t > octets;
   AnyLengthStream stream;
   for ( std::uint64_t number = 1; std::getline( input, line ); ++number ) {
      auto const fail = [&]( std::string const & why ) {
         throw InputError( name + ": line " + std::to_string( number ) + ": " + why );
      };
      octets.clear();
      int high = noDigit; // first digit of the octet in hand
      for ( char c : line ) {
         if ( c == '#' ) break;
         if ( blank( c ) ) continue;
         int const digit = digitValue( c );
         if ( digit == noDigit ) fail( "not a hexadecimal digit" );
         if ( high == noDigit ) {
            high = digit;
         } else {
            octets.push_back( std::uint8_t( high << 4 | digit ) );
            high = noDigit;
         }
      }
      if ( high != noDigit ) fail( "an odd number of hexadecimal digits" );
      if ( octets.empty() ) continue;
      Origin origin;
      origin.arrival.frame = number;
      sink.onPdu( origin, stream.datagram( octets ) );
      sink.onIdle(); // whoever types the lines wants to see each answer
   }
   if ( input.bad() ) throw InputError( name + ": cannot be read" );
}

} // namespace LdpTool
