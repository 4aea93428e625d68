// From PDUs to reports.
#include "messages/Decoder.h"

#include "messages/Fault.h"
#include "text/Words.h"

#include <algorithm>
#include <iostream>

namespace LdpTool {

using namespace Ldp;

// A wildcard is about every FEC.
bool Selection::takes( LdpMsgParser const & parser ) const {
   auto const & fec = parser.ldpFecTlvParser();
   if ( !fec ) return !fecsOnly;
   for ( U32 i = 0; i < fec->fecElements(); ++i ) {
      LdpFecTlvElement const & element = *fec->fecElement( i );
      bool const prefix = element.type() == prefixElement || element.type() == hostAddrElement;
      if ( element.type() == wildcardElement ||
           ( prefix && isWithin( element.fwdEqvCls().prefix(), *within ) ) )
         return true;
   }
   return false;
}

Decoder::Decoder( Reporter & reporter, Selection selection, Output & idle )
     : reporter_( reporter ), selection_( std::move( selection ) ), idle_( idle ) {}

void Decoder::onPdu( Origin const & origin, LdpPdu const & taken ) {
   Pdu const pdu{ origin, taken, { taken.pkt()->front(), std::size_t( taken.pkt()->frontBytes() ) } };
   if ( selection_.speaker && !isOfSpeaker( pdu ) ) return;
   if ( taken.valid() ) {
      decodeMessages( pdu );
      return;
   }
   LdpPduGuardResult const fatal = taken.guard();
   count( fatal ? verdictOf( fatal ) : Verdict::wrong );
   if ( fatal ) {
      reporter_.onFatalPdu( pdu, fatal );
   } else {
      reporter_.onBadPdu( pdu );
   }
}

// Who the other side of a flow is, it says itself; until then its address may.
bool Decoder::isOfSpeaker( Pdu const & pdu ) {
   LdpIdentifier const & speaker = *selection_.speaker;
   LdpIdentifier const & sender = pdu.pdu.ldpIdentifier();
   if ( !pdu.origin.flow ) return sender == speaker;
   Flow const & flow = *pdu.origin.flow;
   constexpr std::size_t mostFlows = 65536;
   if ( senders_.size() < mostFlows ) senders_[flow] = sender;
   if ( sender == speaker ) return true;
   auto const other = senders_.find( flow.reversed() );
   if ( other != senders_.end() ) return other->second == speaker;
   Lumo::IpAddr destination;
   std::copy_n( flow.destination.begin(), Lumo::IpAddr::size, destination.octets() );
   return flow.addressSize == Lumo::IpAddr::size && destination == Lumo::IpAddr( speaker.lsrId() );
}

void Decoder::decodeMessages( Pdu const & pdu ) {
   pduReported_ = false;
   Vorn::Ptr< Lumo::Pkt > const & pkt = pdu.pdu.pkt();
   // The messages fill a valid PDU, so their lengths lead from one to the next. That is what the parser's map
   // of offsets says too, without a look-up for each message.
   U32 const messageNum = pdu.pdu.messageNum();
   U32 offset = sizeof( LdpPduHdr );
   for ( U32 i = 0, next; i < messageNum; ++i, offset = next ) {
      U8 const * const unit = pdu.octets.data() + offset;
      auto const type = LdpMsgType( ( unit[0] << 8 | unit[1] ) & 0x7fff );
      next = offset + totalOfLength( U16( unit[2] << 8 | unit[3] ) );
      if ( !selection_.takes( type ) ) continue;
      // The dispatch comes to the same parser of a good message by way of a plain one, which is half of the
      // work. What it makes of any other message is for the dispatch alone to say.
      auto const typed = ldpTypedMsgParser( pkt, offset, type );
      report( typed && typed->validMsg() ? *typed : *ldpMsgParserGet( pkt, offset ), pdu );
   }
}

void Decoder::report( LdpMsgParser const & parser, Pdu const & pdu ) {
   if ( selection_.within && !selection_.takes( parser ) ) return;
   Vorn::Ptr< LdpCapabilityMsgParser > capability;
   if ( parser.type() == LdpCapability && parser.validMsg() ) {
      capability = ldpCapabilityMsgParserFactory( parser.pkt(), parser.offset() );
   }
   LdpMsgParser const & judge = capability ? *capability : parser;
   Message const message{ parser, capability.ptr(), verdictOf( judge ) };
   count( message.verdict );
   if ( selection_.badOnly && !message.bad() ) return;
   if ( !pduReported_ ) reporter_.onPdu( pdu );
   pduReported_ = true;
   ++messages_;
   reporter_.onMessage( message );
}

void Decoder::count( Verdict verdict ) {
   wrong_ += verdict == Verdict::wrong;
   unsupported_ += verdict == Verdict::unsupported;
}

void Decoder::onGap( Origin const & origin, Gap const & gap ) {
   gaps_.missing += gap.missing;
   gaps_.skipped += gap.skipped;
   std::string text;
   if ( gap.missing ) text = std::to_string( gap.missing ) + " octets missing, ";
   text += std::to_string( gap.skipped ) + " octets skipped ";
   text += gap.atEnd ? "at the end of the conversation" : "before the next PDU";
   onWarning( origin, text );
}

// Messages printed so far go first, so that a terminal shows all in order.
void Decoder::onWarning( Origin const & origin, std::string const & text ) {
   idle_.flush();
   std::cerr << "ldptool: frame " << origin.arrival.frame << ": " << originText( origin ) << ": " << text
             << '\n';
}

void Decoder::onIdle() { idle_.flush(); }

} // namespace LdpTool
