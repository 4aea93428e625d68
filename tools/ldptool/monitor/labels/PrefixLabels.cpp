// What label messages say of prefixes.
#include "monitor/labels/PrefixLabels.h"

#include <vector>

namespace LdpTool::PrefixLabels {

using namespace Ldp;
using Fec = Mpls::FwdEqvClass;
using Lumo::MplsLabel;

namespace {

/// One end of a session with its state of one FEC. The state is null where nothing was ever said.
struct FecEnd {
   FecEnd( SessionEnd & e, Fec const & f ) : end( e ), fec( f ), model( e.agent.status() ) {
      state = model.ldpFecSessionStatusColl()->fecSessionStatus( id() );
   }

   /// Looked up only where something changes: most messages repeat what is known.
   LdpFecConfig & config() {
      if ( !config_ ) config_ = model.ldpFecConfigColl()->fecConfigIs( fec );
      return *config_;
   }

   LdpFecSessionId id() const { return LdpFecSessionId( fec, end.id ); }

   /// Makes the state if there is none.
   void create() {
      if ( state ) return;
      config().membershipIs( fecMemberSessionSm, true );
      config().sessionMemberIs( end.id, true );
      auto const coll = model.ldpFecSessionStatusColl();
      state = coll->fecSessionStatusIs( id() );
      coll->fecSessionStatusBySessionCollIs( end.id )->fecSessionStatusIs( id(), state );
   }

   void drop();
   void dropIfIdle() {
      if ( state && state->localLabelStates() == 0 && state->peerLabelStates() == 0 &&
           state->msgIdReqMsgs() == 0 && !state->localLabelSessionState().peerReqMsgOutstanding() )
         drop();
   }

   void mapSent( MplsLabel label );
   void mapRcvd( MplsLabel label );
   void withdrawSent( MplsLabel label, double now );
   void withdrawRcvd( MplsLabel label );
   void releaseSent( MplsLabel label );
   void releaseRcvd( MplsLabel label );
   void localLabelGone( MplsLabel label );
   void peerLabelGone( MplsLabel label );
   void rebind( Mpls::LabelBindingTable & bindings, MplsLabel gone, AnyLabel left );
   void requestAnswered( U32 msgId );

   /// The labels in either collection of states that the message names.
   template< class Labels >
   static std::vector< MplsLabel > named( Labels const & labels, AnyLabel label ) {
      std::vector< MplsLabel > found;
      for ( MplsLabel each : sortedKeys( labels ) )
         if ( names( label, each ) ) found.push_back( each );
      return found;
   }
   /// A FEC has one label, or two while one takes the other's place. Each change goes through all of them, so
   /// a peer that never stops is not followed.
   bool hasTooManyLabels() const {
      constexpr U32 most = 1024;
      return state && state->localLabelStates() >= most;
   }
   bool anyLocal( LdpLocalLabelState which ) const {
      for ( auto const & node : state->localLabelStateColl() )
         if ( node.value() == which ) return true;
      return false;
   }
   bool anyPeer( LdpPeerLabelState which ) const {
      for ( auto const & node : state->peerLabelStateColl() )
         if ( node.value() == which ) return true;
      return false;
   }

   /// Changes some bits of a state word.
   template< class Change >
   void localWord( Change const & change ) {
      auto word = state->localLabelSessionState();
      word.localLabelSessionMembershipIs( true );
      change( word );
      state->localLabelSessionStateIs( word );
   }
   template< class Change >
   void peerWord( Change const & change ) {
      auto word = state->peerLabelSessionState();
      word.peerLabelSessionMembershipIs( true );
      change( word );
      state->peerLabelSessionStateIs( word );
   }

   SessionEnd & end;
   Fec const fec;
   Status & model;
   Vorn::Ptr< LdpFecSessionStatus > state;

