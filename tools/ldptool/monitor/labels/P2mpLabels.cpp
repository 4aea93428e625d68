// What label messages say of P2MP FECs.
#include "monitor/labels/P2mpLabels.h"

#include <vector>

namespace LdpTool::P2mpLabels {

using namespace Ldp;
using Fec = Mpls::FwdEqvClass;
using Lumo::MplsLabel;

namespace {

/// The FEC's value as this speaker has it; the default where it has none. Every speaker numbers the opaque
/// values for itself.
Fec knownFec( SessionEnd & end, LdpP2mpFecElement const & element ) {
   U32 const index = end.agent.status().p2mpOpaqueTable()->getOpaqueIndex( element.opaqueStr() );
   return index == LdpP2mpOpaqueTable::invalidId() ? Fec() : Fec( element.rootIp(), index );
}

Vorn::Ptr< LdpP2mpFecState > fecStateIs( SessionEnd & end, LdpP2mpFecElement const & element ) {
   auto const opaque = end.agent.status().p2mpOpaqueTable();
   Fec const fec( element.rootIp(), opaque->getOrCreateOpaqueIndex( element.opaqueStr() ) );
   auto const states = end.agent.status().p2mpFecStateColl();
   if ( auto const known = states->p2mpFecState( fec ) ) return known;
   opaque->addMembership( fec );
   auto const state = states->p2mpFecStateIs( fec );
   state->isProtocolOperationalIs( true );
   return state;
}

/// What follows from the sessions on both sides. Labels cannot tell a bud, which has receivers of its own,
/// from a transit router, nor a root from a router that has no upstream label yet.
void membersChanged( SessionEnd & end, LdpP2mpFecState & state ) {
   bool const upstream = state.localSessionMembers() != 0;
   bool const downstream = state.remoteSessionMembers() != 0;
   state.p2mpFecRoleIs( upstream && downstream ? transit : upstream ? leaf : LdpP2mpFecRole::unknown );
   auto const because = [&]( LdpP2mpFecStateMembership reason, bool holds ) {
      if ( holds ) {
         state.membershipIs( reason, true );
      } else {
         state.membershipDel( reason );
      }
   };
   because( p2mpFecMemberLocalSession, upstream );
   because( p2mpFecMemberRemoteSession, downstream );
   if ( upstream || downstream ) return;
   Fec const fec = state.p2mpFecId();
   end.agent.status().p2mpFecStateColl()->p2mpFecStateDel( fec );
   end.agent.status().p2mpOpaqueTable()->delMembership( fec );
}

Vorn::Ptr< LdpP2mpFecSessionLocalState > localState( SessionEnd & end, Fec const & fec ) {
   auto const session =
        end.agent.status().p2mpFecSessionLocalStateColl()->p2mpFecSessionLocalStateColl( end.id );
   return session ? session->p2mpFecSessionLocalState( LdpFecSessionId( fec, end.id ) ) : nullptr;
}

Vorn::Ptr< LdpP2mpFecSessionRemoteState > remoteState( SessionEnd & end, Fec const & fec ) {
   auto const session =
        end.agent.status().p2mpFecSessionRemoteStateColl()->p2mpFecSessionRemoteStateColl( end.id );
   return session ? session->p2mpFecSessionRemoteState( LdpFecSessionId( fec, end.id ) ) : nullptr;
}

void localStateIs( LdpP2mpFecSessionLocalState & local, LdpLocalLabelState to ) {
   local.ephemeralState()->activeLabelStateIs( to );
   auto word = local.localLabelSessionState();
   word.localLabelSessionMembershipIs( true );
   word.localMappingSentIs( to == mappingSent );
   word.peerReleaseOutstandingIs( to == withdrawSent );
   local.localLabelSessionStateIs( word );
}

/// The label that the speaker has sent on this session is in force no longer. What it has sent to another
/// upstream stays: while the upstream changes there are two (RFC 6388, 2.4).
void localLabelGone( SessionEnd & end, Fec const & fec, MplsLabel label ) {
   Status & status = end.agent.status();
   auto const bindings = status.p2mpLocalLabelBindingTable();
   bindings->labelBindingDel( fec );
   auto const state = status.p2mpFecStateColl()->p2mpFecState( fec );
   if ( !state ) return;
   state->advertisedTo()->ldpIdentifierDel( end.peer() );
   if ( state->upstreamLsr() == end.peer() ) state->upstreamLsrIs( LdpIdentifier() );
   bool kept = false;
   for ( LdpSessionId const & id : sortedKeys( state->localSessionMemberColl() ) ) {
      auto const session = status.p2mpFecSessionLocalStateColl()->p2mpFecSessionLocalStateColl( id );
      auto const other = session ? session->p2mpFecSessionLocalState( LdpFecSessionId( fec, id ) ) : nullptr;
      if ( !other || other->ephemeralState()->activeLabelState() != mappingSent ) continue;
      MplsLabel const theirs = other->ephemeralState()->activeLabel();
      kept = kept || theirs == label;
      bindings->labelBindingIs( fec, theirs );
      if ( !state->upstreamLsr() ) state->upstreamLsrIs( id.peerLdpId() );
   }
   if ( !kept ) state->mplsLabelSet()->mplsLabelDel( label );
}

void mapSent( SessionEnd & end, LdpP2mpFecElement const & element, MplsLabel label ) {
   Status & status = end.agent.status();
   auto const state = fecStateIs( end, element );
   Fec const fec = state->p2mpFecId();
   if ( auto const known = localState( end, fec ) ) {
      MplsLabel const before = known->ephemeralState()->activeLabel();
      bool const mapped = known->ephemeralState()->activeLabelState() == mappingSent;
      localStateIs( *known, noneSent );
      if ( mapped && before != label ) localLabelGone( end, fec, before );
   }
   state->localSessionMemberIs( end.id, true );
   state->upstreamLsrIs( end.peer() );
   state->advertisedTo()->ldpIdentifierIs( end.peer() );
   auto const local = status.p2mpFecSessionLocalStateColl()
                           ->p2mpFecSessionLocalStateCollIs( end.id )
                           ->p2mpFecSessionLocalStateIs( LdpFecSessionId( fec, end.id ) );
   state->mplsLabelSet()->mplsLabelIs( label, true );
   local->ephemeralState()->activeLabelIs( label );
   localStateIs( *local, mappingSent );
   end.p2mpLocal.add( fec, label );
   status.p2mpLocalLabelBindingTable()->labelBindingIs( fec, label );
   membersChanged( end, *state );
}

void mapRcvd( SessionEnd & end, LdpP2mpFecElement const & element, MplsLabel label ) {
   Status & status = end.agent.status();
   auto const state = fecStateIs( end, element );
   Fec const fec = state->p2mpFecId();
   state->remoteSessionMemberIs( end.id, true );
   auto const remote = status.p2mpFecSessionRemoteStateColl()
                            ->p2mpFecSessionRemoteStateCollIs( end.id )
                            ->p2mpFecSessionRemoteStateIs( LdpFecSessionId( fec, end.id ) );
   remote->peerLabelStateIs( mappingRcvd );
   remote->peerLabelIs( label );
   end.p2mpRemote.add( fec, label );
   // An upstream router sends to every downstream one that has given it a label (RFC 6388, 2.4).
   remote->remoteFecSessionInUseIs( true );
   status.p2mpPeerLabelBindingTableColl()
        ->labelBindingTableIs( routerOf( end.peer() ) )
        ->labelBindingIs( fec, label );
   membersChanged( end, *state );
}

void peerLabelGone( SessionEnd & end, Fec const & fec ) {
   auto const bindings =
        end.agent.status().p2mpPeerLabelBindingTableColl()->labelBindingTable( routerOf( end.peer() ) );
   if ( bindings ) bindings->labelBindingDel( fec );
}

void dropLocal( SessionEnd & end, Fec const & fec, LdpP2mpFecSessionLocalState & local ) {
   end.p2mpLocal.drop( fec );
   localStateIs( local, noneSent );
   localLabelGone( end, fec, local.ephemeralState()->activeLabel() );
   auto const coll = end.agent.status().p2mpFecSessionLocalStateColl();
   auto const session = coll->p2mpFecSessionLocalStateColl( end.id );
   session->p2mpFecSessionLocalStateDel( LdpFecSessionId( fec, end.id ) );
   if ( session->p2mpFecSessionLocalStates() == 0 ) coll->p2mpFecSessionLocalStateCollDel( end.id );
   auto const state = end.agent.status().p2mpFecStateColl()->p2mpFecState( fec );
   if ( !state ) return;
   state->localSessionMemberDel( end.id );
   membersChanged( end, *state );
}

void dropRemote( SessionEnd & end, Fec const & fec ) {
   end.p2mpRemote.drop( fec );
   peerLabelGone( end, fec );
   auto const coll = end.agent.status().p2mpFecSessionRemoteStateColl();
   auto const session = coll->p2mpFecSessionRemoteStateColl( end.id );
   session->p2mpFecSessionRemoteStateDel( LdpFecSessionId( fec, end.id ) );
   if ( session->p2mpFecSessionRemoteStates() == 0 ) coll->p2mpFecSessionRemoteStateCollDel( end.id );
   auto const state = end.agent.status().p2mpFecStateColl()->p2mpFecState( fec );
   if ( !state ) return;
   state->remoteSessionMemberDel( end.id );
   membersChanged( end, *state );
}

/// A message about a FEC that each end knows by its own value.
void apply( Exchange const & exchange, Fec const & senderFec, Fec const & receiverFec, AnyLabel label ) {
   LdpMsgType const type = exchange.message.type();
   bool const release = type == LdpLabelRelease;
   // A release is about a label that its receiver has sent, every other message about one of its sender.
   SessionEnd & owner = release ? exchange.receiver : exchange.sender;
   SessionEnd & user = release ? exchange.sender : exchange.receiver;
   Fec const & ownerFec = release ? receiverFec : senderFec;
   Fec const & userFec = release ? senderFec : receiverFec;
   if ( auto const local = localState( owner, ownerFec ) ) {
      release ? local->ldpMsgRxInc( type, 1 ) : local->ldpMsgTxInc( type, 1 );
      MplsLabel const active = local->ephemeralState()->activeLabel();
      bool const mapped = local->ephemeralState()->activeLabelState() == mappingSent;
      if ( type == LdpLabelWithdraw && mapped && names( label, active ) ) {
         localStateIs( *local, withdrawSent );
         localLabelGone( owner, ownerFec, active );
      } else if ( release && names( label, active ) ) {
         dropLocal( owner, ownerFec, *local );
      }
   }
   if ( auto const remote = remoteState( user, userFec ) ) {
      release ? remote->ldpMsgTxInc( type, 1 ) : remote->ldpMsgRxInc( type, 1 );
      if ( type == LdpLabelWithdraw && names( label, remote->peerLabel() ) ) {
         remote->peerLabelStateIs( withdrawRcvd );
         remote->remoteFecSessionInUseIs( false );
         peerLabelGone( user, userFec );
      } else if ( release && names( label, remote->peerLabel() ) ) {
         dropRemote( user, userFec );
      }
   }
}

bool hasRoom( SessionEnd & end, LdpP2mpFecElement const & element ) {
   return end.p2mpLocal.present.size() < end.agent.limits().fecs ||
          localState( end, knownFec( end, element ) );
}

} // namespace

void onMessage( Exchange const & exchange, LdpP2mpFecElement const & element, AnyLabel label ) {
   if ( exchange.message.type() == LdpLabelMapping ) {
      if ( !hasRoom( exchange.sender, element ) ) {
         ++exchange.sender.agent.turnedAway().fecs;
         return;
      }
      mapSent( exchange.sender, element, *label );
      mapRcvd( exchange.receiver, element, *label );
   }
   apply( exchange, knownFec( exchange.sender, element ), knownFec( exchange.receiver, element ), label );
}

// The two ends number opaque values differently, so each is gone through by its own FECs. One that the label
// does not concern any more waits for the next wildcard.
void onWildcard( Exchange const & exchange, AnyLabel label ) {
   auto & [sender, receiver, message, now] = exchange;
   bool const release = message.type() == LdpLabelRelease;
   auto const waiting = [&]( FecUse< Fec > & use ) -> Waiting< Fec > & {
      return release ? use.release : use.withdraw;
   };
   SessionEnd & owner = release ? receiver : sender;
   SessionEnd & user = release ? sender : receiver;
   for ( Fec const & fec : waiting( owner.p2mpLocal ).take( label ) ) {
      release ? apply( exchange, Fec(), fec, label ) : apply( exchange, fec, Fec(), label );
      auto const local = localState( owner, fec );
      if ( !local ) continue;
      auto const ephemeral = local->ephemeralState();
      if ( release || ephemeral->activeLabelState() == mappingSent )
         waiting( owner.p2mpLocal ).add( fec, ephemeral->activeLabel() );
   }
   for ( Fec const & fec : waiting( user.p2mpRemote ).take( label ) ) {
      release ? apply( exchange, fec, Fec(), label ) : apply( exchange, Fec(), fec, label );
      auto const remote = remoteState( user, fec );
      if ( remote && ( release || remote->peerLabelState() == mappingRcvd ) )
         waiting( user.p2mpRemote ).add( fec, remote->peerLabel() );
   }
}

void forget( SessionEnd & end, bool keepsPeerLabels ) {
   for ( Fec const & fec : std::set( end.p2mpLocal.present ) )
      dropLocal( end, fec, *localState( end, fec ) );
   for ( Fec const & fec : std::set( end.p2mpRemote.present ) ) {
      if ( keepsPeerLabels && remoteState( end, fec )->peerLabelState() == mappingRcvd ) {
         end.p2mpRemote.stale.insert( fec );
      } else {
         dropRemote( end, fec );
      }
   }
   end.p2mpRemote.withdraw.clear();
   end.p2mpRemote.release.clear();
}

void forgetStale( SessionEnd & end ) {
   for ( Fec const & fec : std::set( end.p2mpRemote.stale ) )
      dropRemote( end, fec );
}

} // namespace LdpTool::P2mpLabels
