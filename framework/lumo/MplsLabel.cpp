// Labels: bounds, text, log form.
#include "Lumo/MplsLabel.h"

#include "Vorn/ValueType.h"

namespace Lumo {

MplsLabel::MplsLabel( U32 value ) : value_( value ) {
   if ( value > luWithdraw ) {
      Vorn::throwRangeException( "MplsLabel::value < MplsLabel::min or > MplsLabel::luWithdraw not allowed" );
   }
}

Vorn::String valueToStrep( MplsLabel const & value ) { return Vorn::valueToStrep( value.value() ); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      MplsLabel * value ) {
   U32 number;
   Vorn::sequenceToValue( it, end, &number );
   *value = MplsLabel( number );
}

VORN_TEXT_STREAM( MplsLabel )

void logOut( Vorn::NboAttrLog::Out & out, MplsLabel value ) { logOut( out, value.value() ); }

void logIn( Vorn::NboAttrLog::In & in, MplsLabel * value ) {
   U32 number;
   logIn( in, &number );
   *value = MplsLabel( number );
}

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, MplsLabel )
