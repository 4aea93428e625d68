#include "NboAttrLogReferences.h"

namespace Vorn::NboAttrLog {

namespace {

GenericIf::Value keyOf( VornAttr const & attr, void const * key ) {
   return key ? GenericIf::Value( attr.keyType, key ) : GenericIf::Value( &BuiltinType< U32 >::record );
}

} // namespace

void References::placeDel( Place const & place, Entity const * target ) {
   auto const [first, last] = places_.equal_range( target );
   for ( auto it = first; it != last; ++it ) {
      if ( it->second == place ) {
         places_.erase( it );
         return;
      }
   }
}

void References::referenceIs( Out::Adapter & adapter, VornAttr const & attr, void const * key,
                              Entity const * target ) {
   Place const place{ &adapter, &attr, keyOf( attr, key ) };
   auto & targets = targets_[{ &adapter, &attr }];
   if ( auto const known = targets.find( place.key ); known != targets.end() ) {
      if ( known->second == target ) return;
      placeDel( place, known->second );
      targets.erase( known );
   }
   if ( !target ) return;
   targets.emplace( place.key, target );
   places_.emplace( target, place );
}

void References::targetIs( Entity const & target ) {
   auto const [first, last] = places_.equal_range( &target );
   for ( auto it = first; it != last; ++it ) {
      Place const & place = it->second;
      auto & flowOut = place.adapter->flowOutIs();
      if ( place.attr->keyed() ) {
         flowOut.vornIsXDirtyIs( place.attr->id(), place.key );
      } else {
         flowOut.vornIsDirtyIs( place.attr->id(), true );
      }
   }
}

void References::adapterDel( Out::Adapter & adapter ) {
   auto const begin = targets_.lower_bound( { &adapter, nullptr } );
   auto end = begin;
   for ( ; end != targets_.end() && end->first.first == &adapter; ++end ) {
      for ( auto const & [key, target] : end->second ) {
         placeDel( { &adapter, end->first.second, key }, target );
      }
   }
   targets_.erase( begin, end );
   targetIs( adapter.entity() );
}

} // namespace Vorn::NboAttrLog
