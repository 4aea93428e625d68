#include "Bridging/VlanId.h"

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

} // namespace Bridging
