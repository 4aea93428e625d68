// The node hash map beside std::unordered_map (the base of each table) and, where it is installed,
// absl::flat_hash_map: nanoseconds a key, at several numbers of keys, for a number and for an identifier of 6
// octets. The last tables are a message parser's map of offsets: made, filled, read and dropped.

#include "Vorn/HashMap2018.h"

#include <array>
#include <benchmark/benchmark.h>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#if defined( LDP_BENCH_ABSL )
#include <absl/container/flat_hash_map.h>
#endif

namespace {

/// As an LDP identifier: an LSR id and a label space.
struct Identifier {
   std::array< U8, 6 > octets;

   U32 hash() const {
      U32 x = U32( octets[0] ) << 24 | U32( octets[1] ) << 16 | U32( octets[2] ) << 8 | octets[3];
      x = x * 32767 - 1;
      x = ( x ^ ( x >> 12 ) ) * 5;
      x = ( x ^ ( x >> 4 ) ) * 2057;
      return ( x ^ ( x >> 16 ) ) + ( U32( octets[4] ) << 8 | octets[5] );
   }
   friend auto operator<=>( Identifier const &, Identifier const & ) = default;
#if defined( LDP_BENCH_ABSL )
   template< class H >
   friend H AbslHashValue( H state, Identifier const & id ) {
      return H::combine_contiguous( std::move( state ), id.octets.data(), id.octets.size() );
   }
#endif
};

struct IdentifierHash {
   std::size_t operator()( Identifier const & id ) const { return id.hash(); }
};

template< class Key >
Key keyOf( U32 number ) {
   if constexpr ( std::is_same_v< Key, U32 > ) {
      // Looks random, but no two are the same.
      number = ( number ^ ( number >> 16 ) ) * 0x85ebca6bu;
      number = ( number ^ ( number >> 13 ) ) * 0xc2b2ae35u;
      return number ^ ( number >> 16 );
   } else {
      return { { 10, U8( number >> 16 ), U8( number >> 8 ), U8( number ), 0, 0 } };
   }
}

// One face for the three maps.

template< class Key >
struct Ours {
   Vorn::HashMap2018< Ours, Key, U32 > map;

   void put( Key const & key, U32 value ) { map.valueIs( key, value ); }
   U32 get( Key const & key ) const {
      auto const * const node = map[key];
      return node ? node->value() : 0;
   }
   void del( Key const & key ) { map.del( key ); }
   U32 sum() const {
      U32 sum = 0;
      for ( auto const & node : map ) {
         sum += node.value();
      }
      return sum;
   }
};

template< class Map >
struct Theirs {
   Map map;

   template< class Key >
   void put( Key const & key, U32 value ) {
      map.insert_or_assign( key, value );
   }
   template< class Key >
   U32 get( Key const & key ) const {
      auto const at = map.find( key );
      return at != map.end() ? at->second : 0;
   }
   template< class Key >
   void del( Key const & key ) {
      map.erase( key );
   }
   U32 sum() const {
      U32 sum = 0;
      for ( auto const & [key, value] : map ) {
         sum += value;
      }
      return sum;
   }
};

/// The numbers from 0 up in an order that no map can guess.
std::vector< U32 > shuffled( std::size_t num ) {
   std::vector< U32 > numbers( num );
   std::iota( numbers.begin(), numbers.end(), 0u );
   std::shuffle( numbers.begin(), numbers.end(), std::mt19937( 1 ) );
   return numbers;
}

template< class Key >
std::vector< Key > keysOf( std::vector< U32 > const & numbers ) {
   std::vector< Key > keys;
   for ( U32 const number : numbers ) {
      keys.push_back( keyOf< Key >( number ) );
   }
   return keys;
}

template< class Key, class Map >
void fill( Map & map, std::vector< Key > const & keys ) {
   for ( U32 i = 0; i < keys.size(); ++i ) {
      map.put( keys[i], i );
   }
}

template< class Key, class Map >
void lookup( benchmark::State & state, std::size_t num ) {
   Map map;
   auto const keys = keysOf< Key >( shuffled( num ) );
   fill( map, keys );
   auto wanted = keys;
   std::shuffle( wanted.begin(), wanted.end(), std::mt19937( 2 ) );
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      for ( Key const & key : wanted ) {
         benchmark::DoNotOptimize( map.get( key ) );
      }
   }
}

