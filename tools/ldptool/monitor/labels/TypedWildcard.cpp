// Typed wildcards, read from the message itself.
#include "monitor/labels/TypedWildcard.h"

#include "capture/PduSink.h"
#include "monitor/labels/PrefixLabels.h"

#include <functional>

namespace LdpTool {

using namespace Ldp;

namespace {

std::size_t read16( Octets octets, std::size_t at ) {
   return std::size_t( octets[at] << 8 | octets[at + 1] );
}

/// The message behind its id.
Octets bodyOf( LdpMsgParser const & message ) {
   constexpr std::size_t header = 8;
   auto const & pkt = *message.pkt();
   Octets const unit = Octets( pkt.front(), std::size_t( pkt.frontBytes() ) ).subspan( message.offset() );
   if ( unit.size() < header ) return {};
   std::size_t const total = std::min( unit.size(), read16( unit, 2 ) + 4 );
   return total < header ? Octets() : unit.subspan( header, total - header );
}

/// The first TLV of that type; no octets if there is none.
Octets tlvOf( LdpMsgParser const & message, LdpTlvType type ) {
   Octets rest = bodyOf( message );
   while ( rest.size() >= 4 ) {
      std::size_t const length = read16( rest, 2 );
      if ( length > rest.size() - 4 ) break;
      if ( ( read16( rest, 0 ) & 0x3fff ) == std::size_t( type ) ) return rest.subspan( 4, length );
      rest = rest.subspan( 4 + length );
   }
   return {};
}

/// Each element's type and what stands behind it (RFC 5918, 3); false if there is anything else.
bool eachWildcard( LdpMsgParser const & message,
                   std::function< void( std::uint8_t, Octets ) > const & call ) {
   Octets rest = tlvOf( message, fecTlv );
   if ( rest.empty() ) return false;
   while ( !rest.empty() ) {
      if ( rest.size() < 3 || rest[0] != typedWildcardElement || rest[2] > rest.size() - 3 ) return false;
      call( rest[1], rest.subspan( 3, rest[2] ) );
      rest = rest.subspan( 3u + rest[2] );
   }
   return true;
}

} // namespace

bool isTypedWildcard( LdpMsgParser const & message ) {
   LdpMsgType const type = message.type();
   if ( type != LdpLabelRequest && type != LdpLabelWithdraw && type != LdpLabelRelease ) return false;
   return eachWildcard( message, []( std::uint8_t, Octets ) {} );
}

void onTypedWildcard( Exchange const & exchange ) {
   constexpr std::size_t addressFamilyIpv4 = 1, addressFamilyIpv6 = 2;
   Octets const labelTlv = tlvOf( exchange.message, genLabelTlv );
   AnyLabel label;
   if ( labelTlv.size() == 4 )
      label = Lumo::MplsLabel( U32( read16( labelTlv, 0 ) << 16 | read16( labelTlv, 2 ) ) & 0xfffff );
   if ( exchange.message.type() == LdpLabelRequest ) { // for what is mapped then, which shows by itself
      ++exchange.receiver.agent.turnedAway().typedWildcards;
      return;
   }
   eachWildcard( exchange.message, [&]( std::uint8_t type, Octets information ) {
      std::size_t const family = information.size() == 2 ? read16( information, 0 ) : 0;
      if ( type == prefixElement && ( family == addressFamilyIpv4 || family == addressFamilyIpv6 ) ) {
         PrefixLabels::onWildcard( exchange, label, family == addressFamilyIpv4 ? Lumo::ipv4 : Lumo::ipv6 );
      } else {
         ++exchange.receiver.agent.turnedAway().typedWildcards;
      }
   } );
}

} // namespace LdpTool
