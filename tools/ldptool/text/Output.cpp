// The buffer of all output.
#include "text/Output.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace LdpTool {

namespace {

constexpr std::size_t longestNumber = 20;
constexpr char const * hexDigits = "0123456789abcdef";

struct OctetText {
   char digits[3];
   std::uint8_t size;
};

constexpr std::array< OctetText, 256 > octetTexts = [] {
   std::array< OctetText, 256 > texts{};
   for ( unsigned value = 0; value < 256; ++value ) {
      OctetText & text = texts[value];
      if ( value >= 100 ) text.digits[text.size++] = char( '0' + value / 100 );
      if ( value >= 10 ) text.digits[text.size++] = char( '0' + value / 10 % 10 );
      text.digits[text.size++] = char( '0' + value % 10 );
   }
   return texts;
}();

} // namespace

Output::Output( std::FILE * file ) : file_( file ) {
   char const * const without = std::getenv( "NO_COLOR" );
   terminal_ = isatty( fileno( file ) );
   colours_ = terminal_ && !( without && *without );
}

void Output::flush() {
   std::size_t const size = std::size_t( end_ - buffer_.data() );
   end_ = buffer_.data();
   if ( text_ ) {
      text_->append( buffer_.data(), size );
      return;
   }
   if ( std::fwrite( buffer_.data(), 1, size, file_ ) != size || std::fflush( file_ ) != 0 ) {
      throw OutputError( std::string( "cannot write the output: " ) + std::strerror( errno ) );
   }
}

Output & Output::addLong( std::string_view text ) {
   while ( text.size() > room() ) {
      std::size_t const now = room();
      text.copy( end_, now );
      end_ += now;
      text.remove_prefix( now );
      flush();
   }
   return *this << text;
}

Output & Output::decimal( std::uint64_t number ) {
   if ( room() < longestNumber ) flush();
   // Nearly every number has 32 bits, and those divide faster.
   end_ = number == std::uint32_t( number )
               ? std::to_chars( end_, end_ + longestNumber, std::uint32_t( number ) ).ptr
               : std::to_chars( end_, end_ + longestNumber, number ).ptr;
   return *this;
}

Output & Output::hex( std::uint64_t number, int digits ) {
   *this << "0x";
   while ( digits-- > 0 )
      *this << hexDigits[number >> ( 4 * digits ) & 0xf];
   return *this;
}

Output & Output::hexOctets( std::string_view octets ) {
   for ( char c : octets ) {
      auto const octet = static_cast< unsigned char >( c );
      *this << hexDigits[octet >> 4] << hexDigits[octet & 0xf];
   }
   return *this;
}

Output & Output::ipv4( std::uint8_t const * octets ) {
   if ( room() < longestNumber ) flush();
   for ( int i = 0; i < 4; ++i ) {
      OctetText const & text = octetTexts[octets[i]];
      std::memcpy( end_, text.digits, sizeof text.digits );
      end_ += text.size;
      *end_++ = '.';
   }
   --end_;
   return *this;
}

Output & Output::escaped( std::string_view octets, bool lines ) {
   auto const plain = [&]( char c ) { return ( c >= ' ' && c <= '~' ) || ( lines && c == '\n' ); };
   while ( !octets.empty() ) {
      auto const run =
           std::size_t( std::find_if_not( octets.begin(), octets.end(), plain ) - octets.begin() );
      *this << octets.substr( 0, run );
      if ( run == octets.size() ) break;
      ( *this << "\\x" ).hexOctets( octets.substr( run, 1 ) );
      octets.remove_prefix( run + 1 );
   }
   return *this;
}

} // namespace LdpTool
