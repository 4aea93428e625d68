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

LdpLinkStatusColl::LdpLinkStatusColl( Vorn::Name const & name ) : name_( name ) {
   ldpLinkCommonStatusIs( Vorn::Name( "llcs" ) );
}

} // namespace Ldp
