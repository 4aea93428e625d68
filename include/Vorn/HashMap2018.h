/// \file
/// `HashMap2018< Owner, Key, Value >`: a hash map of values, of references, or (with `void`) a set. It takes
/// three words in its owner and keeps its nodes in contiguous buckets (HashMap2018Generic.h). `Owner` only
/// keeps apart the maps of different owners.
///
///     Vorn::HashMap2018< LdpGenMsgParser, U32, U32 > tlvOffset_;
///     tlvOffset_.valueIs( index, offset );                      // inserts or overwrites
///     if ( auto const * node = tlvOffset_[ index ] ) use( node->value() );
///     U32 const at = tlvOffset_.value( index );                 // 0 where absent
///     tlvOffset_.del( index );
///     for ( auto & node : tlvOffset_ ) ... node.key(), node.value() ...
///
/// A pointer to a node is good until the next insertion or deletion. An iterator survives both (the body of a
/// loop may delete any member): it goes on with what follows the present member; members inserted meanwhile
/// may or may not be met. Within a loop a node that has been deleted stays readable until the loop moves on.
/// A deletion that leaves a map thin builds it anew in less memory, and ends the process where there is none
/// for that. At most 14 iterators may stand in one bucket at a time. At most 16,383 keys may have one hash
/// word: one more asserts. Hashes take a secret of the process (Hash.h), so nobody outside can bring that
/// about, except with keys whose hash is a fixed formula; who takes such keys from the network sets a lower
/// bound on their number.
#pragma once

#include "Vorn/Impl/HashMap2018Generic.h"

#include <iterator>
#include <memory>
#include <variant>

namespace Vorn {

/// A key with its value beside it.
template< class Key, class Value, bool lru >
class HashMap2018NodeExternKey;

/// A key with its value beside it, in a map that does not care for the order of use.
template< class Key, class Value >
class HashMap2018NodeExternKey< Key, Value, false > : public HashMap2018LinkNodeBase {
 public:
   /// A member of that key and value.
   HashMap2018NodeExternKey( Key const & key, Value value ) noexcept
        : key_( key ), value_( std::move( value ) ) {}

   /// The key.
   Key const & key() const noexcept { return key_; }
   Key const & fwkKey() const noexcept { return key_; }
   /// The value.
   Value const & value() const noexcept { return value_; }
   Value & value() noexcept { return value_; }
   void valueIs( Value value ) noexcept { value_ = std::move( value ); }
   /// Takes the value of a node with the same key.
   void nodeIs( HashMap2018NodeExternKey && node ) noexcept { valueIs( std::move( node.value_ ) ); }

 private:
   Key key_;
   Value value_;
};

/// A member of a set.
template< class Key >
class HashMap2018NodeExternKey< Key, void, false > : public HashMap2018LinkNodeBase {
 public:
   /// The member of that key.
   explicit HashMap2018NodeExternKey( Key const & key ) noexcept : key_( key ) {}

   /// The key.
   Key const & key() const noexcept { return key_; }
   Key const & fwkKey() const noexcept { return key_; }

 private:
   Key key_;
};

/// A value that holds its key, which `KeyFunktor` takes from it.
template< class Key, class Value, class KeyFunktor >
class HashMap2018NodeInternalKey : public HashMap2018LinkNodeBase {
 public:
   /// A member with that value.
   explicit HashMap2018NodeInternalKey( Value value ) noexcept : value_( std::move( value ) ) {}

   /// The key, taken from the value.
   Key key() const noexcept { return fwkKey(); }
   Key fwkKey() const noexcept { return KeyFunktor()( value_ ); }
   /// The value.
   Value const & value() const noexcept { return value_; }
   /// The new value must have the same key.
   void valueIs( Value _value ) noexcept {
      VORN_ASSERT( fwkKey() == KeyFunktor()( _value ) );
      value_ = std::move( _value );
   }
   /// Takes the value of a node, which must have the same key.
   void nodeIs( HashMap2018NodeInternalKey && node ) noexcept { valueIs( std::move( node.value_ ) ); }

