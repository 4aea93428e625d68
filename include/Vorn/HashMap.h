/// \file
/// `HashMap< Owner, Member, Key >`: the intrusive hash map of owned entities. A member carries the link of
/// its chain itself, so membership costs no allocation; the map holds one reference to each member.
///
/// A chain belongs to the low bits of the hash, reversed, and is kept in order of the reversed hash, equal
/// ones in order of the key. Growth splits chains and keeps that order, and an iterator finds what follows
/// its member again after any insertion or deletion, its own member's included.
#pragma once

#include "Vorn/Entity.h"
#include "Vorn/Impl/HashMap2018Bucket.h"

#include <cstddef>

namespace Vorn {

/// The link that a member carries: its field `next_`, which this alone may touch.
struct NextLink {
   /// The link of that member.
   template< class Member >
   static Entity *& of( Member & member ) noexcept {
      return member.next_;
   }
   /// Where the link lies in a member, in bytes.
   template< class Member >
   static U16 position() noexcept {
      // Entities derive singly and never virtually, so the position is the same in every object.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
      return U16( offsetof( Member, next_ ) );
#pragma GCC diagnostic pop
   }
};

/// What the type-erased part asks of members.
class HashMapVTableGeneric {
 public:
   /// Hash of a member's key.
   virtual U32 hash( Entity const & member ) const = 0;
   /// Whether the member has that key.
   virtual bool keyEquals( void const * key, Entity const & member ) const = 0;
   /// With `b`: whether `b`'s key is below `a`'s. Without: whether `key` is below `a`'s; true for a null key.
   virtual bool keyLessThan( void const * key, Entity const & a, Entity const * b ) const = 0;
   /// Sets the link of a member: takes a reference to `next`, drops that to the old one.
   virtual void setNext( Entity & member, Entity * next ) const = 0;

 protected:
   ~HashMapVTableGeneric() = default;
};

/// The map without its types.
class VORN_API HashMapGeneric {
 public:
   /// Binary logarithm of the number of buckets of a new map.
   static constexpr U8 initialExponent = 4;

   /// Number of members.
   U32 members() const noexcept { return memberCount_; }
   /// Raised by each insertion and deletion.
   U32 modificationCount() const noexcept { return modificationCount_; }
   /// Number of buckets.
   U32 buckets() const noexcept { return 1u << exponent_; }

   /// The member that follows `member`, in the map or not; the first for null. `bucket` becomes its bucket,
   /// -1 at the end.
   Entity * findNextG( Entity const * member, std::int32_t * bucket ) const;
   /// The first member of the next bucket that has one.
   Entity * findNextBucket( std::int32_t * bucket ) const noexcept;
   /// The member with that key, or what would follow it.
   Entity * startAtHash( void const * key, U32 hash, std::int32_t * bucket ) const;

   /// Lets go of all members, and of those that come in meanwhile, in a loop however long the chains.
   void emptyAllBuckets() noexcept;

 protected:
   HashMapGeneric( HashMapVTableGeneric const & vtable, U8 exponent, U16 nextPosition ) noexcept
        : vtable_( &vtable ), exponent_( exponent ), nextPosition_( nextPosition ) {}
   HashMapGeneric( HashMapGeneric const & ) = delete;
   HashMapGeneric & operator=( HashMapGeneric const & ) = delete;
   ~HashMapGeneric();

   /// Inserts a member whose key is not there; `hash` is that of its key.
   void newMemberG( Entity & member, U32 hash );
   /// Takes a member out of its bucket, which leaves its parent, and drops the map's reference.
   void deleteMember( Entity & member, U32 bucket );
   /// The bucket of keys that have that hash.
   U32 bucketOf( U32 hash ) const noexcept { return bitReverse( hash ) >> ( 32 - exponent_ ); }
   /// The first member of a bucket, or null.
   Entity * first( U32 bucket ) const noexcept { return buckets_ ? buckets_[bucket] : nullptr; }
   /// The link of a member.
   Entity *& next( Entity & member ) const noexcept {
      return *reinterpret_cast< Entity ** >( reinterpret_cast< char * >( &member ) + nextPosition_ );
   }

 private:
   void resize( U8 exponent );
   /// The order of the members, whose keys have these hashes.
   bool before( Entity const & a, U32 hashOfA, Entity const & b, U32 hashOfB ) const;

   U32 modificationCount_ = 0;
   U32 memberCount_ = 0;
   HashMapVTableGeneric const * vtable_;
   U8 exponent_;
   U16 nextPosition_;
   Entity ** buckets_ = nullptr; // made by the first insertion
};

/// The hash of a key as the maps take it.
template< class Key >
U32 keyHash( Key const & key ) {
   if constexpr ( requires { key.hash(); } ) {
      return key.hash();
   } else {
      return U32( key ) * HashHelper::KeyU32::multiplier;
   }
}

/// The map's view of its members' keys, one constant for each kind of member.
template< class Member, class Key >
class HashMapVTable final : public HashMapVTableGeneric {
 public:
   U32 hash( Entity const & member ) const override { return keyHash( key( member ) ); }
   bool keyEquals( void const * k, Entity const & member ) const override {
      return *static_cast< Key const * >( k ) == key( member );
   }
   bool keyLessThan( void const * k, Entity const & a, Entity const * b ) const override {
      if ( b ) return key( *b ) < key( a );
      return !k || *static_cast< Key const * >( k ) < key( a );
   }
   void setNext( Entity & member, Entity * next ) const override {
      Entity *& link = NextLink::of( static_cast< Member & >( member ) );
      if ( link == next ) return;
      if ( next ) next->referenceInc();
      Entity * const old = link;
      link = next;
      if ( old ) old->referenceDec();
   }

