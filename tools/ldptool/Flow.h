#pragma once

// Who sent something to whom and when, as the tool keeps it beside a PDU. A Flow is one direction of a UDP or
// TCP conversation; an Arrival is the packet of the capture that brought the octets.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

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
      std::uint64_t hash = ( std::uint64_t( flow.sourcePort ) << 16 | flow.destinationPort ) + flow.protocol;
      for ( auto const * address : { &flow.source, &flow.destination } ) {
         std::array< std::uint64_t, 2 > words;
         std::memcpy( words.data(), address->data(), sizeof words );
         for ( std::uint64_t word : words ) {
            hash = ( hash ^ word ) * 0x9e3779b97f4a7c15U;
            hash ^= hash >> 32;
         }
      }
      return std::size_t( hash );
   }
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
