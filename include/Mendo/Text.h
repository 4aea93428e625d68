/// \file
/// Octets that came from outside, made fit to stand in a line of text.
#pragma once

#include "Vorn/Api.h"

#include <string>
#include <string_view>

namespace Mendo {

/// Appends each of the `size` octets at `data` as `\xNN`, two lower-case hexadecimal digits.
VORN_API void appendHex( std::string & line, void const * data, std::size_t size );

/// Appends octets of a text: printable ASCII as it stands, everything else as `\xNN`, so that what a peer
/// sent can neither break a line nor speak to a terminal.
VORN_API void appendPrintable( std::string & line, std::string_view octets );

} // namespace Mendo
