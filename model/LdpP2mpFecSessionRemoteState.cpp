// Records of P2MP FECs from a session.
#include "Ldp/LdpP2mpFecSessionRemoteState.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteState )
VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteStatePerSessionColl )
VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteStateColl )
VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteStateNotifier )
VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteStateNotifierColl )
VORN_MODULE( &LdpP2mpFecSessionRemoteState::_vornType, &LdpP2mpFecSessionRemoteStatePerSessionColl::_vornType,
             &LdpP2mpFecSessionRemoteStateColl::_vornType, &LdpP2mpFecSessionRemoteStateNotifier::_vornType,
             &LdpP2mpFecSessionRemoteStateNotifierColl::_vornType )

LdpP2mpFecSessionRemoteState::~LdpP2mpFecSessionRemoteState() = default;
LdpP2mpFecSessionRemoteStatePerSessionColl::~LdpP2mpFecSessionRemoteStatePerSessionColl() = default;
LdpP2mpFecSessionRemoteStateColl::~LdpP2mpFecSessionRemoteStateColl() = default;
LdpP2mpFecSessionRemoteStateNotifier::~LdpP2mpFecSessionRemoteStateNotifier() = default;
LdpP2mpFecSessionRemoteStateNotifierColl::~LdpP2mpFecSessionRemoteStateNotifierColl() = default;

} // namespace Ldp