 private:
   Value value_;
};

/// The functions of a map's record, for nodes of type `Node` with keys of type `Key`.
template< class Node, class Key >
class HashMap2018NodeOps {
 public:
   /// Short names of what the record speaks of.
   using VTable = HashMap2018VTable;
   using Base = HashMap2018LinkNodeBase;
   using BktHdr = HashMap2018BktHdr;

   static_assert( alignof( Node ) <= 8, "nodes stand at multiples of 8" );
   static_assert( std::is_nothrow_move_constructible_v< Node > && std::is_nothrow_move_assignable_v< Node > );

   /// Whether nodes may be moved as octets.
   static constexpr bool trivial = std::is_trivially_copyable_v< Node >;

   /// The record.
   static constexpr VTable table() noexcept {
      return { alignof( Node ),
               sizeof( Node ),
               bktHdrRefDec,
               keyEqualsNode,
               trivial ? HashMap2018Generic::trivialPlace : place,
               trivial ? HashMap2018Generic::trivialShift : shift,
               newBucketAssemble,
               compareOrLruUnlink,
               nullptr };
   }

   /// Counts the nodes of all buckets, free slots included.
   static AllocTrackTypeInfo const & nodeAllocTrack() noexcept { return vornAllocTrackTypeInfo_; }

 private:
   static Node * nodePtr( void * slot ) noexcept { return static_cast< Node * >( slot ); }
   // Written out here and below: the standard's algorithms for it would be made for each kind of node, in
   // each file that includes the model, and double what that costs.
   static void destroy( Node * at, Node const * end ) noexcept {
      for ( ; at != end; ++at ) {
         at->~Node();
      }
   }

   static void bktHdrRefDec( BktHdr * header ) noexcept {
      if ( HashMap2018Generic::bktHdrRefDecHelper( header ) != 0 ) return;
      vornAllocTrackTypeInfo_.trackArrayDeallocation( header->capacity(), sizeof( Node ) );
      if constexpr ( !trivial ) {
         Node * const nodes = nodePtr( header->nodes() );
         destroy( nodes, nodes + header->used() );
      }
      HashMap2018Generic::bucketFree( header, sizeof( Node ) );
   }

   static bool keyEqualsNode( HashHelper const & key, Base const * node ) noexcept {
      return HashKey< Key >::key( form( key ) ) == static_cast< Node const * >( node )->fwkKey();
   }

   static U32 compareOrLruUnlink( HashHelper const * key, Base const * a, Base const * b ) noexcept {
      auto && keyB = static_cast< Node const * >( b )->fwkKey();
      auto const compare = [&keyB]( auto const & keyA ) { return keyA == keyB ? 0u : keyA < keyB ? 1u : 2u; };
      if ( a ) return compare( static_cast< Node const * >( a )->fwkKey() );
      return compare( HashKey< Key >::key( form( *key ) ) );
   }

   static void place( VTable const &, void * slot, Base * node, VTable::MoveOrCopy how ) noexcept {
      auto * const source = static_cast< Node * >( node );
      if ( how == VTable::move ) {
         new ( slot ) Node( std::move( *source ) );
      } else {
         new ( slot ) Node( *source );
      }
   }

   static void shift( VTable const &, void * base, Base * source, U32 count, U32 position,
                      int slotsToShift ) noexcept {
      Node * const nodes = nodePtr( base );
      if ( slotsToShift < 0 ) {
         U32 to = position;
         for ( U32 from = position - U32( slotsToShift ); from < count; ++from, ++to ) {
            nodes[to] = std::move( nodes[from] );
         }
         destroy( nodes + to, nodes + count );
         return;
      }
      VORN_ASSERT( slotsToShift == 1 );
      auto & node = *static_cast< Node * >( source );
      if ( position == count ) {
         new ( nodes + count ) Node( std::move( node ) );
         return;
      }
      new ( nodes + count ) Node( std::move( nodes[count - 1] ) );
      for ( U32 to = count - 1; to > position; --to ) {
         nodes[to] = std::move( nodes[to - 1] );
      }
      nodes[position] = std::move( node );
   }

