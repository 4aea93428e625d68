// The queue against a plain model, with iterators held across everything that is done to it.

#include "AnyOperations.h"

#include "Vorn/LinkQueue.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <vector>

namespace Test {
namespace {

struct Owner {};
using Queue = Vorn::LinkQueue< Owner, U32, Vorn::String >;

Vorn::String text( U32 token ) { return Vorn::format( "%u", token ); }

/// The model numbers elements in 64 bits from `start`, so that it need not know about wrapping.
class Model {
 public:
   explicit Model( U32 start ) : next_( start ) {
      if ( start == 0 ) return;
      put( U32( start - 1 ), 0 ); // brings the next index there
      del( start - 1 );
      for ( U32 token = 0; start > 1 && token < 80; ++token ) { // so many that their places are kept
         apply( { 0, 0, token } );
      }
   }

   void apply( Op const & op ) {
      U64 const some = elements_.empty() ? next_ - 1 : pick( op.token );
      switch ( op.what ) {
      case 0:
      case 1:
      case 2:
         RC_ASSERT( queue_->enq( text( op.token ) ) == U32( next_ ) );
         elements_[next_++] = op.token;
         break;
      case 3: deq(); break;
      case 4: del( some ); break;
      case 5:
         if ( elements_.count( some ) ) put( some, op.token ); // instead of the old one
         break;
      case 6: // between its neighbours, where one was removed
         if ( elements_.size() > 2 ) {
            U64 const inner = std::next( elements_.begin() )->first;
            del( inner );
            put( inner, op.token );
         }
         break;
      case 7: hold( Queue::Iterator( *queue_ ) ); break;
      case 8: hold( Queue::Iterator( *queue_, U32( some ) ) ); break;
      case 9:
         for ( Held & held : held_ ) {
            if ( held.index % 2 == op.token % 2 ) advance( held );
         }
         break;
      case 10:
         if ( !held_.empty() ) del( held_[op.token % held_.size()].index );
         break;
      case 11:
         if ( op.token % 8 == 0 ) {
            queue_->delAll();
            elements_.clear();
         }
         break;
      }
   }

   void check() const {
      RC_ASSERT( queue_->members() == elements_.size() );
      RC_ASSERT( queue_->nextIndex() == U32( next_ ) );
      RC_ASSERT( queue_->firstIndex() == U32( elements_.empty() ? next_ : elements_.begin()->first ) );
      auto it = std::as_const( *queue_ ).begin();
      for ( auto const & [index, token] : elements_ ) {
         RC_ASSERT( it && it->index() == U32( index ) && it->value() == text( token ) );
         RC_ASSERT( it.hasBookmark() == ( U32( index ) != 0 ) );
         RC_ASSERT( ( *queue_ )[U32( index )].ptr() == it.ptr().ptr() );
         it.advance();
      }
      RC_ASSERT( !it && !it.hasBookmark() );
      RC_ASSERT( !( *queue_ )[U32( next_ )] );
   }

   void finish() {
      for ( Held & held : held_ ) {
         while ( held.it && &held != &held_.front() ) {
            advance( held );
         }
      }
      queue_.reset();
      for ( Held const & held : held_ ) {
         if ( held.it ) RC_ASSERT( held.it->index() == U32( held.index ) );
      }
      held_.clear();
      RC_ASSERT( Queue::Node::allocTrack().objects() == 0u );
   }

 private:
   struct Held {
      Queue::Iterator it;
      U64 index;
   };

