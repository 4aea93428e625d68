/// \file
/// The adapters that tie entities to an attribute log: one for each entity and log, made by
/// `Entity::vornNboAttrLogSaIs`. An adapter turns each change of a logged attribute into a record of the
/// outgoing log, and the records that come in for its entity into calls of its mutators. There is one class
/// for all types: what to carry, and how, it takes from the type's record.
#pragma once

#include "Vorn/GenericIf.h"
#include "Vorn/NboAttrLogOut.h"

#include <map>
#include <set>
#include <unordered_set>

namespace Vorn {

/// What every adapter has: its flags, its place in the log, and the operations that the log calls.
class VORN_API StreamAdapter : public PtrInterface {
 public:
   /// What a marker record says of the collection that it names.
   enum AttrTransactionType : U8 {
      transactionBegin = 0, ///< all members follow: those present are marked
      transactionEnd = 2,   ///< all members have been sent: those still marked are deleted
   };

   /// Status flags. Those under `Vorn_BitSet::notificationBitMask()` are given by who attaches an entity.
   enum Flag : U32 {
      readOnly = 0x4,             ///< this end does not write
      remoteReadOnly = 0x8,       ///< the other end does not write: what it sends is refused
      applyingLog = 0x10,         ///< a deletion of the sweep is under way, and is not sent back
      unconfirmed = 0x20,         ///< marked by a running transaction
      stopped = 0x120,            ///< either bit stops sending
      suppressed = 0x2000,        ///< nothing is sent at all
      flowOutPresent = 0x100000,  ///< changes go through the flow-out
      handlingFlowOut = 0x400000, ///< a scheduled flow-out is being handled
      orphanRecord = 0x2000000,   ///< an orphan record is being written
      hasEntityId = 0x4000000,    ///< the other end knows the entity
      alwaysFlowOut = 0x8000000,  ///< changes wait for the host to ask, even if there is room
   };

   /// Brings out what is dirty from that attribute on, in order of their ids. The attribute at which the room
   /// ran out, or 0 when all have been visited.
   virtual U32 handleAttrFlowOut( U32 attributeId ) = 0;
   /// Introduces an entity without a parent on the log. False if there is no room.
   virtual bool doSerializeOrphan() = 0;
   /// Applies one attribute record whose value `in` is about to read.
   virtual void doHandleAttrDeserialization( U32 attributeId, NboAttrLog::In & in ) = 0;
   /// Applies one marker.
   virtual void doHandleAttrTransaction( U32 attributeId, AttrTransactionType type, NboAttrLog::In & in ) = 0;
   /// Ids of the collections that a synchronisation walks, in their order, ended by 0.
   virtual std::vector< U32 > attrIdsReqSync() const = 0;

   Vorn_BitSet flags() const noexcept { return flags_; }
   /// Distance from the entity that was attached by hand.
   unsigned level() const noexcept { return level_; }

 protected:
   StreamAdapter( Vorn_BitSet flags, unsigned level ) noexcept : flags_( flags ), level_( level ) {}

   Vorn_BitSet flags_;
   unsigned level_;
};

/// The adapter of one entity on one log.
class VORN_API Entity::VornNboAttrLogSa final : public StreamAdapter {
   VORN_OBJECT( VornNboAttrLogSa )

 public:
   class FlowOut;
   /// The observer that the adapter binds to its entity; it leaves the entity's life alone. It is part of the
   /// adapter, which is held while it is called.
   class VORN_API VornNboAttrLogSaAdapter_ final : public Entity::Notifiee {
    public:
      explicit VornNboAttrLogSaAdapter_( VornNboAttrLogSa & adapter );
      void handleNotification( U32 attributeId, void const * key ) override;
      void vornFwkActivity() override;
      /// Unbinds the observer and clears its way back.
      void adapterDel();

    private:
      VornNboAttrLogSa * adapter_;
   };

   VornNboAttrLogSa( Entity & entity, NboAttrLog::Out & out, Vorn_BitSet flags, unsigned level,
                     VornNboAttrLogSa * parent );
   ~VornNboAttrLogSa() override;

   Entity & entity() const noexcept { return *entity_; }
   /// The log, or null once the entity is no longer on it.
   NboAttrLog::Out * nboAttrLogOut() const noexcept { return out_; }
   /// Number of the entity on the log; 0 before it was introduced. See `NboAttrLog::numberedByPeer`.
   U32 entityId() const noexcept { return ownId_ ? ownId_ : peerId_; }
   /// What is to be written still; null if nothing is.
   FlowOut * flowOut() const noexcept { return flowOut_.get(); }
   void flagsIs( Vorn_BitSet flags );
   /// The adapter of an entity that an attribute of this one holds, made if there is none; the attribute's
   /// walk introduces it.
   Ptr< VornNboAttrLogSa > childIs( Entity & child );
   void hasNotificationActiveIs( bool active ) override;

   U32 handleAttrFlowOut( U32 attributeId ) override;
   bool doSerializeOrphan() override;
   void doHandleAttrDeserialization( U32 attributeId, NboAttrLog::In & in ) override;
   void doHandleAttrTransaction( U32 attributeId, AttrTransactionType type, NboAttrLog::In & in ) override;
   std::vector< U32 > attrIdsReqSync() const override;

 private:
   friend class NboAttrLog::Out;
   friend class NboAttrLog::Demuxer;
   friend class NboAttrLog::References;
   class FlowIn;

