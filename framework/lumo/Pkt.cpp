#include "Lumo/Pkt.h"

#include "Vorn/VornType.h"

namespace Lumo {

VORN_OBJECT_RECORD( Lumo, Pkt, nullptr )

Pkt::Pkt( void const * data, std::size_t bytes )
     : owned_( static_cast< U8 const * >( data ), static_cast< U8 const * >( data ) + bytes ),
       front_( owned_.data() ), frontBytes_( bytes ) {}

Pkt::~Pkt() = default;

Vorn::Ptr< Pkt > Pkt::borrow( void const * data, std::size_t bytes ) {
   return Vorn::Ptr< Pkt >( new Pkt( Borrowed(), static_cast< U8 const * >( data ), bytes ) );
}

Vorn::Ptr< Pkt > pktFactory( void const * data, std::size_t bytes ) {
   return Vorn::newObject< Pkt >( data, bytes );
}

} // namespace Lumo
