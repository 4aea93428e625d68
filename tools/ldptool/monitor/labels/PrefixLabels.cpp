// What label messages say of prefixes.
#include "monitor/labels/PrefixLabels.h"

#include "monitor/labels/CompactFec.h"
#include "monitor/labels/FecEnd.h"

#include <algorithm>

namespace LdpTool::PrefixLabels {

using namespace Ldp;
using Lumo::MplsLabel;

namespace {

void answered( FecEnd & requested, FecEnd & requester, U32 msgId ) {
   if ( requester.state ) requester.requestAnswered( msgId );
   if ( !requested.state ) return;
   requested.state->peerLabelRequestMsgIdAckedIs( msgId );
   requested.localWord( []( auto & word ) { word.peerReqMsgOutstandingIs( false ); } );
}

void onMapping( Exchange const & exchange, FecEnd & sender, FecEnd & receiver, MplsLabel label ) {
   auto const & mapping = static_cast< LdpLabelMappingMsgParser const & >( exchange.message );
   if ( !mapping.msgReqMsgIdTlv() ) {
      sender.replaceSent( label );
      receiver.replaceRcvd( label );
   }
   sender.mapSent( label );
   receiver.mapRcvd( label );
   if ( mapping.msgReqMsgIdTlv() ) answered( sender, receiver, mapping.msgReqMsgIdTlv()->reqMsgId() );
}

// A request goes to the next hop of its FEC (RFC 5036, A.1): the one sign of a next hop that messages give.
void onRequest( Exchange const & exchange, FecEnd & sender, FecEnd & receiver ) {
   U32 const msgId = exchange.message.msgId();
   sender.create();
   sender.config().downstreamLsrIs( sender.end.peer(), true );
   sender.state->isNexthopLsrIs( true );
   sender.state->localLabelRequestMsgIdIs( msgId );
   sender.state->msgIdReqMsgIs( msgId, true );
   sender.peerWord( []( auto & word ) { word.localReqMsgOutstandingIs( true ); } );
   sender.end.statistics->ldpMsgIdFecMappingInfoIs(
        msgId, LdpMsgIdFecMappingInfo( sender.fec, LdpLabelRequest, true ) );
   receiver.create();
   receiver.config().sessionRxReqTimeIs( receiver.end.id, exchange.now );
   receiver.state->peerLabelRequestMsgIdIs( msgId );
   receiver.localWord( []( auto & word ) { word.peerReqMsgOutstandingIs( true ); } );
}

void onWithdraw( Exchange const & exchange, FecEnd & sender, FecEnd & receiver, AnyLabel label ) {
   if ( sender.state ) {
      for ( MplsLabel each : FecEnd::named( sender.state->localLabelStateColl(), label ) )
         if ( sender.state->localLabelState( each ) == mappingSent )
            sender.withdrawSent( each, exchange.now );
   }
   if ( receiver.state ) {
      for ( MplsLabel each : FecEnd::named( receiver.state->peerLabelStateColl(), label ) )
         if ( receiver.state->peerLabelState( each ) == mappingRcvd ) receiver.withdrawRcvd( each );
   }
}

void onRelease( Exchange const & exchange, FecEnd & sender, FecEnd & receiver, AnyLabel label ) {
   if ( sender.state ) {
      sender.state->localLabelReleaseMsgIdIs( exchange.message.msgId() );
      for ( MplsLabel each : FecEnd::named( sender.state->peerLabelStateColl(), label ) )
         sender.releaseSent( each );
   }
   if ( receiver.state ) {
      for ( MplsLabel each : FecEnd::named( receiver.state->localLabelStateColl(), label ) )
         receiver.releaseRcvd( each );
   }
}

// A mapping of what both ends have already, as nearly all are where routers repeat themselves: nothing
// changes but the numbers of messages, which a compact state does not have.
bool repeats( Exchange const & exchange, Fec const & fec, MplsLabel label ) {
   auto const & mapping = static_cast< LdpLabelMappingMsgParser const & >( exchange.message );
   if ( !exchange.sender.agent.compact() || mapping.msgReqMsgIdTlv() || !exchange.receiver.stale.empty() )
      return false;
   auto const sent = exchange.sender.compactFecs.find( fec );
   if ( sent == exchange.sender.compactFecs.end() || !hasSentOnly( sent->second, label ) ) return false;
   auto const got = exchange.receiver.compactFecs.find( fec );
   return got != exchange.receiver.compactFecs.end() && hasGotOnly( got->second, label );
}

bool hasRoom( FecEnd const & end ) { return end.state || fecNum( end.end ) < end.end.agent.limits().fecs; }

} // namespace

void onMessage( Exchange const & exchange, Fec const & fec, AnyLabel label ) {
   LdpMsgType const type = exchange.message.type();
   if ( type == LdpLabelMapping && repeats( exchange, fec, *label ) ) return;
   FecEnd sender( exchange.sender, fec );
   FecEnd receiver( exchange.receiver, fec );
   if ( ( type == LdpLabelMapping || type == LdpLabelRequest ) &&
        !( hasRoom( sender ) && hasRoom( receiver ) && !sender.hasTooMuch() ) ) {
      ++exchange.sender.agent.turnedAway().fecs;
      return;
   }
   switch ( type ) {
   case LdpLabelMapping: onMapping( exchange, sender, receiver, *label ); break;
   case LdpLabelRequest: onRequest( exchange, sender, receiver ); break;
   case LdpLabelWithdraw: onWithdraw( exchange, sender, receiver, label ); break;
   case LdpLabelRelease: onRelease( exchange, sender, receiver, label ); break;
   default: break; // an abort asks; its answer is a notification or the mapping
   }
   sender.sent( type );
   receiver.received( type );
   sender.dropIfIdle();
   receiver.dropIfIdle();
}

// A withdraw is about what its sender has mapped, a release about what its sender has got. What the last
// wildcard took is not looked at again. One with a label goes by the label, whose owner has an index of them.
void onWildcard( Exchange const & exchange, AnyLabel label, Lumo::AddressFamily family ) {
   bool const release = exchange.message.type() == LdpLabelRelease;
   auto const meant = [&]( Fec const & fec ) {
      return family == Lumo::noFamily || fec.prefix().address().family() == family;
   };
   auto & waiting = release ? exchange.sender.held : exchange.sender.mapped;
   if ( !waiting ) waiting = fecsOf( exchange.sender );
   std::vector< Fec > fecs;
   if ( label ) {
      SessionEnd & owner = release ? exchange.receiver : exchange.sender;
      if ( auto const users = owner.agent.status().index()->labelToFec( *label ) )
         fecs = sortedKeys( users->fecColl() );
      // Withdrawn labels are not in the index, but are still to be released.
      if ( release ) fecs.insert( fecs.end(), waiting->begin(), waiting->end() );
      std::erase_if( fecs, [&]( Fec const & fec ) { return !meant( fec ); } );
   } else {
      auto & list = *waiting;
      auto const others = std::stable_partition( list.begin(), list.end(), meant );
      fecs.assign( list.begin(), others );
      list.erase( list.begin(), others );
   }
   std::sort( fecs.begin(), fecs.end() );
   fecs.erase( std::unique( fecs.begin(), fecs.end() ), fecs.end() );
   for ( Fec const & fec : fecs )
      onMessage( exchange, fec, label );
}

void onNotification( Exchange const & exchange, LdpStatusTlv const & status ) {
   LdpStatusCode const code = status.statusData();
   if ( code == labelResourcesAvailable ) {
      for ( Fec const & fec : std::exchange( exchange.receiver.refused, {} ) ) {
         FecEnd requester( exchange.receiver, fec );
         if ( requester.state )
            requester.peerWord( []( auto & word ) { word.peerNoLabelResourceIs( false ); } );
      }
   }
   auto const info = exchange.receiver.statistics->ldpMsgIdFecMappingInfo( status.msgId() );
   if ( !info.valid() ) return;
   FecEnd requested( exchange.sender, info.fwdEqvClass() );
   FecEnd requester( exchange.receiver, info.fwdEqvClass() );
   answered( requested, requester, status.msgId() );
   if ( code == noRoute && requested.state ) requested.state->flagNoRouteNotificationIs( true );
   if ( code == noLabelResources && requester.state ) {
      requester.state->peerNoLabelResourceCountIs( requester.state->peerNoLabelResourceCount() + 1 );
      requester.peerWord( []( auto & word ) { word.peerNoLabelResourceIs( true ); } );
      exchange.receiver.refused.insert( requester.fec );
   }
   requested.dropIfIdle();
   requester.dropIfIdle();
}

void forget( SessionEnd & end, bool keepsPeerLabels ) {
   for ( Fec const & fec : fecsOf( end ) ) {
      FecEnd state( end, fec );
      for ( MplsLabel label : FecEnd::named( state.state->localLabelStateColl(), {} ) ) {
         state.state->localLabelStateDel( label );
         state.localLabelGone( label );
      }
      for ( MplsLabel label : FecEnd::named( state.state->peerLabelStateColl(), {} ) ) {
         if ( keepsPeerLabels && state.state->peerLabelState( label ) == mappingRcvd ) continue;
         state.state->peerLabelStateDel( label );
         state.peerLabelGone( label );
      }
      if ( state.state->peerLabelStates() == 0 ) {
         state.drop();
         continue;
      }
      end.stale.insert( fec );
      state.config().membershipIs( fecMemberSessionGr, true );
   }
   end.mapped.reset();
   end.held.reset();
   end.refused.clear();
   if ( !end.stale.empty() ) end.mapped.emplace(), end.held.emplace(); // what is stale is not meant
   if ( end.stale.empty() && !end.agent.compact() )
      end.agent.status().ldpFecSessionStatusColl()->fecSessionStatusBySessionCollDel( end.id );
}

void forgetStale( SessionEnd & end ) {
   for ( Fec const & fec : std::exchange( end.stale, {} ) ) {
      FecEnd state( end, fec );
      if ( !state.state ) continue;
      state.config().membershipDel( fecMemberSessionGr );
      state.dropPeerLabels( {} );
      state.dropIfIdle();
   }
}

} // namespace LdpTool::PrefixLabels
