#pragma once

// JSON straight to the output: RapidJSON's writer keeps commas and nesting and writes numbers and foreign
// texts; what needs no escape is copied in one piece.

#include "text/Words.h"

#include <rapidjson/writer.h>

namespace LdpTool {

namespace JsonImpl {

/// A text is octets that a peer may have chosen. Each reads as the code point of its value, so that none is
/// lost and the JSON is valid whatever they are.
struct Latin1 : rapidjson::UTF8<> {
   template< class Stream >
   static bool Decode( Stream & stream, unsigned * codepoint ) {
      *codepoint = static_cast< unsigned char >( stream.Take() );
      return true;
   }
};

struct Stream {
   using Ch = char;
   Output & out;
   void Put( char c ) { out << c; }
   void Flush() {}
};
inline void PutUnsafe( Stream & stream, char c ) { stream.Put( c ); }

/// Only ASCII goes out, so that no reader takes an octet for a line end.
using Writer = rapidjson::Writer< Stream, Latin1, rapidjson::ASCII<> >;

} // namespace JsonImpl

class JsonWriter : private JsonImpl::Writer {
 public:
   explicit JsonWriter( Output & out ) : Writer( stream_ ), stream_{ out } {}

   void object() { StartObject(); }
   void endObject() { EndObject(); }
   void array() { StartArray(); }
   void endArray() { EndArray(); }
   /// The value is complete, and ends its line. Another may follow.
   void endLine() {
      stream_.out << '\n';
      Reset( stream_ );
   }

   /// The name of the next member of an object; nothing in it needs an escape.
   void key( std::string_view name ) {
      Prefix( rapidjson::kStringType );
      stream_.out.quoted( name );
   }
   /// The same of any octets.
   void foreignKey( std::string_view octets ) { value( octets ); }
   /// Members that are written already, with the commas between them.
   void members( std::string_view written ) {
      stream_.out << written;
      level_stack_.Top< Level >()->valueCount += 2;
   }

   void null() { Null(); }
   void value( bool is ) { Bool( is ); }
   template< std::unsigned_integral Number >
   void value( Number number ) {
      Prefix( rapidjson::kNumberType );
      stream_.out << number;
   }
   void value( std::signed_integral auto number ) { Int64( number ); }
   /// What is no number (JSON has none) is null.
   void value( double number ) {
      if ( !Double( number ) ) stream_.out << "null";
   }
   void value( std::string_view octets ) {
      if ( !octets.empty() ) {
         String( octets.data(), rapidjson::SizeType( octets.size() ) );
      } else {
         Prefix( rapidjson::kStringType );
         stream_.out.quoted( octets );
      }
   }
   void value( char const * text ) { value( std::string_view( text ) ); }
   void value( Vorn::String const & octets ) { value( octets.view() ); }
   /// A value of its own type as text that needs no escape: an address, an enumerator (or its number).
   void value( PlainText auto const & value ) {
      Prefix( rapidjson::kStringType );
      if constexpr ( std::is_enum_v< std::remove_cvref_t< decltype( value ) > > ) {
         if ( char const * const name = enumeratorName( value ) ) {
            stream_.out.quoted( name );
            return;
         }
      }
      stream_.out << '"' << value << '"';
   }
   /// Octets as hexadecimal digits.
   void hex( std::string_view octets ) {
      Prefix( rapidjson::kStringType );
      ( stream_.out << '"' ).hexOctets( octets ) << '"';
   }
   /// Seconds since the epoch, with all nine digits behind the point.
   void time( std::int64_t seconds, std::uint32_t nanoseconds ) {
      Prefix( rapidjson::kNumberType );
      stream_.out << epochText( seconds, nanoseconds );
   }

   template< class Value >
   void member( std::string_view name, Value const & value ) {
      key( name );
      this->value( value );
   }
   /// The number of a type of messages or TLVs.
   template< class Type >
   void typeNumber( std::string_view name, Type type ) {
      member( name, U32( type ) );
   }

 private:
   JsonImpl::Stream stream_;
};

} // namespace LdpTool
