// References whose targets are not known yet.
#include "NboAttrLogReferences.h"

namespace Vorn::NboAttrLog {

namespace {

GenericIf::Value keyOf( VornAttr const & attr, void const * key ) {
   return key ? GenericIf::Value( attr.keyType, key ) : GenericIf::Value( &BuiltinType< U32 >::record );
}

} // namespace

std::size_t References::PlaceHash::operator()( PlaceId const & id ) const {
   std::size_t const place =
        std::hash< void const * >()( id.adapter ) ^ std::hash< void const * >()( id.attr );
   U32 const key = id.key.type()->methods->genericIfHash( id.key.data(), id.key.type() );
   return ( place ^ key ) * 0x9e3779b97f4a7c15u;
}

void References::placeDel( Place & place ) {
   auto const target = targets_.find( place.target );
   target->second.remove( place );
   if ( !target->second.first() ) targets_.erase( target );
   auto const adapter = adapters_.find( place.id->adapter );
   adapter->second.remove( place );
   if ( !adapter->second.first() ) adapters_.erase( adapter );
   places_.erase( places_.find( *place.id ) );
}

void References::referenceIs( Adapter & adapter, VornAttr const & attr, void const * key,
                              Entity const * target ) {
   if ( !target && places_.empty() ) return;
   PlaceId id{ &adapter, &attr, keyOf( attr, key ) };
   auto const known = places_.find( id );
   if ( known != places_.end() ) {
      if ( known->second.target == target ) return;
      placeDel( known->second );
   }
   if ( !target ) return;
   // All memory is taken before anything is linked.
   auto & ofTarget = targets_[target];
   auto & ofAdapter = adapters_[&adapter];
   auto & [placeId, place] = *places_.try_emplace( std::move( id ) ).first;
   place.id = &placeId;
   place.target = target;
   ofTarget.pushBack( place );
   ofAdapter.pushBack( place );
}

void References::targetIs( Entity const & target ) {
   if ( targets_.empty() ) return;
   auto const found = targets_.find( &target );
   if ( found == targets_.end() ) return;
   for ( Place * place = found->second.first(); place; place = TargetPlaces::next( *place ) ) {
      PlaceId const & id = *place->id;
      id.adapter->referenceDirtyIs( *id.attr, id.attr->keyed() ? id.key.data() : nullptr );
   }
}

void References::adapterDel( Adapter & adapter ) {
   if ( places_.empty() ) return;
   for ( auto found = adapters_.find( &adapter ); found != adapters_.end();
         found = adapters_.find( &adapter ) ) {
      placeDel( *found->second.first() );
   }
   targetIs( adapter.entity() );
}

} // namespace Vorn::NboAttrLog
