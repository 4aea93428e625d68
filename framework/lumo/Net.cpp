// Numbers in network order: records and log form.
#include "Lumo/Net.h"

#include "Vorn/ValueType.h"

namespace Lumo {

void logOut( Vorn::NboAttrLog::Out & out, NetU8 value ) { logOut( out, value.value() ); }

void logIn( Vorn::NboAttrLog::In & in, NetU8 * value ) {
   U8 host;
   logIn( in, &host );
   value->valueIs( host );
}

void logOut( Vorn::NboAttrLog::Out & out, NetU16 value ) { logOut( out, value.value() ); }

void logIn( Vorn::NboAttrLog::In & in, NetU16 * value ) {
   U16 host;
   logIn( in, &host );
   value->valueIs( host );
}

void logOut( Vorn::NboAttrLog::Out & out, NetU32 value ) { logOut( out, value.value() ); }

void logIn( Vorn::NboAttrLog::In & in, NetU32 * value ) {
   U32 host;
   logIn( in, &host );
   value->valueIs( host );
}

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, NetU8 )
VORN_OUTSIDE_RECORD( Lumo, NetU16 )
VORN_OUTSIDE_RECORD( Lumo, NetU32 )
