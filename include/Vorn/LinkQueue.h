/// \file
/// `LinkQueue< Owner, Index, Value >`: values in order of an index that rises and is not given again until it
/// wraps.
///
/// A node is counted, and a node that was taken out keeps its index, so an iterator that stands on it goes on
/// by index.
#pragma once

#include "Vorn/Exception.h"
#include "Vorn/VornType.h"

namespace Vorn {

/// What the queues share without their value's type. A node holds the next one.
class VORN_API LinkQueueNode : public PtrInterface {
   VORN_OBJECT( LinkQueueNode )

 public:
   explicit LinkQueueNode( U32 index ) noexcept : index_( index ) {}
   ~LinkQueueNode() override;

   U32 index() const noexcept { return index_; }

 private:
   friend class LinkQueueGeneric;

   U32 index_;
   Ptr< LinkQueueNode > next_;
};

/// The queue without its types.
class VORN_API LinkQueueGeneric {
 public:
   U32 members() const noexcept { return members_; }
   U32 modificationCount() const noexcept { return modificationCount_; }
   /// Index of the first element; of an empty queue the next free one.
   U32 head() const noexcept { return head_; }
   /// The index that the next element gets.
   U32 nextIndex() const noexcept;
   /// Sets both of an empty queue, as the log's reader does.
   void indicesIs( U32 head, U32 next ) noexcept;

 protected:
   LinkQueueGeneric() noexcept = default;
   LinkQueueGeneric( LinkQueueGeneric const & ) = delete;
   LinkQueueGeneric & operator=( LinkQueueGeneric const & ) = delete;
   ~LinkQueueGeneric() { clear(); }

   /// Puts the node at its index: appends at the next free index, else replaces or inserts in order; null
   /// removes what is there. Throws RangeException when the index space is full. Gives what was removed or
   /// replaced.
   Ptr< LinkQueueNode > doMemberIs( U32 index, Ptr< LinkQueueNode > const & node );
   LinkQueueNode * node( U32 index ) const noexcept;
   LinkQueueNode * first() const noexcept { return first_.ptr(); }
   /// The first node with an index behind that one.
   LinkQueueNode * behind( LinkQueueNode const & node ) const noexcept;
   void clear() noexcept;

 private:
   U32 head_ = 0;
   U32 next_ = 0;
   U32 modificationCount_ = 0;
   U32 members_ = 0;
   Ptr< LinkQueueNode > first_;
   LinkQueueNode * last_ = nullptr;
};

/// The typed queue.
template< class Owner, class Index, class Value >
class LinkQueue : public LinkQueueGeneric {
   static_assert( sizeof( Index ) == sizeof( U32 ) );

 public:
   class Node final : public LinkQueueNode {
    public:
      Node( U32 index, Value const & value ) : LinkQueueNode( index ), value_( value ) {}
      Value const & value() const noexcept { return value_; }

    private:
      Value value_;
   };

   Node const * operator[]( U32 index ) const noexcept { return static_cast< Node * >( node( index ) ); }
   /// The value at an index; a default one where there is none.
   Value value( U32 index ) const {
      Node const * const at = ( *this )[index];
      return at ? at->value() : Value{};
   }
   /// Appends and returns the index.
   U32 enq( Value const & value ) {
      U32 const index = nextIndex();
      doMemberIs( index, newObject< Node >( index, value ) );
      return index;
   }
   void valueIs( U32 index, Value const & value ) { doMemberIs( index, newObject< Node >( index, value ) ); }
   /// Removes and returns the node at an index; null where there is none.
   Ptr< Node > del( U32 index ) {
      return Ptr< Node >( static_cast< Node * >( doMemberIs( index, nullptr ).ptr() ) );
   }

   /// A position; it holds its node.
   class IteratorConst {
    public:
      explicit IteratorConst( LinkQueue const & queue )
           : queue_( &queue ), node_( static_cast< Node * >( queue.first() ) ) {}
      /// At that index or what follows it.
      IteratorConst( LinkQueue const & queue, U32 index ) : IteratorConst( queue ) {
         while ( node_ && node_->index() < index ) {
            advance();
         }
      }
      explicit operator bool() const noexcept { return bool( node_ ); }
      Node const * operator->() const noexcept { return node_.ptr(); }
      /// Whether the walk can be taken up again by index: it stands on a node whose index is not zero.
      bool hasBookmark() const noexcept { return node_ && node_->index() != 0; }
      void advance() { node_ = static_cast< Node * >( queue_->behind( *node_ ) ); }

    private:
      LinkQueue const * queue_;
      Ptr< Node > node_;
   };
};

} // namespace Vorn
