// Protocol utilities: facts about status codes, hop counts and interfaces, and the dispatch to the parser of
// a message's type.

#include "Expect.h"

#include "Ldp/LdpUtils.h"

#include <fstream>
#include <sstream>

using namespace Ldp;
using namespace Wire;

namespace {

TEST( LdpUtils, eBitAndTextOfEachStatus ) {
   std::ifstream table( LDP_TEST_EXPECTED "/../statuses.txt" );
   std::size_t rows = 0;
   std::string name, bit, text;
   for ( std::string line; std::getline( table, line ); ) {
      std::istringstream words( line );
      if ( line.starts_with( '#' ) || !( words >> name >> bit ) ) continue;
      std::getline( words >> std::ws, text );
      LdpStatusCode status;
      Vorn::strepToValue( name.c_str(), &status );
      EXPECT_EQ( statusCodeEBitForStatusCode( status ), bit == "E" ) << name;
      EXPECT_EQ( sessionStateStrForStatusCode( status ), text.c_str() ) << name;
      ++rows;
   }
   EXPECT_EQ( rows, 38u );
}

TEST( LdpUtils, valueThatIsNoStatus ) {
   EXPECT_EQ( sessionStateStrForStatusCode( LdpStatusCode( 30 ) ), "30" );
   for ( U32 const value : { 26u, 30u, 35u, 38u, 41u, 0x80000000u, 0xffffffffu } ) {
      SCOPED_TRACE( value );
      EXPECT_ASSERTION( statusCodeEBitForStatusCode( LdpStatusCode( value ) ),
                        "!\"Missing status code E-bit definition\"" );
   }
}

TEST( LdpUtils, hopCountInc ) {
   EXPECT_EQ( hopCountInc( 0 ), 0 ); // unknown stays unknown
   for ( int hops = 1; hops <= 253; ++hops ) {
      ASSERT_EQ( hopCountInc( U8( hops ) ), hops + 1 );
   }
   EXPECT_ASSERTION( hopCountInc( 254 ), "rcvdHopCount < ( 0xFF - 1 ) && \"Internal Error\"" );
   EXPECT_ASSERTION( hopCountInc( 255 ), "rcvdHopCount < ( 0xFF - 1 ) && \"Internal Error\"" );
}

TEST( LdpUtils, reentrantAssert ) {
   bool busy = false;
   {
      ReentrantAssert const guard( &busy );
      EXPECT_TRUE( busy );
      EXPECT_ASSERTION( ReentrantAssert const again( &busy ), "!*flag" );
   }
   EXPECT_FALSE( busy );
   { ReentrantAssert const later( &busy ); }
   EXPECT_FALSE( busy );
}

TEST( LdpUtils, interfaceKinds ) {
   struct Row {
      char const * name;
      bool supported;
      bool supportedWithLoopback;
      bool loopback;
      bool managementOrInternal;
   };
   for ( Row const & row : {
              Row{ "Vlan10", true, true, false, false },
              { "Port-Channel7", true, true, false, false },
              { "Ethernet1", true, true, false, false },
              { "Ethernet3/1", true, true, false, false },
              { "Ethernet1.100", true, true, false, false },
              { "Port-Channel7.100", true, true, false, false },
              { "Loopback0", false, true, true, false },
              { "Management1", false, false, false, true },
              { "Internal1", false, false, false, true },
              { "Tunnel1", false, false, false, false },
              { "Ethernet", false, false, false, false },
              { "", false, false, false, false },
         } ) {
      SCOPED_TRACE( row.name );
      Lumo::IntfId const id{ Vorn::String( row.name ) };
      EXPECT_EQ( isLdpSupportedInterface( id, false ), row.supported );
      EXPECT_EQ( isLdpSupportedInterface( id, true ), row.supportedWithLoopback );
      EXPECT_EQ( isLoopbackInterface( id ), row.loopback );
      EXPECT_EQ( isManagementOrInternalInterface( id ), row.managementOrInternal );
   }
}

// ---- dispatch ----

TEST( LdpMsgParserGet, badHeaderStaysPlain ) {
   for ( Hex const & message : { msg( 0x3000, 1 ), msg( uBit | 0x3000, 1 ), msgLen( LdpHello, 3, 1 ),
                                 msg( LdpHello, 1, { tlvLen( commonHelloTlv, 5, "000f 0000" ) } ),
                                 msg( LdpHello, 1, { tlv( 258, "" ) } ) } ) {
      SCOPED_TRACE( message );
      auto const parser = ldpMsgParserGet( msgPkt( message ), msgOffset );
      EXPECT_EQ( parser->fwkType(), &LdpMsgParser::_vornType );
      EXPECT_FALSE( parser->validMsg() );
      EXPECT_EQ( parser->stringValue(), "Message Error: " + parser->reason() );
   }
}

TEST( LdpMsgParserGet, typedParserMayRefuseWhatThePlainOneTook ) {
   auto const parser = ldpMsgParserGet( msgPkt( msg( LdpHello, 1 ) ), msgOffset );
   EXPECT_EQ( parser->fwkType(), &LdpHelloMsgParser::_vornType );
   EXPECT_EQ( parser->statusCode(), missingMessageParams );
}

TEST( LdpMsgParserGet, assertsItsArguments ) {
   EXPECT_ASSERTION( ldpMsgParserGet( nullptr, 0 ), "pkt" );
   EXPECT_ASSERTION( ldpMsgParserGet( Lumo::Pkt::borrow( nullptr, 1 ), 0 ), "pkt->front()" );
   EXPECT_ASSERTION( ldpMsgParserGet( pkt( "" ), 0 ), "pkt->frontBytes()" );
   EXPECT_ASSERTION( ldpMsgParserGet( pkt( "00" ), 2 ), "pkt_->frontBytes() >= offset_" );
}

} // namespace
