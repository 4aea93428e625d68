#include "Lumo/IntfId.h"

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

} // namespace Lumo
