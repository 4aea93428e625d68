// One PDU: its header, its length against fixed bounds and against the packet, and where its messages begin.

#include "Expect.h"

#include "Ldp/LdpGenMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const keepAlive = msg( LdpKeepAlive, 7 );
char const * const malformed = "LDP PDU Messages are malformed";

/// A PDU of that total length, filled with one KeepAlive outline.
Hex pduOfTotal( U32 total ) { return pdu( "10.0.0.1", 0, { tlv( LdpKeepAlive, repeat( total - 14, 0 ) ) } ); }

struct Row {
   char const * name;
   Hex packet;
   U32 offset;
   LdpStatusCode status;
   char const * reason;
   U32 messages;
};

TEST( PduParser, judgement ) {
   std::vector< Row > const rows{
      { "one message", pdu( "10.0.0.1", 0, { keepAlive } ), 0, success, "", 1 },
      { "two messages", pdu( "10.0.0.1", 0, { keepAlive, keepAlive } ), 0, success, "", 2 },
      { "behind other octets", "ffffff" + pdu( "10.0.0.1", 0, { keepAlive } ), 3, success, "", 1 },
      { "identifier is not examined", pdu( "0.0.0.0", 65535, { keepAlive } ), 0, success, "", 1 },

      { "18 octets, of which the PDU claims 14",
        pduLen( 10, "10.0.0.1", 0, { tlv( LdpKeepAlive ), "00000000" } ), 0, success, "", 1 },
      { "17 octets, however good", first( 17, pdu( "10.0.0.1", 0, { keepAlive } ) ), 0, badPduLength,
        "PDU too small, size = 17", 0 },
      { "17 octets from the offset: the whole packet is printed",
        "ffff" + first( 17, pdu( "10.0.0.1", 0, { keepAlive } ) ), 2, badPduLength,
        "PDU too small, size = 19", 0 },
      { "offset at the packet's end", "ffff", 2, badPduLength, "PDU too small, size = 2", 0 },
      { "empty packet", "", 0, badPduLength, "PDU too small, size = 0", 0 },

      { "total length of 9600", pduOfTotal( 9600 ), 0, success, "", 1 },
      { "total length of 9601", pduOfTotal( 9601 ), 0, badPduLength,
        "PDU length field too big, length = 9601", 0 },
      { "length that does not wrap yet", pduLen( 65531, "10.0.0.1", 0, { keepAlive } ), 0, badPduLength,
        "PDU length field too big, length = 65535", 0 },
      { "length that wraps to 0", pduLen( 65532, "10.0.0.1", 0, { keepAlive } ), 0, badPduLength,
        "PDU length field too small, length = 0", 0 },
      { "length that wraps to 3", pduLen( 65535, "10.0.0.1", 0, { keepAlive } ), 0, badPduLength,
        "PDU length field too small, length = 3", 0 },
      { "length of 0", pduLen( 0, "10.0.0.1", 0, { keepAlive } ), 0, badPduLength,
        "PDU length field too small, length = 4", 0 },
      { "total length of 13", pduLen( 9, "10.0.0.1", 0, { keepAlive } ), 0, badPduLength,
        "PDU length field too small, length = 13", 0 },

      { "version 0", pdu( "10.0.0.1", 0, { keepAlive }, 0 ), 0, badVersion, "LDP Version 0 not supported",
        0 },
      { "version 2", pdu( "10.0.0.1", 0, { keepAlive }, 2 ), 0, badVersion, "LDP Version 2 not supported",
        0 },
      { "version 65535", pdu( "10.0.0.1", 0, { keepAlive }, 65535 ), 0, badVersion,
        "LDP Version 65535 not supported", 0 },
      { "length is judged before the version", pduLen( 9, "10.0.0.1", 0, { keepAlive }, 2 ), 0, badPduLength,
        "PDU length field too small, length = 13", 0 },
      { "version is judged before the messages", pduLen( 10, "10.0.0.1", 0, { "0001fffc 00000000" }, 2 ), 0,
        badVersion, "LDP Version 2 not supported", 0 },

      { "4 octets more than the packet holds", pduLen( 18, "10.0.0.1", 0, { keepAlive } ), 0, malformedTlv,
        malformed, 0 },
      { "message past the PDU", pduLen( 14, "10.0.0.1", 0, { msgLen( LdpKeepAlive, 5, 7 ), "00" } ), 0,
        malformedTlv, malformed, 0 },
      { "second message past the PDU: the first stays recorded",
        pduLen( 22, "10.0.0.1", 0, { keepAlive, msgLen( LdpKeepAlive, 5, 7 ), "00" } ), 0, malformedTlv,
        malformed, 1 },
      { "1 octet behind the last message", pduLen( 15, "10.0.0.1", 0, { keepAlive, "00" } ), 0, malformedTlv,
        malformed, 1 },
      { "octets behind the PDU", pdu( "10.0.0.1", 0, { keepAlive } ) + "fffffffc", 0, success, "", 1 },

      { "a message counts with a length of 0", pdu( "10.0.0.1", 0, { keepAlive, tlv( LdpHello ) } ), 0,
        success, "", 2 },
      { "types play no part", pdu( "10.0.0.1", 0, { msg( 0x7fff, 0 ), msg( 0, 0 ) } ), 0, success, "", 2 },
   };
   for ( Row const & row : rows ) {
      SCOPED_TRACE( row.name );
      auto const parser = ldpPduParserFactory( pkt( row.packet ), row.offset );
      EXPECT_EQ( parser->statusCode(), row.status );
      EXPECT_EQ( parser->reason(), row.reason );
      EXPECT_EQ( parser->validLdpPdu(), row.status == success );
      EXPECT_EQ( parser->messageNum(), row.messages );
      EXPECT_FALSE( parser->initialized() ); // nothing sets it
      if ( row.status != success ) {
         EXPECT_EQ( parser->stringValue(), Vorn::String( "Error LDP PDU: " ) + row.reason );
      }
   }
}

