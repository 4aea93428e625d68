#include "Acl/PrefixList.h"

namespace Acl {

VORN_ENUM_RECORD( Acl, PrefixAction, ACL_PREFIX_ACTIONS )
VORN_RECORD( Acl, PrefixList )

PrefixList::~PrefixList() { vornTeardown(); }

} // namespace Acl
