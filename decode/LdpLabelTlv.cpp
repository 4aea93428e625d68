// Label, hop count, path vector, status and address TLVs: judgement and text.
#include "Ldp/LdpLabelTlv.h"

#include <cstring>

namespace Ldp {

LdpStatusCode LdpGenLabelTlv::validate() const {
   VORN_ASSERT( type() == genLabelTlv );
   return validateLength( 4 );
}

Vorn::String LdpGenLabelTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error GenLabelTlv: " + valueToStrep( status );
   return Vorn::format( "GenLabelTlv: L(%u)", label().value() );
}

LdpStatusCode LdpLabelReqMsgIdTlv::validate() const {
   VORN_ASSERT( type() == labelReqMsgIdTlv );
   return validateLength( 4 );
}

Vorn::String LdpLabelReqMsgIdTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error LabelReqMsgIdTlv: " + valueToStrep( status );
   return Vorn::format( "LabelReqMsgIdTlv: ID(%u)", reqMsgId() );
}

LdpStatusCode LdpHopCountTlv::validate() const {
   VORN_ASSERT( type() == hopCountTlv );
   return validateLength( 1 );
}

Vorn::String LdpHopCountTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error LdpHopCountTlv: " + valueToStrep( status );
   return Vorn::format( "LdpHopCountTlv: %d", hopCount() );
}

Lumo::IpAddr LdpPathVectorTlv::lsrId( U32 position ) const noexcept {
   Lumo::IpAddr lsrId;
   if ( position < lsrIdNum() ) {
      std::memcpy( lsrId.octets(), octetsAt( sizeof( LdpTlvHdr ) + 4 * position ), Lumo::IpAddr::size );
   }
   return lsrId;
}

U32 LdpPathVectorTlv::lsrIdPosition( Lumo::IpAddr const & lsrId ) const noexcept {
   U32 const num = lsrIdNum();
   for ( U32 i = 0; i < num; ++i ) {
      if ( this->lsrId( i ) == lsrId ) return i + 1;
   }
   return 0;
}

LdpStatusCode LdpPathVectorTlv::validate() const {
   VORN_ASSERT( type() == pathVectorTlv );
   return lsrIdNum() ? success : badTlvLength;
}

Vorn::String LdpPathVectorTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error LdpPathVectorTlv: " + valueToStrep( status );
   Vorn::String text = "LdpPathVectorTlv: [";
   U32 const num = lsrIdNum();
   for ( U32 i = 0; i < num; ++i ) {
      if ( i ) text += ", ";
      text += lsrId( i ).stringValue();
   }
   return text += "]";
}

LdpStatusCode LdpStatusTlv::validate() const {
   VORN_ASSERT( type() == statusTlv );
   return validateLength( 10 );
}

Vorn::String LdpStatusTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error LdpStatusTlv: " + valueToStrep( status );
   return Vorn::format( "StatusTlv(%s): %s:%u u(%d), fu(%d), e(%d), efu(%d)",
                        valueToStrep( statusData() ).charPtr(), valueToStrep( msgType() ).charPtr(), msgId(),
                        unknown(), forwardUnknown(), statusError(), statusForwardUnknown() );
}

Lumo::NetU16 LdpAddressListTlv::addressFamilyNbo() const noexcept {
   Lumo::NetU16 family;
   if ( hasFamily() ) std::memcpy( &family, octetsAt( sizeof( LdpTlvHdr ) ), sizeof family );
   return family;
}

Lumo::AddressFamily LdpAddressListTlv::family() const noexcept {
   return Lumo::AddressFamily( addressFamilyNbo().value() );
}

U16 LdpAddressListTlv::numAddress() const noexcept {
   // Both families' lengths fit the shorter one's, so the family need not be there for this.
   if ( length() < 3 || length() % Lumo::IpAddr::size != 2 || !hasFamily() ) return 0;
   U16 const octets = U16( length() - 2 );
   switch ( family() ) {
   case Lumo::ipv4: return octets % Lumo::IpAddr::size ? 0 : U16( octets / Lumo::IpAddr::size );
   case Lumo::ipv6: return octets % Lumo::Ip6Addr::size ? 0 : U16( octets / Lumo::Ip6Addr::size );
   default: return 0;
   }
}

Lumo::IpGenAddr LdpAddressListTlv::address( U16 position ) const {
   VORN_ASSERT( position < numAddress() );
   // The address goes through its text, so that its family is what the text says.
   if ( family() == Lumo::ipv6 ) {
      Lumo::Ip6Addr addr;
      std::memcpy( addr.octets(), octetsAt( 6 + U32( Lumo::Ip6Addr::size ) * position ),
                   Lumo::Ip6Addr::size );
      return Lumo::IpGenAddr( addr.stringValue() );
   }
   VORN_ASSERT( family() == Lumo::ipv4 );
   Lumo::IpAddr addr;
   std::memcpy( addr.octets(), octetsAt( 6 + U32( Lumo::IpAddr::size ) * position ), Lumo::IpAddr::size );
   return Lumo::IpGenAddr( addr.stringValue() );
}

LdpStatusCode LdpAddressListTlv::validate() const {
   LdpStatusCode const status = validateTlvHdr();
   if ( status != success ) return status;
   // A wrapped total reaches over no family field, so nothing of the list may be read, not even to refuse it.
   bool const wrapped = totalLength() < length();
   if ( !wrapped && family() != Lumo::ipv4 && family() != Lumo::ipv6 ) return unsupportedAddressFamily;
   return numAddress() ? success : malformedTlv;
}

Vorn::String LdpAddressListTlv::stringValue() const {
   U16 const num = numAddress();
   if ( !num ) return "LdpAddressListTlv( Invalid TLV )";
   return Vorn::format( "LdpAddressListTlv( %s, %d, ", valueToStrep( family() ).charPtr(), num ) +
          address( 0 ).stringValue() + ( num == 1 ? " )" : ", ... )" );
}

} // namespace Ldp
