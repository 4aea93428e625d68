#include "Ldp/LdpEnums.h"

#include "Vorn/ValueType.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpMsgType, LDP_MSG_TYPES )
VORN_ENUM_RECORD( Ldp, LdpTlvType, LDP_TLV_TYPES )
VORN_ENUM_RECORD( Ldp, LdpStatusCode, LDP_STATUS_CODES )
VORN_ENUM_RECORD( Ldp, LdpFecElementType, LDP_FEC_ELEMENT_TYPES )
VORN_ENUM_RECORD( Ldp, LdpPwIntfParamSubTlvType, LDP_PW_INTF_PARAM_SUB_TLV_TYPES )
VORN_MODULE( &LdpMsgType_vornType, &LdpTlvType_vornType, &LdpStatusCode_vornType, &LdpFecElementType_vornType,
             &LdpPwIntfParamSubTlvType_vornType )

bool ldpIsKnownMsgType( LdpMsgType type ) noexcept {
   switch ( type ) {
#define KNOWN_TYPE( name, ... ) case name:
      LDP_MSG_TYPES( KNOWN_TYPE )
#undef KNOWN_TYPE
      return true;
   default: return false;
   }
}

Vorn::String stringValue( LdpStatusCode status ) { return valueToStrep( status ); }

} // namespace Ldp
