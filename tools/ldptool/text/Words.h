#pragma once

// Names that several forms of output use.

#include "Ldp/LdpUtils.h"
#include "capture/PduSink.h"
#include "text/Output.h"

#include "Lumo/Ip.h"

#include <string>

namespace LdpTool {

/// Name of an enumerator, or null for a number that has none.
template< class Enum >
char const * enumeratorName( Enum value ) {
   return Vorn::EnumType< unsigned int >::name( value, vornTypeOf( value ) );
}

/// Append an enumerator's name, or the number.
template< class Enum >
requires std::is_enum_v< Enum > Output & operator<<( Output & out, Enum value ) {
   char const * name = enumeratorName( value );
   return name ? out << std::string_view( name ) : out << U32( value );
}

/// Append an address or a prefix.
inline Output & operator<<( Output & out, Lumo::IpAddr const & addr ) { return out.ipv4( addr.octets() ); }
Output & operator<<( Output & out, Lumo::IpGenAddr const & addr );
Output & operator<<( Output & out, Lumo::IpGenPrefix const & prefix );

/// Text of one of a flow's addresses.
std::string addressText( Flow const & flow, std::array< std::uint8_t, 16 > const & address );

/// Text of a PDU that is refused, as its parser words it.
Vorn::String badPduText( Ldp::LdpPdu const & pdu );

/// What the guard refused a PDU for.
char const * fatalName( Ldp::LdpPduGuardResult const & fatal );

/// Time of day of a packet, in UTC: `12:26:40.000012`.
std::string timeText( Arrival const & arrival );

/// Where a PDU comes from: `12:26:40.000012 10.0.0.1 > 10.0.0.2` (the time is UTC), or `line 3`.
std::string originText( Origin const & origin );

} // namespace LdpTool