TEST( PduParser, walkerKeepsItsOwnStatusAndReason ) {
   auto const parser = ldpPduParserFactory( pkt( pduLen( 18, "10.0.0.1", 0, { keepAlive } ) ), 0 );
   EXPECT_EQ( parser->tlvGroupParser()->statusCode(), badTlvLength );
   EXPECT_EQ( parser->tlvGroupParser()->reason(), "Packet is too small, size: 18" );
}

TEST( PduParser, readsTheHeader ) {
   auto const packet = pkt( "ff" + pdu( "10.0.0.1", 513, { keepAlive, keepAlive } ) );
   auto const parser = ldpPduParserFactory( packet, 1 );
   EXPECT_EQ( parser->pkt(), packet );
   EXPECT_EQ( parser->offset(), 1u );
   EXPECT_EQ( reinterpret_cast< U8 const * >( parser->header() ), packet->front() + 1 );
   EXPECT_EQ( parser->version(), 1 );
   EXPECT_EQ( parser->length(), 22 );
   EXPECT_EQ( parser->totalLength(), 26 );
   EXPECT_EQ( parser->ldpIdentifier(), LdpIdentifier( 0x0a000001, 513 ) );
   EXPECT_EQ( parser->messageOffset( 0 ), 11u ); // from the packet's front
   EXPECT_EQ( parser->messageOffset( 1 ), 19u );
   EXPECT_EQ( parser->messageOffset( 2 ), 0u );
   EXPECT_EQ( parser->tlvGroupParser()->offset(), 11u );
   EXPECT_EQ( parser->tlvGroupParser()->size(), 16u );
   EXPECT_EQ( parser->tlvGroupParser()->pkt(), packet );
   EXPECT_EQ( parser->tlvGroupParser()->name(), "" );
}

TEST( PduParser, headerThatIsNotWhollyThere ) {
   Hex const whole = pdu( "10.0.0.1", 513, { keepAlive } );
   for ( std::size_t octets = 0; octets < 10; ++octets ) {
      SCOPED_TRACE( octets );
      auto const parser = ldpPduParserFactory( pkt( first( octets, whole ) ), 0 );
      EXPECT_EQ( parser->version(), 0 );
      EXPECT_EQ( parser->length(), 0 );
      EXPECT_EQ( parser->totalLength(), 0 );
      EXPECT_EQ( parser->ldpIdentifier(), LdpIdentifier() );
      EXPECT_EQ( parser->messageNum(), 0u );
   }
   EXPECT_EQ( ldpPduParserFactory( pkt( first( 10, whole ) ), 0 )->ldpIdentifier(),
              LdpIdentifier( 0x0a000001, 513 ) );
}

