// The way in for octets of a peer: whatever pieces they come in, the same PDUs come out, and none that is
// fatal is parsed.

#include "Expect.h"

#include "Ldp/LdpPduStream.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const keepAlive = msg( LdpKeepAlive, 7 );
Hex const hello = msg( LdpHello, 7, { tlv( commonHelloTlv, "000f 0000" ) } );
Hex const dump = msg( LdpLabelRequest, 1, { tlv( fecTlv, "06" + repeat( 255, 0 ) ) } );

Hex pduOf( std::initializer_list< Hex > msgs ) { return pdu( "10.0.0.1", 0, msgs ); }
Hex keepAliveOf( std::size_t length ) {
   return pduOf( { keepAlive, msg( LdpKeepAlive, 1, { tlv( retPduTlv, repeat( length - 26, 1 ) ) } ) } );
}

struct Row {
   char const * name;
   Hex pdu;
   LdpStatusCode status;
   char const * reason;
   U32 messages;
};
std::vector< Row > const rows = {
   { "good", pduOf( { hello, keepAlive } ), success, "", 2 },
   { "a bad message of it", pduOf( { msg( LdpHello, 7 ), keepAlive } ), success, "", 2 },
   { "another version", pdu( "10.0.0.1", 0, { keepAlive }, 2 ), badVersion, "LDP Version 2 not supported",
     0 },
   { "14 octets", pduOf( { "0201 0000" } ), badPduLength, "PDU too small, size = 14", 0 },
   { "messages that run over", pduOf( { keepAlive, "0201 0005 00000001" } ), malformedTlv,
     "LDP PDU Messages are malformed", 0 },
   { "a message of no length", pduOf( { keepAlive, "0201 fffc 00000001" } ), badTlvLength,
     "Msg/Tlv length field of 65532, offset: 18", 0 },
   { "a TLV of no length", pduOf( { msg( LdpHello, 1, { "0400 fffc" } ) } ), badTlvLength,
     "Msg/Tlv length field of 65532, offset: 18", 0 },
   { "a dump without end", pduOf( { dump } ), internalError,
     "FEC P2MP Element with 256 octets or more of its FEC TLV, offset: 22", 0 },
   { "good, to end with", pduOf( { keepAlive } ), success, "", 1 },
};

void expectRow( LdpPdu const & pdu, Row const & row ) {
   SCOPED_TRACE( row.name );
   ASSERT_TRUE( pdu );
   EXPECT_EQ( pdu.statusCode(), row.status );
   EXPECT_EQ( pdu.reason(), row.reason );
   EXPECT_EQ( pdu.valid(), row.status == success );
   EXPECT_EQ( pdu.messageNum(), row.messages );
   EXPECT_EQ( pdu.ldpIdentifier(), LdpIdentifier( 0x0a000001, 0 ) );
   Octets const sent = octets( row.pdu );
   EXPECT_EQ( Octets( pdu.pkt()->front(), pdu.pkt()->front() + pdu.pkt()->frontBytes() ), sent );
   EXPECT_EQ( bool( pdu.parser() ), !pdu.guard() );
   if ( pdu.valid() || statusCodeEBitForStatusCode( pdu.statusCode() ) ) return;
   ADD_FAILURE() << "the session would go on without what the PDU said";
}

TEST( PduStream, givesTheSameInPiecesOfAnySize ) {
   Hex all;
   for ( Row const & row : rows )
      all += row.pdu;
   Octets const sent = octets( all );
   for ( std::size_t piece = 1; piece <= sent.size(); piece += piece < 64 ? 1 : 101 ) {
      SCOPED_TRACE( piece );
      LdpPduStream stream;
      std::size_t found = 0;
      for ( std::size_t at = 0; at < sent.size(); at += piece ) {
         std::span< U8 const > left = std::span( sent ).subspan( at, std::min( piece, sent.size() - at ) );
         while ( LdpPdu const pdu = stream.next( left ) ) {
            ASSERT_LT( found, rows.size() );
            expectRow( pdu, rows[found++] );
         }
         ASSERT_TRUE( left.empty() );
      }
      EXPECT_EQ( found, rows.size() );
      EXPECT_TRUE( stream.held().empty() );
      EXPECT_FALSE( stream.broken() );
   }
}

TEST( PduStream, takesDatagrams ) {
   LdpPduStream stream;
   for ( Row const & row : rows ) {
      expectRow( stream.datagram( octets( row.pdu ) ), row );
      // What stands behind it has no say.
      expectRow( stream.datagram( octets( row.pdu + "0000 fffc" ) ), row );
   }
   // Cut off, a datagram is refused: nothing follows.
   Octets const whole = octets( pduOf( { hello } ) );
   for ( std::size_t size = 0; size < whole.size(); ++size ) {
      auto const pdu = stream.datagram( std::span( whole ).first( size ) );
      EXPECT_EQ( pdu.statusCode(), size < 18 ? badPduLength : malformedTlv );
      EXPECT_EQ( pdu.pkt()->frontBytes(), size );
   }
   EXPECT_EQ( stream.datagram( {} ).ldpIdentifier(), LdpIdentifier() );
}

