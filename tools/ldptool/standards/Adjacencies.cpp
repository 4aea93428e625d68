// What speakers tell each other about the addresses of their adjacencies.
#include "standards/Adjacencies.h"

#include "monitor/speaker/Agent.h"

#include <algorithm>
#include <set>

namespace LdpTool {

using namespace Ldp;

namespace {

constexpr std::string_view ipv6Suffix = ":ipv6"; // of the name of a link of IPv6 on an interface with a name

/// The adjacencies by which the peer hears the speaker.
template< class Call >
void eachHearing( Network const & network, LdpIdentifier const & peer, LdpIdentifier const & speaker,
                  Call const & call ) {
   Status const * const theirs = statusOf( network, peer );
   auto const config = theirs ? theirs->ldpPeerConfigColl()->peerConfig( speaker ) : nullptr;
   if ( !config ) return;
   for ( LdpAdjId const & id : sortedKeys( config->ldpAdjColl() ) )
      if ( auto const adj = theirs->ldpAdjStatusColl()->adjStatus( id ) ) call( id, *adj );
}

std::optional< Lumo::IpGenAddr > localOn( Network const & network, LdpIdentifier const & speaker,
                                          Status const & status, AdjacencyFacts const & adjacency ) {
   auto const peer = adjacency.id.ldpIdentifier();
   auto const link = adjacency.id.intfId();
   std::optional< Lumo::IpGenAddr > local;
   if ( adjacency.targeted() ) {
      eachHearing( network, peer, speaker, [&]( LdpAdjId const & id, LdpAdjStatus const & heard ) {
         if ( !local && id.adjType() != LdpLinkAdj ) local = heard.peerSrcIpAddr();
      } );
      return local;
   }
   auto const config = status.ldpLinkConfigColl()->adjLinkConfig( link );
   if ( adjacency.family() == Lumo::ipv4 && config && !!config->ipAddr() ) return config->ipAddr();
   eachHearing( network, peer, speaker, [&]( LdpAdjId const & id, LdpAdjStatus const & heard ) {
      bool const same = id.intfId() == link || heard.peerSrcIpAddr().stringValue() == link.stringValue();
      if ( id.adjType() == LdpLinkAdj && same ) local = heard.peerSrcIpAddr();
   } );
   return local;
}

} // namespace

Status const * statusOf( Network const & network, LdpIdentifier const & speaker ) {
   auto const known = network.speaker( speaker );
   if ( !known ) return nullptr;
   for ( auto & status : known->ldpStatusColl()->statusColl() )
      return &status; // that of the VRF "default", the only one that a capture shows
   return nullptr;
}

std::string interfaceOf( Lumo::IntfId const & link ) {
   std::string name = textOf( link );
   if ( name.ends_with( ipv6Suffix ) ) name.resize( name.size() - ipv6Suffix.size() );
   return name;
}

Lumo::AddressFamily familyOf( Status const & status, Lumo::IntfId const & link ) {
   auto const config = status.ldpLinkConfigColl()->adjLinkConfig( link );
   return config && !!config->ipAddr() ? Lumo::ipv4 : Lumo::ipv6;
}

std::vector< AdjacencyFacts > adjacenciesOf( Network const & network, LdpIdentifier const & speaker,
                                             Status const & status ) {
   std::vector< AdjacencyFacts > all;
   auto const transport = transportOf( network, speaker, status, Lumo::ipv4 ); // targets are of IPv4
   for ( auto & adj : status.ldpAdjStatusColl()->adjStatusColl() ) {
      AdjacencyFacts & facts =
           all.emplace_back( AdjacencyFacts{ adj.ldpAdjId(), &adj, "", adj.peerSrcIpAddr(), {} } );
      if ( !facts.targeted() ) facts.interface = interfaceOf( facts.id.intfId() );
      facts.local = localOn( network, speaker, status, facts );
      if ( facts.targeted() && !facts.local ) facts.local = transport;
   }
   std::sort( all.begin(), all.end(), []( AdjacencyFacts const & a, AdjacencyFacts const & b ) {
      return std::pair( a.targeted(), a.id ) < std::pair( b.targeted(), b.id );
   } );
   return all;
}

std::optional< Lumo::IpGenAddr > transportOf( Network const & network, LdpIdentifier const & speaker,
                                              Status const & status, Lumo::AddressFamily family ) {
   std::optional< Lumo::IpGenAddr > found;
   auto const take = [&]( Lumo::IpGenAddr const & address ) {
      if ( address.family() == family && address != Lumo::IpGenAddr( Lumo::IpAddr() ) ) found = address;
   };
   take( status.ldpTargetConfigColl()->ldpTargetCommonConfig()->ipTransportAddr() );
   take( status.ldpLinkConfigColl()->ldpLinkCommonConfig()->ipTransportAddr() );
   if ( found ) return found;
   // Of both families the last hello alone is kept; those who heard the others know.
   std::set< LdpIdentifier > peers;
   for ( auto & peer : status.ldpPeerConfigColl()->peerConfigColl() )
      peers.insert( peer.ldpIdentifier() );
   for ( auto & session : status.ldpSessionStatusColl()->sessionStatusColl() ) {
      peers.insert( session.ldpSessionId().peerLdpId() );
      take( session.localIpAddr() );
   }
   for ( LdpIdentifier const & peer : peers ) {
      if ( found ) break;
      eachHearing( network, peer, speaker,
                   [&]( LdpAdjId const &, LdpAdjStatus const & heard ) { take( heard.peerIpAddr() ); } );
   }
   return found;
}

} // namespace LdpTool