   static void newBucketAssemble( VTable const & vt, U32 capacity, void * destination,
                                  HashMap2018NodeSourceColl const & sources ) noexcept {
      vornAllocTrackTypeInfo_.trackArrayAllocation( capacity, sizeof( Node ) );
      if constexpr ( trivial ) {
         HashMap2018Generic::trivialNewBucketAssemble( vt, destination, sources );
      } else {
         Node * to = nodePtr( destination );
         for ( auto const & run : sources ) {
            auto * const from = static_cast< Node * >( run.nodes );
            for ( U32 i = 0; i < run.count; ++i, ++to ) {
               place( vt, to, from + i, run.copy ? VTable::copy : VTable::move );
            }
         }
      }
   }

   static auto const & form( HashHelper const & key ) noexcept {
      return static_cast< typename HashKey< Key >::Form const & >( key );
   }

   static inline AllocTrackTypeInfo vornAllocTrackTypeInfo_{ nullptr };
};

/// What the nodes of a map hold, and so what they are.
template< class Key, class Value, class KeyFunktor >
struct HashMap2018NodeOf {
   /// The class of the nodes.
   using Node = HashMap2018NodeInternalKey< Key, Value, KeyFunktor >;
};
/// Without a functor the key stands beside the value.
template< class Key, class Value >
struct HashMap2018NodeOf< Key, Value, void > {
   /// The class of the nodes.
   using Node = HashMap2018NodeExternKey< Key, Value, false >;
};

/// The typed map. `Value` is `void` for a set. With a `KeyFunktor` the key is part of the value.
template< class Owner, class Key, class Value = void, class KeyFunktor = void >
class HashMap2018 : public HashMap2018Generic {
 public:
   /// What a member is: `key()` and `value()`.
   using Node = typename HashMap2018NodeOf< Key, Value, KeyFunktor >::Node;
   using NodeOps = HashMap2018NodeOps< Node, Key >;

   static constexpr HashMap2018VTable vt_ = NodeOps::table();
   /// Whether the map has no values.
   static constexpr bool isSet = std::is_void_v< Value >;
   /// What `valueIs` takes.
   using Argument = std::conditional_t< isSet, std::monostate, Value >;
   /// Whether the key is part of the value.
   static constexpr bool keyInValue = !std::is_void_v< KeyFunktor >;

   template< class NodeType >
   class IteratorOf;
   /// Positions in the map.
   using Iterator = IteratorOf< Node >;
   using IteratorConst = IteratorOf< Node const >;

