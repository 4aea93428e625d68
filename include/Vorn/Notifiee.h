/// \file
/// Observers. An observer derives from `T::NotifieeConst` of the type that it watches, overrides the
/// callbacks it wants, and is bound to an object. Callbacks run within the mutator's call, after the store,
/// in the order of binding.
///
/// An observer may do anything from within a callback: write again, bind and unbind others, itself included,
/// delete entities and drop the last reference to the object that it watches. Each observer that was bound
/// when the visit began and still is gets its call; one that was bound meanwhile does not get it, one that
/// was unbound is not called any more. An exception from a callback is traced (facility `Notifiee`, level 5,
/// on from the start) and goes to that observer's `onNotificationException()`, and the visit goes on,
/// whatever that throws.
///
/// A binding ends at the latest with its object, whatever state the observer is in: `notifier()` is null
/// then. While an object is being destroyed its children still go one by one, and its observers are told.
/// What they watch says then that it is `vornMarkedForDeletion()`. It can be read and written as ever; a
/// reference to it that somebody keeps is an assertion in its destructor. What it still owns in the end has
/// no parent.
#pragma once

#include "Vorn/Ptr.h"

namespace Vorn {

class NotifieeList;
class NotifieeVisit;
struct NotifieeChange;

/// Stands where a change is told, for attributes that tell nobody: see the local kinds of Attributes.h.
struct Silence {};

/// Base of all observers. It is counted like any object, and whoever made it holds it; a bound observer that
/// dies is unbound.
class VORN_API PtrInterface::NotifieeConst : public PtrInterface {
 public:
   static VornType const _vornType;

   VornType const * fwkType() const override { return &_vornType; }
   /// Unbinds an observer that nobody holds any more, while it is still whole.
   void zeroReferencesIs( bool zero ) override;
   ~NotifieeConst() override;

   /// Lets the observer do what it has put off; does nothing by default, and nothing here calls it.
   virtual void vornReactor();
   /// Called for a change where the observer watches all attributes alike (`watchesAllIs`); `key` is null for
   /// an attribute without a key.
   virtual void handleNotification( U32 attributeId, void const * key );
   /// Called within the handling of an exception that left a callback; the exception can be rethrown and
   /// caught here. What leaves this is traced and goes no further.
   virtual void onNotificationException();
   /// Called when the last reference to the watched object has gone, before it is destroyed.
   virtual void onZeroReferences();
   /// Called when the watched entity has got another parent, or none.
   virtual void vornFwkActivity();
   /// Steps the state machine that the observer is part of; for agents, does nothing by default.
   virtual void actsm();

   /// The object that is watched, or null.
   PtrInterface const * notifier() const noexcept { return notifier_; }

   /// Binds the observer to an object, which must be of the type that the observer is for or derive from it,
   /// else this asserts; null unbinds. The observer comes behind those that are bound already. Without memory
   /// for its place, which one that is registered has in the object itself, it stays unbound
   /// (std::bad_alloc).
   void notifierIs( Ptr< PtrInterface const > const & notifier );
   /// Whether the observer is told of anything. One that is registered again comes behind all others.
   void isRegisteredNotifieeIs( bool registered );
   /// Whether the binding leaves the object's life alone; a strong binding, the default, keeps the object
   /// alive.
   void isWeakReferenceIs( bool weak );
   /// Callbacks of changes come only to an observer that is active: the factory's last step, so that none
   /// comes to an observer under construction. `onZeroReferences` comes to all that are registered.
   void hasNotificationActiveIs( bool active ) override;

   /// Whether it has been registered.
   bool isRegisteredNotifiee() const noexcept { return registered_; }
   /// Whether the binding leaves the object's life alone.
   bool isWeakReference() const noexcept { return weak_; }
   /// Whether callbacks of changes come to it.
   bool hasNotificationActive() const noexcept { return active_; }
   /// Whether it ties its notifier to an attribute log.
   bool isStreamAdapter() const noexcept { return streamAdapter_; }
   /// The type of the objects that the observer is for.
   VornType const * notifierType() const noexcept { return notifierType_; }

 protected:
   NotifieeConst() noexcept = default;
   /// Called by the constructor of each class of observers; the most derived one stays.
   void notifierTypeIs( VornType const * type ) noexcept { notifierType_ = type; }
   /// Whether `handleNotification` is told of every change in the place of the callbacks.
   void watchesAllIs( bool all ) noexcept { watchesAll_ = all; }
   /// Says that the observer is a `StreamAdapter`, which the attribute log looks for among the others.
   void streamAdapterIs() noexcept { streamAdapter_ = true; }

