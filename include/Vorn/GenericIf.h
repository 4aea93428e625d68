/// \file
/// Reflection: everything that a caller can do with a type that it knows by its record alone. It lists
/// attributes (VornType.h), makes objects, reads and writes attributes, walks collections and observes
/// changes.
///
///     GenericIf::Value hold( attr.type );
///     GenericIf::attributeOp( type, hold.data(), object, attr, GenericIf::read, nullptr, nullptr );
///     cout << hold.stringValue();
///
/// An object is passed by its address. Values are passed by pointers to them; as a result or an argument an
/// entity or counted object is a `Ptr< PtrInterface >`, a view over a packet an `NrcPtrInterface const *`.
#pragma once

#include "Vorn/Impl/KeySet.h"
#include "Vorn/NboAttrLogValues.h"
#include "Vorn/VornType.h"

#include <cstddef>
#include <new>

namespace Vorn {

/// What can be done with values of a type. `type` is the record of the value's type.
struct GenericIfMethods {
   /// Destroys the value.
   void ( *genericIfDestruct )( void * value );
   /// Makes a copy of `*from` at `value`, or a default value for a null `from`.
   void ( *genericIfConstruct )( void * value, void const * from );
   /// Throws where the type has no hash.
   U32 ( *genericIfHash )( void const * value, VornType const * type );
   /// The text of the value.
   String ( *genericIfStrRep )( void const * value, VornType const * type );
   /// Reads a whole text; throws RangeException and leaves the value as it was.
   void ( *genericIfStrepToValue )( void * value, String const & text, VornType const * type );
   /// The address of a value of `fromType` as one of `toType`, a base of it; throws where it is none.
   void const * ( *genericIfVoidPtrIs )( void const * value, VornType const * fromType,
                                         VornType const * toType );
   /// The strict reader: moves `it` behind what it has read.
   void ( *sequenceTo )( String::IteratorConst & it, String::IteratorConst const & end, void * value,
                         VornType const * type );
   /// Whether the two values are equal.
   bool ( *equal )( void const * a, void const * b );
   /// Makes `*to` equal to `*from`.
   void ( *assign )( void * to, void const * from );
   /// The value's form in the attribute log; null for a type that has none.
   void ( *logOut )( NboAttrLog::Out & out, void const * value );
   /// Reads the value from that form.
   void ( *logIn )( NboAttrLog::In & in, void * value );
};

namespace GenericIf {

/// The numeric argument of `genericIfAttributeOp`. Those from `place` on are the framework's own.
enum AttributeOp : U32 {
   read = 0,    ///< a scalar, or the member at the key, into the result
   write = 1,   ///< by the mutator: a scalar from `args[ 0 ]`; a value collection's member at the key from
                ///< `args[ 0 ]`; entities from their constructor arguments `args`
   del = 2,     ///< removes the child, or the member at the key; the result may be null
   members = 3, ///< number of members, a U32
   modificationCount = 4, ///< of the container, a U32
   has = 5,               ///< whether the key is present, a bool
   place = 6,             ///< writes a field of a value whatever its kind, from `args[ 0 ]`
   markAll = 7,           ///< marks every member of a value collection for deletion
   clearMark = 8,         ///< takes the mark of the key's member away
   indices = 9,           ///< of a queue: its head and its next index, two U32
   indicesIs = 10,        ///< of a queue: sets the next, of an empty one both, from `args[ 0 ]`
   delAll = 11,           ///< deletes each member of a collection of entities
   carried = 12,          ///< a reference as the attribute log carries it, into the result
   crowded = 13,   ///< whether the key is absent and has no room among `args[ 0 ]`, a U32, more keys of
                   ///< its hash, a bool
   newKeySet = 14, ///< an empty set of the collection's keys, a `std::unique_ptr< KeySet >`
   ownKey = 15,    ///< of references that hold their key: whether the key is that of `args[ 0 ]`, a bool
   toLog = 16,   ///< an entity's scalar as the attribute log carries it, into the `NboAttrLog::Out` that the
                 ///< result points to
   fromLog = 17, ///< by the mutator: an entity's scalar from the rest of a record, of which the result points
                 ///< to the `NboAttrLog::In`
};

/// What an operation came to.
enum Outcome : U32 {
   done = 0,
   notApplicable = 1, ///< the attribute is of a kind that has no such operation
   notOfType = 2,     ///< the type has no such attribute: ask its base
};

/// What an iterator can do, one constant for each kind of collection.
struct IteratorVTable {
   void ( *iterObj )( VornAttr const & attr, void * it, void * out ); ///< the member into `out`
   void ( *iterKey )( VornAttr const & attr, void * it, void * out ); ///< its key into `out`
   bool ( *iterNonnull )( VornAttr const & attr, void * it );         ///< whether it is not at the end
   /// To the next member.
   void ( *iterInc )( VornAttr const & attr, void * it );
   void ( *iterDel )( VornAttr const & attr, void * it );    ///< destroys the iterator and frees it
   bool ( *iterMarked )( VornAttr const & attr, void * it ); ///< whether the member is marked for deletion
};

/// An iterator over a collection attribute; at the end at once for an attribute that is none.
class VORN_API Iterator {
 public:
   /// At the first member, or at the one with that key or what would follow it.
   Iterator( void * object, VornAttr const & attr, void const * key = nullptr );
   Iterator( Iterator const & ) = delete;
   Iterator & operator=( Iterator const & ) = delete;
   ~Iterator();

