// VLAN ids: bounds, text, log form.
#include "Bridging/VlanId.h"

#include "Vorn/ValueType.h"

namespace Bridging {

VlanIdOrNone::VlanIdOrNone( U16 value ) : value_( value ) {
   if ( value > max ) Vorn::throwRangeException( "VlanIdOrNone::value > 4094 not allowed" );
}

Vorn::String valueToStrep( VlanIdOrNone const & value ) { return Vorn::valueToStrep( value.value() ); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      VlanIdOrNone * value ) {
   U16 number;
   Vorn::sequenceToValue( it, end, &number );
   *value = VlanIdOrNone( number );
}

VORN_TEXT_STREAM( VlanIdOrNone )

void logOut( Vorn::NboAttrLog::Out & out, VlanIdOrNone value ) { logOut( out, value.value() ); }

void logIn( Vorn::NboAttrLog::In & in, VlanIdOrNone * value ) {
   U16 number;
   logIn( in, &number );
   *value = VlanIdOrNone( number );
}

} // namespace Bridging

VORN_OUTSIDE_RECORD( Bridging, VlanIdOrNone )
