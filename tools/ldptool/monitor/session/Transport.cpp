// Connections: which one a session runs on, and what TCP did to get there.
#include "monitor/session/Sessions.h"

#include <algorithm>

namespace LdpTool {

using namespace Ldp;

namespace {

constexpr U32 connectionClient = 1; // there is one client in the model of a speaker

// Two copies of one packet, of a capture taken on several interfaces at once, lie closer together than this;
// no TCP repeats a SYN as fast.
constexpr double copiesWithin = 0.1;

Vorn::Ptr< LdpTcpConnStatus > clientOf( Agent & agent, LdpIdentifier const & peer ) {
   return agent.status().ldpTcpConnStatusColl()->connStatusIs( peer, connectionClient );
}

} // namespace

// Who the messages of a connection are of is known by the connection; which of several connections between
// two speakers the session runs on shows by what they do on it. A lone message on another one is a stray.
bool Sessions::concerns( Connection & connection, int from, SessionEnd & sender, SessionEnd & receiver,
                         LdpMsgType type ) {
   Flow const flow = from == 0 ? connection.flow : connection.flow.reversed();
   bool const mine = sender.flow == flow;
   if ( type != LdpNotification ) connection.ends[from].heard = agents_.journal().arrival().frame;
   bool const live = sender.live() || receiver.live();
   if ( mine && live ) {
      hasSpoken( sender, receiver );
      return true;
   }
   bool const first = sender.flow == Flow();
   if ( type == LdpNotification && !first ) return mine;
   bool const bothSpeak = connection.bothSince( sender.since );
   // A connection whose beginning was seen has the session from the first message that only follows the other
   // side's Initialization; as long as no session is in the way, from its own.
   bool const begun = connection.begun > sender.since && !connection.closed;
   bool const takes = live ? bothSpeak || ( begun && type != LdpInit )
                           : first || bothSpeak || type == LdpInit || ( begun && !mine );
   if ( !takes ) return false;
   adopt( connection, from, sender, receiver );
   hasSpoken( sender, receiver );
   return true;
}

void Sessions::hasSpoken( SessionEnd & end, SessionEnd & peer ) {
   if ( end.spoke && peer.spoke ) return;
   end.spoke = true;
   for ( auto [own, other] : { std::pair( &end, &peer ), std::pair( &peer, &end ) } )
      agents_.journal().oneSidedIs( own->agent.id(), other->agent.id(), !own->spoke || !other->spoke );
}

void Sessions::adopt( Connection & connection, int from, SessionEnd & sender, SessionEnd & receiver ) {
   Flow const flow = from == 0 ? connection.flow : connection.flow.reversed();
   bool const again = sender.flow == flow;
   bool const replaces = !again && ( sender.live() || receiver.live() );
   for ( SessionEnd * each : { &sender, &receiver } )
      if ( replaces )
         end( *each, LdpSessionState( stateNonExist, tcpConnectionClosed ), "another connection", true );
   connection.closed = false;
   runsOn( sender, flow );
   runsOn( receiver, flow.reversed() );
   if ( again && connection.ends[from].init && connection.ends[1 - from].init ) {
      // It was over by all signs, and goes on.
      for ( auto [own, peer] : { std::pair( &sender, &receiver ), std::pair( &receiver, &sender ) } ) {
         own->proposed = connection.ends[own == &sender ? from : 1 - from].init->proposal;
         own->spoke = true;
         operational( *own, *peer, "both sides are at work again" );
      }
      return;
   }
   // What was said on it while another one had the session.
   for ( int side : { 1 - from, from } ) {
      auto const & init = connection.ends[side].init;
      SessionEnd & own = side == from ? sender : receiver;
      own.spoke = own.spoke || init;
      if ( init ) onInit( own, side == from ? receiver : sender, *init );
   }
}

void Sessions::runsOn( SessionEnd & end, Flow const & flow ) {
   LdpSessionStatus & session = *end.status;
   Addr const local = addressOf( flow.source, flow.addressSize );
   Addr const peer = addressOf( flow.destination, flow.addressSize );
   Status & status = end.agent.status();
   if ( auto const known = status.index()->peerToSession( session.peerIpAddr() ) ) {
      known->sessionIdDel( end.id );
      if ( known->sessionIds() == 0 ) status.index()->peerToSessionDel( session.peerIpAddr() );
   }
   end.flow = flow;
   end.since = agents_.journal().arrival().frame;
   startOver( end );
   session.localIpAddrIs( local );
   session.localPortIs( flow.sourcePort );
   session.peerIpAddrIs( peer );
   session.peerPortIs( flow.destinationPort );
   status.index()->peerToSessionIs( peer )->sessionIdIs( end.id, true );
   changed( end, LdpSessionState( stateInitialized, success ), "connected" );

   // The passive end is the one at the protocol's port (RFC 5036, 2.5.2).
   bool const active = flow.sourcePort != ldpPort;
   auto const config = status.ldpSessionConfigColl()->sessionConfigIs( end.id );
   status.ldpSessionConfigColl()->ldpSessionCommonConfig()->ipTransportAddrIs( local );
   config->localLdpIdentifierIs( end.agent.id() );
   config->peerIpAddrIs( peer );
   config->ldpSessionRoleIs( active ? roleActive : rolePassive );
   session.tcpClientConnEnabledIs( active );
   if ( active ) {
      status.ldpTcpConnConfigColl()->connConfigDel( end.peer() ); // its server may be another
      status.ldpTcpConnConfigColl()
           ->connConfigIs( peer, Lumo::Port( flow.destinationPort ), local, end.peer() )
           ->enabledIs( true );
      clientOf( end.agent, end.peer() )->connectionStatusIs( Lumo::tcpConnected );
   } else {
      status.ldpTcpServerStatus()->listeningIs( true );
   }
}

void Sessions::onTcpStep( Connection & connection, Flow const & flow, TcpStep step ) {
   double const at = now();
   switch ( step ) {
   case TcpStep::syn:
      if ( connection.begun && at - connection.lastSyn < copiesWithin && at >= connection.lastSyn ) return;
      connection.errors += connection.unanswered != 0; // the one before had no answer
      connection.unanswered += !connection.established;
      connection.lastSyn = at;
      if ( !connection.begun ) connection.begun = agents_.journal().arrival().frame;
      connection.client = connection.endOf( flow );
      ++connection.attempts;
      break;
   case TcpStep::synAck: connection.client = 1 - connection.endOf( flow ); break;
   case TcpStep::established:
      if ( connection.established ) return;
      connection.established = true;
      connection.unanswered = 0;
      ++connection.successes;
      break;
   case TcpStep::refused:
      if ( at - connection.lastRefusal < copiesWithin && at >= connection.lastRefusal ) return;
      connection.lastRefusal = at;
      connection.unanswered = 0;
      ++connection.errors;
      connection.refused = true;
      break;
   }
   settle( connection );
}

// The active end's client has tried; the passive one's server has a client (RFC 5036, 2.5.2).
void Sessions::settle( Connection & connection ) {
   if ( !connection.attempts && !connection.errors && !connection.successes ) return;
   int const client = connection.client;
   auto const who = [&]( int end ) {
      LdpIdentifier const & known = connection.ends[end].speaker;
      auto const & octets = end == 0 ? connection.flow.source : connection.flow.destination;
      return !!known ? known : agents_.at( addressOf( octets, connection.flow.addressSize ) );
   };
   LdpIdentifier const own = who( client );
   LdpIdentifier const peer = who( 1 - client );
   if ( !own || !peer || own.lsrId() == peer.lsrId() ) return;
   Agent * const agent = agents_.agentIs( own );
   Agent * const server = agents_.agentIs( peer );
   if ( !agent || !server ) return;
   auto const status = clientOf( *agent, peer );
   status->connectionAttemptCountIs( status->connectionAttemptCount() +
                                     std::exchange( connection.attempts, 0 ) );
   status->connectionErrorCountIs( status->connectionErrorCount() + std::exchange( connection.errors, 0 ) );
   U32 const successes = std::exchange( connection.successes, 0 );
   status->connectionSuccessCountIs( status->connectionSuccessCount() + successes );
   if ( connection.established ) {
      status->connectionStatusIs( Lumo::tcpConnected );
      status->reasonIs( "" );
   } else {
      status->connectionStatusIs( connection.refused ? Lumo::tcpNotConnected : Lumo::tcpConnecting );
      status->reasonIs( connection.refused ? "refused" : "no answer" );
   }
   if ( !successes ) return;
   server->status().ldpTcpServerStatus()->listeningIs( true );
   auto const & octets = client == 0 ? connection.flow.source : connection.flow.destination;
   Addr const from = addressOf( octets, connection.flow.addressSize );
   if ( from.family() == Lumo::ipv4 )
      server->status().ldpTcpServerStatus()->clientCountInc( from.ipAddr(), successes );
}

// LDP does not use connections that are half closed: with the first sign of an end the session is over.
void Sessions::onClose( Connection & connection ) {
   connection.closed = true;
   for ( int side : { 0, 1 } ) {
      LdpIdentifier const & own = connection.ends[side].speaker;
      LdpIdentifier const & peer = connection.ends[1 - side].speaker;
      Agent * const agent = !!own && !!peer ? agents_.agentIs( own ) : nullptr;
      if ( !agent || !agent->hasSession( peer ) ) continue;
      SessionEnd & mine = agent->sessionEnd( peer );
      Flow const flow = side == 0 ? connection.flow : connection.flow.reversed();
      if ( mine.flow == flow && mine.live() )
         end( mine, LdpSessionState( stateNonExist, tcpConnectionClosed ),
              sessionStateStrForStatusCode( tcpConnectionClosed ), true );
   }
}

} // namespace LdpTool
