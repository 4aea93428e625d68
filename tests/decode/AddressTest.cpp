// Address and Address Withdraw messages, which differ in nothing but type and texts.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const two = tlv( addrListTlv, "0001 0a000001 0a000002" );
Hex const ignored = tlv( uBit | 258, "ff" );

template< class Parser >
void expectJudgement( Factory< Parser > factory, LdpMsgType type, char const * prefix ) {
   auto const message = [type]( std::initializer_list< Hex > tlvs ) { return msg( type, 7, tlvs ); };
   auto const list = [&]( std::string_view value ) { return message( { tlv( addrListTlv, value ) } ); };
   char const * const notFirst = "AddressListTlv is not the 1st TLV in the message";
   char const * const missing = "Missing LdpAddressListTlv";
   char const * const family = "unsupportedAddressFamily";
   char const * const malformed = "malformedTlv";
   expectRows(
        factory, prefix,
        {
             { "two addresses", message( { two } ), success, "" },
             { "other TLVs are passed over", message( { two, ignored, tlv( statusTlv ) } ), success, "" },
             { "one IPv6 address", list( "0002" + repeat( 16, 1 ) ), success, "" },

             { "no TLV", message( {} ), missingMessageParams, "Message does not have at least 1 TLV" },
             { "a TLV of another type", message( { tlv( statusTlv ) } ), missingMessageParams, missing },
             { "one to be ignored", message( { ignored } ), missingMessageParams, missing },
             { "list second", message( { ignored, two } ), missingMessageParams, notFirst },
             { "list twice", message( { two, two } ), missingMessageParams, notFirst },
             { "position is judged before the body", message( { two, tlv( addrListTlv ) } ),
               missingMessageParams, notFirst },
             { "a bad list in front of a second one wins", message( { tlv( addrListTlv, "0003" ), two } ),
               unsupportedAddressFamily, family },

             { "family 3", list( "0003 0a000001" ), unsupportedAddressFamily, family },
             { "family 0", list( "0000 0a000001" ), unsupportedAddressFamily, family },
             { "length of 0", list( "" ), unsupportedAddressFamily, family },
             { "length of 1: the octet behind it is no family",
               message( { tlv( addrListTlv, "00" ), tlv( uBit | 0x100 ) } ), unsupportedAddressFamily,
               family },
             { "no address", list( "0001" ), malformedTlv, malformed },
             { "IPv4 with 1 octet over", list( "0001 0a000001 0a" ), malformedTlv, malformed },
             { "IPv4 with 3 octets", list( "0001 0a0000" ), malformedTlv, malformed },
             { "IPv6 with 15 octets", list( "0002" + repeat( 15, 1 ) ), malformedTlv, malformed },
             { "IPv6 with the octets of 4 addresses of IPv4 and one over", list( "0002" + repeat( 20, 1 ) ),
               malformedTlv, malformed },
             // Length ffff, total 3; behind it a TLV to be ignored.
             { "wrapped length", message( { "0101 ffff 3f 0000" } ), malformedTlv, malformed },
             { "what the header says stands", message( { two, tlv( 258 ) } ), unknownTlv,
               "Unknown TLV Type: 258" },
        } );
}

TEST( Address, judgement ) {
   expectJudgement( ldpAddressMsgParserFactory, LdpAddress, "Invalid LDP Address Msg: " );
}

TEST( AddressWithdraw, judgement ) {
   expectJudgement( ldpAddressWithdrawMsgParserFactory, LdpAddressWithdraw,
                    "Invalid LDP Address Withdraw Msg: " );
}

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

TEST( Address, assertsItsType ) {
   EXPECT_ASSERTION( parse( ldpAddressMsgParserFactory, msg( LdpAddressWithdraw, 7, { two } ) ),
                     "msgHdr_->type() == LdpAddress_" );
   EXPECT_ASSERTION( parse( ldpAddressWithdrawMsgParserFactory, msg( LdpAddress, 7, { two } ) ),
                     "msgHdr_->type() == LdpAddressWithdraw_" );
   // The number of TLVs is judged before that.
   EXPECT_EQ( parse( ldpAddressMsgParserFactory, msg( LdpAddressWithdraw, 7 ) )->reason(),
              "Message does not have at least 1 TLV" );
   EXPECT_EQ( parse( ldpAddressWithdrawMsgParserFactory, msg( LdpHello, 7 ) )->reason(),
              "Message does not have at least 1 TLV" );
}

} // namespace
