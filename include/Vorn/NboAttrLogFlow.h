/// \file
/// `NboAttrLog::FlowOut`: what an adapter could not write at once, and where a synchronisation stands. It
/// exists only while there is something to write. docs/attribute-log.md tells what a synchronisation is.
#pragma once

#include "Vorn/GenericIf.h"

#include <map>
#include <memory>
#include <unordered_set>
#include <vector>

namespace Vorn::NboAttrLog {

/// The state of a synchronisation: what is dirty, and where a walk stands.
class VORN_API FlowOut {
 public:
   struct KeyHash {
      std::size_t operator()( GenericIf::Value const & key ) const {
         return key.type()->methods->genericIfHash( key.data(), key.type() );
      }
   };
   /// The keys of one collection that wait: keys only, since the value is read when it is sent.
   using VornVornIsXDirty = std::unordered_set< GenericIf::Value, KeyHash >;

   /// Dirty keys of a collection, beyond as many as it has members, from which on all of it is sent anew.
   static constexpr U32 spareDirtyKeys = 64;

   explicit FlowOut( VornType const & type );

   /// Whether an attribute without a key waits.
   bool vornIsDirty( U32 attributeId ) const noexcept { return dirty_[index( attributeId )]; }
   void vornIsDirtyIs( U32 attributeId, bool dirty ) noexcept {
      bitIs( dirty_, dirtyNum_, attributeId, dirty );
   }
   /// Whether a collection has been walked whole; true for what is no collection.
   bool vornHasSynced( U32 attributeId ) const noexcept { return !unsynced_[index( attributeId )]; }
   void vornHasSyncedIs( U32 attributeId, bool synced ) noexcept {
      bitIs( unsynced_, unsyncedNum_, attributeId, !synced );
   }
   bool hasDirtyAttributes() const noexcept { return dirtyNum_ || unsyncedNum_; }

   /// The keys of a collection that wait.
   VornVornIsXDirty & vornIsXDirty( U32 attributeId ) { return keys_[attributeId]; }
   void vornIsXDirtyIs( U32 attributeId, GenericIf::Value const & key ) { keys_[attributeId].insert( key ); }
   void vornIsXDirtyDel( U32 attributeId, GenericIf::Value const & key ) { keys_[attributeId].erase( key ); }
   /// Whether a key of any collection waits.
   bool hasDirtyCollKeys() const noexcept;

   /// The attribute that is being worked on.
   U32 attrId() const noexcept { return attrId_; }
   void attrIdIs( U32 attributeId ) noexcept { attrId_ = attributeId; }
   /// Whether all members of the present collection have been sent, but the marker behind them has not.
   bool walkedAll() const noexcept { return walkedAll_; }
   void walkedAllIs( bool all ) noexcept { walkedAll_ = all; }
   /// Whether the present collection is being walked: the flow-out goes on there.
   bool walking() const noexcept { return bookmark_ || walkedAll_; }
   /// Whether it is that collection, so that some of its members may have been sent already.
   bool walking( U32 attributeId ) const noexcept { return attrId_ == attributeId && walking(); }

   /// The key at which the walk of the present collection goes on, or null.
   GenericIf::Value const * bookmark() const noexcept { return bookmark_.get(); }
   /// Sets a bookmark; there must be none.
   void bookmarkIs( std::unique_ptr< GenericIf::Value > key );
   /// Takes the bookmark back.
   friend std::unique_ptr< GenericIf::Value > vornFlowOutBookmarkDeq( FlowOut & flowOut ) noexcept {
      return std::move( flowOut.bookmark_ );
   }

 private:
   using Bits = std::vector< bool >;
   U32 index( U32 attributeId ) const noexcept;
   void bitIs( Bits & bits, U32 & count, U32 attributeId, bool set ) noexcept;

   VornType const * type_;
   Bits dirty_;
   Bits unsynced_;
   U32 dirtyNum_ = 0;
   U32 unsyncedNum_ = 0;
   U32 attrId_ = 0;
   bool walkedAll_ = false;
   std::map< U32, VornVornIsXDirty > keys_;
   std::unique_ptr< GenericIf::Value > bookmark_;
};

} // namespace Vorn::NboAttrLog
