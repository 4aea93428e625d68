// Every length field of every kind of message and TLV, and every truncation: what lies at the edges is judged
// as it should be, nothing is read that is not there, and the guard says beforehand what ends the process.
#include "Expect.h"

#include "FatalOracle.h"
#include "ReadAll.h"

#include "Ldp/LdpUtils.h"

#include <cstdlib>
#include <unistd.h>

using namespace Ldp;
using namespace Wire;

namespace {

/// What the message says of a TLV when its value is cut or filled up to that length.
struct LengthRow {
   U32 length;
   LdpStatusCode status;
   std::string reason;
};
using Rows = std::vector< LengthRow >;

struct GoodTlv {
   U32 type;
   Hex value;
   Rows rows;
};

struct GoodMsg {
   char const * name;
   LdpMsgType type;
   std::vector< GoodTlv > tlvs;

   /// The message with the TLVs' values as `resized` has them, by index.
   Hex hex( std::size_t index = ~std::size_t( 0 ), U32 length = 0 ) const {
      Hex all;
      for ( std::size_t i = 0; i < tlvs.size(); ++i ) {
         all += tlv( tlvs[i].type, i == index ? first( length, tlvs[i].value ) : tlvs[i].value );
      }
      return msg( type, 7, { all } );
   }
   /// Offset of the TLV at that index from the message's first octet.
   U32 tlvAt( std::size_t index ) const {
      U32 at = LdpMsgHdr::ldpMsgHdrSize;
      for ( std::size_t i = 0; i < index; ++i ) {
         at += U32( sizeof( LdpTlvHdr ) + octetNum( tlvs[i].value ) );
      }
      return at;
   }
};

Rows all( std::initializer_list< U32 > lengths, LdpStatusCode status, std::string const & reason ) {
   Rows rows;
   for ( U32 const length : lengths ) {
      rows.push_back( { length, status, reason } );
   }
   return rows;
}

/// Lengths around the one that is allowed.
Rows fixed( U32 length, LdpStatusCode status, std::string const & reason ) {
   return length == 1 ? all( { 0, 2 }, status, reason )
                      : all( { 0, 1, length - 1, length + 1 }, status, reason );
}

GoodTlv capability( LdpTlvType type, bool onlyOneOctet ) {
   std::string const wrong = ( valueToStrep( type ) + " TLV is not the right size" ).charPtr();
   GoodTlv tlv{ type | uBit, "80", { { 0, malformedTlv, wrong } } };
   if ( onlyOneOctet ) {
      tlv.rows.push_back( { 2, malformedTlv, wrong } );
   } else {
      tlv.rows.push_back( { 2, success, "" } );
   }
   return tlv;
}

std::vector< GoodTlv > capabilities() {
   std::vector< GoodTlv > tlvs;
   for ( LdpTlvType const type :
         { dynamicCapabilityTlv, upstreamLabelAssignmentCapabilityTlv, p2mpCapabilityTlv, mp2mpCapabilityTlv,
           mbbCapabilityTlv, typedWildcardFecCapabilityTlv, mrtCapabilityTlv,
           unrecognizedNotificationCapabilityTlv } ) {
      tlvs.push_back( capability( type, true ) );
   }
   for ( LdpTlvType const type : { multiTopologyCapabilityTlv, stateAdvertisementControlCapabilityTlv,
                                   targetedApplicationCapabilityTlv } ) {
      tlvs.push_back( capability( type, false ) );
   }
   return tlvs;
}

Hex const prefix = "02 0001 18 0a0102";
Hex const host = "03 0001 04 0a010203";
Hex const pwId = "80 8005 1b 00000001 00000064" // behind the PW ID 23 octets of interface parameters
                 "01 04 05dc  03 05 616263  06 04 000a  09 04 0001  0c 04 0302  42 02";

GoodTlv prefixFec() {
   return { fecTlv,
            prefix,
            { { 0, success, "" },
              { 1, malformedTlv, "Invalid FEC Prefix Element: TLV value is too small" },
              { 6, malformedTlv, "Invalid FEC Prefix Element: prefix bits: 24, remaining packet octets: 6" },
              { 8, unknownFec, "Unhandled FEC TLV Element type 0x00" } } };
}

GoodTlv pwFec( LengthRow const & empty ) {
   return { fecTlv,
            pwId,
            { empty,
              { 1, malformedTlv, "Invalid FEC PW ID Element: TLV is too small" },
              { 34, malformedTlv, "Invalid FEC PW ID Element: TLV value is too small" },
              { 36, unknownFec, "Unhandled FEC TLV Element type 0x00" } } };
}

GoodTlv addressList( Hex const & value ) {
   auto const exact = U32( octetNum( value ) );
   Rows rows = all( { 0, 1 }, unsupportedAddressFamily, "unsupportedAddressFamily" );
   for ( LengthRow const & row : all( { 2, exact - 1, exact + 1 }, malformedTlv, "malformedTlv" ) ) {
      rows.push_back( row );
   }
   return { addrListTlv, value, rows };
}

GoodTlv label() {
   return { genLabelTlv, "00000064", fixed( 4, malformedTlv, "Invalid size for LdpGenLabelTlv" ) };
}
GoodTlv hopCount() {
   return { hopCountTlv, "05", fixed( 1, malformedTlv, "Invalid size for LdpHopCountTlv" ) };
}
GoodTlv reqMsgId() {
   return { labelReqMsgIdTlv, "00000005", fixed( 4, malformedTlv, "Invalid size for LdpLabelReqMsgIdTlv" ) };
}
GoodTlv pathVector() {
   Rows rows = all( { 1, 7, 9 }, badTlvLength, "LdpPathVectorTlv validation failure" );
   rows.push_back( { 0, malformedTlv, "Invalid size for LdpPathVectorTlv" } );
   return { pathVectorTlv, "0a000001 0a000002", rows };
}
GoodTlv status( Hex const & data, char const * wrong ) {
   return { statusTlv, data + "00000000 0000", fixed( 10, malformedTlv, wrong ) };
}
Hex const plainStatus = "0000000a", pwStatusOfStatus = "00000028";

std::vector< GoodMsg > const & goodMsgs() {
   static std::vector< GoodMsg > const msgs = [] {
      char const * const badStatusSize = "Status TLV is not the right size";
      char const * const badStatus = "Invalid size for LdpStatusTlv";
      GoodTlv const hello{ commonHelloTlv, "000f c000",
                           fixed( 4, malformedTlv, "Invalid size for LdpCommonHelloTlv" ) };
      Rows ft;
      for ( U32 const length : { 0u, 1u, 11u, 13u } ) {
         ft.push_back( { length, malformedTlv,
                         "LdpFtSession TLV is not the right size (" + std::to_string( length + 4 ) + ")" } );
      }
      std::vector< GoodTlv > init{
         { commonSessionParamTlv, "0001 00b4 c0 20 1000 0a0000020000",
           fixed( 14, malformedTlv, "LdpCommonSessionParamTlv TLV is not the right size" ) },
         { ftSessionTlv, "8001 0000 00007530 0000ea60", ft },
      };
      for ( GoodTlv const & tlv : capabilities() ) {
         init.push_back( tlv );
      }
      return std::vector< GoodMsg >{
         { "Notification", LdpNotification, { status( plainStatus, badStatusSize ) } },
         { "Notification of a pseudowire's status",
           LdpNotification,
           { status( pwStatusOfStatus, badStatusSize ),
             { pwStatusTlv, "0000001f", fixed( 4, badTlvLength, "LdpPwStatusTlv validation failure" ) },
             pwFec( { 0, missingMessageParams, "PW FEC TLV has no FEC elements" } ) } },
         { "Hello, IPv4",
           LdpHello,
           { hello,
             { ipv4TransportAddrTlv, "0a000001",
               fixed( 4, malformedTlv, "Invalid size for LdpIpTransportAddrTlv" ) },
             { configSeqNumTlv, "00000001",
               fixed( 4, malformedTlv, "Invalid size for LdpConfigSeqNumTlv" ) } } },
         { "Hello, IPv6",
           LdpHello,
           { hello,
             { ipv6TransportAddrTlv, "20010db8" + repeat( 12, 1 ),
               fixed( 16, malformedTlv, "Invalid size for LdpIp6TransportAddrTlv" ) } } },
         { "Initialization", LdpInit, init },
         { "KeepAlive", LdpKeepAlive, {} },
         { "Capability", LdpCapability, capabilities() },
         { "Address, IPv4", LdpAddress, { addressList( "0001 0a000001 0a000002" ) } },
         { "Address, IPv6", LdpAddress, { addressList( "0002 20010db8" + repeat( 12, 1 ) ) } },
         { "Address Withdraw", LdpAddressWithdraw, { addressList( "0001 0a000001" ) } },
         { "Label Mapping",
           LdpLabelMapping,
           { prefixFec(),
             label(),
             reqMsgId(),
             hopCount(),
             pathVector(),
             { pwStatusTlv, "00000000", fixed( 4, malformedTlv, "Invalid size for LdpPwStatusTlv" ) } } },
         { "Label Mapping of a pseudowire", LdpLabelMapping, { pwFec( { 0, success, "" } ), label() } },
         { "Label Request", LdpLabelRequest, { prefixFec(), hopCount(), pathVector() } },
         { "Label Withdraw",
           LdpLabelWithdraw,
           { { fecTlv,
               "01",
               { { 0, success, "" },
                 { 2, malformedTlv,
                   "FEC TLV Wildcard Element must be the only FEC Element in the FEC TLV" } } },
             label(),
             status( plainStatus, badStatus ) } },
         { "Label Release", // of a refused FEC, too
           LdpLabelRelease,
           { { fecTlv, host, all( { 0, 1, 7, 9 }, success, "" ) },
             label(),
             status( plainStatus, badStatus ) } },
         { "Label Abort Request", LdpLabelAbortReq, { prefixFec(), reqMsgId() } },
      };
   }();
   return msgs;
}

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
   for ( GoodMsg const & good : goodMsgs() ) {
      SCOPED_TRACE( good.name );
      auto const packet = msgPkt( good.hex() );
      auto const parser = parseMsg( good.type, packet, msgOffset );
      EXPECT_EQ( parser->statusCode(), success ) << parser->reason();
      EXPECT_EQ( parser->type(), good.type );
      EXPECT_EQ( parser->tlvNum(), good.tlvs.size() );
      readMsg( *parser );
      EXPECT_FALSE( readBehindGuard( pduOf( good.hex() ) ) );
      EXPECT_TRUE( firstMsgIsGood( good.type, pduOf( good.hex() ) ) );
   }
}

