/// \file
/// How values are laid down in the attribute log: fixed widths, big-endian, composites field by field in the
/// order of their attributes. A type of its own form gives `logOut` and `logIn` in its namespace; the two
/// mirror each other.
#pragma once

#include "Vorn/Exception.h"
#include "Vorn/VornType.h"

#include <concepts>
#include <type_traits>

namespace Vorn {

/// Marks the constructor of a value that reads it out of an attribute log.
struct StreamBogon {};

namespace GenericIfImpl {

/// The log form of a value by the fields of its record, in their order.
VORN_API void recordLogOut( NboAttrLog::Out & out, void const * value, VornType const & type );
VORN_API void recordLogIn( NboAttrLog::In & in, void * value, VornType const & type );

} // namespace GenericIfImpl

namespace NboAttrLog {

/// Integers in their width, a `bool` as one octet, a `double` by its bits, a string as its length (32 bits)
/// and octets.
VORN_API void logOut( Out & out, bool value );
VORN_API void logOut( Out & out, U8 value );
VORN_API void logOut( Out & out, U16 value );
VORN_API void logOut( Out & out, U32 value );
VORN_API void logOut( Out & out, U64 value );
VORN_API void logOut( Out & out, double value );
VORN_API void logOut( Out & out, String const & value );

/// The readers throw AttrLogRecordException where the record holds no such value.
VORN_API void logIn( In & in, bool * value );
VORN_API void logIn( In & in, U8 * value );
VORN_API void logIn( In & in, U16 * value );
VORN_API void logIn( In & in, U32 * value );
VORN_API void logIn( In & in, U64 * value );
VORN_API void logIn( In & in, double * value );
VORN_API void logIn( In & in, String * value );
inline void logIn( In & in, Name * value ) {
   String text;
   logIn( in, &text );
   *value = text;
}

/// Enumerations as 32 bits.
template< class T >
requires std::is_enum_v< T >
void logOut( Out & out, T value ) { logOut( out, U32( value ) ); }
template< class T >
requires std::is_enum_v< T >
void logIn( In & in, T * value ) {
   U32 word;
   logIn( in, &word );
   *value = T( word );
}

/// Writes a value of any type: in the form that the type gives itself, else by its record.
template< class T >
void toLog( Out & out, T const & value ) {
   if constexpr ( requires { logOut( out, value ); } ) {
      logOut( out, value );
   } else {
      GenericIfImpl::recordLogOut( out, &value, *recordOf< T >() );
   }
}
/// Reads what `toLog` has written. Throws AttrLogRecordException or RangeException.
template< class T >
void fromLog( In & in, T * value ) {
   if constexpr ( requires { logIn( in, value ); } ) {
      logIn( in, value );
   } else {
      GenericIfImpl::recordLogIn( in, value, *recordOf< T >() );
   }
}

/// Throws AttrLogRecordException if the record goes on behind its value.
VORN_API void endIs( In & in );
/// A value that ends its record.
template< class T >
T lastOf( In & in ) {
   T value{};
   fromLog( in, &value );
   endIs( in );
   return value;
}

} // namespace NboAttrLog

} // namespace Vorn

/// The constructor by which a value type is read out of an attribute log, as `out << value` writes it. Stands
/// in the class's public part.
#define VORN_FROM_LOG( Type )                                                                                \
   Type( ::Vorn::NboAttrLog::In * in, ::Vorn::StreamBogon ) { ::Vorn::NboAttrLog::fromLog( *in, this ); }
