#pragma once

// Captures that were compressed with gzip (RFC 1952), read as if they were not.

#include <cstdio>

namespace LdpTool {

/// The first octet of every gzip file, and of no capture.
constexpr int gzipFirstOctet = 0x1f;

/// A stream of what `compressed` holds, read as it is asked for. It owns the other. Reading fails where that
/// is damaged or ends early. Null if the stream cannot be made.
std::FILE * gunzip( std::FILE * compressed );

} // namespace LdpTool
