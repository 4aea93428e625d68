// Decoding copies nothing of the packet: it allocates the parsers, their offset maps and the FEC elements,
// and all of that goes with the parsers.

#include "Expect.h"

#include "Ldp/LdpPduStream.h"
#include "Ldp/LdpPwGenMsgParser.h"
#ifndef VORN_PLAIN_MALLOC
#include "../../bench/MallocCount.h"
#endif

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

#ifndef VORN_PLAIN_MALLOC

// Good and bad, of every size: what the free lists hold after one round serves all later ones.
TEST( Allocation, asksMallocForNothing ) {
   Hex prefixes, many, units;
   for ( U32 i = 0; i < 570; ++i )
      prefixes += "02 0001 18 0a" + u16( i );
   for ( U32 i = 0; i < 990; ++i )
      many += msg( 0x3000 + i, i );
   for ( U32 i = 0; i < 4000; ++i )
      units += "00";
   Hex const label = tlv( genLabelTlv, "00000064" );
   std::vector< Hex > const sent = {
      pdu( "10.0.0.1", 0, { many } ),
      pdu( "10.0.0.1", 0, { msg( LdpLabelMapping, 1, { tlv( fecTlv, prefixes ), label } ) } ),
      pdu( "10.0.0.1", 0, { msg( LdpLabelMapping, 1, { tlv( fecTlv, prefixes + "09" ), label } ) } ),
      pdu( "10.0.0.1", 0,
           { msg( LdpLabelWithdraw, 1, { tlv( fecTlv, "06 0001 04 0a000001 00f0" + repeat( 240, 7 ) ) } ) } ),
      pdu( "10.0.0.1", 0,
           { msg( LdpLabelMapping, 1,
                  { tlv( fecTlv, "80 0005 08 00000001 00000064 06 04 0fff" ), label } ) } ),
      pdu( "10.0.0.1", 0, { msg( LdpKeepAlive, 1, { "3fff fffd " + repeat( 4000, 0xff ) } ) } ),
      pdu( "10.0.0.1", 0, { repeat( 4000, 0xff ) } ),
      pdu( "10.0.0.1", 0, { "0201 fffd " + repeat( 9000, 0xff ) } ),
      pdu( "10.0.0.1", 0,
           { msg( LdpInit, 1,
                  { tlv( commonSessionParamTlv, "0001 001e 00 00 1000 0a000002 0000" ),
                    tlv( p2mpCapabilityTlv, "80" ), tlv( mbbCapabilityTlv, "80" ) } ) } ),
      pdu( "10.0.0.1", 0, { msg( LdpHello, 1, { "0400 fffc" } ) } ),
   };
   std::vector< Octets > all;
   for ( Hex const & each : sent )
      all.push_back( octets( each ) );
   LdpPduStream stream;
   stream.maxPduLengthIs( 9600 );
   U32 messages = 0;
   auto const round = [&] {
      for ( Octets const & each : all ) {
         std::span< U8 const > left( each );
         while ( auto const pdu = stream.next( left ) ) {
            messages += pdu.messageNum();
            for ( U32 i = 0; i < pdu.messageNum(); ++i )
               pdu.message( i );
         }
      }
   };
   for ( int i = 0; i < 3; ++i )
      round();
   U64 const before = mallocCalls;
   EXPECT_GT( before, 0u ) << "nothing is counted";
   messages = 0;
   round();
   EXPECT_EQ( mallocCalls, before );
   EXPECT_EQ( messages, 990u + 6u );
}

#endif

} // namespace
