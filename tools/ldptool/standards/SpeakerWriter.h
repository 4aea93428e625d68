#pragma once

// Writes one speaker's document.

#include "monitor/Monitor.h"
#include "standards/Adjacencies.h"
#include "text/JsonWriter.h"

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace LdpTool {

inline constexpr std::array< Lumo::AddressFamily, 2 > families = { Lumo::ipv4, Lumo::ipv6 };

/// The name of a container of that family: that of IPv6 is the second module's.
inline char const * familyName( Lumo::AddressFamily family ) {
   return family == Lumo::ipv4 ? "ipv4" : "ietf-mpls-ldp-extended:ipv6";
}

/// When the adjacencies came that are there.
using Beginnings = std::map< std::tuple< Ldp::LdpIdentifier, Ldp::LdpIdentifier, std::string >, Arrival >;

/// Writes one speaker's document.
class SpeakerWriter {
 public:
   SpeakerWriter( JsonWriter & json, Network const & network, Monitor const & monitor,
                  Beginnings const & beginnings, Ldp::LdpIdentifier const & speaker,
                  Ldp::Status const & status )
        : json_( json ), network_( network ), monitor_( monitor ), beginnings_( beginnings ),
          speaker_( speaker ), status_( status ), adjacencies_( adjacenciesOf( network, speaker, status ) ),
          fecs_( prefixesOf( status, std::nullopt ) ) {
      for ( auto & session : status.ldpSessionStatusColl()->sessionStatusColl() )
         peers_[session.ldpSessionId().peerLdpId()];
      for ( AdjacencyFacts const & adjacency : adjacencies_ )
         peers_[adjacency.id.ldpIdentifier()].push_back( &adjacency );
      gatherAddresses();
   }

   void write() {
      json_.object();
      within( "ietf-routing:routing", [&] {
         within( "control-plane-protocols", [&] {
            list( "control-plane-protocol", [&] {
               entry( [&] {
                  json_.member( "type", "ietf-mpls-ldp:mpls-ldp" );
                  json_.member( "name", speaker_.stringValue() );
                  within( "ietf-mpls-ldp:mpls-ldp", [&] {
                     writeGlobal();
                     writeDiscovery();
                     writePeers();
                  } );
               } );
            } );
         } );
      } );
      json_.endObject();
      json_.endLine();
   }

 private:
   template< class Content >
   void within( char const * name, Content const & content ) {
      json_.key( name );
      entry( content );
   }
   template< class Content >
   void list( char const * name, Content const & content ) {
      json_.key( name );
      json_.array();
      content();
      json_.endArray();
   }
   template< class Content >
   void entry( Content const & content ) {
      json_.object();
      content();
      json_.endObject();
   }
   /// Numbers of 64 bits are texts (RFC 7951, 6.1).
   void counter( char const * name, std::uint64_t number ) { json_.member( name, std::to_string( number ) ); }
   void peerRef( Ldp::LdpIdentifier const & peer ) {
      json_.member( "lsr-id", Lumo::IpAddr( peer.lsrId() ) );
      json_.member( "label-space-id", peer.lblSpace() );
   }

   /// The modules have one entry for each address: the speaker's own are told first, then the first peer's.
   void gatherAddresses() {
      for ( auto const & [peer, adjacencies] : peers_ ) {
         Ldp::Status const * const theirs = statusOf( network_, peer );
         auto const heard =
              theirs ? theirs->ldpSessionStatusColl()->sessionStatus( Ldp::LdpSessionId( speaker_ ) )
                     : nullptr;
         if ( !heard ) continue;
         for ( auto const & address : heard->peerIntfIpColl() )
            addresses_.try_emplace( address.key() );
      }
      for ( auto const & [peer, adjacencies] : peers_ ) {
         auto const session = status_.ldpSessionStatusColl()->sessionStatus( Ldp::LdpSessionId( peer ) );
         if ( !session ) continue;
         for ( auto const & address : session->peerIntfIpColl() )
            addresses_.try_emplace( address.key(), peer );
      }
   }

   void writeGlobal();
   void writeAddresses( Lumo::AddressFamily family );
   void writeFecs( Lumo::AddressFamily family );
   void writeLabel( Ldp::LdpIdentifier const & peer, char const * direction, std::set< U32 > const & labels );
   void writeDiscovery();
   void writeLinks();
   void writePeers();
   void writeSession( Ldp::LdpIdentifier const & peer );
   void writeSessionTerms( Ldp::LdpSessionStatus const & session );
   void writeReceived( Ldp::LdpSessionStatus const & session );
   void writeStatistics( Ldp::LdpIdentifier const & peer );
   void writeCounts( char const * name, Ldp::LdpSessionStatistics const & statistics, bool sent,
                     std::uint64_t octets );
   void writeAdjacencyState( AdjacencyFacts const & adjacency );
   void writeDiscontinuity( std::optional< Arrival > const & since ) {
      if ( since ) json_.member( "discontinuity-time", dateAndTime( *since ) );
   }
   void writeAddressesOf( AdjacencyFacts const & adjacency, bool local );

   JsonWriter & json_;
   Network const & network_;
   Monitor const & monitor_;
   Beginnings const & beginnings_;
   Ldp::LdpIdentifier const speaker_;
   Ldp::Status const & status_;
   std::vector< AdjacencyFacts > const adjacencies_;
   std::vector< Mpls::FwdEqvClass > const fecs_;
   std::map< Ldp::LdpIdentifier, std::vector< AdjacencyFacts const * > > peers_;
   std::map< Lumo::IpGenAddr, std::optional< Ldp::LdpIdentifier > >
        addresses_;                                             ///< and the peer; none for one's own
   std::map< Ldp::LdpIdentifier, std::vector< U32 > > learned_; ///< labels, once for each FEC
};

} // namespace LdpTool