   HashMap2018() noexcept : HashMap2018Generic( vt_, 0 ) {}
   ~HashMap2018() {
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
   auto value( Key const & key ) const requires( !isSet ) {
      Node const * const node = lookup( key );
      return node ? Value( node->value() ) : Value();
   }

   /// Whether that key is absent and has no room beside `others` more, because too many have its hash.
   bool crowded( Key const & key, U32 others ) const noexcept {
      return crowdedG( vt_, HashKey< Key >::form( key ), others );
   }

   /// Inserts or overwrites. Returns whether the key is new.
   bool valueIs( Key const & key, Argument value ) requires( !isSet && !keyInValue ) {
      return nodeIs( key, Node( key, std::move( value ) ) );
   }
   /// Inserts a value, or overwrites the one with the same key. Returns whether the key is new.
   bool valueIs( Argument value ) requires( keyInValue ) {
      Key const key = KeyFunktor()( value );
      return nodeIs( key, Node( std::move( value ) ) );
   }
   /// Inserts into a set. Returns whether the key is new.
   bool keyIs( Key const & key ) requires( isSet ) {
      return newMemberG( vt_, HashKey< Key >::form( key ), Node( key ) ).added;
   }

   /// A member that was taken out of the map, or nothing where there was none: `if ( auto const deleted =
   /// map.del( key ) ) use( deleted->value() )`.
   class Deleted {
    public:
      /// Takes the member with that key out of the map.
      Deleted( HashMap2018 & map, Key const & key ) noexcept
           : there_( map.deleteMemberG( vt_, HashKey< Key >::form( key ), slot_ ) ) {}
      Deleted( Deleted const & ) = delete;
      Deleted & operator=( Deleted const & ) = delete;
      ~Deleted() {
         if ( there_ ) std::launder( reinterpret_cast< Node * >( slot_ ) )->~Node();
      }
      /// Whether there was one.
      explicit operator bool() const noexcept { return there_; }
      /// The member.
      Node const & operator*() const noexcept {
         return *std::launder( reinterpret_cast< Node const * >( slot_ ) );
      }
      Node const * operator->() const noexcept { return &**this; }

    private:
      alignas( Node ) unsigned char slot_[sizeof( Node )];
      bool const there_;
   };
   /// Removes the member with that key and returns it. Its value is still alive when the map is without it.
   Deleted del( Key const & key ) noexcept { return Deleted( *this, key ); }
   /// Removes all members.
   void delAll() noexcept { emptyAllBuckets( vt_ ); }

   /// Marks every member for deletion, the first half of mark and sweep. Members inserted later are not
   /// marked.
   void vornMarkAllForDeletion() noexcept { vornMarkAllForDeletionG( vt_ ); }
   /// Marks the member with that key, or takes its mark away.
   void vornMarkedForDeletionIs( Key const & key, bool marked ) noexcept {
      vornMarkedForDeletionGIs( vt_, HashKey< Key >::form( key ), marked );
   }

   /// For a walk over all members.
   Iterator begin() noexcept { return Iterator( *this ); }
   IteratorConst begin() const noexcept { return IteratorConst( *this ); }
   /// The first member, null where there is none.
   Node const * first() const noexcept { return static_cast< Node const * >( firstG( vt_ ) ); }
   /// The member with that key, or else the one that follows where it would stand; null behind the last.
   Node const * atOrBehind( Key const & key ) const noexcept {
      return static_cast< Node const * >( atOrBehindG( vt_, HashKey< Key >::form( key ) ) );
   }
   /// The end of such a walk.
   std::default_sentinel_t end() const noexcept { return {}; }

 private:
   Node * lookup( Key const & key ) const noexcept {
      return static_cast< Node * >( lookupNodeG( vt_, HashKey< Key >::form( key ) ) );
   }
   bool nodeIs( Key const & key, Node && node ) {
      auto const [member, added] = newMemberG( vt_, HashKey< Key >::form( key ), std::move( node ) );
      if ( !added ) static_cast< Node * >( member )->nodeIs( std::move( node ) );
      return added;
   }
};

/// Walks a map in the order of its hash words. `it->key()`, `it->value()` are those of the member as the
/// iterator found it; `currNodeNonStale()` is the member in the map, null once it has been deleted.
template< class Owner, class Key, class Value, class KeyFunktor >
template< class NodeType >
class HashMap2018< Owner, Key, Value, KeyFunktor >::IteratorOf : public HashMap2018IteratorGeneric {
 public:
   /// The map, const for a walk that only reads.
   using Map = std::conditional_t< std::is_const_v< NodeType >, HashMap2018 const, HashMap2018 >;

   /// On the first member.
   explicit IteratorOf( Map & map ) noexcept : HashMap2018IteratorGeneric( map, HashMap2018::vt_ ) {}
   /// On the member with that key, or else on the one that follows where it would stand.
   IteratorOf( Map & map, Key const & key ) noexcept
        : HashMap2018IteratorGeneric( map, HashMap2018::vt_, HashKey< Key >::form( key ) ) {}

   /// The member as the iterator found it, deleted since or not.
   NodeType * currNodeMaybeStale() const noexcept {
      return static_cast< NodeType * >( HashMap2018IteratorGeneric::currNodeMaybeStale() );
   }
   /// The member in the map; null once it has been deleted.
   NodeType * currNodeNonStale() const noexcept {
      return static_cast< NodeType * >( HashMap2018IteratorGeneric::currNodeNonStale() );
   }
   /// To the next member.
   void advance() noexcept { advanceBy( sizeof( NodeType ) ); }
   /// The member as the iterator found it.
   NodeType & operator*() const noexcept { return *currNodeMaybeStale(); }
   /// The member as the iterator found it.
   NodeType * operator->() const noexcept { return currNodeMaybeStale(); }
   /// To the next member.
   IteratorOf & operator++() noexcept {
      advance();
      return *this;
   }
   /// Whether the walk is at its end.
   bool operator==( std::default_sentinel_t ) const noexcept { return !*this; }
};

} // namespace Vorn