template< class Key, class Map >
void miss( benchmark::State & state, std::size_t num ) {
   Map map;
   fill( map, keysOf< Key >( shuffled( num ) ) );
   auto numbers = shuffled( num );
   for ( U32 & number : numbers ) {
      number += U32( num );
   }
   auto const absent = keysOf< Key >( numbers );
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      for ( Key const & key : absent ) {
         benchmark::DoNotOptimize( map.get( key ) );
      }
   }
}

/// Fills a new map and drops it.
template< class Key, class Map >
void insert( benchmark::State & state, std::size_t num ) {
   auto const keys = keysOf< Key >( shuffled( num ) );
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      Map map;
      fill( map, keys );
      benchmark::DoNotOptimize( map );
   }
}

/// Each key goes and comes back, in a full map.
template< class Key, class Map >
void erase( benchmark::State & state, std::size_t num ) {
   Map map;
   auto const keys = keysOf< Key >( shuffled( num ) );
   fill( map, keys );
   auto wanted = keys;
   std::shuffle( wanted.begin(), wanted.end(), std::mt19937( 2 ) );
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      for ( Key const & key : wanted ) {
         map.del( key );
         map.put( key, 1 );
      }
   }
}

template< class Key, class Map >
void walk( benchmark::State & state, std::size_t num ) {
   Map map;
   fill( map, keysOf< Key >( shuffled( num ) ) );
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      benchmark::DoNotOptimize( map.sum() );
   }
}

/// A message's offsets: indices from 0 up, each looked up once.
template< class Map >
void message( benchmark::State & state, std::size_t num ) {
   for ( auto _ : state ) {
      Map map;
      for ( U32 i = 0; i < num; ++i ) {
         map.put( i, 4 * i );
      }
      U32 sum = 0;
      for ( U32 i = 0; i < num; ++i ) {
         sum += map.get( i );
      }
      benchmark::DoNotOptimize( sum );
   }
}

using Case = void ( * )( benchmark::State &, std::size_t );

void enter( std::string const & group, char const * map, Case run, std::size_t num ) {
   auto const name = group + " " + std::to_string( num ) + "/" + map;
   benchmark::RegisterBenchmark( name.c_str(), [=]( benchmark::State & state ) { run( state, num ); } )
        ->MinTime( 0.05 )
        ->Repetitions( 3 );
}

template< class Key >
using Std = Theirs< std::unordered_map<
     Key, U32, std::conditional_t< std::is_same_v< Key, U32 >, std::hash< U32 >, IdentifierHash > > >;

template< class Key >
void enterAll( char const * keyName ) {
   for ( std::size_t const num : { 10u, 1000u, 100000u, 1000000u } ) {
      auto const each = [&]( char const * work, Case base, Case ours, [[maybe_unused]] Case absl ) {
         std::string const group = std::string( work ) + " " + keyName;
         enter( group, "std::unordered_map", base, num );
         enter( group, "Vorn::HashMap2018", ours, num );
#if defined( LDP_BENCH_ABSL )
         enter( group, "absl::flat_hash_map", absl, num );
#endif
      };
#if defined( LDP_BENCH_ABSL )
      using Absl = Theirs< absl::flat_hash_map< Key, U32 > >;
#else
      using Absl = Std< Key >;
#endif
      each( "lookup", lookup< Key, Std< Key > >, lookup< Key, Ours< Key > >, lookup< Key, Absl > );
      each( "miss", miss< Key, Std< Key > >, miss< Key, Ours< Key > >, miss< Key, Absl > );
      each( "insert", insert< Key, Std< Key > >, insert< Key, Ours< Key > >, insert< Key, Absl > );
      each( "erase", erase< Key, Std< Key > >, erase< Key, Ours< Key > >, erase< Key, Absl > );
      each( "walk", walk< Key, Std< Key > >, walk< Key, Ours< Key > >, walk< Key, Absl > );
   }
}

bool const entered = [] {
   enterAll< U32 >( "U32" );
   enterAll< Identifier >( "identifier" );
   for ( std::size_t const num : { 2u, 3u, 8u, 30u } ) {
      enter( "message", "std::unordered_map", message< Std< U32 > >, num );
      enter( "message", "Vorn::HashMap2018", message< Ours< U32 > >, num );
#if defined( LDP_BENCH_ABSL )
      enter( "message", "absl::flat_hash_map", message< Theirs< absl::flat_hash_map< U32, U32 > > >, num );
#endif
   }
   return true;
}();

} // namespace
