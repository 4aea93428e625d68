#pragma once

// What hellos show: links and targets, adjacencies, peers (RFC 5036, 2.4).

#include "monitor/speaker/Agent.h"

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

   /// Most adjacencies that are kept, of one speaker and of all. Many can have one hash: targeted hellos of
   /// one identifier from many addresses, which anybody can invent.
   static constexpr U32 mostOfSpeaker = 4096;
   static constexpr std::size_t mostInAll = 65536;
   /// How often one was too many.
   std::uint64_t refused() const { return refused_; }

 private:
   bool hasRoom( Ldp::Status & status, Ldp::LdpAdjId const & id );
   void hear( Agent & agent, Ldp::LdpAdjId const & id, Addr const & source,
              Ldp::LdpHelloMsgParser const & hello, U16 ownHoldTime, double now );
   void onLinkHello( Agent & sender, Addr const & source, Ldp::LdpHelloMsgParser const & hello, double now );
   void onTargetedHello( Agent & sender, Addr const & source, Addr const & destination,
                         Ldp::LdpHelloMsgParser const & hello, double now );

   Agents & agents_;
   std::size_t adjacencies_ = 0;
   std::uint64_t refused_ = 0;
};

} // namespace LdpTool
