// Records of prefix lists.
#include "Acl/PrefixList.h"

namespace Acl {

VORN_ENUM_RECORD( Acl, PrefixAction, VORN_ACL_PREFIX_ACTIONS )
VORN_RECORD( Acl, PrefixList )

} // namespace Acl
