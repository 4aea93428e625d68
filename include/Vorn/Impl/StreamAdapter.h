/// \file
/// The adapters that tie entities to an attribute log: one for each entity and log, made by
/// `Entity::vornNboAttrLogSaIs`. An adapter turns each change of a logged attribute into a record of the
/// outgoing log, and the records that come in for its entity into calls of its mutators. There is one class
/// for all types: what to carry, and how, it takes from the type's record.
#pragma once

#include "Vorn/Impl/NboAttrLogFlow.h"
#include "Vorn/Impl/NboAttrLogList.h"
#include "Vorn/Impl/NboAttrLogOut.h"

#include <algorithm>

namespace Vorn {

/// What every adapter has: its flags, its place in the log, and the operations that the log calls. It is an
/// observer of its entity.
class VORN_API StreamAdapter : public Entity::Notifiee {
 public:
   /// What a marker record says of the collection that it names.
   enum AttrTransactionType : U8 {
      transactionBegin = 0, ///< all members follow: those present are marked
      transactionEnd = 2,   ///< all members have been sent: those still marked are deleted
   };

   /// Status flags. Those under `Vorn_BitSet::notificationBitMask()` are given by who attaches an entity.
   enum Flag : U32 {
      readOnly = 0x4,             ///< this end does not write; see `NboAttrLog::Permits`
      remoteReadOnly = 0x8,       ///< the other end does not write: what it sends is checked
      applyingLog = 0x10,         ///< a deletion of the sweep is under way, and is not sent back
      unconfirmed = 0x20,         ///< marked by a running transaction, not named in it yet
      pendingQueued = 0x40,       ///< has something to write, and may
      awaitingQueued = 0x80,      ///< the same, but only references to entities that may yet come to the log
      held = 0x100,               ///< the host holds everything back; it waits until the flag is cleared
      stopped = 0x120,            ///< either bit stops sending
      orphanPending = 0x200,      ///< the orphan record is still to be written
      awaits = 0x400,             ///< all that is dirty waits for entities, or may
      wakes = 0x800,              ///< something became dirty that does not
      suppressed = 0x2000,        ///< nothing is sent at all; all of it when the flag is cleared
      flowOutPresent = 0x100000,  ///< changes go through the flow-out
      handlingFlowOut = 0x400000, ///< a scheduled flow-out is being handled
      orphanRecord = 0x2000000,   ///< an orphan record is being written
      hasEntityId = 0x4000000,    ///< the other end knows the entity
      alwaysFlowOut = 0x8000000,  ///< changes wait for the host to ask, even if there is room
      noRoom = 0x40000000,        ///< the last record found no room; cleared before each
   };

   /// Brings out what is dirty from that attribute on, in order of their ids. Gives the attribute at which to
   /// go on, or 0 when all have been visited. Of the attributes of `Entity` itself none is logged.
   virtual U32 handleAttrFlowOut( U32 attributeId );
   /// Lets go of the place at which a flow-out's walk stands.
   virtual void freeResyncState( NboAttrLog::FlowOut & flowOut ) = 0;
   /// Introduces an entity without a parent on the log. False if it has to wait.
   virtual bool doSerializeOrphan() = 0;
   /// Applies one attribute record, whose value of `length` octets `in` is about to read. `introducing` says
   /// whether its kind is that of a record which introduces an entity.
   virtual void doHandleAttrDeserialization( U32 attributeId, bool introducing, unsigned length,
                                             Ptr< NboAttrLog::In > const & in ) = 0;
   /// Applies one marker, whose word is `word`; refuses that of an attribute which is no logged collection.
   virtual void doHandleAttrTransaction( U32 attributeId, AttrTransactionType type, unsigned word,
                                         Ptr< NboAttrLog::In > const & in );
   /// Ids of the collections that a synchronisation walks, in their order, ended by 0.
   virtual std::vector< U32 > attrIdsReqSync() const = 0;

   Vorn_BitSet flags() const noexcept { return status_; }
   /// Distance from the entity that was attached by hand, as far as it can be counted: 65535 is that or more.
   unsigned level() const noexcept { return level_; }

 protected:
   StreamAdapter( Vorn_BitSet flags, unsigned level ) noexcept : level_( U16( std::min( level, 0xffffu ) ) ) {
      status_ = flags;
   }
   // The log alone binds an adapter, and lets go of it.
   using Entity::Notifiee::isRegisteredNotifieeIs;
   using Entity::Notifiee::isWeakReferenceIs;
   using Entity::Notifiee::notifierIs;