TEST( Lengths, TlvValueOfOtherLength ) {
   for ( GoodMsg const & good : goodMsgs() ) {
      for ( std::size_t i = 0; i < good.tlvs.size(); ++i ) {
         for ( LengthRow const & row : good.tlvs[i].rows ) {
            SCOPED_TRACE( std::string( good.name ) + ", TLV " + std::to_string( i ) + " of length " +
                          std::to_string( row.length ) );
            auto const parser = parseMsg( good.type, msgPkt( good.hex( i, row.length ) ), msgOffset );
            EXPECT_EQ( parser->statusCode(), row.status );
            bool const goodInit = good.type == LdpInit && row.status == success;
            EXPECT_EQ( parser->reason(), goodInit ? "success" : row.reason.c_str() );
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
         SCOPED_TRACE( std::string( good.name ) + " of length " + std::to_string( length ) );
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
         SCOPED_TRACE( std::string( good.name ) + " of length " + std::to_string( length ) );
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
         auto const exact = U32( octetNum( good.tlvs[i].value ) );
         for ( U32 const length : { 0u, 1u, exact - 1, exact + 1, 65531u, 65533u, 65534u, 65535u } ) {
            if ( length == exact || length > 65535 ) continue;
            SCOPED_TRACE( std::string( good.name ) + ", TLV " + std::to_string( i ) + " of length " +
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
         SCOPED_TRACE( std::string( good.name ) + ", TLV " + std::to_string( i ) );
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
         SCOPED_TRACE( std::string( good.name ) + ", octets left: " + std::to_string( size - msgOffset ) );
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
         SCOPED_TRACE( std::string( good.name ) + ", octets left: " + std::to_string( size ) );
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
