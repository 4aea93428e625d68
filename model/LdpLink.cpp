// Links: records, and children that are there from the start.
#include "Ldp/LdpLink.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, ConfigState, VORN_LDP_CONFIG_STATES )
VORN_RECORD( Ldp, LdpLinkBaseConfig )
VORN_RECORD( Ldp, LdpLinkCommonConfig )
VORN_RECORD( Ldp, LdpLinkConfig )
VORN_RECORD( Ldp, LdpLinkConfigColl )
VORN_RECORD( Ldp, LdpLinkStatus )
VORN_RECORD( Ldp, LdpLinkCommonStatus )
VORN_RECORD( Ldp, LdpLinkStatusColl )
VORN_RECORD( Ldp, LdpLinkUdpPamStatus )
VORN_RECORD( Ldp, IpIntfMember )
VORN_RECORD( Ldp, LocalIntfIpColl )
VORN_MODULE( &ConfigState_vornType, &LdpLinkBaseConfig::_vornType, &LdpLinkCommonConfig::_vornType,
             &LdpLinkConfig::_vornType, &LdpLinkConfigColl::_vornType, &LdpLinkStatus::_vornType,
             &LdpLinkCommonStatus::_vornType, &LdpLinkStatusColl::_vornType, &LdpLinkUdpPamStatus::_vornType,
             &IpIntfMember::_vornType, &LocalIntfIpColl::_vornType )

LdpLinkBaseConfig::~LdpLinkBaseConfig() = default;
LdpLinkCommonConfig::~LdpLinkCommonConfig() = default;
LdpLinkConfig::~LdpLinkConfig() = default;
LdpLinkConfigColl::~LdpLinkConfigColl() = default;
LdpLinkStatus::~LdpLinkStatus() = default;
LdpLinkCommonStatus::~LdpLinkCommonStatus() = default;
LdpLinkStatusColl::~LdpLinkStatusColl() = default;
LdpLinkUdpPamStatus::~LdpLinkUdpPamStatus() = default;
IpIntfMember::~IpIntfMember() = default;
LocalIntfIpColl::~LocalIntfIpColl() = default;

LdpLinkStatusColl::LdpLinkStatusColl( Vorn::Name const & name ) : name_( name ) {
   ldpLinkCommonStatusIs( Vorn::Name( "llcs" ) );
}

} // namespace Ldp
