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

constexpr U16 smallestMaxPdu = 256; // a smaller proposal stands for the default (RFC 5036, 3.5.3)
constexpr U32 connectionClient = 1; // there is one client in the model of a speaker

void stateIs( SessionEnd & end, LdpSessionState const & state, Vorn::String const & reason, double now ) {
   LdpSessionStatus & status = *end.status;
   if ( status.ldpSessionState() == state ) return;
   status.ldpSessionStateIs( state );
   status.sessionStateLastChangeIs( now );
   status.sessionStateCountInc( state.sessionState(), 1 );
   status.sessionStateReasonIs( reason );
   status.sessionStateLogEntryColl()->addSessionStateLogEntry(
        LdpSessionStateLogEntry( now, state.sessionState(), state.code(), reason ) );
}

void operational( SessionEnd & end, Vorn::String const & reason, double now ) {
   stateIs( end, LdpSessionState( stateOperational, success ), reason, now );
   end.status->sessionUptimeIs( now );
   end.status->sessionOpStateIs( opStateAddrExchange );
}

LdpLabelAdvDspl disciplineOf( Agent & agent ) {
   return agent.status().ldpSessionConfigColl()->ldpSessionCommonConfig()->ldpLabelAdvDspl();
}

/// What both ends' proposals come to, once both have spoken.
void negotiate( SessionEnd & end, Agent & peer ) {
   Agent & own = end.agent;
   if ( !own.keepAliveTime || !peer.keepAliveTime ) return;
   end.status->operKeepAliveTimeIs( std::min( own.keepAliveTime, peer.keepAliveTime ) );
   end.status->operMaxPduLengthIs( std::min( own.maxPduLength, peer.maxPduLength ) );
   bool const asked = disciplineOf( own ) == onDemand && disciplineOf( peer ) == onDemand;
   end.status->operLabelAdvDsplIs( asked ? onDemand : unSolicited );
}

template< class Parser >
Parser const & as( Exchange const & exchange ) {
   return static_cast< Parser const & >( exchange.message );
}

} // namespace

void connectionIs( SessionEnd & end, Flow const & flow, bool isSource, double now ) {
   LdpSessionStatus & session = *end.status;
   Addr const source = addressOf( flow.source, flow.addressSize );
   Addr const destination = addressOf( flow.destination, flow.addressSize );
   Addr const & local = isSource ? source : destination;
   Addr const & peer = isSource ? destination : source;
   U16 const localPort = isSource ? flow.sourcePort : flow.destinationPort;
   U16 const peerPort = isSource ? flow.destinationPort : flow.sourcePort;
   if ( session.localIpAddr() == local && session.localPort() == localPort && session.peerIpAddr() == peer &&
        session.peerPort() == peerPort )
      return;
   if ( session.sessionState() == stateOperational )
      endSession( end, LdpSessionState( stateNonExist, tcpConnectionClosed ), "another connection", now );
   Status & status = end.agent.status();
   if ( auto const known = status.index()->peerToSession( session.peerIpAddr() ) ) {
      known->sessionIdDel( end.id );
      if ( known->sessionIds() == 0 ) status.index()->peerToSessionDel( session.peerIpAddr() );
   }
   session.localIpAddrIs( local );
   session.localPortIs( localPort );
   session.peerIpAddrIs( peer );
   session.peerPortIs( peerPort );
   status.index()->peerToSessionIs( peer )->sessionIdIs( end.id, true );
   stateIs( end, LdpSessionState( stateInitialized, success ), "connected", now );

   // The passive end is the one at the protocol's port (RFC 5036, 2.5.2).
   bool const active = localPort != ldpPort;
   auto const config = status.ldpSessionConfigColl()->sessionConfigIs( end.id );
   status.ldpSessionConfigColl()->ldpSessionCommonConfig()->ipTransportAddrIs( local );
   config->localLdpIdentifierIs( end.agent.id() );
   config->peerIpAddrIs( peer );
   config->ldpSessionRoleIs( active ? roleActive : rolePassive );
   session.tcpClientConnEnabledIs( active );
   if ( active ) {
      status.ldpTcpConnConfigColl()->connConfigDel( end.peer() ); // its server may be another
      status.ldpTcpConnConfigColl()
           ->connConfigIs( peer, Lumo::Port( peerPort ), local, end.peer() )
           ->enabledIs( true );
      auto const connection = status.ldpTcpConnStatusColl()->connStatusIs( end.peer(), connectionClient );
      connection->connectionAttemptCountIs( connection->connectionAttemptCount() + 1 );
      connection->connectionSuccessCountIs( connection->connectionSuccessCount() + 1 );
      connection->connectionStatusIs( Lumo::tcpConnected );
   } else {
      status.ldpTcpServerStatus()->listeningIs( true );
      if ( peer.family() == Lumo::ipv4 ) status.ldpTcpServerStatus()->clientCountInc( peer.ipAddr(), 1 );
   }
}

