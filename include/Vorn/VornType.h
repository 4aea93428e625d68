/// \file
/// Type records: the constant self-description of every type, enumerations included, and the process-wide
/// table of them. A caller that knows nothing of a type at compile time lists, reads, writes, observes and
/// replicates through these records (GenericIf.h, NboAttrLog.h).
#pragma once

#include "Vorn/Ptr.h"
#include "Vorn/String.h"

#include <vector>

namespace Vorn {

class Entity;
class StreamAdapter;
struct VornAttr;
struct VornAttrOps;
struct GenericIfMethods;
namespace NboAttrLog {
class In;
class Out;
} // namespace NboAttrLog
namespace GenericIf {
class NotifieeConst;
struct IteratorVTable;
} // namespace GenericIf

/// One constructor argument: its name and its type. A pair of nulls ends a table.
struct VornCtorArg {
   /// The argument's name.
   char const * name;
   /// Record of the argument's type.
   VornType const * type;
};

/// Kinds of attribute, the top 16 bits of a flag word.
enum class VornKind : U16 {
   mutableAttr = 0xb800,  ///< stored, notified
   constructor = 0x5800,  ///< constructor argument or key, immutable
   state = 0x3800,        ///< read-write in the object, outside notification; a local scalar
   derived = 0x3000,      ///< computed on each read
   derivedLight = 0x1000, ///< a read-only operation
   constant = 0x5008,
   derivedConstant = 0x1008,
   enumerator = 0x5088,
   function = 0x1010,
   child = 0xb920,           ///< owned single child
   entityColl = 0xb921,      ///< owned keyed collection of entities
   reference = 0xb820,       ///< single reference
   referenceColl = 0xb821,   ///< keyed collection of references
   valueColl = 0xb801,       ///< keyed collection of values, or a set
   queue = 0xb803,           ///< indexed queue
   localValueColl = 0x3801,  ///< neither notified nor logged
   localEntityColl = 0x3921, ///< neither notified nor logged
};

/// Whether the attribute log carries an attribute.
enum VornReplication : bool { local = false, replicated = true };

/// Set in the access bits of a mutable attribute that is a constructor argument as well.
inline constexpr U64 ctorArgAccess = 0x40ull << 40;
/// Set in the access bits of a value's attribute that can be written but is no field: a view of the fields.
inline constexpr U64 viewAccess = 0x20ull << 40;

/// Set in the access bits of the constructor argument that is an entity's key.
inline constexpr U64 keyAccess = 0x10ull << 40;

/// Set in the access bits of a set of keys, which is reflected as a collection of `bool`.
inline constexpr U64 setAccess = 0x20ull << 40;

/// Set in the access bits of state that reflection may write.
inline constexpr U64 writeAccess = 0x02ull << 40;

/// The flag word of an attribute: kind (bits 63 to 48), access (47 to 40), slot (39 to 32), id (31 to 0).
constexpr U64 attrFlags( VornKind kind, U32 id, VornReplication logged, bool keyed ) {
   return U64( kind ) << 48 | ( kind == VornKind::state ? writeAccess : 0 ) | U64( logged ) << 40 |
          U64( keyed ? 0x00 : 0xff ) << 32 | id;
}

/// Description of one attribute or, in an enumeration's record, of one enumerator. A record with a null name
/// ends the array.
struct VornAttr {
   char const * name;        ///< the attribute's name
   VornType const * owner;   ///< the type that declares it
   VornType const * type;    ///< its type; of a collection, the members'
   VornType const * keyType; ///< of a collection, the key's; else null
   char const * memberKey;   ///< of a collection of entities, the name of the members' key attribute
   VornCtorArg const * memberCtorArgs; ///< of a collection of entities, the members' constructor arguments
   U64 flags;                          ///< see `attrFlags`
   VornAttrOps const * ops;            ///< how it is reached in an object; null for a function

