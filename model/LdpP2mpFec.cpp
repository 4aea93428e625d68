// Records of P2MP FECs.
#include "Ldp/LdpP2mpFec.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpP2mpFecStateMembership, VORN_LDP_P2MP_FEC_STATE_MEMBERSHIPS )
VORN_ENUM_RECORD( Ldp, LdpP2mpFecRole, VORN_LDP_P2MP_FEC_ROLES )
VORN_RECORD( Ldp, LdpP2mpFecState )
VORN_RECORD( Ldp, LdpP2mpFecStateColl )
VORN_RECORD( Ldp, LdpP2mpLabelTerminatingInfo )
VORN_RECORD( Ldp, LdpP2mpLabelTerminatingInfoColl )
VORN_RECORD( Ldp, LdpP2mpFecCounters )

LdpP2mpFecState::LdpP2mpFecState( Mpls::FwdEqvClass const & p2mpFecId ) : p2mpFecId_( p2mpFecId ) {
   mplsLabelSetIs( Vorn::Name( "labelSet" ), p2mpFecId );
   advertisedToIs( p2mpFecId );
}

} // namespace Ldp
