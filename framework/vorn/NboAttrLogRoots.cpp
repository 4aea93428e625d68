// Roots of a stream, and those that are offered to the other side.
#include "NboAttrLogRoots.h"

namespace Vorn::NboAttrLog {

// Offers.

template< class Value >
Offers::Octets Offers::octets( VornType const & type, Value const & value ) {
   if ( !scratch_ ) {
      scratch_ = newObject< Out >();
      scratch_->drained( scratch_->bytes() ); // the stream's header
   }
   bool const written = scratch_->record( attributeRecord, 0, 0, [&] {
      for ( VornCtorArg const * arg = type.ctorArgs; arg && arg->name; ++arg ) {
         VornAttr const & attr = *type.attribute( arg->name );
         if ( attr.kind() == VornKind::mutableAttr ) continue;
         value( attr, std::size_t( arg - type.ctorArgs ) );
      }
   } );
   VORN_ASSERT( written );
   Octets const all( scratch_->data(), scratch_->bytes() );
   scratch_->drained( all.size() );
   return all;
}

void Offers::entityIs( Ptr< Entity > const & entity ) {
   VornType const & type = *entity->fwkType();
   auto arguments = octets( type, [&]( VornAttr const & attr, std::size_t ) {
      GenericIf::Value value( attr.type );
      attr.ops->op( value.data(), static_cast< PtrInterface * >( entity.ptr() ), attr, GenericIf::read,
                    nullptr, nullptr );
      attr.type->methods->logOut( *scratch_, value.data() );
   } );
   entities_.emplace( std::pair( &type, std::move( arguments ) ), entity );
}

Ptr< Entity > Offers::take( VornType const & type, void const * const * arguments ) {
   if ( entities_.empty() ) return nullptr;
   auto const wanted = octets( type, [&]( VornAttr const & attr, std::size_t i ) {
      attr.type->methods->logOut( *scratch_, arguments[i] );
   } );
   auto const [first, last] = entities_.equal_range( { &type, wanted } );
   if ( first == last ) return nullptr;
   Ptr< Entity > const entity = first->second;
   entities_.erase( first );
   return entity;
}

// Roots.

void Roots::entityIs( Ptr< Entity > const & entity ) {
   places_.valueIs( addressOf( *entity ), U32( all_.size() ) );
   all_.push_back( entity );
}

void Roots::entityDel( Entity const & entity ) {
   auto const place = places_.del( addressOf( entity ) );
   if ( !place ) return;
   all_[place->value()] = nullptr;
   // All others move only when half of them have gone, or when somebody looks.
   if ( all_.size() > 2 * std::size_t( places_.members() ) + 64 ) close();
}

/// Closes the gaps.
void Roots::close() {
   std::erase( all_, nullptr );
   for ( std::size_t i = 0; i < all_.size(); ++i ) {
      places_.valueIs( addressOf( *all_[i] ), U32( i ) );
   }
}

std::vector< Ptr< Entity > > const & Roots::all() {
   if ( all_.size() != places_.members() ) close();
   return all_;
}

} // namespace Vorn::NboAttrLog
