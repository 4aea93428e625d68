#include "Ldp/LdpFec.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpFecConfigMembership, LDP_FEC_CONFIG_MEMBERSHIPS )
VORN_ENUM_RECORD( Ldp, LdpFecLspRole, LDP_FEC_LSP_ROLES )
VORN_ENUM_RECORD( Ldp, FecConfigChange, LDP_FEC_CONFIG_CHANGES )
VORN_ENUM_RECORD( Ldp, LdpLabelUnassignedReason, LDP_LABEL_UNASSIGNED_REASONS )
VORN_ENUM_RECORD( Ldp, LdpXsessionNotification_LdpXsessionNotificationType, LDP_XSESSION_NOTIFICATION_TYPES )
VORN_VALUE_RECORD( Ldp, Via )
VORN_RECORD( Ldp, IntfIpViaMapping )
VORN_RECORD( Ldp, LdpIdViaMapping )
VORN_RECORD( Ldp, LdpFecConfig )
VORN_RECORD( Ldp, LdpFecConfigNotifier )
VORN_RECORD( Ldp, LdpFecConfigColl )
VORN_RECORD( Ldp, LdpXsessionNotification )
VORN_RECORD( Ldp, LdpFecStatus )
VORN_RECORD( Ldp, LdpFecStatusNotifier )
VORN_RECORD( Ldp, LdpFecStatusColl )
VORN_RECORD( Ldp, LdpFecNexthop )
VORN_RECORD( Ldp, LdpFecNexthopColl )
VORN_RECORD( Ldp, LdpFecCounters )
VORN_MODULE( &LdpFecConfigMembership_vornType, &LdpFecLspRole_vornType, &FecConfigChange_vornType, &LdpLabelUnassignedReason_vornType, &LdpXsessionNotification_LdpXsessionNotificationType_vornType, &Via::_vornType, &IntfIpViaMapping::_vornType, &LdpIdViaMapping::_vornType, &LdpFecConfig::_vornType, &LdpFecConfigNotifier::_vornType, &LdpFecConfigColl::_vornType, &LdpXsessionNotification::_vornType, &LdpFecStatus::_vornType, &LdpFecStatusNotifier::_vornType, &LdpFecStatusColl::_vornType, &LdpFecNexthop::_vornType, &LdpFecNexthopColl::_vornType, &LdpFecCounters::_vornType )

IntfIpViaMapping::~IntfIpViaMapping() { vornTeardown(); }
LdpIdViaMapping::~LdpIdViaMapping() { vornTeardown(); }
LdpFecConfig::~LdpFecConfig() { vornTeardown(); }
LdpFecConfigNotifier::~LdpFecConfigNotifier() { vornTeardown(); }
LdpFecConfigColl::~LdpFecConfigColl() { vornTeardown(); }
LdpXsessionNotification::~LdpXsessionNotification() { vornTeardown(); }
LdpFecStatus::~LdpFecStatus() { vornTeardown(); }
LdpFecStatusNotifier::~LdpFecStatusNotifier() { vornTeardown(); }
LdpFecStatusColl::~LdpFecStatusColl() { vornTeardown(); }
LdpFecNexthop::~LdpFecNexthop() { vornTeardown(); }
LdpFecNexthopColl::~LdpFecNexthopColl() { vornTeardown(); }
LdpFecCounters::~LdpFecCounters() { vornTeardown(); }

} // namespace Ldp
