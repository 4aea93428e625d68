// Who looks into the table of types: apart from who enters one, which every record does.
#include "TypeTable.h"

#include <cstring>

/// A symbol of each object that registers types (cmake/all_types.sh).
extern "C" char const * const ldpAllTypes[];

namespace Vorn {

namespace {

// In a program that takes the library out of an archive this brings all types with it.
[[gnu::used]] char const * const * const allTypes = ldpAllTypes;

} // namespace

std::vector< VornType const * > typeNodes() { return typeTable(); }

VornType const * typeNode( char const * name ) noexcept {
   for ( VornType const * type : typeTable() ) {
      if ( !std::strcmp( type->name, name ) ) return type;
   }
   return nullptr;
}

} // namespace Vorn
