#include "Vorn/Notifiee.h"

#include "NotifieeVisit.h"
#include "Vorn/VornType.h"

namespace Vorn {

constinit thread_local NotifieeVisit * NotifieeVisit::innermost_ = nullptr;

constinit VornType const PtrInterface::NotifieeConst::_vornType = [] {
   VornType type{};
   type.name = "Vorn::PtrInterface::NotifieeConst";
   type.flags = VornType::plainFlags | VornType::polymorphicFlag;
   return type;
}();

PtrInterface::NotifieeConst::~NotifieeConst() {
   leave();
   if ( held() ) notifier_->referenceDec();
}

void PtrInterface::NotifieeConst::vornReactor() {}

void PtrInterface::NotifieeConst::handleNotification( U32, void const * ) {}

void PtrInterface::NotifieeConst::onNotificationException() {}

void PtrInterface::NotifieeConst::onZeroReferences() {}

void PtrInterface::NotifieeConst::vornFwkActivity() {}

void PtrInterface::NotifieeConst::actsm() {}

void PtrInterface::NotifieeConst::hasNotificationActiveIs( bool active ) { active_ = active; }

void PtrInterface::NotifieeConst::notifierIs( Ptr< PtrInterface const > const & notifier ) {
   if ( notifier.ptr() == notifier_ ) return;
   leave();
   VORN_ASSERT( !notifier || !notifierType_ || notifier->fwkType()->isDerived( notifierType_ ) );
   PtrInterface const * const old = held();
   notifier_ = notifier.ptr();
   if ( held() ) notifier_->referenceInc();
   enter();
   if ( old ) old->referenceDec(); // last: its destructor may call out
}

void PtrInterface::NotifieeConst::isRegisteredNotifieeIs( bool registered ) {
   if ( registered == registered_ ) return;
   registered_ = registered;
   if ( registered ) {
      enter();
   } else {
      leave();
   }
}

void PtrInterface::NotifieeConst::isWeakReferenceIs( bool weak ) {
   if ( weak == weak_ ) return;
   PtrInterface const * const old = held();
   weak_ = weak;
   if ( held() ) notifier_->referenceInc();
   if ( old ) old->referenceDec();
}

void PtrInterface::NotifieeConst::enter() {
   if ( !registered_ || !notifier_ || listed_ ) return;
   NotifieeList * const list = notifier_->notifieeList();
   if ( !list ) return;
   listed_ = true;
   next_ = nullptr;
   if ( list->first_ ) {
      prev_ = list->first_->prev_;
      prev_->next_ = this;
      list->first_->prev_ = this;
   } else {
      prev_ = this;
      list->first_ = this;
   }
}

void PtrInterface::NotifieeConst::leave() noexcept {
   if ( !listed_ ) return;
   NotifieeVisit::leaves( *this );
   NotifieeList & list = *notifier_->notifieeList();
   NotifieeConst * const behind = next_ ? next_ : list.first_;
   if ( list.first_ == this ) {
      list.first_ = next_;
   } else {
      prev_->next_ = next_;
   }
   if ( behind != this ) behind->prev_ = prev_;
   next_ = prev_ = nullptr;
   listed_ = false;
}

void NotifieeList::doVisit( PtrInterface const & notifier, NotifieeChange const & change, void const * key ) {
   NotifieeVisit( notifier, *this ).run( [&]( PtrInterface::NotifieeConst & notifiee ) {
      if ( !notifiee.active_ ) return;
      if ( notifiee.watchesAll_ ) {
         notifiee.handleNotification( change.attributeId, key );
      } else if ( notifiee.notifierType_ && notifiee.notifierType_->isDerived( change.type ) ) {
         change.call( notifiee, key );
      }
   } );
}

void NotifieeList::doVisitZeroReferences( PtrInterface const & notifier ) {
   NotifieeVisit( notifier, *this ).run( []( PtrInterface::NotifieeConst & notifiee ) {
      notifiee.onZeroReferences();
   } );
}

void NotifieeList::doVisitFwkActivity( PtrInterface const & notifier ) {
   NotifieeVisit( notifier, *this ).run( []( PtrInterface::NotifieeConst & notifiee ) {
      if ( notifiee.active_ ) notifiee.vornFwkActivity();
   } );
}

void NotifieeList::deleteAll() noexcept {
   while ( first_ ) {
      auto * const notifiee = first_;
      notifiee->leave();
      PtrInterface const * const old = notifiee->held();
      notifiee->notifier_ = nullptr;
      if ( old ) old->referenceDec();
   }
}

} // namespace Vorn
