// A text, given to the reader of every value type. A reader takes it, and then the value's own text reads
// back as an equal one, or raises RangeException and nothing else.
#include "Ldp/LdpUtils.h"

#include <memory>

namespace {

using Vorn::sequenceToValue;
using Vorn::valueToStrep;

template< class T >
bool same( T const & a, T const & b ) {
   return a == b;
}
bool same( double a, double b ) { return a == b || ( a != a && b != b ); } // a text may say "nan"

template< class T >
void checkText( Vorn::String const & text ) {
   // In a block of exactly its size, without the zero octet that a string has behind it.
   auto const block = std::make_unique< char[] >( text.bytes() );
   std::copy( text.begin(), text.end(), block.get() );
   char const * it = block.get();
   char const * const end = it + text.bytes();
   T value{};
   try {
      sequenceToValue( it, end, &value );
   } catch ( Vorn::RangeException const & ) {
      return;
   }
   VORN_ASSERT( it >= block.get() && it <= end );

   T back{};
   Vorn::strepToValue( valueToStrep( value ), &back );
   VORN_ASSERT( same( back, value ) );

   T whole{};
   bool taken = true;
   try {
      Vorn::strepToValue( text, &whole );
   } catch ( Vorn::RangeException const & ) {
      taken = false;
   }
   VORN_ASSERT( taken == ( it == end ) );
   VORN_ASSERT( same( whole, taken ? value : T{} ) );
}

// A value that also reads its plain text.
template< class T >
void checkPlainText( Vorn::String const & text ) {
   T value;
   try {
      value.stringValueIs( text );
   } catch ( Vorn::RangeException const & ) {
      VORN_ASSERT( value == T() );
      return;
   }
   T back;
   back.stringValueIs( value.stringValue() );
   VORN_ASSERT( back == value );
}

template< class... Types >
void checkTexts( Vorn::String const & text ) {
   ( checkText< Types >( text ), ... );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   Vorn::String const text( static_cast< void const * >( data ), size );
   checkTexts< bool, double, Vorn::String, U8, U16, U32, U64 >( text );
   checkTexts< Lumo::NetU8, Lumo::NetU16, Lumo::NetU32, Lumo::AddressFamily, Lumo::IpAddr, Lumo::Ip6Addr,
               Lumo::IpGenAddr, Lumo::IpGenPrefix, Lumo::MplsLabel >( text );
   checkTexts< Mpls::FwdEqvClass, Bridging::VlanIdOrNone, Pseudowire::PseudowireType,
               Pseudowire::PseudowireId, Pseudowire::VccvCvTypes >( text );
   using namespace Ldp;
   checkTexts< LdpMsgType, LdpTlvType, LdpStatusCode, LdpFecElementType, LdpPwIntfParamSubTlvType >( text );
   checkTexts< LdpIdentifier, LdpHdrMsgUbitAndTypeField, LdpTlvTypeField, LdpCommonHelloTargetField,
               LdpFtSessionFlags, LdpGenLabelTlvLabel, LdpStatusTlvStatusCode,
               LdpFecTlvPwIdElementHdrTypeField, LdpPwVccvParamField, LdpPwIntfParamFlags, LdpPwStatusField >(
        text );
   checkTexts< LdpFecTlvP2mpOpaqueLength, LdpMPBasicOpaqueValueElementHdr, LdpGenericLSPId, LdpP2mpFecElement,
               LdpP2mpFecGenericOpaqueId, PwFwdEqvClass, PwFwdEqvClassParams, PwFwdEqvClassInfo >( text );
   checkPlainText< LdpP2mpFecGenericOpaqueId >( text );
   checkPlainText< PwFwdEqvClass >( text );
   return 0;
}
