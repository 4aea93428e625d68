#include "Ldp/LdpP2mpOpaqueTable.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpP2mpOpaqueTable )
VORN_MODULE( &LdpP2mpOpaqueTable::_vornType )

LdpP2mpOpaqueTable::~LdpP2mpOpaqueTable() { vornTeardown(); }

} // namespace Ldp
