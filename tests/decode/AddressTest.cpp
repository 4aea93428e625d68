// Address and Address Withdraw messages, which differ in nothing but type and texts.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const two = tlv( addrListTlv, "0001 0a000001 0a000002" );

TEST( Address, viewAndText ) {
   auto const address = parse( ldpAddressMsgParserFactory, msg( LdpAddress, 7, { two } ) );
   ASSERT_TRUE( address->addressListTlv() );
   EXPECT_EQ( offsetOf( *address, address->addressListTlv() ), msgOffset + 8 );
   EXPECT_EQ( address->addressListTlv()->numAddress(), 2 );
   EXPECT_EQ( address->addressListTlv()->address( 1 ), Lumo::IpGenAddr( Lumo::IpAddr( 0x0a000002 ) ) );
   EXPECT_EQ( address->stringValue(),
              "LDP Address Msg:\n   Msg Id: 7,   LdpAddressListTlv( ipv4, 2, 10.0.0.1, ... )" );

   auto const withdraw =
        parse( ldpAddressWithdrawMsgParserFactory,
               msg( LdpAddressWithdraw, 0x80000000, { tlv( addrListTlv, "0001 0a000001" ) } ) );
   EXPECT_EQ( withdraw->addressListTlv()->numAddress(), 1 );
   EXPECT_EQ( withdraw->stringValue(), "LDP Address Withdraw Msg:\n   Msg Id: -2147483648,   "
                                       "LdpAddressListTlv( ipv4, 1, 10.0.0.1 )" );

   auto const refused =
        parse( ldpAddressMsgParserFactory, msg( LdpAddress, 7, { tlv( addrListTlv, "0001" ) } ) );
   EXPECT_TRUE( refused->addressListTlv() ); // stored, then refused
}

} // namespace
