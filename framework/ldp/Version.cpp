// The version of the library, as it runs.
#include "Ldp/Version.h"

namespace Ldp {

char const * version() noexcept { return LDP_VERSION; }

} // namespace Ldp
