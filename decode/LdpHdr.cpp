// PDU, message and TLV headers: texts, and which TLV types are known.
#include "Ldp/LdpHdr.h"

namespace Ldp {

Vorn::String LdpPduHdr::stringValue() const {
   return Vorn::format( "LdpPduHdr: Ver(%d),Len(%d),LdpId: ", version(), length() ) +
          ldpIdentifier_.stringValue();
}

LdpStatusCode LdpTlvHdr::validateTlvHdr() const noexcept {
   bool known = false;
   switch ( type() ) {
#define KNOWN_COLUMN( name, number, isKnown )                                                                \
   case name: known = isKnown; break;
      VORN_LDP_TLV_TYPES( KNOWN_COLUMN )
#undef KNOWN_COLUMN
   default: break;
   }
   if ( known ) return success;
   return unknown() ? unknownMessageTypeIgnore : unknownTlv;
}

} // namespace Ldp
