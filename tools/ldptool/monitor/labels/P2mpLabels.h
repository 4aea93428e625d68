#pragma once

// What label messages show about point-to-multipoint FECs (RFC 6388). The downstream speaker sends its label
// towards the root and has a local state of the FEC on that session; the upstream one has a remote state.

#include "monitor/labels/AnyLabel.h"
#include "monitor/speaker/Agent.h"

#include "Ldp/LdpFecHdr.h"

namespace LdpTool::P2mpLabels {

void onMessage( Exchange const & exchange, Ldp::LdpP2mpFecElement const & element, AnyLabel label );
/// A withdraw or release of all FECs, or of all that have the label.
void onWildcard( Exchange const & exchange, AnyLabel label );
/// All that was said on the session goes. Labels of the peer stay, stale, if it restarts gracefully.
void forget( SessionEnd & end, bool keepsPeerLabels );
/// What is stale goes.
void forgetStale( SessionEnd & end );

} // namespace LdpTool::P2mpLabels
