#pragma once

// Packets written down in hexadecimal, one in a line, as a source of PDUs: for trying things and for scripts.

#include "capture/PduSink.h"

#include <istream>
#include <string>

namespace LdpTool {

/// Deliver the packet of each line of `input`; a PDU stands at its offset 0. Blanks between digits, empty
/// lines, and everything behind a `#` count for nothing. Throws InputError, with `name` and the line's
/// number, at a line that is something else; the lines before it have been delivered by then.
void readHex( std::istream & input, std::string const & name, PduSink & sink );

} // namespace LdpTool
