// Decoding copies nothing of the packet: it allocates the parsers, their offset maps and the FEC elements,
// and all of that goes with the parsers.

#include "Expect.h"

#include "Ldp/LdpPwGenMsgParser.h"
#include "Ldp/LdpUtils.h"

using namespace Ldp;
using namespace Wire;

namespace {

/// Objects of one type that came to life since this was made.
class Alive {
 public:
   explicit Alive( Vorn::AllocTrackTypeInfo const & track ) : track_( track ), before_( track.objects() ) {}
   U64 now() const { return track_.objects() - before_; }

 private:
   Vorn::AllocTrackTypeInfo const & track_;
   U64 before_;
};

TEST( Allocation, ofAMapping ) {
   Alive const packets( Lumo::Pkt::allocTrack() ), plain( LdpMsgParser::allocTrack() ),
        mappings( LdpLabelMappingMsgParser::allocTrack() ), groups( LdpTlvGroupParser::allocTrack() ),
        fecs( LdpFecTlvParser::allocTrack() ), prefixes( LdpFecTlvPrefixElement::allocTrack() ),
        hosts( LdpFecTlvHostAddrElement::allocTrack() );
   {
      auto const parser =
           ldpMsgParserGet( msgPkt( msg( LdpLabelMapping, 7,
                                         { tlv( fecTlv, "02 0001 08 0a 02 0001 10 0a01 03 0001 04 0a000001" ),
                                           tlv( genLabelTlv, "00000064" ), tlv( hopCountTlv, "05" ) } ) ),
                            msgOffset );
      ASSERT_TRUE( parser->validMsg() );
      EXPECT_EQ( packets.now(), 1u );
      EXPECT_EQ( plain.now(), 0u ); // replaced by the typed one
      EXPECT_EQ( mappings.now(), 1u );
      EXPECT_EQ( groups.now(), 1u );
      EXPECT_EQ( fecs.now(), 1u );
      EXPECT_EQ( prefixes.now(), 2u );
      EXPECT_EQ( hosts.now(), 1u );
      // The views lie in the packet.
      U8 const * const front = parser->pkt()->front();
      auto const * view = reinterpret_cast< U8 const * >( parser->msgFecTlv() );
      EXPECT_TRUE( view > front && view < front + parser->pkt()->frontBytes() );
   }
   EXPECT_EQ( packets.now(), 0u );
   EXPECT_EQ( mappings.now(), 0u );
   EXPECT_EQ( groups.now(), 0u );
   EXPECT_EQ( fecs.now(), 0u );
   EXPECT_EQ( prefixes.now(), 0u );
   EXPECT_EQ( hosts.now(), 0u );
}

TEST( Allocation, ofAPdu ) {
   Alive const packets( Lumo::Pkt::allocTrack() ), pdus( LdpPduParser::allocTrack() ),
        groups( LdpTlvGroupParser::allocTrack() ), hellos( LdpHelloMsgParser::allocTrack() ),
        plain( LdpMsgParser::allocTrack() );
   Hex const hello = msg( LdpHello, 7, { tlv( commonHelloTlv, "000f 0000" ) } );
   {
      auto const parser = ldpPduParserFactory( pkt( pdu( "10.0.0.1", 0, { hello, hello, hello } ) ), 0 );
      EXPECT_EQ( parser->messageNum(), 3u );
      EXPECT_EQ( pdus.now(), 1u );
      EXPECT_EQ( groups.now(), 1u );
      EXPECT_EQ( hellos.now(), 0u ); // messages are found, not decoded
      parser->stringValue();
      EXPECT_EQ( groups.now(), 1u ); // decoded for the purpose and gone
      EXPECT_EQ( hellos.now(), 0u );
      EXPECT_EQ( plain.now(), 0u );
   }
   EXPECT_EQ( packets.now(), 0u );
   EXPECT_EQ( pdus.now(), 0u );
   EXPECT_EQ( groups.now(), 0u );
}

TEST( Allocation, refusedElementIsDropped ) {
   Alive const pw( LdpFecTlvPwIdElement::allocTrack() ), p2mp( LdpFecTlvP2mpElement::allocTrack() ),
        fecs( LdpFecTlvParser::allocTrack() );
   auto const fecOf = []( char const * value ) {
      return ldpFecTlvParserFactory( pkt( tlv( fecTlv, value ) ), 0, nullptr );
   };
   auto const badPw = fecOf( "80 0005 05 00000001 00000064 01" );
   EXPECT_EQ( badPw->statusCode(), malformedTlv );
   EXPECT_EQ( pw.now(), 0u );
   auto const badP2mp = fecOf( "06 0001 04 0a000001 0001" );
   EXPECT_EQ( badP2mp->statusCode(), malformedTlv );
   EXPECT_EQ( p2mp.now(), 0u );
   EXPECT_EQ( fecs.now(), 2u );
}

TEST( Allocation, parserKeepsThePacketOfItsViews ) {
   Alive const packets( Lumo::Pkt::allocTrack() );
   auto packet = msgPkt( msg( LdpHello, 7, { tlv( commonHelloTlv, "000f 0000" ) } ) );
   auto parser = ldpHelloMsgParserFactory( packet, msgOffset );
   packet = nullptr;
   EXPECT_EQ( packets.now(), 1u );
   EXPECT_EQ( parser->msgCommonHelloTlv()->holdTime(), 15 );
   parser = nullptr;
   EXPECT_EQ( packets.now(), 0u );
}

} // namespace
