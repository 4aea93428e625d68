/// \file
/// The text of all that an attribute log carries of an entity, by which copy and original are compared.
#pragma once

#include "Vorn/Entity.h"

#include <string>

namespace Test {

/// Every logged attribute below an entity. A reference reads as the path to its target, or as null if that is
/// not below `root`; of a collection, entries that would be null are left out. Of a queue head and next index
/// count too.
std::string logged( Vorn::Entity & root );

} // namespace Test
