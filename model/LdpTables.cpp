#include "Ldp/LdpTables.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpIdentifierSet )
VORN_RECORD( Ldp, LabelAdvertisementColl )
VORN_RECORD( Ldp, LdpIpAddrColl )
VORN_RECORD( Ldp, LdpIdIntfIpMappingTable )
VORN_RECORD( Ldp, LdpIdIntfIpMappingEntryTable )
VORN_MODULE( &LdpIdentifierSet::_vornType, &LabelAdvertisementColl::_vornType, &LdpIpAddrColl::_vornType,
             &LdpIdIntfIpMappingTable::_vornType, &LdpIdIntfIpMappingEntryTable::_vornType )

LdpIdentifierSet::~LdpIdentifierSet() { vornTeardown(); }
LabelAdvertisementColl::~LabelAdvertisementColl() { vornTeardown(); }
LdpIpAddrColl::~LdpIpAddrColl() { vornTeardown(); }
LdpIdIntfIpMappingTable::~LdpIdIntfIpMappingTable() { vornTeardown(); }
LdpIdIntfIpMappingEntryTable::~LdpIdIntfIpMappingEntryTable() { vornTeardown(); }

} // namespace Ldp
