/// \file
/// Octets in hexadecimal.
#pragma once

#include "Vorn/String.h"

namespace Kesh {

/// Each octet as `\x` and two lower-case digits, with nothing between. With `maxBytes` neither 0 nor at least
/// `size`, the text "(truncated from SIZE) " and then the first `maxBytes` octets.
VORN_API Vorn::String hexDumpPythonCompatible( void const * data, std::size_t size, std::size_t maxBytes );

} // namespace Kesh
