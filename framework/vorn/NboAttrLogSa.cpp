// The life of an adapter: how an entity comes to a log, whose child it is there, whether it waits to send,
// and how it leaves.

#include "NboAttrLogState.h"
#include "Vorn/Impl/EntityRecord.h"
#include "Vorn/Impl/StreamAdapter.h"

namespace Vorn {

VORN_UNLISTED_RECORD( Vorn, Entity::VornNboAttrLogSa, nullptr )

using NboAttrLog::Out;
using Sa = Entity::VornNboAttrLogSa;

Ptr< StreamAdapter > Entity::vornNboAttrLogSa( Ptr< Out > const & out ) const {
   return Ptr< StreamAdapter >( out ? out->adapter( *this ) : nullptr );
}

Ptr< StreamAdapter > Entity::vornNboAttrLogSaIs( Vorn_BitSet flags, unsigned level, Ptr< Out > const & out ) {
   if ( !out || !vornHasAttrLogInterface() ) return nullptr;
   if ( auto * const present = out->adapter( *this ) ) {
      present->flagsIs( flags );
      return Ptr< StreamAdapter >( present );
   }
   if ( Ptr< Entity > const owner = parent(); owner && out->adapter( *owner ) ) {
      // A child of what is on the log comes through its parent.
      VornType const & type = *owner->fwkType();
      if ( type.childAttrLogIs ) type.childAttrLogIs( &type, parentAttrName().charPtr(), *owner, out );
      if ( out->adapter( *this ) ) return vornNboAttrLogSaIs( flags, level, out );
   }
   auto const adapter = out->state().newAdapter( *out, *this, flags, level, nullptr );
   adapter->doSerializeOrphan();
   return adapter;
}

Ptr< StreamAdapter > NboAttrLog::childAttrLogIs( VornType const * type, char const * attrName,
                                                 Entity & parent, Ptr< Out > const & out ) {
   auto * const parentAdapter = out ? out->adapter( parent ) : nullptr;
   if ( !parentAdapter ) return nullptr;
   for ( VornAttr const * attr = type->attributes; attr->name; ++attr ) {
      // The base's rows stand in the table too, but its own lookup decides about them.
      if ( attr->owner != type || !attr->logged() || !attr->instantiating() ) continue;
      if ( std::strcmp( attr->name, attrName ) ) continue;
      void * const object = static_cast< PtrInterface * >( &parent );
      Ptr< StreamAdapter > last;
      Ptr< PtrInterface > child;
      if ( attr->keyed() ) {
         for ( GenericIf::Iterator it( object, *attr ); it; it.advance() ) {
            it.object( &child );
            last = parentAdapter->childNboAttrLogAdapterIs( static_cast< Entity & >( *child ) );
         }
      } else {
         attr->ops->op( &child, object, *attr, GenericIf::read, nullptr, nullptr );
         if ( child ) last = parentAdapter->childNboAttrLogAdapterIs( static_cast< Entity & >( *child ) );
      }
      return last;
   }
   VornType const * const base = type->base;
   return base && base->childAttrLogIs ? base->childAttrLogIs( base, attrName, parent, out ) : nullptr;
}

U32 StreamAdapter::handleAttrFlowOut( U32 ) { return 0; }

Sa::VornNboAttrLogSa( Entity & entity, Out & out, Vorn_BitSet flags, unsigned level,
                      VornNboAttrLogSa * parent )
     : StreamAdapter( Vorn_BitSet( flags.word() & Vorn_BitSet::notificationBitMask() ), level ), out_( &out ),
       parent_( parent ), flowOut_( *entity.fwkType() ) {
   notifierTypeIs( entity.fwkType() );
   watchesAllIs( true );
   streamAdapterIs();
   isRegisteredNotifieeIs( true );
   isWeakReferenceIs( true );
   notifierIs( Ptr< PtrInterface const >( &entity ) );
   entity.referenceInc();
   family().pushFront( *this );
}

Sa::~VornNboAttrLogSa() { entity().referenceDec(); }

Ptr< Sa > Sa::childNboAttrLogAdapterIs( Entity & child ) {
   if ( auto * const present = out_->adapter( child ) ) {
      if ( present->parent_ == this ) return Ptr< Sa >( present );
      present->close(); // it was on the log by itself, and now comes as part of this entity
   }
   auto const made = out_->state().newAdapter( *out_, child, 0, level_ + 1, this );
   doFixChildFlags( *made );
   return made;
}

/// Gives a child's adapter the flags that it takes from its parent's.
void Sa::doFixChildFlags( VornNboAttrLogSa & child ) const {
   U32 const mask = Vorn_BitSet::inheritedFlagsMask() & Vorn_BitSet::notificationBitMask();
   child.status_ = Vorn_BitSet( ( ( status_.word() ^ child.status_.word() ) & mask ) ^ child.status_.word() );
}

void Sa::flagsIs( Vorn_BitSet flags ) {
   U32 const old = status_.word();
   bool const wasSuppressed = status_.any( suppressed );
   status_ = Vorn_BitSet( ( ( flags.word() ^ old ) & Vorn_BitSet::notificationBitMask() ) ^ old );
   for ( auto * child = children_.first(); child; child = Family::next( *child ) ) {
      child->flagsIs( flags );
   }
   reschedule();
   // What changed while it was suppressed is not known. A copy that may not write has nothing to tell.
   if ( wasSuppressed && !status_.any( suppressed ) && entityId() &&
        ( !status_.any( readOnly ) || convertedToWritable() ) )
      doThis();
}

void Sa::reschedule() {
   bool const waits = flowOut_.any();
   status_.bitsIs( flowOutPresent, waits );
   bool const queued = ( waits || status_.any( orphanPending ) ) && maySend();
   U32 const queue = status_.any( awaits ) ? awaitingQueued : pendingQueued;
   queueIs( queued ? queue : 0 );
}

void Sa::queueIs( U32 queue ) {
   U32 const old = status_.word() & ( pendingQueued | awaitingQueued );
   if ( queue == old ) return;
   auto & state = out_->state();
   FlowOut::Waiting * waiting = flowOut_.waiting();
   if ( queue && !waiting ) {
      try {
         waiting = &flowOut_.waitingIs();
      } catch ( std::bad_alloc const & ) {
         state.forgotten = true; // what is marked stays so, and is found when somebody asks for octets
         return;
      }
   }
   if ( old ) ( old == pendingQueued ? state.pending : state.awaiting ).remove( *waiting );
   status_.bitsIs( old, false );
   status_.bitsIs( queue, true );
   waiting->adapter = queue ? this : nullptr;
   if ( queue ) {
      ( queue == pendingQueued ? state.pending : state.awaiting ).pushBack( *waiting );
   } else {
      flowOut_.waitingDel();
   }
}

/// Puts the adapter in front of the others that wait.
void Sa::pendingFirst() {
   if ( !status_.any( pendingQueued ) ) return;
   auto & pending = out_->state().pending;
   pending.remove( *flowOut_.waiting() );
   pending.pushFront( *flowOut_.waiting() );
}

Sa * Sa::following() const noexcept {
   if ( auto * const child = children_.first() ) return child;
   auto const * at = this;
   while ( at && !Family::next( *at ) ) {
      at = at->parent();
   }
   return at ? Family::next( *at ) : nullptr;
}

void Sa::confirmedIs( bool confirmed ) {
   status_.bitsIs( unconfirmed, !confirmed );
   reschedule();
}

void Sa::entityIdIs( U32 id, bool byPeer ) noexcept {
   ( byPeer ? peerId_ : ownId_ ) = id;
   status_.bitsIs( hasEntityId, entityId() );
}

void Sa::close() {
   if ( !notifier() ) return; // closed, or about to be
   Ptr< VornNboAttrLogSa > const hold( this );
   // A member's collection tells that it has gone; of an entity by itself nobody else could.
   if ( !parent_ && ownId_ && !out_->state().closing ) out_->state().withdrawn.push_back( ownId_ );
   family().remove( *this );
   left_ = &entity();
   notifierIs( nullptr );
   while ( auto * const child = children_.first() ) {
      child->close();
   }
   queueIs( 0 );
   freeResyncState( flowOut_ );
   std::exchange( out_, nullptr )->state().adapterDel( *this );
}

/// Those that have the same parent.
Sa::Family & Sa::family() noexcept { return parent_ ? parent_->children_ : out_->state().roots; }

/// Called within the handling of an exception: the host is given the first.
void Sa::onNotificationException() {
   if ( out_ ) out_->exceptionIs();
}

void Sa::vornFwkActivity() {
   // A member that was taken out of its collection is no longer ours to tell of; the collection's adapter
   // tells that it has gone.
   if ( parent_ && entity().parent().ptr() != &parent_->entity() ) close();
}

} // namespace Vorn
