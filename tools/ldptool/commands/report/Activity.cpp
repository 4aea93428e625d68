// Messages over time.
#include "commands/report/Activity.h"

#include <algorithm>
#include <cstring>

namespace LdpTool {

void TimeBins::widen() {
   for ( std::size_t i = 0; i < counts_.size(); ++i )
      counts_[i] = 2 * i < counts_.size() ? counts_[2 * i] + counts_[2 * i + 1] : 0;
   width_ *= 2;
}

void TimeBins::widthIs( double seconds ) {
   while ( width_ < seconds )
      widen();
}

void TimeBins::add( double since ) {
   since = std::max( since, 0.0 ); // a capture's clock may go back
   while ( since >= width_ * double( counts_.size() ) )
      widen();
   ++counts_[std::size_t( since / width_ )];
}

void TimeBins::add( TimeBins const & other ) {
   for ( std::size_t i = 0; i < counts_.size(); ++i )
      counts_[i] += other.counts_[i];
}

void Activity::onPdu( Pdu const & pdu ) {
   Evidence::onPdu( pdu );
   Arrival const & at = pdu.origin.arrival;
   last_ = double( at.seconds ) + double( at.nanoseconds ) * 1e-9;
   if ( !begun_ ) first_ = last_;
   begun_ = true;
   bins_ = nullptr;
   Flow const * const flow = pdu.origin.flow;
   if ( !flow || flow->protocol != protocolTcp ) return;
   Flow const back = flow->reversed();
   bool const swapped = std::memcmp( &back, flow, sizeof back ) < 0;
   Flow const & key = swapped ? back : *flow;
   if ( conversations_.size() >= mostFlows_ && !conversations_.contains( key ) ) return;
   Conversation & conversation = conversations_[key];
   conversation.speakers[swapped] = pdu.pdu.ldpIdentifier();
   conversation.known[swapped] = true;
   bins_ = &conversation.bins;
}

void Activity::onMessage( Message const & message ) {
   Evidence::onMessage( message );
   if ( bins_ ) bins_->add( last_ - first_ );
}

std::map< Activity::Pair, TimeBins > Activity::sessions() const {
   double width = 0.0;
   for ( auto const & [flow, conversation] : conversations_ )
      width = std::max( width, conversation.bins.width() );
   std::map< Pair, TimeBins > sessions;
   for ( auto const & [flow, conversation] : conversations_ ) {
      if ( !conversation.known[0] || !conversation.known[1] ) continue;
      auto const & [a, b] = conversation.speakers;
      TimeBins bins = conversation.bins;
      bins.widthIs( width );
      TimeBins & sum = sessions[a < b ? Pair( a, b ) : Pair( b, a )];
      sum.widthIs( width );
      sum.add( bins );
   }
   return sessions;
}

} // namespace LdpTool
