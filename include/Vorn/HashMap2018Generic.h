/// \file
/// The type-erased core of the node hash map (see HashMap2018.h for the typed map).
///
/// A directory of 2^n pointers, indexed by the high n bits of the hash word, leads to buckets; a bucket that
/// needs fewer bits than n stands in several neighbouring entries. While there is one bucket there is no
/// directory: the map points to the bucket itself. A bucket is one heap block,
///
///     | hash words: capacity * 4 | pad | header: 4 | nodes: capacity * node size |
///       ^ (capacity * 4 + 11) & ~7 bytes in front of the nodes
///
/// whose members stand in the order of their words, ties in the order of their keys, so walking the directory
/// walks all members in one order, which growth and splits do not change. Words of free slots are all ones.
/// The lowest bit of a word is no part of the hash: it is the member's mark for deletion (mark and sweep).
///
/// A bucket is counted: the map holds one reference, each iterator that stands in it another. A bucket with
/// more than one reference is never changed, other than by writing values and marks; the map builds a new
/// block instead. So an iterator's node stays readable whatever happens to the map, and an iterator is up to
/// date exactly while the directory still leads to its bucket.
#pragma once

#include "Vorn/HashHelper.h"

#if defined( __SSE2__ )
#include <emmintrin.h>
#endif

namespace Vorn {

struct HashMap2018VTable;

/// Empty base of every kind of node.
class HashMap2018LinkNodeBase {};

/// Header of a bucket, from which its words and nodes are found. Bits 0 to 3 count the references, bits 4 to
/// 17 are the capacity, bits 18 to 31 the slots in use.
class HashMap2018BktHdr {
 public:
   static constexpr U32 refMask = 0xf;
   static constexpr U32 maxSlots = 0x3fff;

   HashMap2018BktHdr( U32 capacity, U32 used ) noexcept : bits_( used << 18 | capacity << 4 | 1 ) {}

   U32 capacity() const noexcept { return bits_ >> 4 & maxSlots; }
   U32 used() const noexcept { return bits_ >> 18; }
   void usedIs( U32 used ) noexcept { bits_ = ( bits_ & 0x3ffff ) | used << 18; }
   bool shared() const noexcept { return ( bits_ & refMask ) != 1; }
   U32 & refWord() noexcept { return bits_; }

   /// Bytes from the start of the block to the nodes.
   static constexpr std::size_t nodeOffset( U32 capacity ) noexcept {
      return ( std::size_t( capacity ) * 4 + 11 ) & ~std::size_t( 7 );
   }
   U32 * words() noexcept {
      return reinterpret_cast< U32 * >( reinterpret_cast< char * >( this + 1 ) - nodeOffset( capacity() ) );
   }
   char * nodes() noexcept { return reinterpret_cast< char * >( this + 1 ); }

 private:
   U32 bits_;
};
static_assert( sizeof( HashMap2018BktHdr ) == 4 );

/// Runs of nodes from which a new bucket is filled.
class HashMap2018NodeSourceColl {
 public:
   struct Run {
      HashMap2018LinkNodeBase * nodes;
      U32 count;
      bool copy; ///< copy the nodes; else they are moved out of their old place
   };

   void runIs( void * nodes, U32 count, bool copy ) noexcept {
      runs_[num_++] = { static_cast< HashMap2018LinkNodeBase * >( nodes ), count, copy };
   }
   Run const * begin() const noexcept { return runs_; }
   Run const * end() const noexcept { return runs_ + num_; }

 private:
   Run runs_[3];
   U32 num_ = 0;
};

/// What a map must know about its nodes. One constant record for each type of map, passed to each operation.
struct HashMap2018VTable {
   using Node = HashMap2018LinkNodeBase;
   enum MoveOrCopy : U32 { move = 0, copy = 1 };

   U32 nodeAlign; ///< alignment of a node: at most 8
   U32 nodeSize;  ///< bytes of a node

   /// Drops a reference on a bucket; the last one destroys the nodes and frees the block.
   void ( *bktHdrRefDec )( HashMap2018BktHdr * header ) noexcept;
   /// Whether the node has that key.
   bool ( *keyEqualsNode )( HashHelper const & key, Node const * node ) noexcept;
   /// Constructs a node in a raw slot.
   void ( *place )( HashMap2018VTable const & vt, void * slot, Node * node, MoveOrCopy how ) noexcept;
   /// Opens or closes a gap in a bucket of `count` nodes. Negative `slotsToShift`: that many nodes at
   /// `position` go. Otherwise it must be 1, and `source` moves into the slot at `position`.
   void ( *shift )( HashMap2018VTable const & vt, void * base, Node * source, U32 count, U32 position,
                    int slotsToShift ) noexcept;
   /// Fills the raw nodes of a new bucket from runs of old ones, and tracks the allocation.
   void ( *newBucketAssemble )( HashMap2018VTable const & vt, U32 capacity, void * destination,
                                HashMap2018NodeSourceColl const & sources ) noexcept;
   /// Order of keys whose words are equal: `a`'s key, or `key` where `a` is null, against `b`'s. 0 if equal,
   /// 1 if the first is less, else 2.
   U32 ( *compareOrLruUnlink )( HashHelper const * key, Node const * a, Node const * b ) noexcept;
   void const * null;
};

/// The three words that a map takes in its owner, and all operations on them. Every operation must be given
/// the same record.
class VORN_API HashMap2018Generic {
 public:
   using VTable = HashMap2018VTable;
   using Node = HashMap2018LinkNodeBase;
   using BktHdr = HashMap2018BktHdr;

