/// \file
/// `LinkQueue< Owner, Index, Value >`: a queue whose elements have rising indices, so that an element can be
/// named, read, replaced and removed by index as well as taken off the front. `Owner` only keeps apart the
/// queues of different owners.
///
///     Vorn::LinkQueue< LdpP2mpOpaqueTable, U32, U32 > freeId_;
///     U32 const index = freeId_.enq( id );
///     U32 const first = freeId_.deq();                          // 0 where the queue is empty
///     if ( auto const node = freeId_[ index ] ) use( node->value() );
///     for ( auto it = freeId_.begin(); it; it.advance() ) ... it->index(), it->value() ...
///
/// An index is not given twice before its 32 bits wrap. An iterator survives any change of the queue: the
/// node on which it stands stays readable, and the walk goes on behind its index.
///
/// Work at the ends and in the first elements takes nothing but the links. Once something further behind is
/// asked for, a long queue keeps its places in order beside them, until it is empty: 48 octets an element.
#pragma once

#include "Vorn/Exception.h"
#include "Vorn/VornType.h"

#include <cstdint>
#include <iterator>
#include <map>
#include <memory>

namespace Vorn {

template< class Owner, class Index, class Value >
class LinkQueue;

/// An element of a queue: its index and value, and the counted link to the next.
template< class Owner, class Index, class Value >
class LinkQueueNode final : public PtrInterface {
   VORN_OBJECT( LinkQueueNode )

 public:
   /// An element in no queue.
   LinkQueueNode( Index index, Value value ) : index_( index ), value_( std::move( value ) ) {}

   /// The index.
   Index index() const noexcept { return index_; }
   /// The value.
   Value const & value() const noexcept { return value_; }
   /// Sets the value.
   void valueIs( Value value ) noexcept { value_ = std::move( value ); }
   /// Whether the node is in a queue. A removed node keeps its index and value.
   bool linked() const noexcept { return linked_; }

 private:
   friend class LinkQueue< Owner, Index, Value >;

   Index index_;
   Value value_;
   Ptr< LinkQueueNode > next_;
   bool linked_ = false;
};

/// \cond
template< class Owner, class Index, class Value >
constinit VornType const LinkQueueNode< Owner, Index, Value >::_vornType =
     objectRecord( "Vorn::LinkQueueNode", nullptr, sizeof( LinkQueueNode ) );
template< class Owner, class Index, class Value >
AllocTrackTypeInfo LinkQueueNode< Owner, Index, Value >::vornAllocTrackTypeInfo_{ &_vornType };
/// \endcond

/// The queue.
template< class Owner, class Index, class Value >
class LinkQueue {
 public:
   /// What an element is.
   using Node = LinkQueueNode< Owner, Index, Value >;
   template< class NodeType >
   class TIterator;
   /// Positions in the queue.
   using Iterator = TIterator< Node >;
   using IteratorConst = TIterator< Node const >;

   static_assert( sizeof( Index ) == 4 && std::is_unsigned_v< Index > );

   LinkQueue() noexcept = default;
   LinkQueue( LinkQueue const & ) = delete;
   LinkQueue & operator=( LinkQueue const & ) = delete;
   ~LinkQueue() { delAll(); }

   /// Number of elements.
   U32 members() const noexcept { return members_; }
   /// Changes with each insertion, replacement and removal.
   U32 modificationCount() const noexcept { return modificationCount_; }
   /// Index of the first element; of an empty queue, the index that the next element will get.
   Index firstIndex() const noexcept { return first_; }
   /// Index that the next element will get.
   Index nextIndex() const noexcept { return next_; }

   /// The element with that index, or null.
   Ptr< Node > operator[]( Index index ) noexcept { return find( index ); }
   Ptr< Node const > operator[]( Index index ) const noexcept { return find( index ); }

   /// The value at an index, or a default one.
   Value value( Index index ) const {
      Node const * const node = find( index );
      return node ? node->value() : Value();
   }
   /// Puts a value at an index, as `doMemberIs` does.
   void valueIs( Index index, Value value ) {
      doMemberIs( index, newObject< Node >( index, std::move( value ) ) );
   }
   /// Removes and returns the element with that index; null where there is none.
   Ptr< Node > del( Index index ) {
      Ptr< Node > const node( find( index ) );
      if ( node ) doMemberIs( index, nullptr );
      return node;
   }
   /// Sets the index that the next element will get, and of an empty queue the first, as a copy of another
   /// queue needs it. A next index that lags behind the last element's, or has come round to the first one's,
   /// becomes one above the last.
   void indicesIs( Index first, Index next ) noexcept {
      if ( !head_ ) first_ = first;
      bool const lags = tail_ && ( std::int32_t( next - tail_->index_ ) <= 0 ||
                                   Index( next - first_ ) <= Index( tail_->index_ - first_ ) );
      next_ = lags ? tail_->index_ + 1 : next;
      ++modificationCount_;
   }

