/// \file
/// Streams of the attribute log: put together octet by octet, and taken apart.
#pragma once

#include "Vorn/NboAttrLog.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Test {

using Octets = std::vector< U8 >;

inline Octets operator+( Octets a, Octets const & b ) {
   a.insert( a.end(), b.begin(), b.end() );
   return a;
}
inline Octets number( U32 value ) {
   return { U8( value >> 24 ), U8( value >> 16 ), U8( value >> 8 ), U8( value ) };
}
inline Octets text( std::string const & octets ) { return Octets( octets.begin(), octets.end() ); }
inline Octets counted( std::string const & octets ) {
   return number( U32( octets.size() ) ) + text( octets );
}
inline Octets record( U8 kind, U32 entity, U32 attribute, Octets const & value ) {
   return number( U32( value.size() ) + 11 ) + Octets{ kind } + number( entity ) + number( attribute ) +
          Octets{ 0 } + value + Octets{ 2 };
}

inline Octets const header{ 'V', 'N', 'A', 'L', 0, 1, 0, 0 };
/// A tree, 1, with branch 2, and age 7.
inline Octets const good =
     header + record( 2, 0, 1, text( "Test::Tree" ) ) + record( 2, 0, 2, text( "Test::Branch" ) ) +
     record( 2, 0, 3, text( "Test::Twig" ) ) +
     record( 3, 0, 0x88,
             Octets{ 0 } + number( 1 ) + Octets{ 2 } + counted( "tree" ) + Octets{ 3 } + number( 1 ) ) +
     record( 3, 1, 0x108, counted( "branch" ) + number( 2 ) + number( 2 ) ) + record( 0, 1, 0x105, { 7 } );
/// The arguments of a twig.
inline Octets const twig = number( 5 ) + counted( "oak" ) + Octets{ 0, 9 };

/// The values of all records in what a log has written: what stands between their tokens, with the head.
struct Record {
   U8 kind;
   U32 entity;
   U32 attribute;
   std::vector< U8 > value;
   friend bool operator==( Record const &, Record const & ) = default;
};

inline U32 word( U8 const * at ) {
   return U32( at[0] ) << 24 | U32( at[1] ) << 16 | U32( at[2] ) << 8 | at[3];
}

inline std::vector< Record > records( std::vector< U8 > const & octets, std::size_t from = 0 ) {
   std::vector< Record > all;
   for ( U8 const * at = octets.data() + from; at != octets.data() + octets.size(); ) {
      U32 const length = word( at );
      U8 const * const value = at + 4 + Vorn::NboAttrLog::Out::recordHeadBytes;
      U8 const * const end = at + 4 + length;
      EXPECT_EQ( 0, value[-1] ) << "a value begins with token 0";
      EXPECT_EQ( 2, end[-1] ) << "and ends with token 2";
      all.push_back( { at[4], word( at + 5 ), word( at + 9 ), { value, end - 1 } } );
      at = end;
   }
   return all;
}

} // namespace Test
