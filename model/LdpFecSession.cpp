#include "Ldp/LdpFecSession.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpLocalLabelState, LDP_LOCAL_LABEL_STATES )
VORN_ENUM_RECORD( Ldp, LdpPeerLabelState, LDP_PEER_LABEL_STATES )
VORN_VALUE_RECORD( Ldp, LdpFecSessionId )
VORN_VALUE_RECORD( Ldp, LdpLocalLabelSessionState )
VORN_VALUE_RECORD( Ldp, LdpPeerLabelSessionState )
VORN_RECORD( Ldp, LdpFecSessionStatus )
VORN_RECORD( Ldp, LdpFecSessionStatusBySession )
VORN_RECORD( Ldp, LdpFecSessionStatusColl )
VORN_RECORD( Ldp, LdpFecSessionNotifier )
VORN_MODULE( &LdpLocalLabelState_vornType, &LdpPeerLabelState_vornType, &LdpFecSessionId::_vornType, &LdpLocalLabelSessionState::_vornType, &LdpPeerLabelSessionState::_vornType, &LdpFecSessionStatus::_vornType, &LdpFecSessionStatusBySession::_vornType, &LdpFecSessionStatusColl::_vornType, &LdpFecSessionNotifier::_vornType )

LdpFecSessionStatus::~LdpFecSessionStatus() { vornTeardown(); }
LdpFecSessionStatusBySession::~LdpFecSessionStatusBySession() { vornTeardown(); }
LdpFecSessionStatusColl::~LdpFecSessionStatusColl() { vornTeardown(); }
LdpFecSessionNotifier::~LdpFecSessionNotifier() { vornTeardown(); }

} // namespace Ldp
