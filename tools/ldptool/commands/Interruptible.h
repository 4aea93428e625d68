#pragma once

// What Ctrl-C does while a command listens.

#include "capture/Capture.h"

namespace LdpTool {

/// While it lives, SIGINT and SIGTERM end the capture's run, so that what was asked for is still printed. The
/// second signal ends the process.
class Interruptible {
 public:
   explicit Interruptible( Capture & capture );
   ~Interruptible();
   Interruptible( Interruptible const & ) = delete;
   Interruptible & operator=( Interruptible const & ) = delete;
};

} // namespace LdpTool
