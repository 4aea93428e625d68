#pragma once

// The account of each pair of speakers in plain words: how far they came, and what the findings are.

#include "findings/Findings.h"
#include "text/Output.h"

#include <optional>

namespace LdpTool {

/// All pairs, or those that the speaker is one of. Returns how many findings there are.
std::size_t printAccounts( Output & out, Evidence const & evidence, Network const & network,
                           Monitor & monitor, std::optional< Ldp::LdpIdentifier > const & about );

} // namespace LdpTool
