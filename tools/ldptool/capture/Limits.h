#pragma once

// What one capture can make a program hold. Who sends the packets chooses how many flows and fragments there
// are, so there is an end to each.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace LdpTool {

struct CaptureLimits {
   std::size_t flows = 32768;            ///< directions of TCP conversations; the one silent for longest goes
   std::size_t fragmentOctets = 8 << 20; ///< of IP packets that wait for their other fragments
};

/// A packet of a capture, by its number or its time. The default is none.
struct CaptureMoment {
   std::optional< std::uint64_t > frame; ///< counted from 1
   std::optional< double > time;         ///< seconds since the epoch
   std::optional< double > timeOfDay;    ///< seconds, on the day of the first packet
};

/// Which packets to read.
struct CaptureRange {
   CaptureMoment from;
   CaptureMoment to;   ///< the last one
   bool utc = false;   ///< the day begins by universal and not by local time
   std::string filter; ///< in the language of pcap-filter(7); empty for all
};

} // namespace LdpTool
