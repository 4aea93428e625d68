// Each message, taken to the agents of its sender and its receiver.
#include "monitor/Monitor.h"

#include "monitor/labels/LabelMessages.h"
#include "monitor/session/Sessions.h"

namespace LdpTool {

using namespace Ldp;

void Monitor::arrive( Origin const & origin ) {
   flow_ = origin.flow;
   sent_ = received_ = nullptr;
   arrival_ = origin.arrival;
   now_ = double( arrival_.seconds ) + double( arrival_.nanoseconds ) * 1e-9;
   // Hold times run out by the capture's clock. A second's grain is enough for times in seconds, and keeps a
   // walk over all adjacencies away from every PDU.
   if ( now_ - expiredAt_ < 1.0 && now_ >= expiredAt_ ) return;
   expiredAt_ = now_;
   discovery_.expire( now_ );
   expireSessions( agents_, now_ );
}

void Monitor::onPdu( Pdu const & pdu ) {
   arrive( pdu.origin );
   sender_ = pdu.pdu.ldpIdentifier();
   if ( !flow_ || flow_->protocol != protocolTcp ) return;
   agents_.seen( addressOf( flow_->source, flow_->addressSize ), sender_ );
   receiverIs( agents_.at( addressOf( flow_->destination, flow_->addressSize ) ) );
}

void Monitor::receiverIs( LdpIdentifier const & receiver ) {
   if ( !receiver || receiver == sender_ || ( received_ && received_->agent.id() == receiver ) ) return;
   Agent * const sender = agents_.agentIs( sender_ );
   Agent * const heard = agents_.agentIs( receiver );
   if ( !sender || !heard ) return;
   sent_ = &sender->sessionEnd( receiver );
   received_ = &heard->sessionEnd( sender_ );
   connectionIs( *sent_, *flow_, true, now_ );
   connectionIs( *received_, *flow_, false, now_ );
   sent_->statistics->ldpPduTxCountInc( 1 );
   received_->statistics->ldpPduRxCountInc( 1 );
}

void Monitor::onMessage( Message const & message ) {
   if ( !flow_ ) return;
   LdpMsgParser const & parser = message.parser;
   if ( parser.type() != LdpHello ) {
      if ( flow_->protocol == protocolTcp ) onSessionMessage( message );
   } else if ( Agent * const sender = agents_.agentIs( sender_ ) ) {
      if ( parser.validMsg() ) {
         discovery_.onHello( *sender, *flow_, message.as< LdpHelloMsgParser >(), now_ );
      } else {
         discovery_.onBadHello( *sender, *flow_ );
      }
   }
}

void Monitor::onSessionMessage( Message const & message ) {
   LdpMsgParser const & parser = message.parser;
   LdpMsgType const type = parser.type();
   // Who the message goes to: an Initialization says so, else whoever was seen at that address.
   if ( type == LdpInit && parser.validMsg() )
      receiverIs( message.as< LdpInitMsgParser >().msgSessionParamTlv()->recvLdpIdentifier() );
   if ( !received_ ) return;
   Exchange const exchange{ *sent_, *received_, parser, now_ };
   sent_->agent.status().statistics()->messageIdIs( parser.msgId() );
   sent_->statistics->ldpMsgTxCountInc( type, 1 );
   received_->statistics->ldpMsgRxCountInc( type, 1 );
   if ( message.bad() ) {
      received_->status->sessionStateReasonIs( parser.reason() );
      return;
   }
   if ( !parser.validMsg() ) return; // of unknown type, to be ignored
   // What was still under way when the session ended is not heard any more.
   bool const ended = received_->status->sessionState() == stateNonExist;
   if ( ended && type != LdpInit && type != LdpNotification ) return;
   if ( type != LdpNotification ) onSignOfLife( exchange );
   switch ( type ) {
   case LdpInit: return onInit( exchange );
   case LdpKeepAlive: return onKeepAlive( exchange );
   case LdpCapability: return onCapability( exchange, *message.capability );
   case LdpAddress:
   case LdpAddressWithdraw: return onAddresses( exchange );
   case LdpNotification: return onNotification( exchange );
   default: return onLabelMessage( exchange );
   }
}

// Its header may be what is bad, so its sender is whoever was seen at its source.
void Monitor::onBadPdu( Pdu const & pdu ) {
   arrive( pdu.origin );
   if ( !flow_ || flow_->protocol != protocolTcp ) return;
   sender_ = agents_.at( addressOf( flow_->source, flow_->addressSize ) );
   if ( !sender_ ) return;
   receiverIs( agents_.at( addressOf( flow_->destination, flow_->addressSize ) ) );
   if ( received_ ) received_->statistics->ldpPduRxErrorCountInc( 1 );
}

void Monitor::onFatalPdu( Pdu const & pdu, LdpPduGuardResult const & ) { onBadPdu( pdu ); }

// LDP does not use connections that are half closed: with the first sign of an end the session is over.
void Monitor::onClose( Origin const & origin ) {
   arrive( origin );
   LdpIdentifier const a = agents_.at( addressOf( flow_->source, flow_->addressSize ) );
   LdpIdentifier const b = agents_.at( addressOf( flow_->destination, flow_->addressSize ) );
   if ( !a || !b || a == b ) return;
   auto const close = [&]( LdpIdentifier const & own, LdpIdentifier const & peer, U16 localPort,
                           U16 peerPort ) {
      Agent * const agent = agents_.agentIs( own );
      if ( !agent ) return;
      SessionEnd & end = agent->sessionEnd( peer );
      SessionState const state = end.status->sessionState();
      bool const live = state == stateOpenSent || state == stateOpenRecv || state == stateOperational;
      if ( !live || end.status->localPort() != localPort || end.status->peerPort() != peerPort ) return;
      endSession( end, LdpSessionState( stateNonExist, tcpConnectionClosed ),
                  sessionStateStrForStatusCode( tcpConnectionClosed ), now_ );
   };
   close( a, b, flow_->sourcePort, flow_->destinationPort );
   close( b, a, flow_->destinationPort, flow_->sourcePort );
}

} // namespace LdpTool
