/// \file
/// `NboAttrLog::FlowOut`: what an adapter could not write at once, and where a synchronisation stands.
/// docs/attribute-log.md tells what a synchronisation is.
#pragma once

#include "Vorn/Entity.h"
#include "Vorn/GenericIf.h"
#include "Vorn/Impl/NboAttrLogList.h"

#include <memory>
#include <vector>

namespace Vorn::NboAttrLog {

/// Tag of the queues in which those stand that wait.
struct Queued;

/// The state of a synchronisation: what is dirty, and where a walk stands. A dirty attribute is a bit, and a
/// collection that has not been walked whole. Memory is taken only for a place in a queue, for keys that
/// wait, for the place at which a walk was interrupted, and for attributes behind the first 32 of a type.
class VORN_API FlowOut {
 public:
   using Adapter = Entity::VornNboAttrLogSa;
   /// The keys of one collection that wait: keys only, since the value is read when it is sent.
   using VornVornIsXDirty = KeySet;

   /// Dirty keys of a collection, beyond as many as it has members, from which on all of it is sent anew.
   static constexpr U32 spareDirtyKeys = 64;

   /// What only an adapter has that waits: its place in a queue, and where it stands.
   struct Waiting : ListLink< Waiting, Queued > {
      static void * operator new( std::size_t size ) { return vornMemAlloc( size ); }
      static void operator delete( void * block, std::size_t size ) noexcept { vornMemFree( block, size ); }

      Adapter * adapter = nullptr; // while it stands in a queue
      void * bookmark = nullptr;
      U32 attrId = 0;
      bool walking = false;
      bool walkAgain = false;
      bool walkedAll = false;
      std::vector< std::pair< U32, std::unique_ptr< KeySet > > > keys; // by attribute
      std::vector< U32 > marks;                                        // of attributes that have no bit
   };

   /// That of an entity of that type. Who has attributes without bits has room for their marks from the
   /// start: they must not be lost where memory runs out.
   explicit FlowOut( VornType const & type );
   ~FlowOut();
   FlowOut( FlowOut const & ) = delete;
   FlowOut & operator=( FlowOut const & ) = delete;

   /// Whether anything is left to write.
   bool any() const noexcept { return marks_ || ( waiting_ && waitingAny() ); }

   /// Whether an attribute without a key waits.
   bool vornIsDirty( U32 attributeId ) const noexcept { return marked( attributeId ); }
   void vornIsDirtyIs( U32 attributeId, bool dirty ) { markIs( attributeId, dirty ); }
   /// Whether a collection has been walked whole.
   bool vornHasSynced( U32 attributeId ) const noexcept { return !marked( attributeId ); }
   void vornHasSyncedIs( U32 attributeId, bool synced ) { markIs( attributeId, !synced ); }
   bool hasDirtyAttributes() const noexcept;

   /// The keys of a collection that wait, or null if none does.
   VornVornIsXDirty * vornIsXDirty( U32 attributeId ) const noexcept;
   /// Makes a key of a collection of `object` wait.
   void vornIsXDirtyIs( void * object, VornAttr const & x, void const * key );
   void vornIsXDirtyDel( U32 attributeId, void const * key );
   /// Forgets the keys of a collection.
   void vornIsXDirtyDelAll( U32 attributeId ) noexcept;
   /// Whether a key of any collection waits.
   bool hasDirtyCollKeys() const noexcept;

   /// The attribute at which to go on; 0 for the first.
   U32 attrId() const noexcept { return waiting_ ? waiting_->attrId : 0; }
   void attrIdIs( U32 attributeId );
   /// Whether the present collection is being walked: its markers stand around that, and the flow-out goes on
   /// there.
   bool walking() const noexcept { return waiting_ && waiting_->walking; }
   /// Whether it is that collection, so that some of its members may have been sent already.
   bool walking( U32 attributeId ) const noexcept { return walking() && attrId() == attributeId; }
   void walkBegins() { waitingIs().walking = true; }
   /// The walk that is under way is to be followed by another: what it says is no longer all.
   void walkAgainIs() noexcept { waiting_->walkAgain = true; }
   bool walkAgain() const noexcept { return walking() && waiting_->walkAgain; }
   void walkEnds() noexcept { waiting_->walking = waiting_->walkedAll = waiting_->walkAgain = false; }
   /// Whether all members of the present collection have been sent, but the marker behind them has not.
   bool walkedAll() const noexcept { return waiting_ && waiting_->walkedAll; }
   void walkedAllIs() noexcept { waiting_->walkedAll = true; }

   /// The key at which the walk of the present collection goes on, or null.
   void * bookmark() const noexcept { return waiting_ ? waiting_->bookmark : nullptr; }
   /// Sets a bookmark; there must be none. Whoever takes it back owns it, as whoever sets it did.
   void bookmarkIs( void * key );
   /// Takes the bookmark back; null if there is none.
   void * bookmarkDeq() noexcept { return waiting_ ? std::exchange( waiting_->bookmark, nullptr ) : nullptr; }

   /// What it has while it waits; null if it does not.
   Waiting * waiting() const noexcept { return waiting_.get(); }
   /// The same, made if there is none.
   Waiting & waitingIs();
   /// Lets go of it where nothing waits any more.
   void waitingDel() noexcept;

 private:
   static constexpr U32 firstId = Entity::vornChildFirstId;
   static constexpr U32 bitNum = 32;

   /// The attribute's bit; 0 for one behind those that have bits.
   static U32 bit( U32 attributeId ) noexcept {
      U32 const place = attributeId - firstId;
      return place < bitNum ? 1u << place : 0;
   }
   bool marked( U32 attributeId ) const noexcept {
      U32 const one = bit( attributeId );
      return one ? marks_ & one : markedBehind( attributeId );
   }
   void markIs( U32 attributeId, bool mark ) {
      if ( U32 const one = bit( attributeId ) ) {
         marks_ = mark ? marks_ | one : marks_ & ~one;
      } else {
         markBehindIs( attributeId, mark );
      }
   }
   bool markedBehind( U32 attributeId ) const noexcept;
   void markBehindIs( U32 attributeId, bool mark );
   bool waitingAny() const noexcept;

   std::unique_ptr< Waiting > waiting_;
   U32 marks_ = 0; // of attributes without a key those that wait, of collections those that are to be walked
};

/// Takes a flow-out's bookmark back as what it is.
template< class Key >
Key * vornFlowOutBookmarkDeq( FlowOut & flowOut ) noexcept {
   return static_cast< Key * >( flowOut.bookmarkDeq() );
}

} // namespace Vorn::NboAttrLog
