// Every length field of every kind of message and TLV, and every truncation: what lies at the edges is judged
// as it should be, nothing is read that is not there, and the guard says beforehand what ends the process.
#include "Expect.h"
#include "Table.h"

#include "support/FatalOracle.h"
#include "support/ReadAll.h"

#include "Ldp/LdpUtils.h"

#include <cstdlib>
#include <fstream>
#include <unistd.h>

using namespace Ldp;
using namespace Wire;

namespace {

/// What the message says of a TLV when its value is cut or filled up to that length.
struct LengthRow {
   U32 length;
   Verdict verdict;
};

struct GoodTlv {
   Tlv tlv;
   std::vector< LengthRow > rows;
};

struct GoodMsg {
   std::string name;
   LdpMsgType type;
   std::vector< GoodTlv > tlvs;

   /// The message with the TLV at `index`, if any, of another length.
   Hex hex( std::size_t index = ~std::size_t( 0 ), U32 length = 0 ) const {
      Hex all;
      for ( std::size_t i = 0; i < tlvs.size(); ++i ) {
         Tlv const & own = tlvs[i].tlv;
         all += tlv( own.type, i == index ? first( length, own.value ) : own.value );
      }
      return msg( type, 7, { all } );
   }
   /// Offset of the TLV at that index from the message's first octet.
   U32 tlvAt( std::size_t index ) const {
      U32 at = LdpMsgHdr::ldpMsgHdrSize;
      for ( std::size_t i = 0; i < index; ++i ) {
         at += U32( sizeof( LdpTlvHdr ) + octetNum( tlvs[i].tlv.value ) );
      }
      return at;
   }
};

/// Those of lengths.txt.
std::vector< GoodMsg > const & goodMsgs() {
   static std::vector< GoodMsg > const read = [] {
      std::vector< GoodMsg > msgs;
      std::ifstream lines( LDP_TEST_EXPECTED "/../lengths.txt" );
      for ( std::string line; std::getline( lines, line ); ) {
         if ( line.empty() || line[0] == '#' ) continue;
         Row const row( line );
         if ( !line.starts_with( ' ' ) ) {
            msgs.push_back( { row.name, {}, {} } );
            Vorn::strepToValue( row.octets.c_str(), &msgs.back().type );
         } else if ( line.find( '|' ) == std::string::npos ) {
            msgs.back().tlvs.push_back( { tlvOf( row.name ), {} } );
         } else {
            std::istringstream lengths( row.name );
            for ( U32 length; lengths >> length; )
               msgs.back().tlvs.back().rows.push_back( { length, Verdict( row.octets ) } );
         }
      }
      return msgs;
   }();
   return read;
}

Hex const pwStatusOfStatus = "00000028";

Vorn::Ptr< LdpMsgParser > parseMsg( LdpMsgType type, Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   if ( type == LdpCapability ) return ldpCapabilityMsgParserFactory( pkt, offset );
   return ldpMsgParserGet( pkt, offset );
}

/// Octets of a PDU's header in front of its first message.
constexpr U32 pduHdr = sizeof( LdpPduHdr );

/// Guard and oracle agree on the PDU at the packet's front, and if it can be parsed, all of it can be read.
LdpPduGuardResult readBehindGuard( Octets const & octets ) {
   auto const packet = pkt( octets );
   LdpPduGuardResult const guard = ldpPduGuard( packet, 0 );
   auto const fatal = Fuzz::fatalInputs( octets, 0 );
   EXPECT_EQ( bool( guard ), !fatal.empty() );
   if ( guard && !fatal.empty() ) {
      EXPECT_EQ( guard.offset, fatal.front().offset );
      EXPECT_EQ( guard.input == LdpPduGuardResult::wrappedUnit,
                 fatal.front().input == Fuzz::Fatal::wrappedUnit );
   }
   if ( !guard ) {
      Fuzz::Sink sink;
      Fuzz::readPdu( sink, packet, 0 );
   }
   return guard;
}

void readMsg( LdpMsgParser const & parser ) {
   Fuzz::Sink sink;
   Fuzz::readMessage( sink, parser );
}

Octets pduOf( Hex const & message ) { return octets( pdu( "10.0.0.1", 0, { message } ) ); }

void lengthIs( Octets & packet, U32 unit, U32 length ) {
   packet[unit + 2] = U8( length >> 8 );
   packet[unit + 3] = U8( length );
}

/// Parses the PDU and its first message, as far as it comes.
bool firstMsgIsGood( LdpMsgType type, Octets const & octets ) {
   auto const packet = pkt( octets );
   auto const parser = ldpPduParserFactory( packet, 0 );
   return parser->validLdpPdu() && parseMsg( type, packet, parser->messageOffset( 0 ) )->validMsg();
}

} // namespace

