// Signals that end a capture.
#include "commands/Interruptible.h"

#include <csignal>

namespace LdpTool {

namespace {

Capture * listening = nullptr; // what a signal ends

extern "C" void endListening( int ) { listening->stop(); }

void onSignals( void ( *handler )( int ) ) {
   struct sigaction action {};
   action.sa_handler = handler;
   action.sa_flags = int( SA_RESETHAND );
   for ( int signal : { SIGINT, SIGTERM } )
      sigaction( signal, &action, nullptr );
}

} // namespace

Interruptible::Interruptible( Capture & capture ) {
   listening = &capture;
   onSignals( endListening );
}

Interruptible::~Interruptible() {
   onSignals( SIG_DFL );
   listening = nullptr;
}

} // namespace LdpTool
