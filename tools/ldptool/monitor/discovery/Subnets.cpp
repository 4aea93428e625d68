// A tree of bits.
#include "monitor/discovery/Subnets.h"

#include <bit>

namespace LdpTool {

namespace {

U32 bitsOf( Addr const & address ) {
   return 8 * U32( address.family() == Lumo::ipv4 ? Lumo::IpAddr::size : Lumo::Ip6Addr::size );
}

bool bitOf( Addr const & address, U32 bit ) { return address.octets()[bit / 8] >> ( 7 - bit % 8 ) & 1; }

} // namespace

U32 commonBits( Addr const & a, Addr const & b ) {
   for ( U32 i = 0; i < bitsOf( a ) / 8; ++i ) {
      auto const differing = std::uint8_t( a.octets()[i] ^ b.octets()[i] );
      if ( differing ) return 8 * i + U32( std::countl_zero( differing ) );
   }
   return bitsOf( a );
}

void DividedSubnets::add( Addr const & address, U32 bits ) {
   if ( subnets_.empty() ) subnets_.emplace_back();
   U32 at = 0;
   for ( U32 i = 0; i < bits; ++i ) {
      bool const half = bitOf( address, i );
      if ( !subnets_[at][half] ) {
         subnets_[at][half] = U32( subnets_.size() );
         subnets_.emplace_back();
      }
      at = subnets_[at][half];
   }
}

int DividedSubnets::bits( Addr const & address ) const {
   if ( subnets_.empty() ) return -1;
   U32 at = 0;
   for ( U32 i = 0; i < bitsOf( address ); ++i ) {
      at = subnets_[at][bitOf( address, i )];
      if ( !at ) return int( i );
   }
   return int( bitsOf( address ) );
}

} // namespace LdpTool
