// The map of values: counted buckets over the reversed hash.
#include "Vorn/Impl/HashMap2018Generic.h"

#include <algorithm>
#include <bit>

namespace Vorn {

AllocTrackTypeInfo HashMap2018Generic::vornAllocTrackTypeInfo_{ nullptr };

// Insertion.

HashMap2018LinkNodeBase * HashMap2018Generic::newMemberSlow( VTable const & vt, U32 word, BktHdr * bucket,
                                                             U32 slot, Node & node ) {
   if ( !bucket ) {
      HashMap2018NodeSourceColl sources;
      sources.runIs( &node, 1, false );
      bucket = newBucket( vt, firstCapacity, 1, sources );
      bucket->words()[0] = word;
      root_ = bucket;
   } else {
      bucket = roomMake( vt, word, bucket, slot );
      U32 const used = bucket->used();
      bool const copy = bucket->shared();
      U32 const capacity = bucket->capacity();
      if ( used < capacity && !copy ) {
         insertInPlace( vt, word, bucket, slot, node );
      } else {
         HashMap2018NodeSourceColl sources;
         sources.runIs( bucket->nodes(), slot, copy );
         sources.runIs( &node, 1, false );
         sources.runIs( nodeAt( vt, bucket, slot ), used - slot, copy );
         U32 const newCapacity = used < capacity ? capacity : std::min( capacity * 2, BktHdr::maxSlots );
         BktHdr * const grown = newBucket( vt, newCapacity, used + 1, sources );
         U32 * const words = std::copy_n( bucket->words(), slot, grown->words() );
         *words = word;
         std::copy_n( bucket->words() + slot, used - slot, words + 1 );
         bucketReplace( vt, word, bucket, grown );
         bucket = grown;
      }
   }
   ++members_;
   ++modificationCount_;
   return nodeAt( vt, bucket, slot );
}

/// Splits buckets and doubles the directory until the bucket of `word` has a free slot, or is rightly full
/// and to be built anew with more slots. Returns that bucket and adjusts the slot where the new member
/// belongs.
HashMap2018BktHdr * HashMap2018Generic::roomMake( VTable const & vt, U32 word, BktHdr * bucket, U32 & slot ) {
   for ( ;; ) {
      U32 const capacity = bucket->capacity();
      U32 const used = bucket->used();
      if ( used < capacity || capacity < ( directoryBits_ ? splitCapacity : 2 * splitCapacity ) )
         return bucket;
      U32 const * const words = bucket->words();
      U32 const low = std::min( words[0] & ~HashHelper::markBit, word );
      U32 const high = std::max( words[used - 1] & ~HashHelper::markBit, word );
      auto const commonBits = U32( std::countl_zero( low ^ high ) );
      bool const atLimit = capacity == BktHdr::maxSlots;
      if ( commonBits < directoryBits_ ) {
         bucket = bucketSplit( vt, word, bucket, slot );
      } else if ( commonBits < maxDirectoryBits &&
                  ( atLimit || members_ >> directoryBits_ >= directoryLoad ) ) {
         directoryDouble();
      } else {
         VORN_ASSERT_TEXT( !atLimit, "bucketSlots <= 16383" );
         return bucket;
      }
   }
}

bool HashMap2018Generic::crowdedG( VTable const & vt, HashHelper const & key, U32 others ) const noexcept {
   if ( members_ + others < BktHdr::maxSlots || !members_ ) return false;
   return bucketOf( key.word() )->used() + others >= BktHdr::maxSlots && !lookupNodeG( vt, key );
}

/// The position of a key among many of its hash, from a slot on: they stand in the order of the keys. Whoever
/// chooses keys of one hash gains nothing by it.
HashMap2018Generic::Position HashMap2018Generic::positionInRun( VTable const & vt, BktHdr * bucket,
                                                                HashHelper const & key, U32 from ) noexcept {
   U32 const * const words = bucket->words();
   U32 const behind = ( key.word() | HashHelper::markBit ) + 1; // 0 behind the last word of all
   U32 end = behind ? hashWordLowerBound( words, bucket->used(), behind ) : bucket->used();
   while ( from < end ) {
      U32 const middle = from + ( end - from ) / 2;
      switch ( vt.compareOrLruUnlink( &key, nullptr, nodeAt( vt, bucket, middle ) ) ) {
      case 0: return { middle, true };
      case 1: end = middle; break;
      default: from = middle + 1;
      }
   }
   return { from, false };
}

/// Divides the directory entries of the bucket, and its members with them, between two buckets.
HashMap2018BktHdr * HashMap2018Generic::bucketSplit( VTable const & vt, U32 word, BktHdr * bucket,
                                                     U32 & slot ) {
   bucket = bucketUnshare( vt, word, bucket );
   U32 const half = ( 1u << entriesBits( directoryIndex( word ), bucket ) ) >> 1;
   U32 const middle = ( directoryIndex( word ) | half ) & ~( half - 1 );
   U32 const boundary = middle << ( 32 - directoryBits_ );
   U32 const used = bucket->used();
   U32 * const words = bucket->words();
   U32 const lower = hashWordLowerBound( words, used, boundary );

   HashMap2018NodeSourceColl sources;
   sources.runIs( nodeAt( vt, bucket, lower ), used - lower, false );
   U32 const upperNum = used - lower;
   BktHdr * const upper =
        newBucket( vt, std::max( splitCapacity, std::bit_ceil( upperNum + 1 ) ), upperNum, sources );
   std::copy_n( words + lower, upperNum, upper->words() );
   // What has moved out is taken off the top of the old block, which goes on as the lower half.
   if ( upperNum ) vt.shift( vt, bucket->nodes(), nullptr, used, lower, -int( upperNum ) );
   bucket->usedIs( lower );
   std::fill_n( directory() + middle, half, upper );
   if ( word < boundary ) return bucket;
   slot -= lower;
   return upper;
}

void HashMap2018Generic::directoryDouble() {
   std::size_t const entries = std::size_t( 1 ) << directoryBits_;
   auto ** const doubled = static_cast< BktHdr ** >( vornMemAlloc( 2 * entries * sizeof( BktHdr * ) ) );
   BktHdr * const only = static_cast< BktHdr * >( root_ );
   BktHdr * const * const old = directoryBits_ ? directory() : &only;
   for ( std::size_t i = 0; i < entries; ++i ) {
      doubled[2 * i] = doubled[2 * i + 1] = old[i];
   }
   if ( directoryBits_ ) vornMemFree( root_, entries * sizeof( BktHdr * ) );
   root_ = doubled;
   ++directoryBits_;
}

// Buckets.

HashMap2018BktHdr * HashMap2018Generic::newBucket( VTable const & vt, U32 capacity, U32 used,
                                                   HashMap2018NodeSourceColl const & sources ) {
   capacity = std::min( capacity, BktHdr::maxSlots );
   std::size_t const offset = BktHdr::nodeOffset( capacity );
   auto * const block = static_cast< char * >( vornMemAlloc( BktHdr::blockBytes( capacity, vt.nodeSize ) ) );
   auto * const bucket = new ( block + offset - sizeof( BktHdr ) ) BktHdr( capacity, used );
   vornAllocTrackTypeInfo_.trackAllocation( offset );
   vt.newBucketAssemble( vt, capacity, bucket->nodes(), sources );
   return bucket;
}

HashMap2018BktHdr * HashMap2018Generic::bucketCopy( VTable const & vt, BktHdr * bucket ) {
   U32 const used = bucket->used();
   HashMap2018NodeSourceColl sources;
   sources.runIs( bucket->nodes(), used, true );
   BktHdr * const copy = newBucket( vt, bucket->capacity(), used, sources );
   std::copy_n( bucket->words(), used, copy->words() );
   return copy;
}

/// The bucket itself, if only the map refers to it; else a copy of it, which takes its place.
HashMap2018BktHdr * HashMap2018Generic::bucketUnshare( VTable const & vt, U32 word, BktHdr * bucket ) {
   if ( !bucket->shared() ) return bucket;
   BktHdr * const own = bucketCopy( vt, bucket );
   bucketReplace( vt, word, bucket, own );
   return own;
}

void HashMap2018Generic::bucketReplace( VTable const & vt, U32 word, BktHdr * old,
                                        BktHdr * bucket ) noexcept {
   if ( directoryBits_ ) {
      U32 const index = directoryIndex( word );
      U32 const entries = 1u << entriesBits( index, old );
      std::fill_n( directory() + ( index & ~( entries - 1 ) ), entries, bucket );
   } else {
      root_ = bucket;
   }
   vt.bktHdrRefDec( old );
}

/// The bucket stands in 2 to this power entries, which begin at a multiple of their number.
U32 HashMap2018Generic::entriesBits( U32 index, BktHdr * bucket ) const noexcept {
   U32 bits = 0;
   while ( bits < directoryBits_ && directory()[index ^ 1u << bits] == bucket ) {
      ++bits;
   }
   return bits;
}

void HashMap2018Generic::refIncChecked( BktHdr * bucket ) noexcept {
   VORN_ASSERT_TEXT( ( bucket->refWord() & BktHdr::refMask ) != BktHdr::refMask, "bucketReferences <= 15" );
   refInc( bucket->refWord() );
}

/// The first bucket with members in entry `index` of the directory or behind it, or null.
HashMap2018BktHdr * HashMap2018Generic::nextBucket( U32 index ) const noexcept {
   constexpr U32 ahead = 4; // entries whose buckets a walk asks for before it needs them
   U32 const entries = 1u << directoryBits_;
   for ( ; index < entries; ++index ) {
      BktHdr * const bucket = directoryBits_ ? directory()[index] : static_cast< BktHdr * >( root_ );
      if ( !bucket || !bucket->used() ) continue;
      if ( index + ahead < entries ) {
         auto const * const later = reinterpret_cast< char const * >( directory()[index + ahead] );
         __builtin_prefetch( later );
         __builtin_prefetch( later + 64 );
      }
      return bucket;
   }
   return nullptr;
}

template< class Visit >
void HashMap2018Generic::bucketsVisit( Visit visit ) noexcept {
   BktHdr * const only = static_cast< BktHdr * >( root_ );
   if ( !only ) return;
   BktHdr * const * const entries = directoryBits_ ? directory() : &only;
   for ( U32 i = 0, end = 1u << directoryBits_; i < end; ++i ) {
      // Neighbouring entries may lead to one bucket.
      if ( i + 1 == end || entries[i + 1] != entries[i] ) visit( entries[i] );
   }
}

// Lookup in a bucket that is too large for one scan.

HashMap2018LinkNodeBase * HashMap2018Generic::lookupLarge( VTable const & vt, BktHdr * bucket,
                                                           HashHelper const & key ) noexcept {
   auto const [slot, found] = position( vt, bucket, key );
   return found ? nodeAt( vt, bucket, slot ) : nullptr;
}

// Shrinking.

/// Gives memory back after as many deletions as the directory has entries, if that pays.
void HashMap2018Generic::thin( VTable const & vt ) noexcept {
   deletions_ = 0;
   if ( members_ == 0 ) {
      emptyAllBuckets( vt );
   } else if ( members_ >> directoryBits_ < thinLoad ) {
      rebuild( vt );
   }
}

/// Moves all members, in their order, into a table of the size that they need.
void HashMap2018Generic::rebuild( VTable const & vt ) noexcept {
   HashMap2018Generic old( vt, 0 );
   std::swap( root_, old.root_ );
   std::swap( directoryBits_, old.directoryBits_ );
   U32 const entries = std::bit_floor( std::exchange( members_, 0 ) / directoryLoad );
   if ( entries > 1 ) {
      // All entries lead to one bucket, which splits while it is filled.
      root_ = newBucket( vt, splitCapacity, 0, {} );
      while ( directoryBits_ < U32( std::countr_zero( entries ) ) ) {
         directoryDouble();
      }
   }
   old.bucketsVisit( [&]( BktHdr * bucket ) {
      if ( bucket->shared() ) {
         BktHdr * const copy = bucketCopy( vt, bucket );
         vt.bktHdrRefDec( std::exchange( bucket, copy ) );
      }
      for ( U32 slot = 0; slot < bucket->used(); ++slot ) {
         U32 const word = bucket->words()[slot];
         BktHdr * const last = bucketOf( word );
         newMemberSlow( vt, word, last, last ? last->used() : 0, *nodeAt( vt, bucket, slot ) );
      }
      vt.bktHdrRefDec( bucket );
   } );
   if ( old.directoryBits_ ) vornMemFree( old.root_, sizeof( BktHdr * ) << old.directoryBits_ );
}

// Emptying.

void HashMap2018Generic::emptyAllBuckets( VTable const & vt ) noexcept {
   if ( !root_ ) return;
   // The map is empty before the first node is destroyed: a destructor may look at it, or insert.
   HashMap2018Generic old( vt, 0 );
   std::swap( root_, old.root_ );
   std::swap( directoryBits_, old.directoryBits_ );
   members_ = 0;
   deletions_ = 0;
   ++modificationCount_;
   old.bucketsVisit( [&]( BktHdr * bucket ) { vt.bktHdrRefDec( bucket ); } );
   if ( old.directoryBits_ ) vornMemFree( old.root_, sizeof( BktHdr * ) << old.directoryBits_ );
}

// Mark and sweep.

void HashMap2018Generic::vornMarkAllForDeletionG( VTable const & ) noexcept {
   bucketsVisit( []( BktHdr * bucket ) {
      U32 * const words = bucket->words();
      for ( U32 i = 0; i < bucket->used(); ++i ) {
         words[i] |= HashHelper::markBit;
      }
   } );
}

void HashMap2018Generic::vornMarkedForDeletionGIs( VTable const & vt, HashHelper const & key,
                                                   bool marked ) noexcept {
   BktHdr * const bucket = bucketOf( key.word() );
   if ( !bucket ) return;
   auto const [slot, found] = position( vt, bucket, key );
   if ( found ) bucket->words()[slot] = key.word() | ( marked ? HashHelper::markBit : 0 );
}

void HashMap2018Generic::trivialNewBucketAssemble( VTable const & vt, void * destination,
                                                   HashMap2018NodeSourceColl const & sources ) noexcept {
   auto * to = static_cast< char * >( destination );
   for ( auto const & run : sources ) {
      std::size_t const bytes = std::size_t( run.count ) * vt.nodeSize;
      std::memcpy( to, static_cast< void * >( run.nodes ), bytes );
      to += bytes;
   }
}

// Iteration.

HashMap2018LinkNodeBase * HashMap2018Generic::firstG( VTable const & vt ) const noexcept {
   return HashMap2018IteratorGeneric( *this, vt ).currNodeMaybeStale();
}

HashMap2018LinkNodeBase * HashMap2018Generic::atOrBehindG( VTable const & vt,
                                                           HashHelper const & key ) const noexcept {
   return HashMap2018IteratorGeneric( *this, vt, key ).currNodeMaybeStale();
}

HashMap2018IteratorGeneric::HashMap2018IteratorGeneric( HashMap2018Generic const & map,
                                                        VTable const & vt ) noexcept
     : map_( &map ), vt_( &vt ) {
   standIs( map.nextBucket( 0 ), 0 );
}

HashMap2018IteratorGeneric::HashMap2018IteratorGeneric( HashMap2018Generic const & map, VTable const & vt,
                                                        HashHelper const & key ) noexcept
     : map_( &map ), vt_( &vt ) {
   if ( BktHdr * const bucket = map.bucketOf( key.word() ) )
      standAtOrBehind( key.word(), bucket, HashMap2018Generic::position( vt, bucket, key ).slot );
}

HashMap2018IteratorGeneric::HashMap2018IteratorGeneric( HashMap2018IteratorGeneric const & other ) noexcept
     : map_( other.map_ ), vt_( other.vt_ ), bucket_( other.bucket_ ), node_( other.node_ ),
       behind_( other.behind_ ), modificationCount_( other.modificationCount_ ) {
   if ( bucket_ ) HashMap2018Generic::refIncChecked( bucket_ );
}

HashMap2018IteratorGeneric & HashMap2018IteratorGeneric::operator=(
     HashMap2018IteratorGeneric other ) noexcept {
   std::swap( map_, other.map_ );
   std::swap( vt_, other.vt_ );
   std::swap( bucket_, other.bucket_ );
   std::swap( node_, other.node_ );
   std::swap( behind_, other.behind_ );
   std::swap( modificationCount_, other.modificationCount_ );
   return *this;
}

void HashMap2018IteratorGeneric::standIs( BktHdr * bucket, U32 slot ) noexcept {
   // The old bucket goes last: it may be destroyed, and what its nodes held may look here.
   BktHdr * const old = bucket_;
   if ( bucket && bucket != old ) HashMap2018Generic::refIncChecked( bucket );
   bucket_ = bucket;
   node_ = bucket ? HashMap2018Generic::nodeAt( *vt_, bucket, slot ) : nullptr;
   behind_ = bucket ? bucket->used() - 1 - slot : 0;
   modificationCount_ = map_->modificationCount_;
   if ( old && old != bucket ) letGo( old );
}

/// On the slot of that bucket, or if there is none, at the start of the next bucket with members.
void HashMap2018IteratorGeneric::standAtOrBehind( U32 word, BktHdr * bucket, U32 slot ) noexcept {
   slot < bucket->used() ? standIs( bucket, slot ) : standBehind( word, bucket );
}

/// At the start of the next bucket with members behind that one, which stands where the word belongs.
void HashMap2018IteratorGeneric::standBehind( U32 word, BktHdr * bucket ) noexcept {
   U32 index = map_->directoryIndex( word ) + 1;
   while ( index < 1u << map_->directoryBits_ && map_->directory()[index] == bucket ) {
      ++index;
   }
   standIs( map_->nextBucket( index ), 0 );
}

/// Where the node stands in the map now, or would stand behind: the slot of the first member that does not
/// precede it.
HashMap2018IteratorGeneric::Live HashMap2018IteratorGeneric::live() const noexcept {
   BktHdr * const bucket = map_->bucketOf( word() );
   if ( bucket == bucket_ || !bucket ) return { bucket, slot(), bucket != nullptr };
   U32 const * const words = bucket->words();
   U32 slot = hashWordLowerBound( words, bucket->used(), word() );
   for ( ; slot < bucket->used() && words[slot] <= ( word() | HashHelper::markBit ); ++slot ) {
      U32 const order = vt_->compareOrLruUnlink( nullptr, currNodeMaybeStale(),
                                                 HashMap2018Generic::nodeAt( *vt_, bucket, slot ) );
      if ( order != 2 ) return { bucket, slot, order == 0 };
   }
   return { bucket, slot, false };
}

void HashMap2018IteratorGeneric::advanceSlow() noexcept {
   Live const now = live();
   if ( !now.bucket ) return standIs( nullptr, 0 );
   standAtOrBehind( word(), now.bucket, now.slot + now.found );
}

HashMap2018LinkNodeBase * HashMap2018IteratorGeneric::currNodeNonStale() const noexcept {
   if ( !bucket_ ) return nullptr;
   Live const now = live();
   return now.found ? HashMap2018Generic::nodeAt( *vt_, now.bucket, now.slot ) : nullptr;
}

bool HashMap2018IteratorGeneric::markedForDeletion() const noexcept {
   if ( !bucket_ ) return false;
   Live const now = live();
   return now.found && ( now.bucket->words()[now.slot] & HashHelper::markBit );
}

} // namespace Vorn
