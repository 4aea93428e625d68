// Hellos, and the adjacencies that they keep.
#include "monitor/discovery/Discovery.h"

#include "Ldp/LdpProtoParam.h"

#include <algorithm>

namespace LdpTool {

using namespace Ldp;

namespace {

/// The hold time in force between two proposals: the smaller, each 0 standing for the default.
U16 operHoldTime( U16 own, U16 peer, U16 unsaid ) {
   return std::min( own ? own : unsaid, peer ? peer : unsaid );
}

/// The transport address that the hello announces, which its source stands for where it announces none.
Addr transportAddress( LdpHelloMsgParser const & hello, Addr const & source ) {
   if ( hello.msgIpTransportTlv() ) return hello.msgIpTransportTlv()->ipAddr();
   if ( hello.msgIp6TransportTlv() ) return hello.msgIp6TransportTlv()->ip6Addr();
   return source;
}

HelloFacts factsOf( LdpHelloMsgParser const & hello, Addr const & source, double now ) {
   HelloFacts facts;
   facts.holdTime = hello.msgCommonHelloTlv()->holdTime();
   facts.msgId = hello.msgId();
   facts.transport = transportAddress( hello, source );
   facts.hasConfigSeq = hello.msgConfigSeqTlv();
   if ( facts.hasConfigSeq ) facts.configSeq = hello.msgConfigSeqTlv()->configSeqNum();
   facts.at = now;
   return facts;
}

/// What a hello says of its sender's configuration; links and targets share it.
template< class CommonConfig >
void commonConfigIs( CommonConfig & config, HelloFacts const & facts ) {
   config.ipTransportAddrIs( facts.transport );
   if ( facts.hasConfigSeq ) config.configSeqNumIs( facts.configSeq );
}

bool over( double until, double now ) { return until != 0.0 && until <= now; }

/// The peer was behind that transport address by one of its adjacencies, which is gone or has another now.
void unmapTransport( Status & status, LdpIdentifier const & peer, Addr const & transport ) {
   for ( auto & adj : status.ldpAdjStatusColl()->adjStatusColl() )
      if ( adj.ldpAdjId().ldpIdentifier() == peer && adj.peerIpAddr() == transport ) return;
   auto const atAddress = status.index()->transportIpToPeer( transport );
   if ( !atAddress ) return;
   atAddress->ldpIdentifierDel( peer );
   if ( atAddress->ldpIdentifiers() == 0 ) status.index()->transportIpToPeerDel( transport );
}

/// The adjacency is no more, nor is the peer if it was the last.
void lose( Agent & agent, LdpAdjStatus & adj, char const * cause ) {
   Status & status = agent.status();
   LdpAdjId const id = adj.ldpAdjId();
   agent.journal().add( { {}, agent.id(), id.ldpIdentifier(), adjacencyText( id ), "hears", "-", cause },
                        &id );
   Addr const transport = adj.peerIpAddr();
   auto const index = status.index();
   adj.adjStatusCodeIs( holdTimerExpired );
   status.ldpAdjStatusColl()->adjStatusDel( id );
   status.ldpAdjConfigColl()->adjConfigDel( id );
   unmapTransport( status, id.ldpIdentifier(), transport );
   if ( id.adjType() == LdpLinkAdj ) {
      if ( auto const link = status.ldpLinkStatusColl()->adjLinkStatus( id.intfId() ) )
         link->adjIdSetDel( id );
      if ( auto const perLink = index->ldpAdjPerLinkColl( id.intfId() ) ) {
         perLink->ldpAdjDel( id );
         if ( perLink->ldpAdjs() == 0 ) index->ldpAdjPerLinkCollDel( id.intfId() );
      }
   } else {
      index->targetIpToLdpAdjIdDel( id.targetIpAddr() );
   }
   auto const peers = status.ldpPeerConfigColl();
   auto const peer = peers->peerConfig( id.ldpIdentifier() );
   if ( !peer ) return;
   peer->ldpAdjDel( id );
   peer->latestAdjStatusCodeIs( holdTimerExpired );
   if ( peer->ldpAdjs() != 0 ) {
      if ( peer->activeAdj() == id ) peer->activeAdjIs( sortedKeys( peer->ldpAdjColl() ).front() );
      return;
   }
   peers->peerConfigDel( id.ldpIdentifier() );
   status.ldpPeerStatusColl()->peerStatusDel( id.ldpIdentifier() );
}

} // namespace

/// Whether the adjacency is known or may be.
bool Discovery::hasRoom( Status & status, LdpAdjId const & id ) {
   auto const all = status.ldpAdjStatusColl();
   if ( all->adjStatus( id ) || ( all->adjStatuss() < agents_.limits().adjacencies &&
                                  adjacencies_ < MonitorLimits::adjacenciesInAll ) )
      return true;
   ++agents_.turnedAway().adjacencies;
   return false;
}

/// The agent has heard a neighbour's hello on an adjacency for which its own hellos propose `ownHoldTime`.
void Discovery::hear( Agent & agent, LdpAdjId const & id, Addr const & source, HelloFacts const & hello,
                      U16 ownHoldTime ) {
   Status & status = agent.status();
   bool const isLink = id.adjType() == LdpLinkAdj;
   U16 const unsaid =
        isLink ? LdpProtoParam::defaultBasicHelloHoldTime() : LdpProtoParam::defaultTargetHelloHoldTime();
   auto const all = status.ldpAdjStatusColl();
   bool const isNew = !all->adjStatus( id );
   auto const adj = all->adjStatusIs( id );
   adj->rxPktCountInc( 1 );
   adj->msgIdIs( hello.msgId );
   adj->peerHoldTimeIs( hello.holdTime );
   adj->operHoldTimeIs( operHoldTime( ownHoldTime, hello.holdTime, unsaid ) );
   bool const forEver = adj->operHoldTime() == LdpProtoParam::infiniteHelloHoldTime();
   adj->adjExpireTimeIs( forEver ? 0.0 : hello.at + adj->operHoldTime() );
   adj->peerSrcIpAddrIs( source );
   Addr const before = adj->peerIpAddr();
   adj->peerIpAddrIs( hello.transport );
   if ( before != hello.transport ) unmapTransport( status, id.ldpIdentifier(), before );
   if ( hello.hasConfigSeq ) adj->peerConfigSeqNumIs( hello.configSeq );
   status.ldpAdjConfigColl()->adjConfigIs( id )->holdTimeIs( ownHoldTime );
   if ( isNew ) {
      ++adjacencies_;
      expiries_.add( hello.at + adj->operHoldTime(), { &agent, id } );
      agent.journal().add( { {}, agent.id(), id.ldpIdentifier(), adjacencyText( id ), "-", "hears", "hello" },
                           &id );
   }

   LdpIdentifier const & neighbor = id.ldpIdentifier();
   auto const peer = status.ldpPeerConfigColl()->peerConfigIs( neighbor );
   peer->ldpAdjIs( id, true );
   if ( !peer->activeAdj() ) peer->activeAdjIs( id );
   peer->peerIpAddrIs( hello.transport );
   if ( hello.hasConfigSeq ) peer->peerConfigSeqNumIs( U16( hello.configSeq ) );
   status.ldpPeerStatusColl()->peerStatusIs( neighbor );
   status.index()->transportIpToPeerIs( hello.transport )->ldpIdentifierIs( neighbor, true );
   if ( !isLink ) {
      status.ldpTargetStatusColl()->adjTargetStatusIs( id.targetIpAddr() )->rxPktCountInc( 1 );
      status.index()->targetIpToLdpAdjIdIs( id.targetIpAddr(), id );
      return;
   }
   auto const heardOn = status.ldpLinkStatusColl()->adjLinkStatusIs( id.intfId() );
   heardOn->rxPktCountInc( 1 );
   heardOn->adjIdSetIs( id, true );
   status.index()->ldpAdjPerLinkCollIs( id.intfId() )->ldpAdjIs( id, true );
}

void Discovery::onHello( Agent & sender, Origin const & origin, LdpHelloMsgParser const & hello ) {
   Flow const & flow = *origin.flow;
   Addr const source = addressOf( flow.source, flow.addressSize );
   HelloFacts const facts = factsOf( hello, source, agents_.journal().now() );
   agents_.seen( facts.transport, sender.id() );
   if ( hello.msgCommonHelloTlv()->targetedHello() ) {
      onTargetedHello( sender, source, addressOf( flow.destination, flow.addressSize ), facts );
   } else {
      onLinkHello( sender, source, origin.place ? *origin.place : Place(), facts );
   }
}

/// What the hearer makes of the other's last hello, if they share a link and the hearer is there.
void Discovery::hearOnLink( Links::Domain const & domain, Port & hearer, Port const & other ) {
   double const now = agents_.journal().now();
   if ( !Links::together( domain, hearer, other ) || over( hearer.until(), now ) ||
        over( other.until(), now ) )
      return;
   LdpAdjId const id( other.agent->id(), hearer.name );
   if ( !hasRoom( hearer.agent->status(), id ) ) return;
   hear( *hearer.agent, id, other.source, other.last, hearer.last.holdTime );
}

void Discovery::onLinkHello( Agent & sender, Addr const & source, Place const & place,
                             HelloFacts const & facts ) {
   Links::Domain * const domain = links_.domain( place );
   auto const moved = [&]( Port & hearer ) {
      Status & status = hearer.agent->status();
      auto const heard = status.index()->ldpAdjPerLinkColl( hearer.name );
      if ( !heard ) return;
      for ( LdpAdjId const & id : sortedKeys( heard->ldpAdjColl() ) ) {
         auto const adj = status.ldpAdjStatusColl()->adjStatus( id );
         if ( !adj ) continue;
         auto const other = domain->ports.find( { adj->peerSrcIpAddr(), id.ldpIdentifier() } );
         if ( other == domain->ports.end() || Links::together( *domain, hearer, other->second ) ) continue;
         lose( *hearer.agent, *adj, "not on one link after all" );
         --adjacencies_;
      }
   };
   bool isNew = false;
   Port * const port =
        domain ? links_.portIs( *domain, sender, source, place.sender, facts.at, moved, isNew ) : nullptr;
   if ( !port ) {
      ++agents_.turnedAway().adjacencies;
      return;
   }
   port->last = facts;
   auto const configs = sender.status().ldpLinkConfigColl();
   commonConfigIs( *configs->ldpLinkCommonConfig(), facts );
   auto const config = configs->adjLinkConfigIs( port->name );
   config->holdTimeIs( facts.holdTime );
   if ( source.family() == Lumo::ipv4 ) config->ipAddrIs( source.ipAddr() );
   auto const linkStatus = sender.status().ldpLinkStatusColl()->adjLinkStatusIs( port->name );
   linkStatus->runningIs( true );
   linkStatus->holdTimeIs( facts.holdTime );
   linkStatus->txPktCountInc( 1 );
   links_.eachOther( *domain, *port, [&]( Port & other ) {
      hearOnLink( *domain, other, *port );
      // Who comes to a link has heard those who were there; the capture just did not know of it.
      if ( isNew ) hearOnLink( *domain, *port, other );
   } );
}

void Discovery::onTargetedHello( Agent & sender, Addr const & source, Addr const & destination,
                                 HelloFacts const & facts ) {
   // A target is an IPv4 address; the model has no place for others.
   if ( source.family() != Lumo::ipv4 ) return;
   auto const known = targets_.find( { source, destination } );
   if ( known == targets_.end() && targets_.size() >= MonitorLimits::adjacenciesInAll ) {
      ++agents_.turnedAway().adjacencies;
      return;
   }
   auto const configs = sender.status().ldpTargetConfigColl();
   bool const isNew = !configs->adjTargetConfig( destination.ipAddr() );
   if ( isNew && configs->adjTargetConfigs() >= agents_.limits().adjacencies ) {
      ++agents_.turnedAway().adjacencies;
      return;
   }
   targets_[{ source, destination }] = { &sender, facts };
   commonConfigIs( *configs->ldpTargetCommonConfig(), facts );
   auto const config = configs->adjTargetConfigIs( destination.ipAddr() );
   config->configStateIs( configEnabled );
   config->holdTimeIs( facts.holdTime );
   auto const target = sender.status().ldpTargetStatusColl()->adjTargetStatusIs( destination.ipAddr() );
   target->runningIs( true );
   target->holdTimeIs( facts.holdTime );
   target->txPktCountInc( 1 );
   // That somebody is at the destination and listens shows when the hello is answered.
   auto const answer = targets_.find( { destination, source } );
   if ( answer == targets_.end() ) {
      if ( Agent * const hearer = heardBySession( sender, destination ) )
         hearTarget( *hearer, sender, source, facts, 0 );
      return;
   }
   if ( answer->second.sender->id().lsrId() == sender.id().lsrId() ) return;
   hearTarget( *answer->second.sender, sender, source, facts, answer->second.last.holdTime );
   if ( isNew )
      hearTarget( sender, *answer->second.sender, destination, answer->second.last, facts.holdTime );
}

/// Who is at the target, if his part in a session with the sender shows that he has heard such hellos: an
/// Initialization goes to who was heard (RFC 5036, 3.5.3). It proves nothing if they have heard each other on
/// a link.
Agent * Discovery::heardBySession( Agent & sender, Addr const & target ) {
   Agent * const hearer = agents_.find( agents_.at( target ) );
   if ( !hearer || hearer->id().lsrId() == sender.id().lsrId() || !hearer->hasSession( sender.id() ) ||
        !hearer->sessionEnd( sender.id() ).proposed.made )
      return nullptr;
   auto const peer = hearer->status().ldpPeerConfigColl()->peerConfig( sender.id() );
   if ( !peer ) return hearer;
   for ( auto const & adjacency : peer->ldpAdjColl() )
      if ( adjacency.key().adjType() == LdpLinkAdj ) return nullptr;
   return hearer;
}

void Discovery::hearTarget( Agent & hearer, Agent & other, Addr const & source, HelloFacts const & hello,
                            U16 ownHoldTime ) {
   U16 const hold = hello.holdTime ? hello.holdTime : LdpProtoParam::defaultTargetHelloHoldTime();
   if ( hello.at + hold <= agents_.journal().now() ) return;
   LdpAdjId const id( other.id(), source.ipAddr() );
   if ( hasRoom( hearer.status(), id ) ) hear( hearer, id, source, hello, ownHoldTime );
}

void Discovery::onBadHello( Agent & sender, Origin const & origin ) {
   Links::Domain * const domain = links_.domain( origin.place ? *origin.place : Place() );
   if ( !domain ) return;
   Addr const source = addressOf( origin.flow->source, origin.flow->addressSize );
   auto const port = domain->ports.find( { source, sender.id() } );
   if ( port == domain->ports.end() ) return;
   links_.eachOther( *domain, port->second, [&]( Port & other ) {
      if ( !Links::together( *domain, other, port->second ) ) return;
      Status & status = other.agent->status();
      status.ldpLinkStatusColl()->adjLinkStatusIs( other.name )->errPktCountInc( 1 );
      auto const adj = status.ldpAdjStatusColl()->adjStatus( LdpAdjId( sender.id(), other.name ) );
      if ( adj ) adj->errPktCountInc( 1 );
   } );
}

void Discovery::expire() {
   double const now = agents_.journal().now();
   expiries_.pass( now, [&]( Adjacency const & adjacency ) {
      constexpr double lookAgain = 60.0; // at one that never expires: its hold time may be another by then
      auto const adj = adjacency.agent->status().ldpAdjStatusColl()->adjStatus( adjacency.id );
      if ( !adj ) return 0.0;
      double const until = adj->adjExpireTime();
      if ( !over( until, now ) ) return until == 0.0 ? now + lookAgain : until;
      lose( *adjacency.agent, *adj, "hold time expired" );
      --adjacencies_;
      return 0.0;
   } );
}

} // namespace LdpTool
