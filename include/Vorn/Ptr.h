/// \file
/// Counted objects and the pointer that counts them.
///
/// `PtrInterface` is the base of everything that lives by reference count: it holds the table of virtual
/// operations, the reference word and a word of status flags. `Ptr< T >` is the one way to hold such an
/// object. `NrcPtrInterface` is the empty base of views laid over foreign bytes, which nobody counts.
#pragma once

#include "Vorn/Assert.h"
#include "Vorn/BitSet.h"
#include "Vorn/Memory.h"

#include <type_traits>
#include <utility>

namespace Vorn {

class Hold;
class NotifieeList;
struct VornType;

/// Adds one to a reference word of any kind (object, string, bucket), atomically where the process asks for
/// it.
inline void refInc( U32 & word ) noexcept {
   if ( VFPtrInterface::threadSafePointers_ ) [[unlikely]] {
      __atomic_fetch_add( &word, 1u, __ATOMIC_RELAXED );
   } else {
      ++word;
   }
}

/// Subtracts one from a reference word and returns what is left.
inline U32 refDec( U32 & word ) noexcept {
   if ( VFPtrInterface::threadSafePointers_ ) [[unlikely]]
      return __atomic_sub_fetch( &word, 1u, __ATOMIC_ACQ_REL );
   return --word;
}

/// Base of a view laid straight over bytes that somebody else owns. It has no data and no virtual operation,
/// so a derived view is exactly its fields; it lives no longer than the bytes.
class NrcPtrInterface {};

/// Base of every reference-counted object. Objects are made by factories, held by `Ptr`, and destroyed when
/// the last reference goes; they are neither copied nor deleted by hand.
class VORN_API PtrInterface : public VFPtrInterface {
 public:
   class NotifieeConst;

   /// Bits of the reference word that count. Bits 29 and 31 are flags: a word with only those set counts as
   /// zero.
   static constexpr U32 referenceMask = 0x5fffffff;
   /// Set in the reference word while the object is being destroyed. It lies under the mask, so that a
   /// reference taken and dropped on the way down does not destroy the object twice.
   static constexpr U32 beingDestroyed = 0x40000000;
   /// Flag: observers are bound to the object that stand in no list of its own (Notifiee.h).
   static constexpr U32 boundAside = 0x20000000;

   /// Memory for an object, as every factory takes it: `Vorn::vornMemAlloc`.
   static void * vornMemAlloc( std::size_t bytes ) { return ::Vorn::vornMemAlloc( bytes ); }

   PtrInterface() noexcept = default;
   PtrInterface( PtrInterface const & ) = delete;
   PtrInterface & operator=( PtrInterface const & ) = delete;

   /// The observers of this object; null for a type that cannot be observed.
   virtual NotifieeList * notifieeList() const;
   /// Called with true as the last step of an object's creation, by its factory.
   virtual void hasNotificationActiveIs( bool active );
   /// Called with true when the last reference has gone, before the destructor runs.
   virtual void zeroReferencesIs( bool zero );
   /// The record of the object's own type.
   virtual VornType const * fwkType() const = 0;
   /// Asserts that nobody has kept a reference that was taken on the way down.
   virtual ~PtrInterface();

   /// References held, without the flags; no number for an object that is being destroyed. Whoever sees that
   /// only its own is left may write to the object: what other threads did with theirs is past.
   U32 references() const noexcept { return __atomic_load_n( &refs_, __ATOMIC_ACQUIRE ) & referenceMask; }

   /// Takes one reference. `Ptr` does this; nobody else needs to.
   void referenceInc() const noexcept { refInc( refs_ ); }
   /// Drops one reference, the last of which destroys the object.
   void referenceDec() const noexcept {
      if ( ( refDec( refs_ ) & referenceMask ) == 0 ) [[unlikely]]
         handleZeroRef();
   }

   /// Destroys the object, which nobody refers to any more.
   void handleZeroRef() const noexcept;
   /// Whether the object is being destroyed: its last reference has gone. It can still be read and called,
   /// but a reference to it that outlives the callback is an assertion.
   bool vornMarkedForDeletion() const noexcept { return refs_ & beingDestroyed; }
   /// Marks the object as one that is being destroyed, or no longer.
   void vornMarkedForDeletionIs( bool marked ) const noexcept {
      refs_ = marked ? refs_ | beingDestroyed : refs_ & ~beingDestroyed;
   }

 protected:
   mutable U32 refs_ = 0; ///< reference count and its flags
   Vorn_BitSet status_;   ///< status flags, for the framework; see StreamAdapter.h

