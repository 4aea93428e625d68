/// \file
/// `RbTreeMap< Owner, Key, Value >`: a map in ascending order of its keys, a red-black tree that owns its
/// nodes. `Owner` only keeps apart the maps of different owners; keys have `operator<`.
///
///     Vorn::RbTreeMap< LdpCapabilityParser, LdpTlvType, LdpCapabilityParameterTlv const * > capabilities_;
///     capabilities_.valueIs( type, tlv );                       // inserts or overwrites
///     if ( auto const * node = capabilities_[ type ] ) use( node->value() );
///     auto const * tlv = capabilities_.value( type );           // null where absent
///     capabilities_.del( type );
///     for ( auto const & node : capabilities_ ) ... node.key(), node.value() ...
///
/// A node stays at its address until it is deleted. An iterator survives any change of the map: the node on
/// which it stands stays readable when it is deleted, and the walk goes on with the next greater key.
#pragma once

#include "Vorn/Ptr.h"

#include <iterator>

namespace Vorn {

/// The links of a node, first base of every node.
class RbTreeNode {
 public:
   RbTreeNode() noexcept = default;
   RbTreeNode( RbTreeNode const & ) = delete;
   RbTreeNode & operator=( RbTreeNode const & ) = delete;

   /// Whether the node is in a map. A deleted node lives on while an iterator stands on it.
   bool linked() const noexcept { return linked_; }

 private:
   friend class RbTreeMapGeneric;

   RbTreeNode * parent_ = nullptr;
   RbTreeNode * child_[2] = {}; // lesser keys, greater keys
   U32 refs_ = 1;               // the map's, and one for each iterator
   bool red_ = false;
   bool linked_ = false;
};

/// The tree without its keys: linking, unlinking, order, balance.
class VORN_API RbTreeMapGeneric {
 public:
   /// A node without its key.
   using NodeBase = RbTreeNode;
   /// Where a child hangs, and the way to lesser or greater keys.
   enum Side : U32 { lesser = 0, greater = 1 };

   RbTreeMapGeneric() noexcept = default;
   RbTreeMapGeneric( RbTreeMapGeneric const & ) = delete;
   RbTreeMapGeneric & operator=( RbTreeMapGeneric const & ) = delete;

   /// Number of members.
   U32 members() const noexcept { return members_; }
   /// Changes with each insertion and deletion.
   U32 modificationCount() const noexcept { return modificationCount_; }

 protected:
   /// Links a new node below `parent`, which has no child on that side; null makes it the root of an empty
   /// map.
   void memberNewChild( NodeBase * parent, Side side, NodeBase * node ) noexcept;
   /// Puts `node`, which is in no map, in the place of `old`, which leaves the map. No key may change order.
   void memberReplace( NodeBase * old, NodeBase * node ) noexcept;
   /// Takes a node out of the map. The map's reference on it passes to the caller.
   void _memberDelG( NodeBase * node ) noexcept;

   /// The top of the tree, or null.
   NodeBase * root() const noexcept { return root_; }
   /// The node below on that side, or null.
   static NodeBase * child( NodeBase const * node, Side side ) noexcept { return node->child_[side]; }
   /// The node with the least key below and including `node`, or null.
   static NodeBase * first( NodeBase * node ) noexcept;
   /// The node that follows in ascending order, or null.
   static NodeBase * next( NodeBase * node ) noexcept;
   /// Empties the map and returns its nodes as a tree that only `takeAny` may take apart.
   NodeBase * takeRoot() noexcept;
   /// Takes one node off such a tree; null when none is left. The map's reference passes to the caller.
   static NodeBase * takeAny( NodeBase *& tree ) noexcept;

   /// Takes a reference.
   static void refInc( NodeBase * node ) noexcept { Vorn::refInc( node->refs_ ); }
   /// Drops a reference. True: it was the last, and the node is the caller's to destroy.
   static bool refDecLast( NodeBase * node ) noexcept { return Vorn::refDec( node->refs_ ) == 0; }

 private:
   static bool red( NodeBase const * node ) noexcept { return node && node->red_; }
   static Side side( NodeBase const * node ) noexcept {
      return Side( node->parent_->child_[greater] == node );
   }
   static Side opposite( Side side ) noexcept { return Side( side ^ 1u ); }
   void childIs( NodeBase * parent, Side side, NodeBase * node ) noexcept;
   void placeIs( NodeBase * old, NodeBase * node ) noexcept;
   void rotate( NodeBase * node, Side down ) noexcept;
   void unlink( NodeBase * node ) noexcept;
   void blackRestore( NodeBase * parent, Side side ) noexcept;

   NodeBase * root_ = nullptr;
   U32 members_ = 0;
   U32 modificationCount_ = 0;
};

/// The typed map.
template< class Owner, class Key, class Value >
class RbTreeMap : public RbTreeMapGeneric {
 public:
   class Node;
   class IteratorConst;

   RbTreeMap() noexcept = default;
   ~RbTreeMap() {
      // Once, unless the destructor of a value inserts again.
      while ( members() ) {
         delAll();
      }
   }

   /// The member with that key, or null.
   Node * operator[]( Key const & key ) noexcept { return lookup( key ); }
   Node const * operator[]( Key const & key ) const noexcept { return lookup( key ); }
   /// Whether there is a member with that key.
   bool has( Key const & key ) const noexcept { return lookup( key ); }
   /// The value under that key, or a default value.
   Value value( Key const & key ) const {
      Node const * const node = lookup( key );
      return node ? node->value() : Value();
   }

