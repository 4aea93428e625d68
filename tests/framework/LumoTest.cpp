// Network values: addresses, prefixes and labels, and their text both ways.

#include "Lumo/Ip.h"
#include "Lumo/MplsLabel.h"
#include "Lumo/Pkt.h"
#include "Mpls/FwdEqvClass.h"

#include <cstring>
#include <gtest/gtest.h>
#include <initializer_list>
#include <sstream>

using namespace Lumo;

namespace {

Ip6Addr ip6( std::initializer_list< U16 > groups ) {
   Ip6Addr addr;
   U8 * at = addr.octets();
   for ( U16 const group : groups ) {
      *at++ = U8( group >> 8 );
      *at++ = U8( group );
   }
   return addr;
}

// That the texts are read back, and what is refused, is in the sweep over all values (model/texts.txt).
TEST( Text, saysWhatTheValueIs ) {
   using Fec = Mpls::FwdEqvClass;
   auto const expect = []( auto const & value, char const * text ) {
      std::ostringstream out;
      out << value;
      EXPECT_EQ( valueToStrep( value ), text );
      EXPECT_EQ( out.str(), text );
   };
   expect( IpAddr( 0x0a000001 ), "10.0.0.1" );
   expect( ip6( { 0xABCD, 0xEF01, 1, 2, 3, 4, 5, 6 } ), "abcd:ef01:1:2:3:4:5:6" ); // lower case
   expect( ip6( { 0x2001, 0xdb8, 0, 0, 1, 0, 0, 1 } ), "2001:db8::1:0:0:1" );      // the first of equals
   expect( IpGenAddr(), "none" );
   expect( IpGenAddr( IpAddr() ), "0.0.0.0" );
   expect( IpGenAddr( Ip6Addr() ), "::" );
   expect( AddressFamily( 3 ), "3" );
   expect( IpGenPrefix(), "none/0" );
   expect( IpGenPrefix( IpAddr( 0x0a000000 ), 8 ), "10.0.0.0/8" );
   expect( Fec(), "none/0" );
   expect( Fec( IpGenPrefix( IpAddr( 0x0a000000 ), 8 ) ), "10.0.0.0/8" );
   expect( Fec( 1, 0xffffffff ), "words(1,4294967295)" );
   expect( Fec( IpGenAddr( IpAddr( 0x0a000001 ) ), 7 ), "p2mp(10.0.0.1,7)" );
   expect( MplsLabel(), "1048576" );
}

TEST( FwdEqvClass, order ) {
   using Fec = Mpls::FwdEqvClass;
   EXPECT_TRUE( Fec( IpGenPrefix( IpAddr( 0xff000000 ), 8 ) ) < Fec( 0, 0 ) ); // by tag first
   EXPECT_TRUE( Fec( 9, 9 ) < Fec( IpGenAddr(), 0 ) );
   EXPECT_FALSE( Fec( 1, 0 ) == Fec( 0, 1 ) );
   EXPECT_TRUE( MplsLabel( 15 ) < MplsLabel( 16 ) );
}

// ---- addresses ----

TEST( IpAddr, octetsStandInNetworkOrder ) {
   IpAddr const addr( 0x01020304 );
   EXPECT_EQ( 0, std::memcmp( &addr, "\1\2\3\4", 4 ) );
   EXPECT_EQ( addr.value(), 0x01020304u );
   EXPECT_TRUE( IpAddr( 0x000000ff ) < IpAddr( 0x01000000 ) );
   EXPECT_EQ( IpAddr( 9 ).hash(), IpAddr( 9 ).hash() );
}

TEST( Ip6Addr, reader ) {
   Ip6Addr read;
   for ( char const * text : { "2001:DB8::1", "2001:0db8:0:0:0:0:0:1", "2001:db8:0::1", "2001:db8::0:1" } ) {
      SCOPED_TRACE( text );
      Vorn::strepToValue( text, &read );
      EXPECT_EQ( read, ip6( { 0x2001, 0xdb8, 0, 0, 0, 0, 0, 1 } ) );
   }
   EXPECT_THROW( Vorn::strepToValue( "1:2:3:4:5:6:7:8:9", &read ), Vorn::RangeException );
}

TEST( IpGenAddr, familyBelongsToTheValue ) {
   EXPECT_FALSE( IpGenAddr() == IpGenAddr( IpAddr() ) );
   EXPECT_FALSE( IpGenAddr( IpAddr() ) == IpGenAddr( Ip6Addr() ) );
   EXPECT_EQ( IpGenAddr().hash(), IpGenAddr( IpAddr() ).hash() ); // hashes like it all the same
   EXPECT_TRUE( !IpGenAddr() );
   EXPECT_FALSE( !IpGenAddr( IpAddr() ) );
   EXPECT_EQ( IpGenAddr( Vorn::String( "::" ) ).family(), ipv6 );
   EXPECT_EQ( IpGenAddr( Vorn::String( "0.0.0.0" ) ).family(), ipv4 );
   EXPECT_THROW( IpGenAddr( Vorn::String( "10.0.0.1 " ) ), Vorn::RangeException );
}

TEST( IpGenAddr, ofAnotherFamilyItIsZero ) {
   IpGenAddr const four( IpAddr( 0x0a000001 ) );
   EXPECT_EQ( four.ipAddr(), IpAddr( 0x0a000001 ) );
   EXPECT_EQ( four.ip6Addr(), Ip6Addr() );
   IpGenAddr const six( ip6( { 0x0a00, 1 } ) );
   EXPECT_EQ( six.ipAddr(), IpAddr() );
   EXPECT_EQ( six.ip6Addr(), ip6( { 0x0a00, 1 } ) );
   EXPECT_TRUE( four < six ); // by family first
   EXPECT_TRUE( IpGenAddr( IpAddr( 1 ) ) < IpGenAddr( IpAddr( 2 ) ) );
}

// ---- prefixes ----

TEST( IpGenPrefix, bitsBehindTheLengthAreCleared ) {
   for ( U32 bits = 0; bits <= 32; ++bits ) {
      SCOPED_TRACE( bits );
      U32 const kept = bits ? 0xffffffffu << ( 32 - bits ) : 0;
      IpGenPrefix const prefix( IpAddr( 0xffffffff ), bits );
      EXPECT_EQ( prefix.address().ipAddr(), IpAddr( kept ) );
      EXPECT_EQ( prefix.len(), bits );
      EXPECT_EQ( prefix, IpGenPrefix( IpAddr( kept ), bits ) );
      EXPECT_EQ( prefix.hash(), IpGenPrefix( IpAddr( kept ), bits ).hash() );
   }
   Ip6Addr ones;
   std::memset( ones.octets(), 0xff, Ip6Addr::size );
   EXPECT_EQ( IpGenPrefix( ones, 65 ).stringValue(), "ffff:ffff:ffff:ffff:8000::/65" );
   EXPECT_EQ( IpGenPrefix( ones, 0 ).stringValue(), "::/0" );
   EXPECT_EQ( IpGenPrefix( ones, 128 ).address().ip6Addr(), ones );
}

TEST( IpGenPrefix, equality ) {
   IpGenPrefix const ten( IpAddr( 0x0a000000 ), 8 );
   EXPECT_EQ( ten, IpGenPrefix( IpAddr( 0x0affffff ), 8 ) );
   EXPECT_FALSE( ten == IpGenPrefix( IpAddr( 0x0a000000 ), 9 ) );
   EXPECT_FALSE( IpGenPrefix( IpAddr(), 0 ) == IpGenPrefix( Ip6Addr(), 0 ) );
   EXPECT_FALSE( IpGenPrefix() == IpGenPrefix( IpAddr(), 0 ) );
   EXPECT_TRUE( ten < IpGenPrefix( IpAddr( 0x0a000000 ), 9 ) ); // by address, then by length
   EXPECT_TRUE( IpGenPrefix( IpAddr( 0x0a000000 ), 9 ) < IpGenPrefix( IpAddr( 0x0b000000 ), 8 ) );
}

// ---- labels ----

TEST( MplsLabel, range ) {
   EXPECT_EQ( MplsLabel().value(), 0x100000u ); // no label
   EXPECT_EQ( MplsLabel( 0x800000 ).value(), 0x800000u );
   char const * const text = "MplsLabel::value < MplsLabel::min or > MplsLabel::luWithdraw not allowed";
   for ( U32 const value : { 0x800001u, 0xffffffffu } ) {
      try {
         MplsLabel{ value };
         FAIL() << "taken";
      } catch ( Vorn::RangeException const & refused ) {
         EXPECT_EQ( refused.message(), text );
      }
   }
   MplsLabel read( 5 );
   try {
      Vorn::strepToValue( "8388609", &read );
      FAIL() << "taken";
   } catch ( Vorn::RangeException const & refused ) {
      EXPECT_EQ( refused.message(), text );
   }
   EXPECT_EQ( read, MplsLabel( 5 ) );
}

// ---- packets ----

TEST( Pkt, ownsOrBorrows ) {
   char octets[] = "abc";
   auto const owned = pktFactory( octets, 3 );
   auto const borrowed = Pkt::borrow( octets, 3 );
   EXPECT_EQ( owned->frontBytes(), 3u );
   EXPECT_EQ( borrowed->frontBytes(), 3u );
   EXPECT_EQ( static_cast< void const * >( borrowed->front() ), octets );
   octets[0] = 'x';
   EXPECT_EQ( owned->front()[0], 'a' );
   EXPECT_EQ( borrowed->front()[0], 'x' );
   // A packet without octets still has a front.
   EXPECT_TRUE( pktFactory( nullptr, 0 )->front() );
   EXPECT_TRUE( Pkt::borrow( nullptr, 0 )->front() );
}

} // namespace
