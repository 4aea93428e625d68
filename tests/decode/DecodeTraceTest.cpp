// What the decoders trace: the lines of one message's road, and the reason of each failure that is traced.

#include "Expect.h"
#include "Table.h"

#include "Ldp/LdpUtils.h"
#include "Twain/Trace.h"

#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

using namespace Ldp;
using namespace Wire;

namespace {

using Lines = std::vector< std::string >;
char const * const facilities[] = { "LdpGenMsgParser", "LdpMsgParser", "LdpPwGenMsgParser", "LdpHdr" };

/// Collects the lines of those levels of all decoders, each as `Facility/level text`.
class DecodeTrace {
 public:
   explicit DecodeTrace( std::vector< int > const & levels ) {
      U32 bits = 0;
      for ( int const level : levels ) {
         bits |= 1u << level;
      }
      levelsAre( bits );
      Vorn::TraceFacility::sinkIs( &out_ );
   }
   ~DecodeTrace() {
      levelsAre( 0 );
      Vorn::TraceFacility::sinkIs( nullptr );
   }
   Lines take() {
      // Time, facility and level, place, function, text.
      static std::regex const line( "[^ ]+ ([^ ]+) [^ ]+ [^ ]+ (.*)" );
      std::istringstream in( out_.str() );
      out_.str( "" );
      Lines lines;
      for ( std::string text; std::getline( in, text ); ) {
         lines.push_back( std::regex_replace( text, line, "$1 $2" ) );
      }
      return lines;
   }

 private:
   static void levelsAre( U32 bits ) {
      for ( char const * facility : facilities ) {
         Vorn::TraceFacility::levelsIs( facility, bits );
      }
   }
   std::ostringstream out_;
};

// Of each step of traces.txt, the lines.
TEST( DecodeTrace, linesAreAsWrittenDown ) {
   std::ifstream table( LDP_TEST_EXPECTED "/../traces.txt" );
   std::size_t steps = 0;
   Lines expected, found;
   std::string step;
   auto const compare = [&] {
      EXPECT_EQ( found, expected ) << step;
      expected.clear();
   };
   for ( std::string line; std::getline( table, line ); ) {
      if ( line.empty() || line[0] == '#' ) continue;
      if ( line.starts_with( "   " ) ) {
         expected.push_back( line.substr( 3 ) );
         continue;
      }
      compare();
      ++steps;
      step = line;
      Row const row( line );
      std::istringstream words( row.octets );
      std::string kind;
      words >> kind;
      DecodeTrace trace( std::vector< int >( std::istream_iterator< int >( words ), {} ) );
      Hex const octets = expanded( row.verdict );
      if ( kind == "message" ) ldpMsgParserGet( msgPkt( octets ), msgOffset );
      if ( kind == "pdu" ) ldpPduParserFactory( pkt( octets ), 0 );
      if ( kind == "fec" ) ldpFecTlvParserFactory( pkt( tlv( fecTlv, octets ) ), 0, nullptr );
      found = trace.take();
      for ( std::string & each : found ) // which no file should have at the end of a line
         while ( each.ends_with( ' ' ) )
            each.pop_back();
   }
   compare();
   EXPECT_EQ( callDepth, 0 );
   EXPECT_GT( steps, 25u );
}

TEST( DecodeTrace, entryOfEachMessageParser ) {
   DecodeTrace trace( { 8 } );
   for ( auto const & [type, name] : { std::pair{ LdpNotification, "LdpNotificationMsgParser" },
                                       { LdpHello, "LdpHelloMsgParser" },
                                       { LdpInit, "LdpInitMsgParser" },
                                       { LdpAddress, "LdpAddressMsgParser" },
                                       { LdpAddressWithdraw, "LdpAddressWithdrawMsgParser" },
                                       { LdpLabelMapping, "LdpLabelMappingMsgParser" },
                                       { LdpLabelRequest, "LdpLabelRequestMsgParser" },
                                       { LdpLabelWithdraw, "LdpLabelWithdrawMsgParser" },
                                       { LdpLabelRelease, "LdpLabelReleaseMsgParser" },
                                       { LdpLabelAbortReq, "LdpLabelAbortReqMsgParser" } } ) {
      ldpMsgParserGet( msgPkt( msg( type, 7 ) ), msgOffset );
      EXPECT_EQ( trace.take().back(),
                 "LdpMsgParser/8 [1] " + std::string( name ) + "::handleInitialized() " );
   }
   parse( ldpCapabilityMsgParserFactory, msg( LdpCapability, 7 ) );
   EXPECT_EQ( trace.take().back(), "LdpMsgParser/8 [1] LdpCapabilityMsgParser::handleInitialized() " );
   // Also of a message that is refused already.
   parse( ldpHelloMsgParserFactory, msg( 0x3000, 7 ) );
   EXPECT_EQ( trace.take().back(), "LdpMsgParser/8 [1] LdpHelloMsgParser::handleInitialized() " );
}

} // namespace
