// Pseudowire ids, types and status words: text and log form.
#include "Pseudowire/Types.h"

#include "Vorn/ValueType.h"

namespace Pseudowire {

VORN_ENUM_RECORD( Pseudowire, PseudowireType, VORN_PSEUDOWIRE_TYPES )
VORN_ENUM_RECORD( Pseudowire, PseudowireConnectorStatus, VORN_PSEUDOWIRE_CONNECTOR_STATUSES )

PseudowireType PseudowireTypeInstance( Vorn::String const & text ) {
   PseudowireType type{};
   Vorn::strepToValue( text, &type );
   return type;
}

Vorn::String valueToStrep( PseudowireLdpRequestKey const & value ) {
   return valueToStrep( value.neighbor() ) + "_" + valueToStrep( value.pwId() );
}

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      PseudowireLdpRequestKey * value ) {
   Lumo::IpGenAddr neighbor;
   PseudowireId pwId;
   sequenceToValue( it, end, &neighbor );
   Vorn::needString( it, end, "_" );
   sequenceToValue( it, end, &pwId );
   *value = PseudowireLdpRequestKey( neighbor, pwId );
}

VORN_TEXT_STREAM( PseudowireLdpRequestKey )

void logOut( Vorn::NboAttrLog::Out & out, PseudowireLdpRequestKey const & value ) {
   logOut( out, value.neighbor() );
   logOut( out, value.pwId() );
}

void logIn( Vorn::NboAttrLog::In & in, PseudowireLdpRequestKey * value ) {
   Lumo::IpGenAddr neighbor;
   PseudowireId pwId;
   logIn( in, &neighbor );
   logIn( in, &pwId );
   *value = PseudowireLdpRequestKey( neighbor, pwId );
}

} // namespace Pseudowire

VORN_OUTSIDE_RECORD( Pseudowire, PseudowireId )
VORN_OUTSIDE_RECORD( Pseudowire, GroupId )
VORN_OUTSIDE_RECORD( Pseudowire, VccvCvTypes )
VORN_OUTSIDE_RECORD( Pseudowire, PseudowireLdpStatusFlags )
VORN_OUTSIDE_RECORD( Pseudowire, PseudowireLdpRequestKey )
