#pragma once

// Fields as lines for people to read, from the same calls as JSON: `name value, name value`. What has parts
// of its own begins a line.

#include "text/Words.h"

#include <concepts>
#include <utility>

namespace LdpTool {

class FieldWriter {
 public:
   explicit FieldWriter( Output & out ) : out_( out ) {}

   void object() { begin(); }
   void endObject() { end(); }
   void array() {
      begin();
      out_ << '[';
   }
   void endArray() {
      out_ << ']';
      end();
   }
   /// All fields are there.
   void endLine() {
      if ( !first_ ) out_ << '\n';
      first_ = true;
   }

   void key( std::string_view name ) { key_ = name; }

   void value( bool is ) { next() << ( is ? "true" : "false" ); }
   template< std::unsigned_integral Number >
   void value( Number number ) {
      next() << number;
   }
   /// Quotes show where a text ends that may have blanks.
   void value( std::string_view octets ) {
      next();
      bool const quoted = octets.empty() || octets.find( ' ' ) != std::string_view::npos;
      if ( quoted ) out_ << '"';
      out_.escaped( octets );
      if ( quoted ) out_ << '"';
   }
   void value( char const * text ) { value( std::string_view( text ) ); }
   void value( Vorn::String const & octets ) { value( octets.view() ); }
   /// A value of its own type, whose text needs no escape.
   void value( PlainText auto const & value ) { next() << value; }
   void hex( std::string_view octets ) {
      if ( octets.empty() ) return value( octets );
      next().hexOctets( octets );
   }
   void time( std::int64_t seconds, std::uint32_t nanoseconds ) {
      next() << epochText( seconds, nanoseconds );
   }

   template< class Value >
   void member( std::string_view name, Value const & value ) {
      key( name );
      this->value( value );
   }
   /// The number of a type of messages or TLVs, which everybody writes in hexadecimal.
   template< class Type >
   void typeNumber( std::string_view name, Type type ) {
      key( name );
      next().hex( U32( type ), 4 );
   }

 private:
   Output & next( char const * separator = ", " ) {
      out_ << ( !first_ ? separator : depth_ == 0 ? "   " : "" );
      first_ = false;
      if ( !key_.empty() ) out_ << std::exchange( key_, {} ) << ' ';
      return out_;
   }
   void begin() {
      if ( depth_ == 0 ) endLine();
      next( key_.empty() ? "; " : ", " );
      ++depth_;
      first_ = true;
   }
   void end() {
      first_ = false;
      if ( --depth_ == 0 ) endLine();
   }

   Output & out_;
   std::string_view key_; ///< of the value that follows; none in an array
   int depth_ = 0;
   bool first_ = true; ///< of the line or of what has parts
};

} // namespace LdpTool
