// Which FECs a filter lets pass.
#include "Ldp/LdpFecFilter.h"

#include "Twain/Trace.h"
#include "Twain/Values.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpFecFilter" )

/// Whether the first `len` bits of both addresses are the same.
bool sameHead( Lumo::IpAddr a, Lumo::IpAddr b, U32 len ) {
   if ( len == 0 ) return true; // a shift by all 32 bits is none
   U32 const mask = len < 32 ? ~0u << ( 32 - len ) : ~0u;
   return ( ( a.value() ^ b.value() ) & mask ) == 0;
}

/// The bounds are asked before the address, each by itself, and none follows from the entry's own length.
bool matches( Acl::PrefixEntry const & entry, Lumo::IpGenPrefix const & prefix ) {
   U32 const len = prefix.len();
   if ( entry.eq && entry.eq != len ) return false;
   if ( entry.le && len > entry.le ) return false;
   if ( entry.ge && len < entry.ge ) return false;
   if ( entry.prefix.len > len ) return false;
   return sameHead( entry.prefix.address, prefix.v4Addr(), entry.prefix.len );
}

} // namespace

VORN_RECORD( Ldp, LdpFecFilter )

bool LdpFecFilter::isPermittedFec( Mpls::FwdEqvClass const & fec ) const {
   TWAIN_FUNCTION( "LdpFecFilter::isPermittedFec", fec );
   if ( !prefixList_ ) return true;
   Lumo::IpGenPrefix const prefix = fec.prefix();
   for ( auto const & node : prefixList_->prefixEntryColl() ) {
      if ( matches( node.value(), prefix ) ) return node.value().action == Acl::permit;
   }
   // Nothing matched, as nothing does in an empty list.
   return false;
}

} // namespace Ldp
