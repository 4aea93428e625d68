#pragma once

// Text on its way to a stream or a string: one buffer, written in large pieces. Everything that the tool
// prints for each message is appended here in place, without a string in between.

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

namespace LdpTool {

/// The output cannot be written (disk full, say).
class OutputError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

/// What stands out on a terminal, from here to `plain`. Anywhere else it is nothing, and nor is it where
/// NO_COLOR is set (no-color.org).
enum class Colour { plain, bad };

class Output {
 public:
   explicit Output( std::FILE * file );
   /// What is flushed is appended to the text.
   explicit Output( std::string & text ) : text_( &text ) {}
   Output( Output const & ) = delete;
   Output & operator=( Output const & ) = delete;

   /// Whether people look at it at once.
   bool terminal() const { return terminal_; }

   /// Hand everything on. Throws OutputError.
   void flush();

   Output & operator<<( std::string_view text ) {
      if ( text.size() > room() ) return addLong( text );
      text.copy( end_, text.size() );
      end_ += text.size();
      return *this;
   }
   Output & operator<<( char const * text ) { return *this << std::string_view( text ); }
   Output & operator<<( char c ) {
      if ( room() == 0 ) flush();
      *end_++ = c;
      return *this;
   }
   /// The text between double quotes.
   Output & quoted( std::string_view text ) {
      if ( text.size() + 2 > room() ) return *this << '"' << text << '"';
      char * const at = end_;
      *at = '"';
      text.copy( at + 1, text.size() );
      at[text.size() + 1] = '"';
      end_ = at + text.size() + 2;
      return *this;
   }
   Output & operator<<( Colour colour ) {
      return colours_ ? *this << ( colour == Colour::bad ? "\033[31m" : "\033[0m" ) : *this;
   }
   /// In decimal, octets too.
   template< std::unsigned_integral Number >
   Output & operator<<( Number number ) {
      return decimal( number );
   }

   /// "0x" and `digits` hexadecimal digits.
   Output & hex( std::uint64_t number, int digits );
   /// Two hexadecimal digits for each octet.
   Output & hexOctets( std::string_view octets );
   /// An IPv4 address, from its four octets.
   Output & ipv4( std::uint8_t const * octets );
   /// Octets that a peer chose: what does not print as ASCII reads `\xNN`, so that nobody's terminal obeys a
   /// router. Line ends stay when `lines` is set.
   Output & escaped( std::string_view octets, bool lines = false );

 private:
   std::size_t room() const { return std::size_t( buffer_.data() + buffer_.size() - end_ ); }
   Output & addLong( std::string_view text );
   Output & decimal( std::uint64_t number );

   std::FILE * file_ = nullptr;
   std::string * text_ = nullptr; ///< without a file
   bool terminal_ = false;
   bool colours_ = false;
   std::array< char, 1 << 16 > buffer_;
   char * end_ = buffer_.data();
};

} // namespace LdpTool
