// The kinds of node hash map under test: sizes and alignments of nodes, owned and counted values, keys beside
// and inside the value, and keys whose hashes are as bad as can be.
#pragma once

#include "Vorn/HashMap2018.h"

#include <array>
#include <compare>

namespace Test {

using Vorn::Ptr;
using Vorn::String;

struct Owner {};

/// A counted object, as a reference collection holds it.
class Thing : public Vorn::PtrInterface {
   VORN_OBJECT( Thing )

 public:
   explicit Thing( U32 key, U32 token ) : key_( key ), token_( token ) {}
   U32 key() const { return key_; }
   U32 token() const { return token_; }

 private:
   U32 key_;
   U32 token_;
};

/// A key of 6 octets without alignment.
struct Octets {
   std::array< U8, 6 > octets{};
   U32 hash() const { return Vorn::hashBytes( octets.data(), octets.size() ); }
   friend auto operator<=>( Octets const &, Octets const & ) = default;
};

/// A key whose hash is what the test wants.
template< U32 ( *hashOf )( U32 ) >
struct Chosen {
   U32 number = 0;
   U32 hash() const { return hashOf( number ); }
   friend auto operator<=>( Chosen const &, Chosen const & ) = default;
};
constexpr U32 noHash( U32 ) { return 7; }
/// Four words, and the words of a group next to each other: they differ in the last bits only.
constexpr U32 closeHash( U32 number ) { return number << 30; }
/// Words ascend from 0, so many keys agree in all the bits that a directory would look at.
constexpr U32 denseWords( U32 number ) { return Vorn::bitReverse( number << 1 ); }

struct ThingKey {
   U32 operator()( Ptr< Thing > const & thing ) const { return thing->key(); }
};

// The kinds of map under test: how a number becomes a key, a token a value, and how a node is read.

template< class KeyType, class ValueType, class KeyFunktor = void >
struct Kind {
   using Key = KeyType;
   using Map = Vorn::HashMap2018< Owner, Key, ValueType, KeyFunktor >;
   using Node = typename Map::Node;

   static Key key( U32 number ) {
      if constexpr ( std::is_same_v< Key, Octets > ) {
         return { { U8( number >> 8 ), 0, U8( number ), 1, 2, 3 } };
      } else if constexpr ( std::is_same_v< Key, String > ) {
         return number ? Vorn::format( "key %u", number ) : String();
      } else {
         return Key{ number };
      }
   }
   static bool put( Map & map, U32 number, U32 token ) {
      if constexpr ( !std::is_void_v< KeyFunktor > ) {
         return map.valueIs( ValueType( new Thing( number, token ) ) );
      } else if constexpr ( std::is_void_v< ValueType > ) {
         return map.keyIs( key( number ) );
      } else if constexpr ( std::is_same_v< ValueType, Ptr< Thing > > ) {
         return map.valueIs( key( number ), new Thing( number, token ) );
      } else if constexpr ( std::is_same_v< ValueType, String > ) {
         return map.valueIs( key( number ), Vorn::format( "%u", token ) );
      } else {
         return map.valueIs( key( number ), ValueType( token ) );
      }
   }
   static bool holds( Node const & node, U32 token ) {
      if constexpr ( std::is_void_v< ValueType > ) {
         return true;
      } else if constexpr ( std::is_same_v< ValueType, Ptr< Thing > > ) {
         return node.value()->token() == token;
      } else if constexpr ( std::is_same_v< ValueType, String > ) {
         return node.value() == Vorn::format( "%u", token );
      } else {
         return node.value() == ValueType( token );
      }
   }
};

using Offsets = Kind< U32, U32 >;
using SevenBytes = Kind< Octets, bool >;
using Wide = Kind< U64, U64 >;
using OctetSet = Kind< Octets, void >;
using Named = Kind< String, String >;
using Things = Kind< U32, Ptr< Thing > >;
using ThingsByKey = Kind< U32, Ptr< Thing >, ThingKey >;
using OneHash = Kind< Chosen< noHash >, Ptr< Thing > >;
using CloseHash = Kind< Chosen< closeHash >, U32 >;
using DenseWords = Kind< Chosen< denseWords >, String >;

static_assert( sizeof( SevenBytes::Node ) == 7 && alignof( SevenBytes::Node ) == 1 );
static_assert( sizeof( OctetSet::Node ) == 6 && alignof( Wide::Node ) == 8 );
static_assert( sizeof( Offsets::Map ) == 3 * sizeof( void * ) );

} // namespace Test