   U64 pick( U32 token ) const { return std::next( elements_.begin(), token % elements_.size() )->first; }
   void put( U64 index, U32 token ) {
      queue_->doMemberIs( U32( index ), Vorn::newObject< Queue::Node >( U32( index ), text( token ) ) );
      elements_[index] = token;
   }
   void del( U64 index ) {
      U32 const before = queue_->modificationCount();
      queue_->doMemberIs( U32( index ), nullptr );
      RC_ASSERT( ( queue_->modificationCount() != before ) == ( elements_.erase( index ) == 1 ) );
   }
   void deq() {
      Vorn::String const value = queue_->deq();
      if ( elements_.empty() ) {
         RC_ASSERT( value.empty() );
         return;
      }
      RC_ASSERT( value == text( elements_.begin()->second ) );
      elements_.erase( elements_.begin() );
   }
   void hold( Queue::Iterator it ) {
      RC_ASSERT( bool( it ) == !elements_.empty() );
      if ( !it ) return; // at the end, it stands for no index
      U64 index = 0;
      for ( auto const & element : elements_ ) {
         if ( U32( element.first ) == it->index() ) index = element.first;
      }
      held_.push_back( { it, index } );
   }
   void advance( Held & held ) {
      if ( !held.it ) return;
      auto const following = elements_.upper_bound( held.index );
      held.it.advance();
      RC_ASSERT( bool( held.it ) == ( following != elements_.end() ) );
      if ( !held.it ) return;
      RC_ASSERT( held.it->index() == U32( following->first ) );
      held.index = following->first;
   }

   std::unique_ptr< Queue > queue_ = std::make_unique< Queue >();
   U64 next_;
   std::map< U64, U32 > elements_;
   std::vector< Held > held_;
};

TEST( LinkQueue, anyOperations ) {
   anyOperations< Model >( 12, { 0, 1, 0xfffffff0, 0xffffffff } ); // some queues wrap on the way
}

TEST( LinkQueue, placesByIndex ) {
   Queue queue;
   auto const put = [&]( U32 index ) {
      queue.doMemberIs( index, Vorn::newObject< Queue::Node >( index, text( index ) ) );
   };
   EXPECT_TRUE( queue.deq().empty() );
   EXPECT_EQ( queue.enq( "0" ), 0u );
   EXPECT_TRUE( queue.deq() == "0" );
   EXPECT_EQ( queue.enq( "1" ), 1u ); // rises across an emptied queue
   put( 10 );
   put( 5 );
   put( 0 );
   EXPECT_EQ( queue.enq( "11" ), 11u );
   Vorn::String all;
   for ( auto const & node : queue ) {
      all += node.value() + " ";
      queue.doMemberIs( node.index(), nullptr );
   }
   EXPECT_TRUE( all == "0 1 5 10 11 " );
   EXPECT_EQ( queue.firstIndex(), 12u );
}

TEST( LinkQueue, aNextIndexNeverLagsBehindTheLastElement ) {
   Queue queue;
   queue.indicesIs( 7, 7 );
   queue.enq( "7" );
   queue.indicesIs( 7, 3 );
   EXPECT_EQ( queue.enq( "8" ), 8u );
   queue.indicesIs( 7, 20 );
   EXPECT_EQ( queue.enq( "20" ), 20u );
   EXPECT_EQ( queue.members(), 3u );
}

TEST( LinkQueue, indexSpaceMayBeFull ) {
   Queue queue;
   queue.enq( "first" );
   queue.doMemberIs( 0xfffffffe, Vorn::newObject< Queue::Node >( 0xfffffffe, "last" ) );
   try {
      queue.enq( "too much" );
      FAIL();
   } catch ( Vorn::RangeException const & failure ) {
      EXPECT_TRUE( failure.message() == "linkqueue index space full" );
   }
   EXPECT_EQ( queue.members(), 2u );
   queue.deq();
   EXPECT_EQ( queue.enq( "now" ), 0xffffffffu );
   EXPECT_EQ( queue.enq( "wraps" ), 0u );
   EXPECT_TRUE( queue[0]->value() == "wraps" );
}

TEST( LinkQueue, releasesALongChainInALoop ) {
   {
      Queue queue;
      for ( U32 i = 0; i < 1000000; ++i ) {
         queue.enq( "" );
      }
      auto const it = queue.begin();
   }
   EXPECT_EQ( Queue::Node::allocTrack().objects(), 0u );
}

} // namespace
} // namespace Test
