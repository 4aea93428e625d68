// One PDU: its header, its length against fixed bounds and against the packet, and where its messages begin.

#include "Expect.h"

#include "Ldp/LdpGenMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const keepAlive = msg( LdpKeepAlive, 7 );
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

TEST( PduParser, assertsItsOffset ) {
   EXPECT_ASSERTION( ldpPduParserFactory( pkt( "00" ), 2 ), "pkt_->frontBytes() >= offset_" );
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

} // namespace