   // Outgoing (NboAttrLogSa.cpp).
   void onAttribute( U32 attributeId, void const * key );
   void onNotificationException( std::exception_ptr exception );
   void onFwkActivity();
   [[noreturn]] void doThrowReadOnly( VornAttr const & attr ) const;
   void doThis();
   void keyChanged( VornAttr const & attr, void const * key );
   void keyDirtyIs( VornAttr const & attr, void const * key );
   bool prepareImmediateTransmission( VornAttr const & attr ) const;
   bool serialize( VornAttr const & attr );
   bool serializeGroup();
   bool serializeSing( VornAttr const & attr, void const * key );
   bool serializeColl( VornAttr const & attr );
   bool serializeMember( VornAttr const & attr, Entity & member );
   bool serializeDeletion( VornAttr const & attr, void const * key );
   bool serializeReference( VornAttr const & attr, void const * key, void const * target );
   bool sendTransactionMarker( VornAttr const & attr, AttrTransactionType type );
   FlowOut & flowOutIs();
   void pendingIs( bool pending );
   void pendingFirst();
   void confirmedIs( bool confirmed );
   void close();
   void leaveParent();

   // Incoming (NboAttrLogSaIn.cpp).
   bool handlingFlowInFor( VornAttr const & attr, void const * key );
   template< class Call >
   void apply( VornAttr const & attr, void const * key, Call const & call );
   VornAttr const & loggedAttribute( U32 id ) const;
   void groupFromLog( NboAttrLog::In & in );
   void scalarIs( VornAttr const & attr, void const * value );
   void memberFromLog( VornAttr const & attr, NboAttrLog::In & in );
   void valueFromLog( VornAttr const & attr, NboAttrLog::In & in );
   void deletionFromLog( VornAttr const & attr, NboAttrLog::In & in );
   void memberDel( VornAttr const & attr, void const * key );
   void sweep( VornAttr const & attr );
   void queueFromLog( VornAttr const & attr, AttrTransactionType type, NboAttrLog::In & in );
   [[noreturn]] static void throwWriteUpdateFromReadOnlyProxyException();

   void * object() const noexcept { return static_cast< PtrInterface * >( entity_.ptr() ); }
   VornAttr const * attribute( U32 id ) const noexcept;

   Ptr< Entity > entity_;
   VornType const & type_; // the entity's
   NboAttrLog::Out * out_;
   VornNboAttrLogSaAdapter_ observer_;
   VornNboAttrLogSa * parent_;               // whose attribute holds the entity; null for an orphan
   VornNboAttrLogSa * firstChild_ = nullptr; // adapters below, in no order
   VornNboAttrLogSa * nextChild_ = nullptr;  // neighbours among the parent's
   VornNboAttrLogSa * prevChild_ = nullptr;
   VornNboAttrLogSa * nextPending_ = nullptr; // neighbours in the log's list of those with something to write
   VornNboAttrLogSa * prevPending_ = nullptr;
   bool pending_ = false;
   bool orphanPending_ = false;
   // Where both ends introduce an entity at the same time it has two numbers, and each end uses its own.
   U32 ownId_ = 0;
   U32 peerId_ = 0;
   std::unique_ptr< FlowOut > flowOut_;
   FlowIn * flowIn_ = nullptr;                                     // what is being applied, innermost first
   std::unique_ptr< std::map< U32, std::set< U32 > > > queueSeen_; // indices of the transactions under way
};

namespace NboAttrLog {

/// The state of a synchronisation: what is dirty, and where a walk stands. It exists only while there is
/// something that could not be written at once.
class VORN_API FlowOut {
 public:
   struct KeyHash {
      std::size_t operator()( GenericIf::Value const & key ) const {
         return key.type()->methods->genericIfHash( key.data(), key.type() );
      }
   };
   using Keys = std::unordered_set< GenericIf::Value, KeyHash >;

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
   Keys & dirtyKeys( U32 attributeId ) { return keys_[attributeId]; }
   bool hasDirtyCollKeys() const noexcept;

   /// The attribute that is being worked on.
   U32 attrId() const noexcept { return attrId_; }
   void attrIdIs( U32 attributeId ) noexcept { attrId_ = attributeId; }
   /// Whether the walk of that collection is under way: some members may have been sent already.
   bool walking( U32 attributeId ) const noexcept {
      return attrId_ == attributeId && ( bookmark_ || walkedAll_ );
   }
   /// Whether all members of the present collection have been sent, but the marker behind them has not.
   bool walkedAll() const noexcept { return walkedAll_; }
   void walkedAllIs( bool all ) noexcept { walkedAll_ = all; }
   /// Whether the present collection is being walked: the flow-out goes on there.
   bool walking() const noexcept { return bookmark_ || walkedAll_; }

   /// The key at which the walk of the present collection goes on.
   GenericIf::Value const * bookmark() const noexcept { return bookmark_.get(); }
   /// Sets a bookmark; there must be none.
   void bookmarkIs( std::unique_ptr< GenericIf::Value > key );
   /// Takes the bookmark back.
   std::unique_ptr< GenericIf::Value > bookmarkDeq() noexcept { return std::move( bookmark_ ); }

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
   std::map< U32, Keys > keys_;
   std::unique_ptr< GenericIf::Value > bookmark_;
};

} // namespace NboAttrLog

/// Under the name by which the adapter knows it.
class VORN_API Entity::VornNboAttrLogSa::FlowOut final : public NboAttrLog::FlowOut {
 public:
   using NboAttrLog::FlowOut::FlowOut;
};

} // namespace Vorn
