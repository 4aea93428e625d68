// What the node hash map promises beside being a map: layout, memory, lifetimes, limits, its record.

#include "HashMap2018Kinds.h"

#include "Vorn/VornType.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace Test {

VORN_OBJECT_RECORD( Test, Thing, nullptr )

namespace {

TEST( HashMap2018, emptyMapTakesNoMemory ) {
   Offsets::Map map;
   EXPECT_EQ( map.members(), 0u );
   EXPECT_EQ( map[1], nullptr );
   EXPECT_EQ( map.value( 1 ), 0u );
   EXPECT_FALSE( map.del( 1 ) );
   EXPECT_TRUE( !map.begin() );
   EXPECT_EQ( map.bucketAllocTrack().objects(), 0u );
   for ( U32 i = 0; i < 4; ++i ) {
      map.valueIs( i, 10 + i );
   }
   EXPECT_EQ( map.bucketAllocTrack().objects(), 1u );
   EXPECT_EQ( Offsets::Map::NodeOps::nodeAllocTrack().objects(), 4u );
}

TEST( HashMap2018, memoryFollowsTheMembers ) {
   Things::Map map;
   auto const bytes = [] {
      return Things::Map::bucketAllocTrack().bytes() + Things::Map::NodeOps::nodeAllocTrack().bytes();
   };
   auto const fill = [&]( U32 num ) {
      for ( U32 i = 0; i < num; ++i ) {
         Things::put( map, i, i );
      }
   };
   fill( 100 );
   U64 const atHundred = bytes();
   fill( 20000 );
   EXPECT_LE( bytes(), 20000u * 40 );
   auto it = map.begin();
   map.vornMarkedForDeletionIs( 50, true );
   for ( U32 i = 100; i < 20000; ++i ) {
      map.del( i );
   }
   U32 met = 0;
   for ( ; it; it.advance() ) {
      EXPECT_EQ( it.markedForDeletion(), it->key() == 50 );
      ++met;
   }
   EXPECT_GE( met, 100u );
   EXPECT_LE( met, 101u ); // the first one, on which it stood
   EXPECT_LE( bytes(), 4 * atHundred );
   for ( U32 i = 0; i < 100; ++i ) {
      ASSERT_TRUE( map.value( i )->token() == i );
   }
}

TEST( HashMap2018, bucketLayout ) {
   SevenBytes::Map map;
   for ( U32 i = 0; i < 40; ++i ) {
      SevenBytes::put( map, i, 0 );
      auto const it = map.begin();
      auto const * const first = reinterpret_cast< char const * >( it.currNodeMaybeStale() );
      ASSERT_EQ( reinterpret_cast< std::uintptr_t >( first ) % 8, 0u );
      U32 header;
      std::memcpy( &header, first - 4, 4 );
      U32 const capacity = header >> 4 & 0x3fff;
      U32 const used = header >> 18;
      ASSERT_EQ( header & 15, 2u ); // the map's reference and the iterator's
      ASSERT_LE( used, capacity );
      // The words stand at the start of the block, ascending.
      auto const * const block = first - ( ( ( capacity * 4 + 11 ) & ~7u ) );
      std::vector< U32 > words( used );
      std::memcpy( words.data(), block, used * 4 );
      ASSERT_TRUE( std::is_sorted( words.begin(), words.end() ) );
      ASSERT_EQ( words[0], Vorn::HashKey< Octets >::form( it->key() ).word() );
   }
}

TEST( HashMap2018, wordsOfNumbersSpread ) {
   // 16384 keys over 2048 buckets: none may run over its 16 slots, and the first indices are appended.
   U32( *const keys[] )
   ( U32 ) = {
      []( U32 i ) { return i; },
      []( U32 i ) { return i << 4; },
      []( U32 i ) { return i << 12; },
      []( U32 i ) { return i << 18; },
      []( U32 i ) { return i * 1000; },
      []( U32 i ) { return 0x0a000000 + i; },
      []( U32 i ) { return 0x0a000001 + ( i << 8 ); },
      []( U32 i ) { return __builtin_bswap32( 0x0a000000 + i ); },
      []( U32 i ) { return __builtin_bswap32( 0x0a000001 + ( i << 8 ) ); },
   };
   for ( auto const key : keys ) {
      std::vector< U32 > buckets( 2048 );
      for ( U32 i = 0; i < 16384; ++i ) {
         ++buckets[Vorn::HashHelper::KeyU32( key( i ) ).word() >> 21];
      }
      EXPECT_LE( *std::max_element( buckets.begin(), buckets.end() ), 16u ) << key( 1 );
   }
   for ( U32 i = 1; i < 32; ++i ) {
      EXPECT_LT( Vorn::HashHelper::KeyU32( i - 1 ).word(), Vorn::HashHelper::KeyU32( i ).word() );
   }
}

TEST( HashMap2018, markAndSweep ) {
   Things::Map map;
   for ( U32 i = 0; i < 100; ++i ) {
      Things::put( map, i, i );
   }
   map.vornMarkAllForDeletion();
   for ( U32 i = 0; i < 100; i += 3 ) {
      map.vornMarkedForDeletionIs( i, false );
   }
   Things::put( map, 200, 0 ); // new, so not marked
   map.vornMarkedForDeletionIs( 300, true );
   for ( auto it = map.begin(); it; it.advance() ) {
      if ( it.markedForDeletion() ) map.del( it->key() );
   }
   EXPECT_EQ( map.members(), 35u );
   EXPECT_TRUE( map.has( 99 ) && map.has( 200 ) && !map.has( 1 ) );
   EXPECT_EQ( Thing::allocTrack().objects(), 35u );
}

TEST( HashMap2018, assignedIteratorGoesOnWhereTheOtherStood ) {
   Vorn::HashMap2018< Owner, U32, U32 > map;
   map.valueIs( 7, 0 );
   auto const early = map.begin();
   for ( U32 i = 0; i < 500; ++i ) {
      map.valueIs( i, i );
   }
   auto it = map.begin();
   it = early; // stands in a bucket that is no longer the map's
   decltype( it ) other( map, 7 );
   for ( ; it && other; it.advance(), other.advance() ) {
      EXPECT_EQ( it->key(), other->key() );
   }
   EXPECT_TRUE( !it && !other );
   EXPECT_FALSE( it.markedForDeletion() );

   // Nor does it meet what has gone since.
   Vorn::HashMap2018< Owner, U32, U32 > pair;
   pair.valueIs( 1, 0 );
   pair.valueIs( 2, 0 );
   auto const stale = pair.begin();
   pair.del( 3 - stale->key() );
   it = pair.begin();
   it = stale;
   it.advance();
   EXPECT_FALSE( it );
}

TEST( HashMap2018, deletedValueDiesWithTheLastLook ) {
   Things::Map map;
   Things::put( map, 1, 1 );
   Things::put( map, 2, 2 );
   auto it = map.begin();
   Things::put( map, it->key(), 7 ); // overwritten in place
   EXPECT_EQ( it->value()->token(), 7u );
   EXPECT_EQ( Thing::allocTrack().objects(), 2u );
   map.del( it->key() );
   EXPECT_EQ( it->value()->token(), 7u );
   EXPECT_EQ( it.currNodeNonStale(), nullptr );
   EXPECT_EQ( Thing::allocTrack().objects(), 2u );
   it.advance();
   EXPECT_EQ( Thing::allocTrack().objects(), 1u );
   it.advance();
   EXPECT_TRUE( !it );
}

/// Looks at the map that holds it, and writes to it, from its destructor.
class Restless : public Vorn::PtrInterface {
   VORN_OBJECT( Restless )

