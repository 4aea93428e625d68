// The hash maps beside std::unordered_map (the base of each table) and, where it is installed,
// absl::flat_hash_map: nanoseconds a key, at several numbers of keys, for a number and for an LDP identifier.
// The map of values holds a number beside the key. The map of entities is beside a map of pointers to
// structs. The last tables are a message parser's map of offsets: made, filled, read and dropped.

#include "Ldp/LdpIdentifier.h"
#include "Vorn/Attributes.h"

#include <benchmark/benchmark.h>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#if defined( LDP_BENCH_ABSL )
#include <absl/container/flat_hash_map.h>
#endif

namespace Bench {

using Ldp::LdpIdentifier;

struct IdentifierHash {
   std::size_t operator()( LdpIdentifier const & id ) const { return id.hash(); }
};

template< class Key >
Key keyOf( U32 number ) {
   if constexpr ( std::is_same_v< Key, U32 > ) {
      // Looks random, but no two are the same.
      number = ( number ^ ( number >> 16 ) ) * 0x85ebca6bu;
      number = ( number ^ ( number >> 13 ) ) * 0xc2b2ae35u;
      return number ^ ( number >> 16 );
   } else {
      return LdpIdentifier( 0x0a000000 + number, 0 );
   }
}

/// The entities with the two keys.
class Numbered : public Vorn::Entity {
   VORN_ENTITY( Numbered, Vorn::Entity )

 public:
   explicit Numbered( U32 number ) : number_( number ) {}

   VORN_KEY( 0x102, U32, number );
   VORN_MUTABLE( 0x103, U32, value, Value, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_RECORD( Bench, Numbered )

class Identified : public Vorn::Entity {
   VORN_ENTITY( Identified, Vorn::Entity )

 public:
   explicit Identified( LdpIdentifier const & id ) : id_( id ) {}

   VORN_KEY( 0x102, LdpIdentifier, id );
   VORN_MUTABLE( 0x103, U32, value, Value, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_RECORD( Bench, Identified )

namespace {

// One face for all maps.

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

template< class Key >
struct OursOfEntities {
   using Member = std::conditional_t< std::is_same_v< Key, U32 >, Numbered, Identified >;
   Vorn::HashMap< OursOfEntities, Member, Key > map;

   void put( Key const & key, U32 value ) {
      U32 const hash = Vorn::keyHash( key );
      Vorn::Ptr< Member > member( map.member( key, hash ) );
      if ( !member ) {
         member = Vorn::newObject< Member >( key );
         map.newMember( *member, hash );
      }
      member->valueIs( value );
   }
   U32 get( Key const & key ) const {
      auto const * const member = map.member( key );
      return member ? member->value() : 0;
   }
   void del( Key const & key ) {
      U32 const hash = Vorn::keyHash( key );
      if ( auto * const member = map.member( key, hash ) ) map.del( *member, hash );
   }
   U32 sum() const {
      U32 sum = 0;
      for ( auto const & member : map ) {
         sum += member.value();
      }
      return sum;
   }
};

/// A member of the maps of pointers.
struct Struct {
   U32 value = 0;
};

template< class Map >
struct Theirs {
   Map map;

   static constexpr bool pointers = !std::is_same_v< typename Map::mapped_type, U32 >;

   template< class Key >
   void put( Key const & key, U32 value ) {
      if constexpr ( pointers ) {
         auto & member = map[key];
         if ( !member ) member = std::make_unique< Struct >();
         member->value = value;
      } else {
         map.insert_or_assign( key, value );
      }
   }
   template< class Key >
   U32 get( Key const & key ) const {
      auto const at = map.find( key );
      return at != map.end() ? number( at->second ) : 0;
   }
   template< class Key >
   void del( Key const & key ) {
      map.erase( key );
   }
   U32 sum() const {
      U32 sum = 0;
      for ( auto const & [key, value] : map ) {
         sum += number( value );
      }
      return sum;
   }

 private:
   static U32 number( typename Map::mapped_type const & value ) {
      if constexpr ( pointers ) {
         return value->value;
      } else {
         return value;
      }
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

void enter( std::string const & group, char const * map, void ( *run )( benchmark::State &, std::size_t ),
            std::size_t num ) {
   auto const name = group + " " + std::to_string( num ) + "/" + map;
   benchmark::RegisterBenchmark( name.c_str(), [=]( benchmark::State & state ) { run( state, num ); } )
        ->MinTime( 0.05 )
        ->Repetitions( 3 );
}

/// All that a map is asked to do.
template< class Key, class Map >
void enterMap( std::string const & what, char const * map, std::size_t num ) {
   enter( "lookup " + what, map, lookup< Key, Map >, num );
   enter( "miss " + what, map, miss< Key, Map >, num );
   enter( "insert " + what, map, insert< Key, Map >, num );
   enter( "erase " + what, map, erase< Key, Map >, num );
   enter( "walk " + what, map, walk< Key, Map >, num );
}

template< class Key >
using Hash = std::conditional_t< std::is_same_v< Key, U32 >, std::hash< U32 >, IdentifierHash >;
template< class Key, class Value >
using Std = Theirs< std::unordered_map< Key, Value, Hash< Key > > >;

#if defined( LDP_BENCH_ABSL )
/// Its own hash; that of an identifier would leave out the bits that it looks at first.
struct AbslHash {
   std::size_t operator()( U32 number ) const { return absl::HashOf( number ); }
   std::size_t operator()( LdpIdentifier const & id ) const {
      return absl::HashOf( id.lsrId(), id.lblSpace() );
   }
};
template< class Key, class Value >
using Absl = Theirs< absl::flat_hash_map< Key, Value, AbslHash > >;
#endif

template< class Key >
void enterAll( char const * keyName ) {
   using Pointer = std::unique_ptr< Struct >;
   std::string const values = std::string( keyName ) + " value";
   std::string const members = std::string( keyName ) + " entity";
   for ( std::size_t const num : { 10u, 1000u, 100000u, 1000000u } ) {
      enterMap< Key, Std< Key, U32 > >( values, "std::unordered_map", num );
      enterMap< Key, Ours< Key > >( values, "Vorn::HashMap2018", num );
#if defined( LDP_BENCH_ABSL )
      enterMap< Key, Absl< Key, U32 > >( values, "absl::flat_hash_map", num );
#endif
      enterMap< Key, Std< Key, Pointer > >( members, "std::unordered_map", num );
      enterMap< Key, OursOfEntities< Key > >( members, "Vorn::HashMap", num );
#if defined( LDP_BENCH_ABSL )
      enterMap< Key, Absl< Key, Pointer > >( members, "absl::flat_hash_map", num );
#endif
   }
}

bool const entered = [] {
   enterAll< U32 >( "U32" );
   enterAll< LdpIdentifier >( "LdpIdentifier" );
   for ( std::size_t const num : { 2u, 3u, 8u, 30u } ) {
      enter( "message", "std::unordered_map", message< Std< U32, U32 > >, num );
      enter( "message", "Vorn::HashMap2018", message< Ours< U32 > >, num );
#if defined( LDP_BENCH_ABSL )
      enter( "message", "absl::flat_hash_map", message< Absl< U32, U32 > >, num );
#endif
   }
   return true;
}();

} // namespace
} // namespace Bench