   /// Result of an insertion.
   struct NewMember {
      Node * node; ///< the member with that key
      bool added;  ///< false: it was there before and is unchanged
   };

   /// An empty map; memory is taken with the first member. `initialSize` is a hint, which is not needed.
   HashMap2018Generic( VTable const &, U32 initialSize ) noexcept { static_cast< void >( initialSize ); }
   HashMap2018Generic( HashMap2018Generic const & ) = delete;
   HashMap2018Generic & operator=( HashMap2018Generic const & ) = delete;

   /// Number of members.
   U32 members() const noexcept { return members_; }
   /// Changes with each insertion and deletion.
   U32 modificationCount() const noexcept { return modificationCount_; }

   /// The member with that key, or null. Valid until the next insertion or deletion.
   [[gnu::always_inline]] Node * lookupNodeG( VTable const & vt, HashHelper const & key ) const noexcept;
   /// Moves `node` into the map, unless there is a member with that key, which must be the node's.
   [[gnu::always_inline]] NewMember newMemberG( VTable const & vt, HashHelper const & key, Node && node );
   /// Removes the member with that key and constructs it again in the raw slot `out`, so that it is destroyed
   /// when the map is whole again. False if there is none.
   bool deleteMemberG( VTable const & vt, HashHelper const & key, void * out );
   /// Removes all members and gives back all memory, but for the buckets that iterators hold.
   void emptyAllBuckets( VTable const & vt ) noexcept;

   /// Marks every member for deletion.
   void vornMarkAllForDeletionG( VTable const & vt ) noexcept;
   /// Sets or clears one member's mark. An absent key does nothing.
   void vornMarkedForDeletionGIs( VTable const & vt, HashHelper const & key, bool marked ) noexcept;

   // The framework's share in the functions of the records.

   /// Drops a reference and returns what is left.
   static U32 bktHdrRefDecHelper( BktHdr * header ) noexcept {
      return refDec( header->refWord() ) & BktHdr::refMask;
   }
   /// Tracks a bucket of `nodeSize` out of existence and frees its block.
   static void bucketFree( BktHdr * header, U32 nodeSize ) noexcept;
   static void trivialPlace( VTable const & vt, void * slot, Node * node, VTable::MoveOrCopy ) noexcept {
      std::memcpy( slot, static_cast< void * >( node ), vt.nodeSize );
   }
   static void trivialShift( VTable const & vt, void * base, Node * source, U32 count, U32 position,
                             int slotsToShift ) noexcept;
   static void trivialNewBucketAssemble( VTable const & vt, void * destination,
                                         HashMap2018NodeSourceColl const & sources ) noexcept;
   /// Counts the buckets of all maps, with the bytes that are not nodes.
   static AllocTrackTypeInfo const & bucketAllocTrack() noexcept { return vornAllocTrackTypeInfo_; }

 private:
   friend class HashMap2018IteratorGeneric;

   static constexpr U32 firstCapacity = 4;
   /// A bucket of this size splits rather than grows; one that stands alone may have twice as many slots.
   static constexpr U32 splitCapacity = 16;
   /// The directory doubles only when it has that many members for each entry, or when it must.
   static constexpr U32 directoryLoad = 8;
   /// Members whose words agree in this many bits must share a bucket.
   static constexpr U32 maxDirectoryBits = 24;

   struct Position {
      U32 slot;
      bool found;
   };

