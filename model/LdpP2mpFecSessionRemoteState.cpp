// Records of P2MP FECs from a session.
#include "Ldp/LdpP2mpFecSessionRemoteState.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteState )
VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteStatePerSessionColl )
VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteStateColl )
VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteStateNotifier )
VORN_RECORD( Ldp, LdpP2mpFecSessionRemoteStateNotifierColl )

} // namespace Ldp
