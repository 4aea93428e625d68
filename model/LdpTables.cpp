// Records of the tables that sessions are found by.
#include "Ldp/LdpTables.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpIdentifierSet )
VORN_RECORD( Ldp, LabelAdvertisementColl )
VORN_RECORD( Ldp, LdpIpAddrColl )
VORN_RECORD( Ldp, LdpIdIntfIpMappingTable )
VORN_RECORD( Ldp, LdpIdIntfIpMappingEntryTable )

} // namespace Ldp
