// A speaker's state in the shape of RFC 9070.
#include "standards/Yang.h"

#include "standards/Adjacencies.h"
#include "standards/YangText.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace LdpTool {

using namespace Ldp;

namespace {

constexpr std::array< Lumo::AddressFamily, 2 > families = { Lumo::ipv4, Lumo::ipv6 };

/// The name of a container of that family: that of IPv6 is the second module's.
char const * familyName( Lumo::AddressFamily family ) {
   return family == Lumo::ipv4 ? "ipv4" : "ietf-mpls-ldp-extended:ipv6";
}

char const * stateWord( SessionState state ) {
   switch ( state ) {
   case stateInitialized: return "initialized";
   case stateOpenSent: return "opensent";
   case stateOpenRecv: return "openrec";
   case stateOperational: return "operational";
   default: return "non-existent";
   }
}

char const * modeWord( LdpLabelAdvDspl discipline ) {
   return discipline == onDemand ? "downstream-on-demand" : "downstream-unsolicited";
}

/// When the adjacencies came that are there.
using Beginnings = std::map< std::tuple< LdpIdentifier, LdpIdentifier, std::string >, Arrival >;

Beginnings beginningsOf( Journal const & journal ) {
   Beginnings beginnings;
   for ( Change const & change : journal.changes() )
      if ( change.to == "hears" ) beginnings[{ change.speaker, change.peer, change.subject }] = change.at;
   return beginnings;
}

/// Writes one speaker's document.
class SpeakerWriter {
 public:
   SpeakerWriter( JsonWriter & json, Network const & network, Monitor const & monitor,
                  Beginnings const & beginnings, LdpIdentifier const & speaker, Status const & status )
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
   void peerRef( LdpIdentifier const & peer ) {
      json_.member( "lsr-id", Lumo::IpAddr( peer.lsrId() ) );
      json_.member( "label-space-id", peer.lblSpace() );
   }

   /// The modules have one entry for each address: the speaker's own are told first, then the first peer's.
   void gatherAddresses() {
      for ( auto const & [peer, adjacencies] : peers_ ) {
         Status const * const theirs = statusOf( network_, peer );
         auto const heard =
              theirs ? theirs->ldpSessionStatusColl()->sessionStatus( LdpSessionId( speaker_ ) ) : nullptr;
         if ( !heard ) continue;
         for ( auto const & address : heard->peerIntfIpColl() )
            addresses_.try_emplace( address.key() );
      }
      for ( auto const & [peer, adjacencies] : peers_ ) {
         auto const session = status_.ldpSessionStatusColl()->sessionStatus( LdpSessionId( peer ) );
         if ( !session ) continue;
         for ( auto const & address : session->peerIntfIpColl() )
            addresses_.try_emplace( address.key(), peer );
      }
   }

