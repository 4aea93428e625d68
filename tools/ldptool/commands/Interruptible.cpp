// Signals that end a capture, or a wait.
#include "commands/Interruptible.h"

#include <csignal>
#include <ctime>

namespace LdpTool {

namespace {

Capture * volatile listening = nullptr; // what a signal ends
volatile std::sig_atomic_t signalled = 0;

extern "C" void endListening( int ) {
   signalled = 1;
   if ( listening ) listening->stop();
}

void onSignals( void ( *handler )( int ) ) {
   struct sigaction action {};
   action.sa_handler = handler;
   action.sa_flags = int( SA_RESETHAND );
   for ( int signal : { SIGINT, SIGTERM } )
      sigaction( signal, &action, nullptr );
}

} // namespace

Interruptible::Interruptible() {
   signalled = 0;
   onSignals( endListening );
}

Interruptible::~Interruptible() { onSignals( SIG_DFL ); }

Interruptible::Ends::Ends( Capture * capture ) {
   listening = capture;
   if ( capture && signalled ) capture->stop();
}

Interruptible::Ends::~Ends() { listening = nullptr; }

bool Interruptible::interrupted() const { return signalled; }

void Interruptible::wait( std::span< pollfd > descriptors, int milliseconds ) const {
   for ( pollfd & one : descriptors )
      one.revents = 0;
   sigset_t both, before;
   sigemptyset( &both );
   sigaddset( &both, SIGINT );
   sigaddset( &both, SIGTERM );
   sigprocmask( SIG_BLOCK, &both, &before ); // one that comes before the wait begins ends it too
   if ( !signalled ) {
      timespec const time{ milliseconds / 1000, milliseconds % 1000 * 1000000L };
      ppoll( descriptors.data(), descriptors.size(), milliseconds < 0 ? nullptr : &time, &before );
   }
   sigprocmask( SIG_SETMASK, &before, nullptr );
}

} // namespace LdpTool
