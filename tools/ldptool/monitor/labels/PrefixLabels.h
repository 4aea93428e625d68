#pragma once

// What label messages show about FECs that are prefixes: `LdpFecConfig` says why a FEC exists and which
// labels it has, `LdpFecSessionStatus` what was said about it on one session (RFC 5036, 3.5.7 to 3.5.11).

#include "monitor/labels/AnyLabel.h"
#include "monitor/speaker/Agent.h"

namespace LdpTool::PrefixLabels {

/// A label message about that FEC.
void onMessage( Exchange const & exchange, Mpls::FwdEqvClass const & fec, AnyLabel label );
/// A withdraw or release of all FECs, or of all that have the label; of one address family if there is one.
void onWildcard( Exchange const & exchange, AnyLabel label, Lumo::AddressFamily family = Lumo::noFamily );
/// A notification, which may answer a Label Request.
void onNotification( Exchange const & exchange, Ldp::LdpStatusTlv const & status );
/// All that was said on the session goes. Labels of the peer stay, stale, if it restarts gracefully.
void forget( SessionEnd & end, bool keepsPeerLabels );
/// What is stale goes.
void forgetStale( SessionEnd & end );

} // namespace LdpTool::PrefixLabels
