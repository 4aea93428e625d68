// The ordered map against a plain model, with iterators held across everything that is done to it.

#include "AnyOperations.h"

#include "Vorn/RbTreeMap.h"

#include "Vorn/String.h"
#include "Vorn/VornType.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <vector>

namespace {

struct Owner {};
using Map = Vorn::RbTreeMap< Owner, U32, Vorn::String >;

/// A map that can look at its own tree.
class Tree : public Map {
 public:
   /// Longest way from the root to a leaf, in nodes.
   U32 height() const { return height( root() ); }

 private:
   static U32 height( NodeBase const * node ) {
      return node ? 1 + std::max( height( child( node, lesser ) ), height( child( node, greater ) ) ) : 0;
   }
};

Vorn::String text( U32 token ) { return Vorn::format( "%u", token ); }

class Model {
 public:
   explicit Model( U32 ) {}

   void apply( ::Test::Op const & op ) {
      switch ( op.what ) {
      case 0:
      case 1:
      case 2: put( op.number, op.token ); break;
      case 3:
         for ( U32 i = 0; i < op.token % 64; ++i ) {
            put( op.number + i, op.token );
         }
         break;
      case 4:
      case 5: del( op.number ); break;
      case 6:
         for ( U32 i = 0; i < op.token % 64; ++i ) {
            del( op.number + i );
         }
         break;
      case 7: held_.push_back( { Map::IteratorConst( *map_ ), 0 } ), stand( held_.back() ); break;
      case 8: held_.push_back( { Map::IteratorConst( *map_, op.number ), 0 } ), stand( held_.back() ); break;
      case 9:
         for ( Held & held : held_ ) {
            if ( ( op.token >> held.key % 8 & 1 ) == 0 ) advance( held );
         }
         break;
      case 10:
         if ( !held_.empty() ) del( held_[op.token % held_.size()].key );
         break;
      case 11:
         if ( op.token % 8 == 0 ) {
            map_->delAll();
            model_.clear();
         } else if ( !held_.empty() ) {
            Held const copy = held_[op.token % held_.size()];
            held_[op.number % held_.size()] = copy;
         }
         break;
      }
   }

   void check() const {
      RC_ASSERT( map_->members() == model_.size() );
      // Twice the height of a perfect tree is what red and black allow.
      RC_ASSERT( map_->height() <= 2 * U32( std::bit_width( model_.size() ) ) );
      auto it = map_->begin();
      for ( auto const & [key, token] : model_ ) {
         RC_ASSERT( it && it.key() == key && it.value() == text( token ) );
         RC_ASSERT( ( *map_ )[key] == &*it && map_->value( key ) == text( token ) );
         ++it;
      }
      RC_ASSERT( !it );
      for ( Held const & held : held_ ) {
         if ( !held.it ) continue;
         auto const known = model_.find( held.key );
         bool const there = known != model_.end();
         RC_ASSERT( held.it.key() == held.key );
         // A node that was deleted keeps its last value, also when its key has come back.
         if ( held.it->linked() ) RC_ASSERT( there && held.it.value() == text( known->second ) );
         if ( !there ) RC_ASSERT( !held.it->linked() );
      }
   }

   void finish() {
      for ( Held & held : held_ ) {
         while ( held.it && &held != &held_.front() ) {
            advance( held );
         }
      }
      map_.reset();
      for ( Held const & held : held_ ) {
         if ( held.it ) RC_ASSERT( held.it.key() == held.key && !held.it->linked() );
      }
      held_.clear();
      RC_ASSERT( Map::allocTrack().objects() == 0u && Map::allocTrack().bytes() == 0u );
   }

 private:
   struct Held {
      Map::IteratorConst it;
      U32 key;
   };