   /// The one object of this class.
   static HashMapVTable const instance;

 private:
   static decltype( auto ) key( Entity const & member ) {
      return static_cast< Member const & >( member ).vornKey();
   }
};
template< class Member, class Key >
inline HashMapVTable< Member, Key > const HashMapVTable< Member, Key >::instance;

/// The typed map. `Member` is an entity whose `vornKey()` is its key.
template< class Owner, class Member, class Key >
class HashMap : public HashMapGeneric {
 public:
   class IteratorConst;

   HashMap() noexcept
        : HashMapGeneric( HashMapVTable< Member, Key >::instance, initialExponent,
                          NextLink::position< Member >() ) {}

   /// The member with that key, or null.
   Member * member( Key const & key ) const { return member( key, keyHash( key ) ); }
   // Some keys take long to hash, so it is done once for what belongs together: `hash` is the key's
   // `keyHash()`.
   /// The member with that key, whose hash the caller knows, or null.
   Member * member( Key const & key, U32 hash ) const {
      for ( Entity * at = first( bucketOf( hash ) ); at; at = next( *at ) ) {
         auto * const member = static_cast< Member * >( at );
         if ( key == member->vornKey() ) return member;
      }
      return nullptr;
   }
   /// Whether that key is absent and beside `others` more too many have its hash. A map of values has room
   /// for that many; here it bounds the chain.
   bool crowded( Key const & key, U32 others ) const {
      if ( members() + others < HashMap2018BktHdr::maxSlots ) return false;
      U32 const hash = keyHash( key );
      U32 same = 0;
      for ( Entity * at = first( bucketOf( hash ) ); at; at = next( *at ) ) {
         Key const & other = static_cast< Member * >( at )->vornKey();
         if ( key == other ) return false;
         same += keyHash( other ) == hash;
      }
      return same + others >= HashMap2018BktHdr::maxSlots;
   }
   /// Puts a member in whose key is not in the map; `hash` is the key's.
   void newMember( Member & member, U32 hash ) { newMemberG( member, hash ); }
   /// Takes a member out; `hash` is its key's.
   void del( Member & member, U32 hash ) { deleteMember( member, bucketOf( hash ) ); }

   /// For a walk over all members.
   IteratorConst begin() const { return IteratorConst( *this ); }
   /// The end of such a walk.
   std::nullptr_t end() const noexcept { return nullptr; }
};

/// A position in a map. It holds its member, so the member stays readable when it is deleted.
template< class Owner, class Member, class Key >
class HashMap< Owner, Member, Key >::IteratorConst {
 public:
   /// At the first member.
   explicit IteratorConst( HashMap const & map ) : map_( &map ) {
      stand( map.findNextG( nullptr, &bucket_ ) );
   }
   /// At the member with that key, or what would follow it.
   IteratorConst( HashMap const & map, Key const & key ) : map_( &map ) {
      stand( map.startAtHash( &key, keyHash( key ), &bucket_ ) );
   }

   /// Whether it stands on a member.
   explicit operator bool() const noexcept { return bool( member_ ); }
   /// The member.
   Member * operator->() const noexcept { return member_.ptr(); }
   Member & operator*() const noexcept { return *member_; }
   Ptr< Member > const & ptr() const noexcept { return member_; }
   /// Bucket of the member; -1 at the end.
   std::int32_t bucket() const noexcept { return bucket_; }

   /// Takes the member out of the map, which is the iterator's. False if it has gone already.
   bool del( HashMap & map ) {
      if ( count_ == map.modificationCount() && map.first( U32( bucket_ ) ) == member_.ptr() ) {
         // As where all go, one by one: neither this nor the way on needs a hash.
         U32 const buckets = map.buckets();
         map.deleteMember( *member_, U32( bucket_ ) );
         gone_ = ++count_ == map.modificationCount() && buckets == map.buckets();
         if ( !gone_ ) --count_; // more has happened
         return true;
      }
      U32 const hash = keyHash( member_->vornKey() );
      if ( map.member( member_->vornKey(), hash ) != member_.ptr() ) return false;
      map.del( *member_, hash );
      return true;
   }
   /// To the member that follows, whether or not the present one is still in the map.
   void advance() {
      if ( count_ != map_->modificationCount() ) {
         stand( map_->findNextG( member_.ptr(), &bucket_ ) );
      } else if ( gone_ ) {
         Entity * const behind = map_->first( U32( bucket_ ) );
         stand( behind ? behind : map_->findNextBucket( &bucket_ ) );
      } else if ( Entity * const behind = map_->next( *member_ ) ) {
         stand( behind );
      } else {
         stand( map_->findNextBucket( &bucket_ ) );
      }
   }
   IteratorConst & operator++() {
      advance();
      return *this;
   }
   bool operator!=( std::nullptr_t ) const noexcept { return bool( member_ ); }

 private:
   void stand( Entity * member ) {
      count_ = map_->modificationCount();
      gone_ = false;
      member_ = static_cast< Member * >( member );
   }

   HashMap const * map_;
   U32 count_ = 0;
   std::int32_t bucket_ = -1;
   bool gone_ = false; // it stood first in the bucket and was taken out; nothing else has changed since
   Ptr< Member > member_;
};

} // namespace Vorn
