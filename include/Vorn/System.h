/// \file
/// The clock.
#pragma once

#include "Vorn/Api.h"

namespace Vorn {

/// What the library takes from the system around it.
class VORN_API System {
 public:
   /// Gives a time in seconds.
   using Clock = double ( * )();

   /// Seconds since 1970-01-01 00:00 UTC, by the wall clock or what stands in its place. Everything in this
   /// library that needs the time asks here.
   static double currentTime() { return clock_(); }
   /// Puts another clock in the wall clock's place, as a test or a replayed capture does; null puts the wall
   /// clock back.
   static void clockIs( Clock clock ) noexcept;

 private:
   static Clock clock_;
};

} // namespace Vorn
