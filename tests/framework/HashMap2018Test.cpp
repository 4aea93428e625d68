// The node hash map against a plain model, with iterators held across everything that is done to it.

#include "Vorn/HashMap2018.h"

#include "Vorn/VornType.h"

#include <algorithm>
#include <array>
#include <compare>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <rapidcheck.h>
#include <set>
#include <vector>

namespace {

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
VORN_OBJECT_RECORD( Test, Thing, nullptr )

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

/// One random operation. Numbers are taken modulo what exists.
struct Op {
   U32 what;
   U32 number;
   U32 token;
};

void showValue( Op const & op, std::ostream & out ) {
   out << "{ " << op.what << ", " << op.number << ", " << op.token << " }";
}

/// A map, a model of it, and iterators with what they have seen and must still see.
template< class K >
class Model {
 public:
   using Map = typename K::Map;
   using Iterator = typename Map::Iterator;

   explicit Model( U32 numbers ) : numbers_( numbers ), map_( std::make_unique< Map >() ) {}

   void apply( Op const & op ) {
      U32 const number = op.number % numbers_;
      switch ( op.what % 16 ) {
      case 0:
      case 1:
      case 2:
      case 3: put( number, op.token ); break;
      case 4: // a run, which makes buckets grow and split
         for ( U32 i = 0; i < op.token % 60; ++i ) {
            put( ( number + i ) % numbers_, op.token + i );
         }
         break;
      case 5:
      case 6:
      case 7: del( number ); break;
      case 8:
         for ( U32 i = 0; i < op.token % 40; ++i ) {
            del( ( number + i ) % numbers_ );
         }
         break;
      case 9:
         if ( held_.size() < 8 ) hold( Iterator( *map_ ) );
         break;
      case 10: // from a key, there or not
         if ( held_.size() < 8 ) hold( Iterator( *map_, K::key( number ) ), &number );
         break;
      case 11:
      case 12:
         for ( std::size_t i = 0; i < held_.size(); ++i ) {
            if ( ( op.token >> i & 1 ) == 0 ) advance( held_[i] );
         }
         break;
      case 13: // the member on which an iterator stands
         if ( !held_.empty() ) {
            Held const & held = held_[op.token % held_.size()];
            if ( held.it ) del( held.at );
         }
         break;
      case 14: mark( op, number ); break;
      case 15:
         if ( op.token % 8 == 0 ) {
            clear();
         } else if ( !held_.empty() ) {
            Held copy = held_[op.token % held_.size()];
            held_[op.number % held_.size()] = copy;
         }
         break;
      }
   }

   void check() {
      RC_ASSERT( map_->members() == model_.size() );
      for ( U32 number = 0; number < numbers_; number += 1 + numbers_ / 64 ) {
         auto const known = model_.find( number );
         auto const * const node = std::as_const( *map_ )[K::key( number )];
         RC_ASSERT( ( node != nullptr ) == ( known != model_.end() ) );
         if ( node ) RC_ASSERT( node->key() == K::key( number ) && K::holds( *node, known->second.token ) );
      }
      for ( Held const & held : held_ ) {
         if ( held.it ) check( held );
      }
   }

   /// Walks everything, then destroys the map under the iterators.
   void finish() {
      hold( Iterator( *map_ ) );
      for ( Held & held : held_ ) {
         while ( held.it && &held != &held_.front() ) {
            advance( held );
         }
      }
      map_.reset();
      // What a held iterator stands on is still there to be read.
      for ( Held const & held : held_ ) {
         if ( held.it ) RC_ASSERT( held.it->key() == K::key( held.at ) );
      }
      held_.clear();
      RC_ASSERT( Thing::allocTrack().objects() == 0u );
      RC_ASSERT( Map::NodeOps::nodeAllocTrack().objects() == 0u );
      RC_ASSERT( Map::bucketAllocTrack().objects() == 0u && Map::bucketAllocTrack().bytes() == 0u );
   }

 private:
   struct Member {
      U32 token;
      bool marked;
   };
   struct Held {
      Iterator it;
      U32 at;                   // the number whose member it stands on
      std::set< U32 > mustMeet; // members since before it came by, that it has not met
   };
   /// Where a member stands in the order of a walk.
   static auto place( U32 number ) {
      auto const key = K::key( number );
      return std::pair( Vorn::HashKey< typename K::Key >::form( key ).word(), key );
   }

