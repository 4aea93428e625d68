#pragma once

// How speakers are named on the command line.

#include "Ldp/LdpIdentifier.h"

#include <string>

namespace LdpTool {

/// The speaker that the text names: its LDP identifier, or its LSR id with label space 0. Throws
/// CLI::ValidationError, which names the option.
Ldp::LdpIdentifier speakerOf( std::string const & option, std::string const & text );

} // namespace LdpTool
