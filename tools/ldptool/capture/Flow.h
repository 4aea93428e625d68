#pragma once

// Who sent something to whom and when, as the tool keeps it beside a PDU. A Flow is one direction of a UDP or
// TCP conversation; an Arrival is the packet of the capture that brought the octets.

#include "Vorn/Hash.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace LdpTool {

constexpr std::uint16_t ldpPort = 646;
constexpr std::uint8_t protocolTcp = 6;
constexpr std::uint8_t protocolUdp = 17;

/// One direction of a conversation. Addresses are in network order; IPv4 ones fill the first four octets.
struct Flow {
   std::array< std::uint8_t, 16 > source{};
   std::array< std::uint8_t, 16 > destination{};
   std::uint16_t sourcePort = 0;
   std::uint16_t destinationPort = 0;
   std::uint8_t addressSize = 4;
   std::uint8_t protocol = 0;

   bool operator==( Flow const & ) const = default;

   Flow reversed() const {
      return { destination, source, destinationPort, sourcePort, addressSize, protocol };
   }
};

struct FlowHash {
   std::size_t operator()( Flow const & flow ) const {
      static_assert( std::has_unique_object_representations_v< Flow > );
      return Vorn::hashBytes( &flow, sizeof flow );
   }
};

/// Where a packet was taken, as far as the capture tells.
struct Place {
   std::string const * interface = nullptr; ///< its name, which the capture keeps; null where none is known
   std::uint64_t vlans = 0;                 ///< ids of the tags, 12 bits each, the innermost lowest
   std::uint64_t sender = 0;                ///< link-layer address of who sent the frame
};

/// A packet of the capture: its number, counted from 1, and its time since the epoch.
struct Arrival {
   std::uint64_t frame = 0;
   std::int64_t seconds = 0;
   std::uint32_t nanoseconds = 0;
};

/// Seconds from `earlier` to `later`; below zero when the capture's clock went back.
inline std::int64_t secondsBetween( Arrival const & earlier, Arrival const & later ) {
   return later.seconds - earlier.seconds;
}

} // namespace LdpTool
