// Records of the types that the log's tests replicate.
#include "support/LogKinds.h"

namespace Test {

VORN_RECORD( Test, Twig )
VORN_RECORD( Test, Branch )
VORN_RECORD( Test, Tree )
VORN_MODULE( &Twig::_vornType, &Branch::_vornType, &Tree::_vornType )

Twig::~Twig() = default;
Branch::~Branch() = default;
Tree::~Tree() = default;

} // namespace Test
