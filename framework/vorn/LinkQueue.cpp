#include "Vorn/LinkQueue.h"

namespace Vorn {

VORN_OBJECT_RECORD( Vorn, LinkQueueNode, nullptr )

LinkQueueNode::~LinkQueueNode() = default;

U32 LinkQueueGeneric::nextIndex() const noexcept {
   return last_ && last_->index() + 1 > next_ ? last_->index() + 1 : next_;
}

void LinkQueueGeneric::indicesIs( U32 head, U32 next ) noexcept {
   head_ = head;
   next_ = next;
   ++modificationCount_;
}

LinkQueueNode * LinkQueueGeneric::node( U32 index ) const noexcept {
   if ( last_ && last_->index() == index ) return last_;
   for ( LinkQueueNode * at = first_.ptr(); at; at = at->next_.ptr() ) {
      if ( at->index() == index ) return at;
   }
   return nullptr;
}

LinkQueueNode * LinkQueueGeneric::behind( LinkQueueNode const & node ) const noexcept {
   // A node that is still in the queue knows its successor; one that was taken out has only its index.
   if ( node.next_ ) return node.next_.ptr();
   for ( LinkQueueNode * at = first_.ptr(); at; at = at->next_.ptr() ) {
      if ( at->index() > node.index() ) return at;
   }
   return nullptr;
}

Ptr< LinkQueueNode > LinkQueueGeneric::doMemberIs( U32 index, Ptr< LinkQueueNode > const & node ) {
   if ( node && index == nextIndex() ) {
      if ( members_ && index + 1 == head_ ) throwRangeException( "linkqueue index space full" );
      if ( last_ ) {
         last_->next_ = node;
      } else {
         first_ = node;
         head_ = index;
      }
      last_ = node.ptr();
      next_ = index + 1;
      ++modificationCount_;
      ++members_;
      return nullptr;
   }
   LinkQueueNode * previous = nullptr;
   LinkQueueNode * at = first_.ptr();
   while ( at && at->index() < index ) {
      previous = at;
      at = at->next_.ptr();
   }
   Ptr< LinkQueueNode > const old( at && at->index() == index ? at : nullptr );
   if ( !node && !old ) return nullptr;
   Ptr< LinkQueueNode > rest( old ? old->next_.ptr() : at );
   if ( node ) node->next_ = rest;
   Ptr< LinkQueueNode > const fresh = node ? node : rest;
   if ( old ) old->next_ = nullptr;
   ( previous ? previous->next_ : first_ ) = fresh;
   if ( node && !rest ) {
      last_ = node.ptr();
      next_ = nextIndex();
   } else if ( !node && !rest ) {
      last_ = previous;
   }
   members_ += U32( bool( node ) ) - U32( bool( old ) );
   head_ = first_ ? first_->index() : next_;
   ++modificationCount_;
   return old;
}

void LinkQueueGeneric::clear() noexcept {
   // One by one, so that a long queue does not release itself by recursion.
   while ( first_ ) {
      Ptr< LinkQueueNode > const node = std::move( first_ );
      first_ = std::move( node->next_ );
   }
   last_ = nullptr;
   members_ = 0;
}

} // namespace Vorn
