// Words of YANG modules.
#include "standards/YangText.h"

#include <algorithm>
#include <cstdio>

namespace LdpTool {

char const * specialLabel( U32 label ) {
   switch ( label ) {
   case 0: return "ietf-routing-types:ipv4-explicit-null-label";
   case 1: return "ietf-routing-types:router-alert-label";
   case 2: return "ietf-routing-types:ipv6-explicit-null-label";
   case 3: return "ietf-routing-types:implicit-null-label";
   case 7: return "ietf-routing-types:entropy-label-indicator";
   case 13: return "ietf-routing-types:gal-label";
   case 14: return "ietf-routing-types:oam-alert-label";
   case 15: return "ietf-routing-types:extension-label";
   default: return nullptr;
   }
}

U16 secondsLeft( double until, double now ) { return U16( std::clamp( until - now, 0.0, 65535.0 ) ); }

std::string yangText( std::string_view octets ) {
   constexpr char firstPrinting = 0x20, del = 0x7f;
   std::string text;
   for ( char const octet : octets ) {
      auto const number = static_cast< unsigned char >( octet );
      if ( number >= firstPrinting && octet != del ) {
         text += octet;
         continue;
      }
      char escape[8];
      std::snprintf( escape, sizeof escape, "\\x%02x", number );
      text += escape;
   }
   return text;
}

} // namespace LdpTool
