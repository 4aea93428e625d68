/// \file
/// An entity with all that hangs below it, for the eye.
#pragma once

#include "Vorn/Entity.h"

namespace Vorn {

/// Writes the entity to standard error, an attribute a line, members of collections and children indented
/// below it. It reads by reflection, calls no observer and changes nothing. Meant to be called from a
/// debugger: `call Vorn::dump( *status )`.
VORN_API void dump( Entity const & entity );

} // namespace Vorn
