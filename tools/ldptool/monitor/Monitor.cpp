// Each message, taken to the agents of its sender and its receiver.
#include "monitor/Monitor.h"

#include "monitor/labels/CompactFec.h"
#include "monitor/labels/LabelMessages.h"
#include "monitor/labels/TypedWildcard.h"

namespace LdpTool {

using namespace Ldp;

void Monitor::arrive( Origin const & origin ) {
   origin_ = origin;
   sent_ = received_ = nullptr;
   connection_ = nullptr;
   agents_.journal().arrivalIs( origin.arrival );
   if ( origin.flow && origin.flow->protocol == protocolTcp && !origin.stray ) {
      connection_ = &connections_.of( *origin.flow );
      from_ = connection_->endOf( *origin.flow );
   }
   // Hold times run out by the capture's clock. A second's grain is enough for times in seconds.
   double const now = agents_.journal().now();
   if ( now - expiredAt_ < 1.0 && now >= expiredAt_ ) return;
   expiredAt_ = now;
   discovery_.expire();
   sessions_.expire();
}

void Monitor::show( LdpIdentifier const & speaker, std::function< void() > const & view ) {
   Agent * const agent = agents_.find( speaker );
   if ( agent ) agent->eachSession( []( SessionEnd & end ) { PrefixLabels::show( end ); } );
   view();
   if ( agent ) agent->eachSession( []( SessionEnd & end ) { PrefixLabels::hide( end ); } );
}

void Monitor::show( LdpIdentifier const & speaker, LdpIdentifier const & peer,
                    std::function< void() > const & view ) {
   Agent * const agent = agents_.find( speaker );
   SessionEnd * const end = agent && agent->hasSession( peer ) ? &agent->sessionEnd( peer ) : nullptr;
   if ( end ) PrefixLabels::show( *end );
   view();
   if ( end ) PrefixLabels::hide( *end );
}

SessionEnd const * Monitor::sessionEnd( LdpIdentifier const & speaker, LdpIdentifier const & peer ) const {
   Agent * const agent = agents_.find( speaker );
   return agent && agent->hasSession( peer ) ? &agent->sessionEnd( peer ) : nullptr;
}

void Monitor::timeIs( double now ) {
   if ( now <= agents_.journal().now() ) return;
   Arrival arrival = agents_.journal().arrival();
   arrival.seconds = std::int64_t( now );
   arrival.nanoseconds = std::uint32_t( ( now - double( arrival.seconds ) ) * 1e9 );
   agents_.journal().arrivalIs( arrival );
   discovery_.expire();
   sessions_.expire();
}

void Monitor::onPdu( Pdu const & pdu ) {
   arrive( pdu.origin );
   octets_ = pdu.pdu.pkt()->frontBytes();
   sender_ = pdu.pdu.ldpIdentifier();
   if ( !connection_ ) return;
   agents_.seen( addressOf( origin_.flow->source, origin_.flow->addressSize ), sender_ );
   LdpIdentifier & speaker = connection_->ends[from_].speaker;
   if ( connection_->ends[from_].spoke && speaker != sender_ ) {
      // Of another LDP identifier than the session's, which its receiver refuses (RFC 5036, 3.5.1.2.1).
      std::swap( sender_, speaker );
      receiverIs( connection_->ends[1 - from_].speaker );
      std::swap( sender_, speaker );
      if ( received_ ) received_->statistics->ldpPduRxErrorCountInc( 1 );
      sent_ = received_ = nullptr;
      connection_ = nullptr;
      return;
   }
   speaker = sender_;
   connection_->ends[from_].spoke = true;
   LdpIdentifier const & other = connection_->ends[1 - from_].speaker;
   receiverIs( !!other ? other
                       : agents_.at( addressOf( origin_.flow->destination, origin_.flow->addressSize ) ) );
   sessions_.settle( *connection_ );
}

void Monitor::receiverIs( LdpIdentifier const & receiver ) {
   // A router has no session with itself, also if it has several label spaces.
   if ( !receiver || receiver.lsrId() == sender_.lsrId() ) return;
   if ( received_ && received_->agent.id() == receiver ) return;
   Agent * const sender = agents_.agentIs( sender_ );
   Agent * const heard = agents_.agentIs( receiver );
   if ( !sender || !heard ) return;
   for ( auto const & [agent, peer] : { std::pair( sender, receiver ), std::pair( heard, sender_ ) } ) {
      if ( agent->hasSession( peer ) || agent->hasRoom() ) continue;
      ++agents_.turnedAway().adjacencies;
      return;
   }
   sent_ = &sender->sessionEnd( receiver );
   received_ = &heard->sessionEnd( sender_ );
   sent_->statistics->ldpPduTxCountInc( 1 );
   received_->statistics->ldpPduRxCountInc( 1 );
   sent_->octetsSent += octets_;
   received_->octetsReceived += octets_;
}

void Monitor::onMessage( Message const & message ) {
   if ( message.bad() ) ++refusals_[message.judge().statusCode()];
   if ( !origin_.flow ) return;
   LdpMsgParser const & parser = message.parser;
   if ( parser.type() != LdpHello ) {
      if ( connection_ ) onSessionMessage( message );
   } else if ( Agent * const sender = agents_.agentIs( sender_ ) ) {
      if ( parser.validMsg() ) {
         discovery_.onHello( *sender, origin_, message.as< LdpHelloMsgParser >() );
      } else {
         discovery_.onBadHello( *sender, origin_ );
      }
   }
}

void Monitor::onSessionMessage( Message const & message ) {
   LdpMsgParser const & parser = message.parser;
   LdpMsgType const type = parser.type();
   // Who the message goes to: an Initialization says so, else whoever was seen at that address.
   bool const init = type == LdpInit && parser.validMsg();
   if ( init ) {
      LdpIdentifier const & named =
           message.as< LdpInitMsgParser >().msgSessionParamTlv()->recvLdpIdentifier();
      LdpIdentifier & other = connection_->ends[1 - from_].speaker;
      if ( !other && !!named && named.lsrId() != sender_.lsrId() ) other = named;
      receiverIs( other );
      sessions_.settle( *connection_ );
   }
   if ( !received_ ) return;
   Exchange const exchange{ *sent_, *received_, parser, agents_.journal().now() };
   sent_->agent.status().statistics()->messageIdIs( parser.msgId() );
   // The numbers of types that there are none of are the sender's choice.
   if ( parser.validMsg() || Vorn::EnumType< unsigned int >::name( type, vornTypeOf( type ) ) ) {
      sent_->statistics->ldpMsgTxCountInc( type, 1 );
      received_->statistics->ldpMsgRxCountInc( type, 1 );
   }
   bool const bad = message.bad();
   if ( message.verdict == Verdict::wrong ) received_->status->sessionStateReasonIs( parser.reason() );
   if ( !bad && !parser.validMsg() ) return; // of unknown type, to be ignored
   bool const typed = isTypedWildcard( parser );
   if ( bad && !typed ) return;
   bool const concerns = sessions_.concerns( *connection_, from_, *sent_, *received_, type );
   if ( init ) {
      auto facts = std::make_unique< InitFacts >( message.as< LdpInitMsgParser >() );
      if ( concerns ) sessions_.onInit( *sent_, *received_, *facts );
      connection_->ends[from_].init = std::move( facts );
   }
   // What was still under way when the session ended is not heard any more.
   if ( !concerns ) return;
   if ( type != LdpNotification ) sessions_.onSignOfLife( exchange );
   switch ( type ) {
   case LdpInit: return;
   case LdpKeepAlive: return sessions_.onKeepAlive( exchange, *connection_, from_ );
   case LdpCapability: return sessions_.onCapability( exchange, *message.capability );
   case LdpAddress:
   case LdpAddressWithdraw: return sessions_.onAddresses( exchange );
   case LdpNotification: return sessions_.onNotification( exchange );
   default: return typed ? onTypedWildcard( exchange ) : onLabelMessage( exchange );
   }
}

// Its header may be what is bad, so its sender is whoever speaks on the connection.
void Monitor::onBadPdu( Pdu const & pdu ) {
   arrive( pdu.origin );
   ++refusals_[pdu.pdu.statusCode()];
   octets_ = pdu.pdu ? pdu.pdu.pkt()->frontBytes() : 0;
   if ( !connection_ ) return;
   auto const who = [&]( int end, auto const & octets ) {
      LdpIdentifier const & known = connection_->ends[end].speaker;
      return !!known ? known : agents_.at( addressOf( octets, origin_.flow->addressSize ) );
   };
   sender_ = who( from_, origin_.flow->source );
   if ( !!sender_ ) receiverIs( who( 1 - from_, origin_.flow->destination ) );
   if ( received_ ) received_->statistics->ldpPduRxErrorCountInc( 1 );
   sent_ = received_ = nullptr;
}

void Monitor::onFatalPdu( Pdu const & pdu, LdpPduGuardResult const & ) { onBadPdu( pdu ); }

void Monitor::onTcpStep( Origin const & origin, TcpStep step ) {
   arrive( origin );
   if ( step == TcpStep::syn && connection_->closed ) {
      connection_ = &connections_.anew( *origin.flow );
      from_ = connection_->endOf( *origin.flow );
   }
   sessions_.onTcpStep( *connection_, *origin.flow, step );
}

void Monitor::onClose( Origin const & origin ) {
   arrive( origin );
   sessions_.onClose( *connection_ );
}

} // namespace LdpTool
