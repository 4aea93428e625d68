#include "Monitor.h"

#include "Ldp/LdpProtoParam.h"

#include <algorithm>
#include <cstring>

namespace LdpTool {

using namespace Ldp;

namespace {

constexpr U16 infinite = 0xffff;
constexpr U16 linkHoldTime = 15;   // seconds, where a hello proposes none (RFC 5036, 3.5.2)
constexpr U16 targetHoldTime = 45; // likewise for targeted hellos
constexpr U16 defaultMaxPdu = 4096;

Lumo::IpGenAddr addressOf( std::array< std::uint8_t, 16 > const & octets, std::uint8_t size ) {
   if ( size == Lumo::IpAddr::size ) {
      Lumo::IpAddr addr;
      std::memcpy( addr.octets(), octets.data(), size );
      return addr;
   }
   Lumo::Ip6Addr addr;
   std::memcpy( addr.octets(), octets.data(), size );
   return addr;
}

/// The subnet that stands for a link: a capture names no interfaces, and routers on one link share one of
/// these.
Lumo::IpGenPrefix linkOf( Lumo::IpGenAddr const & source ) {
   constexpr U32 ipv4Bits = 24;
   constexpr U32 ipv6Bits = 64;
   if ( source.family() == Lumo::ipv4 ) return Lumo::IpGenPrefix( source.ipAddr(), ipv4Bits );
   return Lumo::IpGenPrefix( source.ip6Addr(), ipv6Bits );
}

/// The hold time in force between two proposals: the smaller, each 0 standing for the default.
U16 operHoldTime( U16 own, U16 peer, U16 unsaid ) {
   return std::min( own ? own : unsaid, peer ? peer : unsaid );
}

} // namespace

Monitor::Addr Monitor::source() const { return addressOf( flow_->source, flow_->addressSize ); }
Monitor::Addr Monitor::destination() const { return addressOf( flow_->destination, flow_->addressSize ); }

void Monitor::onPdu( Pdu const & pdu ) {
   flow_ = pdu.origin.flow;
   arrival_ = pdu.origin.arrival;
   now_ = double( arrival_.seconds ) + double( arrival_.nanoseconds ) * 1e-9;
   sender_ = pdu.parser->ldpIdentifier();
   expire();
}

void Monitor::onMessage( Message const & message ) {
   if ( !flow_ ) return;
   LdpMsgParser const & parser = message.parser;
   network_.speakerIs( sender_ );
   if ( parser.type() == LdpHello ) {
      if ( parser.validMsg() ) onHello( message.as< LdpHelloMsgParser >() );
   } else if ( flow_->protocol == protocolTcp ) {
      speakerAt_[source()] = sender_;
      onSessionMessage( parser, !message.bad() );
   }
}

// Hold times run out by the capture's clock. A second's grain is enough for times in seconds, and keeps a
// walk over all adjacencies away from every message.
void Monitor::expire() {
   if ( now_ - expiredAt_ < 1.0 && now_ >= expiredAt_ ) return;
   expiredAt_ = now_;
   for ( auto & speaker : network_.speakerColl() ) {
      auto const adjacencies = speaker.adjStatusColl();
      auto const peers = speaker.peerConfigColl();
      for ( auto & adj : adjacencies->adjStatusColl() ) {
         if ( adj.adjExpireTime() == 0.0 || adj.adjExpireTime() > now_ ) continue;
         LdpAdjId const id = adj.ldpAdjId();
         adj.adjStatusCodeIs( holdTimerExpired );
         adjacencies->adjStatusDel( id );
         if ( auto const peer = peers->peerConfig( id.ldpIdentifier() ) ) {
            peer->ldpAdjDel( id );
            peer->latestAdjStatusCodeIs( holdTimerExpired );
            if ( peer->ldpAdjs() == 0 ) peers->peerConfigDel( id.ldpIdentifier() );
         }
      }
      for ( auto & status : speaker.sessionStatusColl()->sessionStatusColl() ) {
         if ( status.sessionState() != stateOperational || status.sessionExpireTime() > now_ ) continue;
         stateIs( status, stateExpired, keepAliveExpired, "no message within the keep-alive time" );
      }
   }
}

bool Monitor::shareLink( LdpIdentifier const & speaker, Addr const & source ) const {
   auto const known = links_.find( speaker );
   if ( known == links_.end() ) return false;
   return std::any_of( known->second.begin(), known->second.end(),
                       [&]( auto const & own ) { return linkOf( own.first ) == linkOf( source ); } );
}

void Monitor::onHello( LdpHelloMsgParser const & hello ) {
   auto const & params = *hello.msgCommonHelloTlv();
   offers_[sender_].helloHoldTime = params.holdTime();
   if ( hello.msgIpTransportTlv() ) speakerAt_[hello.msgIpTransportTlv()->ipAddr()] = sender_;
   if ( hello.msgIp6TransportTlv() ) speakerAt_[hello.msgIp6TransportTlv()->ip6Addr()] = sender_;
   if ( params.targetedHello() ) {
      auto const target = speakerAt_.find( destination() );
      if ( target == speakerAt_.end() || target->second == sender_ ) return;
      hear( *network_.speakerIs( target->second ), LdpAdjId( sender_, source().ipAddr() ), hello );
      return;
   }
   links_[sender_][source()] = true;
   LdpAdjId const id( sender_, Lumo::IntfId( linkOf( source() ).stringValue() ) );
   for ( auto & speaker : network_.speakerColl() ) {
      if ( speaker.ldpIdentifier() == sender_ || !shareLink( speaker.ldpIdentifier(), source() ) ) continue;
      hear( speaker, id, hello );
   }
}

void Monitor::hear( Speaker & speaker, LdpAdjId const & id, LdpHelloMsgParser const & hello ) {
   auto const & params = *hello.msgCommonHelloTlv();
   auto const adj = speaker.adjStatusColl()->adjStatusIs( id );
   adj->rxPktCountInc( 1 );
   adj->msgIdIs( hello.msgId() );
   adj->peerHoldTimeIs( params.holdTime() );
   adj->operHoldTimeIs( operHoldTime( offers_[speaker.ldpIdentifier()].helloHoldTime, params.holdTime(),
                                      params.targetedHello() ? targetHoldTime : linkHoldTime ) );
   adj->adjExpireTimeIs( adj->operHoldTime() == infinite ? 0.0 : now_ + adj->operHoldTime() );
   adj->peerSrcIpAddrIs( source() );
   Addr transport = source();
   if ( hello.msgIpTransportTlv() ) transport = hello.msgIpTransportTlv()->ipAddr();
   if ( hello.msgIp6TransportTlv() ) transport = hello.msgIp6TransportTlv()->ip6Addr();
   adj->peerIpAddrIs( transport );
   if ( hello.msgConfigSeqTlv() ) adj->peerConfigSeqNumIs( hello.msgConfigSeqTlv()->configSeqNum() );

   auto const peer = speaker.peerConfigColl()->peerConfigIs( sender_ );
   peer->ldpAdjIs( id, true );
   if ( !peer->activeAdj() ) peer->activeAdjIs( id );
   peer->peerIpAddrIs( transport );
   if ( hello.msgConfigSeqTlv() ) peer->peerConfigSeqNumIs( U16( hello.msgConfigSeqTlv()->configSeqNum() ) );
}

Vorn::Ptr< LdpSessionStatus > Monitor::session( LdpIdentifier const & own, LdpIdentifier const & peer,
                                                bool ownIsSource ) {
   auto const status =
        network_.speakerIs( own )->sessionStatusColl()->sessionStatusIs( LdpSessionId( peer ) );
   status->checkInit();
   status->localLdpIdentifierIs( own );
   status->localIpAddrIs( ownIsSource ? source() : destination() );
   status->peerIpAddrIs( ownIsSource ? destination() : source() );
   status->localPortIs( ownIsSource ? flow_->sourcePort : flow_->destinationPort );
   status->peerPortIs( ownIsSource ? flow_->destinationPort : flow_->sourcePort );
   return status;
}

void Monitor::onSessionMessage( LdpMsgParser const & parser, bool good ) {
   // Who the message goes to: an Initialization says so, else whoever was seen at that address.
   auto const known = speakerAt_.find( destination() );
   LdpIdentifier receiver = known == speakerAt_.end() ? LdpIdentifier() : known->second;
   if ( good && parser.type() == LdpInit ) {
      receiver = static_cast< LdpInitMsgParser const & >( parser ).msgSessionParamTlv()->recvLdpIdentifier();
   }
   if ( !receiver || receiver == sender_ ) return;
   auto const received = session( receiver, sender_, false );
   auto const sent = session( sender_, receiver, true );
   if ( !good ) {
      received->sessionStateReasonIs( parser.reason() );
      return;
   }
   switch ( parser.type() ) {
   case LdpInit: onInit( static_cast< LdpInitMsgParser const & >( parser ), *received, *sent ); break;
   case LdpKeepAlive: onKeepAlive( *received ); break;
   case LdpAddress:
   case LdpAddressWithdraw: onAddresses( parser, *received, *sent ); break;
   case LdpNotification:
      onNotification( static_cast< LdpNotificationMsgParser const & >( parser ), *received, *sent );
      return;
   default: break;
   }
   // Every message of the peer keeps the session alive (RFC 5036, 2.5.6).
   received->sessionExpireTimeIs( now_ + received->operKeepAliveTime() );
}

void Monitor::onInit( LdpInitMsgParser const & init, LdpSessionStatus & received, LdpSessionStatus & sent ) {
   auto const & params = *init.msgSessionParamTlv();
   Offer & offer = offers_[sender_];
   offer.keepAliveTime = params.keepAliveTime();
   offer.maxPduLength = params.maxPduLength() < 256 ? defaultMaxPdu : params.maxPduLength();
   received.peerKeepAliveTimeIs( offer.keepAliveTime );
   received.peerMaxPduLengthIs( offer.maxPduLength );
   received.peerLabelAdvDsplIs( params.advDiscipline() ? onDemand : unSolicited );
   received.peerCapabilityDelAll();
   for ( auto const & capability : init.capabilities() )
      received.peerCapabilityIs( capability.key(), capability.value()->state() );
   if ( auto const * ft = init.msgFtSessionTlv() ) {
      received.operGrSupportedIs( ft->learnFromNetwork() );
      received.peerGrReconnectTimeoutIs( ft->ftReconnectTimeout() );
      received.peerGrRecoveryTimeoutIs( ft->ftRecoveryTime() );
   }
   negotiate( received, received.localLdpIdentifier(), sender_ );
   negotiate( sent, sender_, received.localLdpIdentifier() );
   if ( sent.sessionState() != stateOpenRecv ) stateIs( sent, stateOpenSent, success, "sent Initialization" );
   stateIs( received, stateOpenRecv, success, "received Initialization" );
}

void Monitor::negotiate( LdpSessionStatus & status, LdpIdentifier const & own, LdpIdentifier const & peer ) {
   auto const ours = offers_.find( own );
   auto const theirs = offers_.find( peer );
   if ( ours == offers_.end() || theirs == offers_.end() ) return;
   if ( !ours->second.keepAliveTime || !theirs->second.keepAliveTime ) return;
   status.operKeepAliveTimeIs( std::min( ours->second.keepAliveTime, theirs->second.keepAliveTime ) );
   status.operMaxPduLengthIs( std::min( ours->second.maxPduLength, theirs->second.maxPduLength ) );
}

void Monitor::onKeepAlive( LdpSessionStatus & received ) {
   if ( received.sessionState() != stateOpenRecv ) return;
   stateIs( received, stateOperational, success, "received KeepAlive" );
   received.sessionUptimeIs( now_ );
}

void Monitor::onAddresses( LdpMsgParser const & parser, LdpSessionStatus & received,
                           LdpSessionStatus & sent ) {
   bool const withdraw = parser.type() == LdpAddressWithdraw;
   auto const & list = withdraw
                            ? *static_cast< LdpAddressWithdrawMsgParser const & >( parser ).addressListTlv()
                            : *static_cast< LdpAddressMsgParser const & >( parser ).addressListTlv();
   for ( U16 i = 0; i < list.numAddress(); ++i ) {
      if ( withdraw ) {
         received.peerIntfIpDel( list.address( i ) );
      } else {
         received.peerIntfIpIs( list.address( i ), true );
      }
   }
   if ( withdraw ) return;
   received.addressMsgRcvdIs( true );
   sent.addressMsgTsmtIs( true );
}

void Monitor::onNotification( LdpNotificationMsgParser const & notification, LdpSessionStatus & received,
                              LdpSessionStatus & sent ) {
   auto const & status = *notification.msgStatusTlv();
   if ( !status.statusError() ) return;
   Vorn::String const reason = sessionStateStrForStatusCode( status.statusData() );
   stateIs( received, stateNonExist, status.statusData(), "peer: " + reason );
   stateIs( sent, stateNonExist, status.statusData(), reason );
   for ( LdpSessionStatus * end : { &received, &sent } ) {
      end->peerIntfIpDelAll();
      end->sessionUptimeIs( 0.0 );
   }
}

void Monitor::stateIs( LdpSessionStatus & status, SessionState state, LdpStatusCode code,
                       Vorn::String const & reason ) {
   LdpSessionState const next( state, code );
   if ( status.ldpSessionState() == next ) return;
   status.ldpSessionStateIs( next );
   status.sessionStateLastChangeIs( now_ );
   status.sessionStateCountInc( state, 1 );
   status.sessionStateReasonIs( reason );
   status.sessionStateLogEntryColl()->addSessionStateLogEntry(
        LdpSessionStateLogEntry( now_, state, code, reason ) );
}

} // namespace LdpTool
