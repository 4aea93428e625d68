/// \file
/// `KeySet`: a set of keys of a type that is known by its record alone, for the keys of a collection that
/// wait to go to an attribute log. A collection's operations make it (`GenericIf::newKeySet`).
#pragma once

#include "Vorn/HashMap2018.h"

#include <optional>
#include <vector>

namespace Vorn {

/// Keys, passed by their address.
class VORN_API KeySet {
 public:
   KeySet() noexcept = default;
   KeySet( KeySet const & ) = delete;
   KeySet & operator=( KeySet const & ) = delete;
   virtual ~KeySet();

   virtual U32 members() const noexcept = 0;
   virtual void keyIs( void const * key ) = 0;
   /// Whether so many keys of that one's hash are there that the set does not bear it.
   virtual bool crowded( void const * key ) const noexcept = 0;
   virtual void keyDel( void const * key ) = 0;
   /// Copies out the key to be dealt with next: the same until it is taken out or passed over. Behind the
   /// last comes the first again. Of a queue `oldest` is where the order of its indices begins. False for an
   /// empty set.
   virtual bool next( void * key, U32 oldest ) = 0;
   /// Passes over the key that `next` gave, which stays.
   virtual void pass() noexcept = 0;
};

/// Of a map: in the order of the hash.
template< class Key >
class KeySetOf final : public KeySet {
   using Keys = HashMap2018< KeySet, Key >;

 public:
   U32 members() const noexcept override { return keys_.members(); }
   void keyIs( void const * key ) override { keys_.keyIs( *static_cast< Key const * >( key ) ); }
   bool crowded( void const * key ) const noexcept override {
      return keys_.members() >= HashMap2018BktHdr::maxSlots &&
             keys_.crowded( *static_cast< Key const * >( key ), 0 );
   }
   void keyDel( void const * key ) override { keys_.del( *static_cast< Key const * >( key ) ); }
   bool next( void * key, U32 ) override {
      typename Keys::Iterator it = at_ ? typename Keys::Iterator( keys_, *at_ ) : keys_.begin();
      if ( it && std::exchange( passed_, false ) && it->key() == *at_ ) it.advance();
      if ( !it ) it = keys_.begin();
      if ( !it ) return false;
      at_ = it->key();
      *static_cast< Key * >( key ) = *at_;
      return true;
   }
   void pass() noexcept override { passed_ = true; }

 private:
   Keys keys_;
   std::optional< Key > at_;
   bool passed_ = false;
};

/// Of a queue: in the order of the queue.
class VORN_API IndexSet final : public KeySet {
 public:
   ~IndexSet() override;
   U32 members() const noexcept override { return indices_.members(); }
   void keyIs( void const * index ) override { indices_.keyIs( *static_cast< U32 const * >( index ) ); }
   bool crowded( void const * ) const noexcept override { return false; } // numbers do not meet
   void keyDel( void const * index ) override { indices_.del( *static_cast< U32 const * >( index ) ); }
   bool next( void * index, U32 oldest ) override;
   void pass() noexcept override { order_.pop_back(); }

 private:
   HashMap2018< KeySet, U32 > indices_;
   std::vector< U32 > order_; // of those that were there when it was made, the oldest last
};

} // namespace Vorn
