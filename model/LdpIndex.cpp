// Records of the indexes from addresses, interfaces and labels.
#include "Ldp/LdpIndex.h"

namespace Ldp {

VORN_RECORD( Ldp, PeerSession )
VORN_RECORD( Ldp, PeerTransportIpMap )
VORN_RECORD( Ldp, PeerPwRequest )
VORN_RECORD( Ldp, LabelFecMap )
VORN_RECORD( Ldp, PwFecSessionInfoMap )
VORN_RECORD( Ldp, LdpIndex )

} // namespace Ldp
