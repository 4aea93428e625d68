#include "Ldp/LdpIdentifier.h"

#include "Lumo/Ip.h"

namespace Ldp {

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

} // namespace Ldp
