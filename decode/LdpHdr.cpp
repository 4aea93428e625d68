#include "Ldp/LdpHdr.h"

#include "Vorn/ValueType.h"

namespace Ldp {

VORN_OUTSIDE_COMPOSITE( Ldp, LdpHdrMsgUbitAndTypeField, VORN_TEXT_FIELD( v0 ), VORN_TEXT_FIELD( v1 ) )
VORN_OUTSIDE_COMPOSITE( Ldp, LdpTlvTypeField, VORN_TEXT_FIELD( v0 ), VORN_TEXT_FIELD( v1 ) )

Vorn::String LdpPduHdr::stringValue() const {
   return Vorn::format( "LdpPduHdr: Ver(%d),Len(%d),LdpId: ", version(), length() ) +
          ldpIdentifier_.stringValue();
}

LdpStatusCode LdpTlvHdr::validateTlvHdr() const noexcept {
   bool known = false;
   switch ( type() ) {
#define KNOWN_COLUMN( name, number, isKnown )                                                                \
   case name: known = isKnown; break;
      LDP_TLV_TYPES( KNOWN_COLUMN )
#undef KNOWN_COLUMN
   default: break;
   }
   if ( known ) return success;
   return unknown() ? unknownMessageTypeIgnore : unknownTlv;
}

} // namespace Ldp

VORN_OUTSIDE_COMPOSITE_RECORD( Ldp, LdpHdrMsgUbitAndTypeField )
VORN_OUTSIDE_COMPOSITE_RECORD( Ldp, LdpTlvTypeField )
VORN_MODULE( ::Vorn::recordOf< Ldp::LdpHdrMsgUbitAndTypeField >(),
             ::Vorn::recordOf< Ldp::LdpTlvTypeField >() )