 private:
   friend class Vorn::NotifieeList;
   friend class Vorn::NotifieeVisit;

   /// The notifier, if one reference on it is ours.
   PtrInterface const * held() const noexcept { return weak_ ? nullptr : notifier_; }
   void enter();
   void enter( NotifieeList & list ) noexcept;
   void leave() noexcept;

   VornType const * notifierType_ = nullptr;
   PtrInterface const * notifier_ = nullptr;
   // Neighbours in the notifier's list; one that is not registered stands in a list aside of it.
   NotifieeConst * next_ = nullptr; // the last points to null
   NotifieeConst * prev_ = nullptr; // the first points to the last
   bool registered_ : 1 = false;
   bool weak_ : 1 = false;
   bool active_ : 1 = false;
   bool watchesAll_ : 1 = false;
   bool streamAdapter_ : 1 = false;
};

/// One attribute as notification sees it: constant, one for each attribute.
struct NotifieeChange {
   /// Id of the attribute.
   U32 attributeId;
   VornType const * type; ///< the type that declares the attribute
   /// Makes the one virtual call of the attribute.
   void ( *call )( PtrInterface::NotifieeConst & notifiee, void const * key );
};

/// The observers of one object, in order of binding. One word, zero while nobody observes. Who is not
/// registered, or bound to an object whose type has no list, stands in another one aside.
class VORN_API NotifieeList {
 public:
   NotifieeList() noexcept = default;
   NotifieeList( NotifieeList const & ) = delete;
   NotifieeList & operator=( NotifieeList const & ) = delete;
   ~NotifieeList() { deleteAll(); }

   /// Whether nobody observes.
   bool empty() const noexcept { return !first_; }

   /// Tells the observers of `notifier`, whose list this is, of a change that is stored already.
   void tell( PtrInterface const & notifier, NotifieeChange const & change, void const * key ) {
      if ( first_ ) doVisit( notifier, change, key );
   }
   /// An attribute outside notification.
   void tell( PtrInterface const &, Silence, void const * ) noexcept {}
   /// Calls every observer of the change; `notifier`, whose list this is, is kept alive until all are called.
   void doVisit( PtrInterface const & notifier, NotifieeChange const & change, void const * key = nullptr );
   /// The same for whoever has no record of the change: `fn( notifiee )` or `fn( notifiee, key )` makes the
   /// one virtual call. It sees to it that the notifiee is of the type that it calls.
   template< class Fn >
   requires std::is_invocable_v< Fn const &, PtrInterface::NotifieeConst & >
   void doVisit( Fn fn ) {
      doVisitBy( &fn, []( void const * with, PtrInterface::NotifieeConst & notifiee, void const * ) {
         ( *static_cast< Fn const * >( with ) )( notifiee );
      } );
   }
   template< class Fn >
   requires std::is_invocable_v< Fn const &, PtrInterface::NotifieeConst &, void const * >
   void doVisit( Fn fn, void const * key ) {
      doVisitBy(
           &fn,
           []( void const * with, PtrInterface::NotifieeConst & notifiee, void const * changedKey ) {
              ( *static_cast< Fn const * >( with ) )( notifiee, changedKey );
           },
           key );
   }
   /// Tells every observer that the object's last reference has gone.
   void doVisitZeroReferences( PtrInterface const & notifier );
   /// Tells every observer that the object has another parent; `notifier` is kept alive.
   void doVisitFwkActivity( PtrInterface const & notifier );
   /// Unbinds all observers.
   void deleteAll() noexcept;
   /// The first observer for which `is( observer )` holds, or null.
   template< class Is >
   PtrInterface::NotifieeConst * find( Is const & is ) const {
      PtrInterface::NotifieeConst * notifiee = first_;
      while ( notifiee && !is( *notifiee ) ) {
         notifiee = notifiee->next_;
      }
      return notifiee;
   }

 private:
   friend class PtrInterface;
   friend class PtrInterface::NotifieeConst;
   friend class NotifieeVisit;

   /// The list aside of an object, of those who are bound to it and not in its own.
   static NotifieeList & of( PtrInterface const & object );
   /// Unbinds those in the list aside.
   static void asideDel( PtrInterface const & object ) noexcept;
   void doVisitBy( void const * fn,
                   void ( *call )( void const * fn, PtrInterface::NotifieeConst &, void const * key ),
                   void const * key = nullptr );

   PtrInterface::NotifieeConst * first_ = nullptr;
};
static_assert( sizeof( NotifieeList ) == sizeof( void * ) );

} // namespace Vorn
