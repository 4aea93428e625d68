/// \file
/// `NboAttrLog::FlowOut`: what an adapter could not write at once, and where a synchronisation stands.
/// docs/attribute-log.md tells what a synchronisation is.
#pragma once

#include "Vorn/GenericIf.h"

#include <memory>
#include <set>
#include <vector>

namespace Vorn::NboAttrLog {

/// The state of a synchronisation: what is dirty, and where a walk stands. A dirty attribute is a bit. Memory
/// is taken only for keys that wait, for the place at which a walk was interrupted, and for attributes behind
/// the first 32 of a type.
class VORN_API FlowOut {
 public:
   /// The keys of one collection that wait: keys only, since the value is read when it is sent.
   using VornVornIsXDirty = KeySet;

   /// Dirty keys of a collection, beyond as many as it has members, from which on all of it is sent anew.
   static constexpr U32 spareDirtyKeys = 64;

   explicit FlowOut( VornType const & type ) noexcept;
   ~FlowOut();
   FlowOut( FlowOut const & ) = delete;
   FlowOut & operator=( FlowOut const & ) = delete;

   VornType const & type() const noexcept { return *type_; }
   /// Whether anything is left to write.
   bool any() const noexcept { return dirty_ | unsynced_ || ( rest_ && restAny() ); }
   /// The type's attribute of that id, or null.
   VornAttr const * attribute( U32 id ) const noexcept {
      // A type's own attributes follow those of `Entity` in one run, so the place is nearly always known.
      U32 const place = entityRows + id - firstId;
      if ( place < type_->attributeNum && type_->attributes[place].id() == id ) {
         return &type_->attributes[place];
      }
      return type_->attribute( id );
   }

   /// Whether an attribute without a key waits.
   bool vornIsDirty( U32 attributeId ) const noexcept;
   void vornIsDirtyIs( U32 attributeId, bool dirty );
   /// Whether a collection has been walked whole; true for what is no collection.
   bool vornHasSynced( U32 attributeId ) const noexcept;
   void vornHasSyncedIs( U32 attributeId, bool synced );
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
   U32 attrId() const noexcept { return rest_ ? rest_->attrId : 0; }
   void attrIdIs( U32 attributeId );
   /// Whether the present collection is being walked: its markers stand around that, and the flow-out goes on
   /// there.
   bool walking() const noexcept { return rest_ && rest_->walking; }
   /// Whether it is that collection, so that some of its members may have been sent already.
   bool walking( U32 attributeId ) const noexcept { return walking() && attrId() == attributeId; }
   void walkBegins() { rest().walking = true; }
   /// The walk that is under way is to be followed by another: what it says is no longer all.
   void walkAgainIs() noexcept { rest_->walkAgain = true; }
   bool walkAgain() const noexcept { return walking() && rest_->walkAgain; }
   void walkEnds() noexcept { rest_->walking = rest_->walkedAll = rest_->walkAgain = false; }
   /// Whether all members of the present collection have been sent, but the marker behind them has not.
   bool walkedAll() const noexcept { return rest_ && rest_->walkedAll; }
   void walkedAllIs() noexcept { rest_->walkedAll = true; }

   /// The key at which the walk of the present collection goes on, or null.
   void * bookmark() const noexcept { return rest_ ? rest_->bookmark : nullptr; }
   /// Sets a bookmark; there must be none. Whoever takes it back owns it, as whoever sets it did.
   void bookmarkIs( void * key );
   /// Takes the bookmark back; null if there is none.
   void * bookmarkDeq() noexcept { return rest_ ? std::exchange( rest_->bookmark, nullptr ) : nullptr; }

 private:
   static constexpr U32 entityRows = 5;
   static constexpr U32 firstId = 0x102;
   static constexpr U32 bitNum = 32;

   using Ids = std::set< U32 >;
   struct Rest {
      U32 attrId = 0;
      bool walking = false;
      bool walkAgain = false;
      bool walkedAll = false;
      void * bookmark = nullptr;
      std::vector< std::pair< U32, std::unique_ptr< KeySet > > > keys; // by attribute
      Ids dirty;                                                       // what has no bit
      Ids unsynced;
   };

   /// The attribute's bit; 0 for one behind those that have bits.
   U32 bit( U32 attributeId ) const noexcept {
      U32 const place = U32( attribute( attributeId ) - type_->attributes ) - entityRows;
      return place < bitNum ? 1u << place : 0;
   }
   bool restAny() const noexcept;
   Rest & rest();

   VornType const * type_;
   U32 dirty_ = 0;
   U32 unsynced_ = 0;
   std::unique_ptr< Rest > rest_;
};

/// Takes a flow-out's bookmark back as what it is.
template< class Key >
Key * vornFlowOutBookmarkDeq( FlowOut & flowOut ) noexcept {
   return static_cast< Key * >( flowOut.bookmarkDeq() );
}

} // namespace Vorn::NboAttrLog
