// Pseudowire headers and interface parameter sub-TLVs: judgement and text.
#include "Ldp/LdpPwHdr.h"

#include "Vorn/AttributeRows.h"

#include <cstring>

namespace Ldp {

using namespace Vorn::Rows;

constexpr Vorn::VornAttr LdpPwIntfParamFlags::vornRows[] = {
   part< &Self::value, &Self::valueIs >( "value" ),
   constant< &Self::intfMtu_ >( "intfMtu_" ),
   constant< &Self::intfDesc_ >( "intfDesc_" ),
   constant< &Self::requestedVlanId_ >( "requestedVlanId_" ),
   constant< &Self::fragIndicator_ >( "fragIndicator_" ),
   constant< &Self::vccvParam_ >( "vccvParam_" ),
   write< &Self::intfMtu, &Self::intfMtuIs >( "intfMtu" ),
   write< &Self::intfDesc, &Self::intfDescIs >( "intfDesc" ),
   write< &Self::requestedVlanId, &Self::requestedVlanIdIs >( "requestedVlanId" ),
   write< &Self::fragIndicator, &Self::fragIndicatorIs >( "fragIndicator" ),
   write< &Self::vccvParam, &Self::vccvParamIs >( "vccvParam" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpPwIntfParamFlags )
VORN_TEXT_OF_FLAGS( LdpPwIntfParamFlags )

namespace {

/// The parameters of fixed size are all 4 octets long, head included.
LdpStatusCode validateFourOctets( LdpPwIntfParamSubTlv const & subTlv ) {
   return subTlv.length() == 4 ? success : badTlvLength;
}

} // namespace

Pseudowire::PseudowireId LdpFecTlvPwIdElementHdr::pwId() const noexcept {
   Lumo::NetU32 pwId;
   if ( hasPwId() ) {
      std::memcpy( &pwId, reinterpret_cast< U8 const * >( this ) + sizeof *this, sizeof pwId );
   }
   return Pseudowire::PseudowireId( pwId.value() );
}

void LdpFecTlvPwIdElementHdr::pwIdIs( Pseudowire::PseudowireId pwId ) {
   VORN_ASSERT( pwInfoLen() >= 4 );
   Lumo::NetU32 const wire( pwId.value() );
   std::memcpy( reinterpret_cast< U8 * >( this ) + sizeof *this, &wire, sizeof wire );
}

LdpStatusCode LdpPwIntfMtuSubTlv::validate() const {
   VORN_ASSERT( type() == Ldp::intfMtu );
   return validateFourOctets( *this );
}

Vorn::String LdpPwIntfDescSubTlv::description() const {
   if ( length() < tlvHdrSizeExclude ) return {};
   return Vorn::String( reinterpret_cast< char const * >( this ) + tlvHdrSizeExclude,
                        std::size_t( length() - tlvHdrSizeExclude ) );
}

LdpStatusCode LdpPwIntfDescSubTlv::validate() const {
   VORN_ASSERT( type() == Ldp::intfDesc );
   // In 8 bits, so that lengths of 0 and 1 wrap and fail as well.
   U8 const textLength = U8( length() - tlvHdrSizeExclude );
   return textLength <= maxLength - tlvHdrSizeExclude ? success : badTlvLength;
}

LdpStatusCode LdpPwRequestedVlanIdSubTlv::validate() const {
   VORN_ASSERT( type() == Ldp::requestedVlanId );
   return validateFourOctets( *this );
}

LdpStatusCode LdpPwFragIndicatorSubTlv::validate() const {
   VORN_ASSERT( type() == Ldp::fragIndicator );
   return validateFourOctets( *this );
}

LdpStatusCode LdpPwVccvParamSubTlv::validate() const {
   VORN_ASSERT( type() == Ldp::vccvParam );
   return validateFourOctets( *this );
}

void LdpPwIntfParamFlags::valueIs( U32 value ) {
   if ( value > all_ ) Vorn::throwRangeException( "LdpPwIntfParamFlags::value > 0x1f not allowed" );
   value_ = value;
}

LdpStatusCode LdpPwStatusTlv::validate() const {
   LdpStatusCode const status = validateTlvHdr();
   return status != success ? status : validateLength( 4 );
}

Vorn::String LdpPwStatusTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error LdpPwStatusTlv: " + valueToStrep( status );
   return Vorn::format( "LdpPwStatusTlv: 0x%.8x", pwStatusField_.value() );
}

} // namespace Ldp
