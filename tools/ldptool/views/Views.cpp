// The tables that an operator knows from a router.
#include "views/Views.h"

#include "monitor/speaker/Agent.h"
#include "text/Table.h"
#include "text/Words.h"

#include <cmath>
#include <set>
#include <tuple>

namespace LdpTool {

using namespace Ldp;

namespace {

using Addr = Lumo::IpGenAddr;

/// hh:mm:ss, behind the days if there are any.
std::string durationText( double seconds ) {
   constexpr std::int64_t secondsOfDay = 86400;
   auto const whole = std::int64_t( std::max( seconds, 0.0 ) );
   char text[48];
   std::snprintf( text, sizeof text, "%02d:%02d:%02d", int( whole % secondsOfDay / 3600 ),
                  int( whole / 60 % 60 ), int( whole % 60 ) );
   std::string const days = whole < secondsOfDay ? "" : std::to_string( whole / secondsOfDay ) + "d ";
   return days + text;
}

/// A label as routers print it.
std::string labelText( Lumo::MplsLabel label ) {
   if ( char const * word = reservedLabelWord( label ) ) return word;
   return label.value() == Lumo::MplsLabel::null ? "-" : std::to_string( label.value() );
}

/// Labels that a collection of states has in one state, with commas between them.
template< class States, class State >
std::string labelsIn( States const & states, State wanted ) {
   std::set< U32 > labels;
   for ( auto const & node : states )
      if ( node.value() == wanted ) labels.insert( node.key().value() );
   std::string text;
   for ( U32 label : labels )
      text.append( text.empty() ? "" : "," ).append( labelText( Lumo::MplsLabel( label ) ) );
   return text.empty() ? "-" : text;
}

std::string yes( bool is, char const * otherwise = "no" ) { return is ? "yes" : otherwise; }

/// What two ends say, once if they say the same.
std::string both( std::string const & local, std::string const & remote ) {
   return local == remote ? local : local + "/" + remote;
}

/// `empty` says what it means that the table has no rows.
void printTable( Output & out, LdpIdentifier const & speaker, Table const & table, char const * empty ) {
   out << "speaker " << textOf( speaker ) << '\n';
   if ( table.empty() ) {
      out << "  " << empty << '\n';
   } else {
      table.print( out, 2 );
   }
}

void tellIfNobody( Output & out, Network const & network ) {
   if ( network.speakers() == 0 ) out << "no speaker: no good hello or session message was seen\n";
}

std::string adjacencyText( LdpAdjId const & id ) {
   return id.adjType() == LdpLinkAdj ? textOf( id.intfId() ) : "target " + textOf( id.targetIpAddr() );
}

char const * roleName( LdpSessionRole role ) {
   return role == roleActive ? "active" : role == rolePassive ? "passive" : "-";
}

/// How long a session has been what it is, and how it ended last.
void addSession( Table::Row & row, LdpSessionStatus const & session, LdpIdentifier const & speaker,
                 Journal const & journal ) {
   LdpIdentifier const peer = session.ldpSessionId().peerLdpId();
   row[4] = stateName( session.sessionState() );
   if ( session.sessionUptime() != 0.0 && journal.oneSided( speaker, peer ) ) row[4] += ", one side seen";
   if ( session.sessionStateLastChange() != 0.0 )
      row[5] = durationText( journal.now() - session.sessionStateLastChange() );
   if ( auto const down = journal.lastDown( speaker, peer ) )
      row[7] = timeText( down->at ).substr( 0, sizeof "hh:mm:ss" - 1 ) + " " + down->cause;
}

void addNeighbor( Table & table, Status const & status, LdpIdentifier const & speaker,
                  LdpIdentifier const & peer, std::vector< LdpAdjStatus const * > const & adjacencies,
                  Journal const & journal ) {
   auto const session = status.ldpSessionStatusColl()->sessionStatus( LdpSessionId( peer ) );
   auto const config = status.ldpSessionConfigColl()->sessionConfig( LdpSessionId( peer ) );
   Table::Row row{
      textOf( peer ), "-", "-", "-", "-", "-", config ? roleName( config->ldpSessionRole() ) : "-", "-"
   };
   if ( session ) addSession( row, *session, speaker, journal );
   for ( auto const * adj : adjacencies ) {
      row[1] = adjacencyText( adj->ldpAdjId() );
      row[2] = textOf( adj->peerSrcIpAddr() );
      row[3] =
           adj->adjExpireTime() == 0.0
                ? "infinite"
                : std::to_string( std::int64_t( std::ceil( adj->adjExpireTime() - journal.now() ) ) ) + " s";
      table.add( row );
      row.assign( row.size(), "" );
   }
   if ( adjacencies.empty() ) table.add( row );
}

bool lies( Lumo::IpGenPrefix const & prefix, Lumo::IpGenPrefix const & within ) {
   if ( prefix.address().family() != within.address().family() || prefix.len() < within.len() ) return false;
   return within == ( prefix.address().family() == Lumo::ipv4
                           ? Lumo::IpGenPrefix( prefix.address().ipAddr(), within.len() )
                           : Lumo::IpGenPrefix( prefix.address().ip6Addr(), within.len() ) );
}

std::string hexText( std::string_view octets ) {
   std::string text;
   for ( char const octet : octets ) {
      char digits[3];
      std::snprintf( digits, sizeof digits, "%02x", static_cast< unsigned char >( octet ) );
      text += digits;
   }
   return text;
}

/// The FECs of a VRF that are wanted, in order.
std::set< Mpls::FwdEqvClass > fecsWithin( Status const & status,
                                          std::optional< Lumo::IpGenPrefix > const & within ) {
   std::set< Mpls::FwdEqvClass > fecs;
   for ( auto & config : status.ldpFecConfigColl()->fecConfigColl() ) {
      if ( !within || lies( config.fwdEqvClass().prefix(), *within ) ) fecs.insert( config.fwdEqvClass() );
   }
   return fecs;
}

void addPrefixBinding( Table & table, Status const & status, Mpls::FwdEqvClass const & fec ) {
   auto const config = status.ldpFecConfigColl()->fecConfig( fec );
   std::string name = textOf( fec );
   std::string local = labelsIn( config->mplsLabelSet()->mplsLabelColl(), true );
   std::set< LdpIdentifier > peers;
   for ( auto const & member : config->sessionMemberColl() )
      peers.insert( member.key().peerLdpId() );
   for ( LdpIdentifier const & peer : peers ) {
      auto const state =
           status.ldpFecSessionStatusColl()->fecSessionStatus( LdpFecSessionId( fec, LdpSessionId( peer ) ) );
      std::string const labels = labelsIn( state->peerLabelStateColl(), mappingRcvd );
      table.add( { name, local, textOf( peer ), yes( config->advertisedTo()->ldpIdentifier( peer ) ), labels,
                   yes( state->isNexthopLsr() && labels != "-", "-" ) } );
      name.clear();
      local.clear();
   }
}

void addP2mpBinding( Table & table, Status const & status, LdpP2mpFecState const & fecState ) {
   auto const fec = fecState.p2mpFecId();
   std::string const opaque( status.p2mpOpaqueTable()->getOpaqueVal( fec.first() ).view() );
   std::string name = "p2mp " + textOf( fec.root() ) + " " + hexText( opaque );
   std::string local = labelsIn( fecState.mplsLabelSet()->mplsLabelColl(), true );
   std::set< LdpIdentifier > peers;
   for ( auto const & member : fecState.localSessionMemberColl() )
      peers.insert( member.key().peerLdpId() );
   for ( auto const & member : fecState.remoteSessionMemberColl() )
      peers.insert( member.key().peerLdpId() );
   for ( LdpIdentifier const & peer : peers ) {
      LdpSessionId const session( peer );
      auto const remotes = status.p2mpFecSessionRemoteStateColl()->p2mpFecSessionRemoteStateColl( session );
      auto const remote =
           remotes ? remotes->p2mpFecSessionRemoteState( LdpFecSessionId( fec, session ) ) : nullptr;
      bool const mapped = remote && remote->peerLabelState() == mappingRcvd;
      table.add( { name, local, textOf( peer ), yes( fecState.advertisedTo()->ldpIdentifier( peer ) ),
                   mapped ? labelText( remote->peerLabel() ) : "-",
                   yes( mapped && remote->remoteFecSessionInUse(), "-" ) } );
      name.clear();
      local.clear();
   }
}

/// One pseudowire of a speaker: what it and its peer signal; either may be null.
struct Pseudowire {
   Vorn::Ptr< PwFecSessionConfig > local;
   Vorn::Ptr< PwFecSessionConfig > remote;
};
/// By peer, number, type.
using PseudowireKey = std::tuple< LdpIdentifier, U32, ::Pseudowire::PseudowireType >;

PseudowireKey keyOf( PwFecSessionId const & id ) {
   return { id.ldpSessionId().peerLdpId(), id.pwFwdEqvClass().pwId().value(), id.pwFwdEqvClass().pwType() };
}

/// Those whose mapping is in force.
std::map< PseudowireKey, Pseudowire > pseudowiresOf( Status const & status ) {
   std::map< PseudowireKey, Pseudowire > pseudowires;
   for ( auto & local : status.localPwFecSessionStatusColl()->fecSessionStatusColl() ) {
      auto const & id = local.pwFecSessionId();
      if ( local.mappingActive() )
         pseudowires[keyOf( id )].local = status.localPwFecSessionConfigColl()->fecSessionConfig( id );
   }
   for ( auto & remote : status.remotePwFecSessionStatusColl()->fecSessionStatusColl() ) {
      auto const & id = remote.pwFecSessionId();
      if ( remote.labelSessionState().peerLabelMappingCached() )
         pseudowires[keyOf( id )].remote = status.remotePwFecSessionConfigColl()->fecSessionConfig( id );
   }
   return pseudowires;
}

std::string faultText( char const * whose, PwFecSessionConfig const & config ) {
   char text[32];
   std::snprintf( text, sizeof text, "%s fault 0x%x", whose, config.pwStatusFlags().value() );
   return text;
}

/// Whether the pseudowire can carry traffic, and else the first thing that keeps it from it.
std::string statusText( Pseudowire const & pseudowire ) {
   auto const & [local, remote] = pseudowire;
   if ( !remote ) return "no remote label";
   if ( !local ) return "no local label";
   if ( local->fecParams().mtu() != remote->fecParams().mtu() ) return "MTU differs";
   if ( local->preferControlWord() != remote->preferControlWord() ) return "C bit differs";
   if ( local->pwStatusFlags().value() ) return faultText( "local", *local );
   if ( remote->pwStatusFlags().value() ) return faultText( "remote", *remote );
   return "up";
}

void addPseudowire( Table & table, PseudowireKey const & key, Pseudowire const & pseudowire ) {
   auto const & [peer, pwId, type] = key;
   auto const & [local, remote] = pseudowire;
   auto const label = []( auto const & config ) { return config ? labelText( config->label() ) : "-"; };
   auto const cBit = []( auto const & config ) { return config ? yes( config->preferControlWord() ) : "-"; };
   auto const mtu = []( auto const & config ) {
      return config && config->fecParams().mtu() ? std::to_string( config->fecParams().mtu() ) : "-";
   };
   table.add( { textOf( peer ), std::to_string( pwId ), std::string( valueToStrep( type ).view() ),
                label( local ), label( remote ), both( cBit( local ), cBit( remote ) ),
                both( mtu( local ), mtu( remote ) ), statusText( pseudowire ) } );
}

} // namespace

void printNeighbors( Output & out, Network const & network, Journal const & journal ) {
   tellIfNobody( out, network );
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      std::map< LdpIdentifier, std::map< LdpAdjId, LdpAdjStatus const * > > adjacencies;
      for ( auto & session : status.ldpSessionStatusColl()->sessionStatusColl() )
         adjacencies[session.ldpSessionId().peerLdpId()];
      for ( auto & adj : status.ldpAdjStatusColl()->adjStatusColl() )
         adjacencies[adj.ldpAdjId().ldpIdentifier()][adj.ldpAdjId()] = &adj;
      Table table(
           { "peer", "adjacency", "hello from", "hold left", "session", "since", "role", "last down" } );
      for ( auto const & [peer, byId] : adjacencies ) {
         std::vector< LdpAdjStatus const * > ofPeer;
         for ( auto const & [id, adj] : byId )
            ofPeer.push_back( adj );
         addNeighbor( table, status, speaker, peer, ofPeer, journal );
      }
      printTable( out, speaker, table,
                  "no neighbour: nobody else was heard on its links, and it has no session" );
   } );
}