TEST( Lengths, GoodMessagesAreGood ) {
   ASSERT_EQ( goodMsgs().size(), 16u );
   for ( GoodMsg const & good : goodMsgs() ) {
      SCOPED_TRACE( good.name );
      auto const packet = msgPkt( good.hex() );
      auto const parser = parseMsg( good.type, packet, msgOffset );
      EXPECT_EQ( parser->statusCode(), success ) << parser->reason();
      EXPECT_EQ( parser->type(), good.type );
      EXPECT_EQ( parser->tlvNum(), good.tlvs.size() );
      // Of a Capability the dispatch leaves the typed one to its user.
      bool const plain = good.type == LdpKeepAlive || good.type == LdpCapability;
      auto const & type = *ldpMsgParserGet( packet, msgOffset )->fwkType();
      EXPECT_EQ( type.name,
                 "Ldp::" + ( plain ? "LdpMsg" : Hex( valueToStrep( good.type ).charPtr() ) + "Msg" ) +
                      "Parser" );
      EXPECT_TRUE( type.isDerived( &LdpMsgParser::_vornType ) );
      readMsg( *parser );
      EXPECT_FALSE( readBehindGuard( pduOf( good.hex() ) ) );
      EXPECT_TRUE( firstMsgIsGood( good.type, pduOf( good.hex() ) ) );
   }
}

TEST( Lengths, TlvValueOfOtherLength ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      for ( std::size_t i = 0; i < good.tlvs.size(); ++i ) {
         for ( LengthRow const & row : good.tlvs[i].rows ) {
            SCOPED_TRACE( good.name + ", TLV " + std::to_string( i ) + " of length " +
                          std::to_string( row.length ) );
            auto const parser = parseMsg( good.type, msgPkt( good.hex( i, row.length ) ), msgOffset );
            EXPECT_EQ( parser->statusCode(), row.verdict.status );
            bool const goodInit = good.type == LdpInit && row.verdict.status == success;
            EXPECT_EQ( parser->reason(), goodInit ? "success" : row.verdict.reason.c_str() );
            readMsg( *parser );
            EXPECT_FALSE( readBehindGuard( pduOf( good.hex( i, row.length ) ) ) );
         }
      }
   }
}

TEST( Lengths, MessageLengthAlone ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      auto const exact = U32( octetNum( good.hex() ) ) - 4;
      for ( U32 const length : { 0u, 1u, exact - 1, exact + 1, 65531u, 65532u, 65533u, 65534u, 65535u } ) {
         SCOPED_TRACE( good.name + " of length " + std::to_string( length ) );
         Octets packet = octets( repeat( msgOffset, 0xff ) + good.hex() );
         lengthIs( packet, msgOffset, length );
         auto const parser = parseMsg( good.type, pkt( packet ), msgOffset );
         U16 const total = U16( length + 4 );
         Vorn::String reason = "Msg/Tlv is corrupted/truncated"; // the last TLV ends behind the message
         if ( total < 8 ) {
            reason = Vorn::format( "MSG length field too small, length = %d", total );
         } else if ( total > 4096 ) {
            reason = Vorn::format( "MSG length field too big, length = %d", total );
         } else if ( length > exact ) {
            reason = Vorn::format( "Packet is too small, size: %zd", ssize_t( packet.size() ) );
         }
         EXPECT_EQ( parser->reason(), reason );
         EXPECT_EQ( parser->statusCode(), total < 8 || total > 4096 ? malformedTlv : badTlvLength );
         readMsg( *parser );
      }
   }
}

