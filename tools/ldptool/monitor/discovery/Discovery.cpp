// Hellos, and the adjacencies that they keep.
#include "monitor/discovery/Discovery.h"

#include "Ldp/LdpProtoParam.h"

#include <algorithm>

namespace LdpTool {

using namespace Ldp;

namespace {

/// The subnet that stands for a link: a capture names no interfaces, and routers on one link share one of
/// these.
Lumo::IpGenPrefix subnetOf( Addr const & address ) {
   constexpr U32 ipv4Bits = 24;
   constexpr U32 ipv6Bits = 64;
   if ( address.family() == Lumo::ipv4 ) return Lumo::IpGenPrefix( address.ipAddr(), ipv4Bits );
   return Lumo::IpGenPrefix( address.ip6Addr(), ipv6Bits );
}

Lumo::IntfId linkOf( Addr const & address ) { return Lumo::IntfId( subnetOf( address ).stringValue() ); }

bool isOnLink( Agent const & agent, Addr const & source ) {
   return std::any_of( agent.linkAddresses.begin(), agent.linkAddresses.end(),
                       [&]( Addr const & own ) { return subnetOf( own ) == subnetOf( source ); } );
}

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

/// What a hello says of its sender's configuration; links and targets share it.
template< class CommonConfig >
void commonConfigIs( CommonConfig & config, LdpHelloMsgParser const & hello, Addr const & source ) {
   config.ipTransportAddrIs( transportAddress( hello, source ) );
   if ( hello.msgConfigSeqTlv() ) config.configSeqNumIs( hello.msgConfigSeqTlv()->configSeqNum() );
}

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
void lose( Status & status, LdpAdjStatus & adj ) {
   LdpAdjId const id = adj.ldpAdjId();
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
   if ( all->adjStatus( id ) || ( all->adjStatuss() < mostOfSpeaker && adjacencies_ < mostInAll ) )
      return true;
   ++refused_;
   return false;
}

/// The agent has heard a neighbour's hello on an adjacency for which its own hellos propose `ownHoldTime`.
void Discovery::hear( Agent & agent, LdpAdjId const & id, Addr const & source,
                      LdpHelloMsgParser const & hello, U16 ownHoldTime, double now ) {
   Status & status = agent.status();
   auto const & params = *hello.msgCommonHelloTlv();
   U16 const unsaid = params.targetedHello() ? LdpProtoParam::defaultTargetHelloHoldTime()
                                             : LdpProtoParam::defaultBasicHelloHoldTime();
   auto const all = status.ldpAdjStatusColl();
   if ( !all->adjStatus( id ) ) ++adjacencies_;
   auto const adj = all->adjStatusIs( id );
   adj->rxPktCountInc( 1 );
   adj->msgIdIs( hello.msgId() );
   adj->peerHoldTimeIs( params.holdTime() );
   adj->operHoldTimeIs( operHoldTime( ownHoldTime, params.holdTime(), unsaid ) );
   bool const forEver = adj->operHoldTime() == LdpProtoParam::infiniteHelloHoldTime();
   adj->adjExpireTimeIs( forEver ? 0.0 : now + adj->operHoldTime() );
   adj->peerSrcIpAddrIs( source );
   Addr const transport = transportAddress( hello, source );
   Addr const before = adj->peerIpAddr();
   adj->peerIpAddrIs( transport );
   if ( before != transport ) unmapTransport( status, id.ldpIdentifier(), before );
   if ( hello.msgConfigSeqTlv() ) adj->peerConfigSeqNumIs( hello.msgConfigSeqTlv()->configSeqNum() );
   status.ldpAdjConfigColl()->adjConfigIs( id )->holdTimeIs( ownHoldTime );

   LdpIdentifier const & neighbor = id.ldpIdentifier();
   auto const peer = status.ldpPeerConfigColl()->peerConfigIs( neighbor );
   peer->ldpAdjIs( id, true );
   if ( !peer->activeAdj() ) peer->activeAdjIs( id );
   peer->peerIpAddrIs( transport );
   if ( hello.msgConfigSeqTlv() ) peer->peerConfigSeqNumIs( U16( hello.msgConfigSeqTlv()->configSeqNum() ) );
   status.ldpPeerStatusColl()->peerStatusIs( neighbor );
   status.index()->transportIpToPeerIs( transport )->ldpIdentifierIs( neighbor, true );
}

void Discovery::onHello( Agent & sender, Flow const & flow, LdpHelloMsgParser const & hello, double now ) {
   Addr const source = addressOf( flow.source, flow.addressSize );
   agents_.seen( transportAddress( hello, source ), sender.id() );
   if ( hello.msgCommonHelloTlv()->targetedHello() ) {
      onTargetedHello( sender, source, addressOf( flow.destination, flow.addressSize ), hello, now );
   } else {
      onLinkHello( sender, source, hello, now );
   }
}

void Discovery::onLinkHello( Agent & sender, Addr const & source, LdpHelloMsgParser const & hello,
                             double now ) {
   Lumo::IntfId const link = linkOf( source );
   U16 const holdTime = hello.msgCommonHelloTlv()->holdTime();
   sender.linkAddresses.insert( source );
   auto const configs = sender.status().ldpLinkConfigColl();
   commonConfigIs( *configs->ldpLinkCommonConfig(), hello, source );
   auto const config = configs->adjLinkConfigIs( link );
   config->holdTimeIs( holdTime );
   if ( source.family() == Lumo::ipv4 ) config->ipAddrIs( source.ipAddr() );
   auto const linkStatus = sender.status().ldpLinkStatusColl()->adjLinkStatusIs( link );
   linkStatus->runningIs( true );
   linkStatus->holdTimeIs( holdTime );
   linkStatus->txPktCountInc( 1 );

   LdpAdjId const id( sender.id(), link );
   for ( auto const & [identifier, agent] : agents_.all() ) {
      if ( identifier == sender.id() || !isOnLink( *agent, source ) ) continue;
      Status & status = agent->status();
      if ( !hasRoom( status, id ) ) continue;
      hear( *agent, id, source, hello, status.ldpLinkConfigColl()->adjLinkConfigIs( link )->holdTime(), now );
      auto const heardOn = status.ldpLinkStatusColl()->adjLinkStatusIs( link );
      heardOn->rxPktCountInc( 1 );
      heardOn->adjIdSetIs( id, true );
      status.index()->ldpAdjPerLinkCollIs( link )->ldpAdjIs( id, true );
   }
}

void Discovery::onTargetedHello( Agent & sender, Addr const & source, Addr const & destination,
                                 LdpHelloMsgParser const & hello, double now ) {
   // A target is an IPv4 address; the model has no place for others.
   if ( source.family() != Lumo::ipv4 ) return;
   U16 const holdTime = hello.msgCommonHelloTlv()->holdTime();
   auto const configs = sender.status().ldpTargetConfigColl();
   commonConfigIs( *configs->ldpTargetCommonConfig(), hello, source );
   auto const config = configs->adjTargetConfigIs( destination.ipAddr() );
   config->configStateIs( configEnabled );
   config->holdTimeIs( holdTime );
   auto const target = sender.status().ldpTargetStatusColl()->adjTargetStatusIs( destination.ipAddr() );
   target->runningIs( true );
   target->holdTimeIs( holdTime );
   target->txPktCountInc( 1 );

   LdpIdentifier const receiver = agents_.at( destination );
   if ( !receiver || receiver == sender.id() ) return;
   Agent * const heard = agents_.agentIs( receiver );
   LdpAdjId const id( sender.id(), source.ipAddr() );
   if ( !heard || !hasRoom( heard->status(), id ) ) return;
   Agent & agent = *heard;
   auto const own = agent.status().ldpTargetConfigColl()->adjTargetConfig( source.ipAddr() );
   hear( agent, id, source, hello, own ? own->holdTime() : LdpProtoParam::defaultTargetHelloHoldTime(), now );
   agent.status().ldpTargetStatusColl()->adjTargetStatusIs( source.ipAddr() )->rxPktCountInc( 1 );
   agent.status().index()->targetIpToLdpAdjIdIs( source.ipAddr(), id );
}

void Discovery::onBadHello( Agent & sender, Flow const & flow ) {
   Addr const source = addressOf( flow.source, flow.addressSize );
   Lumo::IntfId const link = linkOf( source );
   for ( auto const & [identifier, agent] : agents_.all() ) {
      if ( identifier == sender.id() || !isOnLink( *agent, source ) ) continue;
      agent->status().ldpLinkStatusColl()->adjLinkStatusIs( link )->errPktCountInc( 1 );
      auto const adj = agent->status().ldpAdjStatusColl()->adjStatus( LdpAdjId( sender.id(), link ) );
      if ( adj ) adj->errPktCountInc( 1 );
   }
}

void Discovery::expire( double now ) {
   for ( auto const & [identifier, agent] : agents_.all() ) {
      Status & status = agent->status();
      std::vector< LdpAdjId > over;
      for ( auto & adj : status.ldpAdjStatusColl()->adjStatusColl() ) {
         if ( adj.adjExpireTime() != 0.0 && adj.adjExpireTime() <= now ) over.push_back( adj.ldpAdjId() );
      }
      std::sort( over.begin(), over.end() );
      for ( LdpAdjId const & id : over ) {
         lose( status, *status.ldpAdjStatusColl()->adjStatus( id ) );
         --adjacencies_;
      }
   }
}

} // namespace LdpTool
