#include "Vorn/Notifiee.h"

#include "Vorn/VornType.h"

namespace Vorn {

namespace {

U64 lastBinding = 0;

} // namespace

/// One visit under way. Visits nest, and an observer that leaves its list moves every visit on that would
/// have come to it next.
class NotifieeVisit {
 public:
   explicit NotifieeVisit( NotifieeList const & list ) noexcept
        : next_( list.first_ ), limit_( lastBinding ), outer_( innermost_ ) {
      innermost_ = this;
   }
   ~NotifieeVisit() { innermost_ = outer_; }
   NotifieeVisit( NotifieeVisit const & ) = delete;
   NotifieeVisit & operator=( NotifieeVisit const & ) = delete;

   /// The next observer that was there when the visit began; null behind the last.
   PtrInterface::NotifieeConst * take() noexcept {
      auto * notifiee = next_;
      if ( !notifiee || notifiee->boundAt_ > limit_ ) return nullptr;
      next_ = notifiee->next_;
      return notifiee;
   }

   /// Makes one call. The observer is kept alive across it, if anybody holds it at all.
   template< class Call >
   static void guarded( PtrInterface::NotifieeConst & notifiee, Call const & call ) {
      Ptr< PtrInterface::NotifieeConst > const hold( notifiee.references() ? &notifiee : nullptr );
      try {
         call();
      } catch ( ... ) {
         notifiee.onNotificationException();
      }
   }

   /// `notifiee` leaves its list.
   static void leaves( PtrInterface::NotifieeConst const & notifiee ) noexcept {
      for ( auto * visit = innermost_; visit; visit = visit->outer_ ) {
         if ( visit->next_ == &notifiee ) visit->next_ = notifiee.next_;
      }
   }

 private:
   static thread_local NotifieeVisit * innermost_;

   PtrInterface::NotifieeConst * next_;
   U64 limit_;
   NotifieeVisit * outer_;
};

thread_local NotifieeVisit * NotifieeVisit::innermost_ = nullptr;

constinit VornType const PtrInterface::NotifieeConst::_vornType = [] {
   VornType type{};
   type.name = "Vorn::PtrInterface::NotifieeConst";
   type.flags = VornType::plainFlags | VornType::polymorphicFlag;
   return type;
}();

PtrInterface::NotifieeConst::~NotifieeConst() { leave(); }

void PtrInterface::NotifieeConst::handleNotification( U32, void const * ) {}

void PtrInterface::NotifieeConst::onNotificationException() {}

void PtrInterface::NotifieeConst::onZeroReferences() {}

void PtrInterface::NotifieeConst::vornFwkActivity() {}

void PtrInterface::NotifieeConst::hasNotificationActiveIs( bool active ) { active_ = active; }

void PtrInterface::NotifieeConst::notifierIs( Ptr< PtrInterface const > const & notifier ) {
   if ( notifier.ptr() == notifier_ ) return;
   leave();
   VORN_ASSERT( !notifier || !notifierType_ || notifier->fwkType()->isDerived( notifierType_ ) );
   notifier_ = notifier.ptr();
   // The old object goes last: its destructor may call out.
   Ptr< PtrInterface const > const old = std::exchange( strong_, weak_ ? nullptr : notifier );
   enter();
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
   weak_ = weak;
   Ptr< PtrInterface const > const old = std::exchange( strong_, weak ? nullptr : notifier_ );
}

void PtrInterface::NotifieeConst::enter() {
   if ( !registered_ || !notifier_ || listed_ ) return;
   NotifieeList * const list = notifier_->notifieeList();
   if ( !list ) return;
   listed_ = true;
   boundAt_ = ++lastBinding;
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
   // An object that is on its way down, or that nobody holds yet, is kept by whoever is destroying or making
   // it.
   Ptr< PtrInterface const > const hold( notifier.references() ? &notifier : nullptr );
   NotifieeVisit visit( *this );
   while ( auto * notifiee = visit.take() ) {
      if ( !notifiee->active_ ) continue;
      NotifieeVisit::guarded( *notifiee, [&] {
         if ( notifiee->watchesAll_ ) {
            notifiee->handleNotification( change.attributeId, key );
         } else if ( notifiee->notifierType_ && notifiee->notifierType_->isDerived( change.type ) ) {
            change.call( *notifiee, key );
         }
      } );
   }
}

void NotifieeList::doVisitZeroReferences() {
   NotifieeVisit visit( *this );
   while ( auto * notifiee = visit.take() ) {
      NotifieeVisit::guarded( *notifiee, [&] { notifiee->onZeroReferences(); } );
   }
}

void NotifieeList::doVisitFwkActivity( PtrInterface const & notifier ) {
   Ptr< PtrInterface const > const hold( notifier.references() ? &notifier : nullptr );
   NotifieeVisit visit( *this );
   while ( auto * notifiee = visit.take() ) {
      if ( !notifiee->active_ ) continue;
      NotifieeVisit::guarded( *notifiee, [&] { notifiee->vornFwkActivity(); } );
   }
}

void NotifieeList::deleteAll() noexcept {
   while ( first_ ) {
      auto * const notifiee = first_;
      notifiee->leave();
      notifiee->notifier_ = nullptr;
   }
}

} // namespace Vorn