TEST( PduStream, aLengthThatCannotBeBreaksIt ) {
   for ( auto const & [length, reason] :
         std::vector< std::pair< U32, Vorn::String > >{ { 0, "small, length = 4" },
                                                        { 9, "small, length = 13" },
                                                        { 0xfffc, "small, length = 0" },
                                                        { 0xffff, "small, length = 3" },
                                                        { 4097, "big, length = 4101" },
                                                        { 0xfffb, "big, length = 65535" } } ) {
      SCOPED_TRACE( length );
      Octets const header = octets( pduLen( length, "10.0.0.1", 0, {} ) );
      Octets const datagram = octets( pduLen( length, "10.0.0.1", 0, { keepAlive } ) );
      Octets const good = octets( pduOf( { keepAlive } ) );
      LdpPduStream stream;
      std::span< U8 const > left( header );
      auto const pdu = stream.next( left ); // without a further octet
      ASSERT_TRUE( pdu );
      EXPECT_EQ( pdu.statusCode(), badPduLength );
      EXPECT_EQ( pdu.reason(), "PDU length field too " + reason );
      EXPECT_EQ( pdu.pkt()->frontBytes(), 10u );
      EXPECT_TRUE( stream.broken() );
      left = good;
      EXPECT_FALSE( stream.next( left ) );
      EXPECT_TRUE( left.empty() );
      stream.clear();
      left = good;
      EXPECT_TRUE( stream.next( left ).valid() );
      // A datagram breaks nothing: the next is another.
      EXPECT_EQ( stream.datagram( datagram ).reason(), "PDU length field too " + reason );
      EXPECT_TRUE( stream.datagram( good ).valid() );
   }
}

TEST( PduStream, honoursTheNegotiatedLength ) {
   LdpPduStream stream;
   auto const taken = [&]( std::size_t length ) {
      Octets const sent = octets( keepAliveOf( length ) );
      EXPECT_EQ( sent.size(), length + 4 );
      stream.clear();
      std::span< U8 const > left( sent );
      return stream.next( left ).valid();
   };
   EXPECT_TRUE( taken( 4096 ) );
   EXPECT_FALSE( taken( 4097 ) );
   stream.maxPduLengthIs( 256 );
   EXPECT_TRUE( taken( 256 ) );
   EXPECT_FALSE( taken( 257 ) );
   stream.maxPduLengthIs( 255 ); // stands for the default
   EXPECT_EQ( stream.maxPduLength(), 4096 );
   stream.maxPduLengthIs( 9600 );
   EXPECT_TRUE( taken( 4097 ) );
   EXPECT_TRUE( taken( 9596 - 5000 ) );
   Octets const most = octets( pduLen( 9597, "10.0.0.1", 0, {} ) );
   std::span< U8 const > left( most );
   stream.clear();
   EXPECT_EQ( stream.next( left ).reason(), "PDU length field too big, length = 9601" );
}

TEST( PduStream, whatIsKeptStaysAsItIs ) {
   LdpPduStream stream;
   std::vector< Vorn::Ptr< LdpMsgParser > > kept;
   Lumo::Pkt const * reused = nullptr;
   for ( U32 id = 1; id <= 40; ++id ) {
      Octets const sent = octets( pduOf( { msg( LdpKeepAlive, id ) } ) );
      std::span< U8 const > left = std::span( sent ).first( id % 18 );
      EXPECT_FALSE( stream.next( left ) );
      EXPECT_EQ( stream.held().size(), id % 18 );
      LdpPduStream moved( std::move( stream ) );
      EXPECT_TRUE( stream.held().empty() );
      LdpPduStream assigned;
      assigned = std::move( moved );
      left = std::span( sent ).subspan( id % 18 );
      auto const pdu = assigned.next( left );
      ASSERT_TRUE( pdu );
      stream = std::move( assigned );
      if ( id % 3 == 0 ) kept.push_back( pdu.message( 0 ) );
      if ( id % 3 == 1 ) reused = pdu.pkt().ptr();
      if ( id % 3 != 2 ) continue;
      EXPECT_EQ( reused, pdu.pkt().ptr() ) << "nobody has kept the packet";
   }
   for ( U32 i = 0; i < kept.size(); ++i )
      EXPECT_EQ( kept[i]->msgId(), 3 * ( i + 1 ) );
   EXPECT_ASSERTION( stream.datagram( octets( pduOf( { keepAlive } ) ) ).message( 1 ),
                     "index < messageNum()" );
}

} // namespace
