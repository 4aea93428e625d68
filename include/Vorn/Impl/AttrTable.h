/// \file
/// The ids of a type's attributes, and the table of them that its record points to.
#pragma once

#include "Vorn/VornType.h"

#include <array>

namespace Vorn {

/// Carries an attribute id in a type, so that each attribute is an overload of its own.
template< U32 id >
struct AttrId {};

/// How many ids there are for a type's own attributes: as far as those of a type derived from it, or those of
/// `Entity` behind those of a value.
constexpr U32 attrIdWindow( U32 first ) { return first == 0x2 ? 0x7e : 0x80; }
/// Whether an id is one of those of a type whose first one is `first`.
constexpr bool isAttrIdOf( U32 id, U32 first ) { return id - first < attrIdWindow( first ); }

/// Where the ids of a type's own attributes begin: a value's at 2; an entity's or counted object's at 0x102,
/// and 0x80 further for each type between it and `Entity` or `PtrInterface`.
template< class T >
consteval U32 firstAttrId() {
   if constexpr ( requires { T::vornFirstId; } ) {
      return T::vornFirstId;
   } else if constexpr ( std::is_base_of_v< PtrInterface, T > || std::is_base_of_v< NrcPtrInterface, T > ) {
      if constexpr ( std::is_void_v< typename T::VornBase > ) {
         return 0x102;
      } else {
         return firstAttrId< typename T::VornBase >() + 0x80;
      }
   } else {
      return 0x2;
   }
}

/// Collects the attributes of a type into its table, the base's rows first. They are the overloads of its
/// attribute lines, each of which stands behind that of the id before. A class that is written by hand has
/// rows instead, which get their ids by position.
template< class T >
struct AttrTable {
   static constexpr U32 first = firstAttrId< T >();
   static constexpr U32 window = attrIdWindow( first );

   template< U32 id >
   static constexpr bool has = requires {
      { T::vornAttr( AttrId< id >{} ) } -> std::same_as< VornAttr >;
   };

   static constexpr bool hasRows = requires { &T::vornRows; };

   static constexpr U32 count() {
      U32 found = 0;
      if constexpr ( hasRows ) {
         for ( VornAttr const & row : T::vornRows ) {
            found += bool( row.name );
         }
         return found;
      }
      [&]< U32... i >( std::integer_sequence< U32, i... > ) {
         ( ( has< first + i > && found == i ? ++found : found ), ... );
      }
      ( std::make_integer_sequence< U32, window >{} );
      return found;
   }
   static constexpr U32 own = count();

   static constexpr U32 baseNum() {
      if constexpr ( requires { typename T::VornBase; } ) {
         return AttrTable< typename T::VornBase >::num;
      } else {
         return 0;
      }
   }
   static constexpr U32 num = baseNum() + own;

   static constexpr std::array< VornAttr, num + 1 > collect() {
      std::array< VornAttr, num + 1 > rows{};
      if constexpr ( baseNum() != 0 ) {
         for ( U32 i = 0; i < baseNum(); ++i ) {
            rows[i] = AttrTable< typename T::VornBase >::table[i];
         }
      }
      if constexpr ( hasRows ) {
         for ( U32 i = 0; i < own; ++i ) {
            VornAttr & attr = rows[baseNum() + i] = T::vornRows[i];
            attr.owner = &T::_vornType;
            attr.flags |= first + i;
         }
      } else if constexpr ( own != 0 ) {
         [&]< U32... i >( std::integer_sequence< U32, i... > ) {
            ( ( rows[baseNum() + i] = T::vornAttr( AttrId< first + i >{} ) ), ... );
         }
         ( std::make_integer_sequence< U32, own >{} );
      }
      return rows;
   }
   static constexpr std::array< VornAttr, num + 1 > table = collect();
   static constexpr VornAttr const * attributes = num ? table.data() : nullptr;

   /// Whether the constructor takes a name in front of all else.
   static constexpr bool isNamed() {
      if constexpr ( requires { T::vornNamed; } ) {
         return T::vornNamed;
      } else {
         return false;
      }
   }
   static constexpr bool named = isNamed();

   static constexpr U32 ctorNum() {
      U32 n = named;
      for ( VornAttr const & attr : table ) {
         n += attr.name && attr.isCtorArg();
      }
      return n;
   }
   static constexpr std::array< VornCtorArg, ctorNum() + 1 > collectCtorArgs() {
      std::array< VornCtorArg, ctorNum() + 1 > args{};
      U32 n = 0;
      if ( named ) args[n++] = { "name", &BuiltinType< Name >::record };
      for ( VornAttr const & attr : table ) {
         if ( attr.name && attr.isCtorArg() ) args[n++] = { attr.name, attr.type };
      }
      return args;
   }
   static constexpr std::array< VornCtorArg, ctorNum() + 1 > ctorTable = collectCtorArgs();
   static constexpr VornCtorArg const * ctorArgs = ctorTable.data();
};

} // namespace Vorn
