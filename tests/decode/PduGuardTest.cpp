// The guard against inputs that end or hang the process. Each row is not only asked about but also parsed:
// what passes in this process, what is refused in a child that must die of just that input.

#include "Expect.h"

#include "Ldp/LdpUtils.h"

#include <sys/time.h>
#include <unistd.h>

using namespace Ldp;
using namespace Wire;

namespace {

using Result = LdpPduGuardResult;

// Where things are in the packets of this test.
constexpr U32 pduAt = 2, msgAt = pduAt + 10, tlvAt = msgAt + 8;

/// Parses the PDU and each of its messages, and prints them.
void parseAll( Vorn::Ptr< Lumo::Pkt > const & packet ) {
   auto const pdu = ldpPduParserFactory( packet, pduAt );
   if ( pdu->validLdpPdu() ) {
      for ( U32 i = 0; i < pdu->messageNum(); ++i ) {
         ldpMsgParserGet( packet, pdu->messageOffset( i ) );
      }
   }
   pdu->stringValue();
}

/// The same in a process with 300 ms left.
void parseFor300ms( Vorn::Ptr< Lumo::Pkt > const & packet ) {
   itimerval left{};
   left.it_value.tv_usec = 300'000;
   setitimer( ITIMER_REAL, &left, nullptr );
   parseAll( packet );
   _exit( 0 );
}

struct Row {
   char const * name;
   Hex packet; ///< behind the `pduAt` octets
   Result::Input input;
   U32 offset;
};

void expectRows( std::vector< Row > const & rows ) {
   for ( Row const & row : rows ) {
      SCOPED_TRACE( row.name );
      auto const packet = pkt( repeat( pduAt, 0xff ) + row.packet );
      EXPECT_EQ( ldpPduGuard( packet, pduAt ).input, row.input );
      EXPECT_EQ( ldpPduGuard( packet, pduAt ).offset, row.offset );
      switch ( row.input ) {
      case Result::none: parseAll( packet ); break;
      case Result::wrappedUnit: EXPECT_ASSERTION( parseAll( packet ), "header->totalLength() > 0" ); break;
      case Result::unboundedP2mpDump:
         EXPECT_EXIT( parseFor300ms( packet ), testing::KilledBySignal( SIGALRM ), "" );
      }
   }
}

Hex pduOf( std::initializer_list< Hex > msgs ) { return pdu( "10.0.0.1", 0, msgs ); }

Hex const keepAlive = msg( LdpKeepAlive, 1 );
Hex const wrapped = "0103 fffc"; // a unit with a length of 65532
Hex const label = tlv( genLabelTlv, "00000064" );
Hex const reqId = tlv( labelReqMsgIdTlv, "00000001" );

TEST( PduGuard, saysWhatToAnswer ) {
   EXPECT_EQ( Result{}.statusCode(), success );
   EXPECT_EQ( Result{}.reason(), "" );
   EXPECT_EQ( ( Result{ Result::wrappedUnit, 10 } ).statusCode(), badTlvLength );
   EXPECT_EQ( ( Result{ Result::wrappedUnit, 10 } ).reason(), "Msg/Tlv length field of 65532, offset: 10" );
   EXPECT_EQ( ( Result{ Result::unboundedP2mpDump, 22 } ).statusCode(), internalError );
   EXPECT_EQ( ( Result{ Result::unboundedP2mpDump, 22 } ).reason(),
              "FEC P2MP Element with 256 octets or more of its FEC TLV, offset: 22" );
}

TEST( PduGuard, wrappedUnits ) {
   auto const hello = []( std::initializer_list< Hex > tlvs ) { return msg( LdpHello, 1, tlvs ); };
   Hex const good = tlv( hopCountTlv, "01" );
   expectRows( {
        { "nothing of the kind", pduOf( { keepAlive, keepAlive } ), Result::none, 0 },
        { "as a message", pduOf( { "0100 fffc 00000001" } ), Result::wrappedUnit, msgAt },
        { "as the second message", pduOf( { keepAlive, "0100 fffc" } ), Result::wrappedUnit, msgAt + 8 },
        { "as the only message of the shortest PDU", pduLen( 10, "10.0.0.1", 0, { "0100 fffc", "00000000" } ),
          Result::wrappedUnit, msgAt },
        { "as a message of an unknown type", pduOf( { "7fff fffc 00000001" } ), Result::wrappedUnit, msgAt },
        { "as a TLV", pduOf( { hello( { wrapped } ) } ), Result::wrappedUnit, tlvAt },
        { "as the second TLV", pduOf( { hello( { good, wrapped } ) } ), Result::wrappedUnit, tlvAt + 5 },
        { "in the second message", pduOf( { keepAlive, hello( { wrapped } ) } ), Result::wrappedUnit,
          tlvAt + 8 },
        { "in a KeepAlive", pduOf( { msg( LdpKeepAlive, 1, { wrapped } ) } ), Result::wrappedUnit, tlvAt },
        { "in a Capability message", pduOf( { msg( LdpCapability, 1, { wrapped } ) } ), Result::wrappedUnit,
          tlvAt },
        { "behind an unknown TLV", pduOf( { hello( { tlv( 258 ), wrapped } ) } ), Result::wrappedUnit,
          tlvAt + 4 },
        { "as a TLV to be ignored", pduOf( { hello( { "ffff fffc" } ) } ), Result::wrappedUnit, tlvAt },

        { "in a message of an unknown type", pduOf( { msg( 0x3000, 1, { wrapped } ) } ), Result::none, 0 },
        { "in one to be ignored", pduOf( { msg( uBit | 0x3000, 1, { wrapped } ) } ), Result::none, 0 },
        { "in a message that is too long",
          pduOf( { msg( LdpHello, 1, { wrapped, tlv( retPduTlv, repeat( 4081, 0 ) ) } ) } ), Result::none,
          0 },
        { "in a message at its longest",
          pduOf( { msg( LdpHello, 1, { wrapped, tlv( retPduTlv, repeat( 4080, 0 ) ) } ) } ),
          Result::wrappedUnit, tlvAt },
        { "behind a TLV past its message", pduOf( { hello( { tlvLen( hopCountTlv, 9 ), wrapped } ) } ),
          Result::none, 0 },
        { "behind a message past its PDU", pduOf( { tlvLen( LdpHello, 13 ), wrapped } ), Result::none, 0 },
        { "within a TLV's value", pduOf( { hello( { tlv( retPduTlv, wrapped ) } ) } ), Result::none, 0 },
        { "in a message of a PDU whose framing is bad", pduOf( { hello( { wrapped } ), "00" } ), Result::none,
          0 },
        { "in a PDU past the packet", pduLen( 99, "10.0.0.1", 0, { "0100 fffc 00000001" } ), Result::none,
          0 },
        { "in a PDU of another version", pdu( "10.0.0.1", 0, { "0100 fffc 00000001" }, 2 ), Result::none, 0 },
        { "in a PDU that is too short", pduLen( 9, "10.0.0.1", 0, { "0100 fffc 00000001" } ), Result::none,
          0 },
        { "as the length of the PDU", pduLen( 65532, "10.0.0.1", 0, { keepAlive } ), Result::none, 0 },
        { "behind the PDU", pduOf( { keepAlive } ) + wrapped, Result::none, 0 },
        { "17 octets", first( 17, pduOf( { "0100 fffc 00000001" } ) ), Result::none, 0 },
        { "no octet", "", Result::none, 0 },
   } );
}

TEST( PduGuard, headersCompletedBehindTheirRun ) {
   Hex const cut1 = msg( LdpHello, 1, { "01" } );
   Hex const cut2 = msg( LdpHello, 1, { "0103" } );
   Hex const cut3 = msg( LdpHello, 1, { "0103ff" } );
   expectRows( {
        { "of a message, by octets behind the PDU",
          pduLen( 15, "10.0.0.1", 0, { keepAlive, "01" } ) + "03fffc", Result::wrappedUnit, msgAt + 8 },
        { "not by too few of them", pduLen( 15, "10.0.0.1", 0, { keepAlive, "01" } ) + "03ff", Result::none,
          0 },
        { "of a TLV, by the next message: 2 octets", pduOf( { cut2, msg( 0xfffc, 1 ) } ), Result::wrappedUnit,
          tlvAt },
        { "of a TLV, by the next message: 1 octet", pduOf( { cut3, msg( 0xfc00, 1 ) } ), Result::wrappedUnit,
          tlvAt },
        { "of a TLV, by octets behind the PDU", pduOf( { cut1 } ) + "03fffc", Result::wrappedUnit, tlvAt },
        { "of a TLV, not by too few of them", pduOf( { cut1 } ) + "03ff", Result::none, 0 },
        { "of a TLV, by a next message of another type", pduOf( { cut2, keepAlive } ), Result::none, 0 },
   } );
}

TEST( PduGuard, lengthsThatWrapToMore ) {
   for ( U32 const length : { 65533u, 65534u, 65535u } ) {
      SCOPED_TRACE( length );
      expectRows( {
           { "message", pduOf( { tlvLen( LdpHello, length ), "00000001" } ), Result::none, 0 },
           { "TLV", pduOf( { msg( LdpHello, 1, { tlvLen( commonHelloTlv, length ), "00" } ) } ), Result::none,
             0 },
      } );
   }
   // Total 3; then ff01 03ff, past the run. And total 3, then a unit of 65532.
   expectRows( {
        { "next header 3 octets on", pduOf( { msg( LdpHello, 1, { "0400 ffff 0103 fffc" } ) } ), Result::none,
          0 },
        { "a wrapped one there", pduOf( { msg( LdpHello, 1, { "0400 ffff 01fffc" } ) } ), Result::wrappedUnit,
          tlvAt + 3 },
   } );
}

/// A FEC TLV with a P2MP element of that many octets.
Hex p2mp( U32 octets ) {
   return tlv( fecTlv, "06 0001 04 0a000001" + u16( octets - 10 ) + repeat( octets - 10, 0 ) );
}

TEST( PduGuard, p2mpDumps ) {
   auto const mapping = []( std::initializer_list< Hex > tlvs ) {
      return pduOf( { msg( LdpLabelMapping, 1, tlvs ) } );
   };
   constexpr U32 at = tlvAt + 4; // the element's type octet
   std::vector< Row > rows{
      { "prefix of 256 octets and more", mapping( { tlv( fecTlv, "02 0001 00" + repeat( 300, 1 ) ), label } ),
        Result::none, 0 },
      { "P2MP as the second element",
        mapping( { tlv( fecTlv, "02 0001 08 0a 06 0001" + repeat( 300, 0 ) ), label } ), Result::none, 0 },
      { "garbage behind the type", mapping( { tlv( fecTlv, "06" + repeat( 255, 0xff ) ), label } ),
        Result::unboundedP2mpDump, at },
      { "too few TLVs for a Mapping", mapping( { p2mp( 256 ) } ), Result::none, 0 },
      { "FEC second", mapping( { label, p2mp( 256 ) } ), Result::none, 0 },
      { "FEC first and second", mapping( { tlv( fecTlv, "05" ), p2mp( 256 ) } ), Result::none, 0 },
      { "a bad TLV behind it is too late", mapping( { p2mp( 256 ), tlv( genLabelTlv ) } ),
        Result::unboundedP2mpDump, at },
      { "an unknown TLV behind it is not", mapping( { p2mp( 256 ), label, tlv( 258 ) } ), Result::none, 0 },
      { "an unknown TLV to be ignored is", mapping( { p2mp( 256 ), label, tlv( uBit | 258 ) } ),
        Result::unboundedP2mpDump, at },
      { "bad framing behind it is not", mapping( { p2mp( 256 ), label, "00" } ), Result::none, 0 },
      { "too few TLVs for an Abort", pduOf( { msg( LdpLabelAbortReq, 1, { p2mp( 256 ) } ) } ), Result::none,
        0 },
      { "flag bits play no part",
        pduOf(
             { msg( uBit | LdpLabelRequest, 1, { tlv( uBit | fBit | fecTlv, "06" + repeat( 255, 0 ) ) } ) } ),
        Result::unboundedP2mpDump, at },
      { "longest message", pduOf( { msg( LdpLabelRequest, 1, { p2mp( 4084 ) } ) } ),
        Result::unboundedP2mpDump, at },
      { "message too long", pduOf( { msg( LdpLabelRequest, 1, { p2mp( 4085 ) } ) } ), Result::none, 0 },
   };
   struct Message {
      LdpMsgType type;
      Hex rest;
      bool parsesFec;
   };
   for ( Message const & message : { Message{ LdpLabelMapping, label, true },
                                     { LdpLabelRequest, "", true },
                                     { LdpLabelWithdraw, "", true },
                                     { LdpLabelRelease, "", true },
                                     { LdpLabelAbortReq, reqId, true },
                                     { LdpHello, "", false },
                                     { LdpInit, "", false },
                                     { LdpKeepAlive, "", false },
                                     { LdpCapability, "", false },
                                     { LdpAddress, "", false },
                                     { LdpAddressWithdraw, "", false },
                                     { LdpNotification, "", false } } ) {
      rows.push_back( { "255 octets", pduOf( { msg( message.type, 1, { p2mp( 255 ), message.rest } ) } ),
                        Result::none, 0 } );
      rows.push_back( { "256 octets", pduOf( { msg( message.type, 1, { p2mp( 256 ), message.rest } ) } ),
                        message.parsesFec ? Result::unboundedP2mpDump : Result::none,
                        message.parsesFec ? at : 0 } );
   }
   expectRows( rows );
}

TEST( PduGuard, p2mpInANotification ) {
   auto const of = []( std::initializer_list< Hex > tlvs ) {
      return pduOf( { msg( LdpNotification, 1, tlvs ) } );
   };
   auto const status = []( char const * word ) { return tlv( statusTlv, Hex( word ) + "00000000 0000" ); };
   Hex const pw = status( "c0000028" );
   Hex const pwStatusOk = tlv( pwStatusTlv, "00000001" );
   constexpr U32 at = tlvAt + 14 + 8 + 4;
   expectRows( {
        { "pseudowire status", of( { pw, pwStatusOk, p2mp( 256 ) } ), Result::unboundedP2mpDump, at },
        { "further TLVs", of( { pw, pwStatusOk, p2mp( 256 ), label } ), Result::unboundedP2mpDump, at },
        { "255 octets", of( { pw, pwStatusOk, p2mp( 255 ) } ), Result::none, 0 },
        { "another status", of( { status( "0000000a" ), pwStatusOk, p2mp( 256 ) } ), Result::none, 0 },
        { "a status with another of the 30 bits", of( { status( "20000028" ), pwStatusOk, p2mp( 256 ) } ),
          Result::none, 0 },
        { "status of 11", of( { tlv( statusTlv, "00000028 00000000 0000 00" ), pwStatusOk, p2mp( 256 ) } ),
          Result::none, 0 },
        { "status second", of( { pwStatusOk, pw, p2mp( 256 ) } ), Result::none, 0 },
        { "FEC second", of( { pw, p2mp( 256 ), pwStatusOk } ), Result::none, 0 },
        { "second of two", of( { pw, p2mp( 256 ) } ), Result::none, 0 },
        { "PW status of 5", of( { pw, tlv( pwStatusTlv, "0000000100" ), p2mp( 256 ) } ), Result::none, 0 },
        { "FEC fourth", of( { pw, pwStatusOk, label, p2mp( 256 ) } ), Result::none, 0 },
        { "an unknown TLV behind it", of( { pw, pwStatusOk, p2mp( 256 ), tlv( 258 ) } ), Result::none, 0 },
   } );
}

TEST( PduGuard, theFirstThatWouldBeMet ) {
   Hex const dump = msg( LdpLabelRequest, 1, { p2mp( 256 ) } ); // 268 octets
   expectRows( {
        { "two dumps", pduOf( { dump, dump } ), Result::unboundedP2mpDump, tlvAt + 4 },
        { "a dump behind good messages", pduOf( { keepAlive, keepAlive, dump } ), Result::unboundedP2mpDump,
          tlvAt + 20 },
        { "messages are framed before any is parsed", pduOf( { dump, "0100 fffc" } ), Result::wrappedUnit,
          msgAt + 268 },
        { "a TLV in the message behind a dump", pduOf( { dump, msg( LdpHello, 1, { wrapped } ) } ),
          Result::unboundedP2mpDump, tlvAt + 4 },
        { "a dump behind a TLV", pduOf( { msg( LdpHello, 1, { wrapped } ), dump } ), Result::wrappedUnit,
          tlvAt },
        { "within a message, framing comes first",
          pduOf( { msg( LdpLabelRequest, 1, { p2mp( 256 ), wrapped } ) } ), Result::wrappedUnit,
          tlvAt + 260 },
        { "a refused message in between", pduOf( { msg( 0x3000, 1, { wrapped } ), dump } ),
          Result::unboundedP2mpDump, tlvAt + 16 },
   } );
}

TEST( PduGuard, assertsItsArguments ) {
   EXPECT_ASSERTION( ldpPduGuard( nullptr, 0 ), "pkt" );
   EXPECT_ASSERTION( ldpPduGuard( pkt( "00" ), 2 ), "pkt->frontBytes() >= offset" );
   EXPECT_FALSE( ldpPduGuard( pkt( "00" ), 1 ) );
}

} // namespace
