// What all messages share: header, framing of the TLVs, and the types that may be taken.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

struct Row {
   char const * name;
   Hex message;
   LdpStatusCode status;
   char const * reason;
   U32 tlvs;
};

/// A KeepAlive of that total length, with one TLV of a known type over all of it.
Hex messageOfTotal( U32 total ) {
   return msg( LdpKeepAlive, 1, { tlv( retPduTlv, repeat( total - 12, 0xab ) ) } );
}

TEST( MsgParser, judgement ) {
   Hex const good = tlv( hopCountTlv, "01" );
   Hex const ignored = tlv( uBit | 258, "0102" );
   Hex const refused = tlv( 258, "0102" );
   std::vector< Row > const rows{
      { "header alone", msg( LdpKeepAlive, 7 ), success, "", 0 },
      { "one TLV", msg( LdpKeepAlive, 7, { good } ), success, "", 1 },
      { "U bit of a known type plays no part", msg( uBit | LdpKeepAlive, 7, { good } ), success, "", 1 },
      { "octets behind it", msg( LdpKeepAlive, 7, { good } ) + "ffff fffc", success, "", 1 },

      { "unknown type", msg( 0x3000, 7 ), unknownMessageType, "Unknown Message Type: 12288", 0 },
      { "unknown type with U bit", msg( uBit | 0x3000, 7 ), unknownMessageTypeIgnore,
        "Unknown Message Type: 12288", 0 },
      { "type 0", msg( 0, 7 ), unknownMessageType, "Unknown Message Type: 0", 0 },
      { "largest type", msg( 0xffff, 7 ), unknownMessageTypeIgnore, "Unknown Message Type: 32767", 0 },
      { "bit 14 belongs to the type", msg( 0x4000 | LdpHello, 7 ), unknownMessageType,
        "Unknown Message Type: 16640", 0 },
      { "unknown type: neither length nor TLVs count", msgLen( 0x3000, 65532, 7, { "0100 fffc" } ),
        unknownMessageType, "Unknown Message Type: 12288", 0 },

      { "7 octets", first( 7, msg( LdpKeepAlive, 7 ) ), malformedTlv, "MSG too small, size = 12", 0 },
      { "2 octets", first( 2, msg( LdpKeepAlive, 7 ) ), malformedTlv, "MSG too small, size = 7", 0 },
      { "2 octets of an unknown type", "3000", unknownMessageType, "Unknown Message Type: 12288", 0 },
      { "2 octets of an unknown type with U bit", "b000", unknownMessageTypeIgnore,
        "Unknown Message Type: 12288", 0 },
      { "1 octet: the type is not read", "30", malformedTlv, "MSG too small, size = 6", 0 },
      { "none", "", malformedTlv, "MSG too small, size = 5", 0 },

      { "total length of 4096", messageOfTotal( 4096 ), success, "", 1 },
      { "total length of 4097", messageOfTotal( 4097 ), malformedTlv,
        "MSG length field too big, length = 4097", 0 },
      { "length that does not wrap yet", msgLen( LdpKeepAlive, 65531, 7 ), malformedTlv,
        "MSG length field too big, length = 65535", 0 },
      { "length that wraps to 0", msgLen( LdpKeepAlive, 65532, 7 ), malformedTlv,
        "MSG length field too small, length = 0", 0 },
      { "length that wraps to 3", msgLen( LdpKeepAlive, 65535, 7 ), malformedTlv,
        "MSG length field too small, length = 3", 0 },
      { "length of 0", msgLen( LdpKeepAlive, 0, 7 ), malformedTlv, "MSG length field too small, length = 4",
        0 },
      { "total length of 7", msgLen( LdpKeepAlive, 3, 7 ), malformedTlv,
        "MSG length field too small, length = 7", 0 },
      { "more than the packet holds", msgLen( LdpKeepAlive, 9, 7, { "01030000" } ), badTlvLength,
        "Packet is too small, size: 17", 0 },
      { "3 octets for a TLV", msgLen( LdpKeepAlive, 7, 7, { "010300" } ), badTlvLength,
        "Msg/Tlv header is corrupted", 0 },
      { "TLV past the message", msgLen( LdpKeepAlive, 8, 7, { good } ), badTlvLength,
        "Msg/Tlv is corrupted/truncated", 0 },
      { "second TLV past the message", msg( LdpKeepAlive, 7, { good, tlvLen( hopCountTlv, 1 ) } ),
        badTlvLength, "Msg/Tlv is corrupted/truncated", 1 },

      { "unknown TLV", msg( LdpKeepAlive, 7, { refused } ), unknownTlv, "Unknown TLV Type: 258", 1 },
      { "unknown TLV with U bit", msg( LdpKeepAlive, 7, { ignored } ), success, "", 1 },
      { "unknown TLV with F bit alone", msg( LdpKeepAlive, 7, { tlv( fBit | 258, "" ) } ), unknownTlv,
        "Unknown TLV Type: 258", 1 },
      { "two unknown TLVs with U bit are counted", msg( LdpKeepAlive, 7, { ignored, good, ignored } ),
        success, "", 3 },
      { "the first unknown TLV is told", msg( LdpKeepAlive, 7, { good, refused, tlv( 15873 ) } ), unknownTlv,
        "Unknown TLV Type: 258", 3 },
      { "type 15873, between known ones", msg( LdpKeepAlive, 7, { tlv( 15873 ) } ), unknownTlv,
        "Unknown TLV Type: 15873", 1 },
      { "type 1539", msg( LdpKeepAlive, 7, { tlv( 1539, "80" ) } ), unknownTlv, "Unknown TLV Type: 1539", 1 },
      { "type 1539 with U bit", msg( LdpKeepAlive, 7, { tlv( uBit | 1539, "80" ) } ), success, "", 1 },
      { "known TLV with both flag bits", msg( LdpKeepAlive, 7, { tlv( uBit | fBit | hopCountTlv, "01" ) } ),
        success, "", 1 },
      { "known TLV that belongs to another message", msg( LdpKeepAlive, 7, { tlv( addrListTlv, "" ) } ),
        success, "", 1 },
      { "framing is judged before the types", msg( LdpKeepAlive, 7, { refused, tlvLen( hopCountTlv, 1 ) } ),
        badTlvLength, "Msg/Tlv is corrupted/truncated", 1 },
      // Length ffff, total 3; behind it type ff3f, which is to be ignored, of length 0.
      { "wrapped TLV length within the message", msg( LdpKeepAlive, 7, { "0103 ffff 3f 0000" } ), success, "",
        2 },
   };
   for ( Row const & row : rows ) {
      SCOPED_TRACE( row.name );
      auto const parser = parse( ldpMsgParserFactory, row.message );
      EXPECT_EQ( parser->statusCode(), row.status );
      EXPECT_EQ( parser->reason(), row.reason );
      EXPECT_EQ( parser->validMsg(), row.status == success );
      EXPECT_EQ( parser->tlvNum(), row.tlvs );
      if ( row.status != success ) {
         EXPECT_EQ( parser->stringValue(), Vorn::String( "Message Error: " ) + row.reason );
      }
   }
}

