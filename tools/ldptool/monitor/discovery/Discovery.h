#pragma once

// What hellos show: links and targets, adjacencies, peers (RFC 5036, 2.4). A capture shows what was sent.
// That somebody heard it is taken for true where he speaks on the same link himself, or answers.

#include "capture/PduSink.h"
#include "monitor/discovery/Links.h"
#include "monitor/speaker/Deadlines.h"

namespace LdpTool {

class Discovery {
 public:
   explicit Discovery( Agents & agents ) : agents_( agents ), links_( agents.limits() ) {}

   /// A good hello of that speaker.
   void onHello( Agent & sender, Origin const & origin, Ldp::LdpHelloMsgParser const & hello );
   /// A bad one, which is only counted.
   void onBadHello( Agent & sender, Origin const & origin );
   /// Adjacencies whose hold time is over go.
   void expire();

 private:
   struct Adjacency {
      Agent * agent;
      Ldp::LdpAdjId id;
   };
   /// The last hello to a target.
   struct Target {
      Agent * sender;
      HelloFacts last;
   };

   bool hasRoom( Ldp::Status & status, Ldp::LdpAdjId const & id );
   void hear( Agent & agent, Ldp::LdpAdjId const & id, Addr const & source, HelloFacts const & hello,
              U16 ownHoldTime );
   void hearOnLink( Links::Domain const & domain, Port & hearer, Port const & other );
   void onLinkHello( Agent & sender, Addr const & source, Place const & place, HelloFacts const & facts );
   void onTargetedHello( Agent & sender, Addr const & source, Addr const & destination,
                         HelloFacts const & facts );
   Agent * heardBySession( Agent & sender, Addr const & target );
   void hearTarget( Agent & hearer, Agent & other, Addr const & source, HelloFacts const & hello,
                    U16 ownHoldTime );

   Agents & agents_;
   Links links_;
   std::map< std::pair< Addr, Addr >, Target > targets_; ///< by source and destination
   Deadlines< Adjacency > expiries_;
   std::size_t adjacencies_ = 0;
};

} // namespace LdpTool
