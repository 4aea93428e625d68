#include "Lumo/MplsLabel.h"

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

} // namespace Lumo
