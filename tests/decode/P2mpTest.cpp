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

} // namespace
