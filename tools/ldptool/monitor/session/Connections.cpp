// Connections by their flows.
#include "monitor/session/Connections.h"

#include "Ldp/LdpProtoParam.h"

namespace LdpTool {

using namespace Ldp;

InitFacts::InitFacts( LdpInitMsgParser const & init ) {
   constexpr U16 smallestMaxPdu = 256; // a smaller proposal stands for the default (RFC 5036, 3.5.3)
   auto const & params = *init.msgSessionParamTlv();
   proposal.made = true;
   proposal.keepAliveTime = params.keepAliveTime();
   proposal.maxPduLength =
        params.maxPduLength() < smallestMaxPdu ? LdpProtoParam::defaultMaxPduLength() : params.maxPduLength();
   proposal.onDemand = params.advDiscipline();
   mLdp = init.capabilitiesHas( p2mpCapabilityTlv );
   for ( auto const & capability : init.capabilities() )
      capabilities.emplace_back( capability.key(), capability.value()->state() );
   std::sort( capabilities.begin(), capabilities.end() );
   if ( auto const * ft = init.msgFtSessionTlv() ) {
      restarts = true;
      learnFromNetwork = ft->learnFromNetwork();
      reconnectTimeout = ft->ftReconnectTimeout();
      recoveryTime = ft->ftRecoveryTime();
   }
}

Connection & Connections::of( Flow const & flow ) {
   auto known = byFlow_.find( flow );
   if ( known == byFlow_.end() ) known = byFlow_.find( flow.reversed() );
   if ( known != byFlow_.end() ) {
      entries_.splice( entries_.end(), entries_, known->second );
      return entries_.back();
   }
   if ( entries_.size() >= most_ ) {
      byFlow_.erase( entries_.front().flow );
      entries_.pop_front();
   }
   entries_.emplace_back();
   entries_.back().flow = flow;
   byFlow_.emplace( flow, std::prev( entries_.end() ) );
   return entries_.back();
}

Connection & Connections::anew( Flow const & flow ) {
   Connection & connection = of( flow );
   Flow const kept = connection.flow;
   connection = Connection();
   connection.flow = kept;
   return connection;
}

} // namespace LdpTool
