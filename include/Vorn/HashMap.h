/// \file
/// `HashMap< Owner, Key, Member, key, next >`: the intrusive hash map in which an entity keeps the entities
/// that it owns. A member is chained through a counted link of its own, so membership takes no memory, and it
/// stands at its address for as long as anybody refers to it.
///
///     Vorn::HashMap< LdpAdjStatusColl, LdpAdjId, LdpAdjStatus, &LdpAdjStatus::ldpAdjId, &LdpAdjStatus::next_
///     >
///        adjStatus_;
///     adjStatus_.newMember( entity );                           // its key must be new
///     Vorn::Ptr< LdpAdjStatus > const found = adjStatus_[ key ];
///     adjStatus_.deleteMember( found );
///     for ( auto it = adjStatus_.begin(); it; it.advance() ) ... it->...
///
/// A bucket is chosen by the reversed low bits of the key's hash, and a chain stands in the order of the
/// reversed hashes, ties in the order of the keys. So the table can double without a change of that order,
/// and an iterator finds the successor of its member again whatever was inserted or deleted meanwhile, the
/// member itself included.
#pragma once

#include "Vorn/HashHelper.h"
#include "Vorn/Ptr.h"

#include <bit>
#include <iterator>

namespace Vorn {

/// What a map must know about its members; the keys behind the pointers are of the map's key type.
class VORN_API HashMapVTableGeneric {
 public:
   virtual ~HashMapVTableGeneric();
   /// Hash of the member's key.
   virtual U32 hash( PtrInterface const * member ) const noexcept = 0;
   virtual bool keyEquals( void const * key, PtrInterface const * member ) const noexcept = 0;
   /// With `b`: whether b's key is less than a's. Without: whether `key` is, which is so for no key at all.
   virtual bool keyLessThan( void const * key, PtrInterface const * a,
                             PtrInterface const * b ) const noexcept = 0;
   /// Sets the member's link, with a reference on `next` and without the one on what it led to. An equal
   /// pointer does nothing.
   virtual void setNext( PtrInterface * member, PtrInterface * next ) const noexcept = 0;
};

/// The table, for members and keys of any type.
class VORN_API HashMapGeneric {
 public:
   using Member = PtrInterface;

   /// A map with 2^exponent buckets, of at least 2.
   explicit HashMapGeneric( U8 exponent );
   /// Drops what is left of the members, and the buckets.
   ~HashMapGeneric();
   HashMapGeneric( HashMapGeneric const & ) = delete;
   HashMapGeneric & operator=( HashMapGeneric const & ) = delete;

   /// Number of members.
   U32 members() const noexcept { return members_; }
   /// Changes with each insertion and deletion.
   U32 modificationCount() const noexcept { return modificationCount_; }

   /// Inserts a member, with a reference of the map's own. There is no member with that key.
   void newMemberG( Member * member, void const * key );
   /// Removes a member, which is in the map, and drops the map's reference.
   void deleteMember( Member * member ) noexcept;
   /// Drops all members.
   void emptyAllBuckets() noexcept;

   // The order of a walk. `bucket` is where the result was found, or -1 with a null result.

   /// The first member behind that bucket; behind -1 it is the first of all.
   Member * findNextBucket( int * bucket ) const noexcept;
   /// The member that follows `member`, which need not be in the map any more; the first for null.
   Member * findNextG( Member const * member, int * bucket ) const noexcept;
   /// The member with that key, or else the one that follows where it would stand.
   Member * startAtHash( void const * key, U32 hash, int * bucket ) const noexcept;
   /// First member of the chain in which a key with that reversed hash would stand.
   Member * chain( U32 reversed ) const noexcept { return buckets_[bucketIndex( reversed )]; }
   /// What the member's link leads to.
   Member * next( Member const * member ) const noexcept {
      using Link [[gnu::may_alias]] = Member *;
      return *reinterpret_cast< Link const * >( reinterpret_cast< char const * >( member ) + nextOffset_ );
   }
   U32 bucketIndex( U32 reversed ) const noexcept { return reversed >> ( 32 - exponent_ ); }

 protected:
   /// The owner's part of the construction: the operations, and where a member's link stands in it.
   void membersAre( HashMapVTableGeneric const * vtable, std::size_t nextOffset ) noexcept {
      vtable_ = vtable;
      nextOffset_ = U16( nextOffset );
   }

 private:
   U32 reversedHash( Member const * member ) const noexcept { return bitReverse( vtable_->hash( member ) ); }
   void linkIs( Member * before, U32 index, Member * member ) noexcept;
   void directoryDouble();

