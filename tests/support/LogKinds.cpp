// Records of the types that the log's tests replicate.
#include "support/LogKinds.h"

namespace Test {

VORN_RECORD( Test, Twig )
VORN_RECORD( Test, Branch )
VORN_RECORD( Test, Tree )

} // namespace Test
