#pragma once

// What messages show of sessions: connections, parameters and their negotiation, states, addresses,
// notifications, statistics (RFC 5036, 2.5).

#include "monitor/speaker/Agent.h"

namespace LdpTool {

/// One end of the conversation is seen on that flow, which it sends if `isSource`.
void connectionIs( SessionEnd & end, Flow const & flow, bool isSource, double now );

/// The messages that are about the session as a whole. Good ones.
void onInit( Exchange const & exchange );
void onKeepAlive( Exchange const & exchange );
void onCapability( Exchange const & exchange, Ldp::LdpCapabilityMsgParser const & capability );
void onAddresses( Exchange const & exchange );
void onNotification( Exchange const & exchange );

/// A message that only an operational session carries, or any other of the peer: the session is alive.
void onSignOfLife( Exchange const & exchange );

/// The session has ended: its state, and all that was learnt on it goes.
void endSession( SessionEnd & end, Ldp::LdpSessionState const & state, Vorn::String const & reason,
                 double now );

/// Sessions whose peers have been silent for too long end.
void expireSessions( Agents & agents, double now );

} // namespace LdpTool
