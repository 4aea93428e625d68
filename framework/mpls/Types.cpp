// Router ids: text and log form. Records of where labels and FECs come from.
#include "Mpls/Types.h"

#include "Vorn/ValueType.h"

namespace Mpls {

VORN_ENUM_RECORD( Mpls, LabelSource, VORN_MPLS_LABEL_SOURCES )
VORN_ENUM_RECORD( Mpls, FecFilteredState, VORN_MPLS_FEC_FILTERED_STATES )

Vorn::String valueToStrep( RouterId const & value ) { return valueToStrep( value.id() ); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      RouterId * value ) {
   Lumo::IpAddr id;
   sequenceToValue( it, end, &id );
   *value = RouterId( id );
}

VORN_TEXT_STREAM( RouterId )

void logOut( Vorn::NboAttrLog::Out & out, RouterId const & value ) { logOut( out, value.id() ); }

void logIn( Vorn::NboAttrLog::In & in, RouterId * value ) {
   Lumo::IpAddr id;
   logIn( in, &id );
   *value = RouterId( id );
}

} // namespace Mpls

VORN_OUTSIDE_RECORD( Mpls, RouterId )
