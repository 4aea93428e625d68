/// \file
/// An entity with all that hangs below it, for the eye.
#pragma once

#include "Vorn/Entity.h"

namespace Vorn {

/// The entity, an attribute a line, members of collections and children indented below it. It reads by
/// reflection, calls no observer and changes nothing.
VORN_API String treeText( Entity const & entity );

/// Writes that to standard error. Meant to be called from a debugger: `call Vorn::dump( *status )`.
VORN_API void dump( Entity const & entity );

} // namespace Vorn
