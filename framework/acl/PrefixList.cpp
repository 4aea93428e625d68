// Records of prefix lists.
#include "Acl/PrefixList.h"

namespace Acl {

VORN_ENUM_RECORD( Acl, PrefixAction, VORN_ACL_PREFIX_ACTIONS )
VORN_RECORD( Acl, PrefixList )
VORN_MODULE( &PrefixAction_vornType, &PrefixList::_vornType )

PrefixList::~PrefixList() = default;

} // namespace Acl