   void put( U32 number, U32 token ) {
      bool const added = K::put( *map_, number, token );
      RC_ASSERT( added == ( model_.count( number ) == 0 ) );
      model_[number].token = token;
   }
   void del( U32 number ) {
      auto const known = model_.find( number );
      U32 const modificationCount = map_->modificationCount();
      auto const gone = map_->del( K::key( number ) );
      RC_ASSERT( gone.has_value() == ( known != model_.end() ) );
      if ( !gone ) return;
      RC_ASSERT( K::holds( *gone, known->second.token ) && map_->modificationCount() != modificationCount );
      model_.erase( known );
      for ( Held & held : held_ ) {
         held.mustMeet.erase( number );
      }
   }
   void clear() {
      map_->delAll();
      model_.clear();
      for ( Held & held : held_ ) {
         held.mustMeet.clear();
      }
   }
   void mark( Op const & op, U32 number ) {
      if ( op.token % 3 == 0 ) {
         map_->vornMarkAllForDeletion();
         for ( auto & member : model_ ) {
            member.second.marked = true;
         }
      } else {
         bool const marked = op.token % 3 == 1;
         map_->vornMarkedForDeletionIs( K::key( number ), marked );
         if ( auto const known = model_.find( number ); known != model_.end() ) known->second.marked = marked;
      }
   }
   void hold( Iterator it, U32 const * from = nullptr ) {
      Held held{ it, 0, {} };
      for ( auto const & member : model_ ) {
         if ( !from || place( member.first ) >= place( *from ) ) held.mustMeet.insert( member.first );
      }
      RC_ASSERT( bool( held.it ) == !held.mustMeet.empty() );
      if ( held.it ) meet( held );
      held_.push_back( std::move( held ) );
   }
   void advance( Held & held ) {
      if ( !held.it ) return;
      U32 const before = held.at;
      held.it.advance();
      if ( !held.it ) {
         RC_ASSERT( held.mustMeet.empty() );
         return;
      }
      meet( held );
      RC_ASSERT( place( before ) < place( held.at ) );
      if ( !held.mustMeet.empty() ) {
         // Nothing that it should have met lies behind it.
         for ( U32 const number : held.mustMeet ) {
            RC_ASSERT( place( held.at ) < place( number ) );
         }
      }
   }
   void meet( Held & held ) {
      auto const known = std::find_if( model_.begin(), model_.end(), [&]( auto const & member ) {
         return K::key( member.first ) == held.it->key();
      } );
      RC_ASSERT( known != model_.end() );
      held.at = known->first;
      held.mustMeet.erase( held.at );
   }
   void check( Held const & held ) {
      auto const known = model_.find( held.at );
      RC_ASSERT( held.it.currNodeMaybeStale()->key() == K::key( held.at ) );
      auto const * const live = held.it.currNodeNonStale();
      RC_ASSERT( live == ( *map_ )[K::key( held.at )] );
      RC_ASSERT( held.it.markedForDeletion() == ( known != model_.end() && known->second.marked ) );
   }

   U32 numbers_;
   std::unique_ptr< Map > map_;
   std::map< U32, Member > model_;
   std::vector< Held > held_;
};

template< class K >
class HashMap2018Model : public testing::Test {};
using Kinds = testing::Types< Offsets, SevenBytes, Wide, OctetSet, Named, Things, ThingsByKey, OneHash,
                              CloseHash, DenseWords >;
TYPED_TEST_SUITE( HashMap2018Model, Kinds );

TYPED_TEST( HashMap2018Model, anyOperations ) {
   EXPECT_TRUE( rc::check( [] {
      U32 const numbers = *rc::gen::element( 12u, 100u, 1000u );
      auto const op = rc::gen::build< Op >( rc::gen::set( &Op::what, rc::gen::inRange( 0u, 16u ) ),
                                            rc::gen::set( &Op::number, rc::gen::inRange( 0u, numbers ) ),
                                            rc::gen::set( &Op::token, rc::gen::inRange( 0u, 1000u ) ) );
      auto const ops = *rc::gen::container< std::vector< Op > >( op );
      Model< TypeParam > model( numbers );
      for ( Op const & each : ops ) {
         model.apply( each );
         model.check();
      }
      model.finish();
   } ) );
}

TYPED_TEST( HashMap2018Model, growsAndEmptiesUnderAWalk ) {
   constexpr U32 num = 1500;
   typename TypeParam::Map map;
   for ( U32 i = 0; i < num; ++i ) {
      ASSERT_TRUE( TypeParam::put( map, i, i ) );
   }
   for ( U32 i = 0; i < num; ++i ) {
      auto const * const node = map[TypeParam::key( i )];
      ASSERT_TRUE( node && TypeParam::holds( *node, i ) ) << i;
   }
   U32 met = 0;
   for ( auto const & node : map ) {
      auto const key = node.key();
      ASSERT_TRUE( map.del( key ) );
      ASSERT_FALSE( map.has( key ) );
      ++met;
   }
   EXPECT_EQ( met, num );
   EXPECT_EQ( map.members(), 0u );
   EXPECT_EQ( TypeParam::Map::bucketAllocTrack().objects(), 0u );
}

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

TEST( HashMap2018, countsAtomicallyWhereAsked ) {
   Vorn::VFPtrInterface::threadSafePointers_ = true;
   {
      Things::Map map;
      for ( U32 i = 0; i < 200; ++i ) {
         Things::put( map, i, i );
      }
      for ( auto const & node : map ) {
         if ( node.key() % 2 ) map.del( node.key() );
      }
      EXPECT_EQ( map.members(), 100u );
   }
   Vorn::VFPtrInterface::threadSafePointers_ = false;
   EXPECT_EQ( Thing::allocTrack().objects(), 0u );
   EXPECT_EQ( Things::Map::bucketAllocTrack().objects(), 0u );
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
