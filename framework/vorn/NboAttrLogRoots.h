/// \file
/// The roots of an incoming log: entities that a host offers for them, and those that have come.
#pragma once

#include "Vorn/HashMap2018.h"
#include "Vorn/Impl/NboAttrLogOut.h"

#include <map>
#include <string>

namespace Vorn::NboAttrLog {

/// Entities that stand ready to be roots, found by type and immutable constructor arguments, whatever the
/// other end makes of those.
class Offers {
 public:
   void entityIs( Ptr< Entity > const & entity );
   /// The first that was offered of those that are made from these arguments, which is then offered no more;
   /// null if there is none.
   Ptr< Entity > take( VornType const & type, void const * const * arguments );

 private:
   using Octets = std::basic_string< U8 >;
   /// What finds an entity: its arguments as the log would carry them.
   template< class Value >
   Octets octets( VornType const & type, Value const & value );

   Ptr< Out > scratch_; // where the arguments are written
   std::multimap< std::pair< VornType const *, Octets >, Ptr< Entity > > entities_;
};

/// The roots that have come, in their order.
class Roots {
 public:
   void entityIs( Ptr< Entity > const & entity );
   bool has( Entity const & entity ) const { return places_[addressOf( entity )]; }
   void entityDel( Entity const & entity );
   std::vector< Ptr< Entity > > const & all();

 private:
   static U64 addressOf( Entity const & entity ) { return reinterpret_cast< std::uintptr_t >( &entity ); }
   void close();

   std::vector< Ptr< Entity > > all_; // null where one has gone since anybody looked
   HashMap2018< Roots, U64, U32 > places_;
};

} // namespace Vorn::NboAttrLog