   void writeGlobal();
   void writeAddresses( Lumo::AddressFamily family );
   void writeFecs( Lumo::AddressFamily family );
   void writeLabel( LdpIdentifier const & peer, char const * direction, std::set< U32 > const & labels );
   void writeDiscovery();
   void writeLinks();
   void writePeers();
   void writeSession( LdpIdentifier const & peer );
   void writeSessionTerms( LdpSessionStatus const & session );
   void writeReceived( LdpSessionStatus const & session );
   void writeStatistics( LdpIdentifier const & peer );
   void writeCounts( char const * name, LdpSessionStatistics const & statistics, bool sent,
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
   LdpIdentifier const speaker_;
   Status const & status_;
   std::vector< AdjacencyFacts > const adjacencies_;
   std::vector< Mpls::FwdEqvClass > const fecs_;
   std::map< LdpIdentifier, std::vector< AdjacencyFacts const * > > peers_;
   std::map< Lumo::IpGenAddr, std::optional< LdpIdentifier > >
        addresses_;                                        ///< and the peer; none for one's own
   std::map< LdpIdentifier, std::vector< U32 > > learned_; ///< labels, once for each FEC
};

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

void SpeakerWriter::writePeers() {
   within( "peers", [&] {
      list( "peer", [&] {
         for ( auto const & [peer, adjacencies] : peers_ )
            entry( [&, &id = peer, &all = adjacencies] {
               peerRef( id );
               within( "address-families", [&] {
                  for ( Lumo::AddressFamily const family : families ) {
                     auto const isOf = [&]( AdjacencyFacts const * each ) {
                        return each->family() == family;
                     };
                     if ( std::none_of( all.begin(), all.end(), isOf ) ) continue;
                     // A link and a target can have the same two addresses; the link goes first.
                     std::set< std::pair< Lumo::IpGenAddr, Lumo::IpGenAddr > > told;
                     within( familyName( family ), [&] {
                        within( "hello-adjacencies", [&] {
                           list( "hello-adjacency", [&] {
                              for ( AdjacencyFacts const * each : all )
                                 if ( isOf( each ) && each->local &&
                                      told.insert( { *each->local, each->remote } ).second )
                                    entry( [&] {
                                       writeAddressesOf( *each, true );
                                       writeAdjacencyState( *each );
                                       if ( !each->targeted() )
                                          json_.member( "interface", yangText( each->interface ) );
                                    } );
                           } );
                        } );
                     } );
                  }
               } );
               writeSession( id );
            } );
      } );
   } );
}

void SpeakerWriter::writeSession( LdpIdentifier const & peer ) {
   auto const session = status_.ldpSessionStatusColl()->sessionStatus( LdpSessionId( peer ) );
   json_.member( "session-state", stateWord( session ? session->sessionState() : stateNonExist ) );
   SessionState const state = session ? session->sessionState() : stateUnknown;
   bool const live = state == stateInitialized || state == stateOpenSent || state == stateOpenRecv ||
                     state == stateOperational;
   if ( live ) writeSessionTerms( *session );
   writeStatistics( peer );
}

/// What the ends have agreed on. What a past session's were, or those of one whose beginning nobody saw, is
/// not told.
void SpeakerWriter::writeSessionTerms( LdpSessionStatus const & session ) {
   SessionState const state = session.sessionState();
   bool const agreed = session.operKeepAliveTime() != 0 && state == stateOperational;
   bool const peerSpoke = agreed || state == stateOpenRecv;
   bool const ownSpoke = agreed || state == stateOpenSent;
   if ( peerSpoke || ownSpoke )
      within( "label-advertisement-mode", [&] {
         auto const common = status_.ldpSessionConfigColl()->ldpSessionCommonConfig();
         if ( ownSpoke ) json_.member( "local", modeWord( common->ldpLabelAdvDspl() ) );
         if ( peerSpoke ) json_.member( "peer", modeWord( session.peerLabelAdvDspl() ) );
         if ( agreed ) json_.member( "negotiated", modeWord( session.operLabelAdvDspl() ) );
      } );
   if ( peerSpoke ) {
      writeReceived( session );
      within( "session-holdtime", [&] {
         json_.member( "peer", session.peerKeepAliveTime() );
         if ( !agreed ) return;
         json_.member( "negotiated", session.operKeepAliveTime() );
         if ( session.sessionExpireTime() != 0.0 )
            json_.member( "remaining", secondsLeft( session.sessionExpireTime(), monitor_.journal().now() ) );
      } );
   }
   if ( session.localPort() != 0 )
      within( "tcp-connection", [&] {
         json_.member( "local-address", session.localIpAddr() );
         json_.member( "local-port", session.localPort() );
         json_.member( "remote-address", session.peerIpAddr() );
         json_.member( "remote-port", session.peerPort() );
      } );
   // One that was up before the capture began has been up for longer than anybody saw.
   if ( session.sessionUptime() != 0.0 && session.sessionStateReason() != seenAtWork ) {
      constexpr double ticks = 100.0; // in a second
      counter( "up-time",
               std::uint64_t( std::max( 0.0, monitor_.journal().now() - session.sessionUptime() ) * ticks ) );
   }
}

void SpeakerWriter::writeReceived( LdpSessionStatus const & session ) {
   within( "received-peer-state", [&] {
      within( "graceful-restart", [&] {
         constexpr U32 milliseconds = 1000;
         auto const time = [&]( char const * name, U32 sent, U32 least, U32 most ) {
            U32 const seconds = sent / milliseconds;
            if ( seconds >= least && seconds <= most )
               json_.member( name, seconds ); // the module has no others
         };
         bool const enabled = session.peerGrReconnectTimeout() != 0 || session.operGrSupported();
         json_.member( "enabled", enabled );
         if ( !enabled ) return;
         time( "reconnect-time", session.peerGrReconnectTimeout(), 10, 1800 );
         time( "recovery-time", session.peerGrRecoveryTimeout(), 30, 3600 );
      } );
      within( "capability", [&] {
         auto const capability = [&]( char const * name, LdpTlvType type ) {
            within( name, [&] { json_.member( "enabled", session.peerCapability( type ) ); } );
         };
         // End-of-LIB is what the Unrecognized Notification capability is for (RFC 5919, 4).
         capability( "end-of-lib", unrecognizedNotificationCapabilityTlv );
         capability( "typed-wildcard-fec", typedWildcardFecCapabilityTlv );
         capability( "upstream-label-assignment", upstreamLabelAssignmentCapabilityTlv );
      } );
   } );
}

void SpeakerWriter::writeStatistics( LdpIdentifier const & peer ) {
   within( "statistics", [&] {
      writeDiscontinuity( monitor_.journal().began() );
      SessionEnd const * const end = monitor_.sessionEnd( speaker_, peer );
      if ( !end ) return;
      writeCounts( "received", *end->statistics, false, end->octetsReceived );
      writeCounts( "sent", *end->statistics, true, end->octetsSent );
      json_.member( "total-addresses", end->status->peerIntfIps() );
      std::vector< U32 > & labels = learned_[peer];
      std::size_t const bindings = labels.size();
      std::sort( labels.begin(), labels.end() );
      labels.erase( std::unique( labels.begin(), labels.end() ), labels.end() );
      json_.member( "total-labels", labels.size() );
      json_.member( "total-fec-label-bindings", bindings );
   } );
}

void SpeakerWriter::writeCounts( char const * name, LdpSessionStatistics const & statistics, bool sent,
                                 std::uint64_t octets ) {
   constexpr std::pair< char const *, LdpMsgType > types[] = {
      { "address", LdpAddress },
      { "address-withdraw", LdpAddressWithdraw },
      { "initialization", LdpInit },
      { "keepalive", LdpKeepAlive },
      { "label-abort-request", LdpLabelAbortReq },
      { "label-mapping", LdpLabelMapping },
      { "label-release", LdpLabelRelease },
      { "label-request", LdpLabelRequest },
      { "label-withdraw", LdpLabelWithdraw },
      { "notification", LdpNotification },
   };
   within( name, [&] {
      std::uint64_t all = 0;
      auto const sum = [&]( auto const & counts ) {
         for ( auto const & count : counts )
            all += count.value();
      };
      if ( sent ) {
         sum( statistics.ldpMsgTxCountColl() );
      } else {
         sum( statistics.ldpMsgRxCountColl() );
      }
      counter( "total-octets", octets );
      counter( "total-messages", all );
      for ( auto const & [member, type] : types )
         counter( member, sent ? statistics.ldpMsgTxCount( type ) : statistics.ldpMsgRxCount( type ) );
   } );
}

} // namespace

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