TEST( Lengths, MessageLengthInPdu ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      auto const exact = U32( octetNum( good.hex() ) ) - 4;
      for ( U32 const length : { 0u, 1u, exact - 1, exact + 1, 65531u, 65533u, 65534u, 65535u } ) {
         SCOPED_TRACE( good.name + " of length " + std::to_string( length ) );
         Octets packet = pduOf( good.hex() );
         lengthIs( packet, pduHdr, length );
         EXPECT_FALSE( readBehindGuard( packet ) );
         EXPECT_FALSE( firstMsgIsGood( good.type, packet ) );
      }
   }
}

TEST( Lengths, TlvLengthInMessage ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      for ( std::size_t i = 0; i < good.tlvs.size(); ++i ) {
         auto const exact = U32( octetNum( good.tlvs[i].tlv.value ) );
         for ( U32 const length : { 0u, 1u, exact - 1, exact + 1, 65531u, 65533u, 65534u, 65535u } ) {
            if ( length == exact || length > 65535 ) continue;
            SCOPED_TRACE( good.name + ", TLV " + std::to_string( i ) + " of length " +
                          std::to_string( length ) );
            Octets packet = pduOf( good.hex() );
            lengthIs( packet, pduHdr + good.tlvAt( i ), length );
            EXPECT_FALSE( readBehindGuard( packet ) );
            EXPECT_FALSE( firstMsgIsGood( good.type, packet ) );
         }
      }
   }
}

TEST( LengthsDeathTest, WrappedMessage ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      SCOPED_TRACE( good.name );
      Octets packet = pduOf( good.hex() );
      lengthIs( packet, pduHdr, 65532 );
      EXPECT_EQ( readBehindGuard( packet ), ( LdpPduGuardResult{ LdpPduGuardResult::wrappedUnit, pduHdr } ) );
      EXPECT_ASSERTION( ldpPduParserFactory( pkt( packet ), 0 ), "header->totalLength() > 0" );
   }
}

TEST( LengthsDeathTest, WrappedTlv ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      for ( std::size_t i = 0; i < good.tlvs.size(); ++i ) {
         SCOPED_TRACE( good.name + ", TLV " + std::to_string( i ) );
         Octets packet = pduOf( good.hex() );
         U32 const at = pduHdr + good.tlvAt( i );
         lengthIs( packet, at, 65532 );
         EXPECT_EQ( readBehindGuard( packet ), ( LdpPduGuardResult{ LdpPduGuardResult::wrappedUnit, at } ) );
         EXPECT_ASSERTION( parseMsg( good.type, pkt( packet ), pduHdr ), "header->totalLength() > 0" );
      }
   }
}

