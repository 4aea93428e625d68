// Names of network namespaces: text and log form.
#include "Lumo/NamespaceName.h"

#include "Vorn/ValueType.h"

namespace Lumo {

NamespaceName::NamespaceName( Vorn::String name ) : name_( std::move( name ) ) {
   if ( name_.bytes() > maxLength ) Vorn::throwRangeException( "NamespaceName::bytes > 150 not allowed" );
}

Vorn::String valueToStrep( NamespaceName const & value ) { return Vorn::valueToStrep( value.stringValue() ); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      NamespaceName * value ) {
   Vorn::String name;
   Vorn::sequenceToValue( it, end, &name );
   *value = NamespaceName( name );
}

VORN_TEXT_STREAM( NamespaceName )

void logOut( Vorn::NboAttrLog::Out & out, NamespaceName const & value ) {
   logOut( out, value.stringValue() );
}

void logIn( Vorn::NboAttrLog::In & in, NamespaceName * value ) {
   Vorn::String name;
   logIn( in, &name );
   *value = NamespaceName( name );
}

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, NamespaceName )
