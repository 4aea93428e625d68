// The capability TLVs that Initialization and Capability messages gather, as a collection.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex capability( std::initializer_list< Hex > tlvs ) { return msg( LdpCapability, 7, tlvs ); }

TEST( Capability, walkEndsAtTheFirstFault ) {
   auto const parser = parse( ldpCapabilityMsgParserFactory,
                              capability( { tlv( mbbCapabilityTlv, "80" ), tlv( mrtCapabilityTlv ),
                                            tlv( p2mpCapabilityTlv, "80" ) } ) );
   EXPECT_TRUE( parser->capabilitiesHas( mbbCapabilityTlv ) );
   EXPECT_FALSE( parser->capabilitiesHas( mrtCapabilityTlv ) );
   EXPECT_FALSE( parser->capabilitiesHas( p2mpCapabilityTlv ) );
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
