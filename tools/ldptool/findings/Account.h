#pragma once

// The account of each pair of speakers in plain words: how far they came, and what the findings are.

#include "findings/Findings.h"
#include "text/JsonWriter.h"

#include <optional>

namespace LdpTool {

/// All pairs, or those that the speaker is one of. Returns how many findings there are.
std::size_t printAccounts( Output & out, Evidence const & evidence, Network const & network,
                           Monitor & monitor, std::optional< Ldp::LdpIdentifier > const & about );

/// The same as an array of JSON: for each speaker and each pair an object with what is known and what was
/// found.
std::size_t writeAccounts( JsonWriter & json, Evidence const & evidence, Network const & network,
                           Monitor & monitor, std::optional< Ldp::LdpIdentifier > const & about );

} // namespace LdpTool
