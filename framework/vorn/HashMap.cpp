// The map of owned entities: chains through the members.
#include "Vorn/HashMap.h"

#include <cstdlib>
#include <new>

namespace Vorn {

namespace {

// Buckets for each member above which three of four are given back: so seldom that it does not show in the
// deletion of all members.
constexpr U32 mostBuckets = 8;

} // namespace

HashMapGeneric::~HashMapGeneric() {
   emptyAllBuckets();
   std::free( buckets_ );
}

bool HashMapGeneric::before( Entity const & a, U32 hashOfA, Entity const & b, U32 hashOfB ) const {
   return hashOfA != hashOfB ? bitReverse( hashOfA ) < bitReverse( hashOfB )
                             : vtable_->keyLessThan( nullptr, b, &a );
}

void HashMapGeneric::newMemberG( Entity & member, U32 hash ) {
   if ( !buckets_ || memberCount_ >= buckets() ) resize( buckets_ ? U8( exponent_ + 1 ) : exponent_ );
   Entity ** link = &buckets_[bucketOf( hash )];
   Entity * previous = nullptr;
   while ( *link && before( **link, vtable_->hash( **link ), member, hash ) ) {
      previous = *link;
      link = &next( *previous );
   }
   vtable_->setNext( member, *link );
   if ( previous ) {
      vtable_->setNext( *previous, &member );
   } else {
      member.referenceInc();
      if ( Entity * const old = std::exchange( *link, &member ) ) old->referenceDec();
   }
   ++memberCount_;
   ++modificationCount_;
}

void HashMapGeneric::deleteMember( Entity & member, U32 bucket ) {
   Ptr< Entity > const hold( &member );
   VORN_ASSERT_TEXT( buckets_, "the member is in the map" );
   Entity ** link = &buckets_[bucket];
   while ( *link && *link != &member ) {
      link = &next( **link );
   }
   VORN_ASSERT_TEXT( *link, "the member is in the map" );
   // The reference of the member's link becomes that of the one in front.
   *link = std::exchange( next( member ), nullptr );
   member.referenceDec();
   --memberCount_;
   ++modificationCount_;
   if ( exponent_ >= initialExponent + 2 && memberCount_ < buckets() / mostBuckets )
      resize( U8( exponent_ - 2 ) );
   member.vornLeft(); // may call out
}

void HashMapGeneric::emptyAllBuckets() noexcept {
   while ( memberCount_ ) {
      for ( U32 bucket = 0; bucket < buckets(); ++bucket ) {
         // What is called may take members out and in, and so change the buckets.
         while ( bucket < buckets() && buckets_[bucket] ) {
            Entity * const member = buckets_[bucket];
            // The link's reference becomes the bucket's.
            buckets_[bucket] = std::exchange( next( *member ), nullptr );
            --memberCount_;
            ++modificationCount_;
            member->vornLeft();
            member->referenceDec();
         }
      }
   }
}

/// To more or fewer buckets. Without memory for fewer it stays as it is.
void HashMapGeneric::resize( U8 exponent ) {
   U32 const oldBuckets = buckets_ ? buckets() : 0;
   auto ** const fresh =
        static_cast< Entity ** >( std::calloc( std::size_t( 1 ) << exponent, sizeof( Entity * ) ) );
   if ( !fresh && exponent < exponent_ ) return;
   if ( !fresh ) throw std::bad_alloc();
   exponent_ = exponent;
   // Chains are in order of the reversed hash, and so are the buckets: a chain falls into parts, or follows
   // its neighbour's.
   U32 filled = ~0u;
   Entity ** end = nullptr;
   for ( U32 old = 0; old < oldBuckets; ++old ) {
      for ( Entity * member = buckets_[old]; member; ) {
         Entity * const behind = std::exchange( next( *member ), nullptr );
         U32 const bucket = bucketOf( vtable_->hash( *member ) );
         if ( bucket != filled ) end = &fresh[filled = bucket];
         *end = member;
         end = &next( *member );
         member = behind;
      }
   }
   std::free( buckets_ );
   buckets_ = fresh;
}

Entity * HashMapGeneric::findNextBucket( std::int32_t * bucket ) const noexcept {
   if ( buckets_ ) {
      for ( std::int32_t i = *bucket + 1; i < std::int32_t( buckets() ); ++i ) {
         if ( buckets_[i] ) {
            *bucket = i;
            return buckets_[i];
         }
      }
   }
   *bucket = -1;
   return nullptr;
}

Entity * HashMapGeneric::findNextG( Entity const * member, std::int32_t * bucket ) const {
   *bucket = -1;
   if ( !member || !buckets_ ) return findNextBucket( bucket );
   U32 const hash = vtable_->hash( *member );
   *bucket = std::int32_t( bucketOf( hash ) );
   for ( Entity * at = buckets_[*bucket]; at; at = next( *at ) ) {
      if ( before( *member, hash, *at, vtable_->hash( *at ) ) ) return at;
   }
   return findNextBucket( bucket );
}

Entity * HashMapGeneric::startAtHash( void const * key, U32 hash, std::int32_t * bucket ) const {
   *bucket = -1;
   if ( !buckets_ ) return nullptr;
   U32 const reversed = bitReverse( hash );
   *bucket = std::int32_t( bucketOf( hash ) );
   for ( Entity * at = buckets_[*bucket]; at; at = next( *at ) ) {
      U32 const there = bitReverse( vtable_->hash( *at ) );
      if ( there > reversed ) return at;
      if ( there == reversed &&
           ( vtable_->keyEquals( key, *at ) || vtable_->keyLessThan( key, *at, nullptr ) ) ) {
         return at;
      }
   }
   return findNextBucket( bucket );
}

} // namespace Vorn
