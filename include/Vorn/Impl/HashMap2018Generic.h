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
/// walks all members in one order, which growth and splits do not change. The lowest bit of a word is no part
/// of the hash: it is the member's mark for deletion (mark and sweep).
///
/// A bucket is counted: the map holds one reference, each iterator that stands in it another. A bucket with
/// more than one reference is never changed, other than by writing values and marks; the map builds a new
/// block instead. So an iterator's node stays readable whatever happens to the map, and an iterator is up to
/// date exactly while the directory still leads to its bucket.
#pragma once

#include "Vorn/Impl/HashMap2018Bucket.h"

namespace Vorn {

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

   /// The first member, the one with that key or else behind where it would stand, null where there is none.
   Node * firstG( VTable const & vt ) const noexcept;
   Node * atOrBehindG( VTable const & vt, HashHelper const & key ) const noexcept;
   /// The member with that key, or null. Valid until the next insertion or deletion.
   [[gnu::always_inline]] Node * lookupNodeG( VTable const & vt, HashHelper const & key ) const noexcept;
   /// Moves `node` into the map, unless there is a member with that key, which must be the node's.
   [[gnu::always_inline]] NewMember newMemberG( VTable const & vt, HashHelper const & key, Node && node );
   /// Removes the member with that key and constructs it again in the raw slot `out`, so that it is destroyed
   /// when the map is whole again. False if there is none.
   [[gnu::always_inline]] bool deleteMemberG( VTable const & vt, HashHelper const & key, void * out );
   /// Whether a member with that key is absent and has no room beside `others` more: so many keys of its hash
   /// are there already. Who takes keys from elsewhere asks, since `newMemberG` asserts.
   bool crowdedG( VTable const & vt, HashHelper const & key, U32 others ) const noexcept;
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
   /// With fewer members for each entry the map is built anew with a smaller directory.
   static constexpr U32 thinLoad = 2;
   /// Members whose words agree in this many bits must share a bucket.
   static constexpr U32 maxDirectoryBits = 24;

   struct Position {
      U32 slot;
      bool found;
   };

   /// The bucket for that word; null only while the map is empty.
   BktHdr * bucketOf( U32 word ) const noexcept {
      if ( directoryBits_ == 0 ) return static_cast< BktHdr * >( root_ );
      BktHdr * const bucket = directory()[word >> ( 32 - directoryBits_ )];
      // In a large map all of it is far away: ask for the words and the nodes while the header comes.
      auto const * const at = reinterpret_cast< char const * >( bucket );
      __builtin_prefetch( at - 64 );
      __builtin_prefetch( at + 64 );
      __builtin_prefetch( at + 128 );
      return bucket;
   }
   BktHdr ** directory() const noexcept { return static_cast< BktHdr ** >( root_ ); }
   static Node * nodeAt( VTable const & vt, BktHdr * bucket, U32 slot ) noexcept {
      return reinterpret_cast< Node * >( bucket->nodes() + std::size_t( slot ) * vt.nodeSize );
   }
   static Node * lookupLarge( VTable const & vt, BktHdr * bucket, HashHelper const & key ) noexcept;
   static Position position( VTable const & vt, BktHdr * bucket, HashHelper const & key ) noexcept;
   static Position positionInRun( VTable const & vt, BktHdr * bucket, HashHelper const & key,
                                  U32 from ) noexcept;
   static void refIncChecked( BktHdr * bucket ) noexcept;
   static BktHdr * newBucket( VTable const & vt, U32 capacity, U32 used,
                              HashMap2018NodeSourceColl const & sources );
   static void insertInPlace( VTable const & vt, U32 word, BktHdr * bucket, U32 slot, Node & node ) noexcept;
   Node * newMemberSlow( VTable const & vt, U32 word, BktHdr * bucket, U32 slot, Node & node );
   BktHdr * roomMake( VTable const & vt, U32 word, BktHdr * bucket, U32 & slot );
   BktHdr * bucketSplit( VTable const & vt, U32 word, BktHdr * bucket, U32 & slot );
   void thin( VTable const & vt ) noexcept;
   void rebuild( VTable const & vt ) noexcept;
   static BktHdr * bucketCopy( VTable const & vt, BktHdr * bucket );
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
   U32 deletions_ = 0;     // since somebody last looked whether the map has become thin
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
      if ( bucket_ ) letGo( bucket_ );
   }

   explicit operator bool() const noexcept { return node_ != nullptr; }
   bool operator!() const noexcept { return !node_; }

   /// To the member that follows, whether or not the present one is still in the map.
   void advance() noexcept { advanceBy( vt_->nodeSize ); }
   /// The node as it was when the iterator came to it; good for reading its key. Null at the end.
   Node * currNodeMaybeStale() const noexcept { return node_; }
   /// The node in the map, for its value; null if it has been deleted, and at the end.
   Node * currNodeNonStale() const noexcept;
   /// Whether the member is in the map and marked for deletion.
   bool markedForDeletion() const noexcept;

 protected:
   /// As `advance`, for nodes of that size.
   void advanceBy( std::size_t nodeSize ) noexcept {
      if ( !unchanged() ) [[unlikely]] {
         advanceSlow();
      } else if ( behind_ ) [[likely]] {
         --behind_;
         node_ = reinterpret_cast< Node * >( reinterpret_cast< char * >( node_ ) + nodeSize );
      } else if ( map_->directoryBits_ ) {
         standBehind( word(), bucket_ );
      } else { // it was the only bucket
         node_ = nullptr;
         letGo( std::exchange( bucket_, nullptr ) );
      }
   }

 private:
   using BktHdr = HashMap2018BktHdr;

   struct Live {
      BktHdr * bucket; // null: the map is empty
      U32 slot;
      bool found; // the member is still in the map
   };

   // The bucket is shared while this iterator stands in it, so the slots in use stay as they are.
   U32 slot() const noexcept { return bucket_->used() - 1u - behind_; }
   U32 word() const noexcept { return bucket_->words()[slot()] & ~HashHelper::markBit; }
   /// Whether nothing has happened to the map since the iterator came here.
   bool unchanged() const noexcept { return modificationCount_ == map_->modificationCount_; }
   Live live() const noexcept;
   void advanceSlow() noexcept;
   /// Drops a reference on a bucket, most often not the last: the map has one.
   void letGo( BktHdr * bucket ) const noexcept {
      if ( bucket->shared() && !VFPtrInterface::threadSafePointers_ ) [[likely]] {
         HashMap2018Generic::bktHdrRefDecHelper( bucket );
      } else {
         vt_->bktHdrRefDec( bucket );
      }
   }
   void standBehind( U32 word, BktHdr * bucket ) noexcept;
   void standIs( BktHdr * bucket, U32 slot ) noexcept;
   void standAtOrBehind( U32 word, BktHdr * bucket, U32 slot ) noexcept;

   HashMap2018Generic const * map_;
   VTable const * vt_;
   BktHdr * bucket_ = nullptr; // null at the end; else one reference on it is ours
   Node * node_ = nullptr;     // in that bucket
   U32 behind_ = 0;            // members behind it in that bucket
   U32 modificationCount_ = 0; // of the map, when the iterator came here
};

