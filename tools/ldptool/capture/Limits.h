#pragma once

// What one capture can make a program hold. Who sends the packets chooses how many flows and fragments there
// are, so there is an end to each.

#include <cstddef>
#include <cstdint>
#include <limits>

namespace LdpTool {

struct CaptureLimits {
   std::size_t flows = 32768;            ///< directions of TCP conversations; the one silent for longest goes
   std::size_t fragmentOctets = 8 << 20; ///< of IP packets that wait for their other fragments
};

/// Where to stop reading.
struct CaptureEnd {
   static constexpr double never = std::numeric_limits< double >::infinity();

   std::uint64_t frame = std::numeric_limits< std::uint64_t >::max(); ///< the last one read
   double time = never;      ///< nothing later is read; seconds since the epoch
   double timeOfDay = never; ///< the same, on the day of the first packet (UTC)
};

} // namespace LdpTool
