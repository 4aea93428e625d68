// Frames, noted as they come.
#include "findings/Evidence.h"

namespace LdpTool {

using namespace Ldp;

namespace {

Addr sourceOf( Origin const & origin ) { return addressOf( origin.flow->source, origin.flow->addressSize ); }
Addr destinationOf( Origin const & origin ) {
   return addressOf( origin.flow->destination, origin.flow->addressSize );
}

/// Reasons hold numbers that the peer chooses, and so are codes: the first ones say enough.
template< class Key >
void noteIn( std::map< Key, Seen > & all, Key const & key, std::uint64_t frame ) {
   constexpr std::size_t mostKeys = 64;
   if ( all.size() < mostKeys || all.contains( key ) ) all[key].at( frame );
}

} // namespace

LdpIdentifier Evidence::at( Addr const & address ) const {
   auto const known = at_.find( address );
   return known == at_.end() ? LdpIdentifier() : known->second;
}

Sent const & Evidence::sentTo( LdpIdentifier const & speaker, LdpIdentifier const & peer ) const {
   static Sent const nothing;
   auto const known = sent_.find( { speaker, peer } );
   return known == sent_.end() ? nothing : known->second;
}

void Sent::add( Sent const & earlier ) {
   for ( Seen Sent::*what :
         { &Sent::targetedHellos, &Sent::syns, &Sent::authenticated, &Sent::synAcks, &Sent::refusals,
           &Sent::established, &Sent::keepAlives, &Sent::repeatedLarge, &Sent::repeatedSmall } )
      ( this->*what ).add( earlier.*what );
}

Sent * Evidence::strangerSent( Addr const & source, Addr const & destination ) {
   if ( strangers_.size() >= most && !strangers_.contains( { source, destination } ) ) return nullptr;
   return &strangers_[{ source, destination }];
}

void Evidence::settle() {
   for ( auto at = strangers_.begin(); at != strangers_.end(); ) {
      LdpIdentifier const from = this->at( at->first.first );
      LdpIdentifier const to = this->at( at->first.second );
      auto const settled = at++;
      if ( !from || !to ) continue;
      if ( from.lsrId() != to.lsrId() && ( sent_.size() < most || sent_.contains( { from, to } ) ) )
         sent_[{ from, to }].add( settled->second );
      strangers_.erase( settled );
   }
}

/// What the sender of the packet in hand has sent to its receiver; null where there is nobody to note it of.
Sent * Evidence::sentOn( Origin const & origin ) {
   LdpIdentifier const from = at( sourceOf( origin ) );
   LdpIdentifier const to = at( destinationOf( origin ) );
   bool const tcp = origin.flow->protocol == protocolTcp;
   if ( !from || !to ) return tcp ? strangerSent( sourceOf( origin ), destinationOf( origin ) ) : nullptr;
   if ( from.lsrId() == to.lsrId() ) return nullptr;
   if ( sent_.size() >= most && !sent_.contains( { from, to } ) ) return nullptr;
   return &sent_[{ from, to }];
}

void Evidence::onPdu( Pdu const & pdu ) {
   monitor_.onPdu( pdu );
   origin_ = pdu.origin;
   sender_ = pdu.pdu.ldpIdentifier();
   if ( origin_.flow && origin_.flow->protocol == protocolTcp && at_.size() < most )
      at_[sourceOf( origin_ )] = sender_;
}

void Evidence::onHello( Message const & message ) {
   if ( !message.parser.validMsg() ) return;
   auto const & hello = message.as< LdpHelloMsgParser >();
   Addr const source = sourceOf( origin_ );
   double const now = monitor_.journal().now();
   if ( hellos_.size() >= most && !hellos_.contains( { sender_, source } ) ) return;
   HelloSource & of = hellos_[{ sender_, source }];
   of.transport = hello.msgIpTransportTlv()    ? Addr( hello.msgIpTransportTlv()->ipAddr() )
                  : hello.msgIp6TransportTlv() ? Addr( hello.msgIp6TransportTlv()->ip6Addr() )
                                               : source;
   of.sender = origin_.place ? origin_.place->sender : 0;
   of.holdTime = hello.msgCommonHelloTlv()->holdTime();
   of.link = !hello.msgCommonHelloTlv()->targetedHello();
   double const gap = now - of.last;
   constexpr double copies = 0.1; // one hello, captured on two interfaces
   if ( of.seen && gap > copies && ( of.shortest == 0.0 || gap < of.shortest ) ) of.shortest = gap;
   of.last = now;
   of.seen.at( origin_.arrival.frame );
   if ( at_.size() < most ) at_[of.transport] = sender_;
   constexpr std::size_t mostTransports = 64; // one is what a speaker has
   auto & transports = transports_[sender_];
   if ( transports.size() < mostTransports ) transports.insert( of.transport );
   if ( of.link ) return;
   at_.try_emplace( source, sender_ );
   if ( Sent * const sent = !at( destinationOf( origin_ ) ) ? strangerSent( source, destinationOf( origin_ ) )
                                                            : sentOn( origin_ ) )
      sent->targetedHellos.at( origin_.arrival.frame );
}

void Evidence::onMessage( Message const & message ) {
   monitor_.onMessage( message );
   if ( !origin_.flow ) return;
   LdpMsgParser const & parser = message.parser;
   LdpMsgType const type = parser.type();
   if ( type == LdpHello ) return onHello( message );
   if ( origin_.flow->protocol != protocolTcp ) return;
   std::uint64_t const frame = origin_.arrival.frame;
   if ( type == LdpInit && parser.validMsg() ) {
      LdpIdentifier const named = message.as< LdpInitMsgParser >().msgSessionParamTlv()->recvLdpIdentifier();
      if ( at_.size() < most ) at_.try_emplace( destinationOf( origin_ ), named );
   }
   Sent * const sent = sentOn( origin_ );
   if ( !sent ) return;
   if ( message.bad() ) {
      auto & refused = message.verdict == Verdict::wrong ? sent->refused : sent->unsupported;
      return noteIn( refused, std::string( message.judge().reason().view() ), frame );
   }
   if ( !parser.validMsg() ) return;
   if ( type == LdpInit ) {
      auto const & init = message.as< LdpInitMsgParser >();
      sent->inits.at( frame );
      sent->proposal = InitFacts( init ).proposal;
      sent->named = init.msgSessionParamTlv()->recvLdpIdentifier();
   } else if ( type == LdpKeepAlive ) {
      sent->keepAlives.at( frame );
   } else if ( type == LdpNotification ) {
      LdpStatusTlv const & status = *parser.msgStatusTlv();
      noteIn( status.statusError() ? sent->fatal : sent->others, status.statusData(), frame );
   }
}

void Evidence::onBadPdu( Pdu const & pdu ) {
   monitor_.onBadPdu( pdu );
   if ( !pdu.origin.flow ) return;
   Sent * const sent = sentOn( pdu.origin );
   if ( sent )
      noteIn( sent->refused, "PDU: " + std::string( pdu.pdu.reason().view() ), pdu.origin.arrival.frame );
}

void Evidence::onFatalPdu( Pdu const & pdu, LdpPduGuardResult const & fatal ) {
   monitor_.onFatalPdu( pdu, fatal );
}

void Evidence::onTcpStep( Origin const & origin, TcpStep step ) {
   monitor_.onTcpStep( origin, step );
   Sent * const sent = sentOn( origin );
   if ( !sent ) return;
   std::uint64_t const frame = origin.arrival.frame;
   constexpr double copies = 0.1;
   double const now = monitor_.journal().now();
   auto const [before, isFirst] = sent->lastStep.try_emplace( step, now );
   if ( !isFirst && now - before->second < copies && now >= before->second ) return;
   before->second = now;
   if ( origin.authenticated ) sent->authenticated.at( frame );
   switch ( step ) {
   case TcpStep::syn: return sent->syns.at( frame );
   case TcpStep::synAck: return sent->synAcks.at( frame );
   case TcpStep::established: return sent->established.at( frame );
   case TcpStep::refused: return sent->refusals.at( frame );
   }
}

void Evidence::onRepeated( Origin const & origin, std::size_t octets ) {
   constexpr std::size_t large = 1000;
   if ( Sent * const sent = sentOn( origin ) )
      ( octets >= large ? sent->repeatedLarge : sent->repeatedSmall ).at( origin.arrival.frame );
}

void Evidence::onClose( Origin const & origin ) { monitor_.onClose( origin ); }

} // namespace LdpTool
