#pragma once

// What Ctrl-C does while a command listens.

#include "capture/Capture.h"

#include <poll.h>
#include <span>

namespace LdpTool {

/// While it lives, SIGINT and SIGTERM end what the command waits for, so that what was asked for is still
/// printed. The second signal ends the process.
class Interruptible {
 public:
   /// While it lives, the signal ends the capture's run. Null for none.
   class Ends {
    public:
      explicit Ends( Capture * capture );
      ~Ends();
      Ends( Ends const & ) = delete;
      Ends & operator=( Ends const & ) = delete;
   };

   Interruptible();
   ~Interruptible();
   Interruptible( Interruptible const & ) = delete;
   Interruptible & operator=( Interruptible const & ) = delete;

   bool interrupted() const;
   /// Waits as poll(2) does, but not beyond a signal, whenever it came. Nothing is ready then.
   void wait( std::span< pollfd > descriptors, int milliseconds ) const;
};

} // namespace LdpTool