   U32 modificationCount_ = 0;
   U32 members_ = 0;
   HashMapVTableGeneric const * vtable_ = nullptr;
   U8 exponent_;
   U16 nextOffset_ = 0;
   Member ** buckets_; // each with a reference on the first of its chain
};

/// The operations of a type of member: its key is `(member.*key)()`, its link `member.*next`.
template< class Member, class Key, auto key, Ptr< Member > Member::*next >
class HashMapVTable final : public HashMapVTableGeneric {
 public:
   U32 hash( PtrInterface const * member ) const noexcept override { return keyOf( member ).hash(); }
   bool keyEquals( void const * wanted, PtrInterface const * member ) const noexcept override {
      return *static_cast< Key const * >( wanted ) == keyOf( member );
   }
   bool keyLessThan( void const * wanted, PtrInterface const * a,
                     PtrInterface const * b ) const noexcept override {
      if ( b ) return keyOf( b ) < keyOf( a );
      return !wanted || *static_cast< Key const * >( wanted ) < keyOf( a );
   }
   void setNext( PtrInterface * member, PtrInterface * following ) const noexcept override {
      Ptr< Member > & link = static_cast< Member * >( member )->*next;
      auto * const to = static_cast< Member * >( following );
      if ( link.ptr() != to ) link = to;
   }

 private:
   static decltype( auto ) keyOf( PtrInterface const * member ) noexcept {
      return ( static_cast< Member const * >( member )->*key )();
   }
};

/// The typed map.
template< class Owner, class Key, class MemberType, auto key, Ptr< MemberType > MemberType::*nextLink >
class HashMap : public HashMapGeneric {
 public:
   using Member = MemberType;

   template< class M >
   class TIterator;
   using Iterator = TIterator< Member >;
   using IteratorConst = TIterator< Member const >;

   explicit HashMap( U8 exponent = 4 ) : HashMapGeneric( exponent ) {
      static_assert( std::is_base_of_v< PtrInterface, Member > );
      // In this ABI a pointer to a data member is its offset.
      membersAre( &vtable_, std::bit_cast< std::size_t >( nextLink ) );
   }

   /// The member with that key, or null.
   Ptr< Member > operator[]( Key const & wanted ) noexcept { return lookup( wanted ); }
   Ptr< Member const > operator[]( Key const & wanted ) const noexcept { return lookup( wanted ); }
   bool has( Key const & wanted ) const noexcept { return lookup( wanted ); }

   /// Inserts a member. There is none with its key.
   void newMember( Ptr< Member > const & member ) {
      auto && itsKey = ( member.ptr()->*key )();
      newMemberG( member.ptr(), &itsKey );
   }
   void deleteMember( Ptr< Member > const & member ) noexcept {
      HashMapGeneric::deleteMember( member.ptr() );
   }

   Iterator begin() noexcept { return Iterator( *this ); }
   IteratorConst begin() const noexcept { return IteratorConst( *this ); }
   std::default_sentinel_t end() const noexcept { return {}; }

 private:
   Member * lookup( Key const & wanted ) const noexcept {
      PtrInterface * at = chain( bitReverse( wanted.hash() ) );
      while ( at && !( wanted == ( static_cast< Member * >( at )->*key )() ) ) {
         at = next( at );
      }
      return static_cast< Member * >( at );
   }

   static inline HashMapVTable< Member, Key, key, nextLink > const vtable_{};
};

/// Stands on one member, with a reference on it, or at the end. It survives any change of the map.
template< class Owner, class Key, class MemberType, auto key, Ptr< MemberType > MemberType::*nextLink >
template< class M >
class HashMap< Owner, Key, MemberType, key, nextLink >::TIterator {
 public:
   /// On the first member.
   explicit TIterator( HashMap const & map ) noexcept : map_( &map ) {
      standIs( map.findNextG( nullptr, &bucket_ ) );
   }
   /// On the member with that key, or else on the one that follows where it would stand.
   TIterator( HashMap const & map, Key const & start ) noexcept : map_( &map ) {
      standIs( map.startAtHash( &start, start.hash(), &bucket_ ) );
   }

   explicit operator bool() const noexcept { return bool( member_ ); }
   bool operator!() const noexcept { return !member_; }
   bool operator==( std::default_sentinel_t ) const noexcept { return !member_; }

   Ptr< M > const & ptr() const noexcept { return member_; }
   M & operator*() const noexcept { return *member_; }
   M * operator->() const noexcept { return member_.ptr(); }
   /// Index of the member's bucket; -1 at the end.
   int bucket() const noexcept { return bucket_; }

   /// To the member that follows, whether or not the present one is still in the map.
   void advance() noexcept {
      PtrInterface * following;
      if ( modificationCount_ != map_->modificationCount() ) {
         following = map_->findNextG( member_.ptr(), &bucket_ );
      } else {
         following = map_->next( member_.ptr() );
         if ( !following ) following = map_->findNextBucket( &bucket_ );
      }
      standIs( following );
   }
   TIterator & operator++() noexcept {
      advance();
      return *this;
   }

 private:
   void standIs( PtrInterface * member ) noexcept {
      modificationCount_ = map_->modificationCount();
      if ( member != member_.ptr() ) member_ = static_cast< M * >( member );
   }

   HashMap const * map_;
   U32 modificationCount_ = 0; // of the map, when the iterator came here
   int bucket_ = -1;
   Ptr< M > member_;
};

} // namespace Vorn