void onInit( Exchange const & exchange ) {
   auto & [sender, receiver, message, now] = exchange;
   auto const & init = as< LdpInitMsgParser >( exchange );
   for ( SessionEnd * end : { &sender, &receiver } ) {
      if ( end->status->sessionState() == stateOperational )
         endSession( *end, LdpSessionState( stateNonExist, success ), "another Initialization", now );
   }
   auto const & params = *init.msgSessionParamTlv();
   sender.agent.keepAliveTime = params.keepAliveTime();
   sender.agent.maxPduLength =
        params.maxPduLength() < smallestMaxPdu ? LdpProtoParam::defaultMaxPduLength() : params.maxPduLength();
   auto const configs = sender.agent.status().ldpSessionConfigColl();
   auto const config = configs->sessionConfigIs( sender.id );
   config->keepAliveTimeIs( params.keepAliveTime() );
   config->maxPduLengthIs( sender.agent.maxPduLength );
   configs->ldpSessionCommonConfig()->ldpLabelAdvDsplIs( params.advDiscipline() ? onDemand : unSolicited );
   configs->ldpSessionCommonConfig()->mLdpEnabledIs( init.capabilitiesHas( p2mpCapabilityTlv ) );

   LdpSessionStatus & received = *receiver.status;
   received.peerKeepAliveTimeIs( params.keepAliveTime() );
   received.peerMaxPduLengthIs( sender.agent.maxPduLength );
   received.peerLabelAdvDsplIs( params.advDiscipline() ? onDemand : unSolicited );
   received.peerCapabilityDelAll();
   for ( auto const & capability : init.capabilities() )
      received.peerCapabilityIs( capability.key(), capability.value()->state() );
   if ( auto const * ft = init.msgFtSessionTlv() ) {
      received.operGrSupportedIs( ft->learnFromNetwork() );
      received.peerGrReconnectTimeoutIs( ft->ftReconnectTimeout() );
      received.peerGrRecoveryTimeoutIs( ft->ftRecoveryTime() );
   }
   negotiate( receiver, sender.agent );
   negotiate( sender, receiver.agent );
   if ( sender.status->sessionState() != stateOpenRecv )
      stateIs( sender, LdpSessionState( stateOpenSent, success ), "sent Initialization", now );
   stateIs( receiver, LdpSessionState( stateOpenRecv, success ), "received Initialization", now );
}

void onKeepAlive( Exchange const & exchange ) {
   if ( exchange.receiver.status->sessionState() == stateOpenRecv )
      operational( exchange.receiver, "received KeepAlive", exchange.now );
}

void onCapability( Exchange const & exchange, LdpCapabilityMsgParser const & capability ) {
   for ( auto const & sent : capability.capabilities() )
      exchange.receiver.status->peerCapabilityIs( sent.key(), sent.value()->state() );
}

void onAddresses( Exchange const & exchange ) {
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
      } else {
         received.peerIntfIpIs( address, true );
         if ( address.family() == Lumo::ipv4 ) own->localIntfIpIs( address.ipAddr(), true );
      }
   }
   if ( withdraw ) return;
   received.addressMsgRcvdIs( true );
   exchange.sender.status->addressMsgTsmtIs( true );
}

void onNotification( Exchange const & exchange ) {
   auto & [sender, receiver, message, now] = exchange;
   LdpStatusTlv const & tlv = *message.msgStatusTlv();
   LdpStatusCode const code = tlv.statusData();
   sender.statistics->ldpMsgNotificationTxCountInc( code, 1 );
   receiver.statistics->ldpMsgNotificationRxCountInc( code, 1 );
   if ( tlv.statusError() ) {
      Vorn::String const reason = sessionStateStrForStatusCode( code );
      endSession( receiver, LdpSessionState( stateNonExist, code ), "peer: " + reason, now );
      endSession( sender, LdpSessionState( stateNonExist, code ), reason, now );
      return;
   }
   if ( code == labelResourcesAvailable ) receiver.status->peerLabelRescAvailableCountInc( 1 );
   PrefixLabels::onNotification( exchange, tlv );
   auto const & notification = as< LdpNotificationMsgParser >( exchange );
   if ( notification.msgPwStatusTlv() ) Pseudowires::onNotification( exchange, notification );
}

void onSignOfLife( Exchange const & exchange ) {
   auto & [sender, receiver, message, now] = exchange;
   // Every message of the peer keeps the session alive (RFC 5036, 2.5.6).
   receiver.status->sessionExpireTimeIs( now + receiver.status->operKeepAliveTime() );
   LdpMsgType const type = message.type();
   if ( type == LdpInit || type == LdpKeepAlive || type == LdpCapability ) return;
   // Addresses and labels flow on operational sessions alone: the capture has not seen this one begin, or the
   // silence that seemed to end it was the capture's own.
   for ( SessionEnd * end : { &sender, &receiver } ) {
      if ( end->status->sessionState() != stateOperational ) operational( *end, "seen at work", now );
      if ( type != LdpAddress && type != LdpAddressWithdraw )
         end->status->sessionOpStateIs( opStateLabelExchange );
   }
}

void endSession( SessionEnd & end, LdpSessionState const & state, Vorn::String const & reason, double now ) {
   stateIs( end, state, reason, now );
   LdpSessionStatus & session = *end.status;
   for ( Addr const & address : sortedKeys( session.peerIntfIpColl() ) )
      session.peerIntfIpDel( address );
   session.sessionUptimeIs( 0.0 );
   session.sessionOpStateIs( opStateUnknown );
   PrefixLabels::forget( end );
   P2mpLabels::forget( end );
   Pseudowires::forget( end );
   end.statistics->ldpMsgIdFecMappingInfoDelAll();
   if ( auto const connection = end.agent.status().ldpTcpConnStatusColl()->connStatus( end.peer() ) ) {
      connection->reasonIs( reason );
      connection->connectionStatusIs( Lumo::tcpNotConnected );
   }
}

void expireSessions( Agents & agents, double now ) {
   for ( auto const & [identifier, agent] : agents.all() ) {
      for ( auto & [peer, end] : agent->sessionEnds() ) {
         if ( end.status->sessionState() != stateOperational || end.status->sessionExpireTime() > now )
            continue;
         endSession( end, LdpSessionState( stateExpired, keepAliveExpired ),
                     "no message within the keep-alive time", now );
      }
   }
}

} // namespace LdpTool
