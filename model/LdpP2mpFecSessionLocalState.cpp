// Records of P2MP FECs towards a session.
#include "Ldp/LdpP2mpFecSessionLocalState.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpP2mpFecSessionEvent, VORN_LDP_P2MP_FEC_SESSION_EVENTS )
VORN_RECORD( Ldp, LdpP2mpFecSessionLocalEphemeralState )
VORN_RECORD( Ldp, LdpP2mpFecSessionLocalState )
VORN_RECORD( Ldp, LdpP2mpFecSessionLocalStatePerSessionColl )
VORN_RECORD( Ldp, LdpP2mpFecSessionLocalStateColl )
VORN_RECORD( Ldp, LdpP2mpFecSessionLocalStateNotifier )
VORN_RECORD( Ldp, LdpP2mpFecSessionLocalStateNotifierColl )
VORN_MODULE( &LdpP2mpFecSessionEvent_vornType, &LdpP2mpFecSessionLocalEphemeralState::_vornType,
             &LdpP2mpFecSessionLocalState::_vornType, &LdpP2mpFecSessionLocalStatePerSessionColl::_vornType,
             &LdpP2mpFecSessionLocalStateColl::_vornType, &LdpP2mpFecSessionLocalStateNotifier::_vornType,
             &LdpP2mpFecSessionLocalStateNotifierColl::_vornType )

LdpP2mpFecSessionLocalEphemeralState::~LdpP2mpFecSessionLocalEphemeralState() = default;
LdpP2mpFecSessionLocalState::~LdpP2mpFecSessionLocalState() = default;
LdpP2mpFecSessionLocalStatePerSessionColl::~LdpP2mpFecSessionLocalStatePerSessionColl() = default;
LdpP2mpFecSessionLocalStateColl::~LdpP2mpFecSessionLocalStateColl() = default;
LdpP2mpFecSessionLocalStateNotifier::~LdpP2mpFecSessionLocalStateNotifier() = default;
LdpP2mpFecSessionLocalStateNotifierColl::~LdpP2mpFecSessionLocalStateNotifierColl() = default;

LdpP2mpFecSessionLocalState::LdpP2mpFecSessionLocalState( LdpFecSessionId const & ldpP2mpFecSessionId )
     : ldpP2mpFecSessionId_( ldpP2mpFecSessionId ) {
   ephemeralStateIs( Vorn::Name() );
}

} // namespace Ldp
