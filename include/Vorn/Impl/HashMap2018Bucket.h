/// \file
/// What a node hash map is made of: the bucket with its hash words, header and nodes, the runs of nodes from
/// which a bucket is built, and the record that tells what a map's nodes are. HashMap2018Generic.h has the
/// layout.
#pragma once

#include "Vorn/Impl/HashHelper.h"

#include <algorithm>
#include <bit>

#if defined( __SSE2__ )
#include <emmintrin.h>
#endif

namespace Vorn {

// Scans of hash words. Words ascend, but for their lowest bits, which are marks.

/// Words that one scan looks at.
inline constexpr U32 hashWordScan = 16;

#if defined( __SSE2__ )

/// Bit i is set where `compare` gave all ones, for 16 words.
template< class Compare >
U32 hashWordMask( U32 const * words, Compare compare ) noexcept {
   auto const four = [&]( U32 i ) {
      return compare( _mm_loadu_si128( reinterpret_cast< __m128i const * >( words + i ) ) );
   };
   __m128i const low = _mm_packs_epi32( four( 0 ), four( 4 ) );
   __m128i const high = _mm_packs_epi32( four( 8 ), four( 12 ) );
   return U32( _mm_movemask_epi8( _mm_packs_epi16( low, high ) ) );
}

/// Bit i is set where the i-th of the first `used` words, at most 16, is `word`, marked or not. 64 bytes must
/// be readable.
inline U32 hashWordsEqual( U32 const * words, U32 used, U32 word ) noexcept {
   if ( used <= 4 ) {
      // A wide read would wait for words that have just been written one by one.
      U32 mask = 0;
      for ( U32 i = 0; i < used; ++i ) {
         mask |= U32( ( words[i] ^ word ) <= HashHelper::markBit ) << i;
      }
      return mask;
   }
   __m128i const mark = _mm_set1_epi32( int( HashHelper::markBit ) );
   __m128i const wanted = _mm_set1_epi32( int( word | HashHelper::markBit ) );
   U32 const mask = hashWordMask(
        words, [&]( __m128i four ) { return _mm_cmpeq_epi32( _mm_or_si128( four, mark ), wanted ); } );
   return mask & ( ( 1u << used ) - 1 );
}

/// How many of the first `used` words, at most 16, are less than `word`. 64 bytes must be readable.
inline U32 hashWordsLess( U32 const * words, U32 used, U32 word ) noexcept {
   // There is no unsigned comparison, so the signs are flipped.
   __m128i const flip = _mm_set1_epi32( int( 0x80000000u ) );
   __m128i const wanted = _mm_set1_epi32( int( word ^ 0x80000000u ) );
   U32 const mask = hashWordMask(
        words, [&]( __m128i four ) { return _mm_cmpgt_epi32( wanted, _mm_xor_si128( four, flip ) ); } );
   return U32( std::countr_zero( ~mask | 1u << used ) );
}

#else

inline U32 hashWordsEqual( U32 const * words, U32 used, U32 word ) noexcept {
   U32 mask = 0;
   for ( U32 i = 0; i < used; ++i ) {
      mask |= U32( ( words[i] | HashHelper::markBit ) == ( word | HashHelper::markBit ) ) << i;
   }
   return mask;
}

inline U32 hashWordsLess( U32 const * words, U32 used, U32 word ) noexcept {
   U32 less = 0;
   for ( U32 i = 0; i < used; ++i ) {
      less += words[i] < word;
   }
   return less;
}

#endif

/// How many of the `used` words are less than `word`: where it stands, or belongs. 64 bytes must be readable.
inline U32 hashWordLowerBound( U32 const * words, U32 used, U32 word ) noexcept {
   U32 from = 0;
   if ( used > hashWordScan ) [[unlikely]] {
      for ( U32 left = used; left > hashWordScan; ) {
         U32 const half = left / 2;
         from += words[from + half - 1] < word ? half : 0;
         left -= half;
      }
      from = std::min( from, used - hashWordScan );
      used = hashWordScan;
   }
   return from + hashWordsLess( words + from, used, word );
}

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
   /// Bytes of a block: enough for the scan of the words, which reads 16 whatever the capacity.
   static constexpr std::size_t blockBytes( U32 capacity, U32 nodeSize ) noexcept {
      return std::max( nodeOffset( capacity ) + std::size_t( capacity ) * nodeSize,
                       hashWordScan * sizeof( U32 ) );
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

} // namespace Vorn
