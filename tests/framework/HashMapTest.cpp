// The intrusive hash map against a plain model, with iterators held across everything that is done to it.

#include "AnyOperations.h"

#include "Vorn/Attributes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace Test {
namespace {

using Vorn::Ptr;

struct Owner {};

/// A key whose hash is one of `hashes` values only, so that chains have ties.
template< U32 hashes >
struct Number {
   U32 number = 0;
   U32 hash() const { return number % hashes * 2654435761u; }
   friend auto operator<=>( Number const &, Number const & ) = default;
};

template< U32 hashes >
class Member : public Vorn::Entity {
   VORN_OBJECT( Member )

 public:
   using Key = Number< hashes >;
   explicit Member( U32 number ) : key_{ number } {}
   Key const & vornKey() const { return key_; }

 private:
   Key key_;
   VORN_NEXT_LINK;
};
template< U32 hashes >
constinit Vorn::VornType const Member< hashes >::_vornType = Vorn::objectRecord( "Test::Member",
                                                                                 &Vorn::Entity::_vornType,
                                                                                 sizeof( Member ) );
template< U32 hashes >
Vorn::AllocTrackTypeInfo Member< hashes >::vornAllocTrackTypeInfo_{ nullptr };

template< class M >
using MapOf = Vorn::HashMap< Owner, M, typename M::Key >;

template< class M >
class Model {
 public:
   using Map = MapOf< M >;
   using Key = typename M::Key;

   explicit Model( U32 ) {}

   void apply( Op const & op ) {
      switch ( op.what ) {
      case 0:
      case 1: add( op.number ); break;
      case 2:
         for ( U32 i = 0; i < op.token % 60; ++i ) {
            add( op.number + i );
         }
         break;
      case 3:
      case 4: del( op.number ); break;
      case 5:
         for ( U32 i = 0; i < op.token % 40; ++i ) {
            del( op.number + i );
         }
         break;
      case 6: hold( typename Map::IteratorConst( *map_ ), nullptr ); break;
      case 7: hold( typename Map::IteratorConst( *map_, Key{ op.number } ), &op.number ); break;
      case 8:
         for ( std::size_t i = 0; i < held_.size(); ++i ) {
            if ( ( op.token >> i % 8 & 1 ) == 0 ) advance( held_[i] );
         }
         break;
      case 9: // the member on which an iterator stands, and perhaps back again
         if ( held_.empty() || !held_[op.token % held_.size()].it ) break;
         {
            auto & it = held_[op.token % held_.size()].it;
            U32 const number = it->vornKey().number;
            bool const its = map_->member( Key{ number } ) == it.ptr().ptr(); // and not another of that key
            if ( op.token & 16 ) {
               RC_ASSERT( it.del( *map_ ) == its );
               if ( its ) gone( number, true );
            } else {
               del( number );
            }
            if ( op.token % 3 == 0 ) add( number );
         }
         break;
      case 10:
         if ( op.token % 8 ) break;
         map_->emptyAllBuckets();
         members_.clear();
         for ( Held & held : held_ ) {
            held.mustMeet.clear();
         }
         break;
      }
   }

   void check() const {
      RC_ASSERT( map_->members() == members_.size() );
      U32 met = 0;
      for ( auto const & member : *map_ ) {
         RC_ASSERT( members_.count( member.vornKey().number ) == 1 );
         ++met;
      }
      RC_ASSERT( met == members_.size() );
      for ( auto const & [number, member] : members_ ) {
         RC_ASSERT( map_->member( Key{ number } ) == member );
      }
   }

   void finish() {
      for ( Held & held : held_ ) {
         while ( held.it && &held != &held_.front() ) {
            advance( held );
         }
      }
      map_.reset();
      held_.clear();
      RC_ASSERT( M::allocTrack().objects() == 0u );
   }

 private:
   struct Held {
      typename Map::IteratorConst it;
      std::set< U32 > mustMeet; // members since before it came by, that it has not met
   };
   static auto place( U32 number ) { return std::pair( Vorn::bitReverse( Key{ number }.hash() ), number ); }

