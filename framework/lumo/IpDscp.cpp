// Record of the DSCP.
#include "Lumo/IpDscp.h"

#include "Vorn/ValueType.h"

namespace Lumo {

Vorn::String valueToStrep( IpDscp const & value ) { return Vorn::valueToStrep( value.value() ); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      IpDscp * value ) {
   U8 octet;
   Vorn::sequenceToValue( it, end, &octet );
   *value = IpDscp( octet );
}

VORN_TEXT_STREAM( IpDscp )

void logOut( Vorn::NboAttrLog::Out & out, IpDscp value ) { logOut( out, value.value() ); }

void logIn( Vorn::NboAttrLog::In & in, IpDscp * value ) {
   U8 octet;
   logIn( in, &octet );
   *value = IpDscp( octet );
}

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, IpDscp )
