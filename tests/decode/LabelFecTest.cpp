// How far each label message trusts its FEC TLV: the same FECs in all five, side by side. The five differ,
// and a peer is answered by it.

#include "Expect.h"

#include "Ldp/LdpUtils.h"

using namespace Ldp;
using namespace Wire;

namespace {

struct Row {
   char const * name;
   char const * fec;
   /// What the FEC parser says.
   LdpStatusCode own;
   char const * ownReason;
   bool wildcard;
   /// What each message makes of it.
   LdpStatusCode mapping, request, abort, withdraw, release;
};

constexpr Row rows[] = {
   { "prefix", "02 0001 08 0a", success, "", false, success, success, success, success, success },
   { "three elements", "02 0001 08 0a 03 0001 04 0a000001 02 0002 00", success, "", false, success, success,
     success, success, success },
   { "no element", "", success, "", false, success, success, success, success, success },
   { "P2MP", "06 0001 04 0a000001 0000", success, "", false, success, success, success, success, success },
   { "PW ID", "80 0005 04 00000001 00000064", success, "", false, success, success, success, success,
     success },

   { "wildcard", "01", success, "", true, unknownFec, unknownFec, unknownFec, success, success },
   { "all pseudowires of a group", "80 0005 00 00000001", success, "", true, unknownFec, unknownFec,
     unknownFec, success, success },
   { "these behind a prefix", "02 0001 08 0a 80 0005 00 00000001", success, "", true, unknownFec, unknownFec,
     unknownFec, success, success },

   { "wildcard among others", "01 02 0001 08 0a", unknownFec,
     "FEC TLV Wildcard Element must be the only FEC Element in the FEC TLV", false, unknownFec, unknownFec,
     unknownFec, malformedTlv, success },
   { "wildcard behind others", "02 0001 08 0a 01", unknownFec,
     "FEC TLV Wildcard Element must be the only FEC Element in the FEC TLV", false, unknownFec, unknownFec,
     unknownFec, malformedTlv, success },
   { "all pseudowires, then a bad element", "80 0005 00 00000001 02", malformedTlv,
     "Invalid FEC Prefix Element: TLV value is too small", true, malformedTlv, malformedTlv, malformedTlv,
     malformedTlv, success },
   { "prefix too long", "02 0001 21 0a00000000", malformedTlv,
     "Invalid FEC Prefix Element: PreLen 33 is too large for IPv4", false, malformedTlv, malformedTlv,
     malformedTlv, malformedTlv, success },
   { "unsupported family", "02 0003 08 0a", unsupportedAddressFamily,
     "Invalid FEC Prefix Element address family 0x3", false, unsupportedAddressFamily,
     unsupportedAddressFamily, unsupportedAddressFamily, malformedTlv, success },
   { "unknown element", "05", unknownFec, "Unhandled FEC TLV Element type 0x05", false, unknownFec,
     unknownFec, unknownFec, malformedTlv, success },
   { "bad length of a PW ID element", "80 0005 03 00000001 000000", badTlvLength,
     "Invalid FEC PW ID Element: TLV value length must be 0 or >= 4", false, badTlvLength, badTlvLength,
     badTlvLength, malformedTlv, success },
};

struct Message {
   LdpMsgType type;
   LdpStatusCode Row::*status;
   /// Of the three that allow no wildcard.
   char const * wildcardReason;
   /// What it needs besides the FEC.
   Hex rest;
};

Message const messages[] = {
   { LdpLabelMapping, &Row::mapping, "LDP Mapping Msg can not have Wildcard FEC TLV",
     tlv( genLabelTlv, "00000064" ) },
   { LdpLabelRequest, &Row::request, "LDP Request Msg can not have Wildcard FEC TLV", "" },
   { LdpLabelAbortReq, &Row::abort, "LDP Abort Msg can not have Wildcard FEC TLV",
     tlv( labelReqMsgIdTlv, "00000009" ) },
   { LdpLabelWithdraw, &Row::withdraw, nullptr, "" },
   { LdpLabelRelease, &Row::release, nullptr, "" },
};

TEST( LabelFec, attitudes ) {
   for ( Row const & row : rows ) {
      for ( Message const & message : messages ) {
         SCOPED_TRACE( Hex( row.name ) + " in message " + std::to_string( message.type ) );
         auto const parser = ldpMsgParserGet(
              msgPkt( msg( message.type, 7, { tlv( fecTlv, row.fec ), message.rest } ) ), msgOffset );
         LdpFecTlvParser const & fec = *parser->ldpFecTlvParser();
         EXPECT_EQ( fec.statusCode(), row.own );
         EXPECT_EQ( fec.valid(), row.own == success );
         EXPECT_EQ( fec.reason(), row.ownReason );
         EXPECT_EQ( fec.hasWildcardFecElement(), row.wildcard );

         LdpStatusCode const expected = row.*message.status;
         EXPECT_EQ( parser->statusCode(), expected );
         char const * const reason = expected == success  ? ""
                                     : row.own == success ? message.wildcardReason
                                                          : row.ownReason;
         EXPECT_EQ( parser->reason(), reason );
         EXPECT_TRUE( parser->msgFecTlv() ); // stored in any case
      }
   }
}

TEST( LabelFec, judgedBeforeWhatFollows ) {
   // The FEC stands first, so its fault is told first; where it is none, the next TLV's is.
   struct Next {
      LdpMsgType type;
      LdpStatusCode status;
      char const * reason;
   };
   for ( Next const & next :
         { Next{ LdpLabelMapping, unknownFec, "Unhandled FEC TLV Element type 0x05" },
           { LdpLabelRequest, unknownFec, "Unhandled FEC TLV Element type 0x05" },
           { LdpLabelAbortReq, unknownFec, "Unhandled FEC TLV Element type 0x05" },
           { LdpLabelWithdraw, malformedTlv, "Unhandled FEC TLV Element type 0x05" },
           { LdpLabelRelease, missingMessageParams, "FecTlv is not the 1st TLV in the message" } } ) {
      SCOPED_TRACE( next.type );
      auto const parser = ldpMsgParserGet(
           msgPkt( msg( next.type, 7, { tlv( fecTlv, "05" ), tlv( fecTlv, "01" ) } ) ), msgOffset );
      EXPECT_EQ( parser->statusCode(), next.status );
      EXPECT_EQ( parser->reason(), next.reason );
      // The second FEC TLV is not parsed.
      EXPECT_FALSE( parser->ldpFecTlvParser()->hasWildcardFecElement() );
   }
}

TEST( LabelFec, releaseWithABadFecLeavesItToTheCaller ) {
   auto const parser = ldpMsgParserGet(
        msgPkt( msg( LdpLabelRelease, 7,
                     { tlv( fecTlv, "02 0001 08 0a 05" ), tlv( genLabelTlv, "00000064" ) } ) ),
        msgOffset );
   EXPECT_TRUE( parser->validMsg() );
   EXPECT_FALSE( parser->ldpFecTlvParser()->valid() );
   EXPECT_EQ( parser->ldpFecTlvParser()->fecElements(), 1u );
}

} // namespace
