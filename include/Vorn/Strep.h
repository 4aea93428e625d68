/// \file
/// Text forms of values, both ways. `valueToStrep` writes a value so that the strict reader,
/// `sequenceToValue`, reads back an equal one. Composite values read `Value('Ns::Type', ** {'a1': v1, 'a2':
/// v2})`, enumerations by the name of the enumerator, strings in single quotes.
///
/// A reader consumes exactly what it knows and leaves the iterator behind it; anything else raises
/// RangeException.
#pragma once

#include "Vorn/Exception.h"
#include "Vorn/VornType.h"

#include <concepts>
#include <iosfwd>

namespace Vorn {

/// `True` or `False`.
VORN_API String boolToStrep( bool value );
/// Decimal digits.
VORN_API String valueToStrep( unsigned long long value );
/// The shortest decimal that reads back as the same number.
VORN_API String valueToStrep( double value );
/// In single quotes; quote and backslash escaped, octets that do not print as `\xNN`.
VORN_API String valueToStrep( String const & value );

/// The name of a truth value.
String valueToStrep( std::same_as< bool > auto value ) { return boolToStrep( value ); }
/// In decimal.
template< std::unsigned_integral T >
requires( !std::same_as< T, bool > && !std::same_as< T, unsigned long long > ) String
     valueToStrep( T value ) {
   return valueToStrep( static_cast< unsigned long long >( value ) );
}

/// Moves `it` over the exact literal, or raises RangeException.
VORN_API void needString( String::IteratorConst & it, String::IteratorConst const & end,
                          char const * literal );

/// Reads decimal digits up to `max`.
VORN_API U64 unsignedFromSequence( String::IteratorConst & it, String::IteratorConst const & end, U64 max );
/// Reads a value from the text that `valueToStrep` gives it, and moves `it` behind that. Throws
/// RangeException for any other.
VORN_API void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, bool * value );
VORN_API void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end,
                               double * value );
VORN_API void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end,
                               String * value );
template< std::unsigned_integral T >
requires( !std::same_as< T, bool > ) void sequenceToValue( String::IteratorConst & it,
                                                           String::IteratorConst const & end, T * value ) {
   *value = T( unsignedFromSequence( it, end, T( ~T( 0 ) ) ) );
}

/// Raises the failure again with the attribute's name in front.
[[noreturn]] VORN_API void rethrowFromDeserializeAttr( RangeException const & failure,
                                                       char const * attrName );

/// Reads one attribute's value; a failure names the attribute.
template< class T >
T deserializeAttr( String::IteratorConst & it, String::IteratorConst const & end, char const * attrName ) {
   T value{};
   try {
      sequenceToValue( it, end, &value );
   } catch ( RangeException const & failure ) {
      rethrowFromDeserializeAttr( failure, attrName );
   }
   return value;
}

/// Raises RangeException unless `it` stands at the end of `text`.
VORN_API void strepToValueEnd( String const & text, String::IteratorConst it );

/// Reads a whole text into `*value`, which stays as it was if the text is refused.
template< class T >
void strepToValue( String const & text, T * value ) {
   auto it = text.begin();
   T read{};
   sequenceToValue( it, text.end(), &read );
   strepToValueEnd( text, it );
   *value = std::move( read );
}

/// Text forms of enumerations by their record: the enumerator's name, or the number in decimal where no
/// enumerator has it.
template< class Word >
struct EnumType;

/// The one word that enumerations have.
template<>
struct VORN_API EnumType< unsigned int > {
   /// Name of the enumerator with that value, or null.
   static char const * name( unsigned int value, VornType const * type ) noexcept;
   /// That name, or the number in decimal where there is none.
   static String valueToStrep( unsigned int value, VornType const * type );
   /// Reads either from the front of a text and moves `it` behind it; throws RangeException for anything
   /// else.
   static unsigned int sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end,
                                        VornType const * type );
};

/// Joins `'name': value` pairs into the composite form of `typeName`.
VORN_API String compositeText( char const * typeName, char const * const * names, String const * values,
                               std::size_t count );

} // namespace Vorn

/// Declares the text forms of value type `Type`, inside its namespace.
#define VORN_TEXT( Type )                                                                                    \
   VORN_API ::Vorn::String valueToStrep( Type const & value );                                               \
   VORN_API void sequenceToValue( ::Vorn::String::IteratorConst & it,                                        \
                                  ::Vorn::String::IteratorConst const & end, Type * value );                 \
   VORN_API std::ostream & operator<<( std::ostream & out, Type const & value );

/// Makes `operator<<` of `Type` from its text form. Stands in the source file.
#define VORN_TEXT_STREAM( Type )                                                                             \
   std::ostream & operator<<( std::ostream & out, Type const & value ) {                                     \
      return out << valueToStrep( value );                                                                   \
   }

/// Declares enumeration `Type` from a list macro whose rows are `X( name, value, ... )`, with its record and
/// text forms. Rows may have further columns, which this macro leaves to others.
#define VORN_ENUM( Type, LIST )                                                                              \
   enum Type : U32 { LIST( VORN_ENUMERATOR ) };                                                              \
   VORN_API extern ::Vorn::VornType const Type##_vornType;                                                   \
   VORN_TEXT( Type )                                                                                         \
   constexpr ::Vorn::VornType const * vornTypeOf( Type ) { return &Type##_vornType; }
/// One enumerator of a list.
#define VORN_ENUMERATOR( name, number, ... ) name = number,
