// What the decoders leave in the ring trace of a process that a received PDU has ended.
#ifdef LDPTOOL

#include "Ldp/LdpTrace.h"
#include "Ldp/LdpUtils.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

// A Label Mapping: the FEC TLV of 10.0.0.0/24 is good, the length field of what should be the label is 65532.
constexpr std::array< U8, 36 > fatalPdu{
   0x00, 0x01, 0x00, 0x20, 0x0a, 0x00, 0x00, 0x01, 0x00, 0x00,       // PDU
   0x04, 0x00, 0x00, 0x16, 0x00, 0x00, 0x00, 0x2a,                   // Label Mapping 42
   0x01, 0x00, 0x00, 0x07, 0x02, 0x00, 0x01, 0x18, 0x0a, 0x00, 0x00, // FEC
   0x02, 0x00, 0xff, 0xfc, 0x00, 0x00, 0x00,                         // label
};

// The last lines of `ldptool ring`, without times.
std::vector< std::string > lastSteps( std::string const & ring, int num ) {
   std::string const command = std::string( LDPTOOL " ring --last " ) + std::to_string( num ) + " " + ring;
   std::FILE * const pipe = popen( command.c_str(), "r" );
   std::vector< std::string > lines;
   char line[512];
   while ( pipe && std::fgets( line, sizeof line, pipe ) )
      lines.push_back( std::regex_replace( line, std::regex( "^[^ ]* +|\n" ), "" ) );
   if ( !pipe || pclose( pipe ) != 0 ) ADD_FAILURE() << command;
   return lines;
}

TEST( LastSteps, areInTheRingAfterAFatalLength ) {
   char folder[] = "/tmp/ldp-last-steps-XXXXXX";
   ASSERT_NE( mkdtemp( folder ), nullptr );
   std::string const ring = std::string( folder ) + "/ring";
   auto const child = [&] {
      setenv( "SKFILE", ring.c_str(), 1 );
      if ( Ldp_skeinInitialize() != 0 ) return;
      auto const pkt = Lumo::pktFactory( fatalPdu.data(), fatalPdu.size() );
      auto const pdu = Ldp::ldpPduParserFactory( pkt, 0 );
      Ldp::ldpMsgParserGet( pkt, pdu->messageOffset( 0 ) );
   };
   EXPECT_DEATH( child(), "header->totalLength\\(\\) > 0" );

   std::vector< std::string > const lines = lastSteps( ring, 5 );
   static char const * const expected[] = {
      "Ring trace of process [0-9]+",
      "LdpMsgParser:[0-9]+ +\\[1\\] LdpMsgParser::handleHeader\\(\\) ",
      "LdpGenMsgParser:[0-9]+ +\\[2\\] LdpTlvGroupParser::parseTlvGroup\\(\\) ",
      "LdpGenMsgParser:[0-9]+ +Parse packet frontBytes: 36, offset: 18, size 18",
      "LdpGenMsgParser:[0-9]+ +Msg/TLV 0: offset 18, size 11",
      "LdpGenMsgParser:[0-9]+ +Msg/TLV 1: offset 29, size 0",
   };
   ASSERT_EQ( lines.size(), std::size( expected ) );
   for ( std::size_t i = 1; i < lines.size(); ++i )
      EXPECT_TRUE( std::regex_match( lines[i], std::regex( expected[i] ) ) ) << lines[i];
   std::filesystem::remove_all( folder );
}

} // namespace

#endif
