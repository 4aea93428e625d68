// Names that several forms of output use.
#include "text/Words.h"

#include <algorithm>
#include <cstdio>

namespace LdpTool {

Output & operator<<( Output & out, Lumo::IpGenAddr const & addr ) {
   return addr.family() == Lumo::ipv4 ? out << addr.ipAddr() : out << addr.stringValue().view();
}

Output & operator<<( Output & out, Lumo::IpGenPrefix const & prefix ) {
   return out << prefix.address() << '/' << prefix.len();
}

bool isWithin( Lumo::IpGenPrefix const & prefix, Lumo::IpGenPrefix const & within ) {
   if ( prefix.address().family() != within.address().family() || prefix.len() < within.len() ) return false;
   return within == ( prefix.address().family() == Lumo::ipv4
                           ? Lumo::IpGenPrefix( prefix.address().ipAddr(), within.len() )
                           : Lumo::IpGenPrefix( prefix.address().ip6Addr(), within.len() ) );
}

Lumo::IpGenAddr addressOf( Flow const & flow, std::array< std::uint8_t, 16 > const & address ) {
   auto const filled = [&]( auto value ) {
      std::copy_n( address.begin(), value.size, value.octets() );
      return Lumo::IpGenAddr( value );
   };
   return flow.addressSize == Lumo::IpAddr::size ? filled( Lumo::IpAddr() ) : filled( Lumo::Ip6Addr() );
}

std::string addressText( Flow const & flow, std::array< std::uint8_t, 16 > const & address ) {
   return std::string( addressOf( flow, address ).stringValue().view() );
}

char const * reservedLabelWord( Lumo::MplsLabel label ) {
   switch ( label.value() ) {
   case 0: return "exp-null";
   case 2: return "exp-null6";
   case 3: return "imp-null";
   default: return nullptr;
   }
}

std::string pwStatusText( U32 flags ) {
   static constexpr std::pair< U32, char const * > bits[] = {
      // RFC 4446, 3.5
      { 0x1, "not forwarding" },
      { 0x2, "attachment circuit (ingress) receive fault" },
      { 0x4, "attachment circuit (egress) transmit fault" },
      { 0x8, "PSN-facing (ingress) receive fault" },
      { 0x10, "PSN-facing (egress) transmit fault" },
   };
   if ( flags == 0 ) return "forwarding";
   std::string words;
   for ( auto const & [bit, word] : bits )
      if ( flags & bit ) words += ( words.empty() ? "" : ", " ) + std::string( word );
   return words.empty() ? "unknown status" : words;
}

Vorn::String badPduText( Ldp::LdpPdu const & pdu ) { return "Error LDP PDU: " + pdu.reason(); }

char const * fatalName( Ldp::LdpPduGuardResult const & fatal ) {
   switch ( fatal.input ) {
   case Ldp::LdpPduGuardResult::wrappedUnit: return "wrappedUnit";
   case Ldp::LdpPduGuardResult::unboundedP2mpDump: return "unboundedP2mpDump";
   case Ldp::LdpPduGuardResult::none: break;
   }
   return "none";
}

std::string originText( Origin const & origin ) {
   if ( !origin.flow ) return "line " + std::to_string( origin.arrival.frame );
   return timeText( origin.arrival ) + " " + addressText( *origin.flow, origin.flow->source ) + " > " +
          addressText( *origin.flow, origin.flow->destination );
}

std::string numberedOriginText( Origin const & origin ) {
   return ( origin.flow ? std::to_string( origin.arrival.frame ) + " " : "" ) + originText( origin );
}

} // namespace LdpTool