TEST( PduParser, packetWithoutOctetsIsAPduTooSmall ) {
   // A datagram may be empty; whatever a packet is made of, that is a defect of the PDU and not of ours.
   for ( auto const & packet : { Lumo::pktFactory( nullptr, 0 ), Lumo::Pkt::borrow( nullptr, 0 ) } ) {
      EXPECT_EQ( ldpPduParserFactory( packet, 0 )->reason(), "PDU too small, size = 0" );
   }
}

TEST( PduParser, assertsItsOffset ) {
   EXPECT_ASSERTION( ldpPduParserFactory( pkt( "00" ), 2 ), "pkt_->frontBytes() >= offset_" );
}

TEST( PduParser, lengthOf65532InAMessageEndsTheProcess ) {
   EXPECT_ASSERTION( ldpPduParserFactory( pkt( pduLen( 14, "10.0.0.1", 0, { "0100fffc 00000000" } ) ), 0 ),
                     "header->totalLength() > 0" );
}

TEST( PduParser, text ) {
   Hex const hello = msg( LdpHello, 0xffffffff, { tlv( commonHelloTlv, "000f 8000" ) } );
   auto const parser = ldpPduParserFactory(
        pkt( "ffff" + pdu( "10.0.0.1", 0, { keepAlive, hello, msg( 0x3000, 1 ), tlv( LdpHello ) } ) ), 2 );
   EXPECT_EQ( parser->stringValue(), "LdpPduHdr: Ver(1),Len(42),LdpId: 10.0.0.1:0\n"
                                     "0: LdpKeepAlive, Id: 0x00000007, numTlv: 0\n"
                                     "1: LDP Hello Msg:\n"
                                     "   Msg Id: -1,   CommonHelloTlv: HT(15),1,0\n"
                                     "2: Message Error: Unknown Message Type: 12288\n"
                                     "3: Message Error: MSG too small, size = 48\n" );
}

TEST( PduParser, walkerIsAnOwnedChildByName ) {
   auto const parser = ldpPduParserFactory( pkt( pdu( "10.0.0.1", 0, { keepAlive } ) ), 0 );
   auto const walker = parser->tlvGroupParser();
   EXPECT_EQ( parser->tlvGroupParserIs( "" ), walker ); // its present name
   auto const other = parser->tlvGroupParserIs( "other" );
   EXPECT_FALSE( other == walker );
   EXPECT_EQ( other->name(), "other" );
   EXPECT_EQ( parser->messageNum(), 0u );
   EXPECT_EQ( parser->tlvGroupParserDel(), other );
   EXPECT_FALSE( parser->tlvGroupParser() );
   EXPECT_FALSE( parser->tlvGroupParserDel() );
   EXPECT_EQ( parser->messageNum(), 0u );
   EXPECT_EQ( parser->messageOffset( 0 ), 0u );
}

TEST( PduParser, judgedAgainItComesToTheSame ) {
   for ( Hex const & packet :
         { pdu( "10.0.0.1", 0, { keepAlive, keepAlive } ), pduLen( 18, "10.0.0.1", 0, { keepAlive } ) } ) {
      auto const parser = ldpPduParserFactory( pkt( packet ), 0 );
      LdpStatusCode const status = parser->statusCode();
      U32 const messages = parser->messageNum();
      parser->handleInitialized();
      EXPECT_EQ( parser->statusCode(), status );
      EXPECT_EQ( parser->messageNum(), messages );
   }
}

TEST( PduParser, keepsItsPacket ) {
   U64 const before = Lumo::Pkt::allocTrack().objects();
   auto parser = ldpPduParserFactory( pkt( pdu( "10.0.0.1", 0, { keepAlive } ) ), 0 );
   EXPECT_EQ( Lumo::Pkt::allocTrack().objects(), before + 1 );
   EXPECT_EQ( parser->version(), 1 );
   parser = nullptr;
   EXPECT_EQ( Lumo::Pkt::allocTrack().objects(), before );
}

} // namespace
