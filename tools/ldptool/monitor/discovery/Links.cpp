// Ports, and which of them share a link.
#include "monitor/discovery/Links.h"

#include "Ldp/LdpProtoParam.h"

#include <algorithm>
#include <bit>

namespace LdpTool {

using namespace Ldp;

namespace {

U32 routerNumber( Port const & port ) { return port.agent->id().lsrId(); }

/// Bits that both addresses of a family begin with.
U32 commonBits( Addr const & a, Addr const & b ) {
   U32 const size = a.family() == Lumo::ipv4 ? Lumo::IpAddr::size : Lumo::Ip6Addr::size;
   for ( U32 i = 0; i < size; ++i ) {
      auto const differing = std::uint8_t( a.octets()[i] ^ b.octets()[i] );
      if ( differing ) return 8 * i + U32( std::countl_zero( differing ) );
   }
   return 8 * size;
}

bool bitOf( Addr const & address, U32 bit ) { return address.octets()[bit / 8] >> ( 7 - bit % 8 ) & 1; }

bool isLinkLocal( Addr const & address ) {
   return address.family() == Lumo::ipv6 && address.octets()[0] == 0xfe &&
          ( address.octets()[1] & 0xc0 ) == 0x80;
}

/// Whether some router has two addresses among the ports.
template< class Iterator >
bool routerTwice( Iterator begin, Iterator end ) {
   std::map< U32, Addr > addresses;
   return std::any_of( begin, end, [&]( Port const * port ) {
      return addresses.emplace( routerNumber( *port ), port->source ).first->second != port->source;
   } );
}

std::string vlanText( std::uint64_t vlans ) {
   std::string text = std::to_string( vlans & 0xfff );
   return vlans >> 12 ? vlanText( vlans >> 12 ) + "." + text : text;
}

} // namespace

double Port::until() const {
   U16 const hold = last.holdTime ? last.holdTime : LdpProtoParam::defaultBasicHelloHoldTime();
   return hold == LdpProtoParam::infiniteHelloHoldTime() ? 0.0 : last.at + hold;
}

Links::Domain * Links::domain( Place const & place ) {
   std::pair const key( place.interface, place.vlans );
   auto const known = domains_.find( key );
   if ( known != domains_.end() ) return &known->second;
   if ( domains_.size() >= MonitorLimits::adjacenciesInAll ) return nullptr;
   Domain & domain = domains_[key];
   domain.named = place.interface || place.vlans;
   if ( place.interface ) domain.name = *place.interface;
   if ( place.vlans ) domain.name += ( place.interface ? "." : "vlan" ) + vlanText( place.vlans );
   return &domain;
}

// Makes room, but not for each of a flood: at most once a second.
bool Links::hasRoom( Domain & domain, double now ) {
   auto const full = [&] {
      return domain.ports.size() >= limits_.linkSpeakers || portNum_ >= MonitorLimits::adjacenciesInAll;
   };
   if ( !full() ) return true;
   if ( now < cleanedAt_ + 1.0 ) return false;
   cleanedAt_ = now;
   for ( auto & [key, each] : domains_ ) {
      portNum_ -= std::erase_if( each.ports, [&]( auto const & entry ) {
         double const until = entry.second.until();
         return until != 0.0 && until < now;
      } );
   }
   return !full();
}

Port * Links::portIs( Domain & domain, Agent & agent, Addr const & source, std::uint64_t sender, double now,
                      OnApart const & onApart, bool & isNew ) {
   auto const known = domain.ports.find( { source, agent.id() } );
   isNew = known == domain.ports.end();
   if ( !isNew ) return &known->second;
   if ( !hasRoom( domain, now ) ) return nullptr;
   ++portNum_;
   Port & port = domain.ports[{ source, agent.id() }];
   port.agent = &agent;
   port.source = source;
   port.sender = sender;
   std::string const name = domain.name + ( source.family() == Lumo::ipv6 ? ":ipv6" : "" );
   port.name = Lumo::IntfId( domain.named ? Vorn::String( name.c_str() ) : source.stringValue() );
   if ( domain.named ) {
      port.group = 1;
   } else {
      regroup( domain, onApart );
   }
   return &port;
}

// Subnets nest, so whether two addresses share one is settled for good by the smallest subnet that has both:
// it is one if no router has two addresses in it.
void Links::split( Ports::iterator begin, Ports::iterator end, int & last ) {
   if ( begin == end ) return;
   if ( !routerTwice( begin, end ) ) {
      ++last;
      for ( auto at = begin; at != end; ++at )
         ( *at )->group = last;
      return;
   }
   U32 const bit = commonBits( ( *begin )->source, ( *( end - 1 ) )->source );
   auto const middle =
        std::find_if( begin, end, [&]( Port const * port ) { return bitOf( port->source, bit ); } );
   split( begin, middle, last );
   split( middle, end, last );
}

void Links::regroup( Domain & domain, OnApart const & onApart ) {
   Ports four, six, local;
   for ( auto & [key, port] : domain.ports ) {
      port.before = port.group;
      port.group = 0;
      ( port.source.family() == Lumo::ipv4 ? four
        : isLinkLocal( port.source )       ? local
                                           : six )
           .push_back( &port );
   }
   int last = 0;
   split( four.begin(), four.end(), last );
   split( six.begin(), six.end(), last );
   if ( !routerTwice( local.begin(), local.end() ) ) {
      ++last;
      for ( Port * port : local )
         port->group = last;
   } else {
      // Link-local addresses are of one prefix on every link. Who also says hello from an IPv4 address, out
      // of the same interface, tells by that which link it is.
      for ( Port * port : local ) {
         auto const same = std::find_if( four.begin(), four.end(), [&]( Port const * other ) {
            return port->sender && other->sender == port->sender && other->agent == port->agent;
         } );
         if ( same != four.end() ) port->group = ( *same )->group;
      }
   }
   for ( Ports const & family : { four, six, local } ) {
      for ( auto a = family.begin(); a != family.end(); ++a )
         for ( auto b = a + 1; b != family.end(); ++b )
            if ( ( *a )->before && ( *a )->before == ( *b )->before && ( *a )->group != ( *b )->group )
               onApart( **a, **b );
   }
}

bool Links::together( Domain const & domain, Port const & a, Port const & b ) {
   if ( routerNumber( a ) == routerNumber( b ) ) return false;
   if ( domain.named ) return true;
   // Links that have no router in common cannot be told apart by their routers' addresses. Far addresses are
   // taken for one link only if a session proves that the two have heard each other.
   U32 const near = a.source.family() == Lumo::ipv4 ? 24 : 64;
   if ( a.group && a.group == b.group && commonBits( a.source, b.source ) >= near ) return true;
   return a.group == b.group && a.agent->hasSession( b.agent->id() );
}

} // namespace LdpTool
