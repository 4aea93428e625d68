// What session messages say of sessions, and how these end.
#include "monitor/session/Sessions.h"

#include "monitor/labels/P2mpLabels.h"
#include "monitor/labels/PrefixLabels.h"
#include "monitor/labels/Pseudowires.h"

#include "Ldp/LdpProtoParam.h"
#include "Ldp/LdpUtils.h"

#include <algorithm>

namespace LdpTool {

using namespace Ldp;

namespace {

template< class Parser >
Parser const & as( Exchange const & exchange ) {
   return static_cast< Parser const & >( exchange.message );
}

LdpLabelAdvDspl disciplineOf( Proposal const & proposal ) {
   return proposal.onDemand ? onDemand : unSolicited;
}

} // namespace

void Sessions::changed( SessionEnd & end, LdpSessionState const & state, Vorn::String const & reason ) {
   LdpSessionStatus & status = *end.status;
   LdpSessionState const before = status.ldpSessionState();
   if ( before == state ) return;
   double const at = now();
   status.ldpSessionStateIs( state );
   status.sessionStateLastChangeIs( at );
   status.sessionStateCountInc( state.sessionState(), 1 );
   status.sessionStateReasonIs( reason );
   status.sessionStateLogEntryColl()->addSessionStateLogEntry(
        LdpSessionStateLogEntry( at, state.sessionState(), state.code(), reason ) );
   std::string const from = before.sessionState() == stateUnknown ? "-" : stateName( before.sessionState() );
   agents_.journal().add( { {},
                            end.agent.id(),
                            end.peer(),
                            "session",
                            from,
                            stateName( state.sessionState() ),
                            std::string( reason.view() ) } );
}

void Sessions::operational( SessionEnd & end, SessionEnd & peer, Vorn::String const & reason ) {
   negotiate( end, peer );
   changed( end, LdpSessionState( stateOperational, success ), reason );
   end.status->sessionUptimeIs( now() );
   end.status->sessionOpStateIs( opStateAddrExchange );
}

/// What both ends' proposals come to, once both have spoken. Until then nobody knows when the session
/// expires.
void Sessions::negotiate( SessionEnd & end, SessionEnd & peer ) {
   Proposal const & own = end.proposed;
   Proposal const & others = peer.proposed;
   bool const known = own.made && others.made;
   LdpSessionStatus & status = *end.status;
   status.operKeepAliveTimeIs( known ? std::min( own.keepAliveTime, others.keepAliveTime ) : U16( 0 ) );
   if ( !known ) return;
   status.operMaxPduLengthIs( std::min( own.maxPduLength, others.maxPduLength ) );
   status.operLabelAdvDsplIs( own.onDemand && others.onDemand ? onDemand : unSolicited );
}

void Sessions::onInit( SessionEnd & sender, SessionEnd & receiver, InitFacts const & init ) {
   for ( SessionEnd * each : { &sender, &receiver } ) {
      if ( each->status->sessionState() == stateOperational )
         end( *each, LdpSessionState( stateNonExist, success ), "another Initialization", true );
   }
   sender.proposed = init.proposal;
   auto const configs = sender.agent.status().ldpSessionConfigColl();
   auto const config = configs->sessionConfigIs( sender.id );
   config->keepAliveTimeIs( init.proposal.keepAliveTime );
   config->maxPduLengthIs( init.proposal.maxPduLength );
   configs->ldpSessionCommonConfig()->ldpLabelAdvDsplIs( disciplineOf( init.proposal ) );
   configs->ldpSessionCommonConfig()->mLdpEnabledIs( init.mLdp );

   LdpSessionStatus & received = *receiver.status;
   received.peerKeepAliveTimeIs( init.proposal.keepAliveTime );
   received.peerMaxPduLengthIs( init.proposal.maxPduLength );
   received.peerLabelAdvDsplIs( disciplineOf( init.proposal ) );
   for ( LdpTlvType type : sortedKeys( received.peerCapabilityColl() ) )
      received.peerCapabilityDel( type );
   for ( auto const & [type, state] : init.capabilities )
      received.peerCapabilityIs( type, state );
   received.operGrSupportedIs( init.restarts && init.learnFromNetwork );
   received.peerGrReconnectTimeoutIs( init.reconnectTimeout );
   received.peerGrRecoveryTimeoutIs( init.recoveryTime );
   // What was kept of the session before has the recovery time of the peer to come back (RFC 3478, 3.3); one
   // that has not kept its forwarding state says 0.
   if ( receiver.hasStale() ) {
      constexpr double milliseconds = 1e-3;
      receiver.staleUntil = now() + init.recoveryTime * milliseconds;
      if ( init.recoveryTime == 0 ) {
         staleOver( receiver );
      } else {
         deadlines_.add( receiver.staleUntil, &receiver );
      }
   }
   negotiate( receiver, sender );
   negotiate( sender, receiver );
   if ( sender.status->sessionState() != stateOpenRecv )
      changed( sender, LdpSessionState( stateOpenSent, success ), "sent Initialization" );
   changed( receiver, LdpSessionState( stateOpenRecv, success ), "received Initialization" );
}

void Sessions::onKeepAlive( Exchange const & exchange, Connection & connection, int from ) {
   auto & [sender, receiver, message, at] = exchange;
   connection.ends[from].keptAlive = true;
   SessionState const state = receiver.status->sessionState();
   if ( state == stateOpenRecv ) {
      operational( receiver, sender, "received KeepAlive" );
   } else if ( state == stateExpired ) {
      operational( receiver, sender, "both sides are at work again" );
   } else if ( connection.ends[1 - from].keptAlive && !sender.proposed.made && !receiver.proposed.made ) {
      // KeepAlives both ways: the session was up before the capture began.
      for ( auto [own, peer] : { std::pair( &sender, &receiver ), std::pair( &receiver, &sender ) } )
         if ( own->status->sessionState() != stateOperational ) operational( *own, *peer, seenAtWork );
   }
}

void Sessions::onCapability( Exchange const & exchange, LdpCapabilityMsgParser const & capability ) {
   for ( auto const & sent : capability.capabilities() )
      exchange.receiver.status->peerCapabilityIs( sent.key(), sent.value()->state() );
}

void Sessions::onAddresses( Exchange const & exchange ) {
   bool const withdraw = exchange.message.type() == LdpAddressWithdraw;
   auto const & list = withdraw ? *as< LdpAddressWithdrawMsgParser >( exchange ).addressListTlv()
                                : *as< LdpAddressMsgParser >( exchange ).addressListTlv();
   auto const own = exchange.sender.agent.status().ldpSessionConfigColl()->ldpSessionCommonConfig();
   LdpSessionStatus & received = *exchange.receiver.status;
   for ( U16 i = 0; i < list.numAddress(); ++i ) {
      Addr const address = list.address( i );
      if ( withdraw ) {
         received.peerIntfIpDel( address );
         if ( address.family() == Lumo::ipv4 ) own->localIntfIpDel( address.ipAddr() );
      } else if ( received.peerIntfIps() < exchange.receiver.agent.limits().fecs ) {
         received.peerIntfIpIs( address, true );
         if ( address.family() == Lumo::ipv4 ) own->localIntfIpIs( address.ipAddr(), true );
      } else {
         ++exchange.receiver.agent.turnedAway().fecs;
      }
   }
   if ( withdraw ) return;
   received.addressMsgRcvdIs( true );
   exchange.sender.status->addressMsgTsmtIs( true );
}

void Sessions::onNotification( Exchange const & exchange ) {
   auto & [sender, receiver, message, at] = exchange;
   LdpStatusTlv const & tlv = *message.msgStatusTlv();
   LdpStatusCode const code = tlv.statusData();
   constexpr U32 mostCodes = 64; // which the peer chooses
   if ( sender.statistics->ldpMsgNotificationTxCounts() < mostCodes ||
        sender.statistics->ldpMsgNotificationTxCountHas( code ) ) {
      sender.statistics->ldpMsgNotificationTxCountInc( code, 1 );
      receiver.statistics->ldpMsgNotificationRxCountInc( code, 1 );
   }
   if ( tlv.statusError() ) {
      Vorn::String const reason = sessionStateStrForStatusCode( code );
      end( receiver, LdpSessionState( stateNonExist, code ), "peer: " + reason, false );
      end( sender, LdpSessionState( stateNonExist, code ), reason, false );
      return;
   }
   if ( code == labelResourcesAvailable ) receiver.status->peerLabelRescAvailableCountInc( 1 );
   PrefixLabels::onNotification( exchange, tlv );
   auto const & notification = as< LdpNotificationMsgParser >( exchange );
   if ( notification.msgPwStatusTlv() ) Pseudowires::onNotification( exchange, notification );
}

void Sessions::onSignOfLife( Exchange const & exchange ) {
   auto & [sender, receiver, message, at] = exchange;
   // Every message of the peer keeps the session alive (RFC 5036, 2.5.6).
   U16 const keepAlive = receiver.status->operKeepAliveTime();
   bool const known = sender.proposed.made && receiver.proposed.made && keepAlive;
   receiver.status->sessionExpireTimeIs( known ? at + keepAlive : 0.0 );
   if ( known && !receiver.watched ) {
      receiver.watched = true;
      deadlines_.add( at + keepAlive, &receiver );
   }
   LdpMsgType const type = message.type();
   if ( type == LdpInit || type == LdpKeepAlive || type == LdpCapability ) return;
   // Addresses and labels flow on operational sessions alone: the capture has not seen this one begin, or the
   // silence that seemed to end it was the capture's own.
   for ( auto [own, peer] : { std::pair( &sender, &receiver ), std::pair( &receiver, &sender ) } ) {
      if ( own->status->sessionState() != stateOperational ) operational( *own, *peer, seenAtWork );
      if ( type != LdpAddress && type != LdpAddressWithdraw )
         own->status->sessionOpStateIs( opStateLabelExchange );
   }
}

/// What was learnt from the peer about the session itself is of no session any more.
void Sessions::startOver( SessionEnd & end ) {
   LdpSessionStatus & session = *end.status;
   for ( Addr const & address : sortedKeys( session.peerIntfIpColl() ) )
      session.peerIntfIpDel( address );
   for ( LdpTlvType type : sortedKeys( session.peerCapabilityColl() ) )
      session.peerCapabilityDel( type );
   session.addressMsgRcvdIs( false );
   session.addressMsgTsmtIs( false );
   session.sessionUptimeIs( 0.0 );
   session.sessionExpireTimeIs( 0.0 );
   session.sessionOpStateIs( opStateUnknown );
   end.proposed = {};
   end.spoke = false;
}

/// The session has ended. If the peer restarts gracefully, its labels are kept for as long as it has asked
/// for (RFC 3478, 3.3), unless the session was ended on purpose.
void Sessions::end( SessionEnd & end, LdpSessionState const & state, Vorn::String const & reason,
                    bool restarts ) {
   constexpr double milliseconds = 1e-3;
   bool const was = end.live();
   changed( end, state, reason );
   if ( was ) agents_.journal().downIs( end.agent.id(), end.peer(), std::string( reason.view() ) );
   end.since = agents_.journal().arrival().frame;
   U32 const reconnect = end.status->peerGrReconnectTimeout();
   bool const keeps = restarts && was && end.proposed.made && reconnect != 0;
   startOver( end );
   if ( keeps ) {
      end.staleUntil = now() + reconnect * milliseconds;
      deadlines_.add( end.staleUntil, &end );
   }
   end.status->operGrStateIs( keeps ? grStateActive : grStateUnknown );
   PrefixLabels::forget( end, keeps );
   P2mpLabels::forget( end, keeps );
   Pseudowires::forget( end, keeps );
   end.statistics->ldpMsgIdFecMappingInfoDelAll();
   if ( auto const connection = end.agent.status().ldpTcpConnStatusColl()->connStatus( end.peer() ) ) {
      connection->reasonIs( reason );
      connection->connectionStatusIs( Lumo::tcpNotConnected );
   }
}

void Sessions::staleOver( SessionEnd & end ) {
   end.staleUntil = 0.0;
   end.status->operGrStateIs( grStateInactive );
   PrefixLabels::forgetStale( end );
   P2mpLabels::forgetStale( end );
   Pseudowires::forgetStale( end );
}

/// When to look at the session again; 0 for not before it says so.
double Sessions::lookAt( SessionEnd & session ) {
   double const at = now();
   if ( session.staleUntil != 0.0 && session.staleUntil <= at ) staleOver( session );
   double const expires = session.status->sessionExpireTime();
   if ( session.status->sessionState() == stateOperational && expires != 0.0 && expires <= at )
      end( session, LdpSessionState( stateExpired, keepAliveExpired ),
           "no message within the keep-alive time", true );
   double const next = session.status->sessionExpireTime();
   session.watched = next > at;
   return session.watched ? next : 0.0;
}

void Sessions::expire() {
   deadlines_.pass( now(), [this]( SessionEnd * session ) { return lookAt( *session ); } );
}

} // namespace LdpTool
