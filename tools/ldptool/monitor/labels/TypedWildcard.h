#pragma once

// Typed wildcards (RFC 5918): a FEC element that stands for all FECs of a type. The library's parsers refuse
// the messages; who watches others must know what these have agreed on.

#include "monitor/speaker/Agent.h"

namespace LdpTool {

/// Whether the message, which was refused, is a request, withdraw or release of nothing but typed wildcards.
bool isTypedWildcard( Ldp::LdpMsgParser const & message );

/// Such a message: prefixes of the address family go; what is of another type, and a request, is counted
/// as not followed.
void onTypedWildcard( Exchange const & exchange );

} // namespace LdpTool
