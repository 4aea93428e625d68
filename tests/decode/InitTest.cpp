// Initialization and Capability messages, and the capability TLVs that both gather.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const session = tlv( commonSessionParamTlv, "0001 000f c0 20 1000 0a000002 0007" );
Hex const ft = tlv( ftSessionTlv, "8001 0000 0001d4c0 0002bf20" );

Hex init( std::initializer_list< Hex > tlvs ) { return msg( LdpInit, 7, tlvs ); }
Hex capability( std::initializer_list< Hex > tlvs ) { return msg( LdpCapability, 7, tlvs ); }

/// A session TLV with other values.
Hex sessionOf( char const * version, char const * keepAlive, char const * maxPdu ) {
   return tlv( commonSessionParamTlv, Hex( version ) + keepAlive + "c020" + maxPdu + "0a0000020007" );
}

TEST( Init, views ) {
   auto const parser =
        parse( ldpInitMsgParserFactory, init( { session, ft, tlv( p2mpCapabilityTlv, "00" ),
                                                tlv( ftSessionTlv, "0002 0000 00000005 00000006" ),
                                                tlv( p2mpCapabilityTlv, "80" ) } ) );
   ASSERT_TRUE( parser->validMsg() );
   LdpCommonSessionParamTlv const & params = *parser->msgSessionParamTlv();
   EXPECT_EQ( offsetOf( *parser, &params ), msgOffset + 8 );
   EXPECT_EQ( params.protocolVersion(), 1 );
   EXPECT_EQ( params.keepAliveTime(), 15 );
   EXPECT_TRUE( params.advDiscipline() );
   EXPECT_TRUE( params.loopDetect() );
   EXPECT_EQ( params.pathVecLim(), 32 );
   EXPECT_EQ( params.maxPduLength(), 4096 );
   EXPECT_EQ( params.recvLdpIdentifier(), LdpIdentifier( 0x0a000002, 7 ) );
   // Of repeats the last wins.
   EXPECT_EQ( parser->msgFtSessionTlv()->ftReconnectTimeout(), 5u );
   EXPECT_EQ( parser->msgFtSessionTlv()->ftRecoveryTime(), 6u );
   ASSERT_EQ( parser->capabilities().members(), 1u );
   EXPECT_TRUE( parser->capabilities( p2mpCapabilityTlv )->state() );

   auto const bad = parse( ldpInitMsgParserFactory, init( { sessionOf( "0002", "000f", "1000" ), ft } ) );
   EXPECT_TRUE( bad->msgSessionParamTlv() ); // stored, then refused
   EXPECT_FALSE( bad->msgFtSessionTlv() );   // not reached
}

TEST( Init, text ) {
   EXPECT_EQ( parse( ldpInitMsgParserFactory, init( { session } ) )->stringValue(),
              "LDP Init Msg:\n   Msg Id: 7,   LdpCommonSessionParamTlv: KA(15), A(1), D(1), PduLen(4096), "
              "10.0.0.2:7" );
   EXPECT_EQ( parse( ldpInitMsgParserFactory, init( { session, tlv( typedWildcardFecCapabilityTlv, "7f" ), ft,
                                                      tlv( p2mpCapabilityTlv, "80" ) } ) )
                   ->stringValue(),
              "LDP Init Msg:\n   Msg Id: 7,   LdpCommonSessionParamTlv: KA(15), A(1), D(1), PduLen(4096), "
              "10.0.0.2:7\n"
              "   LdpFtSessionTlv: R(1), S(0), A(0), C(0), L(1), FTReconnect(120000), FTRecovery(180000)\n"
              "   p2mpCapabilityTlv: State(1)\n"
              "   typedWildcardFecCapabilityTlv: State(0)" );
}

// ---- capabilities ----

TEST( Capability, walkEndsAtTheFirstFault ) {
   auto const parser = parse( ldpCapabilityMsgParserFactory,
                              capability( { tlv( mbbCapabilityTlv, "80" ), tlv( mrtCapabilityTlv ),
                                            tlv( p2mpCapabilityTlv, "80" ) } ) );
   EXPECT_TRUE( parser->capabilitiesHas( mbbCapabilityTlv ) );
   EXPECT_FALSE( parser->capabilitiesHas( mrtCapabilityTlv ) );
   EXPECT_FALSE( parser->capabilitiesHas( p2mpCapabilityTlv ) );
}

