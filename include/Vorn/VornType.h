/// \file
/// Type records: the constant self-description of every type, enumerations included.
#pragma once

#include "Vorn/Ptr.h"

namespace Vorn {

/// Description of one attribute or, in an enumeration's record, of one enumerator. A record with a null name
/// ends the array.
struct VornAttr {
   char const * name; ///< the attribute's name
   U64 flags;         ///< kind (bits 63 to 48), access (47 to 40), slot (39 to 32), id (31 to 0)

   /// Attribute id; for an enumerator its numeric value.
   constexpr U32 id() const noexcept { return U32( flags ); }
};

/// The flag word of an enumerator with that value.
constexpr U64 enumeratorFlags( U32 value ) { return 0x508800ff00000000u | value; }

/// Self-description of a type, constant once the library is loaded.
struct VornType {
   char const * name;           ///< full name, namespace included
   VornType const * base;       ///< record of the base type, or null
   VornAttr const * attributes; ///< attributes or enumerators, or null
   U32 size;                    ///< bytes of an instance
   U32 attributeNum;            ///< number of attributes

   /// Whether this type is `ancestor` or derives from it.
   constexpr bool isDerived( VornType const * ancestor ) const noexcept {
      for ( VornType const * type = this; type; type = type->base ) {
         if ( type == ancestor ) return true;
      }
      return false;
   }
};

} // namespace Vorn

/// The record of a counted class without reflected attributes, and its memory tracker; `baseRecord` is the
/// address of the base's record or null. Stands in the source file, inside the class's namespace.
#define VORN_OBJECT_RECORD( Namespace, Type, baseRecord )                                                    \
   ::Vorn::VornType const Type::_vornType{ #Namespace "::" #Type, baseRecord, nullptr, sizeof( Type ), 0 };  \
   ::Vorn::AllocTrackTypeInfo Type::vornAllocTrackTypeInfo_{ &Type::_vornType };
