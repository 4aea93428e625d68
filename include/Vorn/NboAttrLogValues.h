/// \file
/// How values are laid down in the attribute log: fixed widths, big-endian, composites field by field in the
/// order of their attributes. A type of its own form gives `logOut` and `logIn` in its namespace; the two
/// mirror each other.
#pragma once

#include "Vorn/Exception.h"

#include <concepts>
#include <type_traits>

namespace Vorn::NboAttrLog {

class In;
class Out;

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

} // namespace Vorn::NboAttrLog