   /// Appends, and returns the new element's index. Throws RangeException when all indices are taken.
   Index enq( Value value ) {
      Index const index = next_; // always above the last element's
      doMemberIs( index, newObject< Node >( index, std::move( value ) ) );
      return index;
   }
   /// Takes the first element off and returns its value, or a default one.
   Value deq() noexcept {
      if ( !head_ ) return Value();
      Ptr< Node > const node = head_;
      doMemberIs( first_, nullptr );
      return node->value();
   }
   /// Puts a node of that index in its place: behind all others, instead of the one with that index, or
   /// between its neighbours. Null removes the one with that index.
   void doMemberIs( Index index, Ptr< Node > const & node );
   /// Removes all elements.
   void delAll() noexcept {
      // One by one, since a chain that is released at once recurses.
      while ( head_ ) {
         doMemberIs( first_, nullptr );
      }
   }

   /// For a walk from head to tail.
   Iterator begin() noexcept { return Iterator( *this ); }
   IteratorConst begin() const noexcept { return IteratorConst( *this ); }
   /// The end of such a walk.
   std::default_sentinel_t end() const noexcept { return {}; }

 private:
   /// Elements that a search passes by before it is worth while to keep their order.
   static constexpr U32 scanned = 64;

   /// As long as the indices have not come round to the first one that was there.
   struct Older {
      Index first;
      bool operator()( Index a, Index b ) const noexcept { return Index( a - first ) < Index( b - first ); }
   };
   using Places = std::map< Index, Node *, Older >;

   /// How long ago an index was given; the order of indices that have been given, when they have wrapped too.
   Index age( Index index ) const noexcept { return next_ - index; }
   bool precedes( Index a, Index b ) const noexcept {
      bool const wrapped = next_ < first_;
      return wrapped ? age( a ) > age( b ) : a < b;
   }
   /// The last node before `index`, or null if there is none.
   Node * before( Index index ) const noexcept {
      if ( !head_ || !precedes( head_->index_, index ) ) return nullptr;
      if ( precedes( tail_->index_, index ) ) return tail_;
      if ( places_ ) return beforePlace( places_->lower_bound( index ) );
      Node * found = nullptr;
      U32 steps = 0;
      for ( Node * at = head_.ptr(); at && precedes( at->index_, index ); at = at->next_.ptr() ) {
         found = at;
         if ( ++steps == scanned && placesMake() ) return before( index );
      }
      return found;
   }
   /// The first node that was enqueued after one with that index, which has been removed; or null.
   Node * youngerThan( Index index ) const noexcept {
      Node * at = head_.ptr();
      if ( !at || age( at->index_ ) < age( index ) ) return at;
      if ( places_ ) return behind( beforePlace( places_->upper_bound( index ) ) );
      for ( U32 steps = 0; at && age( at->index_ ) >= age( index ); at = at->next_.ptr() ) {
         if ( ++steps == scanned && placesMake() ) return youngerThan( index );
      }
      return at;
   }
   Node * behind( Node const * before ) const noexcept { return before ? before->next_.ptr() : head_.ptr(); }
   Node * find( Index index ) const noexcept {
      Node * const node = behind( before( index ) );
      return node && node->index_ == index ? node : nullptr;
   }
   void linkIs( Node * before, Ptr< Node > node ) noexcept {
      ( before ? before->next_ : head_ ) = std::move( node );
   }
   Node * beforePlace( typename Places::const_iterator place ) const noexcept {
      return place == places_->begin() ? nullptr : std::prev( place )->second;
   }
   bool placesMake() const noexcept;
   void placeIs( Node * before, Node * node ) noexcept;
   void append( Index index, Ptr< Node > const & node );
   void remove( Node * before, Node * node ) noexcept;

