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

LdpP2mpFecSessionLocalState::LdpP2mpFecSessionLocalState( LdpFecSessionId const & ldpP2mpFecSessionId )
     : ldpP2mpFecSessionId_( ldpP2mpFecSessionId ) {
   ephemeralStateIs( Vorn::Name() );
}

} // namespace Ldp