void printHistory( Output & out, Journal const & journal, std::optional< LdpIdentifier > const & about ) {
   Table table( { "time", "frame", "speaker", "peer", "what", "from", "to", "cause" } );
   for ( Change const & change : journal.changes() ) {
      if ( about && change.speaker != *about && change.peer != *about ) continue;
      table.add( { timeText( change.at ), std::to_string( change.at.frame ), textOf( change.speaker ),
                   textOf( change.peer ), change.subject, change.from, change.to, change.cause } );
   }
   if ( table.empty() ) {
      out << "no changes: no adjacency and no session came or went\n";
   } else {
      table.print( out, 0 );
   }
}

void printBindings( Output & out, Network const & network, Monitor & monitor,
                    std::optional< Lumo::IpGenPrefix > const & within ) {
   tellIfNobody( out, network );
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      Table table( { "FEC", "local", "peer", "advertised", "its label", "in use" } );
      monitor.show( speaker, [&] {
         for ( auto const & fec : fecsWithin( status, within ) )
            addPrefixBinding( table, status, fec );
      } );
      if ( !within ) {
         std::map< Mpls::FwdEqvClass, LdpP2mpFecState const * > p2mp;
         for ( auto & state : status.p2mpFecStateColl()->p2mpFecStateColl() )
            p2mp[state.p2mpFecId()] = &state;
         for ( auto const & [fec, state] : p2mp )
            addP2mpBinding( table, status, *state );
      }
      printTable( out, speaker, table,
                  within ? "no label bindings within the prefix"
                         : "no label bindings: no label was mapped on a session that is up" );
   } );
}

void printPseudowires( Output & out, Network const & network ) {
   tellIfNobody( out, network );
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      Table table( { "peer", "PW ID", "type", "local", "remote", "C bit", "MTU", "status" } );
      for ( auto const & [key, pseudowire] : pseudowiresOf( status ) )
         addPseudowire( table, key, pseudowire );
      printTable( out, speaker, table, "no pseudowires" );
   } );
}

} // namespace LdpTool
