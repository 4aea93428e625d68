#pragma once

// The label of a label message, which may stand for all.

#include "Lumo/MplsLabel.h"

#include <optional>

namespace LdpTool {

/// The label that a label message names; none stands for all labels of its FEC.
using AnyLabel = std::optional< Lumo::MplsLabel >;

inline bool names( AnyLabel label, Lumo::MplsLabel present ) { return !label || *label == present; }

} // namespace LdpTool
