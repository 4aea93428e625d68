// Observers: their binding, and visits to them.
#include "Vorn/Notifiee.h"

#include "NotifieeVisit.h"
#include "Vorn/Trace.h"
#include "Vorn/VornType.h"

#include <mutex>
#include <string>
#include <unordered_map>

namespace Vorn {

constinit thread_local NotifieeVisit * NotifieeVisit::innermost_ = nullptr;

constinit VornType const PtrInterface::NotifieeConst::_vornType = [] {
   VornType type{};
   type.name = "Vorn::PtrInterface::NotifieeConst";
   type.flags = VornType::plainFlags | VornType::polymorphicFlag;
   return type;
}();

namespace {

// The lists aside of objects, each while somebody stands in it: a visit passes over nobody who is not to be
// called, and objects without a list pay nothing. Never destroyed: objects may outlive it.
auto & listsAside() {
   static auto & all = *new std::unordered_map< PtrInterface const *, NotifieeList >;
   return all;
}

// Held while somebody enters or leaves a list aside: objects of all threads have theirs there.
std::unique_lock< std::mutex > lockAside() {
   static auto & mutex = *new std::mutex;
   return VFPtrInterface::threadSafePointers_ ? std::unique_lock( mutex ) : std::unique_lock< std::mutex >();
}

// A flag of a reference word, which other threads may count in.
void flagIs( U32 & word, U32 flag, bool set ) noexcept {
   if ( VFPtrInterface::threadSafePointers_ ) [[unlikely]] {
      set ? __atomic_fetch_or( &word, flag, __ATOMIC_RELAXED )
          : __atomic_fetch_and( &word, ~flag, __ATOMIC_RELAXED );
   } else {
      word = set ? word | flag : word & ~flag;
   }
}

// Says what is being handled: a mistake of the host's, which nobody would see otherwise, so all is on unless
// somebody has switched it off.
void traceException( PtrInterface::NotifieeConst const & notifiee, char const * callback ) noexcept {
   static TraceHandle const facility( "Notifiee", true );
   alignas( TraceHelper ) std::byte room[sizeof( TraceHelper )];
   TraceHelper * const helper = TraceHelper::createIfEnabled( facility, 5, room );
   if ( !helper ) return;
   EnsureTraceHelperIsDestroyed const ensure( helper );
   try {
      std::string text = std::string( "exception from " ) + callback + " of an observer";
      if ( VornType const * const type = notifiee.notifierType() ) text += std::string( " of " ) + type->name;
      try {
         throw;
      } catch ( std::exception const & exception ) {
         text += std::string( ": " ) + exception.what();
      } catch ( ... ) {
         text += ": of no known type";
      }
      helper->textIs( std::move( text ) );
      helper->trace( "Notifiee", __LINE__, "run" );
   } catch ( ... ) { // a line that cannot be written is dropped
   }
}

} // namespace

void NotifieeVisit::handleException( PtrInterface::NotifieeConst & notifiee ) noexcept {
   traceException( notifiee, "a callback" );
   try {
      notifiee.onNotificationException();
   } catch ( ... ) {
      traceException( notifiee, "onNotificationException" );
   }
}

PtrInterface::NotifieeConst::~NotifieeConst() {
   if ( notifier_ ) notifierIs( nullptr );
}

void PtrInterface::NotifieeConst::zeroReferencesIs( bool zero ) {
   // What a derived class holds may be the last to hold the notifier, which must not call it any more then.
   if ( zero ) notifierIs( nullptr );
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
   VORN_ASSERT( !notifier || !notifierType_ || notifier->fwkType()->isDerived( notifierType_ ) );
   leave();
   Ptr< PtrInterface const > const old( held() ); // goes last: its destructor may call out
   if ( old ) old->referenceDec();
   notifier_ = notifier.ptr();
   if ( held() ) notifier_->referenceInc();
   enter();
}

void PtrInterface::NotifieeConst::isRegisteredNotifieeIs( bool registered ) {
   if ( registered == registered_ ) return;
   leave();
   registered_ = registered;
   enter();
}

void PtrInterface::NotifieeConst::isWeakReferenceIs( bool weak ) {
   if ( weak == weak_ ) return;
   PtrInterface const * const old = held();
   weak_ = weak;
   if ( held() ) notifier_->referenceInc();
   if ( old ) old->referenceDec();
}

void PtrInterface::NotifieeConst::enter() {
   if ( !notifier_ ) return;
   if ( NotifieeList * const own = registered_ ? notifier_->notifieeList() : nullptr ) return enter( *own );
   try {
      auto const lock = lockAside();
      enter( NotifieeList::of( *notifier_ ) );
   } catch ( ... ) { // no memory for a list aside
      PtrInterface const * const lost = held();
      notifier_ = nullptr;
      if ( lost ) lost->referenceDec();
      throw;
   }
}

void PtrInterface::NotifieeConst::enter( NotifieeList & list ) noexcept {
   next_ = nullptr;
   if ( list.first_ ) {
      prev_ = list.first_->prev_;
      prev_->next_ = this;
      list.first_->prev_ = this;
   } else {
      prev_ = this;
      list.first_ = this;
   }
}

void PtrInterface::NotifieeConst::leave() noexcept {
   if ( !notifier_ ) return;
   NotifieeVisit::leaves( *this );
   NotifieeList * const own = registered_ ? notifier_->notifieeList() : nullptr;
   auto const lock = own ? std::unique_lock< std::mutex >() : lockAside();
   NotifieeList & list = own ? *own : NotifieeList::of( *notifier_ );
   NotifieeConst * const behind = next_ ? next_ : list.first_;
   if ( list.first_ == this ) {
      list.first_ = next_;
   } else {
      prev_->next_ = next_;
   }
   if ( behind != this ) behind->prev_ = prev_;
   next_ = prev_ = nullptr;
   if ( own || !list.empty() ) return;
   listsAside().erase( notifier_ );
   flagIs( notifier_->refs_, boundAside, false );
}

NotifieeList & NotifieeList::of( PtrInterface const & object ) {
   NotifieeList & list = listsAside()[&object];
   flagIs( object.refs_, PtrInterface::boundAside, true );
   return list;
}

void NotifieeList::asideDel( PtrInterface const & object ) noexcept {
   auto const first = [&object] {
      auto const lock = lockAside();
      auto const found = listsAside().find( &object );
      return found == listsAside().end() ? nullptr : found->second.first_;
   };
   while ( auto * const notifiee = first() )
      notifiee->notifierIs( nullptr ); // the last one takes the list with it
}

void NotifieeList::doVisit( PtrInterface const & notifier, NotifieeChange const & change, void const * key ) {
   NotifieeVisit( notifier, *this ).run( [&]( PtrInterface::NotifieeConst & notifiee ) {
      // Who is for a base hears of what the base has.
      if ( !notifiee.active_ || !notifiee.notifierType_ || !notifiee.notifierType_->isDerived( change.type ) )
         return;
      if ( notifiee.watchesAll_ ) {
         notifiee.handleNotification( change.attributeId, key );
      } else {
         change.call( notifiee, key );
      }
   } );
}

void NotifieeList::doVisitBy( void const * fn,
                              void ( *call )( void const *, PtrInterface::NotifieeConst &, void const * ),
                              void const * key ) {
   if ( !first_ ) return;
   NotifieeVisit( *first_->notifier_, *this ).run( [&]( PtrInterface::NotifieeConst & notifiee ) {
      if ( notifiee.active_ ) call( fn, notifiee, key );
   } );
}

void NotifieeList::doVisitZeroReferences( PtrInterface const & notifier ) {
   NotifieeVisit( notifier, *this ).run( []( PtrInterface::NotifieeConst & notifiee ) {
      if ( notifiee.registered_ ) notifiee.onZeroReferences(); // not everyone aside is
   } );
}

void NotifieeList::doVisitFwkActivity( PtrInterface const & notifier ) {
   NotifieeVisit( notifier, *this ).run( []( PtrInterface::NotifieeConst & notifiee ) {
      if ( notifiee.active_ ) notifiee.vornFwkActivity();
   } );
}

void NotifieeList::deleteAll() noexcept {
   if ( !first_ ) return;
   Hold const hold( *first_->notifier_ ); // the last binding may be all that keeps it
   while ( first_ ) {
      first_->notifierIs( nullptr );
   }
}

} // namespace Vorn
