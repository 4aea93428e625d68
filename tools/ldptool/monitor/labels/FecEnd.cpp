// The life of a label, at either end.
#include "monitor/labels/FecEnd.h"

#include "monitor/labels/CompactFec.h"

#include <algorithm>

namespace LdpTool::PrefixLabels {

using namespace Ldp;
using Lumo::MplsLabel;

void FecEnd::mapSent( MplsLabel label ) {
   create();
   if ( state->localLabelState( label ) == mappingSent ) return;
   noteBound();
   noteIn( end.mapped );
   state->localLabelStateIs( label, mappingSent );
   state->withdrawLabelDel( label );
   config().mplsLabelSet()->mplsLabelIs( label, true );
   config().advertisedTo()->ldpIdentifierIs( end.peer() );
   if ( !end.agent.compact() ) model.localLabelBindingTable()->labelBindingIs( fec, label );
   model.index()->labelToFecIs( label )->fecIs( fec );
   bool const outstanding = isReleaseOutstanding();
   localWord( [&]( auto & word ) {
      word.localMappingSentIs( true );
      word.peerReleaseOutstandingIs( outstanding );
   } );
}

void FecEnd::mapRcvd( MplsLabel label ) {
   create();
   if ( end.stale.erase( fec ) ) {
      config().membershipDel( fecMemberSessionGr );
      dropPeerLabels( label ); // another label than before the restart
   }
   if ( state->peerLabelState( label ) == mappingRcvd ) return;
   noteBound();
   noteIn( end.held );
   state->peerLabelStateIs( label, mappingRcvd );
   state->localLabelActivelyReleasedIs( false );
   config().mappedLsrIs( end.peer(), true );
   if ( config().downstreamLsr( end.peer() ) ) config().downstreamLsrMappingAvailIs( true );
   if ( !end.agent.compact() )
      model.peerLabelBindingTableColl()
           ->labelBindingTableIs( routerOf( end.peer() ) )
           ->labelBindingIs( fec, label );
   bool const withdrawn = anyPeer( LdpPeerLabelState::withdrawRcvd );
   bool const more = withdrawn || anyPeer( releaseGen );
   peerWord( [&]( auto & word ) {
      word.peerLabelMappingCachedIs( true );
      word.peerNoLabelResourceIs( false );
      word.localRelMsgSentIs( false );
      word.peerLabelWithdrawMsgRcvdIs( withdrawn );
      word.peerLabelReleaseMsgOutstandingIs( more );
   } );
}

// An unsolicited mapping takes the place of the label before it, which the receiver releases (RFC 5036,
// A.1.2, LMp.10). A request's answer is one more (note 6 there).
void FecEnd::replaceSent( MplsLabel label ) {
   if ( !state || state->localLabelStates() == state->localLabelStateHas( label ) ) return;
   for ( MplsLabel each : named( state->localLabelStateColl(), {} ) ) {
      if ( each == label || state->localLabelState( each ) != mappingSent ) continue;
      state->localLabelStateIs( each, noneSent );
      localLabelGone( each );
      localWord( []( auto & word ) { word.peerReleaseOutstandingIs( true ); } );
   }
}

void FecEnd::replaceRcvd( MplsLabel label ) {
   if ( !state || state->peerLabelStates() == state->peerLabelStateHas( label ) ) return;
   for ( MplsLabel each : named( state->peerLabelStateColl(), {} ) ) {
      if ( each == label || state->peerLabelState( each ) != mappingRcvd ) continue;
      state->peerLabelStateIs( each, releaseGen );
      peerLabelGone( each );
      peerWord( []( auto & word ) { word.peerLabelReleaseMsgOutstandingIs( true ); } );
   }
}

void FecEnd::withdrawSent( MplsLabel label, double now ) {
   state->localLabelStateIs( label, LdpLocalLabelState::withdrawSent );
   state->withdrawLabelIs( label, now );
   localLabelGone( label );
   localWord( []( auto & word ) { word.peerReleaseOutstandingIs( true ); } );
}

bool FecEnd::isReleaseOutstanding() const {
   return anyLocal( LdpLocalLabelState::withdrawSent ) || anyLocal( noneSent );
}

void FecEnd::dropPeerLabels( AnyLabel but ) {
   for ( MplsLabel each : named( state->peerLabelStateColl(), {} ) ) {
      if ( but && each == *but ) continue;
      state->peerLabelStateDel( each );
      peerLabelGone( each );
   }
}

/// The model's object, for as long as it is worked on.
void FecEnd::makeState() {
   auto const known = end.compactFecs.find( fec );
   if ( known == end.compactFecs.end() ) return;
   state = model.ldpFecSessionStatusColl()->fecSessionStatusIs( id() );
   expand( known->second, *state );
}

void FecEnd::keepState() {
   end.compactFecs[fec] = compact( *state );
   model.ldpFecSessionStatusColl()->fecSessionStatusDel( id() );
}

std::size_t fecNum( SessionEnd & end ) {
   if ( end.agent.compact() ) return end.compactFecs.size();
   auto const view = end.agent.status().ldpFecSessionStatusColl()->fecSessionStatusBySessionColl( end.id );
   return view ? view->fecSessionStatuss() : 0;
}

std::vector< Fec > fecsOf( SessionEnd & end ) {
   if ( end.agent.compact() ) {
      std::vector< Fec > fecs;
      for ( auto const & [fec, octets] : end.compactFecs )
         fecs.push_back( fec );
      std::sort( fecs.begin(), fecs.end() );
      return fecs;
   }
   auto const view = end.agent.status().ldpFecSessionStatusColl()->fecSessionStatusBySessionColl( end.id );
   if ( !view ) return {};
   return sorted( view->fecSessionStatusColl(),
                  []( auto const & node ) { return node.key().fwdEqvClass(); } );
}

// Remembers the FEC as one that the next wildcard is about. Who maps and withdraws one FEC again and again
// does not make the list longer than twice what is there.
void FecEnd::noteIn( std::optional< std::vector< Fec > > & list ) {
   if ( !list ) return;
   list->push_back( fec );
   constexpr std::size_t few = 64;
   if ( list->size() < 2 * fecNum( end ) + few ) return;
   std::sort( list->begin(), list->end() );
   list->erase( std::unique( list->begin(), list->end() ), list->end() );
}

void FecEnd::withdrawRcvd( MplsLabel label ) {
   state->peerLabelStateIs( label, LdpPeerLabelState::withdrawRcvd );
   peerLabelGone( label );
   peerWord( []( auto & word ) {
      word.peerLabelWithdrawMsgRcvdIs( true );
      word.peerLabelReleaseMsgOutstandingIs( true );
   } );
}

void FecEnd::releaseSent( MplsLabel label ) {
   state->localLabelActivelyReleasedIs( state->peerLabelState( label ) == mappingRcvd );
   state->peerLabelStateDel( label );
   peerLabelGone( label );
   bool const withdrawn = anyPeer( LdpPeerLabelState::withdrawRcvd );
   bool const more = withdrawn || anyPeer( releaseGen );
   peerWord( [&]( auto & word ) {
      word.localRelMsgSentIs( true );
      word.peerLabelWithdrawMsgRcvdIs( withdrawn );
      word.peerLabelReleaseMsgOutstandingIs( more );
   } );
}

void FecEnd::releaseRcvd( MplsLabel label ) {
   bool const active = state->localLabelState( label ) == mappingSent;
   if ( active )
      end.agent.journal().releasedIs( end.agent.id(), end.peer(), std::string( fec.stringValue().view() ) );
   state->localLabelStateDel( label );
   state->withdrawLabelDel( label );
   localLabelGone( label );
   bool const more = isReleaseOutstanding();
   localWord( [&]( auto & word ) {
      if ( active ) word.peerEverSentActiveReleaseIs( true );
      word.peerReleaseOutstandingIs( more );
   } );
}

// The session has the label no longer; the FEC keeps it for as long as another session has it.
void FecEnd::localLabelGone( MplsLabel label ) {
   noteBound();
   bool const sent = anyLocal( mappingSent );
   localWord( [&]( auto & word ) { word.localMappingSentIs( sent ); } );
   if ( !sent ) config().advertisedTo()->ldpIdentifierDel( end.peer() );
   for ( auto const & member : config().sessionMemberColl() ) {
      if ( member.key() == end.id ) continue; // it has just gone there
      FecEnd const other( end.agent.sessionEnd( member.key().peerLdpId() ), fec );
      if ( other.state && other.state->localLabelState( label ) == mappingSent ) return;
   }
   config().mplsLabelSet()->mplsLabelDel( label );
   if ( auto const users = model.index()->labelToFec( label ) ) {
      users->fecDel( fec );
      if ( users->fecs() == 0 ) model.index()->labelToFecDel( label );
   }
   auto const left = sortedKeys( config().mplsLabelSet()->mplsLabelColl() );
   rebind( *model.localLabelBindingTable(), label, left.empty() ? AnyLabel() : AnyLabel( left.front() ) );
}

void FecEnd::peerLabelGone( MplsLabel label ) {
   noteBound();
   bool const cached = anyPeer( mappingRcvd );
   peerWord( [&]( auto & word ) { word.peerLabelMappingCachedIs( cached ); } );
   if ( !cached ) {
      config().mappedLsrDel( end.peer() );
      if ( config().downstreamLsr( end.peer() ) ) config().downstreamLsrMappingAvailIs( false );
   }
   AnyLabel left;
   for ( auto const & node : state->peerLabelStateColl() )
      if ( node.value() == mappingRcvd && ( !left || node.key() < *left ) ) left = node.key();
   auto const bindings = model.peerLabelBindingTableColl()->labelBindingTable( routerOf( end.peer() ) );
   if ( bindings ) rebind( *bindings, label, left );
}

// A table has room for one label of each FEC, though several can be in force for a while.
void FecEnd::rebind( Mpls::LabelBindingTable & bindings, MplsLabel gone, AnyLabel left ) {
   if ( !bindings.labelBindingHas( fec ) || bindings.labelBinding( fec ) != gone ) return;
   if ( left ) {
      bindings.labelBindingIs( fec, *left );
   } else {
      bindings.labelBindingDel( fec );
   }
}

// Nothing is left to be said about the FEC on this session: it goes from the session's view first, then from
// its owner, and the FEC itself goes with its last session.
void FecEnd::drop() {
   auto const coll = model.ldpFecSessionStatusColl();
   end.compactFecs.erase( fec );
   end.refused.erase( fec );
   if ( auto const view = coll->fecSessionStatusBySessionColl( end.id ) ) view->fecSessionStatusDel( id() );
   coll->fecSessionStatusDel( id() );
   state = nullptr;
   if ( end.stale.erase( fec ) ) config().membershipDel( fecMemberSessionGr );
   config().sessionMemberDel( end.id );
   config().sessionRxReqTimeDel( end.id );
   config().downstreamLsrDel( end.peer() );
   if ( config().sessionMembers() == 0 ) {
      config().membershipDel( fecMemberSessionSm );
      model.ldpFecConfigColl()->fecConfigDel( fec );
      config_ = nullptr;
   }
}

bool FecEnd::isBound() {
   if ( !config_ ) config_ = model.ldpFecConfigColl()->fecConfig( fec );
   return config_ && ( config_->mplsLabelSet()->mplsLabels() != 0 || config_->mappedLsrs() != 0 );
}

void FecEnd::noteBound() {
   if ( end.agent.journal().listener() && !wasBound_ ) wasBound_ = isBound();
}

void FecEnd::tellChange() {
   if ( !wasBound_ ) return;
   bool const bound = isBound();
   if ( bound != *wasBound_ ) end.agent.journal().listener()->onFec( end.agent.id(), fec, bound );
   wasBound_.reset();
}

// The speaker's Label Request has its answer.
void FecEnd::requestAnswered( U32 msgId ) {
   state->localLabelRequestMsgIdAckedIs( msgId );
   state->msgIdReqMsgDel( msgId );
   bool const more = state->msgIdReqMsgs() != 0;
   peerWord( [&]( auto & word ) { word.localReqMsgOutstandingIs( more ); } );
   end.statistics->ldpMsgIdFecMappingInfoDel( msgId );
}

} // namespace LdpTool::PrefixLabels