   /// Attribute id; for an enumerator its numeric value.
   constexpr U32 id() const noexcept { return U32( flags ); }
   /// Kind of the attribute.
   constexpr VornKind kind() const noexcept { return VornKind( flags >> 48 ); }
   /// Whether the attribute log carries it.
   constexpr bool logged() const noexcept { return flags >> 40 & 1; }
   /// Whether the constructor takes it.
   constexpr bool isCtorArg() const noexcept {
      return kind() == VornKind::constructor || ( flags & ctorArgAccess );
   }
   /// Whether it is the constructor argument by which its entity is known in a collection.
   constexpr bool isKey() const noexcept { return flags & keyAccess; }
   /// Whether it is one of the fields that make up a value.
   constexpr bool isField() const noexcept {
      return kind() == VornKind::constructor || ( kind() == VornKind::state && !( flags & viewAccess ) );
   }
   /// Whether it can be written but is no field: a flag of a word.
   constexpr bool isView() const noexcept { return kind() == VornKind::state && ( flags & viewAccess ); }
   /// Whether it is a set of keys without values.
   constexpr bool isSet() const noexcept { return flags & setAccess; }
   /// Whether it is a collection, a set or a queue.
   constexpr bool keyed() const noexcept { return ( flags >> 32 & 0xff ) == 0; }
   /// Of a collection of entities, which of the members' constructor arguments is their key.
   VORN_API U32 memberKeyIndex() const noexcept;
   /// Whether it makes and owns entities.
   constexpr bool instantiating() const noexcept {
      return kind() == VornKind::child || kind() == VornKind::entityColl ||
             kind() == VornKind::localEntityColl;
   }
};

/// Self-description of a type, constant once the library is loaded.
struct VornType {
   char const * name;            ///< full name, namespace included
   VornType const * base;        ///< record of the base type, or null
   VornAttr const * attributes;  ///< the base's attributes, then its own; null for a type without any
   VornCtorArg const * ctorArgs; ///< constructor arguments in order, or null
   void const * reserved;        ///< null
   /// Makes an instance from the attribute log, whose next values are the constructor arguments; null for a
   /// type that the log does not carry. The others say where the instance is going to be tied.
   Ptr< PtrInterface > ( *newEntityForAttrLog )( Ptr< NboAttrLog::In > const & in, Vorn_BitSet flags,
                                                 unsigned level, Ptr< NboAttrLog::Out > const & out );
   /// Makes the log's adapter of a logged child by the name of its attribute; null where no child is logged.
   Ptr< StreamAdapter > ( *childAttrLogIs )( VornType const * type, char const * attrName, Entity & parent,
                                             Ptr< NboAttrLog::Out > const & out );
   GenericIfMethods const * methods; ///< operations on values of the type
   /// Makes an object from pointers to its constructor arguments and stores the pointer in `*result`.
   void ( *genericIfConstructFromCtorArgs )( Ptr< PtrInterface > * result, void const * const * args );
   /// See GenericIf.h.
   U32( *genericIfAttributeOp )
   ( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
     void const * const * args );
   /// See GenericIf.h.
   void * ( *genericIfIterator )( void * object, VornAttr const & attr,
                                  GenericIf::IteratorVTable const ** vtable );
   /// See GenericIf.h.
   Ptr< PtrInterface > ( *genericIfNotifiee )( GenericIf::NotifieeConst & observer );
   U32 sizeAndFlags; ///< bytes of an instance; in the top four bits 8 for entities and values, 1 for overlays
   U32 attributeNum; ///< number of attributes
   U32 flags;        ///< 0xffff, and bit 25 if instances have a table of virtual operations
   U32 instantiatingNum; ///< number of attributes that make and own entities

   /// Bits of `flags` and of `sizeAndFlags`.
   static constexpr U32 plainFlags = 0x0000ffff;
   static constexpr U32 polymorphicFlag = 0x02000000;
   static constexpr U32 objectSizeFlag = 0x80000000;
   static constexpr U32 overlaySizeFlag = 0x10000000;

   /// Bytes of an instance.
   constexpr U32 size() const noexcept { return sizeAndFlags & 0x0fffffff; }
   /// Whether instances are views over foreign bytes.
   constexpr bool isOverlay() const noexcept { return sizeAndFlags & overlaySizeFlag; }
   /// Whether instances have a table of virtual operations.
   constexpr bool isPolymorphic() const noexcept { return flags & polymorphicFlag; }
   /// Whether the type is an enumeration.
   constexpr bool isEnum() const noexcept {
      return attributes && attributes->name && attributes->kind() == VornKind::enumerator;
   }

   /// Whether this type is `ancestor` or derives from it.
   constexpr bool isDerived( VornType const * ancestor ) const noexcept {
      for ( VornType const * type = this; type; type = type->base ) {
         if ( type == ancestor ) return true;
      }
      return false;
   }

