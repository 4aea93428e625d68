/// \file
/// Entities: named, parented, observable objects. Every type of the model derives from `Entity` and is
/// written with the attribute lines of Attributes.h.
#pragma once

#include "Vorn/BitSet.h"
#include "Vorn/Notifiee.h"
#include "Vorn/VornType.h"

namespace Vorn {

/// Base of all entities.
///
/// A parent owns its children through single-child attributes and collections and is their `parent()`; nobody
/// else sets it. An entity that has left its parent, in whatever way, has a null parent and stays as it is
/// for as long as anyone holds it.
class VORN_API Entity : public PtrInterface {
 public:
   static VornType const _vornType;

   /// Whether the attribute log can carry entities of a type although nothing of them is logged so far. A
   /// type says so in a line of its own.
   static constexpr bool vornOnLog = false;

   /// Where the ids of the attributes of types directly below begin.
   static constexpr U32 vornChildFirstId = 0x102;
   /// Attribute ids of the base's own attributes.
   static constexpr U32 nameId = 0x82;
   static constexpr U32 parentId = 0x8a;
   static constexpr U32 parentAttrNameId = 0x8b;
   static constexpr U32 fullNameId = 0x8d;
   static constexpr U32 entityId = 0x8f;

   /// Base of the observers of entities.
   class VORN_API NotifieeConst : public PtrInterface::NotifieeConst {
    public:
      NotifieeConst() { notifierTypeIs( &Entity::_vornType ); }
   };
   /// Base of the observers that also write to what they watch.
   class Notifiee : public NotifieeConst {};
   /// Ties an entity of whatever type to an attribute log; see StreamAdapter.h.
   class VornNboAttrLogSa;

   Entity() noexcept = default;
   ~Entity() override;

   /// Takes the entity down while it is whole: tells its observers, deletes its children with notification,
   /// unbinds the observers, and lets go of what was made meanwhile. Who overrides it calls this.
   void zeroReferencesIs( bool zero ) override;
   /// The record of the object's own type.
   VornType const * fwkType() const override { return &_vornType; }

   /// Gives the entity its name behind its construction, as whoever restores it from a copy does.
   virtual void nameIsFromBackup( Name const & name );
   /// The name that the entity was constructed with; empty for an entity that has a key in its place.
   virtual Name name() const { return {}; }
   /// Called when the parent has changed.
   virtual void handleParent();
   /// Whether the attribute log can carry the entity.
   virtual bool vornHasAttrLogInterface() const { return false; }
   /// Attaches the entity to an attribute log; see NboAttrLog.h. If it is on the log already, the flags are
   /// merged. Null for a null log.
   virtual Ptr< StreamAdapter > vornNboAttrLogSaIs( Vorn_BitSet flags, unsigned level,
                                                    Ptr< NboAttrLog::Out > const & out );
   /// The entity's adapter on a log, or null.
   Ptr< StreamAdapter > vornNboAttrLogSa( Ptr< NboAttrLog::Out > const & out ) const;
   /// For a host that restores entities from a backup of its own; nothing here does, or calls this and the
   /// next three.
   virtual void reconstruct();
   virtual bool hasBackupSupport() const { return false; }
   virtual void saveConstructParams();
   virtual void entBackupDel();

   /// The owner, or null.
   Ptr< Entity > parent() const noexcept { return Ptr< Entity >( parent_ ); }
   /// For the owning attributes of a parent.
   void parentIs( Ptr< Entity > const & parent ) { vornParentIs( parent.ptr() ); }
   /// The same for a parent that is under construction, to which there is no reference yet.
   void vornParentIs( Entity * parent );
   /// The entity has left the attribute that owned it. All that own entities call this as they let go of one.
   void vornLeft() {
      if ( parent_ ) vornParentIs( nullptr );
   }
   /// Name or key of the entity as text.
   String nameText() const;
   /// Path of the entity through its parents, derived on each call; for messages.
   Name fullName() const;
   /// The parent's attribute that owns the entity; empty without a parent.
   String parentAttrName() const;
   /// What the mutators of a type call that lacks VORN_OBSERVERS, so that its record gives the one error.
   template< class Change >
   void notify( Change const &, void const * = nullptr ) const {}
   /// The child below this entity whose name or key has that text, or null.
   Ptr< Entity > entity( String const & childName ) const;

 protected:
   /// For the attribute lines.
   static void vornClosed( ... ); // no type is whose lines are not closed by VORN_OBSERVERS

 private:
   Entity * parent_ = nullptr; // not counted: the parent owns this entity
};

/// The field of an owned single child, one word.
template< class Type >
class Child {
 public:
   Child() noexcept = default;
   Child( Child const & ) = delete;
   Child & operator=( Child const & ) = delete;
   ~Child() { replace( nullptr ); }

   /// The child, or null.
   Ptr< Type > const & get() const noexcept { return child_; }
   /// The child's members.
   Type * operator->() const noexcept { return child_.ptr(); }
   /// Whether there is a child.
   explicit operator bool() const noexcept { return bool( child_ ); }
   /// Whether there is none.
   bool operator!() const noexcept { return !child_; }

   /// Puts another child, or none, in the place of the present one, which leaves and is returned.
   Ptr< Type > replace( Ptr< Type > child ) {
      Ptr< Type > old( static_cast< Ptr< Type > && >( child_ ) );
      child_ = static_cast< Ptr< Type > && >( child );
      if ( old ) old->vornLeft();
      return old;
   }

 private:
   Ptr< Type > child_;
};

/// A type whose entities can be observed: it, or a base of it, has the line VORN_OBSERVERS.
template< class Type >
concept Observable = requires {
   typename Type::VornObserved;
};

} // namespace Vorn
