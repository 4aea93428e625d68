#pragma once

// What messages show about pseudowires (RFC 8077). The sender of a mapping signals its own direction: a local
// config and status with it, a remote config and status with its peer.

#include "monitor/labels/AnyLabel.h"
#include "monitor/speaker/Agent.h"

#include "Ldp/LdpPwGenMsgParser.h"

namespace LdpTool::Pseudowires {

/// A label message about the pseudowire; a PW ID of 0 stands for all of the group and type.
void onMessage( Exchange const & exchange, Ldp::PwFwdEqvClassInfo const & fec, AnyLabel label );
/// A withdraw or release of all FECs, or of all that have the label.
void onWildcard( Exchange const & exchange, AnyLabel label );
/// The sender's pseudowire status.
void onNotification( Exchange const & exchange, Ldp::LdpNotificationMsgParser const & notification );
/// All that was said on the session goes. Labels of the peer stay, stale, if it restarts gracefully.
void forget( SessionEnd & end, bool keepsPeerLabels );
/// What is stale goes.
void forgetStale( SessionEnd & end );

} // namespace LdpTool::Pseudowires
