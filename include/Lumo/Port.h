/// \file
/// Small numbers of IP and TCP headers.
#pragma once

#include "Vorn/Number.h"

namespace Lumo {

/// A TCP or UDP port.
using Port = Vorn::Number< struct PortTag, U16 >;
/// Time to live of an IP packet (RFC 791, 3.2).
using IpTtl = Vorn::Number< struct IpTtlTag, U8 >;

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::Port )
VORN_OUTSIDE_VALUE( Lumo::IpTtl )