TEST( MsgParser, readsTheHeader ) {
   auto const packet =
        msgPkt( msg( uBit | LdpKeepAlive, 0x01020304, { tlv( hopCountTlv, "01" ), tlv( 770 ) } ) );
   auto const parser = ldpMsgParserFactory( packet, msgOffset );
   EXPECT_EQ( parser->pkt(), packet );
   EXPECT_EQ( parser->offset(), msgOffset );
   EXPECT_EQ( offsetOf( *parser, parser->msgHdr() ), msgOffset );
   EXPECT_TRUE( parser->unknown() );
   EXPECT_EQ( parser->type(), LdpKeepAlive );
   EXPECT_EQ( parser->msgId(), 0x01020304u );
   EXPECT_EQ( parser->length(), 13 );
   EXPECT_EQ( parser->totalLength(), 17 );
   EXPECT_EQ( parser->tlvOffset( 0 ), msgOffset + 8 ); // from the packet's front
   EXPECT_EQ( parser->tlvOffset( 1 ), msgOffset + 13 );
   EXPECT_EQ( parser->tlvOffset( 2 ), 0u );
   EXPECT_EQ( parser->tlvGroupParser()->offset(), msgOffset + 8 );
   EXPECT_EQ( parser->tlvGroupParser()->size(), 9u );
   EXPECT_EQ( parser->tlvGroupParser()->name(), "" );
   EXPECT_FALSE( parser->msgFecTlv() );
   EXPECT_FALSE( parser->ldpFecTlvParser() );
   EXPECT_FALSE( parser->msgStatusTlv() );
   EXPECT_EQ( parser->stringValue(), "LdpKeepAlive, Id: 0x01020304, numTlv: 2" );
}