 private:
   friend class Hold;
   friend class Vorn::NotifieeList;
};

/// Keeps an object until the end of a scope, whoever lets go of it meanwhile. An object to which nobody
/// refers when the scope begins is under construction, or lives by a visit to its observers, and is not
/// destroyed here.
class Hold {
 public:
   /// Keeps that object from now on.
   explicit Hold( PtrInterface const & object ) noexcept
        : object_( object ), counted_( object.references() != 0 ) {
      object.referenceInc();
   }
   Hold( Hold const & ) = delete;
   Hold & operator=( Hold const & ) = delete;
   ~Hold() {
      if ( counted_ ) [[likely]] {
         object_.referenceDec();
      } else {
         refDec( object_.refs_ );
      }
   }

 private:
   PtrInterface const & object_;
   bool const counted_;
};

/// Whether a pointer to `From` converts to one to `To`.
template< class From, class To >
concept PointsTo = requires( From * from, To *& to ) {
   to = from;
};

/// Strong pointer to a counted object, one word. Null when empty. Copying takes a reference, destruction and
/// overwriting drop one. `Ptr< T const >` gives read access only.
template< class T >
class Ptr {
 public:
   /// What it points to.
   using element_type = T;

   constexpr Ptr() noexcept = default;
   /// Null.
   constexpr Ptr( std::nullptr_t ) noexcept {}
   /// To that object, or null.
   Ptr( T * object ) noexcept : object_( object ) { inc(); }
   /// To the object of another pointer.
   Ptr( Ptr const & other ) noexcept : object_( other.object_ ) { inc(); }
   Ptr( Ptr && other ) noexcept : object_( other.release() ) {}
   /// From a pointer to a derived class, or to the same class with write access.
   template< PointsTo< T > U >
   Ptr( Ptr< U > const & other ) noexcept : object_( other.ptr() ) {
      inc();
   }
   template< PointsTo< T > U >
   Ptr( Ptr< U > && other ) noexcept : object_( other.release() ) {}
   ~Ptr() {
      if ( object_ ) object_->referenceDec();
   }

   /// The old object is dropped last, so that its destructor already sees the new value here.
   Ptr & operator=( Ptr other ) noexcept {
      T * const old = object_;
      object_ = other.object_;
      other.object_ = old;
      return *this;
   }

   /// The object, with no reference of the caller's own.
   T * ptr() const noexcept { return object_; }
   T * operator->() const noexcept { return object_; }
   T & operator*() const noexcept { return *object_; }
   /// Whether it points to an object.
   explicit operator bool() const noexcept { return object_ != nullptr; }
   /// Whether it is null.
   bool operator!() const noexcept { return !object_; }

   /// Hands the reference over to the caller and leaves this pointer empty.
   T * release() noexcept {
      T * const object = object_;
      object_ = nullptr;
      return object;
   }

   /// Pointers compare by identity of the object.
   template< class U >
   friend bool operator==( Ptr const & a, Ptr< U > const & b ) noexcept {
      return a.ptr() == b.ptr();
   }
   friend bool operator==( Ptr const & a, std::nullptr_t ) noexcept { return !a.object_; }

 private:
   void inc() const noexcept {
      if ( object_ ) object_->referenceInc();
   }

   T * object_ = nullptr;
};

/// A new object of type `T` with notification active, as every factory returns it.
template< class T, class... Args >
Ptr< T > newObject( Args &&... args ) {
   Ptr< T > object( new T( std::forward< Args >( args )... ) );
   object->hasNotificationActiveIs( true );
   return object;
}

} // namespace Vorn

/// Stands first in every concrete counted class: its type record, and memory that is tracked per type.
/// The record itself is defined by VORN_OBJECT_RECORD in the class's source file.
#define VORN_OBJECT( Type )                                                                                  \
 public:                                                                                                     \
   static ::Vorn::VornType const _vornType;                                                                  \
   ::Vorn::VornType const * fwkType() const override { return &_vornType; }                                  \
   static void * operator new( std::size_t size ) {                                                          \
      void * block = ::Vorn::vornMemAlloc( size );                                                           \
      vornAllocTrackTypeInfo_.trackAllocation( size );                                                       \
      return block;                                                                                          \
   }                                                                                                         \
   static void operator delete( void * block, std::size_t size ) noexcept {                                  \
      vornAllocTrackTypeInfo_.trackDeallocation( size );                                                     \
      ::Vorn::vornMemFree( block, size );                                                                    \
   }                                                                                                         \
   /** Live objects of this very type. */                                                                    \
   static ::Vorn::AllocTrackTypeInfo const & allocTrack() { return vornAllocTrackTypeInfo_; }                \
                                                                                                             \
 private:                                                                                                    \
   static ::Vorn::AllocTrackTypeInfo vornAllocTrackTypeInfo_;
