#pragma once

// How speakers and prefixes are named on the command line.

#include "Ldp/LdpIdentifier.h"
#include "Lumo/Ip.h"

#include <string>

namespace LdpTool {

/// The speaker that the text names: its LDP identifier, or its LSR id with label space 0. Throws
/// CLI::ValidationError, which names the option.
Ldp::LdpIdentifier speakerOf( std::string const & option, std::string const & text );

/// The prefix that the text names; an address is that of a host. Throws the same.
Lumo::IpGenPrefix prefixOf( std::string const & option, std::string const & text );

} // namespace LdpTool