   /// The attribute of that name or id, or null.
   VORN_API VornAttr const * attribute( char const * attrName ) const noexcept;
   VORN_API VornAttr const * attribute( U32 id ) const noexcept;
};

/// Home of the records of built-in types, and of value types whose class has no room for one
/// (VORN_OUTSIDE_VALUE).
template< class T >
struct BuiltinType;
/// The record of a type: of a class its `_vornType`, of an enumeration its own, else that of `BuiltinType`.
template< class T >
constexpr VornType const * recordOf() {
   if constexpr ( requires { &T::_vornType; } ) {
      return &T::_vornType;
   } else if constexpr ( std::is_enum_v< T > ) {
      return vornTypeOf( T{} );
   } else {
      return &BuiltinType< T >::record;
   }
}

/// A type that has a record.
template< class T >
concept Recorded = requires {
   &T::_vornType;
}
|| requires { vornTypeOf( T{} ); }
|| requires { &BuiltinType< T >::record; };

namespace GenericIfImpl {

/// Methods of counted objects, which are passed as `Ptr< PtrInterface >` whatever class `T` they are of.
template< class T >
struct GenericIfPtrInterfaceMethods;
template<>
struct VORN_API GenericIfPtrInterfaceMethods< PtrInterface > {
   static GenericIfMethods const vtable_;
}; /// \cond Doxygen takes this for a recursion.
template< class T >
struct GenericIfPtrInterfaceMethods : GenericIfPtrInterfaceMethods< PtrInterface > {}; /// \endcond
/// Methods of views over foreign bytes, which are passed as `NrcPtrInterface const *`.
VORN_API extern GenericIfMethods const viewMethods;

} // namespace GenericIfImpl

/// The record of a counted class without reflected attributes.
constexpr VornType objectRecord( char const * name, VornType const * base, std::size_t size ) {
   VornType type{};
   type.name = name;
   type.base = base;
   type.methods = &GenericIfImpl::GenericIfPtrInterfaceMethods< PtrInterface >::vtable_;
   type.sizeAndFlags = VornType::objectSizeFlag | U32( size );
   type.flags = VornType::plainFlags | VornType::polymorphicFlag;
   return type;
}

/// Enters a record into the process-wide table, as each module's initialiser does while the library is
/// loaded.
VORN_API void typeNodeIs( VornType const * type );
/// All registered records, in order of name.
VORN_API std::vector< VornType const * > typeNodes();
/// The registered record of that name, or null.
VORN_API VornType const * typeNode( char const * name ) noexcept;

/// Registers a type when the library is loaded; each record has one.
struct TypeRegistration {
   /// Registers that type.
   explicit TypeRegistration( VornType const * type ) { typeNodeIs( type ); }
};

} // namespace Vorn

/// Declares the record of a value type whose class stays as it is. Stands behind the class, outside all
/// namespaces. The built-in types are the first.
#define VORN_OUTSIDE_VALUE( Type )                                                                           \
   template<>                                                                                                \
   struct VORN_API Vorn::BuiltinType< Type > {                                                               \
      static ::Vorn::VornType const record;                                                                  \
   };

VORN_OUTSIDE_VALUE( bool )
VORN_OUTSIDE_VALUE( U8 )
VORN_OUTSIDE_VALUE( U16 )
VORN_OUTSIDE_VALUE( U32 )
VORN_OUTSIDE_VALUE( U64 )
VORN_OUTSIDE_VALUE( double )
VORN_OUTSIDE_VALUE( Vorn::String )
VORN_OUTSIDE_VALUE( Vorn::Name )
VORN_OUTSIDE_VALUE( void )

/// Stands first in a view over a packet or a value that is written by hand: it has a record, whose attributes
/// a source file lists (AttributeRows.h). `Base` is the reflected class that it derives from, or void.
#define VORN_REFLECTED( Type, Base )                                                                         \
 public:                                                                                                     \
   static ::Vorn::VornType const _vornType;                                                                  \
   VORN_REFLECTED_( Type, Base )
/// The same for a counted class.
#define VORN_REFLECTED_OBJECT( Type, Base )                                                                  \
   VORN_OBJECT( Type )                                                                                       \
   VORN_REFLECTED_( Type, Base )
#define VORN_REFLECTED_( Type, Base )                                                                        \
 public:                                                                                                     \
   using Self = Type;                                                                                        \
   using VornBase = Base;                                                                                    \
   /** Its attributes, see Vorn/AttributeRows.h. */                                                          \
   static ::Vorn::VornAttr const vornRows[];                                                                 \
                                                                                                             \
 private:

/// Registers the type of a record when the library is loaded.
#define VORN_REGISTER_( record ) VORN_REGISTER_AT_( __LINE__, record )
#define VORN_REGISTER_AT_( line, record ) VORN_REGISTER_AS_( line, record )
#define VORN_REGISTER_AS_( line, record )                                                                    \
   namespace {                                                                                               \
   [[gnu::used]] ::Vorn::TypeRegistration const vornRegistration##line##_{ record };                         \
   }

/// The record of a counted class without reflected attributes, and its memory tracker; it registers the type.
/// `baseRecord` is the address of the base's record or null. Stands in the source file, in the class's
/// namespace.
#define VORN_OBJECT_RECORD( Namespace, Type, baseRecord )                                                    \
   VORN_UNLISTED_RECORD( Namespace, Type, baseRecord )                                                       \
   VORN_REGISTER_( &Type::_vornType )
/// The same for a class that the table of types leaves out, since it is no part of anyone's state.
#define VORN_UNLISTED_RECORD( Namespace, Type, baseRecord )                                                  \
   constinit ::Vorn::VornType const Type::_vornType =                                                        \
        ::Vorn::objectRecord( #Namespace "::" #Type, baseRecord, sizeof( Type ) );                           \
   ::Vorn::AllocTrackTypeInfo Type::vornAllocTrackTypeInfo_{ &Type::_vornType };
