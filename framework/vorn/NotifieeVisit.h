/// \file
/// A visit to the observers of one object while it is under way. Visits nest, also over the same list, and
/// everything may change beneath them.
///
/// The object that is visited and the observer that is being called stay alive although nobody counts them:
/// where the last reference to one of them goes, the visit destroys it when it is done with it. So a call
/// costs no counting, and it is the rare destruction that has to look for visits.
#pragma once

#include "Vorn/Notifiee.h"

namespace Vorn {

class NotifieeVisit {
 public:
   NotifieeVisit( PtrInterface const & notifier, NotifieeList const & list ) noexcept
        : notifier_( &notifier ), next_( list.first_ ), last_( next_ ? next_->prev_ : nullptr ),
          outer_( innermost_ ) {
      innermost_ = this;
   }
   ~NotifieeVisit() {
      innermost_ = outer_;
      if ( notifierDropped_ ) [[unlikely]]
         letGo( *notifier_ );
   }
   NotifieeVisit( NotifieeVisit const & ) = delete;
   NotifieeVisit & operator=( NotifieeVisit const & ) = delete;

   /// Calls `call( notifiee )` for each observer that was bound when the visit began and still is.
   template< class Call >
   void run( Call const & call ) {
      while ( auto * const notifiee = next_ ) {
         next_ = notifiee == last_ ? nullptr : notifiee->next_;
         called_ = notifiee;
         try {
            call( *notifiee );
         } catch ( ... ) {
            handleException( *notifiee );
         }
         called_ = nullptr;
         if ( notifieeDropped_ ) [[unlikely]] {
            notifieeDropped_ = false;
            letGo( *notifiee );
         }
      }
   }

   /// `notifiee` is about to leave its list.
   static void leaves( PtrInterface::NotifieeConst const & notifiee ) noexcept {
      for ( auto * visit = innermost_; visit; visit = visit->outer_ ) {
         if ( visit->next_ == &notifiee ) {
            visit->next_ = visit->last_ == &notifiee ? nullptr : notifiee.next_;
         } else if ( visit->last_ == &notifiee ) {
            visit->last_ = notifiee.prev_;
         }
      }
   }

   /// Whether a visit needs that object, which has lost its last reference, and will see to it.
   static bool keeps( PtrInterface const & object ) noexcept {
      for ( auto * visit = innermost_; visit; visit = visit->outer_ ) {
         if ( visit->notifier_ == &object ) return visit->notifierDropped_ = true;
         if ( visit->called_ == &object ) return visit->notifieeDropped_ = true;
      }
      return false;
   }

 private:
   static void handleException( PtrInterface::NotifieeConst & notifiee ) noexcept;
   // Somebody may have taken a new reference since, and an outer visit may need the object too.
   static void letGo( PtrInterface const & object ) noexcept {
      if ( object.references() == 0 ) object.handleZeroRef();
   }

   // Fixed at load time, as it is read for each visit and each destruction.
   [[gnu::tls_model( "initial-exec" )]] static constinit thread_local NotifieeVisit * innermost_;

   PtrInterface const * notifier_;
   PtrInterface::NotifieeConst * next_;                   // to be called; null behind the last
   PtrInterface::NotifieeConst * last_;                   // those that are bound meanwhile stand behind it
   PtrInterface::NotifieeConst const * called_ = nullptr; // at this moment
   bool notifierDropped_ = false;
   bool notifieeDropped_ = false;
   NotifieeVisit * outer_;
};

} // namespace Vorn
