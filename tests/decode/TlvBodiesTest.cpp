// The bodies of TLVs as views: what validate() accepts, what the text shows, and fields that stay apart.

#include "Expect.h"

#include "Ldp/LdpLabelTlv.h"
#include "Ldp/LdpPwHdr.h"
#include "Ldp/LdpSessionTlv.h"

using namespace Ldp;
using namespace Wire;

namespace {

/// A body laid over its own octets, at an odd address, with nothing behind them.
template< class Body >
class Laid {
 public:
   explicit Laid( Hex const & hex ) : octets_( octets( "00" + hex ) ) {}
   Body * operator->() { return reinterpret_cast< Body * >( octets_.data() + 1 ); }
   Hex hex() const { return hexOf( Octets( octets_.begin() + 1, octets_.end() ) ); }

 private:
   Octets octets_;
};

// All sixteen settings of the low four bits; those above play no part.
TEST( TlvBodies, ftFlags ) {
   for ( U32 flags = 0; flags < 16; ++flags ) {
      bool const good =
           flags == 1 || flags == 2 || flags == 6 || flags == 8 || flags == 10 || flags == 12 || flags == 14;
      for ( U32 const above : { 0x0000u, 0x8000u, 0x7ff0u, 0xfff0u } ) {
         SCOPED_TRACE( flags | above );
         Laid< LdpFtSessionTlv > body( tlv( ftSessionTlv, u16( flags | above ) + "ffff 00000001 00000002" ) );
         EXPECT_EQ( body->validate(), good ? success : malformedTlv );
      }
   }
}

TEST( TlvBodies, wrongTypeIsTheCallersFault ) {
   Hex const other = tlv( fecTlv, repeat( 16, 0 ) );
   char const * const assertion = "Assertion `";
   auto const killed = testing::KilledBySignal( SIGABRT );
   EXPECT_EXIT( static_cast< void >( Laid< LdpCommonHelloTlv >( other )->validate() ), killed, assertion );
   EXPECT_EXIT( static_cast< void >( Laid< LdpIpTransportAddrTlv >( other )->validate() ), killed,
                assertion );
   EXPECT_EXIT( static_cast< void >( Laid< LdpConfigSeqNumTlv >( other )->validate() ), killed, assertion );
   EXPECT_EXIT( static_cast< void >( Laid< LdpIp6TransportAddrTlv >( other )->validate() ), killed,
                assertion );
   EXPECT_EXIT( static_cast< void >( Laid< LdpGenLabelTlv >( other )->validate() ), killed, assertion );
   EXPECT_EXIT( static_cast< void >( Laid< LdpLabelReqMsgIdTlv >( other )->validate() ), killed, assertion );
   EXPECT_EXIT( static_cast< void >( Laid< LdpHopCountTlv >( other )->validate() ), killed, assertion );
   EXPECT_EXIT( static_cast< void >( Laid< LdpPathVectorTlv >( other )->validate() ), killed, assertion );
   EXPECT_EXIT( static_cast< void >( Laid< LdpStatusTlv >( other )->stringValue() ), killed, assertion );
}

// ---- rows of addresses ----

TEST( TlvBodies, pathVector ) {
   auto const address = []( U32 host ) { return Lumo::IpAddr( host ); };
   Laid< LdpPathVectorTlv > body( tlv( pathVectorTlv, "0a000001 0a000002 0a000001" ) );
   EXPECT_EQ( body->lsrIdNum(), 3u );
   EXPECT_EQ( body->lsrId( 0 ), address( 0x0a000001 ) );
   EXPECT_EQ( body->lsrId( 2 ), address( 0x0a000001 ) );
   EXPECT_EQ( body->lsrId( 3 ), Lumo::IpAddr() );
   EXPECT_EQ( body->lsrId( 0xffffffff ), Lumo::IpAddr() );
   EXPECT_EQ( body->lsrIdPosition( address( 0x0a000002 ) ), 2u );
   EXPECT_EQ( body->lsrIdPosition( address( 0x0a000001 ) ), 1u ); // the first of two
   EXPECT_EQ( body->lsrIdPosition( address( 0x0a000003 ) ), 0u );
   EXPECT_EQ( body->lsrIdPosition( Lumo::IpAddr() ), 0u );
   EXPECT_EQ( body->stringValue(), "LdpPathVectorTlv: [10.0.0.1, 10.0.0.2, 10.0.0.1]" );
   for ( U32 const length : { 0u, 1u, 3u, 5u, 6u, 7u } ) {
      Laid< LdpPathVectorTlv > bad( tlv( pathVectorTlv, repeat( length, 1 ) ) );
      EXPECT_EQ( bad->lsrIdNum(), 0u );
      EXPECT_EQ( bad->lsrId( 0 ), Lumo::IpAddr() );
      EXPECT_EQ( bad->validate(), badTlvLength );
      EXPECT_EQ( bad->stringValue(), "Error LdpPathVectorTlv: badTlvLength" );
   }
   EXPECT_EQ( Laid< LdpPathVectorTlv >( tlv( pathVectorTlv, "0a000001" ) )->stringValue(),
              "LdpPathVectorTlv: [10.0.0.1]" );
}

TEST( TlvBodies, addressListArithmetic ) {
   for ( U32 family = 0; family <= 3; ++family ) {
      for ( U32 length = 0; length <= 66; ++length ) {
         SCOPED_TRACE( std::to_string( family ) + " of " + std::to_string( length ) );
         Laid< LdpAddressListTlv > body(
              tlv( addrListTlv, first( length, u16( family ) + repeat( 64, 1 ) ) ) );
         U32 const octets = length < 3 ? 0 : length - 2;
         U32 const num = family == 1 && octets % 4 == 0    ? octets / 4
                         : family == 2 && octets % 16 == 0 ? octets / 16
                                                           : 0;
         EXPECT_EQ( body->numAddress(), num );
         bool const known = length >= 2 && ( family == 1 || family == 2 );
         EXPECT_EQ( U32( body->family() ), length >= 2 ? family : 0 );
         EXPECT_EQ( body->validate(), !known ? unsupportedAddressFamily : num ? success : malformedTlv );
      }
   }
   EXPECT_EQ( Laid< LdpAddressListTlv >( tlv( addrListTlv, "0102" ) )->validate(), unsupportedAddressFamily );
   EXPECT_EQ( Laid< LdpAddressListTlv >( tlv( 258, "0001 0a000001" ) )->validate(), unknownTlv );
   // A wrapped total reaches over no family, whatever stands there.
   for ( U32 const length : { 65533u, 65534u, 65535u } ) {
      Laid< LdpAddressListTlv > body( tlvLen( addrListTlv, length ) );
      EXPECT_EQ( body->numAddress(), 0 );
      EXPECT_EQ( body->validate(), malformedTlv );
      EXPECT_EQ( body->stringValue(), "LdpAddressListTlv( Invalid TLV )" );
   }
}

TEST( TlvBodies, addressListAddressesAndText ) {
   Laid< LdpAddressListTlv > four( tlv( addrListTlv, "0001 0a000001 00000000" ) );
   EXPECT_EQ( four->address( 0 ), Lumo::IpGenAddr( Lumo::IpAddr( 0x0a000001 ) ) );
   EXPECT_EQ( four->address( 1 ), Lumo::IpGenAddr( Lumo::IpAddr() ) );
   EXPECT_EQ( four->address( 1 ).family(), Lumo::ipv4 );
   EXPECT_ASSERTION( four->address( 2 ), "position < numAddress()" );
   EXPECT_EQ( four->stringValue(), "LdpAddressListTlv( ipv4, 2, 10.0.0.1, ... )" );

   Laid< LdpAddressListTlv > six(
        tlv( addrListTlv, "0002" + repeat( 16, 0 ) + "20010db8" + repeat( 12, 0 ) ) );
   EXPECT_EQ( six->address( 0 ), Lumo::IpGenAddr( Lumo::Ip6Addr() ) );
   EXPECT_EQ( six->address( 0 ).family(), Lumo::ipv6 );
   EXPECT_EQ( six->address( 1 ).stringValue(), "2001:db8::" );
   EXPECT_EQ( six->stringValue(), "LdpAddressListTlv( ipv6, 2, ::, ... )" );

   EXPECT_EQ( Laid< LdpAddressListTlv >( tlv( addrListTlv, "0001 0a000001" ) )->stringValue(),
              "LdpAddressListTlv( ipv4, 1, 10.0.0.1 )" );
   EXPECT_EQ( Laid< LdpAddressListTlv >( tlv( addrListTlv, "0003 0a000001" ) )->stringValue(),
              "LdpAddressListTlv( Invalid TLV )" );
   // The type is not looked at here.
   EXPECT_EQ( Laid< LdpAddressListTlv >( tlv( 258, "0001 0a000001" ) )->stringValue(),
              "LdpAddressListTlv( ipv4, 1, 10.0.0.1 )" );
   Laid< LdpAddressListTlv > none( tlv( addrListTlv, "0001" ) );
   EXPECT_ASSERTION( none->address( 0 ), "position < numAddress()" );
}

} // namespace