   /// The bucket for that word; null only while the map is empty.
   BktHdr * bucketOf( U32 word ) const noexcept {
      if ( directoryBits_ == 0 ) return static_cast< BktHdr * >( root_ );
      return directory()[word >> ( 32 - directoryBits_ )];
   }
   BktHdr ** directory() const noexcept { return static_cast< BktHdr ** >( root_ ); }
   static Node * nodeAt( VTable const & vt, BktHdr * bucket, U32 slot ) noexcept {
      return reinterpret_cast< Node * >( bucket->nodes() + std::size_t( slot ) * vt.nodeSize );
   }
   static U32 lowerBound( U32 const * words, U32 capacity, U32 word ) noexcept;
   static U32 lowerBoundLarge( U32 const * words, U32 capacity, U32 word ) noexcept;
   static Position position( VTable const & vt, BktHdr * bucket, HashHelper const & key ) noexcept;
   static void refIncChecked( BktHdr * bucket ) noexcept;
   static BktHdr * newBucket( VTable const & vt, U32 capacity, U32 used,
                              HashMap2018NodeSourceColl const & sources );
   static void insertInPlace( VTable const & vt, U32 word, BktHdr * bucket, U32 slot, Node & node ) noexcept;
   Node * newMemberSlow( VTable const & vt, U32 word, BktHdr * bucket, U32 slot, Node & node );
   BktHdr * roomMake( VTable const & vt, U32 word, BktHdr * bucket, U32 & slot );
   BktHdr * bucketSplit( VTable const & vt, U32 word, BktHdr * bucket, U32 & slot );
   BktHdr * bucketUnshare( VTable const & vt, U32 word, BktHdr * bucket );
   void bucketReplace( VTable const & vt, U32 word, BktHdr * old, BktHdr * bucket ) noexcept;
   void directoryDouble();
   U32 directoryIndex( U32 word ) const noexcept {
      return directoryBits_ ? word >> ( 32 - directoryBits_ ) : 0;
   }
   U32 entriesBits( U32 index, BktHdr * bucket ) const noexcept;
   BktHdr * nextBucket( U32 index ) const noexcept;
   template< class Visit >
   void bucketsVisit( Visit visit ) noexcept;

   static AllocTrackTypeInfo vornAllocTrackTypeInfo_;

   void * root_ = nullptr; // the directory, or the only bucket, or null
   U32 members_ = 0;
   U32 modificationCount_ = 0;
   U32 directoryBits_ = 0; // the directory has 2^directoryBits_ entries; 0: there is none
};
static_assert( sizeof( HashMap2018Generic ) == 3 * sizeof( void * ) );

/// Stands on one member, or at the end. It survives any change of the map, and the end of its content; only
/// the map itself must be there when it moves on.
class VORN_API HashMap2018IteratorGeneric {
 public:
   using VTable = HashMap2018VTable;
   using Node = HashMap2018LinkNodeBase;

   /// On the first member.
   HashMap2018IteratorGeneric( HashMap2018Generic const & map, VTable const & vt ) noexcept;
   /// On the member with that key, or else on the one that follows where it would stand.
   HashMap2018IteratorGeneric( HashMap2018Generic const & map, VTable const & vt,
                               HashHelper const & key ) noexcept;
   HashMap2018IteratorGeneric( HashMap2018IteratorGeneric const & other ) noexcept;
   HashMap2018IteratorGeneric & operator=( HashMap2018IteratorGeneric other ) noexcept;
   ~HashMap2018IteratorGeneric() {
      if ( bucket_ ) vt_->bktHdrRefDec( bucket_ );
   }

   explicit operator bool() const noexcept { return bucket_ != nullptr; }
   bool operator!() const noexcept { return !bucket_; }

   /// To the member that follows, whether or not the present one is still in the map.
   void advance() noexcept {
      if ( slot_ + 1u < bucket_->used() && upToDate() ) {
         ++slot_;
      } else {
         advanceSlow();
      }
   }
   /// The node as it was when the iterator came to it; good for reading its key. Null at the end.
   Node * currNodeMaybeStale() const noexcept {
      return bucket_ ? HashMap2018Generic::nodeAt( *vt_, bucket_, slot_ ) : nullptr;
   }
   /// The node in the map, for its value; null if it has been deleted, and at the end.
   Node * currNodeNonStale() const noexcept;
   /// Whether the member is in the map and marked for deletion.
   bool markedForDeletion() const noexcept;

 private:
   using BktHdr = HashMap2018BktHdr;

   struct Live {
      BktHdr * bucket; // null: the map is empty
      U32 slot;
      bool found; // the member is still in the map
   };

   U32 word() const noexcept { return bucket_->words()[slot_] & ~HashHelper::markBit; }
   bool upToDate() const noexcept { return map_->bucketOf( word() ) == bucket_; }
   Live live() const noexcept;
   void advanceSlow() noexcept;
   void standIs( BktHdr * bucket, U32 slot ) noexcept;
   void standAtOrBehind( U32 word, BktHdr * bucket, U32 slot ) noexcept;