   U16 level_;
   U32 ownId_ = 0; ///< the entity's number, if this end gave it one
};

namespace NboAttrLog {

class FlowIn;
class Transactions;
enum class Sent : U8;
/// Tag of the lists in which an adapter stands.
struct Siblings;

} // namespace NboAttrLog

/// The adapter of one entity on one log. It holds the entity, and observes it itself: one class for all
/// types, which is told of every attribute, and leaves the entity's life alone.
class VORN_API Entity::VornNboAttrLogSa final
     : public StreamAdapter,
       public NboAttrLog::ListLink< Entity::VornNboAttrLogSa, NboAttrLog::Siblings > {
   VORN_OBJECT( VornNboAttrLogSa )

 public:
   using FlowOut = NboAttrLog::FlowOut;
   using In = NboAttrLog::In;
   using Family = NboAttrLog::LinkedList< VornNboAttrLogSa, NboAttrLog::Siblings >;
   /// The observer of the entity: the adapter itself.
   using VornNboAttrLogSaAdapter_ = VornNboAttrLogSa;

   VornNboAttrLogSa( Entity & entity, NboAttrLog::Out & out, Vorn_BitSet flags, unsigned level,
                     VornNboAttrLogSa * parent );
   ~VornNboAttrLogSa() override;

   Entity & entity() const noexcept {
      // Bound to nothing but a mutable entity, by the constructor.
      auto const * const bound = static_cast< Entity const * >( notifier() );
      return bound ? const_cast< Entity & >( *bound ) : *left_;
   }
   /// The log, or null once the entity is no longer on it.
   NboAttrLog::Out * nboAttrLogOut() const noexcept { return out_; }
   /// Whose attribute holds the entity; null for one that was attached by hand.
   VornNboAttrLogSa * parent() const noexcept { return notifier() ? parent_ : nullptr; }
   /// Number of the entity on the log; 0 before it was introduced. See `NboAttrLog::numberedByPeer`.
   U32 entityId() const noexcept { return ownId_ ? ownId_ : peerId_; }
   /// The same by who gave it.
   U32 entityId( bool byPeer ) const noexcept { return byPeer ? peerId_ : ownId_; }
   /// What is to be written still; null if nothing is.
   FlowOut * flowOut() noexcept { return flowOut_.any() ? &flowOut_ : nullptr; }
   /// The same, also when nothing is.
   FlowOut * vornRawFlowOut() noexcept { return &flowOut_; }
   /// Takes over the flags that whoever attaches an entity decides, for all below it too.
   void flagsIs( Vorn_BitSet flags );
   /// The adapter of an entity that an attribute of this one holds, made if there is none; the attribute's
   /// walk introduces it.
   Ptr< VornNboAttrLogSa > childNboAttrLogAdapterIs( Entity & child );

   // As an observer, which whoever tells it keeps alive meanwhile.
   void handleNotification( U32 attributeId, void const * key ) override;
   void onNotificationException() override;
   void vornFwkActivity() override;

   U32 handleAttrFlowOut( U32 attributeId ) override;
   void freeResyncState( NboAttrLog::FlowOut & flowOut ) override;
   bool doSerializeOrphan() override;
   void doHandleAttrDeserialization( U32 attributeId, bool introducing, unsigned length,
                                     Ptr< In > const & in ) override;
   void doHandleAttrTransaction( U32 attributeId, AttrTransactionType type, unsigned word,
                                 Ptr< In > const & in ) override;
   std::vector< U32 > attrIdsReqSync() const override;

   // What the rest of the log does with it.

   /// Takes the entity off the log, with all below it.
   void close();
   /// Writes what the adapter was queued for.
   void flow();
   /// Queues it among those that write when there is room, or those that await entities, or not: 0.
   void queueIs( U32 queue );
   /// Queues it if it has something to write and may.
   void reschedule();
   /// The next of all adapters below a root, or below those behind it: parents before their children.
   VornNboAttrLogSa * following() const noexcept;
   /// Whether the transaction that is running has named the member; until then it does not send.
   void confirmedIs( bool confirmed );
   /// The number of the entity, by whoever gave it; 0 for none.
   void entityIdIs( U32 id, bool byPeer ) noexcept;
   /// A reference that was written leads elsewhere for the other end: it goes out again.
   void referenceDirtyIs( VornAttr const & x, void const * key );
   /// Whether this end takes a change from the other; throws if not.
   void checkWritable( U32 attributeId ) const;
   [[noreturn]] static void throwWriteUpdateFromReadOnlyProxyException();

 private:
   // Life (NboAttrLogSa.cpp).
   void doFixChildFlags( VornNboAttrLogSa & child ) const;
   void pendingFirst();
   Family & family() noexcept;

   // Changes that go out (NboAttrLogSaOut.cpp); `x` is the attribute.
   void onX( VornAttr const & x, void const * key );
   void handleValueSerialization( VornAttr const & x );
   NboAttrLog::Out * handleValueSerializationImpl( VornAttr const & x );
   void vornHandleXSerializeSing( VornAttr const & x, void const * key );
   bool prepareImmediateTransmission( VornAttr const & x ) const;
   bool convertedToWritable();
   [[noreturn]] void doThrowReadOnly( VornAttr const & x ) const;
   void doThis();
   template< class Body >
   NboAttrLog::Sent send( NboAttrLog::RecordKind kind, U32 attributeId, Body const & body );
   NboAttrLog::Sent serializeScalar( VornAttr const & x );
   void markFrom( VornAttr const * attr );
   U32 typeNumber( VornType const & type );
   template< class Write >
   NboAttrLog::Sent introduce( VornNboAttrLogSa & adapter, U32 id, Write const & write );
   NboAttrLog::Sent serialize( VornAttr const & x );
   NboAttrLog::Sent serializeKey( VornAttr const & x, void const * key );
   NboAttrLog::Sent serializeMember( VornAttr const & x, Entity & member );
   NboAttrLog::Sent serializeDeletion( VornAttr const & x, void const * key );
   NboAttrLog::Sent handlePtrSerialization( VornAttr const & x, void const * key, Entity * target );
   bool sendTransactionMarker( VornAttr const & x, AttrTransactionType type );

   // What waits (NboAttrLogFlow.cpp).
   bool vornHandleXSerializeColl( VornAttr const & x );
   bool vornHandleXSerializeWalk( VornAttr const & x );
   bool vornHandleXSerializeKeys( VornAttr const & x );
   bool continueFlowOut() const noexcept;
   void dirtyIs( VornAttr const & x );
   void keyDirtyIs( VornAttr const & x, void const * key );
   void keyMark( VornAttr const & x, void const * key );
   void resyncMark( VornAttr const & x );
   void markAgain( VornAttr const & x );
   bool awaitsMembers( VornAttr const & x ) const;
   void waits( NboAttrLog::Sent why );

   // Records that come in (NboAttrLogSaIn.cpp).
   NboAttrLog::FlowIn * flowInFor( VornAttr const & attr, void const * key ) const noexcept;
   /// Whether a change that the observer reports is one that is being applied.
   bool handlingFlowInFor( VornAttr const & attr, void const * key ) const;
   template< class Call >
   void apply( VornAttr const & attr, void const * key, Call const & call );
   bool allowWriteFromReadOnlyRemote( U32 attributeId ) const;
   [[noreturn]] void doBaseVornNboAttrLogSaMsg( U32 attributeId ) const;
   VornAttr const & loggedAttribute( U32 id ) const;
   void otherFromLog( U32 attributeId, bool introducing, Ptr< In > const & in );
   void groupFromLog( Ptr< In > const & in );
   void scalarFromLog( VornAttr const & attr, In & in );
   struct GroupState;
   void entryFromLog( In & in, GroupState & group );
   void memberFromLog( VornAttr const & attr, In & in, GroupState * group );
   void valueFromLog( VornAttr const & attr, In & in, GroupState * group );
   void deletionFromLog( VornAttr const & attr, In & in, GroupState * group );
   void checkRoom( VornAttr const & attr, void const * key, GroupState const * group );
   void memberDel( VornAttr const & attr, void const * key );
   void indexPassed( VornAttr const & attr, U32 index );
   void sweep( VornAttr const & attr );
   void markAll( VornAttr const & attr );
   template< class Wanted >
   void indicesKeep( VornAttr const & attr, Wanted const & wanted );
   void queueBegins( VornAttr const & attr, U32 const * indices );
   void queueEnds( VornAttr const & attr, HashMap2018< NboAttrLog::Transactions, U32 > const & seen );

   void * object() const noexcept { return static_cast< PtrInterface * >( &entity() ); }
   VornType const & type() const noexcept { return *notifierType(); } // the entity's
   /// The entity's attribute of that id, or null.
   VornAttr const * attribute( U32 id ) const noexcept {
      // A type's own attributes follow those of `Entity` in one run, so the place is nearly always known.
      VornType const & own = type();
      U32 const place = entityRows + id - vornChildFirstId;
      if ( place < own.attributeNum && own.attributes[place].id() == id ) return &own.attributes[place];
      return own.attribute( id );
   }
   /// Whether nothing keeps it from sending but room.
   bool maySend() const noexcept { return !status_.any( suppressed | stopped ); }

   static constexpr U32 entityRows = 5;

   // One adapter stands for each entity that is logged, so every word counts: the entity is the notifier, its
   // type that of the notifier, and a place in a queue has only who waits (`FlowOut::Waiting`).
   NboAttrLog::Out * out_;
   union {
      VornNboAttrLogSa * parent_; // while the entity is on the log
      Entity * left_;             // afterwards the entity, bound no more
   };
   Family children_; // adapters below, in no order
   [[no_unique_address]] FlowOut flowOut_;
   // Where both ends introduce an entity at the same time it has two numbers, and each end uses its own.
   U32 peerId_ = 0;
};
static_assert( sizeof( Entity::VornNboAttrLogSa ) <= 112 );

} // namespace Vorn
