// The node hash map against a plain model, with iterators held across everything that is done to it.

#include "AnyOperations.h"

#include "HashMap2018Kinds.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace Test {
namespace {

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
      RC_ASSERT( bool( gone ) == ( known != model_.end() ) );
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
   anyOperations< Model< TypeParam > >( 16, { 12, 100, 1000 } );
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

} // namespace
} // namespace Test