   HashMap2018Generic const * map_;
   VTable const * vt_;
   BktHdr * bucket_ = nullptr; // null at the end; else one reference on it is ours
   U16 slot_ = 0;
};

// Operations that run for each key. With a constant record their calls through it become direct ones.

inline U32 HashMap2018Generic::lowerBound( U32 const * words, U32 capacity, U32 word ) noexcept {
   if ( capacity > 2 * splitCapacity ) [[unlikely]]
      return lowerBoundLarge( words, capacity, word );
#if defined( __SSE2__ )
   // Free slots are all ones, never less. There is no unsigned comparison, so the signs are flipped.
   __m128i const flip = _mm_set1_epi32( int( 0x80000000u ) );
   __m128i const wanted = _mm_xor_si128( _mm_set1_epi32( int( word ) ), flip );
   __m128i less = _mm_setzero_si128();
   for ( U32 i = 0; i < capacity; i += 4 ) {
      __m128i const four = _mm_loadu_si128( reinterpret_cast< __m128i const * >( words + i ) );
      less = _mm_sub_epi32( less, _mm_cmpgt_epi32( wanted, _mm_xor_si128( four, flip ) ) );
   }
   less = _mm_add_epi32( less, _mm_shuffle_epi32( less, _MM_SHUFFLE( 1, 0, 3, 2 ) ) );
   less = _mm_add_epi32( less, _mm_shuffle_epi32( less, _MM_SHUFFLE( 2, 3, 0, 1 ) ) );
   return U32( _mm_cvtsi128_si32( less ) );
#else
   U32 less = 0;
   for ( U32 i = 0; i < capacity; ++i ) {
      less += words[i] < word;
   }
   return less;
#endif
}

inline HashMap2018Generic::Position HashMap2018Generic::position( VTable const & vt, BktHdr * bucket,
                                                                  HashHelper const & key ) noexcept {
   U32 const * const words = bucket->words();
   U32 const used = bucket->used();
   U32 const last = key.word() | HashHelper::markBit;
   U32 slot = lowerBound( words, bucket->capacity(), key.word() );
   for ( ; slot < used && words[slot] <= last; ++slot ) {
      Node const * const node = nodeAt( vt, bucket, slot );
      if ( vt.keyEqualsNode( key, node ) ) return { slot, true };
      if ( vt.compareOrLruUnlink( &key, nullptr, node ) == 1 ) break;
   }
   return { slot, false };
}

inline HashMap2018LinkNodeBase * HashMap2018Generic::lookupNodeG( VTable const & vt,
                                                                  HashHelper const & key ) const noexcept {
   BktHdr * const bucket = bucketOf( key.word() );
   if ( !bucket ) return nullptr;
   auto const [slot, found] = position( vt, bucket, key );
   return found ? nodeAt( vt, bucket, slot ) : nullptr;
}

inline HashMap2018Generic::NewMember HashMap2018Generic::newMemberG( VTable const & vt,
                                                                     HashHelper const & key, Node && node ) {
   BktHdr * const bucket = bucketOf( key.word() );
   Position at{ 0, false };
   if ( bucket ) {
      at = position( vt, bucket, key );
      if ( at.found ) return { nodeAt( vt, bucket, at.slot ), false };
   }
   if ( !bucket || bucket->used() == bucket->capacity() || bucket->shared() ) [[unlikely]]
      return { newMemberSlow( vt, key.word(), bucket, at.slot, node ), true };
   insertInPlace( vt, key.word(), bucket, at.slot, node );
   ++members_;
   ++modificationCount_;
   return { nodeAt( vt, bucket, at.slot ), true };
}

[[gnu::always_inline]] inline void HashMap2018Generic::insertInPlace( VTable const & vt, U32 word,
                                                                      BktHdr * bucket, U32 slot,
                                                                      Node & node ) noexcept {
   U32 const used = bucket->used();
   U32 * const at = bucket->words() + slot;
   if ( slot != used ) std::memmove( at + 1, at, ( used - slot ) * sizeof( U32 ) );
   *at = word;
   vt.shift( vt, bucket->nodes(), &node, used, slot, 1 );
   bucket->usedIs( used + 1 );
}

inline void HashMap2018Generic::trivialShift( VTable const & vt, void * base, Node * source, U32 count,
                                              U32 position, int slotsToShift ) noexcept {
   std::size_t const size = vt.nodeSize;
   char * const to = static_cast< char * >( base ) + position * size;
   if ( slotsToShift < 0 ) {
      std::size_t const gap = std::size_t( -slotsToShift );
      std::memmove( to, to + gap * size, ( count - position - gap ) * size );
      return;
   }
   VORN_ASSERT( slotsToShift == 1 );
   if ( position != count ) std::memmove( to + size, to, ( count - position ) * size );
   std::memcpy( to, static_cast< void * >( source ), size );
}

inline void HashMap2018Generic::bucketFree( BktHdr * header, U32 nodeSize ) noexcept {
   std::size_t const offset = BktHdr::nodeOffset( header->capacity() );
   vornAllocTrackTypeInfo_.trackDeallocation( offset );
   vornMemFree( header->words(), offset + std::size_t( header->capacity() ) * nodeSize );
}

} // namespace Vorn
