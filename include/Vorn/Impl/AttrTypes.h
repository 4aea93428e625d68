/// \file
/// What types attributes and keys have, how they are passed, and what their lines are checked for.
#pragma once

#include "Vorn/Hash.h"
#include "Vorn/Impl/HashHelper.h"
#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Notifiee.h"
#include "Vorn/Strep.h"
#include "Vorn/VornType.h"

#include <tuple>

namespace Vorn {

/// How a value is passed: small plain ones by value, others by reference.
template< class T >
using Arg =
     std::conditional_t< std::is_trivially_copyable_v< T > && sizeof( T ) <= sizeof( void * ), T, T const & >;

/// Stands between a field and the default behind its line: `Type field = Default< Type >{} = value;`. Where
/// none is given, the field is `Type{}`.
template< class T >
struct Default {
   constexpr T operator=( T const & value ) const { return value; }
   constexpr operator T() const { return T{}; }
};

/// A type that depends on an argument of a function template.
template< class T, class >
struct WhenUsed {
   using Type = T;
};

/// What a counted pointer, or the pointer to a view, points to; anything else is itself.
template< class T >
struct Pointee {
   using Type = T;
};
template< class T >
struct Pointee< Ptr< T > > {
   using Type = std::remove_const_t< T >;
};
template< class T >
struct Pointee< T const * > {
   using Type = T;
};

/// Whether an attribute can have the type: a reference, or one with a record.
template< class T >
inline constexpr bool isAttrType = Recorded< T > || !std::is_same_v< T, typename Pointee< T >::Type >;
/// Whether a type can be a key.
template< class T >
inline constexpr bool isAttrKey = Recorded< T > && requires( T const & key ) {
   HashKey< T >::form( key );
   { key == key } -> std::convertible_to< bool >;
   { key < key } -> std::convertible_to< bool >;
};
/// What a line goes on with. One that has the wrong type gives an error and takes it for a number from there
/// on, so that the error remains the only one.
template< class T >
using AttrType = std::conditional_t< isAttrType< T >, T, U32 >;
template< class T >
using AttrKey = std::conditional_t< isAttrKey< T >, T, U32 >;

/// What the last word of an attribute line says.
constexpr bool isReplicationWord( std::string_view word ) { return word == "replicated" || word == "local"; }
constexpr VornReplication replicationOf( std::string_view word ) {
   return word == "replicated" ? replicated : local;
}

} // namespace Vorn
