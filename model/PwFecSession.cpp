#include "Ldp/PwFecSession.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, PwFecSessionMember, PW_FEC_SESSION_MEMBERS )
VORN_ENUM_RECORD( Ldp, PwFecSessionStatusState, PW_FEC_SESSION_STATUS_STATES )
VORN_VALUE_RECORD( Ldp, PwFecSessionId )
VORN_RECORD( Ldp, PwFecSessionConfig )
VORN_RECORD( Ldp, PwFecSessionConfigColl )
VORN_RECORD( Ldp, LocalPwFecSessionStatus )
VORN_RECORD( Ldp, LocalPwFecSessionStatusColl )
VORN_RECORD( Ldp, RemotePwFecSessionStatus )
VORN_RECORD( Ldp, RemotePwFecSessionStatusColl )
VORN_RECORD( Ldp, PwFecSessionMsgPipeColl )
VORN_MODULE( &PwFecSessionMember_vornType, &PwFecSessionStatusState_vornType, &PwFecSessionId::_vornType, &PwFecSessionConfig::_vornType, &PwFecSessionConfigColl::_vornType, &LocalPwFecSessionStatus::_vornType, &LocalPwFecSessionStatusColl::_vornType, &RemotePwFecSessionStatus::_vornType, &RemotePwFecSessionStatusColl::_vornType, &PwFecSessionMsgPipeColl::_vornType )

PwFecSessionConfig::~PwFecSessionConfig() { vornTeardown(); }
PwFecSessionConfigColl::~PwFecSessionConfigColl() { vornTeardown(); }
LocalPwFecSessionStatus::~LocalPwFecSessionStatus() { vornTeardown(); }
LocalPwFecSessionStatusColl::~LocalPwFecSessionStatusColl() { vornTeardown(); }
RemotePwFecSessionStatus::~RemotePwFecSessionStatus() { vornTeardown(); }
RemotePwFecSessionStatusColl::~RemotePwFecSessionStatusColl() { vornTeardown(); }
PwFecSessionMsgPipeColl::~PwFecSessionMsgPipeColl() { vornTeardown(); }

} // namespace Ldp
