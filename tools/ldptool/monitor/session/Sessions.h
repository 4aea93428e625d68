#pragma once

// What messages show of sessions: connections, parameters and their negotiation, states, addresses,
// notifications, statistics (RFC 5036, 2.5).

#include "monitor/session/Connections.h"
#include "monitor/speaker/Deadlines.h"

namespace LdpTool {

class Sessions {
 public:
   explicit Sessions( Agents & agents ) : agents_( agents ) {}

   /// Whether a good message that this end of the connection has sent is about the session: the connection is
   /// the one that the session runs on, or becomes it now.
   bool concerns( Connection & connection, int from, SessionEnd & sender, SessionEnd & receiver,
                  Ldp::LdpMsgType type );

   // The messages that are about the session as a whole. Good ones that concern it.
   void onInit( SessionEnd & sender, SessionEnd & receiver, InitFacts const & init );
   void onKeepAlive( Exchange const & exchange, Connection & connection, int from );
   void onCapability( Exchange const & exchange, Ldp::LdpCapabilityMsgParser const & capability );
   void onAddresses( Exchange const & exchange );
   void onNotification( Exchange const & exchange );

   /// A message that only an operational session carries, or any other of the peer: the session is alive.
   void onSignOfLife( Exchange const & exchange );

   /// TCP's own steps, counted where the speakers are known.
   void onTcpStep( Connection & connection, Flow const & flow, TcpStep step );
   /// Counts at the speaker what was seen before it was known.
   void settle( Connection & connection );
   void onClose( Connection & connection );

   /// Sessions whose peers have been silent for too long end, and so do labels that were kept for a restart.
   void expire();

 private:
   void adopt( Connection & connection, int from, SessionEnd & sender, SessionEnd & receiver );
   void hasSpoken( SessionEnd & end, SessionEnd & peer );
   void runsOn( SessionEnd & end, Flow const & flow );
   void negotiate( SessionEnd & end, SessionEnd & peer );
   void end( SessionEnd & end, Ldp::LdpSessionState const & state, Vorn::String const & reason,
             bool restarts );
   void startOver( SessionEnd & end );
   void staleOver( SessionEnd & end );
   double lookAt( SessionEnd & end );
   void changed( SessionEnd & end, Ldp::LdpSessionState const & state, Vorn::String const & reason );
   void operational( SessionEnd & end, SessionEnd & peer, Vorn::String const & reason );
   double now() const { return agents_.journal().now(); }

   Agents & agents_;
   Deadlines< SessionEnd * > deadlines_;
};

} // namespace LdpTool
