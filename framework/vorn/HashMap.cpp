#include "Vorn/HashMap.h"

#include <algorithm>

namespace Vorn {

namespace {

constexpr U8 maxExponent = 24; // a larger table has longer chains instead

} // namespace

HashMapVTableGeneric::~HashMapVTableGeneric() = default;

HashMapGeneric::HashMapGeneric( U8 exponent )
     : exponent_( std::clamp( exponent, U8( 1 ), maxExponent ) ),
       buckets_( static_cast< Member ** >( vornMemAlloc( sizeof( Member * ) << exponent_ ) ) ) {
   std::fill_n( buckets_, std::size_t( 1 ) << exponent_, nullptr );
}

HashMapGeneric::~HashMapGeneric() {
   // Once, unless the destructor of a member inserts again.
   while ( members_ ) {
      emptyAllBuckets();
   }
   vornMemFree( buckets_, sizeof( Member * ) << exponent_ );
}

void HashMapGeneric::newMemberG( Member * member, void const * key ) {
   if ( members_ >> exponent_ && exponent_ < maxExponent ) directoryDouble();
   U32 const reversed = reversedHash( member );
   U32 const index = bucketIndex( reversed );
   Member * before = nullptr;
   for ( Member * at = buckets_[index]; at; at = next( at ) ) {
      U32 const other = reversedHash( at );
      if ( reversed < other || ( reversed == other && vtable_->keyLessThan( key, at, nullptr ) ) ) break;
      before = at;
   }
   vtable_->setNext( member, before ? next( before ) : buckets_[index] );
   linkIs( before, index, member );
   ++members_;
   ++modificationCount_;
}

void HashMapGeneric::deleteMember( Member * member ) noexcept {
   Ptr< Member > const keep( member );
   U32 const index = bucketIndex( reversedHash( member ) );
   Member * before = nullptr;
   for ( Member * at = buckets_[index]; at != member; at = next( at ) ) {
      VORN_ASSERT_TEXT( at, "the member is in the map" );
      before = at;
   }
   linkIs( before, index, next( member ) );
   vtable_->setNext( member, nullptr );
   --members_;
   ++modificationCount_;
}

void HashMapGeneric::emptyAllBuckets() noexcept {
   for ( std::size_t index = 0; index < std::size_t( 1 ) << exponent_; ++index ) {
      // One by one: neither is a long chain released by recursion, nor does a destructor find the map broken.
      while ( Member * const first = buckets_[index] ) {
         Ptr< Member > const keep( first );
         linkIs( nullptr, U32( index ), next( first ) );
         vtable_->setNext( first, nullptr );
         --members_;
         ++modificationCount_;
      }
   }
}

/// Lets the link in front of a place in a chain, which is the bucket itself where `before` is null, lead to
/// `member`.
void HashMapGeneric::linkIs( Member * before, U32 index, Member * member ) noexcept {
   if ( before ) {
      vtable_->setNext( before, member );
      return;
   }
   if ( member ) member->referenceInc();
   if ( Member * const old = std::exchange( buckets_[index], member ) ) old->referenceDec();
}

/// Cuts each chain in two, which it is by the order of its members.
void HashMapGeneric::directoryDouble() {
   std::size_t const num = std::size_t( 1 ) << exponent_;
   auto ** const old = buckets_;
   buckets_ = static_cast< Member ** >( vornMemAlloc( 2 * num * sizeof( Member * ) ) );
   ++exponent_;
   for ( std::size_t i = 0; i < num; ++i ) {
      Member * before = nullptr;
      Member * at = old[i];
      while ( at && bucketIndex( reversedHash( at ) ) == 2 * i ) {
         before = at;
         at = next( at );
      }
      buckets_[2 * i] = before ? old[i] : nullptr;
      buckets_[2 * i + 1] = at;
      if ( before && at ) {
         at->referenceInc();
         vtable_->setNext( before, nullptr );
      }
   }
   vornMemFree( old, num * sizeof( Member * ) );
}

PtrInterface * HashMapGeneric::findNextBucket( int * bucket ) const noexcept {
   for ( U32 index = U32( *bucket + 1 ); index < 1u << exponent_; ++index ) {
      if ( buckets_[index] ) {
         *bucket = int( index );
         return buckets_[index];
      }
   }
   *bucket = -1;
   return nullptr;
}

PtrInterface * HashMapGeneric::findNextG( Member const * member, int * bucket ) const noexcept {
   *bucket = -1;
   if ( !member ) return findNextBucket( bucket );
   U32 const reversed = reversedHash( member );
   *bucket = int( bucketIndex( reversed ) );
   for ( Member * at = chain( reversed ); at; at = next( at ) ) {
      U32 const other = reversedHash( at );
      if ( reversed < other || ( reversed == other && vtable_->keyLessThan( nullptr, at, member ) ) )
         return at;
   }
   return findNextBucket( bucket );
}

PtrInterface * HashMapGeneric::startAtHash( void const * key, U32 hash, int * bucket ) const noexcept {
   U32 const reversed = bitReverse( hash );
   *bucket = int( bucketIndex( reversed ) );
   for ( Member * at = chain( reversed ); at; at = next( at ) ) {
      U32 const other = reversedHash( at );
      if ( reversed < other ) return at;
      if ( reversed == other &&
           ( vtable_->keyEquals( key, at ) || vtable_->keyLessThan( key, at, nullptr ) ) )
         return at;
   }
   return findNextBucket( bucket );
}

} // namespace Vorn
