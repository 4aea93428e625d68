// The one clock.
#include "Vorn/System.h"

#include <chrono>

namespace Vorn {

namespace {

double wallClock() {
   using Seconds = std::chrono::duration< double >;
   return std::chrono::duration_cast< Seconds >( std::chrono::system_clock::now().time_since_epoch() )
        .count();
}

} // namespace

constinit System::Clock System::clock_ = wallClock;

void System::clockIs( Clock clock ) noexcept { clock_ = clock ? clock : wallClock; }

} // namespace Vorn
