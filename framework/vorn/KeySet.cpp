// Sets of keys that wait.
#include "Vorn/Impl/KeySet.h"

#include <algorithm>

namespace Vorn {

KeySet::~KeySet() = default;

IndexSet::~IndexSet() = default;

bool IndexSet::next( void * index, U32 oldest ) {
   // Indices that come meanwhile wait for the next round: most are younger than all that are here.
   while ( !order_.empty() || indices_.members() ) {
      if ( order_.empty() ) {
         order_.reserve( indices_.members() );
         for ( auto const & node : indices_ ) {
            order_.push_back( node.key() );
         }
         std::sort( order_.begin(), order_.end(),
                    [&]( U32 a, U32 b ) { return U32( a - oldest ) > U32( b - oldest ); } );
      }
      if ( indices_.has( order_.back() ) ) {
         *static_cast< U32 * >( index ) = order_.back();
         return true;
      }
      order_.pop_back();
   }
   return false;
}

} // namespace Vorn
