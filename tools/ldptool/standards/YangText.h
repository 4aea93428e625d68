#pragma once

// Words and texts that YANG modules of the routing area spell in their own way.

#include "Vorn/Api.h"

#include <string>
#include <string_view>

namespace LdpTool {

/// The identity of a label that is reserved (RFC 8294, 3); null for one that has none.
char const * specialLabel( U32 label );

/// What is left until then, as a number of whole seconds in 16 bits.
U16 secondsLeft( double until, double now );

/// Octets as a string of YANG, which has no control characters: `\xNN`.
std::string yangText( std::string_view octets );

} // namespace LdpTool
