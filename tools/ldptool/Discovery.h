#pragma once

// What hellos show: links and targets, adjacencies, peers (RFC 5036, 2.4).

#include "Agent.h"

namespace LdpTool {

class Discovery {
 public:
   explicit Discovery( Agents & agents ) : agents_( agents ) {}

   /// A good hello of that speaker.
   void onHello( Agent & sender, Flow const & flow, Ldp::LdpHelloMsgParser const & hello, double now );
   /// A bad one, which is only counted.
   void onBadHello( Agent & sender, Flow const & flow );
   /// Adjacencies whose hold time is over go.
   void expire( double now );

 private:
   void onLinkHello( Agent & sender, Addr const & source, Ldp::LdpHelloMsgParser const & hello, double now );
   void onTargetedHello( Agent & sender, Addr const & source, Addr const & destination,
                         Ldp::LdpHelloMsgParser const & hello, double now );

   Agents & agents_;
};

} // namespace LdpTool
