#pragma once

// What one capture can make the monitor keep. Who sends the packets chooses how many speakers, links and FECs
// there are, so there is an end to each; what was turned away is counted.

#include <cstddef>
#include <cstdint>

namespace LdpTool {

struct MonitorLimits {
   std::size_t speakers = 4096;
   std::size_t adjacencies = 1024; ///< of one speaker
   /// On one link, each of which may hear all others. In a capture that does not tell links apart, those
   /// whose addresses are near.
   std::size_t linkSpeakers = 256;
   std::size_t fecs = 1000000;   ///< of one session, at either end
   std::size_t changes = 100000; ///< of sessions and adjacencies, for the history

   /// Of all speakers together, links that one speaks on, adjacencies, and ends of sessions each.
   static constexpr std::size_t adjacenciesInAll = 65536;
};

/// How often something was not kept.
struct TurnedAway {
   std::uint64_t speakers = 0;
   std::uint64_t adjacencies = 0;
   std::uint64_t fecs = 0;
   std::uint64_t changes = 0;
   std::uint64_t typedWildcards = 0; ///< about FECs that are not followed by type

   explicit operator bool() const { return speakers || adjacencies || fecs || changes || typedWildcards; }
};

} // namespace LdpTool
