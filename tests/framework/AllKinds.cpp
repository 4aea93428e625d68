// Records of the types that have an attribute of every kind.
#include "framework/AllKinds.h"

namespace Test {

VORN_RECORD( Test, Leaf )
VORN_RECORD( Test, Member )
VORN_RECORD( Test, Everything )
VORN_RECORD( Test, Derived )

Vorn::String Everything::motto() const { return "plain"; }

U32 Everything::doubled() const { return 2 * number(); }

U32 Everything::sum( U32 a, U32 b ) { return a + b + number(); }

} // namespace Test
