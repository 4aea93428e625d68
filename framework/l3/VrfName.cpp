// VRF names: bounds, text, log form.
#include "L3/VrfName.h"

#include "Vorn/ValueType.h"

namespace L3 {

VrfName::VrfName( Vorn::String name ) : name_( std::move( name ) ) {
   if ( name_.bytes() > maxLength )
      Vorn::throwRangeException( "VrfName::bytes > VrfName::maxLength not allowed" );
}

Vorn::String valueToStrep( VrfName const & value ) { return Vorn::valueToStrep( value.stringValue() ); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      VrfName * value ) {
   Vorn::String name;
   Vorn::sequenceToValue( it, end, &name );
   *value = VrfName( name );
}

VORN_TEXT_STREAM( VrfName )

void logOut( Vorn::NboAttrLog::Out & out, VrfName const & value ) { logOut( out, value.stringValue() ); }

void logIn( Vorn::NboAttrLog::In & in, VrfName * value ) {
   Vorn::String name;
   logIn( in, &name );
   *value = VrfName( name );
}

} // namespace L3

VORN_OUTSIDE_RECORD( L3, VrfName )
