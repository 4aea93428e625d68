#pragma once

// One end of a session and one FEC that is a prefix: what was said about it, written into the end's model.

#include "monitor/labels/AnyLabel.h"
#include "monitor/speaker/Agent.h"

#include <vector>

namespace LdpTool::PrefixLabels {

using Fec = Mpls::FwdEqvClass;

/// One end of a session with its state of one FEC. The state is null where nothing was ever said.
struct FecEnd {
   FecEnd( SessionEnd & e, Fec const & f ) : end( e ), fec( f ), model( e.agent.status() ) {
      state = model.ldpFecSessionStatusColl()->fecSessionStatus( id() );
      if ( end.agent.compact() ) makeState();
   }
   FecEnd( FecEnd const & ) = delete;
   FecEnd & operator=( FecEnd const & ) = delete;
   ~FecEnd() {
      if ( state && end.agent.compact() ) keepState();
   }

   /// Looked up only where something changes: most messages repeat what is known.
   Ldp::LdpFecConfig & config() {
      if ( !config_ ) config_ = model.ldpFecConfigColl()->fecConfigIs( fec );
      return *config_;
   }

   Ldp::LdpFecSessionId id() const { return Ldp::LdpFecSessionId( fec, end.id ); }

   /// Makes the state if there is none.
   void create() {
      if ( state ) return;
      config().membershipIs( Ldp::fecMemberSessionSm, true );
      config().sessionMemberIs( end.id, true );
      auto const coll = model.ldpFecSessionStatusColl();
      state = coll->fecSessionStatusIs( id() );
      if ( end.agent.compact() ) return;
      coll->fecSessionStatusBySessionCollIs( end.id )->fecSessionStatusIs( id(), state );
   }

   /// Tells who listens, once all that a message says is written, if the speaker has the first label of the
   /// FEC, or has lost the last.
   void tellChange();

   void drop();
   void dropIfIdle() {
      if ( state && state->localLabelStates() == 0 && state->peerLabelStates() == 0 &&
           state->msgIdReqMsgs() == 0 && !state->localLabelSessionState().peerReqMsgOutstanding() )
         drop();
   }

   void mapSent( Lumo::MplsLabel label );
   void mapRcvd( Lumo::MplsLabel label );
   void withdrawSent( Lumo::MplsLabel label, double now );
   void withdrawRcvd( Lumo::MplsLabel label );
   void releaseSent( Lumo::MplsLabel label );
   void releaseRcvd( Lumo::MplsLabel label );
   void localLabelGone( Lumo::MplsLabel label );
   void peerLabelGone( Lumo::MplsLabel label );
   void rebind( Mpls::LabelBindingTable & bindings, Lumo::MplsLabel gone, AnyLabel left );
   void requestAnswered( U32 msgId );
   void replaceSent( Lumo::MplsLabel label );
   void replaceRcvd( Lumo::MplsLabel label );
   void dropPeerLabels( AnyLabel but );
   void noteIn( std::optional< std::vector< Fec > > & list );
   bool isReleaseOutstanding() const;
   bool isBound();
   void noteBound();

   /// The labels in either collection of states that the message names.
   template< class Labels >
   static std::vector< Lumo::MplsLabel > named( Labels const & labels, AnyLabel label ) {
      std::vector< Lumo::MplsLabel > found;
      for ( Lumo::MplsLabel each : sortedKeys( labels ) )
         if ( names( label, each ) ) found.push_back( each );
      return found;
   }
   /// A FEC has one label, or two while one takes the other's place, and one request under way. Each change
   /// goes through all of them, so a peer that never stops is not followed.
   bool hasTooMuch() const {
      constexpr U32 most = 64;
      return state && ( state->localLabelStates() >= most || state->msgIdReqMsgs() >= most );
   }
   bool anyLocal( Ldp::LdpLocalLabelState which ) const {
      for ( auto const & node : state->localLabelStateColl() )
         if ( node.value() == which ) return true;
      return false;
   }
   bool anyPeer( Ldp::LdpPeerLabelState which ) const {
      for ( auto const & node : state->peerLabelStateColl() )
         if ( node.value() == which ) return true;
      return false;
   }

   /// Counts a message at this end. Only who has the whole tree sees that.
   void sent( Ldp::LdpMsgType type ) {
      if ( state && !end.agent.compact() ) state->ldpMsgTxInc( type, 1 );
   }
   void received( Ldp::LdpMsgType type ) {
      if ( state && !end.agent.compact() ) state->ldpMsgRxInc( type, 1 );
   }

   /// Changes some bits of a state word.
   template< class Change >
   void localWord( Change const & change ) {
      auto word = state->localLabelSessionState();
      bool const before = word.localMappingSent();
      word.localLabelSessionMembershipIs( true );
      change( word );
      end.advertised += std::size_t( word.localMappingSent() ) - std::size_t( before );
      state->localLabelSessionStateIs( word );
   }
   template< class Change >
   void peerWord( Change const & change ) {
      auto word = state->peerLabelSessionState();
      bool const before = word.peerLabelMappingCached();
      word.peerLabelSessionMembershipIs( true );
      change( word );
      end.learned += std::size_t( word.peerLabelMappingCached() ) - std::size_t( before );
      state->peerLabelSessionStateIs( word );
   }

   SessionEnd & end;
   Fec const fec;
   Ldp::Status & model;
   Vorn::Ptr< Ldp::LdpFecSessionStatus > state;

 private:
   void makeState();
   void keepState();

   Vorn::Ptr< Ldp::LdpFecConfig > config_;
   std::optional< bool > wasBound_; ///< before the first label came or went; only where somebody listens
};

/// How many FECs the session has at that end, and which.
std::size_t fecNum( SessionEnd & end );
std::vector< Fec > fecsOf( SessionEnd & end );

} // namespace LdpTool::PrefixLabels