TEST( MsgParser, headerThatIsNotWhollyThere ) {
   Hex const whole = msg( uBit | LdpKeepAlive, 7 );
   for ( std::size_t octets = 0; octets < 8; ++octets ) {
      SCOPED_TRACE( octets );
      auto const parser = parse( ldpMsgParserFactory, first( octets, whole ) );
      EXPECT_EQ( parser->type(), LdpMsgType( 0 ) );
      EXPECT_FALSE( parser->unknown() );
      EXPECT_EQ( parser->msgId(), 0u );
      EXPECT_EQ( parser->length(), 0 );
      EXPECT_EQ( parser->totalLength(), 0 );
      EXPECT_EQ( parser->tlvNum(), 0u );
   }
}

TEST( MsgParser, assertsItsOffset ) {
   EXPECT_ASSERTION( ldpMsgParserFactory( pkt( "00" ), 2 ), "pkt_->frontBytes() >= offset_" );
}

TEST( MsgParser, tlvLengthOf65532EndsTheProcess ) {
   EXPECT_ASSERTION( parse( ldpMsgParserFactory, msg( LdpKeepAlive, 1, { "0103 fffc" } ) ),
                     "header->totalLength() > 0" );
}

TEST( MsgParser, walkerIsAnOwnedChildByName ) {
   auto const parser = parse( ldpMsgParserFactory, msg( LdpKeepAlive, 1, { tlv( 770 ) } ) );
   auto const walker = parser->tlvGroupParser();
   EXPECT_EQ( parser->tlvGroupParserIs( "" ), walker );
   auto const other = parser->tlvGroupParserIs( "other" );
   EXPECT_FALSE( other == walker );
   EXPECT_EQ( parser->tlvNum(), 0u );
   EXPECT_EQ( parser->tlvGroupParserDel(), other );
   EXPECT_FALSE( parser->tlvGroupParser() );
   EXPECT_EQ( parser->tlvNum(), 0u );
   EXPECT_EQ( parser->tlvOffset( 0 ), 0u );
}

TEST( MsgParser, fecParserIsAnOwnedChild ) {
   auto const parser = parse( ldpMsgParserFactory, msg( LdpKeepAlive, 1, { tlv( fecTlv, "01" ) } ) );
   auto const first = parser->ldpFecTlvParserIs( parser->pkt(), parser->tlvOffset( 0 ), nullptr );
   EXPECT_EQ( first, parser->ldpFecTlvParser() );
   EXPECT_TRUE( first->hasWildcardFecElement() );
   auto const second = parser->ldpFecTlvParserIs( parser->pkt(), parser->tlvOffset( 0 ), nullptr );
   EXPECT_FALSE( first == second ); // replaces it
   EXPECT_EQ( parser->ldpFecTlvParserDel(), second );
   EXPECT_FALSE( parser->ldpFecTlvParser() );
}

} // namespace
