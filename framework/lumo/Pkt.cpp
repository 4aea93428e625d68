// Packets that own or borrow their octets.
#include "Lumo/Pkt.h"

#include "Vorn/VornType.h"

namespace Lumo {

VORN_OBJECT_RECORD( Lumo, Pkt, nullptr )

namespace {

/// The front of a packet without octets, such as an empty datagram makes: a place, though nothing is there.
constexpr U8 noOctets = 0;

} // namespace

Pkt::Pkt( void const * data, std::size_t bytes )
     : owned_( static_cast< U8 const * >( data ), static_cast< U8 const * >( data ) + bytes ),
       front_( bytes ? owned_.data() : &noOctets ), frontBytes_( bytes ) {}

Pkt::~Pkt() = default;

Vorn::Ptr< Pkt > Pkt::borrow( void const * data, std::size_t bytes ) {
   auto const * octets = bytes ? static_cast< U8 const * >( data ) : &noOctets;
   return Vorn::Ptr< Pkt >( new Pkt( Borrowed(), octets, bytes ) );
}

Vorn::Ptr< Pkt > Pkt::withRoom( std::size_t bytes ) {
   Vorn::Ptr< Pkt > pkt( new Pkt( Borrowed(), &noOctets, 0 ) );
   pkt->owned_.resize( bytes );
   if ( bytes ) pkt->front_ = pkt->room();
   return pkt;
}

void Pkt::frontBytesIs( std::size_t bytes ) {
   VORN_ASSERT( bytes <= roomBytes() );
   frontBytes_ = bytes;
}

Vorn::Ptr< Pkt > pktFactory( void const * data, std::size_t bytes ) {
   return Vorn::newObject< Pkt >( data, bytes );
}

} // namespace Lumo