   void add( U32 number ) {
      if ( members_.count( number ) ) return;
      Ptr< M > const member( new M( number ) );
      map_->newMember( *member, Key{ number }.hash() );
      RC_ASSERT( member->references() == 2u );
      members_[number] = member.ptr();
   }
   void del( U32 number ) {
      Ptr< M > const member( map_->member( Key{ number } ) );
      if ( member ) {
         map_->del( *member, Key{ number }.hash() );
         RC_ASSERT( !Vorn::NextLink::of( *member ) );
      }
      gone( number, bool( member ) );
   }
   void gone( U32 number, bool wasThere ) {
      RC_ASSERT( wasThere == ( members_.erase( number ) == 1 ) );
      RC_ASSERT( !map_->member( Key{ number } ) );
      for ( Held & held : held_ ) {
         held.mustMeet.erase( number );
      }
   }
   void hold( typename Map::IteratorConst it, U32 const * from ) {
      Held held{ it, {} };
      for ( auto const & member : members_ ) {
         if ( !from || place( member.first ) >= place( *from ) ) held.mustMeet.insert( member.first );
      }
      RC_ASSERT( bool( it ) == !held.mustMeet.empty() );
      RC_ASSERT( bool( it ) == ( it.bucket() != -1 ) );
      if ( it ) {
         RC_ASSERT( held.mustMeet.erase( it->vornKey().number ) == 1 );
      }
      held_.push_back( held );
   }
   void advance( Held & held ) {
      if ( !held.it ) return;
      U32 const before = held.it->vornKey().number;
      held.it.advance();
      if ( !held.it ) {
         RC_ASSERT( held.mustMeet.empty() && held.it.bucket() == -1 );
         return;
      }
      U32 const at = held.it->vornKey().number;
      RC_ASSERT( members_.count( at ) == 1 && place( before ) < place( at ) );
      held.mustMeet.erase( at );
      for ( U32 const number : held.mustMeet ) {
         RC_ASSERT( place( at ) < place( number ) );
      }
   }

   std::unique_ptr< Map > map_ = std::make_unique< Map >();
   std::map< U32, M * > members_;
   std::vector< Held > held_;
};

template< class M >
class HashMapModel : public testing::Test {};
using Members = testing::Types< Member< 0xffffffff >, Member< 7 >, Member< 1 > >;
TYPED_TEST_SUITE( HashMapModel, Members );

TYPED_TEST( HashMapModel, anyOperations ) { anyOperations< Model< TypeParam > >( 11, { 12, 300 } ); }

TEST( HashMap, releasesALongChainInALoop ) {
   // Released by recursion, a chain of this length would need more stack than there is.
   using M = Member< 1 >;
   {
      MapOf< M > map;
      for ( U32 i = 300000; i; --i ) {
         Ptr< M > const member( new M( i ) );
         map.newMember( *member, member->vornKey().hash() ); // each in front
      }
   }
   EXPECT_EQ( M::allocTrack().objects(), 0u );
}

TEST( HashMap, givesBucketsBackInTheMidstOfAWalk ) {
   using M = Member< 8 >;
   MapOf< M > map;
   for ( U32 i = 0; i < 1000; ++i ) {
      Ptr< M > const member( new M( i ) );
      map.newMember( *member, member->vornKey().hash() );
   }
   EXPECT_EQ( map.buckets(), 1024u );
   U32 met = 0;
   for ( auto it = map.begin(); it; it.advance() ) {
      if ( ++met % 100 ) {
         EXPECT_TRUE( it.del( map ) );
         EXPECT_FALSE( it.del( map ) );
      }
   }
   EXPECT_EQ( met, 1000u );
   EXPECT_EQ( map.members(), 10u );
   EXPECT_EQ( map.buckets(), 64u );
}

TEST( HashMapDeathTest, deletesMembersOnly ) {
   using M = Member< 7 >;
   MapOf< M > map;
   Ptr< M > const stranger( new M( 3 ) );
   EXPECT_DEATH( map.del( *stranger, stranger->vornKey().hash() ), "the member is in the map" );
}

} // namespace
} // namespace Test