 public:
   using Map = Vorn::HashMap2018< Owner, U32, Ptr< Restless > >;
   Restless( Map & map, U32 key ) : map_( map ), key_( key ) {}
   ~Restless() override {
      EXPECT_FALSE( map_.has( key_ ) );
      if ( key_ < 1000 ) map_.valueIs( key_ + 1000, new Restless( map_, key_ + 1000 ) );
   }

 private:
   Map & map_;
   U32 key_;
};
VORN_OBJECT_RECORD( Test, Restless, nullptr )

TEST( HashMap2018, destructorsMayUseTheMap ) {
   {
      Restless::Map map;
      for ( U32 i = 0; i < 100; ++i ) {
         map.valueIs( i, new Restless( map, i ) );
      }
      map.del( 3 );
      EXPECT_TRUE( map.has( 1003 ) );
      for ( auto const & node : map ) {
         if ( node.key() % 2 ) map.del( node.key() );
      }
      map.delAll();
      EXPECT_TRUE( map.has( 1002 ) );
   }
   EXPECT_EQ( Restless::allocTrack().objects(), 0u );
}

TEST( HashMap2018, crowdedWordsSplitWhenTheyMust ) {
   // These agree in so many bits that one bucket takes them all, up to what a bucket can hold.
   Kind< Chosen< denseWords >, U32 >::Map map;
   for ( U32 i = 0; i < 40000; ++i ) {
      map.valueIs( { i }, i );
   }
   for ( U32 i = 0; i < 40000; ++i ) {
      ASSERT_EQ( map.value( { i } ), i );
   }
}

TEST( HashMap2018DeathTest, limits ) {
   Kind< Chosen< noHash >, void >::Map map;
   for ( U32 i = 0; i < 16383; ++i ) {
      map.keyIs( { 16383 - i } ); // each in front
   }
   EXPECT_TRUE( map.has( { 16383 } ) && map.has( { 1 } ) );
   EXPECT_DEATH( map.keyIs( { 0 } ), "bucketSlots <= 16383" );
   auto const it = map.begin();
   std::vector const more( 13, it );
   EXPECT_EQ( more.back()->key().number, 1u );
   EXPECT_DEATH( map.begin(), "bucketReferences <= 15" );
}

TEST( HashMap2018DeathTest, assertions ) {
   alignas( 8 ) char nodes[64] = {};
   auto const shiftTwo = [&]( auto const & vt ) { vt.shift( vt, nodes, nullptr, 1, 0, 2 ); };
   EXPECT_DEATH( shiftTwo( Offsets::Map::vt_ ), "slotsToShift == 1" );
   EXPECT_DEATH( shiftTwo( Things::Map::vt_ ), "slotsToShift == 1" );

   ThingsByKey::Map map;
   map.valueIs( new Thing( 1, 0 ) );
   map.valueIs( new Thing( 1, 5 ) );
   EXPECT_EQ( map[1]->value()->token(), 5u );
   EXPECT_DEATH( map[1]->valueIs( new Thing( 2, 0 ) ), "fwkKey\\(\\) == KeyFunktor\\(\\)\\( _value \\)" );
}

TEST( HashMap2018, recordOfAMap ) {
   auto const & vt = SevenBytes::Map::vt_;
   EXPECT_EQ( vt.nodeAlign, 1u );
   EXPECT_EQ( vt.nodeSize, 7u );
   EXPECT_EQ( vt.null, nullptr );
   EXPECT_EQ( vt.place, &Vorn::HashMap2018Generic::trivialPlace );
   EXPECT_EQ( vt.shift, &Vorn::HashMap2018Generic::trivialShift );
   EXPECT_NE( Things::Map::vt_.shift, &Vorn::HashMap2018Generic::trivialShift );

   // Placing by move clears the source, by copy it does not.
   auto const & things = Things::Map::vt_;
   Things::Node source( 1, new Thing( 1, 1 ) );
   alignas( Things::Node ) char slots[2][sizeof( Things::Node )];
   things.place( things, slots[0], &source, Vorn::HashMap2018VTable::copy );
   EXPECT_EQ( source.value()->references(), 2u );
   things.place( things, slots[1], &source, Vorn::HashMap2018VTable::move );
   EXPECT_TRUE( !source.value() );
   auto & placed = *reinterpret_cast< Things::Node * >( slots[1] );
   EXPECT_EQ( placed.value()->references(), 2u );

   Vorn::HashHelper::KeyU32 const one( 1 ), two( 2 );
   EXPECT_EQ( things.compareOrLruUnlink( &one, nullptr, &placed ), 0u );
   EXPECT_EQ( things.compareOrLruUnlink( &two, nullptr, &placed ), 2u );
   EXPECT_EQ( things.compareOrLruUnlink( nullptr, &placed, &placed ), 0u );
   std::destroy_at( reinterpret_cast< Things::Node * >( slots[0] ) );
   std::destroy_at( &placed );
}

} // namespace
} // namespace Test