   /// Whether it stands on a member.
   explicit operator bool() const { return it_ && vtable_->iterNonnull( attr_, it_ ); }
   /// To the next member.
   void advance() { vtable_->iterInc( attr_, it_ ); }
   /// Copies the member to `*out`.
   void object( void * out ) const { vtable_->iterObj( attr_, it_, out ); }
   /// Copies the member's key to `*out`.
   void key( void * out ) const { vtable_->iterKey( attr_, it_, out ); }
   /// Whether the member is marked for deletion.
   bool markedForDeletion() const { return vtable_->iterMarked( attr_, it_ ); }

 private:
   VornAttr const & attr_;
   IteratorVTable const * vtable_ = nullptr;
   void * it_;
};

/// Room for one value of a type that is known by its record. Small values take no memory of their own.
class VORN_API Value {
 public:
   /// A default value, or a copy of `*from`. The type has methods.
   explicit Value( VornType const * type, void const * from = nullptr );
   Value( Value const & other ) : Value( other.type_, other.data_ ) {}
   Value & operator=( Value const & ) = delete;
   ~Value();

   /// The record of the value's type.
   VornType const * type() const noexcept { return type_; }
   /// Where the value stands.
   void * data() noexcept { return data_; }
   void const * data() const noexcept { return data_; }
   /// The value as text.
   String stringValue() const { return type_->methods->genericIfStrRep( data_, type_ ); }
   /// Reads the value from its text; throws RangeException for any other.
   void stringValueIs( String const & text ) { type_->methods->genericIfStrepToValue( data_, text, type_ ); }
   friend bool operator==( Value const & a, Value const & b ) {
      return a.type_ == b.type_ && a.type_->methods->equal( a.data_, b.data_ );
   }

 private:
   VornType const * type_;
   void * data_;
   alignas( std::max_align_t ) std::byte room_[128];
};

/// Base of a generic observer: told the id, and for a keyed attribute the key, of every change of what it is
/// bound to by the type's `genericIfNotifiee`.
class VORN_API NotifieeConst {
 public:
   virtual ~NotifieeConst();
   /// The attribute of that id has changed; the second form also says for which key.
   virtual void onRawAttribute( U32 attributeId ) = 0;
   virtual void onRawAttribute( U32 attributeId, void const * key, bool keyed ) = 0;
};

/// `genericIfAttributeOp` of the type that has the attribute: of `type`, else of one of its bases.
VORN_API U32 attributeOp( VornType const & type, void * result, void * object, VornAttr const & attr, U32 op,
                          void const * key, void const * const * args );

/// An attribute of an object, read as text; empty where it cannot be read.
VORN_API String attributeText( void const * object, VornType const & type, VornAttr const & attr );

} // namespace GenericIf

namespace GenericIfImpl {

/// Throws, for a type that lacks what was asked of it.
[[noreturn]] VORN_API void throwTypeException( VornType const * type );
[[noreturn]] VORN_API void throwUnhashableException( VornType const * type );
[[noreturn]] VORN_API void throwSetFalseValueException( VornAttr const & attr );

/// `genericIfAttributeOp` of every type: hands the operation to the attribute if the type itself has it.
VORN_API U32 attributeOp( VornType const & type, void * result, void * object, VornAttr const & attr, U32 op,
                          void const * key, void const * const * args );
/// `genericIfIterator` of every type.
VORN_API void * iterator( VornType const & type, void * object, VornAttr const & attr,
                          GenericIf::IteratorVTable const ** vtable );
/// `genericIfVoidPtrIs` of every type.
VORN_API void const * voidPtrIs( void const * value, VornType const * fromType, VornType const * toType );

/// Which attributes of a value its text shows.
using Shown = bool ( VornAttr::* )() const noexcept;
/// The composite text of a value by its record, and the strict reader of it: what is shown in its order.
VORN_API String recordToStrep( void const * value, VornType const & type, Shown shown );
VORN_API void recordFromSequence( String::IteratorConst & it, String::IteratorConst const & end, void * value,
                                  VornType const & type, Shown shown );

} // namespace GenericIfImpl

/// How one attribute is reached in an object. Made by the templates of AttributeOps.h.
struct VornAttrOps {
   /// See `GenericIf::AttributeOp` and `Outcome`.
   U32( *op )
   ( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
     void const * const * args );
   /// A new iterator from the first member, or from where `key` is or would be; null for no collection.
   void * ( *iterator )( void * object, void const * key, GenericIf::IteratorVTable const ** vtable );
};

} // namespace Vorn
