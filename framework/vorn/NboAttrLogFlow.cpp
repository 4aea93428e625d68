// What an adapter could not write at once, and the walk over its entity that brings it out.

#include "Vorn/Impl/NboAttrLogFlow.h"

#include "NboAttrLogAnchors.h"
#include "NboAttrLogState.h"

namespace Vorn {

using NboAttrLog::Sent;
using Sa = Entity::VornNboAttrLogSa;

namespace {

/// The first logged attribute from there on, or null.
VornAttr const * logged( VornAttr const * attr ) noexcept {
   while ( attr->name && !attr->logged() ) {
      ++attr;
   }
   return attr->name ? attr : nullptr;
}

} // namespace

// What waits.

/// An attribute without a key waits.
void Sa::dirtyIs( VornAttr const & x ) {
   flowOut_.vornIsDirtyIs( x.id(), true );
   waits( Sent::noRoom );
}

/// A key waits.
void Sa::keyDirtyIs( VornAttr const & x, void const * key ) {
   keyMark( x, key );
   waits( Sent::noRoom );
}

/// Marks a key, unless a walk that is still to come sends every key.
void Sa::keyMark( VornAttr const & x, void const * key ) {
   U32 const id = x.id();
   bool const walking = flowOut_.walking( id );
   if ( walking ? flowOut_.walkAgain() : !flowOut_.vornHasSynced( id ) ) return;
   // Keys of one hash that have gone wait beside those that are there; a set bears no more than the
   // collection.
   if ( auto const * const keys = flowOut_.vornIsXDirty( id ); keys && keys->crowded( key ) )
      return resyncMark( x );
   try {
      flowOut_.vornIsXDirtyIs( object(), x, key );
   } catch ( std::bad_alloc const & ) {
      resyncMark( x );
   }
   // Keys that come and go while the other end does not listen would grow without end.
   U32 members = 0;
   x.ops->op( &members, object(), x, GenericIf::members, nullptr, nullptr );
   auto const * const keys = flowOut_.vornIsXDirty( id );
   if ( keys && keys->members() > members + FlowOut::spareDirtyKeys ) resyncMark( x );
}

/// Marks all of a collection to be sent anew, which says what has gone as well.
void Sa::resyncMark( VornAttr const & x ) {
   U32 const id = x.id();
   flowOut_.vornIsXDirtyDelAll( id );
   if ( flowOut_.walking( id ) ) flowOut_.walkAgainIs();
   flowOut_.vornHasSyncedIs( id, false );
}

/// What a change that could not even be marked may have left unsaid goes out again.
void Sa::markAgain( VornAttr const & x ) {
   x.keyed() ? resyncMark( x ) : flowOut_.vornIsDirtyIs( x.id(), true );
   waits( Sent::noRoom );
}

void Sa::referenceDirtyIs( VornAttr const & x, void const * key ) {
   x.keyed() ? keyDirtyIs( x, key ) : dirtyIs( x );
}

/// Something that was marked waits: for room, or for an entity.
void Sa::waits( Sent why ) {
   if ( why == Sent::awaits ) {
      if ( status_.any( handlingFlowOut ) ) {
         status_.bitsIs( awaits, true ); // for the pass to see
         return;
      }
      if ( !status_.any( pendingQueued ) ) status_.bitsIs( awaits, true );
   } else {
      status_.bitsIs( awaits, false );
      status_.bitsIs( wakes, true );
   }
   reschedule();
}

void Sa::freeResyncState( NboAttrLog::FlowOut & flowOut ) {
   delete vornFlowOutBookmarkDeq< GenericIf::Value >( flowOut );
}

// The walk.

void Sa::flow() {
   if ( status_.any( orphanPending ) ) {
      doSerializeOrphan();
   } else {
      // An attribute in front may have become dirty meanwhile.
      handleAttrFlowOut( flowOut_.attrId() );
   }
}

U32 Sa::handleAttrFlowOut( U32 attributeId ) {
   NboAttrLog::HandlingScheduledFlowOutAnchor const anchor( status_, flowOut_.any() );
   Ptr< VornNboAttrLogSa > const hold( this );
   VornAttr const * x = logged( type().attributes );
   if ( flowOut_.walking() ) attributeId = flowOut_.attrId();
   bool const whole = !x || attributeId <= x->id();
   if ( whole ) status_.bitsIs( awaits | wakes, false );
   if ( x && attributeId < x->id() ) {
      if ( U32 const at = StreamAdapter::handleAttrFlowOut( attributeId ) ) return at;
      if ( !continueFlowOut() ) return x->id();
   }
   while ( x && flowOut_.any() ) {
      U32 const id = x->id();
      VornAttr const * const next = logged( x + 1 );
      bool done = true;
      try {
         if ( id < attributeId ) {
            // Sent before the walk was interrupted.
         } else if ( x->keyed() ) {
            done = vornHandleXSerializeColl( *x );
         } else if ( flowOut_.vornIsDirty( id ) ) {
            onX( *x, nullptr );
         }
      } catch ( ... ) {
         if ( out_ ) markAgain( *x );
         throw;
      }
      if ( !out_ ) return 0; // somebody has taken it off
      if ( flowOut_.any() && ( !done || ( id >= attributeId && !continueFlowOut() ) ) ) {
         // A record that found no room is the first to be tried again: behind shorter ones that change all
         // the time it could wait for ever.
         U32 const at = !done || status_.any( noRoom ) || !next ? id : next->id();
         flowOut_.attrIdIs( at );
         return at;
      }
      x = next;
   }
   flowOut_.attrIdIs( 0 );
   // What is left became dirty in front of the walk, or waits for entities.
   status_.bitsIs( awaits, whole && status_.any( awaits ) && !status_.any( wakes ) );
   reschedule();
   return 0;
}

bool Sa::continueFlowOut() const noexcept { return maySend() && out_->hasSufficientBuffer(); }

/// Sends a collection that has not been walked, then the keys that changed meanwhile. False where it stops
/// before the end.
bool Sa::vornHandleXSerializeColl( VornAttr const & x ) {
   U32 const id = x.id();
   bool const synced = flowOut_.vornHasSynced( id );
   if ( synced && !flowOut_.vornIsXDirty( id ) ) return true;
   if ( !maySend() || flowInFor( x, nullptr ) ) return false;
   if ( !synced ) {
      if ( awaitsMembers( x ) ) {
         status_.bitsIs( awaits, true );
         return true;
      }
      flowOut_.attrIdIs( id );
      if ( !flowOut_.walkedAll() && !vornHandleXSerializeWalk( x ) ) return false;
      if ( !sendTransactionMarker( x, transactionEnd ) ) return false;
      bool const again = flowOut_.walkAgain();
      flowOut_.walkEnds();
      if ( again ) return vornHandleXSerializeColl( x );
      flowOut_.vornHasSyncedIs( id, true );
   }
   return vornHandleXSerializeKeys( x );
}

/// Whether a collection of references is to wait until the entities that they lead to are known, or will not
/// be: a copy from an earlier connection keeps what it has until then.
bool Sa::awaitsMembers( VornAttr const & x ) const {
   if ( x.kind() != VornKind::referenceColl || out_->state().settling || flowOut_.walking() ) return false;
   for ( GenericIf::Iterator it( object(), x ); it; it.advance() ) {
      Ptr< PtrInterface > member;
      it.object( &member );
      auto * const entity = dynamic_cast< Entity * >( member.ptr() );
      auto const * const adapter = entity ? out_->adapter( *entity ) : nullptr;
      if ( !adapter || !adapter->entityId() ) return true;
   }
   return false;
}

/// Sends the members, from the first, behind a marker, or from where the walk was interrupted.
bool Sa::vornHandleXSerializeWalk( VornAttr const & x ) {
   std::unique_ptr< GenericIf::Value > const start( vornFlowOutBookmarkDeq< GenericIf::Value >( flowOut_ ) );
   if ( !flowOut_.walking() ) {
      if ( !sendTransactionMarker( x, transactionBegin ) ) return false;
      flowOut_.walkBegins();
   } else if ( !start ) {
      flowOut_.walkAgainIs(); // the place is lost, where memory ran out: the walk begins at the front
   }
   GenericIf::Value key( x.keyType );
   for ( GenericIf::Iterator it( object(), x, start ? start->data() : nullptr ); it; it.advance() ) {
      it.key( key.data() );
      Sent sent;
      if ( x.kind() == VornKind::entityColl ) {
         Ptr< PtrInterface > member;
         it.object( &member );
         sent = serializeMember( x, static_cast< Entity & >( *member ) );
      } else {
         sent = serializeKey( x, key.data() );
      }
      if ( sent == Sent::yes ) continue;
      // It has left since; the key waits by itself for its entity to come back.
      if ( sent == Sent::awaits ) {
         keyMark( x, key.data() );
         status_.bitsIs( awaits, true );
         continue;
      }
      flowOut_.bookmarkIs( std::make_unique< GenericIf::Value >( key ).release() );
      return false;
   }
   flowOut_.walkedAllIs();
   return true;
}

/// Sends the keys that wait, of a queue in its order.
bool Sa::vornHandleXSerializeKeys( VornAttr const & x ) {
   U32 const id = x.id();
   U32 oldest = 0;
   if ( x.kind() == VornKind::queue ) {
      U32 indices[2];
      x.ops->op( indices, object(), x, GenericIf::indices, nullptr, nullptr );
      oldest = indices[1]; // the next one
   }
   GenericIf::Value key( x.keyType );
   auto * keys = flowOut_.vornIsXDirty( id );
   for ( U32 most = keys ? keys->members() : 0; most && keys; --most, keys = flowOut_.vornIsXDirty( id ) ) {
      if ( !keys->next( key.data(), oldest ) ) break;
      // The record may make other keys dirty, or this one again, so it is not left in the set meanwhile.
      keys->keyDel( key.data() );
      Sent const sent = serializeKey( x, key.data() );
      if ( sent == Sent::yes ) continue;
      keyMark( x, key.data() );
      if ( sent == Sent::noRoom ) return false;
      status_.bitsIs( awaits, true );
      if ( ( keys = flowOut_.vornIsXDirty( id ) ) ) keys->pass();
   }
   return true;
}

std::vector< U32 > Sa::attrIdsReqSync() const {
   std::vector< U32 > ids;
   for ( VornAttr const * attr = type().attributes; attr->name; ++attr ) {
      if ( attr->logged() && attr->keyed() ) ids.push_back( attr->id() );
   }
   ids.push_back( 0 );
   return ids;
}

} // namespace Vorn
