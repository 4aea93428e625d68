// Records of the protocol's registries, and which message types are known.
#include "Ldp/LdpEnums.h"

#include "Vorn/ValueType.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpMsgType, VORN_LDP_MSG_TYPES )
VORN_ENUM_RECORD( Ldp, LdpTlvType, VORN_LDP_TLV_TYPES )
VORN_ENUM_RECORD( Ldp, LdpStatusCode, VORN_LDP_STATUS_CODES )
VORN_ENUM_RECORD( Ldp, LdpFecElementType, VORN_LDP_FEC_ELEMENT_TYPES )
VORN_ENUM_RECORD( Ldp, LdpPwIntfParamSubTlvType, VORN_LDP_PW_INTF_PARAM_SUB_TLV_TYPES )

bool ldpIsKnownMsgType( LdpMsgType type ) noexcept {
   switch ( type ) {
#define KNOWN_TYPE( name, ... ) case name:
      VORN_LDP_MSG_TYPES( KNOWN_TYPE )
#undef KNOWN_TYPE
      return true;
   default: return false;
   }
}

Vorn::String stringValue( LdpStatusCode status ) { return valueToStrep( status ); }

} // namespace Ldp
