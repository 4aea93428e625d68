// The life of an adapter: how an entity comes to a log, whose child it is there, whether it waits to send,
// and how it leaves.

#include "NboAttrLogReferences.h"
#include "Vorn/ReflectOps.h"
#include "Vorn/StreamAdapter.h"

namespace Vorn {

VORN_OBJECT_RECORD( Vorn, Entity::VornNboAttrLogSa, nullptr )

using NboAttrLog::Out;
using Sa = Entity::VornNboAttrLogSa;

Ptr< StreamAdapter > Entity::vornNboAttrLogSa( Ptr< Out > const & out ) const {
   return Ptr< StreamAdapter >( out ? out->adapter( *this ) : nullptr );
}

Ptr< StreamAdapter > Entity::vornNboAttrLogSaIs( Vorn_BitSet flags, unsigned level, Ptr< Out > const & out ) {
   if ( !out ) return nullptr;
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
   auto const adapter = out->newAdapter( *this, flags, level, nullptr );
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
     : StreamAdapter( Vorn_BitSet( flags.word() & Vorn_BitSet::notificationBitMask() ), level ),
       holds_( parent ), entity_( &entity ), type_( *entity.fwkType() ), out_( &out ), observer_( *this ),
       parent_( parent ) {
   if ( holds_ ) entity.referenceInc();
   nextChild_ = siblings();
   if ( nextChild_ ) nextChild_->prevChild_ = this;
   siblings() = this;
}

Sa::~VornNboAttrLogSa() {
   observer_.adapterDel();
   if ( holds_ ) entity_->referenceDec();
}

void Sa::hasNotificationActiveIs( bool active ) { observer_.hasNotificationActiveIs( active ); }

Ptr< Sa > Sa::childNboAttrLogAdapterIs( Entity & child ) {
   if ( auto * const present = out_->adapter( child ) ) {
      if ( present->parent_ == this ) return Ptr< Sa >( present );
      present->close(); // it was on the log by itself, and now comes as part of this entity
   }
   auto const made = out_->newAdapter( child, 0, level_ + 1, this );
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
   for ( auto * child = firstChild_; child; child = child->nextChild_ ) {
      child->flagsIs( flags );
   }
   reschedule();
   // What changed while it was suppressed is not known.
   if ( wasSuppressed && !status_.any( suppressed ) && entityId() ) doThis();
}

/// The adapter waits in the log's list if it has something to write and may.
void Sa::reschedule() { pendingIs( ( flowOut_ || orphanPending_ ) && maySend() ); }

void Sa::pendingIs( bool pending ) {
   if ( pending == pending_ ) return;
   pending_ = pending;
   if ( pending ) {
      nextPending_ = nullptr;
      prevPending_ = out_->lastPending_;
      ( prevPending_ ? prevPending_->nextPending_ : out_->firstPending_ ) = this;
      out_->lastPending_ = this;
      return;
   }
   ( prevPending_ ? prevPending_->nextPending_ : out_->firstPending_ ) = nextPending_;
   ( nextPending_ ? nextPending_->prevPending_ : out_->lastPending_ ) = prevPending_;
   nextPending_ = prevPending_ = nullptr;
}

/// Puts the adapter in front of the others that wait.
void Sa::pendingFirst() {
   pendingIs( false );
   pending_ = true;
   nextPending_ = out_->firstPending_;
   ( nextPending_ ? nextPending_->prevPending_ : out_->lastPending_ ) = this;
   out_->firstPending_ = this;
}

/// Whether the member was named in the transaction that is running; until then it does not send.
void Sa::confirmedIs( bool confirmed ) {
   status_.bitsIs( unconfirmed, !confirmed );
   reschedule();
}

/// Takes the entity off the log, with all below it.
void Sa::close() {
   if ( !out_ ) return;
   Ptr< VornNboAttrLogSa > const hold( this );
   observer_.adapterDel();
   while ( firstChild_ ) {
      firstChild_->close();
   }
   // A member's collection tells that it has gone; of an entity by itself nobody else could.
   if ( !parent_ && ownId_ && !out_->closing_ ) out_->withdrawn_.push_back( ownId_ );
   leaveSiblings();
   pendingIs( false );
   if ( flowOut_ ) freeResyncState( *flowOut_ );
   flowOut_.reset();
   auto & queuesSeen = out_->queuesSeen_;
   queuesSeen.erase( queuesSeen.lower_bound( { this, 0 } ), queuesSeen.upper_bound( { this, ~0u } ) );
   std::exchange( out_, nullptr )->adapterDel( *this );
}

/// The first of the adapters that have the same parent.
Sa *& Sa::siblings() noexcept { return parent_ ? parent_->firstChild_ : out_->firstRoot_; }

void Sa::leaveSiblings() {
   ( prevChild_ ? prevChild_->nextChild_ : siblings() ) = nextChild_;
   if ( nextChild_ ) nextChild_->prevChild_ = prevChild_;
   parent_ = nextChild_ = prevChild_ = nullptr;
}

/// Called within the handling of an exception: the host is given the first.
void Sa::onNotificationException() {
   if ( out_ && !out_->exception_ ) out_->exception_ = std::current_exception();
}

void Sa::onFwkActivity() {
   // A member that was taken out of its collection is no longer ours to tell of; the collection's adapter
   // tells that it has gone.
   if ( parent_ && entity_->parent().ptr() != &parent_->entity() ) close();
}

// The observer. Whatever it hands on may take the entity off the log, so the adapter is held meanwhile.

Sa::VornNboAttrLogSaAdapter_::VornNboAttrLogSaAdapter_( VornNboAttrLogSa & adapter ) : adapter_( &adapter ) {
   watchesAllIs( true );
   isRegisteredNotifieeIs( true );
   notifierIs( Ptr< PtrInterface const >( &adapter.entity() ) );
   isWeakReferenceIs( true );
}

void Sa::VornNboAttrLogSaAdapter_::handleNotification( U32 attributeId, void const * key ) {
   if ( Ptr< VornNboAttrLogSa > const adapter{ adapter_ } ) adapter->onAttribute( attributeId, key );
}

void Sa::VornNboAttrLogSaAdapter_::onNotificationException() {
   if ( adapter_ ) adapter_->onNotificationException();
}

void Sa::VornNboAttrLogSaAdapter_::onZeroReferences() {
   if ( Ptr< VornNboAttrLogSa > const adapter{ adapter_ } ) adapter->close();
}

void Sa::VornNboAttrLogSaAdapter_::vornFwkActivity() {
   if ( Ptr< VornNboAttrLogSa > const adapter{ adapter_ } ) adapter->onFwkActivity();
}

void Sa::VornNboAttrLogSaAdapter_::adapterDel() {
   if ( !std::exchange( adapter_, nullptr ) ) return;
   isWeakReferenceIs( false );
   isRegisteredNotifieeIs( false );
   notifierIs( nullptr );
}

} // namespace Vorn
