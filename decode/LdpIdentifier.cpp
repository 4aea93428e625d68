// The LDP identifier: hash, text and its reader.
#include "Ldp/LdpIdentifier.h"

#include "Vorn/AttributeRows.h"

#include "Lumo/Ip.h"

namespace Ldp {

using namespace Vorn::Rows;

constexpr Vorn::VornAttr LdpIdentifier::vornRows[] = { ctor< &Self::lsrId >( "lsrId" ),
                                                       ctor< &Self::lblSpace >( "lblSpace" ),
                                                       read< &Self::stringValue >( "stringValue" ),
                                                       read< &Self::hash >( "hash" ) };
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpIdentifier )

Vorn::String LdpIdentifier::stringValue() const {
   return Lumo::IpAddr( lsrId() ).stringValue() + ":" + Vorn::valueToStrep( lblSpace() );
}

Vorn::String valueToStrep( LdpIdentifier const & value ) { return value.stringValue(); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      LdpIdentifier * value ) {
   Lumo::IpAddr lsrId;
   U16 lblSpace;
   sequenceToValue( it, end, &lsrId );
   Vorn::needString( it, end, ":" );
   Vorn::sequenceToValue( it, end, &lblSpace );
   *value = LdpIdentifier( lsrId.value(), lblSpace );
}

VORN_TEXT_STREAM( LdpIdentifier )

void logOut( Vorn::NboAttrLog::Out & out, LdpIdentifier const & value ) {
   logOut( out, value.lsrId() );
   logOut( out, value.lblSpace() );
}

void logIn( Vorn::NboAttrLog::In & in, LdpIdentifier * value ) {
   U32 lsrId;
   U16 lblSpace;
   logIn( in, &lsrId );
   logIn( in, &lblSpace );
   *value = LdpIdentifier( lsrId, lblSpace );
}

} // namespace Ldp