   void put( U32 key, U32 token ) {
      RC_ASSERT( map_->valueIs( key, text( token ) ) == model_.insert_or_assign( key, token ).second );
   }
   void del( U32 key ) {
      U32 const before = map_->modificationCount();
      bool const deleted = model_.erase( key );
      RC_ASSERT( map_->del( key ) == deleted );
      RC_ASSERT( ( map_->modificationCount() != before ) == deleted );
      RC_ASSERT( !map_->has( key ) );
   }
   void stand( Held & held ) {
      if ( held.it ) held.key = held.it.key();
   }
   void advance( Held & held ) {
      if ( !held.it ) return;
      auto const following = model_.upper_bound( held.key );
      held.it.advance();
      RC_ASSERT( bool( held.it ) == ( following != model_.end() ) );
      if ( held.it ) RC_ASSERT( held.it.key() == following->first );
      stand( held );
   }

   std::unique_ptr< Tree > map_ = std::make_unique< Tree >();
   std::map< U32, U32 > model_;
   std::vector< Held > held_;
};

TEST( RbTreeMap, anyOperations ) { ::Test::anyOperations< Model >( 12, { 10, 100, 1000 } ); }

TEST( RbTreeMap, stayLowInAnyOrderOfInsertion ) {
   constexpr U32 num = 1 << 12;
   U32( *const orders[] )
   ( U32 ) = {
      []( U32 i ) { return i; },
      []( U32 i ) { return num - i; },
      []( U32 i ) { return i * 2654435761u; },
      []( U32 i ) { return i % 2 ? i : 2 * num - i; },
   };
   for ( auto const order : orders ) {
      Tree map;
      for ( U32 i = 0; i < num; ++i ) {
         map.valueIs( order( i ), "" );
      }
      EXPECT_EQ( map.members(), num );
      EXPECT_LE( map.height(), 24u );
      for ( U32 i = 0; i < num; i += 2 ) {
         map.del( order( i ) );
      }
      EXPECT_LE( map.height(), 24u );
   }
}

TEST( RbTreeMap, enumeratorsAndViews ) {
   enum Type : U32 { p2mp = 1288, mp2mp = 1289, typedWildcard = 1291 };
   Vorn::RbTreeMap< Owner, Type, char const * > capabilities;
   capabilities.valueIs( typedWildcard, "typed wildcard" );
   capabilities.valueIs( p2mp, "first" );
   capabilities.valueIs( p2mp, "p2mp" );
   EXPECT_EQ( capabilities.value( mp2mp ), nullptr );
   EXPECT_FALSE( capabilities.del( mp2mp ) );
   capabilities.valueIs( mp2mp, "mp2mp" ); // now the root, whose place the next one takes
   EXPECT_TRUE( capabilities.del( mp2mp ) );
   EXPECT_TRUE( capabilities[typedWildcard]->linked() );
   std::string all;
   for ( auto const & node : capabilities ) {
      all += node.value();
      capabilities.del( node.key() );
   }
   EXPECT_EQ( all, "p2mptyped wildcard" );
   EXPECT_EQ( capabilities.members(), 0u );
}

/// Looks at the map that holds it, and writes to it, from its destructor.
class Restless : public Vorn::PtrInterface {
   VORN_OBJECT( Restless )

 public:
   using Map = Vorn::RbTreeMap< Owner, U32, Vorn::Ptr< Restless > >;
   Restless( Map & map, U32 key ) : map_( map ), key_( key ) {}
   ~Restless() override {
      EXPECT_FALSE( map_.has( key_ ) );
      if ( key_ < 100 ) map_.valueIs( key_ + 100, new Restless( map_, key_ + 100 ) );
   }

 private:
   Map & map_;
   U32 key_;
};
VORN_OBJECT_RECORD( Test, Restless, nullptr )

TEST( RbTreeMap, destructorsMayUseTheMap ) {
   {
      Restless::Map map;
      for ( U32 i = 0; i < 50; ++i ) {
         map.valueIs( i, new Restless( map, i ) );
      }
      map.del( 3 );
      EXPECT_TRUE( map.has( 103 ) );
      auto it = map.begin();
      map.delAll();
      EXPECT_EQ( it.key(), 0u );
      EXPECT_EQ( map.members(), 48u ); // but for the one that is held
      it.advance();
      EXPECT_EQ( it.key(), 101u );
      EXPECT_TRUE( map.has( 100 ) );
   }
   EXPECT_EQ( Restless::allocTrack().objects(), 0u );
}

} // namespace
