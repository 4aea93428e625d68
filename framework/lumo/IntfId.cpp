// Interface names: which kind a name is of, text and log form.
#include "Lumo/IntfId.h"

#include "Vorn/ValueType.h"

namespace Lumo {

namespace {

/// Whether the name is `prefix`, then digits and slashes, of which a digit comes first.
bool named( std::string_view name, std::string_view prefix ) {
   if ( !name.starts_with( prefix ) || name.size() == prefix.size() ) return false;
   name.remove_prefix( prefix.size() );
   return name.front() != '/' && name.find_first_not_of( "0123456789/" ) == std::string_view::npos;
}

} // namespace

bool isVlanIntfId( IntfId const & intfId ) { return named( intfId.stringValue().view(), "Vlan" ); }

bool isPortChannelIntfId( IntfId const & intfId ) {
   return named( intfId.stringValue().view(), "Port-Channel" );
}

bool isEthIntfId( IntfId const & intfId ) { return named( intfId.stringValue().view(), "Ethernet" ); }

bool isSubIntfId( IntfId const & intfId ) {
   std::string_view const name = intfId.stringValue().view();
   std::size_t const dot = name.rfind( '.' );
   if ( dot == std::string_view::npos || !named( name.substr( dot ), "." ) ) return false;
   std::string_view const parent = name.substr( 0, dot );
   return named( parent, "Ethernet" ) || named( parent, "Port-Channel" );
}

bool isLoopbackIntfId( IntfId const & intfId ) { return named( intfId.stringValue().view(), "Loopback" ); }

bool isInternalIntfId( IntfId const & intfId ) { return named( intfId.stringValue().view(), "Internal" ); }

bool isMgmtIntfId( IntfId const & intfId ) { return named( intfId.stringValue().view(), "Management" ); }

Vorn::String valueToStrep( IntfId const & value ) { return Vorn::valueToStrep( value.stringValue() ); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      IntfId * value ) {
   Vorn::String name;
   Vorn::sequenceToValue( it, end, &name );
   *value = IntfId( name );
}

VORN_TEXT_STREAM( IntfId )

void logOut( Vorn::NboAttrLog::Out & out, IntfId const & value ) { logOut( out, value.stringValue() ); }

void logIn( Vorn::NboAttrLog::In & in, IntfId * value ) {
   Vorn::String name;
   logIn( in, &name );
   *value = IntfId( name );
}

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, IntfId )
