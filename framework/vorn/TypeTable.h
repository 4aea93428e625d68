/// \file
/// The process-wide table of types, for those who enter a record and those who look one up.
#pragma once

#include "Vorn/VornType.h"

namespace Vorn {

/// In order of name.
std::vector< VornType const * > & typeTable();

} // namespace Vorn
