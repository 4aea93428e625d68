#pragma once

// Names that several forms of output use.

#include "Ldp/LdpUtils.h"
#include "capture/PduSink.h"
#include "text/Output.h"
#include "text/Times.h"

#include "Lumo/Ip.h"

#include <concepts>
#include <cstdio>
#include <string>

namespace LdpTool {

/// Name of an enumerator, or null for a number that has none.
template< class Enum >
char const * enumeratorName( Enum value ) {
   return Vorn::EnumType< unsigned int >::name( value, vornTypeOf( value ) );
}

/// How many hexadecimal digits everybody writes numbers of a registry with; 0 for those written in decimal.
template< class Enum >
constexpr int hexDigitsOf = 0;
template<>
inline constexpr int hexDigitsOf< Ldp::LdpMsgType > = 4;
template<>
inline constexpr int hexDigitsOf< Ldp::LdpTlvType > = 4;
template<>
inline constexpr int hexDigitsOf< Ldp::LdpStatusCode > = 8;
template<>
inline constexpr int hexDigitsOf< Ldp::LdpFecElementType > = 2;

template< class Enum >
Output & appendNumber( Output & out, Enum value ) {
   return hexDigitsOf< Enum > ? out.hex( U32( value ), hexDigitsOf< Enum > ) : out << U32( value );
}

/// Append an enumerator's name, or the number.
template< class Enum >
requires std::is_enum_v< Enum > Output & operator<<( Output & out, Enum value ) {
   char const * name = enumeratorName( value );
   return name ? out << std::string_view( name ) : appendNumber( out, value );
}

/// A value of its own type that the output has a text of, without anything to escape.
template< class Value >
concept PlainText = std::is_enum_v< Value > ||
     ( std::is_class_v< Value > && !std::convertible_to< Value, std::string_view > );

/// Append an address or a prefix.
inline Output & operator<<( Output & out, Lumo::IpAddr const & addr ) { return out.ipv4( addr.octets() ); }
Output & operator<<( Output & out, Lumo::IpGenAddr const & addr );
Output & operator<<( Output & out, Lumo::IpGenPrefix const & prefix );

/// Append the number, and the name if there is one: `0x0103 hopCountTlv`.
template< class Enum >
struct Numbered {
   Enum value;
   explicit Numbered( Enum v ) : value( v ) {}
   friend Output & operator<<( Output & out, Numbered const & numbered ) {
      appendNumber( out, numbered.value );
      char const * name = enumeratorName( numbered.value );
      return name ? out << ' ' << std::string_view( name ) : out;
   }
};

/// An enumerator's name, or the number.
template< class Enum >
std::string nameText( Enum value ) {
   if ( char const * name = enumeratorName( value ) ) return name;
   char number[16];
   std::snprintf( number, sizeof number, hexDigitsOf< Enum > ? "0x%0*x" : "%*u", hexDigitsOf< Enum >,
                  unsigned( value ) );
   return number;
}

/// The word that routers have for a reserved label; null for a label of one's own.
char const * reservedLabelWord( Lumo::MplsLabel label );

/// What the flags of a pseudowire's status say: "not forwarding".
std::string pwStatusText( U32 flags );

/// Whether a prefix is the other or one of its parts.
bool isWithin( Lumo::IpGenPrefix const & prefix, Lumo::IpGenPrefix const & within );

/// One of a flow's addresses, and its text.
Lumo::IpGenAddr addressOf( Flow const & flow, std::array< std::uint8_t, 16 > const & address );
std::string addressText( Flow const & flow, std::array< std::uint8_t, 16 > const & address );

/// Text of a PDU that is refused, as its parser words it.
Vorn::String badPduText( Ldp::LdpPdu const & pdu );

/// What the guard refused a PDU for.
char const * fatalName( Ldp::LdpPduGuardResult const & fatal );

/// Where a PDU comes from: `12:26:40.000012 10.0.0.1 > 10.0.0.2`, or `line 3`.
std::string originText( Origin const & origin );
/// The same behind the number of its frame.
std::string numberedOriginText( Origin const & origin );

} // namespace LdpTool