   /// Inserts or overwrites. Returns whether the key is new.
   bool valueIs( Key const & key, Value value );
   /// Removes the member with that key; false where there is none.
   bool del( Key const & key ) noexcept {
      Node * const node = lookup( key );
      if ( !node ) return false;
      _memberDelG( node );
      release( node );
      return true;
   }
   /// Removes all members.
   void delAll() noexcept {
      NodeBase * rest = takeRoot();
      while ( NodeBase * const node = takeAny( rest ) ) {
         release( node );
      }
   }

   /// For a walk in ascending order.
   IteratorConst begin() const noexcept { return IteratorConst( *this ); }
   /// The end of such a walk.
   std::default_sentinel_t end() const noexcept { return {}; }

   /// Counts the nodes of all maps of this type.
   static AllocTrackTypeInfo const & allocTrack() noexcept { return vornAllocTrackTypeInfo_; }

 private:
   Node * lookup( Key const & key ) const noexcept {
      Node * const node = notLess( key );
      return node && !( key < node->key() ) ? node : nullptr;
   }
   /// The first node whose key is not less than `key`, or null.
   Node * notLess( Key const & key ) const noexcept {
      return firstThat( [&key]( Node const * node ) { return !( node->key() < key ); } );
   }
   /// The first node whose key is greater, or null.
   Node * behind( Key const & key ) const noexcept {
      return firstThat( [&key]( Node const * node ) { return key < node->key(); } );
   }
   /// The first node for which `test` is true; it is then true for all that follow.
   template< class Test >
   Node * firstThat( Test test ) const noexcept {
      Node * found = nullptr;
      for ( NodeBase * at = root(); at; ) {
         auto * const node = static_cast< Node * >( at );
         bool const holds = test( node );
         if ( holds ) found = node;
         at = child( at, holds ? lesser : greater );
      }
      return found;
   }
   static void release( NodeBase * node ) noexcept {
      if ( refDecLast( node ) ) delete static_cast< Node * >( node );
   }

   static inline AllocTrackTypeInfo vornAllocTrackTypeInfo_{ nullptr };
};

/// A member: a key and its value.
template< class Owner, class Key, class Value >
class RbTreeMap< Owner, Key, Value >::Node : public RbTreeNode {
 public:
   /// A member of that key and value, in no map.
   Node( Key const & key, Value value ) : key_( key ), value_( std::move( value ) ) {}

   /// The key.
   Key const & key() const noexcept { return key_; }
   /// The value.
   Value const & value() const noexcept { return value_; }
   void valueIs( Value value ) noexcept { value_ = std::move( value ); }

   /// Memory for a node, counted.
   static void * operator new( std::size_t size ) {
      void * const block = vornMemAlloc( size );
      vornAllocTrackTypeInfo_.trackAllocation( size );
      return block;
   }
   static void operator delete( void * block, std::size_t size ) noexcept {
      vornAllocTrackTypeInfo_.trackDeallocation( size );
      vornMemFree( block, size );
   }

 private:
   Key key_;
   Value value_;
};

template< class Owner, class Key, class Value >
bool RbTreeMap< Owner, Key, Value >::valueIs( Key const & key, Value value ) {
   NodeBase * parent = nullptr;
   Side side = lesser;
   for ( NodeBase * at = root(); at; at = child( at, side ) ) {
      auto * const node = static_cast< Node * >( at );
      parent = at;
      if ( key < node->key() ) {
         side = lesser;
      } else if ( node->key() < key ) {
         side = greater;
      } else {
         node->valueIs( std::move( value ) );
         return false;
      }
   }
   memberNewChild( parent, side, new Node( key, std::move( value ) ) );
   return true;
}

/// Walks a map in ascending order. Standing on a deleted node it still gives the node's key and last value.
template< class Owner, class Key, class Value >
class RbTreeMap< Owner, Key, Value >::IteratorConst {
 public:
   /// On the first member.
   explicit IteratorConst( RbTreeMap const & map ) noexcept : map_( &map ) { nodeIs( first( map.root() ) ); }
   /// On the first member whose key is not less than `key`.
   IteratorConst( RbTreeMap const & map, Key const & key ) noexcept : map_( &map ) {
      nodeIs( map.notLess( key ) );
   }
   /// On the member of another iterator.
   IteratorConst( IteratorConst const & other ) noexcept : map_( other.map_ ) { nodeIs( other.node_ ); }
   IteratorConst & operator=( IteratorConst const & other ) noexcept {
      map_ = other.map_;
      nodeIs( other.node_ );
      return *this;
   }
   ~IteratorConst() { nodeIs( nullptr ); }

   /// Whether it stands on a member.
   explicit operator bool() const noexcept { return node_ != nullptr; }
   /// Whether it is at the end.
   bool operator!() const noexcept { return !node_; }
   bool operator==( std::default_sentinel_t ) const noexcept { return !node_; }

   /// The member's key.
   Key const & key() const noexcept { return node()->key(); }
   /// The member's value.
   Value const & value() const noexcept { return node()->value(); }
   /// The member.
   Node const & operator*() const noexcept { return *node(); }
   Node const * operator->() const noexcept { return node(); }

   /// To the member with the next greater key, whether or not the present one is still in the map.
   void advance() noexcept { nodeIs( node_->linked() ? next( node_ ) : map_->behind( key() ) ); }
   IteratorConst & operator++() noexcept {
      advance();
      return *this;
   }

 private:
   Node const * node() const noexcept { return static_cast< Node const * >( node_ ); }
   void nodeIs( NodeBase * node ) noexcept {
      if ( node ) refInc( node );
      NodeBase * const old = std::exchange( node_, node );
      if ( old ) release( old );
   }

   RbTreeMap const * map_;
   NodeBase * node_ = nullptr; // one reference on it is ours
};

} // namespace Vorn
