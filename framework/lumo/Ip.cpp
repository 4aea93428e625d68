// Addresses and prefixes: hash, text with its reader, log form.
#include "Lumo/Ip.h"

#include "Vorn/ValueType.h"

#include "Vorn/Hash.h"

#include <charconv>
#include <cstring>
#include <string>

namespace Lumo {

using Vorn::String;
using Vorn::throwRangeException;

VORN_ENUM_RECORD( Lumo, AddressFamily, VORN_LUMO_ADDRESS_FAMILIES )

namespace {

/// Longest prefix of each family, in bits.
constexpr U32 maxPrefixLen[] = { 0, IpAddr::bits, Ip6Addr::bits };

/// One piece of an address: digits of `base`, of at most `maxDigits`, up to `max`.
bool readNumber( String::IteratorConst & it, String::IteratorConst end, int base, std::ptrdiff_t maxDigits,
                 U32 max, U32 * value ) {
   auto const [behind, error] = std::from_chars( it, end, *value, base );
   if ( error != std::errc() || behind - it > maxDigits || *value > max ) return false;
   it = behind;
   return true;
}

bool readIpAddr( String::IteratorConst & it, String::IteratorConst end, U8 * octets ) {
   for ( int i = 0; i < 4; ++i ) {
      U32 octet;
      if ( i && ( it == end || *it++ != '.' ) ) return false;
      if ( !readNumber( it, end, 10, 3, 255, &octet ) ) return false;
      octets[i] = U8( octet );
   }
   return true;
}

bool readIp6Addr( String::IteratorConst & it, String::IteratorConst end, U8 * octets ) {
   U16 groups[8];
   int num = 0;
   int gap = -1; // group in front of which "::" stands
   auto const doubleColon = [&] { return end - it >= 2 && it[0] == ':' && it[1] == ':'; };
   while ( num < 8 ) {
      if ( doubleColon() && gap < 0 ) {
         gap = num;
         it += 2;
         if ( it == end || !std::isxdigit( U8( *it ) ) ) break;
      } else if ( num ) {
         if ( end - it < 2 || it[0] != ':' || !std::isxdigit( U8( it[1] ) ) ) break;
         ++it;
      }
      U32 group;
      if ( !readNumber( it, end, 16, 4, 0xffff, &group ) ) return false;
      groups[num++] = U16( group );
   }
   if ( gap < 0 ? num != 8 : num == 8 ) return false;
   std::memset( octets, 0, 16 );
   for ( int i = 0; i < num; ++i ) {
      int const at = gap >= 0 && i >= gap ? 8 - num + i : i;
      octets[2 * at] = U8( groups[i] >> 8 );
      octets[2 * at + 1] = U8( groups[i] );
   }
   return true;
}

} // namespace

U32 IpAddr::hash() const noexcept { return Vorn::hashWords( value() ); }

String IpAddr::stringValue() const {
   char text[16];
   char * at = text;
   for ( U8 const octet : octets_ ) {
      if ( at != text ) *at++ = '.';
      at = std::to_chars( at, text + sizeof text, U32( octet ) ).ptr;
   }
   return String( text, std::size_t( at - text ) );
}

String valueToStrep( IpAddr const & value ) { return value.stringValue(); }

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, IpAddr * value ) {
   IpAddr read;
   if ( !readIpAddr( it, end, read.octets() ) ) throwRangeException( "Invalid IpAddr" );
   *value = read;
}

VORN_TEXT_STREAM( IpAddr )

U32 Ip6Addr::hashWith( U64 small ) const noexcept {
   U64 words[2];
   std::memcpy( words, octets_.data(), sizeof words );
   return Vorn::hashWords( words[0], words[1], small );
}

String Ip6Addr::stringValue() const {
   // The longest run of two or more zero groups, the first of equals, shrinks to "::".
   int gap = -1;
   int gapNum = 1;
   auto const group = [&]( int i ) {
      return U32( octets_[std::size_t( 2 * i )] << 8 | octets_[std::size_t( 2 * i + 1 )] );
   };
   for ( int i = 0; i < 8; ++i ) {
      int num = 0;
      while ( i + num < 8 && !group( i + num ) ) {
         ++num;
      }
      if ( num > gapNum ) {
         gap = i;
         gapNum = num;
      }
      i += num ? num - 1 : 0;
   }
   char text[48];
   char * at = text;
   for ( int i = 0; i < 8; ++i ) {
      if ( i == gap ) {
         *at++ = ':';
         if ( i + gapNum == 8 ) *at++ = ':';
         i += gapNum - 1;
         continue;
      }
      if ( i ) *at++ = ':';
      at = std::to_chars( at, text + sizeof text, group( i ), 16 ).ptr;
   }
   return String( text, std::size_t( at - text ) );
}

String valueToStrep( Ip6Addr const & value ) { return value.stringValue(); }

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, Ip6Addr * value ) {
   Ip6Addr read;
   if ( !readIp6Addr( it, end, read.octets() ) ) throwRangeException( "Invalid Ip6Addr" );
   *value = read;
}

VORN_TEXT_STREAM( Ip6Addr )

IpGenAddr::IpGenAddr( IpAddr const & addr ) noexcept : family_( ipv4 ) {
   std::memcpy( addr_.octets(), addr.octets(), IpAddr::size );
}

IpGenAddr::IpGenAddr( String const & text ) { Vorn::strepToValue( text, this ); }

IpAddr IpGenAddr::ipAddr() const noexcept {
   IpAddr addr;
   if ( family_ == ipv4 ) std::memcpy( addr.octets(), addr_.octets(), IpAddr::size );
   return addr;
}

