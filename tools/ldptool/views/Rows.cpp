// The rows of the tables, from the model.
#include "views/Rows.h"

#include "monitor/speaker/Agent.h"
#include "text/Words.h"

#include <algorithm>
#include <cstdio>
#include <tuple>

namespace LdpTool {

using namespace Ldp;

namespace {

/// Labels that a collection of states has in one state.
template< class States, class State >
std::set< U32 > labelsIn( States const & states, State wanted ) {
   std::set< U32 > labels;
   for ( auto const & node : states )
      if ( node.value() == wanted ) labels.insert( node.key().value() );
   return labels;
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

void addP2mpBindings( std::vector< BindingRow > & rows, Status const & status,
                      LdpP2mpFecState const & fecState ) {
   auto const fec = fecState.p2mpFecId();
   BindingRow row;
   row.root = fec.root();
   row.opaque = hexText( status.p2mpOpaqueTable()->getOpaqueVal( fec.first() ).view() );
   row.fec = "p2mp " + textOf( fec.root() ) + " " + row.opaque;
   row.local = labelsIn( fecState.mplsLabelSet()->mplsLabelColl(), true );
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
      row.peer = peer;
      row.advertised = fecState.advertisedTo()->ldpIdentifier( peer );
      row.remote.clear();
      if ( remote && remote->peerLabelState() == mappingRcvd )
         row.remote.insert( remote->peerLabel().value() );
      row.inUse = !row.remote.empty() && remote->remoteFecSessionInUse();
      rows.push_back( row );
   }
}

/// What a speaker and its peer signal of a pseudowire; either may be null.
struct Configs {
   Vorn::Ptr< PwFecSessionConfig > local;
   Vorn::Ptr< PwFecSessionConfig > remote;
};
/// By peer, number, type.
using PseudowireKey = std::tuple< LdpIdentifier, U32, ::Pseudowire::PseudowireType >;

PseudowireKey keyOf( PwFecSessionId const & id ) {
   return { id.ldpSessionId().peerLdpId(), id.pwFwdEqvClass().pwId().value(), id.pwFwdEqvClass().pwType() };
}

std::optional< PseudowireEnd > endOf( Vorn::Ptr< PwFecSessionConfig > const & config ) {
   if ( !config ) return {};
   return PseudowireEnd{ config->label().value(), config->preferControlWord(), config->fecParams().mtu(),
                         config->pwStatusFlags().value() };
}

std::string faultText( char const * whose, PseudowireEnd const & end ) {
   char text[32];
   std::snprintf( text, sizeof text, "%s fault 0x%x", whose, end.statusFlags );
   return text;
}

} // namespace

std::string labelText( U32 label ) {
   if ( char const * word = reservedLabelWord( Lumo::MplsLabel( label ) ) ) return word;
   return label == Lumo::MplsLabel::null ? "-" : std::to_string( label );
}

std::vector< NeighborRow > neighborsOf( Status const & status, LdpIdentifier const & speaker,
                                        Journal const & journal ) {
   std::map< LdpIdentifier, std::map< LdpAdjId, LdpAdjStatus const * > > adjacencies;
   for ( auto & session : status.ldpSessionStatusColl()->sessionStatusColl() )
      adjacencies[session.ldpSessionId().peerLdpId()];
   for ( auto & adj : status.ldpAdjStatusColl()->adjStatusColl() )
      adjacencies[adj.ldpAdjId().ldpIdentifier()][adj.ldpAdjId()] = &adj;
   std::vector< NeighborRow > rows;
   for ( auto const & [peer, byId] : adjacencies ) {
      NeighborRow & row = rows.emplace_back();
      row.peer = peer;
      for ( auto const & [id, adj] : byId ) {
         bool const targeted = id.adjType() != LdpLinkAdj;
         AdjacencyRow & added = row.adjacencies.emplace_back();
         added.targeted = targeted;
         added.link = targeted ? textOf( id.targetIpAddr() ) : textOf( id.intfId() );
         added.helloFrom = adj->peerSrcIpAddr();
         if ( adj->adjExpireTime() != 0.0 ) added.holdLeft = adj->adjExpireTime() - journal.now();
      }
      if ( auto const session = status.ldpSessionStatusColl()->sessionStatus( LdpSessionId( peer ) ) ) {
         row.session = stateName( session->sessionState() );
         row.oneSided = session->sessionUptime() != 0.0 && journal.oneSided( speaker, peer );
         if ( session->sessionStateLastChange() != 0.0 ) row.since = session->sessionStateLastChange();
         row.lastDown = journal.lastDown( speaker, peer );
      }
      if ( auto const config = status.ldpSessionConfigColl()->sessionConfig( LdpSessionId( peer ) ) ) {
         LdpSessionRole const role = config->ldpSessionRole();
         row.role = role == roleActive ? "active" : role == rolePassive ? "passive" : nullptr;
      }
   }
   return rows;
}

std::vector< Mpls::FwdEqvClass > prefixesOf( Status const & status,
                                             std::optional< Lumo::IpGenPrefix > const & within ) {
   std::vector< Mpls::FwdEqvClass > fecs;
   for ( auto & config : status.ldpFecConfigColl()->fecConfigColl() ) {
      if ( !within || isWithin( config.fwdEqvClass().prefix(), *within ) )
         fecs.push_back( config.fwdEqvClass() );
   }
   std::sort( fecs.begin(), fecs.end() );
   return fecs;
}

std::vector< BindingRow > bindingsOfFec( Status const & status, Mpls::FwdEqvClass const & fec ) {
   std::vector< BindingRow > rows;
   auto const config = status.ldpFecConfigColl()->fecConfig( fec );
   BindingRow row;
   row.fec = textOf( fec );
   row.local = labelsIn( config->mplsLabelSet()->mplsLabelColl(), true );
   for ( LdpSessionId const & session : sortedKeys( config->sessionMemberColl() ) ) {
      auto const state =
           status.ldpFecSessionStatusColl()->fecSessionStatus( LdpFecSessionId( fec, session ) );
      row.peer = session.peerLdpId();
      row.advertised = config->advertisedTo()->ldpIdentifier( row.peer );
      row.sent = labelsIn( state->localLabelStateColl(), mappingSent );
      row.remote = labelsIn( state->peerLabelStateColl(), mappingRcvd );
      row.inUse = state->isNexthopLsr() && !row.remote.empty();
      rows.push_back( row );
   }
   return rows;
}

std::vector< BindingRow > bindingsOf( Status const & status,
                                      std::optional< Lumo::IpGenPrefix > const & within ) {
   std::vector< BindingRow > rows;
   for ( auto const & fec : prefixesOf( status, within ) )
      for ( BindingRow & row : bindingsOfFec( status, fec ) )
         rows.push_back( std::move( row ) );
   if ( within ) return rows;
   std::map< Mpls::FwdEqvClass, LdpP2mpFecState const * > p2mp;
   for ( auto & state : status.p2mpFecStateColl()->p2mpFecStateColl() )
      p2mp[state.p2mpFecId()] = &state;
   for ( auto const & [fec, state] : p2mp )
      addP2mpBindings( rows, status, *state );
   return rows;
}

std::string PseudowireRow::status() const {
   if ( !remote ) return "no remote label";
   if ( !local ) return "no local label";
   if ( local->mtu != remote->mtu ) return "MTU differs";
   if ( local->controlWord != remote->controlWord ) return "C bit differs";
   if ( local->statusFlags ) return faultText( "local", *local );
   if ( remote->statusFlags ) return faultText( "remote", *remote );
   return "up";
}

std::vector< PseudowireRow > pseudowiresOf( Status const & status ) {
   std::map< PseudowireKey, Configs > pseudowires;
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
   std::vector< PseudowireRow > rows;
   for ( auto const & [key, configs] : pseudowires )
      rows.push_back( { std::get< 0 >( key ), std::get< 1 >( key ), std::get< 2 >( key ),
                        endOf( configs.local ), endOf( configs.remote ) } );
   return rows;
}

} // namespace LdpTool
