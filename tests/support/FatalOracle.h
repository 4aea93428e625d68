// What in a received PDU ends or hangs the process, worked out a second time: straight from the protocol's
// walk, octet by octet, with nothing of the library in it. Slow and plain, so that it can be read and
// believed. The guard is held against it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Fuzz {

using Octets = std::span< std::uint8_t const >;

struct Fatal {
   enum Input { wrappedUnit, unboundedP2mpDump };
   Input input;
   std::size_t offset; // of the unit's first octet, or of the P2MP element's type octet
};

// All fatal inputs of the PDU at that offset, in the order in which parsing it and then each of its messages
// meets them. What one message hides behind its first is not counted, nor are messages of a PDU that itself
// is fatal.
std::vector< Fatal > fatalInputs( Octets packet, std::size_t offset );

// That of one message, parsed by its type's own parser.
std::optional< Fatal > fatalInputOfMessage( Octets packet, std::size_t offset );

// That of one FEC TLV.
std::optional< Fatal > fatalInputOfFecTlv( Octets packet, std::size_t offset );

} // namespace Fuzz