   Index first_ = 0;
   Index next_ = 0;
   U32 modificationCount_ = 0;
   U32 members_ = 0;
   Ptr< Node > head_;
   Node * tail_ = nullptr;
   mutable std::unique_ptr< Places > places_; // of all nodes, or null
};

template< class Owner, class Index, class Value >
void LinkQueue< Owner, Index, Value >::doMemberIs( Index index, Ptr< Node > const & node ) {
   if ( node && index == next_ ) return append( index, node );
   Node * const place = before( index );
   Ptr< Node > old( behind( place ) );
   if ( old && old->index_ != index ) old = nullptr;
   if ( !node ) {
      if ( old ) remove( place, old.ptr() );
      return;
   }
   VORN_ASSERT( node->index() == index );
   node->next_ = old ? old->next_ : Ptr< Node >( behind( place ) );
   node->linked_ = true;
   linkIs( place, node );
   if ( old ) {
      old->linked_ = false;
      old->next_ = nullptr;
   } else {
      ++members_;
   }
   ++modificationCount_;
   if ( !node->next_ ) {
      tail_ = node.ptr();
      if ( !precedes( index, next_ ) ) next_ = index + 1;
   }
   first_ = head_->index_;
   placeIs( place, node.ptr() );
}

template< class Owner, class Index, class Value >
void LinkQueue< Owner, Index, Value >::append( Index index, Ptr< Node > const & node ) {
   VORN_ASSERT( node->index() == index );
   if ( Index( index + 1 ) == first_ ) throwRangeException( "linkqueue index space full" );
   if ( !head_ ) first_ = index;
   linkIs( tail_, node );
   Node * const before = std::exchange( tail_, node.ptr() );
   node->linked_ = true;
   ++modificationCount_;
   ++members_;
   next_ = index + 1;
   placeIs( before, tail_ );
}

/// Makes the order of all nodes beside the links. False if there is no memory for it: it only saves time.
template< class Owner, class Index, class Value >
bool LinkQueue< Owner, Index, Value >::placesMake() const noexcept {
   try {
      auto places = std::make_unique< Places >( Older{ head_->index_ } );
      for ( Node * at = head_.ptr(); at; at = at->next_.ptr() ) {
         places->emplace_hint( places->end(), at->index_, at );
      }
      places_ = std::move( places );
   } catch ( std::bad_alloc const & ) {
      return false;
   }
   return true;
}

/// A node has come between two, or behind all, or in the place of one.
template< class Owner, class Index, class Value >
void LinkQueue< Owner, Index, Value >::placeIs( Node * before, Node * node ) noexcept {
   if ( !places_ ) return;
   try {
      auto const place = places_->insert_or_assign( places_->end(), node->index_, node );
      auto const next = std::next( place );
      if ( beforePlace( place ) == before &&
           ( next == places_->end() ? !node->next_ : next->second == node->next_.ptr() ) )
         return;
   } catch ( std::bad_alloc const & ) {}
   places_.reset(); // no memory, or the indices have come round
}

template< class Owner, class Index, class Value >
void LinkQueue< Owner, Index, Value >::remove( Node * before, Node * node ) noexcept {
   if ( tail_ == node ) tail_ = before;
   if ( places_ ) places_->erase( node->index_ );
   linkIs( before, std::exchange( node->next_, nullptr ) );
   node->linked_ = false;
   first_ = head_ ? head_->index_ : next_;
   ++modificationCount_;
   if ( !--members_ ) places_.reset();
}

/// Stands on one element, with a reference on it, or at the end.
template< class Owner, class Index, class Value >
template< class NodeType >
class LinkQueue< Owner, Index, Value >::TIterator {
 public:
   /// On the first element.
   explicit TIterator( LinkQueue const & queue ) noexcept : queue_( &queue ), node_( queue.head_.ptr() ) {}
   /// On the element with that index, or else on the one that follows.
   TIterator( LinkQueue const & queue, Index index ) noexcept
        : queue_( &queue ), node_( queue.behind( queue.before( index ) ) ) {}

   /// Whether it stands on an element.
   explicit operator bool() const noexcept { return bool( node_ ); }
   /// Whether it is at the end.
   bool operator!() const noexcept { return !node_; }
   /// Whether it is at the end.
   bool operator==( std::default_sentinel_t ) const noexcept { return !node_; }

   /// The element.
   Ptr< NodeType > const & ptr() const noexcept { return node_; }
   /// The element.
   NodeType & operator*() const noexcept { return *node_; }
   /// The element.
   NodeType * operator->() const noexcept { return node_.ptr(); }
   /// Whether it stands on an element whose index is not 0.
   bool hasBookmark() const noexcept { return node_ && node_->index() != 0; }

   /// To the element that follows, whether or not the present one is still in the queue.
   void advance() noexcept {
      node_ = node_->linked() ? node_->next_.ptr() : queue_->youngerThan( node_->index() );
   }
   /// To the element that follows.
   TIterator & operator++() noexcept {
      advance();
      return *this;
   }

 private:
   LinkQueue const * queue_;
   Ptr< NodeType > node_;
};

} // namespace Vorn
