// The P2MP FEC element of multicast LDP, its values, and the dump that does not end.

#include "Expect.h"

#include "Ldp/LdpUtils.h"

#include <sstream>
#include <unistd.h>

using namespace Ldp;
using namespace Wire;

namespace {

Vorn::Ptr< LdpFecTlvParser > fecOf( Hex const & value ) {
   return ldpFecTlvParserFactory( pkt( "ffffff" + tlv( fecTlv, value ) ), 3, nullptr );
}

/// A P2MP element of that many octets in all, with an IPv4 root and an opaque value that fits.
Hex elementOf( U32 octets ) {
   return "06 0001 04 0a000001" + u16( octets - 10 ) + repeat( octets - 10, 0x5a );
}

TEST( P2mp, judgement ) {
   struct Row {
      char const * name;
      Hex value;
      LdpStatusCode status;
      char const * reason;
      char const * text;
   };
   char const * const small = "Invalid FEC P2MP Element: TLV value is too small";
   char const * const noLength = "Invalid FEC P2MP Element: Packet length is too small to read opaqueLength";
   char const * const mismatch = "Invalid FEC P2MP Element: Opaque length and Opaque value dont match";
   for ( Row const & row : {
              Row{ "IPv4 root, 7 octets", "06 0001 04 0a000001 0007 01000400000009", success, "",
                   "[10.0.0.1_7_\\x01\\x00\\x04\\x00\\x00\\x00\\x09]" },
              { "3 octets", "06 0001 04 0a000001 0003 010004", success, "", "[10.0.0.1_3_\\x01\\x00\\x04]" },
              { "no opaque octet", "06 0001 04 0a000001 0000", success, "", "[10.0.0.1_0_]" },
              { "IPv6 root", "06 0002 10 20010db8 00000000 00000000 00000001 0001 ff", success, "",
                "[2001:db8::1_1_\\xff]" },
              { "short root fills from the front", "06 0001 02 0a01 0000", success, "", "[10.1.0.0_0_]" },
              { "short IPv6 root", "06 0002 02 2001 0000", success, "", "[2001::_0_]" },
              { "no root octet", "06 0001 00 0000", success, "", "[0.0.0.0_0_]" },
              { "no IPv6 root octet", "06 0002 00 0000", success, "", "[::_0_]" },

              { "1 octet", "06", malformedTlv, small, "[]" },
              { "3 octets", "06 0001", malformedTlv, small, "[]" },
              { "4 octets are a whole header", "06 0001 00", malformedTlv, noLength, "[]" },
              { "4 octets, of which the root takes more", "06 0001 01", malformedTlv,
                "Invalid FEC P2MP Element: RootIp Len Octets: 1, remaining packet octets: 4", "[]" },
              { "root cut short", "06 0001 04 0a0000", malformedTlv,
                "Invalid FEC P2MP Element: RootIp Len Octets: 4, remaining packet octets: 7", "[]" },
              { "root of 255", "06 0001 ff 0a000001", malformedTlv,
                "Invalid FEC P2MP Element: RootIp Len Octets: 255, remaining packet octets: 8", "[]" },
              { "IPv4 root of 5", "06 0001 05 0a00000100 0000", malformedTlv,
                "Invalid FEC P2MP Element: RootIpLen 5 is too large for IPv4", "[]" },
              { "IPv6 root of 17", "06 0002 11" + repeat( 17, 1 ) + "0000", malformedTlv,
                "Invalid FEC P2MP Element: RootIpLen 17 is too large for IPv6", "[]" },
              { "family 3", "06 0003 04 0a000001 0000", unsupportedAddressFamily,
                "Invalid FEC P2MP Element address family 0x3", "[]" },
              { "family 0xff01", "06 ff01 00 0000", unsupportedAddressFamily,
                "Invalid FEC P2MP Element address family 0xff01", "[]" },
              { "size of the root is judged before the family", "06 0003 04 0a0000", malformedTlv,
                "Invalid FEC P2MP Element: RootIp Len Octets: 4, remaining packet octets: 7", "[]" },
              { "family is judged before the opaque length", "06 0003 04 0a000001", unsupportedAddressFamily,
                "Invalid FEC P2MP Element address family 0x3", "[]" },
              { "no opaque length", "06 0001 04 0a000001", malformedTlv, noLength, "[]" },
              { "half an opaque length", "06 0001 04 0a000001 00", malformedTlv, noLength, "[]" },
              { "opaque length one less", "06 0001 04 0a000001 0002 010004", malformedTlv, mismatch, "[]" },
              { "opaque length one more", "06 0001 04 0a000001 0004 010004", malformedTlv, mismatch, "[]" },
              { "largest opaque length", "06 0001 04 0a000001 ffff 010004", malformedTlv, mismatch, "[]" },
              { "an element behind it", "06 0001 04 0a000001 0000 01", malformedTlv, mismatch, "[]" },
         } ) {
      SCOPED_TRACE( row.name );
      auto const parser = fecOf( row.value );
      EXPECT_EQ( parser->statusCode(), row.status );
      EXPECT_EQ( parser->reason(), row.reason );
      EXPECT_EQ( parser->stringValue(), row.text );
      EXPECT_EQ( parser->fecElements(), row.status == success ? 1u : 0u );
      EXPECT_FALSE( parser->hasWildcardFecElement() );
   }
}

TEST( P2mp, opaqueOctetsAreKeptWhole ) {
   auto const element = fecOf( "06 0001 04 0a000001 0004 00610062" )->fecElement( 0 );
   LdpP2mpFecElement const & value = element->p2mpFecElem();
   EXPECT_EQ( value.rootIp(), Lumo::IpGenAddr( Lumo::IpAddr( 0x0a000001 ) ) );
   EXPECT_EQ( value.opaqueStr(), Vorn::String( "\0a\0b", 4 ) );
   EXPECT_EQ( value.stringValue(), Vorn::String( "10.0.0.1_\0a\0b", 13 ) ); // raw
   EXPECT_EQ( element->stringValue(), "10.0.0.1_4_\\x00\\x61\\x00\\x62" );
}

TEST( P2mp, upTo255OctetsAreGood ) {
   auto const parser = fecOf( elementOf( 255 ) );
   EXPECT_TRUE( parser->valid() ) << parser->reason();
   EXPECT_EQ( parser->fecElement( 0 )->p2mpFecElem().opaqueStr().bytes(), 245u );
}

// The dump counts in 8 bits. A parser that came back would exit and not be killed.
TEST( P2mp, dumpOf256OctetsDoesNotEnd ) {
   for ( Hex const & value : { elementOf( 256 ), elementOf( 300 ), "06" + repeat( 255, 0 ) } ) {
      EXPECT_EXIT(
           {
              alarm( 1 );
              fecOf( value );
              _exit( 0 );
           },
           testing::KilledBySignal( SIGALRM ), "" );
   }
}

TEST( P2mp, elementBehindAnotherIsRefusedBeforeItsDump ) {
   EXPECT_EQ( fecOf( "02 0001 08 0a" + elementOf( 300 ) )->statusCode(), unknownFec );
}

// ---- values ----

TEST( P2mpFecElement, valueAndText ) {
   LdpP2mpFecElement value;
   EXPECT_TRUE( !value );
   value.opaqueStrIs( Vorn::String( "\0'x", 3 ) );
   EXPECT_FALSE( !value );
   value.rootIpIs( Lumo::IpGenAddr( Lumo::IpAddr( 0x0a000001 ) ) );
   EXPECT_EQ( valueToStrep( value ),
              "Value('Ldp::LdpP2mpFecElement', ** {'rootIp': 10.0.0.1, 'opaqueStr': '\\x00\\'x'})" );
   LdpP2mpFecElement read;
   Vorn::strepToValue( valueToStrep( value ), &read );
   EXPECT_EQ( read, value );
   EXPECT_EQ( valueToStrep( LdpP2mpFecElement() ),
              "Value('Ldp::LdpP2mpFecElement', ** {'rootIp': none, 'opaqueStr': ''})" );
   Vorn::strepToValue( valueToStrep( LdpP2mpFecElement() ), &read );
   EXPECT_TRUE( !read );
}

TEST( P2mpFecGenericOpaqueId, textBothWays ) {
   LdpP2mpFecGenericOpaqueId const id( Lumo::IpGenAddr( Lumo::IpAddr( 0x0a000001 ) ), 7 );
   EXPECT_EQ( id.stringValue(), "10.0.0.1_7" );
   EXPECT_EQ( valueToStrep( id ), "10.0.0.1_7" );
   std::ostringstream out;
   out << id;
   EXPECT_EQ( out.str(), "10.0.0.1_7" );
   for ( char const * text : { "10.0.0.1_7", "2001:db8::1_4294967295", "none_0", "0.0.0.0_0" } ) {
      SCOPED_TRACE( text );
      LdpP2mpFecGenericOpaqueId read;
      read.stringValueIs( text );
      EXPECT_EQ( read.stringValue(), text );
      LdpP2mpFecGenericOpaqueId again;
      Vorn::strepToValue( text, &again );
      EXPECT_EQ( again, read );
   }
   LdpP2mpFecGenericOpaqueId read;
   read.stringValueIs( "10.0.0.1_7" );
   EXPECT_EQ( read.gOpaqueId(), 7u );
   EXPECT_EQ( read, id );
}

TEST( P2mpFecGenericOpaqueId, readerIsStrict ) {
   LdpP2mpFecGenericOpaqueId read( Lumo::IpGenAddr( Lumo::IpAddr( 1 ) ), 2 );
   LdpP2mpFecGenericOpaqueId const before = read;
   for ( char const * bad :
         { "", "_", "_7", "10.0.0.1", "10.0.0.1_", "10.0.0.1_x", "10.0.0.1_7 ", "10.0.0.1 _7", "10.0.0.1__7",
           "10.0.0_7", "10.0.0.1_4294967296", "10.0.0.1_-1", "10.0.0.1x_7" } ) {
      SCOPED_TRACE( bad );
      try {
         read.stringValueIs( bad );
         FAIL() << "taken";
      } catch ( Vorn::RangeException const & refused ) {
         EXPECT_EQ( refused.message(), "Invalid LdpP2mpFecGenericOpaqueId" );
      }
      EXPECT_EQ( read, before );
   }
   // A reader of a longer text leaves what follows.
   Vorn::String const text = "10.0.0.1_7, more";
   auto it = text.begin();
   sequenceToValue( it, text.end(), &read );
   EXPECT_EQ( std::string( it, text.end() ), ", more" );
}

TEST( P2mpFecGenericOpaqueId, orderAndHash ) {
   using Id = LdpP2mpFecGenericOpaqueId;
   auto const at = []( U32 address ) { return Lumo::IpGenAddr( Lumo::IpAddr( address ) ); };
   EXPECT_TRUE( Id( at( 1 ), 1 ) < Id( at( 1 ), 2 ) );
   EXPECT_FALSE( Id( at( 1 ), 2 ) < Id( at( 1 ), 2 ) );
   EXPECT_TRUE( Id( at( 1 ), 9 ) < Id( at( 2 ), 0 ) );
   EXPECT_EQ( Id( at( 1 ), 9 ).hash(), Id( at( 1 ), 9 ).hash() );
   EXPECT_NE( Id( at( 1 ), 9 ).hash(), Id( at( 1 ), 10 ).hash() );
   EXPECT_NE( Id( at( 1 ), 9 ).hash(), Id( at( 2 ), 9 ).hash() );
   EXPECT_TRUE( !Id() );
   EXPECT_FALSE( !Id( at( 0 ), 0 ) ); // a family is not none
}

TEST( P2mp, opaqueSubElementRecords ) {
   LdpGenericLSPId lsp;
   lsp.typeIs( 1 );
   lsp.opaqueLenNboIs( Lumo::NetU16( 4 ) );
   lsp.opaqueIdIs( Lumo::NetU32( 0x01020304 ) );
   EXPECT_EQ( 0, std::memcmp( &lsp, "\x01\x00\x04\x01\x02\x03\x04", sizeof lsp ) );
   EXPECT_EQ( valueToStrep( lsp ),
              "Value('Ldp::LdpGenericLSPId', ** {'type': 1, 'opaqueLenNbo': 4, 'opaqueId': 16909060})" );
   LdpGenericLSPId lspRead;
   Vorn::strepToValue( valueToStrep( lsp ), &lspRead );
   EXPECT_EQ( lspRead, lsp );

   LdpMPBasicOpaqueValueElementHdr head;
   head.typeIs( 255 );
   head.opaqueLenNboIs( Lumo::NetU16( 0x102 ) );
   EXPECT_EQ( valueToStrep( head ),
              "Value('Ldp::LdpMPBasicOpaqueValueElementHdr', ** {'type': 255, 'opaqueLenNbo': 258})" );
   LdpMPBasicOpaqueValueElementHdr headRead;
   Vorn::strepToValue( valueToStrep( head ), &headRead );
   EXPECT_EQ( headRead, head );
   headRead.typeIs( 1 );
   EXPECT_FALSE( headRead == head );
}

} // namespace
