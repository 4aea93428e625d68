// Records of the tables that sessions are found by.
#include "Ldp/LdpTables.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpIdentifierSet )
VORN_RECORD( Ldp, LabelAdvertisementColl )
VORN_RECORD( Ldp, LdpIpAddrColl )
VORN_RECORD( Ldp, LdpIdIntfIpMappingTable )
VORN_RECORD( Ldp, LdpIdIntfIpMappingEntryTable )
VORN_MODULE( &LdpIdentifierSet::_vornType, &LabelAdvertisementColl::_vornType, &LdpIpAddrColl::_vornType,
             &LdpIdIntfIpMappingTable::_vornType, &LdpIdIntfIpMappingEntryTable::_vornType )

LdpIdentifierSet::~LdpIdentifierSet() = default;
LabelAdvertisementColl::~LabelAdvertisementColl() = default;
LdpIpAddrColl::~LdpIpAddrColl() = default;
LdpIdIntfIpMappingTable::~LdpIdIntfIpMappingTable() = default;
LdpIdIntfIpMappingEntryTable::~LdpIdIntfIpMappingEntryTable() = default;

} // namespace Ldp