TEST( Capability, orderedByType ) {
   auto const parser = parse(
        ldpCapabilityMsgParserFactory,
        capability( { tlv( typedWildcardFecCapabilityTlv, "00" ), tlv( uBit | 1539, "80" ),
                      tlv( p2mpCapabilityTlv, "80" ), tlv( targetedApplicationCapabilityTlv, "00ffff" ) } ) );
   std::vector< LdpTlvType > types;
   for ( auto const & entry : parser->capabilities() ) {
      types.push_back( entry.key() );
   }
   EXPECT_EQ( types,
              ( std::vector{ p2mpCapabilityTlv, typedWildcardFecCapabilityTlv,
                             targetedApplicationCapabilityTlv, unrecognizedNotificationCapabilityTlv } ) );
   // No comma behind this message's id.
   EXPECT_EQ( parser->stringValue(), "LDP Capability Msg:\n   Msg Id: 7\n"
                                     "   p2mpCapabilityTlv: State(1)\n"
                                     "   typedWildcardFecCapabilityTlv: State(0)\n"
                                     "   targetedApplicationCapabilityTlv: State(0)\n"
                                     "   unrecognizedNotificationCapabilityTlv: State(1)" );
   EXPECT_EQ( parse( ldpCapabilityMsgParserFactory, capability( {} ) )->stringValue(),
              "LDP Capability Msg:\n   Msg Id: 7" );
}

TEST( Capability, collection ) {
   auto const parser =
        parse( ldpCapabilityMsgParserFactory,
               capability( { tlv( mbbCapabilityTlv, "80" ), tlv( p2mpCapabilityTlv, "80" ) } ) );
   auto const * mbb = parser->capabilities( mbbCapabilityTlv );
   EXPECT_FALSE( parser->capabilities( mrtCapabilityTlv ) );
   parser->capabilitiesIs( mrtCapabilityTlv, mbb );
   parser->capabilitiesIs( p2mpCapabilityTlv, mbb );
   EXPECT_EQ( parser->capabilities( mrtCapabilityTlv ), mbb );
   EXPECT_EQ( parser->capabilities( p2mpCapabilityTlv ), mbb );
   EXPECT_EQ( parser->capabilities().members(), 3u );
   parser->capabilitiesIs( p2mpCapabilityTlv, nullptr ); // removes it
   EXPECT_FALSE( parser->capabilitiesHas( p2mpCapabilityTlv ) );
   parser->capabilitiesIs( p2mpCapabilityTlv, nullptr );
   EXPECT_EQ( parser->capabilitiesDel( mbbCapabilityTlv ), mbb );
   EXPECT_FALSE( parser->capabilitiesDel( mbbCapabilityTlv ) );
   EXPECT_EQ( parser->capabilities().members(), 1u );
   parser->capabilitiesDelAll();
   EXPECT_EQ( parser->capabilities().members(), 0u );
}

TEST( Capability, nothingIsGatheredWithoutAWalker ) {
   auto const parser =
        parse( ldpCapabilityMsgParserFactory, capability( { tlv( mbbCapabilityTlv, "80" ) } ) );
   parser->capabilitiesDelAll();
   parser->tlvGroupParserDel();
   parser->handleInitialized();
   EXPECT_TRUE( parser->validMsg() );
   EXPECT_EQ( parser->capabilities().members(), 0u );
}

TEST( Capability, baseClassGathersNothingByItself ) {
   LdpCapabilityParser * const made =
        new LdpCapabilityParser( msgPkt( capability( { tlv( mbbCapabilityTlv, "80" ) } ) ), msgOffset );
   Vorn::Ptr< LdpCapabilityParser > const parser( made );
   EXPECT_EQ( parser->capabilities().members(), 0u );
   EXPECT_EQ( parser->stringValue(), "LdpCapability, Id: 0x00000007, numTlv: 1" );
   parser->parseCapabilityTlvs();
   EXPECT_EQ( parser->capabilities().members(), 1u );
}

} // namespace