// Operations that run for each key. With a constant record their calls through it become direct ones.

inline HashMap2018Generic::Position HashMap2018Generic::position( VTable const & vt, BktHdr * bucket,
                                                                  HashHelper const & key ) noexcept {
   U32 const * const words = bucket->words();
   U32 const used = bucket->used();
   U32 const last = key.word() | HashHelper::markBit;
   // Indices come in ascending order, so a new one often belongs behind the others.
   if ( used && words[used - 1] < key.word() ) return { used, false };
   U32 slot = hashWordLowerBound( words, used, key.word() );
   for ( U32 const some = slot + hashWordScan; slot < used && words[slot] <= last; ++slot ) {
      if ( slot == some ) [[unlikely]]
         return positionInRun( vt, bucket, key, slot );
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
   U32 const used = bucket->used();
   if ( used > hashWordScan ) [[unlikely]]
      return lookupLarge( vt, bucket, key );
   for ( U32 same = hashWordsEqual( bucket->words(), used, key.word() ); same; same &= same - 1 ) {
      Node * const node = nodeAt( vt, bucket, U32( std::countr_zero( same ) ) );
      if ( vt.keyEqualsNode( key, node ) ) return node;
   }
   return nullptr;
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

inline bool HashMap2018Generic::deleteMemberG( VTable const & vt, HashHelper const & key, void * out ) {
   BktHdr * bucket = bucketOf( key.word() );
   if ( !bucket ) return false;
   auto const [slot, found] = position( vt, bucket, key );
   if ( !found ) return false;
   if ( bucket->shared() ) [[unlikely]]
      bucket = bucketUnshare( vt, key.word(), bucket );
   U32 const used = bucket->used();
   U32 * const at = bucket->words() + slot;
   vt.place( vt, out, nodeAt( vt, bucket, slot ), VTable::move );
   vt.shift( vt, bucket->nodes(), nullptr, used, slot, -1 );
   std::memmove( at, at + 1, ( used - slot - 1 ) * sizeof( U32 ) );
   bucket->usedIs( used - 1 );
   ++modificationCount_;
   --members_;
   ++deletions_;
   if ( members_ == 0 || ( directoryBits_ && deletions_ >> directoryBits_ ) ) [[unlikely]]
      thin( vt );
   return true;
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
   vornMemFree( header->words(), BktHdr::blockBytes( header->capacity(), nodeSize ) );
}

} // namespace Vorn