 private:
   Vorn::Ptr< LdpFecConfig > config_;
};

void FecEnd::mapSent( MplsLabel label ) {
   create();
   if ( state->localLabelState( label ) == mappingSent ) return;
   state->localLabelStateIs( label, mappingSent );
   state->withdrawLabelDel( label );
   config().mplsLabelSet()->mplsLabelIs( label, true );
   config().advertisedTo()->ldpIdentifierIs( end.peer() );
   model.localLabelBindingTable()->labelBindingIs( fec, label );
   model.index()->labelToFecIs( label )->fecIs( fec );
   localWord( []( auto & word ) { word.localMappingSentIs( true ); } );
}

void FecEnd::mapRcvd( MplsLabel label ) {
   create();
   if ( state->peerLabelState( label ) == mappingRcvd ) return;
   state->peerLabelStateIs( label, mappingRcvd );
   config().mappedLsrIs( end.peer(), true );
   if ( config().downstreamLsr( end.peer() ) ) config().downstreamLsrMappingAvailIs( true );
   model.peerLabelBindingTableColl()
        ->labelBindingTableIs( routerOf( end.peer() ) )
        ->labelBindingIs( fec, label );
   peerWord( []( auto & word ) {
      word.peerLabelMappingCachedIs( true );
      word.peerNoLabelResourceIs( false );
   } );
}

void FecEnd::withdrawSent( MplsLabel label, double now ) {
   state->localLabelStateIs( label, LdpLocalLabelState::withdrawSent );
   state->withdrawLabelIs( label, now );
   localLabelGone( label );
   localWord( []( auto & word ) { word.peerReleaseOutstandingIs( true ); } );
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
   bool const more = anyPeer( LdpPeerLabelState::withdrawRcvd );
   peerWord( [&]( auto & word ) {
      word.localRelMsgSentIs( true );
      word.peerLabelReleaseMsgOutstandingIs( more );
   } );
}

void FecEnd::releaseRcvd( MplsLabel label ) {
   bool const active = state->localLabelState( label ) == mappingSent;
   state->localLabelStateDel( label );
   state->withdrawLabelDel( label );
   localLabelGone( label );
   bool const more = anyLocal( LdpLocalLabelState::withdrawSent );
   localWord( [&]( auto & word ) {
      if ( active ) word.peerEverSentActiveReleaseIs( true );
      word.peerReleaseOutstandingIs( more );
   } );
}

// The session has the label no longer; the FEC keeps it for as long as another session has it.
void FecEnd::localLabelGone( MplsLabel label ) {
   bool const sent = anyLocal( mappingSent );
   localWord( [&]( auto & word ) { word.localMappingSentIs( sent ); } );
   if ( !sent ) config().advertisedTo()->ldpIdentifierDel( end.peer() );
   for ( auto const & member : config().sessionMemberColl() ) {
      auto const other =
           model.ldpFecSessionStatusColl()->fecSessionStatus( LdpFecSessionId( fec, member.key() ) );
      if ( other && other->localLabelState( label ) == mappingSent ) return;
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
   if ( auto const view = coll->fecSessionStatusBySessionColl( end.id ) ) view->fecSessionStatusDel( id() );
   coll->fecSessionStatusDel( id() );
   state = nullptr;
   config().sessionMemberDel( end.id );
   config().sessionRxReqTimeDel( end.id );
   config().downstreamLsrDel( end.peer() );
   if ( config().sessionMembers() == 0 ) {
      config().membershipDel( fecMemberSessionSm );
      model.ldpFecConfigColl()->fecConfigDel( fec );
      config_ = nullptr;
   }
}

// The speaker's Label Request has its answer.
void FecEnd::requestAnswered( U32 msgId ) {
   state->localLabelRequestMsgIdAckedIs( msgId );
   state->msgIdReqMsgDel( msgId );
   bool const more = state->msgIdReqMsgs() != 0;
   peerWord( [&]( auto & word ) { word.localReqMsgOutstandingIs( more ); } );
   end.statistics->ldpMsgIdFecMappingInfoDel( msgId );
}

void answered( FecEnd & requested, FecEnd & requester, U32 msgId ) {
   if ( requester.state ) requester.requestAnswered( msgId );
   if ( !requested.state ) return;
   requested.state->peerLabelRequestMsgIdAckedIs( msgId );
   requested.localWord( []( auto & word ) { word.peerReqMsgOutstandingIs( false ); } );
}

void onMapping( Exchange const & exchange, FecEnd & sender, FecEnd & receiver, MplsLabel label ) {
   sender.mapSent( label );
   receiver.mapRcvd( label );
   auto const & mapping = static_cast< LdpLabelMappingMsgParser const & >( exchange.message );
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
         sender.withdrawSent( each, exchange.now );
   }
   if ( receiver.state ) {
      for ( MplsLabel each : FecEnd::named( receiver.state->peerLabelStateColl(), label ) )
         receiver.withdrawRcvd( each );
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

// The FECs of the session at that end.
std::vector< Fec > fecsOf( SessionEnd & end ) {
   auto const view = end.agent.status().ldpFecSessionStatusColl()->fecSessionStatusBySessionColl( end.id );
   if ( !view ) return {};
   return sorted( view->fecSessionStatusColl(),
                  []( auto const & node ) { return node.key().fwdEqvClass(); } );
}

} // namespace

void onMessage( Exchange const & exchange, Fec const & fec, AnyLabel label ) {
   FecEnd sender( exchange.sender, fec );
   FecEnd receiver( exchange.receiver, fec );
   LdpMsgType const type = exchange.message.type();
   switch ( type ) {
   case LdpLabelMapping:
      if ( !sender.hasTooManyLabels() ) onMapping( exchange, sender, receiver, *label );
      break;
   case LdpLabelRequest: onRequest( exchange, sender, receiver ); break;
   case LdpLabelWithdraw: onWithdraw( exchange, sender, receiver, label ); break;
   case LdpLabelRelease: onRelease( exchange, sender, receiver, label ); break;
   default: break; // an abort asks; its answer is a notification or the mapping
   }
   if ( sender.state ) sender.state->ldpMsgTxInc( type, 1 );
   if ( receiver.state ) receiver.state->ldpMsgRxInc( type, 1 );
   sender.dropIfIdle();
   receiver.dropIfIdle();
}

void onWildcard( Exchange const & exchange, AnyLabel label ) {
   for ( Fec const & fec : fecsOf( exchange.sender ) )
      onMessage( exchange, fec, label );
}

void onNotification( Exchange const & exchange, LdpStatusTlv const & status ) {
   LdpStatusCode const code = status.statusData();
   if ( code == labelResourcesAvailable ) {
      for ( Fec const & fec : fecsOf( exchange.receiver ) )
         FecEnd( exchange.receiver, fec ).peerWord( []( auto & word ) {
            word.peerNoLabelResourceIs( false );
         } );
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
   }
   requested.dropIfIdle();
   requester.dropIfIdle();
}

void forget( SessionEnd & end ) {
   for ( Fec const & fec : fecsOf( end ) ) {
      FecEnd state( end, fec );
      for ( MplsLabel label : FecEnd::named( state.state->localLabelStateColl(), {} ) ) {
         state.state->localLabelStateDel( label );
         state.localLabelGone( label );
      }
      for ( MplsLabel label : FecEnd::named( state.state->peerLabelStateColl(), {} ) ) {
         state.state->peerLabelStateDel( label );
         state.peerLabelGone( label );
      }
      state.drop();
   }
   end.agent.status().ldpFecSessionStatusColl()->fecSessionStatusBySessionCollDel( end.id );
}

} // namespace LdpTool::PrefixLabels
