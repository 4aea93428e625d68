#pragma once

// FECs that the next wildcard can be about, by label and by group. A wildcard takes out those that it is
// about, so that each is looked at once, however many wildcards follow each other.

#include "Lumo/MplsLabel.h"

#include <array>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

namespace LdpTool {

template< class Key >
class Waiting {
 public:
   /// The FEC has that label now. The one before it can still be meant.
   void add( Key const & key, Lumo::MplsLabel label, U64 group = 0 ) {
      U32 const now = label.value();
      auto const known = fecs_.find( key );
      U32 const before = known == fecs_.end() ? now : known->second.labels[0];
      drop( key );
      fecs_[key] = { { now, before }, group };
      byGroup_[group].insert( key );
      for ( U32 each : { now, before } )
         byLabel_[{ each, group }].insert( key );
   }

   void drop( Key const & key ) {
      auto const known = fecs_.find( key );
      if ( known == fecs_.end() ) return;
      auto const & [labels, group] = known->second;
      dropFrom( byGroup_, group, key );
      for ( U32 each : labels )
         dropFrom( byLabel_, { each, group }, key );
      fecs_.erase( known );
   }

   /// Those of the label and the group, where they are given, in order; they are here no longer.
   std::vector< Key > take( std::optional< Lumo::MplsLabel > label, std::optional< U64 > group = {} ) {
      U64 const first = group.value_or( 0 );
      U64 const last = group.value_or( std::numeric_limits< U64 >::max() );
      std::set< Key > const found =
           label ? within( byLabel_, { label->value(), first }, { label->value(), last } )
                 : within( byGroup_, first, last );
      for ( Key const & key : found )
         drop( key );
      return { found.begin(), found.end() };
   }

   void clear() { *this = {}; }

 private:
   template< class By >
   using Index = std::map< By, std::set< Key > >;

   template< class By >
   static void dropFrom( Index< By > & index, std::type_identity_t< By > const & by, Key const & key ) {
      auto const at = index.find( by );
      if ( at == index.end() ) return;
      at->second.erase( key );
      if ( at->second.empty() ) index.erase( at );
   }

   template< class By >
   static std::set< Key > within( Index< By > const & index, std::type_identity_t< By > const & first,
                                  std::type_identity_t< By > const & last ) {
      std::set< Key > found;
      for ( auto at = index.lower_bound( first ); at != index.end() && !( last < at->first ); ++at )
         found.insert( at->second.begin(), at->second.end() );
      return found;
   }

   struct Fec {
      std::array< U32, 2 > labels; ///< the present one first
      U64 group;
   };
   std::map< Key, Fec > fecs_;
   Index< U64 > byGroup_;
   Index< std::pair< U32, U64 > > byLabel_;
};

/// The FECs of one kind that one end of a session has in one direction.
template< class Key >
struct FecUse {
   Waiting< Key > withdraw; ///< not withdrawn yet
   Waiting< Key > release;  ///< not released yet
   std::set< Key > present; ///< all
   std::set< Key > stale;   ///< kept of a session that is over, because the peer restarts gracefully

   void add( Key const & key, Lumo::MplsLabel label, U64 group = 0 ) {
      present.insert( key );
      stale.erase( key );
      withdraw.add( key, label, group );
      release.add( key, label, group );
   }
   void drop( Key const & key ) {
      present.erase( key );
      stale.erase( key );
      withdraw.drop( key );
      release.drop( key );
   }
};

} // namespace LdpTool
