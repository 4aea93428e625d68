#pragma once

// The option that sets how much of a capture is kept, and the line that says what was not.

#include "capture/Capture.h"
#include "monitor/speaker/Limits.h"

#include <string>

namespace CLI {
class App;
}

namespace LdpTool {

struct LimitOptions {
   CaptureLimits capture;
   MonitorLimits monitor;
};

/// Adds `--limit NAME=N`. The limits live for as long as the command.
void addLimitOption( CLI::App & command, LimitOptions & limits );

/// What was turned away, in a line for standard error; empty if nothing was.
std::string turnedAwayText( TurnedAway const & turnedAway, CaptureCounters const & counters );

} // namespace LdpTool