String IpGenAddr::stringValue() const {
   if ( family_ == noFamily ) return "none";
   return family_ == ipv4 ? ipAddr().stringValue() : addr_.stringValue();
}

String valueToStrep( IpGenAddr const & value ) { return value.stringValue(); }

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, IpGenAddr * value ) {
   IpAddr addr;
   Ip6Addr addr6;
   auto at = it;
   if ( end - it >= 4 && std::memcmp( it, "none", 4 ) == 0 ) {
      it += 4;
      *value = IpGenAddr();
   } else if ( readIpAddr( at, end, addr.octets() ) ) {
      it = at;
      *value = addr;
   } else if ( at = it; readIp6Addr( at, end, addr6.octets() ) ) {
      it = at;
      *value = addr6;
   } else {
      throwRangeException( "Invalid IpGenAddr" );
   }
}

VORN_TEXT_STREAM( IpGenAddr )

namespace {

/// The address with the bits behind the first `bits` cleared.
IpAddr head( IpAddr const & addr, U32 bits ) noexcept {
   return IpAddr( bits ? addr.value() & ~0u << ( IpAddr::bits - bits ) : 0 );
}
Ip6Addr head( Ip6Addr const & addr, U32 bits ) noexcept {
   Ip6Addr kept;
   U32 const whole = bits / 8;
   std::memcpy( kept.octets(), addr.octets(), whole );
   if ( bits % 8 ) kept.octets()[whole] = U8( addr.octets()[whole] & ( 0xff00 >> bits % 8 ) );
   return kept;
}
IpGenAddr head( IpGenAddr const & addr, U32 bits ) noexcept {
   if ( addr.family() == ipv4 ) return head( addr.ipAddr(), bits );
   return head( addr.ip6Addr(), bits );
}

} // namespace

// The address is made in its place: copied as a whole it would wait for the pieces that it is made of.
IpGenPrefix::IpGenPrefix( IpAddr const & addr, U32 bits ) noexcept
     : address_( head( addr, bits ) ), len_( bits ) {}
IpGenPrefix::IpGenPrefix( Ip6Addr const & addr, U32 bits ) noexcept
     : address_( head( addr, bits ) ), len_( bits ) {}
IpGenPrefix::IpGenPrefix( IpGenAddr const & addr, U32 bits ) noexcept
     : address_( head( addr, bits ) ), len_( bits ) {}

U32 IpGenPrefix::hash() const noexcept { return address_.hashWith( len_ ); }

String IpGenPrefix::stringValue() const { return address_.stringValue() + "/" + Vorn::valueToStrep( len_ ); }

String valueToStrep( IpGenPrefix const & value ) { return value.stringValue(); }

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, IpGenPrefix * value ) {
   IpGenAddr addr;
   sequenceToValue( it, end, &addr );
   Vorn::needString( it, end, "/" );
   U32 const len = U32( Vorn::unsignedFromSequence( it, end, maxPrefixLen[addr.family()] ) );
   *value = addr.family() == noFamily ? IpGenPrefix() : IpGenPrefix( addr, len );
}

VORN_TEXT_STREAM( IpGenPrefix )

void logOut( Vorn::NboAttrLog::Out & out, IpAddr const & value ) { logOut( out, value.value() ); }

void logIn( Vorn::NboAttrLog::In & in, IpAddr * value ) {
   U32 host;
   logIn( in, &host );
   *value = IpAddr( host );
}

void logOut( Vorn::NboAttrLog::Out & out, Ip6Addr const & value ) {
   for ( std::size_t i = 0; i < Ip6Addr::size; ++i ) {
      logOut( out, value.octets()[i] );
   }
}

void logIn( Vorn::NboAttrLog::In & in, Ip6Addr * value ) {
   Ip6Addr read;
   for ( std::size_t i = 0; i < Ip6Addr::size; ++i ) {
      logIn( in, &read.octets()[i] );
   }
   *value = read;
}

void logOut( Vorn::NboAttrLog::Out & out, IpGenAddr const & value ) {
   logOut( out, U8( value.family() ) );
   if ( value.family() == ipv4 ) logOut( out, value.ipAddr() );
   if ( value.family() == ipv6 ) logOut( out, value.ip6Addr() );
}

void logIn( Vorn::NboAttrLog::In & in, IpGenAddr * value ) {
   U8 family;
   logIn( in, &family );
   IpAddr addr;
   Ip6Addr addr6;
   switch ( family ) {
   case noFamily: *value = IpGenAddr(); break;
   case ipv4:
      logIn( in, &addr );
      *value = addr;
      break;
   case ipv6:
      logIn( in, &addr6 );
      *value = addr6;
      break;
   default: throwRangeException( "Invalid IpGenAddr" );
   }
}

void logOut( Vorn::NboAttrLog::Out & out, IpGenPrefix const & value ) {
   logOut( out, value.address() );
   logOut( out, U8( value.len() ) );
}

void logIn( Vorn::NboAttrLog::In & in, IpGenPrefix * value ) {
   IpGenAddr addr;
   U8 len;
   logIn( in, &addr );
   logIn( in, &len );
   if ( len > maxPrefixLen[addr.family()] ) throwRangeException( "Invalid IpGenPrefix" );
   *value = addr.family() == noFamily ? IpGenPrefix() : IpGenPrefix( addr, len );
}

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, IpAddr )
VORN_OUTSIDE_RECORD( Lumo, Ip6Addr )
VORN_OUTSIDE_RECORD( Lumo, IpGenAddr )
VORN_OUTSIDE_RECORD( Lumo, IpGenPrefix )
