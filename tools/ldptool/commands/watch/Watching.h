#pragma once

// A watch from its first packet to its end: who is told of what the monitor finds, and when.

#include "commands/watch/WatchOptions.h"

namespace LdpTool {

/// Returns the exit status.
int watch( WatchOptions const & options );

} // namespace LdpTool
