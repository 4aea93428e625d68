// Records of the indexes from addresses, interfaces and labels.
#include "Ldp/LdpIndex.h"

namespace Ldp {

VORN_RECORD( Ldp, PeerSession )
VORN_RECORD( Ldp, PeerTransportIpMap )
VORN_RECORD( Ldp, PeerPwRequest )
VORN_RECORD( Ldp, LabelFecMap )
VORN_RECORD( Ldp, PwFecSessionInfoMap )
VORN_RECORD( Ldp, LdpIndex )
VORN_MODULE( &PeerSession::_vornType, &PeerTransportIpMap::_vornType, &PeerPwRequest::_vornType,
             &LabelFecMap::_vornType, &PwFecSessionInfoMap::_vornType, &LdpIndex::_vornType )

PeerSession::~PeerSession() = default;
PeerTransportIpMap::~PeerTransportIpMap() = default;
PeerPwRequest::~PeerPwRequest() = default;
LabelFecMap::~LabelFecMap() = default;
PwFecSessionInfoMap::~PwFecSessionInfoMap() = default;
LdpIndex::~LdpIndex() = default;

} // namespace Ldp
