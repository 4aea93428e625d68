// Ports, and which of them share a link.
#include "monitor/discovery/Links.h"

#include "Ldp/LdpProtoParam.h"

#include <algorithm>
#include <bit>

namespace LdpTool {

using namespace Ldp;

namespace {

U32 routerNumber( Port const & port ) { return port.agent->id().lsrId(); }

constexpr U32 localBits = 10; // of the prefix of all link-local addresses

bool isLinkLocal( Addr const & address ) {
   return address.family() == Lumo::ipv6 && address.octets()[0] == 0xfe &&
          ( address.octets()[1] & 0xc0 ) == 0x80;
}

/// Links that have no router in common cannot be told apart by their routers' addresses. Addresses that are
/// further apart than these are taken for one link only if a session proves that the two have heard each
/// other.
U32 nearBits( Addr const & address ) { return address.family() == Lumo::ipv4 ? 24 : 64; }

Addr subnetOf( Addr const & address, U32 bits ) { return Lumo::IpGenPrefix( address, bits ).address(); }

template< class Domain, class Call >
void eachWithin( Domain & domain, Addr const & address, U32 bits, Call const & call ) {
   auto const family = address.family();
   for ( auto at = domain.ports.lower_bound( { subnetOf( address, bits ), LdpIdentifier() } );
         at != domain.ports.end() && at->second.source.family() == family &&
         commonBits( at->second.source, address ) >= bits;
         ++at )
      call( at->second );
}

DividedSubnets const & dividedOf( LinkClues const & clues, Addr const & address ) {
   return address.family() == Lumo::ipv4 ? clues.ipv4 : clues.ipv6;
}

/// The address of the router that has most in common with that one and is another; none if it has no other of
/// that kind.
Addr nearestOf( LinkClues const & clues, U32 router, Addr const & address ) {
   Addr nearest;
   auto const look = [&]( auto at ) {
      if ( at->first != router || at->second.family() != address.family() ||
           isLinkLocal( at->second ) != isLinkLocal( address ) )
         return;
      if ( !nearest || commonBits( at->second, address ) > commonBits( nearest, address ) )
         nearest = at->second;
   };
   auto const from = clues.addresses.lower_bound( { router, address } );
   if ( from != clues.addresses.begin() ) look( std::prev( from ) );
   auto const to = clues.addresses.upper_bound( { router, address } );
   if ( to != clues.addresses.end() ) look( to );
   return nearest;
}

/// The other address of a /31, or of the two hosts of a /30; none for its network and broadcast.
Addr partnerOf( Addr const & address, int pairing ) {
   auto const flipped = [&]( auto raw ) -> Addr {
      U8 & last = raw.octets()[raw.size - 1];
      bool const host = ( last & 3 ) == 1 || ( last & 3 ) == 2;
      if ( pairing == 1 && !host ) return {};
      last ^= pairing == 0 ? 1 : 3;
      return raw;
   };
   return address.family() == Lumo::ipv4 ? flipped( address.ipAddr() ) : flipped( address.ip6Addr() );
}

void crowdIn( Crowd & crowd, Addr const & address ) {
   ++crowd.ports;
   if ( isLinkLocal( address ) || !crowd.addresses.insert( address ).second ) return;
   for ( int pairing : { 0, 1 } ) {
      Addr const partner = partnerOf( address, pairing );
      if ( !!partner && crowd.addresses.contains( partner ) ) crowd.paired[pairing] += 2;
   }
}

int pairingAt( LinkClues const & clues, Addr const & address ) {
   auto const crowd = clues.crowds.find( subnetOf( address, nearBits( address ) ) );
   return crowd == clues.crowds.end() ? -1 : crowd->second.pairing();
}

/// Whether two addresses of one family are of one link by all that addresses tell.
bool areNear( LinkClues const & clues, Addr const & a, Addr const & b ) {
   if ( commonBits( a, b ) < nearBits( a ) ) return false;
   int const pairing = pairingAt( clues, a );
   return pairing < 0 || partnerOf( a, pairing ) == b;
}

/// The address that says which link the port is on; none where nothing does.
Addr anchorOf( LinkClues const & clues, Port const & port ) {
   if ( !isLinkLocal( port.source ) || !clues.localsDivided ) return port.source;
   auto const known = clues.standIns.find( { port.agent->id(), port.sender } );
   return known == clues.standIns.end() ? Addr() : known->second;
}

/// Calls with each link-local port of that port's interface.
template< class Domain, class Call >
void eachTwin( Domain & domain, Port const & port, Call const & call ) {
   auto const twins = domain.clues.locals.find( { port.agent->id(), port.sender } );
   if ( twins == domain.clues.locals.end() ) return;
   for ( Addr const & twin : twins->second )
      if ( auto const at = domain.ports.find( { twin, port.agent->id() } ); at != domain.ports.end() )
         call( at->second );
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
bool Links::hasRoom( Domain & domain, U32 router, Addr const & source, double now ) {
   auto const full = [&] {
      if ( portNum_ >= MonitorLimits::adjacenciesInAll ) return true;
      if ( domain.named ) return domain.ports.size() >= limits_.linkSpeakers;
      // A second link-local address of a router shows that this is no crowd on one link.
      LinkClues const & clues = domain.clues;
      if ( isLinkLocal( source ) && ( clues.localsDivided || !!nearestOf( clues, router, source ) ) )
         return false;
      auto const crowd = clues.crowds.find( subnetOf( source, nearBits( source ) ) );
      return crowd != clues.crowds.end() && crowd->second.ports >= limits_.linkSpeakers;
   };
   if ( !full() ) return true;
   if ( now < cleanedAt_ + 1.0 ) return false;
   cleanedAt_ = now;
   for ( auto & [key, each] : domains_ ) {
      auto const gone = std::erase_if( each.ports, [&]( auto const & entry ) {
         double const until = entry.second.until();
         return until != 0.0 && until < now;
      } );
      portNum_ -= gone;
      if ( gone == 0 || each.named ) continue;
      each.clues = {};
      for ( auto const & [id, port] : each.ports )
         note( each, port, {} );
   }
   return !full();
}

Port * Links::portIs( Domain & domain, Agent & agent, Addr const & source, std::uint64_t sender, double now,
                      Call const & onMoved, bool & isNew ) {
   auto const known = domain.ports.find( { source, agent.id() } );
   isNew = known == domain.ports.end();
   if ( !isNew ) return &known->second;
   if ( !hasRoom( domain, agent.id().lsrId(), source, now ) ) return nullptr;
   ++portNum_;
   Port & port = domain.ports[{ source, agent.id() }];
   port.agent = &agent;
   port.source = source;
   port.sender = sender;
   std::string const name = domain.name + ( source.family() == Lumo::ipv6 ? ":ipv6" : "" );
   port.name = Lumo::IntfId( domain.named ? Vorn::String( name.c_str() ) : source.stringValue() );
   if ( !domain.named ) note( domain, port, onMoved );
   return &port;
}

// A router's second address in a subnet divides it, and all that hold it. Each subnet is divided once, and
// those in it are gone through then, so that all of this takes as long as there are addresses, times their
// bits.
void Links::note( Domain & domain, Port const & port, Call const & onMoved ) {
   LinkClues & clues = domain.clues;
   Addr const & source = port.source;
   bool const local = isLinkLocal( source );
   LinkClues::Interface const interface( port.agent->id(), port.sender );
   auto const moved = [&]( Port & each ) {
      if ( onMoved ) onMoved( each );
   };
   Crowd & crowd = clues.crowds[subnetOf( source, nearBits( source ) )];
   int const pairedBefore = crowd.pairing();
   crowdIn( crowd, source );
   if ( port.sender && local ) clues.locals[interface].insert( source );
   if ( port.sender && source.family() == Lumo::ipv4 ) clues.standIns.try_emplace( interface, source );
   if ( crowd.pairing() >= 0 && pairedBefore < 0 )
      eachWithin( domain, source, nearBits( source ), [&]( Port & each ) {
         moved( each );
         if ( clues.localsDivided && !local ) eachTwin( domain, each, moved );
      } );
   if ( !clues.addresses.insert( { routerNumber( port ), source } ).second ) return;
   Addr const nearest = nearestOf( clues, routerNumber( port ), source );
   if ( !nearest ) return;
   if ( local ) {
      if ( !std::exchange( clues.localsDivided, true ) ) eachWithin( domain, source, localBits, moved );
      return;
   }
   DividedSubnets & divided = source.family() == Lumo::ipv4 ? clues.ipv4 : clues.ipv6;
   int const before = divided.bits( source );
   int const now = int( commonBits( source, nearest ) );
   if ( now <= before ) return;
   divided.add( source, U32( now ) );
   eachWithin( domain, source, U32( before + 1 ), [&]( Port & each ) {
      moved( each );
      if ( clues.localsDivided && each.source.family() == Lumo::ipv4 ) eachTwin( domain, each, moved );
   } );
}

bool Links::together( Domain const & domain, Port const & a, Port const & b ) {
   if ( routerNumber( a ) == routerNumber( b ) ) return false;
   if ( domain.named ) return true;
   Addr const one = anchorOf( domain.clues, a );
   Addr const other = anchorOf( domain.clues, b );
   if ( one.family() != other.family() ) return false;
   if ( !!one && dividedOf( domain.clues, one ).between( one, other ) ) return false;
   return ( !!one && areNear( domain.clues, one, other ) ) || a.agent->hasSession( b.agent->id() );
}

void Links::eachOther( Domain & domain, Port const & port, Call const & call ) const {
   std::size_t left = limits_.linkSpeakers;
   auto const tell = [&]( Port & other ) {
      if ( &other == &port || left == 0 ) return;
      --left;
      call( other );
   };
   if ( domain.named ) return eachWithin( domain, port.source, 0, tell );
   LinkClues const & clues = domain.clues;
   Addr const anchor = anchorOf( clues, port );
   bool const standsIn = anchor != port.source;
   auto const tellAt = [&]( Port & at ) { standsIn ? eachTwin( domain, at, tell ) : tell( at ); };
   int const pairing = !anchor ? -1 : pairingAt( clues, anchor );
   Addr const partner = pairing < 0 ? Addr() : partnerOf( anchor, pairing );
   if ( !!partner ) {
      eachWithin( domain, partner, commonBits( partner, partner ), tellAt );
   } else if ( !!anchor && pairing < 0 ) {
      eachWithin( domain, anchor, nearBits( anchor ), tellAt );
   }
   auto const tellOf = [&]( LdpIdentifier const & speaker, Addr const & address ) {
      auto const at = domain.ports.find( { address, speaker } );
      if ( at != domain.ports.end() ) tellAt( at->second );
   };
   port.agent->eachSession( [&]( SessionEnd const & end ) {
      LdpIdentifier const peer = end.peer();
      if ( !!anchor ) {
         Addr const far = nearestOf( clues, peer.lsrId(), anchor );
         if ( !!far && commonBits( far, anchor ) < nearBits( anchor ) ) tellOf( peer, far );
         return;
      }
      auto at = clues.addresses.lower_bound( { peer.lsrId(), subnetOf( port.source, localBits ) } );
      for ( ; left && at != clues.addresses.end() && at->first == peer.lsrId(); ++at )
         if ( auto const other = domain.ports.find( { at->second, peer } ); other != domain.ports.end() )
            tell( other->second );
   } );
}

} // namespace LdpTool
