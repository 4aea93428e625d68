// How the label messages treat their FEC TLV beyond the attitudes of verdicts.txt.

#include "Expect.h"

#include "Ldp/LdpUtils.h"

using namespace Ldp;
using namespace Wire;

namespace {

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