TEST( LengthsDeathTest, P2mpElement ) {
   struct Row {
      char const * name;
      LdpMsgType type;
      Hex before, after;
   };
   Hex const pwStatusTlvs =
        tlv( statusTlv, pwStatusOfStatus + "00000000 0000" ) + tlv( pwStatusTlv, "0000001f" );
   for ( Row const & row : {
              Row{ "Notification", LdpNotification, pwStatusTlvs, "" },
              Row{ "Label Mapping", LdpLabelMapping, "", tlv( genLabelTlv, "00000064" ) },
              Row{ "Label Request", LdpLabelRequest, "", "" },
              Row{ "Label Withdraw", LdpLabelWithdraw, "", "" },
              Row{ "Label Release", LdpLabelRelease, "", "" },
              Row{ "Label Abort Request", LdpLabelAbortReq, "", tlv( labelReqMsgIdTlv, "00000005" ) },
         } ) {
      SCOPED_TRACE( row.name );
      auto const packetWith = [&row]( U32 octetsOfElement ) {
         U32 const opaque = octetsOfElement - 10;
         Hex const element = "06 0001 04 0a000001" + u16( opaque ) + repeat( opaque, 1 );
         return pduOf( msg( row.type, 7, { row.before, tlv( fecTlv, element ), row.after } ) );
      };
      EXPECT_FALSE( readBehindGuard( packetWith( 255 ) ) );
      Octets const packet = packetWith( 256 );
      U32 const at = pduHdr + LdpMsgHdr::ldpMsgHdrSize + U32( octetNum( row.before ) + sizeof( LdpTlvHdr ) );
      EXPECT_EQ( readBehindGuard( packet ),
                 ( LdpPduGuardResult{ LdpPduGuardResult::unboundedP2mpDump, at } ) );
      // It does not return: a parser that did would leave the process long before the alarm rings.
      auto const parse = [&packet] {
         ualarm( 300'000, 0 );
         ldpMsgParserGet( pkt( packet ), pduHdr );
         std::_Exit( 0 );
      };
      EXPECT_EXIT( parse(), ::testing::KilledBySignal( SIGALRM ), "" );
   }
}

TEST( Lengths, TruncatedMessageAlone ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      Octets const whole = octets( repeat( msgOffset, 0xff ) + good.hex() );
      for ( std::size_t size = msgOffset; size < whole.size(); ++size ) {
         SCOPED_TRACE( good.name + ", octets left: " + std::to_string( size - msgOffset ) );
         Octets packet( whole.begin(), whole.begin() + std::ptrdiff_t( size ) );
         auto const parser = parseMsg( good.type, pkt( packet ), msgOffset );
         bool const header = size >= msgOffset + LdpMsgHdr::ldpMsgHdrSize;
         EXPECT_EQ( parser->statusCode(), header ? badTlvLength : malformedTlv );
         EXPECT_EQ( parser->reason(),
                    Vorn::format( header ? "Packet is too small, size: %zd" : "MSG too small, size = %zd",
                                  ssize_t( size ) ) );
         readMsg( *parser );
         if ( !header ) continue;
         // The same with a length that fits: at a TLV's end it may be good, anywhere it must be readable.
         lengthIs( packet, msgOffset, U32( size - msgOffset - 4 ) );
         readMsg( *parseMsg( good.type, pkt( packet ), msgOffset ) );
      }
   }
}

TEST( Lengths, TruncatedPdu ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      Octets const whole = pduOf( good.hex() );
      for ( std::size_t size = 1; size < whole.size(); ++size ) {
         SCOPED_TRACE( good.name + ", octets left: " + std::to_string( size ) );
         Octets packet( whole.begin(), whole.begin() + std::ptrdiff_t( size ) );
         EXPECT_FALSE( readBehindGuard( packet ) );
         auto const parser = ldpPduParserFactory( pkt( packet ), 0 );
         EXPECT_EQ( parser->statusCode(), size < LdpPduParser::minBytes ? badPduLength : malformedTlv );
         if ( size < pduHdr + 4 ) continue;
         // With a PDU length that fits, the message's does not; with both, the PDU is good whatever the
         // message is.
         lengthIs( packet, 0, U32( size - 4 ) );
         EXPECT_FALSE( readBehindGuard( packet ) );
         EXPECT_FALSE( ldpPduParserFactory( pkt( packet ), 0 )->validLdpPdu() );
         lengthIs( packet, pduHdr, U32( size - pduHdr - 4 ) );
         EXPECT_FALSE( readBehindGuard( packet ) );
         EXPECT_EQ( ldpPduParserFactory( pkt( packet ), 0 )->validLdpPdu(), size >= LdpPduParser::minBytes );
      }
   }
}
