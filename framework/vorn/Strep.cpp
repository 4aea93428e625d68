// Text forms of the basic types, and what readers share.
#include "Vorn/Strep.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <string>
#if !defined( __cpp_lib_to_chars )
#include <clocale>
#include <cstdlib>
#endif

namespace Vorn {

namespace {

#if defined( __cpp_lib_to_chars )
using std::from_chars;
#else
/// What a standard library may lack for a double.
std::from_chars_result from_chars( char const * first, char const * last, double & value ) {
   // As far as what is written in decimal goes: strtod would take blanks, a plus and hexadecimal too.
   char const * at = first;
   auto const digits = [&] {
      while ( at != last && *at >= '0' && *at <= '9' ) {
         ++at;
      }
   };
   if ( at != last && *at == '-' ) ++at;
   digits();
   if ( at != last && *at == '.' ) ++at;
   digits();
   if ( at != last && *at == 'e' && at != first ) {
      ++at;
      if ( at != last && ( *at == '-' || *at == '+' ) ) ++at;
      digits();
   }
   for ( char const * word : { "inf", "nan", "-inf", "-nan" } ) {
      std::size_t const bytes = std::strlen( word );
      if ( std::size_t( last - first ) >= bytes && !std::memcmp( first, word, bytes ) ) at = first + bytes;
   }
   std::string const text( first, at );
   static locale_t const plain = newlocale( LC_ALL_MASK, "C", nullptr );
   char * behind = nullptr;
   double const read = strtod_l( text.c_str(), &behind, plain );
   if ( behind == text.c_str() ) return { first, std::errc::invalid_argument };
   if ( std::isinf( read ) && text.find( "inf" ) == text.npos ) return { at, std::errc::result_out_of_range };
   value = read;
   return { first + ( behind - text.c_str() ), {} };
}
#endif

[[noreturn]] void refuse( String::IteratorConst it, String::IteratorConst end, char const * wanted ) {
   std::size_t const shown = std::min< std::size_t >( std::size_t( end - it ), 40 );
   throw RangeException( String( "expected " ) + wanted + " at \"" + String( it, shown ) + "\"" );
}

int hexDigit( char c ) {
   if ( c >= '0' && c <= '9' ) return c - '0';
   if ( c >= 'a' && c <= 'f' ) return c - 'a' + 10;
   return -1;
}

} // namespace

String boolToStrep( bool value ) { return value ? "True" : "False"; }

String valueToStrep( unsigned long long value ) {
   char text[24];
   return String( text, std::size_t( std::to_chars( text, text + sizeof text, value ).ptr - text ) );
}

String valueToStrep( double value ) {
   char text[40];
   return String( text, std::size_t( std::to_chars( text, text + sizeof text, value ).ptr - text ) );
}

String valueToStrep( String const & value ) {
   static constexpr char digits[] = "0123456789abcdef";
   std::string text = "'";
   for ( char const c : value ) {
      auto const octet = U8( c );
      if ( c == '\'' || c == '\\' ) {
         text += '\\';
         text += c;
      } else if ( octet < 0x20 || octet > 0x7e ) {
         text += { '\\', 'x', digits[octet >> 4], digits[octet & 15] };
      } else {
         text += c;
      }
   }
   text += '\'';
   return String( std::string_view( text ) );
}

void needString( String::IteratorConst & it, String::IteratorConst const & end, char const * literal ) {
   std::size_t const bytes = std::strlen( literal );
   if ( std::size_t( end - it ) < bytes || std::memcmp( it, literal, bytes ) != 0 )
      refuse( it, end, literal );
   it += bytes;
}

U64 unsignedFromSequence( String::IteratorConst & it, String::IteratorConst const & end, U64 max ) {
   U64 value = 0;
   auto const [behind, error] = std::from_chars( it, end, value );
   if ( error != std::errc() || value > max ) refuse( it, end, "a decimal number in range" );
   it = behind;
   return value;
}

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, bool * value ) {
   bool const read = it != end && *it == 'T';
   needString( it, end, read ? "True" : "False" );
   *value = read;
}

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, double * value ) {
   double read = 0;
   auto const [behind, error] = from_chars( it, end, read );
   if ( error != std::errc() ) refuse( it, end, "a number" );
   it = behind;
   *value = read;
}

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, String * value ) {
   needString( it, end, "'" );
   std::string octets;
   while ( it != end && *it != '\'' ) {
      char c = *it++;
      if ( c == '\\' ) {
         if ( it == end ) refuse( it, end, "an escaped octet" );
         c = *it++;
         if ( c == 'x' ) {
            int const high = end - it >= 2 ? hexDigit( it[0] ) : -1;
            int const low = end - it >= 2 ? hexDigit( it[1] ) : -1;
            if ( high < 0 || low < 0 ) refuse( it, end, "two hexadecimal digits" );
            c = char( high << 4 | low );
            it += 2;
         } else if ( c != '\'' && c != '\\' ) {
            refuse( it - 1, end, "an escaped quote or backslash" );
         }
      } else if ( U8( c ) < 0x20 || U8( c ) > 0x7e ) {
         refuse( it - 1, end, "a printable character" );
      }
      octets += c;
   }
   needString( it, end, "'" );
   *value = String( std::string_view( octets ) );
}

void rethrowFromDeserializeAttr( RangeException const & failure, char const * attrName ) {
   throw RangeException( String( attrName ) + ": " + failure.message() );
}

void strepToValueEnd( String const & text, String::IteratorConst it ) {
   if ( it != text.end() ) refuse( it, text.end(), "the end of the text" );
}

char const * EnumType< unsigned int >::name( unsigned int value, VornType const * type ) noexcept {
   for ( VornAttr const * attr = type->attributes; attr->name; ++attr ) {
      if ( attr->id() == value ) return attr->name;
   }
   return nullptr;
}

String EnumType< unsigned int >::valueToStrep( unsigned int value, VornType const * type ) {
   char const * const known = name( value, type );
   return known ? String( known ) : Vorn::valueToStrep( value );
}

unsigned int EnumType< unsigned int >::sequenceToValue( String::IteratorConst & it,
                                                        String::IteratorConst const & end,
                                                        VornType const * type ) {
   if ( it != end && *it >= '0' && *it <= '9' ) return U32( unsignedFromSequence( it, end, ~U32( 0 ) ) );
   // The name reaches as far as letters and digits do, so that one name being the head of another does no
   // harm.
   auto behind = it;
   while ( behind != end && ( std::isalnum( U8( *behind ) ) || *behind == '_' ) ) {
      ++behind;
   }
   std::string_view const word( it, std::size_t( behind - it ) );
   for ( VornAttr const * attr = type->attributes; attr->name; ++attr ) {
      if ( word == attr->name ) {
         it = behind;
         return attr->id();
      }
   }
   refuse( it, end, type->name );
}

String compositeText( char const * typeName, char const * const * names, String const * values,
                      std::size_t count ) {
   String text = String( "Value('" ) + typeName + "', ** {";
   for ( std::size_t i = 0; i < count; ++i ) {
      text += i ? ", '" : "'";
      text += names[i];
      text += "': ";
      text += values[i];
   }
   return text += "})";
}

} // namespace Vorn
