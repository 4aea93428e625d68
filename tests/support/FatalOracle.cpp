// The protocol's walk a second time, octet by octet.
#include "support/FatalOracle.h"

namespace Fuzz {

namespace {

unsigned two( Octets packet, std::size_t at ) { return packet[at] * 256u + packet[at + 1]; }

// A length counts from behind its field, which is 4 octets into the unit; the sum has 16 bits.
unsigned total( Octets packet, std::size_t unit ) { return ( two( packet, unit + 2 ) + 4 ) % 65536; }

struct Walk {
   bool good = false;
   std::optional< Fatal > fatal;
   std::vector< std::size_t > units; // of a good walk, where each begins
};

Walk walkUnits( Octets packet, std::size_t offset, std::size_t size ) {
   Walk walk;
   if ( size == 0 ) {
      walk.good = true;
      return walk;
   }
   if ( offset + size > packet.size() ) return walk;
   std::size_t octets = 0;
   std::size_t cur = offset;
   while ( octets != size ) {
      // Against the packet, not the run: a header may be completed by what stands behind the run.
      if ( cur + 4 > packet.size() ) return walk;
      unsigned const unit = total( packet, cur );
      if ( unit == 0 ) {
         walk.fatal = Fatal{ Fatal::wrappedUnit, cur };
         return walk;
      }
      octets += unit;
      if ( octets > size ) return walk;
      walk.units.push_back( cur );
      cur += unit;
   }
   walk.good = true;
   return walk;
}

bool messageTypeIsKnown( unsigned type ) {
   switch ( type ) {
   case 0x0001:
   case 0x0100:
   case 0x0200:
   case 0x0201:
   case 0x0202:
   case 0x0300:
   case 0x0301: return true;
   default: return type >= 0x0400 && type <= 0x0404;
   }
}

bool tlvTypeIsKnown( unsigned type ) {
   auto const between = [type]( unsigned first, unsigned last ) { return type >= first && type <= last; };
   return between( 0x0100, 0x0101 ) || between( 0x0103, 0x0104 ) || between( 0x0200, 0x0202 ) ||
          between( 0x0300, 0x0303 ) || between( 0x0400, 0x0403 ) || between( 0x0500, 0x0503 ) ||
          between( 0x0506, 0x050f ) || type == 0x0600 || type == 0x096a || type == 0x3e00 || type == 0x3eff ||
          type == 0x3f00 || type == 0x3fff;
}

} // namespace

std::optional< Fatal > fatalInputOfFecTlv( Octets packet, std::size_t offset ) {
   if ( offset + 4 > packet.size() ) return {};
   std::size_t const value = offset + 4;
   std::size_t const length = two( packet, offset + 2 );
   if ( value + length > packet.size() || length == 0 ) return {};
   // Behind another element a P2MP element is refused unread. The dump counts its own type octet.
   if ( packet[value] != 6 || length < 256 ) return {};
   return Fatal{ Fatal::unboundedP2mpDump, value };
}

std::optional< Fatal > fatalInputOfMessage( Octets packet, std::size_t offset ) {
   if ( offset + 2 > packet.size() ) return {};
   unsigned const type = two( packet, offset ) & 0x7fff;
   if ( !messageTypeIsKnown( type ) || offset + 8 > packet.size() ) return {};
   unsigned const size = total( packet, offset );
   if ( size < 8 || size > 4096 ) return {};
   Walk const walk = walkUnits( packet, offset + 8, size - 8 );
   if ( !walk.good ) return walk.fatal;
   for ( std::size_t const tlv : walk.units ) {
      bool const ignored = packet[tlv] & 0x80;
      if ( !ignored && !tlvTypeIsKnown( two( packet, tlv ) & 0x3fff ) ) return {};
   }
   auto const tlvIs = [&]( std::size_t index, unsigned wanted ) {
      return ( two( packet, walk.units[index] ) & 0x3fff ) == wanted;
   };
   auto const lengthIs = [&]( std::size_t index, unsigned length ) {
      return two( packet, walk.units[index] + 2 ) == length;
   };
   std::size_t const num = walk.units.size();
   if ( type >= 0x0400 ) {
      bool const wantsTwo = type == 0x0400 || type == 0x0404;
      if ( num < ( wantsTwo ? 2u : 1u ) || !tlvIs( 0, 0x0100 ) ) return {};
      return fatalInputOfFecTlv( packet, walk.units[0] );
   }
   if ( type == 0x0001 ) {
      if ( num < 3 || !tlvIs( 0, 0x0300 ) || !lengthIs( 0, 10 ) ) return {};
      std::size_t const word = walk.units[0] + 4;
      bool const isPwStatus = ( two( packet, word ) & 0x3fff ) == 0 && two( packet, word + 2 ) == 0x28;
      if ( !isPwStatus || !tlvIs( 1, 0x096a ) || !lengthIs( 1, 4 ) || !tlvIs( 2, 0x0100 ) ) return {};
      return fatalInputOfFecTlv( packet, walk.units[2] );
   }
   return {};
}

std::vector< Fatal > fatalInputs( Octets packet, std::size_t offset ) {
   if ( offset + 18 > packet.size() ) return {};
   unsigned const size = total( packet, offset );
   if ( size > 9600 || size < 14 || two( packet, offset ) != 1 ) return {};
   Walk const walk = walkUnits( packet, offset + 10, size - 10 );
   if ( walk.fatal ) return { *walk.fatal };
   std::vector< Fatal > all;
   if ( !walk.good ) return all;
   for ( std::size_t const message : walk.units ) {
      if ( auto const fatal = fatalInputOfMessage( packet, message ) ) all.push_back( *fatal );
   }
   return all;
}

} // namespace Fuzz
