// A speaker's state in the shape of RFC 9070: what is of all of it, and its links.
#include "standards/Yang.h"

#include "standards/SpeakerWriter.h"
#include "standards/YangText.h"

#include <algorithm>

namespace LdpTool {

using namespace Ldp;

namespace {

Beginnings beginningsOf( Journal const & journal ) {
   Beginnings beginnings;
   for ( Change const & change : journal.changes() )
      if ( change.to == "hears" ) beginnings[{ change.speaker, change.peer, change.subject }] = change.at;
   return beginnings;
}

} // namespace

void SpeakerWriter::writeGlobal() {
   within( "global", [&] {
      json_.member( "lsr-id", Lumo::IpAddr( speaker_.lsrId() ) );
      within( "address-families", [&] {
         for ( Lumo::AddressFamily const family : families ) {
            auto const transport = transportOf( network_, speaker_, status_, family );
            auto const isOf = [&]( Mpls::FwdEqvClass const & fec ) {
               return fec.prefix().address().family() == family;
            };
            auto const has = [&]( auto const & each ) { return each.first.family() == family; };
            if ( !transport && std::none_of( fecs_.begin(), fecs_.end(), isOf ) &&
                 std::none_of( addresses_.begin(), addresses_.end(), has ) )
               continue;
            within( familyName( family ), [&] {
               if ( transport )
                  json_.member( family == Lumo::ipv4 ? "ietf-mpls-ldp-extended:transport-address"
                                                     : "transport-address",
                                *transport );
               within( "bindings", [&] {
                  writeAddresses( family );
                  writeFecs( family );
               } );
            } );
         }
      } );
   } );
}

void SpeakerWriter::writeAddresses( Lumo::AddressFamily family ) {
   list( "address", [&] {
      for ( auto const & [address, peer] : addresses_ ) {
         if ( address.family() != family ) continue;
         entry( [&, &at = address, &from = peer] {
            json_.member( "address", at );
            json_.member( "advertisement-type", from ? "received" : "advertised" );
            if ( from ) within( "peer", [&] { peerRef( *from ); } );
         } );
      }
   } );
}

void SpeakerWriter::writeFecs( Lumo::AddressFamily family ) {
   list( "fec-label", [&] {
      for ( Mpls::FwdEqvClass const & fec : fecs_ ) {
         if ( fec.prefix().address().family() != family ) continue;
         auto const rows = bindingsOfFec( status_, fec );
         auto const says = []( BindingRow const & row ) { return !row.sent.empty() || !row.remote.empty(); };
         if ( std::none_of( rows.begin(), rows.end(), says ) ) continue;
         entry( [&] {
            json_.member( "fec", rows.front().fec );
            list( "peer", [&] {
               for ( BindingRow const & row : rows ) {
                  writeLabel( row.peer, "advertised", row.sent );
                  writeLabel( row.peer, "received", row.remote );
                  if ( !row.remote.empty() ) learned_[row.peer].push_back( *row.remote.begin() );
               }
            } );
         } );
      }
   } );
}

/// There is room for one label, though two can be in force while one takes the other's place.
void SpeakerWriter::writeLabel( LdpIdentifier const & peer, char const * direction,
                                std::set< U32 > const & labels ) {
   if ( labels.empty() ) return;
   entry( [&] {
      peerRef( peer );
      json_.member( "advertisement-type", direction );
      constexpr U32 firstOfOnesOwn = 16, last = 1048575;
      U32 const label = *labels.begin();
      if ( char const * const special = specialLabel( label ) ) {
         json_.member( "label", special );
      } else if ( label >= firstOfOnesOwn && label <= last ) {
         json_.member( "label", label );
      }
   } );
}

void SpeakerWriter::writeDiscovery() {
   within( "discovery", [&] {
      within( "interfaces", [&] { writeLinks(); } );
      within( "targeted", [&] {
         within( "address-families", [&] {
            for ( Lumo::AddressFamily const family : families ) {
               std::set< std::pair< Lumo::IpGenAddr, Lumo::IpGenAddr > > told; // label spaces share addresses
               std::vector< AdjacencyFacts const * > wanted;
               for ( AdjacencyFacts const & each : adjacencies_ )
                  if ( each.targeted() && each.family() == family && each.local &&
                       told.insert( { *each.local, each.remote } ).second )
                     wanted.push_back( &each );
               if ( wanted.empty() ) continue;
               within( familyName( family ), [&] {
                  within( "hello-adjacencies", [&] {
                     list( "hello-adjacency", [&] {
                        for ( AdjacencyFacts const * each : wanted )
                           entry( [&] {
                              writeAddressesOf( *each, true );
                              writeAdjacencyState( *each );
                              within( "peer", [&] { peerRef( each->id.ldpIdentifier() ); } );
                           } );
                     } );
                  } );
               } );
            }
         } );
      } );
   } );
}

void SpeakerWriter::writeLinks() {
   using Links = std::array< std::vector< AdjacencyFacts const * >, families.size() >;
   struct Interface {
      bool speaks[families.size()] = {};
      Links hears;
   };
   std::map< std::string, Interface > interfaces;
   for ( auto & link : status_.ldpLinkStatusColl()->adjLinkStatusColl() )
      interfaces[interfaceOf( link.intfId() )].speaks[familyOf( status_, link.intfId() ) == Lumo::ipv6] =
           true;
   for ( AdjacencyFacts const & each : adjacencies_ )
      if ( !each.targeted() )
         interfaces[each.interface].hears[each.family() == Lumo::ipv6].push_back( &each );
   list( "interface", [&] {
      for ( auto const & [name, interface] : interfaces )
         entry( [&, &called = name, &at = interface] {
            json_.member( "name", yangText( called ) );
            within( "address-families", [&] {
               for ( std::size_t i = 0; i < families.size(); ++i ) {
                  if ( !at.speaks[i] && at.hears[i].empty() ) continue;
                  within( familyName( families[i] ), [&] {
                     std::set< Lumo::IpGenAddr > told;
                     within( "hello-adjacencies", [&] {
                        list( "hello-adjacency", [&] {
                           for ( AdjacencyFacts const * each : at.hears[i] )
                              if ( told.insert( each->remote ).second )
                                 entry( [&] {
                                    writeAddressesOf( *each, false );
                                    writeAdjacencyState( *each );
                                    within( "peer", [&] { peerRef( each->id.ldpIdentifier() ); } );
                                 } );
                        } );
                     } );
                  } );
               }
            } );
         } );
   } );
}

void SpeakerWriter::writeAddressesOf( AdjacencyFacts const & adjacency, bool local ) {
   if ( local ) json_.member( "local-address", *adjacency.local );
   json_.member( "adjacent-address", adjacency.remote );
}

void SpeakerWriter::writeAdjacencyState( AdjacencyFacts const & adjacency ) {
   LdpAdjStatus const & status = *adjacency.status;
   within( "hello-holdtime", [&] {
      json_.member( "adjacent", status.peerHoldTime() );
      json_.member( "negotiated", status.operHoldTime() );
      if ( status.adjExpireTime() != 0.0 )
         json_.member( "remaining", secondsLeft( status.adjExpireTime(), monitor_.journal().now() ) );
   } );
   within( "statistics", [&] {
      auto const began =
           beginnings_.find( { speaker_, adjacency.id.ldpIdentifier(), adjacencyText( adjacency.id ) } );
      writeDiscontinuity( began == beginnings_.end() ? monitor_.journal().began() : began->second );
      counter( "hello-received", status.rxPktCount() );
      counter( "hello-dropped", status.errPktCount() );
   } );
}

void writeYang( Output & out, Network const & network, Monitor & monitor,
                std::optional< LdpIdentifier > const & speaker ) {
   Beginnings const beginnings = beginningsOf( monitor.journal() );
   JsonWriter json( out );
   eachVrf( network, [&]( LdpIdentifier const & id, Status const & status ) {
      if ( speaker && id != *speaker ) return;
      monitor.show( id, [&] { SpeakerWriter( json, network, monitor, beginnings, id, status ).write(); } );
   } );
}

} // namespace LdpTool
