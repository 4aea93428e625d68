/// \file
/// Packets for tests, written as they read on the wire.
///
/// Everything is text in hexadecimal, with blanks wherever they help: a TLV, a message and a PDU are made of
/// such text and are such text again, so that they join with `+` and show themselves when a test fails.
///
///     auto const hello = msg( LdpHello, 7, { tlv( commonHelloTlv, "000f 8000" ) } );
///     auto const packet = pkt( pdu( "10.0.0.1", 0, { hello } ) );
///
/// The functions with `Len` in the name take the length field apart from what follows it.
#pragma once

#include "Lumo/Pkt.h"

#include <cctype>
#include <cstdio>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Wire {

using Hex = std::string;
using Octets = std::vector< U8 >;

/// Bits to add to the type of a TLV or of a message.
constexpr U32 uBit = 0x8000, fBit = 0x4000;

inline U8 nibble( char c ) {
   if ( c >= '0' && c <= '9' ) return U8( c - '0' );
   if ( c >= 'a' && c <= 'f' ) return U8( c - 'a' + 10 );
   throw std::invalid_argument( "not hexadecimal" );
}

inline Octets octets( std::string_view hex ) {
   Octets out;
   int half = -1;
   for ( char const c : hex ) {
      if ( std::isspace( static_cast< unsigned char >( c ) ) ) continue;
      if ( half < 0 ) {
         half = nibble( c );
      } else {
         out.push_back( U8( half << 4 | nibble( c ) ) );
         half = -1;
      }
   }
   if ( half >= 0 ) throw std::invalid_argument( "half an octet" );
   return out;
}

inline std::size_t octetNum( std::string_view hex ) { return octets( hex ).size(); }

inline Hex hexOf( Octets const & octets ) {
   Hex out;
   for ( U8 const o : octets ) {
      out += "0123456789abcdef"[o >> 4];
      out += "0123456789abcdef"[o & 15];
   }
   return out;
}

inline Hex u8( U32 v ) { return hexOf( { U8( v ) } ); }
inline Hex u16( U32 v ) { return hexOf( { U8( v >> 8 ), U8( v ) } ) + ' '; }
inline Hex u32( U32 v ) { return u16( v >> 16 ) + u16( v & 0xffff ); }
/// The octets of a text, an interface description for one.
inline Hex text( std::string_view s ) { return hexOf( Octets( s.begin(), s.end() ) ); }
inline Hex repeat( std::size_t count, U8 octet ) { return hexOf( Octets( count, octet ) ); }
inline Hex ip( char const * address ) {
   unsigned a, b, c, d;
   if ( std::sscanf( address, "%u.%u.%u.%u", &a, &b, &c, &d ) != 4 ) throw std::invalid_argument( address );
   return u32( a << 24 | b << 16 | c << 8 | d );
}
/// Its first `count` octets.
inline Hex first( std::size_t count, std::string_view hex ) {
   Octets all = octets( hex );
   all.resize( count );
   return hexOf( all );
}

/// A header of type and length, then what follows: a TLV, or the outline of any unit.
inline Hex tlvLen( U32 type, U32 length, std::string_view value = {} ) {
   return u16( type ) + u16( length ) + Hex( value ) + ' ';
}
inline Hex tlv( U32 type, std::string_view value = {} ) {
   return tlvLen( type, U32( octetNum( value ) ), value );
}

inline Hex join( std::initializer_list< Hex > parts ) {
   Hex all;
   for ( auto const & part : parts )
      all += part;
   return all;
}
inline Hex msgLen( U32 type, U32 length, U32 id, std::initializer_list< Hex > tlvs = {} ) {
   return tlvLen( type, length, u32( id ) + join( tlvs ) );
}
inline Hex msg( U32 type, U32 id, std::initializer_list< Hex > tlvs = {} ) {
   return msgLen( type, U32( 4 + octetNum( join( tlvs ) ) ), id, tlvs );
}

inline Hex pduLen( U32 length, char const * lsrId, U32 labelSpace, std::initializer_list< Hex > msgs,
                   U32 version = 1 ) {
   return u16( version ) + u16( length ) + ip( lsrId ) + u16( labelSpace ) + join( msgs );
}
inline Hex pdu( char const * lsrId, U32 labelSpace, std::initializer_list< Hex > msgs, U32 version = 1 ) {
   return pduLen( U32( 6 + octetNum( join( msgs ) ) ), lsrId, labelSpace, msgs, version );
}

/// A packet that owns exactly those octets, so that a sanitizer sees a read behind them.
inline Vorn::Ptr< Lumo::Pkt > pkt( Octets const & octets ) {
   return Lumo::pktFactory( octets.data(), octets.size() );
}
inline Vorn::Ptr< Lumo::Pkt > pkt( std::string_view hex ) { return pkt( octets( hex ) ); }

} // namespace Wire
