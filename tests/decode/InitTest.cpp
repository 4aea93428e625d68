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

TEST( Init, judgement ) {
   char const * const missing = "Missing CommonSessionParam TLV";
   char const * const notFirst = "CommonSessionParamTlv is not the 1st TLV in the message";
   char const * const otherFirst = "1st TLV is not commonSessionParam TLV";
   char const * const sessionSize = "LdpCommonSessionParamTlv TLV is not the right size";
   // A good Initialization has the name of its status for a reason, unlike any other message.
   expectRows(
        ldpInitMsgParserFactory, "Invalid LDP Init Msg: ",
        {
             { "session parameters alone", init( { session } ), success, "success" },
             { "with FT and capabilities", init( { session, ft, tlv( p2mpCapabilityTlv, "80" ) } ), success,
               "success" },
             { "other TLVs are passed over",
               init( { session, tlv( atmSessionTlv, "00" ), tlv( uBit | 258, "ff" ) } ), success, "success" },
             { "FT twice", init( { session, ft, ft } ), success, "success" },

             { "no TLV", init( {} ), missingMessageParams, missing },
             { "another TLV first", init( { ft, session } ), missingMessageParams, otherFirst },
             { "one to be ignored first", init( { tlv( uBit | 258 ), session } ), missingMessageParams,
               otherFirst },
             { "capability first", init( { tlv( p2mpCapabilityTlv, "80" ), session } ), missingMessageParams,
               otherFirst },
             { "session parameters twice", init( { session, session } ), missingMessageParams, notFirst },
             { "position is judged before the size", init( { session, tlv( commonSessionParamTlv, "00" ) } ),
               missingMessageParams, notFirst },
             { "session parameters of 13", init( { tlv( commonSessionParamTlv, repeat( 13, 1 ) ) } ),
               malformedTlv, sessionSize },
             { "session parameters of 15", init( { tlv( commonSessionParamTlv, repeat( 15, 1 ) ) } ),
               malformedTlv, sessionSize },
             { "FT of 11: the total length is told",
               init( { session, tlv( ftSessionTlv, repeat( 11, 1 ) ) } ), malformedTlv,
               "LdpFtSession TLV is not the right size (15)" },
             { "FT of 13", init( { session, tlv( ftSessionTlv, repeat( 13, 1 ) ) } ), malformedTlv,
               "LdpFtSession TLV is not the right size (17)" },
             { "FT of 0", init( { session, tlv( ftSessionTlv ) } ), malformedTlv,
               "LdpFtSession TLV is not the right size (4)" },

             { "bodies give their code's name: version", init( { sessionOf( "0002", "000f", "1000" ) } ),
               badVersion, "badVersion" },
             { "keep-alive time", init( { sessionOf( "0001", "0002", "1000" ) } ),
               sessionRejectBadKeepAliveTime, "sessionRejectBadKeepAliveTime" },
             { "PDU length", init( { sessionOf( "0001", "0003", "2581" ) } ), rejectMaxPduLength,
               "rejectMaxPduLength" },
             { "FT flags", init( { session, tlv( ftSessionTlv, "0004 0000 00000000 00000000" ) } ),
               malformedTlv, "malformedTlv" },
             { "bounds", init( { sessionOf( "0001", "0003", "2580" ) } ), success, "success" },
             { "a bad body in front of a misplaced TLV wins",
               init( { sessionOf( "0002", "000f", "1000" ), session } ), badVersion, "badVersion" },

             { "a capability's fault wins, wherever it stands",
               init( { sessionOf( "0002", "000f", "1000" ), tlv( p2mpCapabilityTlv, "8000" ) } ),
               malformedTlv, "p2mpCapabilityTlv TLV is not the right size" },
             { "also over a missing session TLV", init( { tlv( mrtCapabilityTlv ) } ), malformedTlv,
               "mrtCapabilityTlv TLV is not the right size" },
             { "what the header says stands", init( { session, tlv( 1539, "80" ) } ), unknownTlv,
               "Unknown TLV Type: 1539" },
        } );
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

TEST( Init, assertsItsType ) {
   EXPECT_ASSERTION( parse( ldpInitMsgParserFactory, msg( LdpKeepAlive, 7 ) ),
                     "msgHdr_->type() == LdpInit_" );
   EXPECT_EQ( parse( ldpInitMsgParserFactory, msg( LdpKeepAlive, 7, { tlv( 258 ) } ) )->statusCode(),
              unknownTlv );
}

// ---- capabilities ----

// Each capability type with value lengths of 0, 1, 2 and 5, in a Capability message, where nothing else
// counts.
TEST( Capability, sizeRules ) {
   struct Row {
      LdpTlvType type;
      char const * name;
      bool exactlyOne; ///< else one or more
   };
   for ( Row const & row : {
              Row{ dynamicCapabilityTlv, "dynamicCapabilityTlv", true },
              { upstreamLabelAssignmentCapabilityTlv, "upstreamLabelAssignmentCapabilityTlv", true },
              { p2mpCapabilityTlv, "p2mpCapabilityTlv", true },
              { mp2mpCapabilityTlv, "mp2mpCapabilityTlv", true },
              { mbbCapabilityTlv, "mbbCapabilityTlv", true },
              { typedWildcardFecCapabilityTlv, "typedWildcardFecCapabilityTlv", true },
              { multiTopologyCapabilityTlv, "multiTopologyCapabilityTlv", false },
              { stateAdvertisementControlCapabilityTlv, "stateAdvertisementControlCapabilityTlv", false },
              { mrtCapabilityTlv, "mrtCapabilityTlv", true },
              { targetedApplicationCapabilityTlv, "targetedApplicationCapabilityTlv", false },
              { unrecognizedNotificationCapabilityTlv, "unrecognizedNotificationCapabilityTlv", true },
         } ) {
      for ( U32 const length : { 0u, 1u, 2u, 5u } ) {
         SCOPED_TRACE( Hex( row.name ) + " of " + std::to_string( length ) );
         bool const good = row.exactlyOne ? length == 1 : length >= 1;
         // With the U bit, by which alone the unrecognized notification capability gets through the header.
         auto const parser = parse( ldpCapabilityMsgParserFactory,
                                    capability( { tlv( uBit | row.type, repeat( length, 0x80 ) ) } ) );
         EXPECT_EQ( parser->statusCode(), good ? success : malformedTlv );
         EXPECT_EQ( parser->reason(),
                    good ? Vorn::String() : Vorn::String( row.name ) + " TLV is not the right size" );
         EXPECT_EQ( parser->capabilitiesHas( row.type ), good );
         if ( good ) {
            EXPECT_EQ( offsetOf( *parser, parser->capabilities( row.type ) ), msgOffset + 8 );
            EXPECT_TRUE( parser->capabilities( row.type )->state() );
         }
      }
   }
}

TEST( Capability, judgement ) {
   expectRows(
        ldpCapabilityMsgParserFactory, "Invalid LDP Capability Msg: ",
        {
             { "no TLV", capability( {} ), success, "" },
             { "none that is a capability", capability( { session, tlv( uBit | 1284, "" ) } ), success, "" },
             { "second one bad", capability( { tlv( mbbCapabilityTlv, "80" ), tlv( mrtCapabilityTlv ) } ),
               malformedTlv, "mrtCapabilityTlv TLV is not the right size" },
             { "type 1539 without U bit", capability( { tlv( 1539, "80" ) } ), unknownTlv,
               "Unknown TLV Type: 1539" },
        } );
}

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

TEST( Capability, assertsItsType ) {
   EXPECT_ASSERTION( parse( ldpCapabilityMsgParserFactory, msg( LdpInit, 7 ) ),
                     "msgHdr_->type() == LdpCapability_" );
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
