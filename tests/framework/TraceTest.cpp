// The text trace: which lines come out, where, and what a statement costs those who did not ask for any.

#include "Twain/Trace.h"
#include "RingFixture.h"

#include <gtest/gtest.h>
#include <iostream>
#include <regex>
#include <sstream>

static unsigned int currentInstId = 0;
unsigned int Ldp::instId( ... ) { return currentInstId; }

namespace {

VORN_TRACE_FACILITY( "TraceTest" )

class Trace : public testing::Test {
 protected:
   Trace() { Vorn::TraceFacility::sinkIs( &lines ); }
   ~Trace() override {
      Vorn::TraceFacility::sinkIs( nullptr );
      Vorn::TraceFacility::levelsIs( "TraceTest", 0 );
      Vorn::coverageStream_ = nullptr;
      currentInstId = 0;
   }
   static void levels( U32 levels ) { Vorn::TraceFacility::levelsIs( "TraceTest", levels ); }
   // The lines since the last call, without what stands before the text.
   std::string taken( std::ostringstream & from ) {
      static std::regex const head( "[^ \n]+ TraceTest/[0-9]+ TraceTest:[0-9]+ [^ ]+ " );
      std::string const all = std::regex_replace( from.str(), head, "" );
      from.str( "" );
      return all;
   }
   std::ostringstream lines;
};

void traceAll() {
   TWAIN_TRACE( 5, "five" );
   TWAIN_TRACE( 6, "six" );
   TWAIN_TRACE( 9, "nine" );
}

TEST_F( Trace, levelsAreSwitchedOneByOne ) {
   traceAll();
   EXPECT_EQ( taken( lines ), "" );
   levels( 1 << 5 | 1 << 9 );
   traceAll();
   EXPECT_EQ( taken( lines ), "five\nnine\n" );
   Vorn::TraceFacility::levelsIs( "AnotherFacility", ~0u );
   levels( 0 );
   traceAll();
   EXPECT_EQ( taken( lines ), "" );
}

TEST_F( Trace, levelsMayBeSetBeforeTheHandleIsThere ) {
   Vorn::TraceFacility::levelsIs( "TraceTestLate", 1 << 3 );
   Vorn::TraceHandle const handle( "TraceTestLate", false );
   Vorn::TraceHandle const sameFacility( "TraceTestLate", false );
   EXPECT_TRUE( handle.enabled( 3 ) );
   EXPECT_FALSE( handle.enabled( 2 ) );
   Vorn::TraceFacility::levelsIs( "TraceTestLate", 1 << 2 );
   EXPECT_TRUE( handle.enabled( 2 ) && sameFacility.enabled( 2 ) );
   EXPECT_TRUE( Vorn::TraceHandle( "TraceTestOn", true ).enabled( 31 ) );
}

TEST_F( Trace, lineSaysWhenWhoAndWhere ) {
   levels( 1 << 5 );
   traceAll();
   EXPECT_TRUE(
        std::regex_match( lines.str(), std::regex( "\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{6}Z "
                                                   "TraceTest/5 TraceTest:\\d+ traceAll five\n" ) ) )
        << lines.str();
}

TEST_F( Trace, standardErrorUnlessToldOtherwise ) {
   levels( 1 << 5 );
   Vorn::TraceFacility::sinkIs( nullptr );
   testing::internal::CaptureStderr();
   traceAll();
   EXPECT_TRUE( testing::internal::GetCapturedStderr().ends_with( " traceAll five\n" ) );
}

TEST_F( Trace, coverageGetsEveryLevel ) {
   std::ostringstream coverage;
   Vorn::coverageStream_ = &coverage;
   levels( 1 << 6 );
   traceAll();
   EXPECT_EQ( taken( coverage ), "five\nsix\nnine\n" );
   EXPECT_EQ( taken( lines ), "six\n" );
}

TEST_F( Trace, argumentsOfWhatIsOffAreNotEvaluated ) {
   int evaluated = 0;
   auto const costly = [&] {
      ++evaluated;
      return 1;
   };
   auto const trace = [&] {
      TWAIN_TRACE( 6, "cost ", costly(), Twain::Lazy{ 2, [&] { return costly(); } } );
   };
   trace();
   EXPECT_EQ( evaluated, 0 );
   levels( 1 << 6 );
   trace();
   EXPECT_EQ( evaluated, 2 );
   EXPECT_EQ( taken( lines ), "cost 11\n" );
}

struct Parser {
   static void parse( int depth ) {
      TWAIN_FUNCTION( "Parser::parse" );
      if ( depth == 0 ) throw depth;
      parse( depth - 1 );
   }
};

TEST_F( Trace, functionsCountTheirDepth ) {
   levels( 1 << 8 );
   EXPECT_THROW( Parser::parse( 2 ), int );
   EXPECT_EQ( taken( lines ), "[1] Parser::parse() \n[2] Parser::parse() \n[3] Parser::parse() \n" );
   EXPECT_EQ( Ldp::callDepth, 0 );
   currentInstId = 7;
   EXPECT_THROW( Parser::parse( 0 ), int );
   EXPECT_EQ( taken( lines ), "#7 [1] Parser::parse() \n" );
   levels( 0 );
   EXPECT_THROW( Parser::parse( 3 ), int );
   EXPECT_EQ( Ldp::callDepth, 0 );
   EXPECT_EQ( taken( lines ), "" );
}

TEST_F( Trace, failureDropsTheLineOnly ) {
   levels( ~0u );
   TWAIN_TRACE( 6, Twain::Lazy{ 1, []() -> int { throw 1; } } );
   EXPECT_EQ( taken( lines ), "" );
   lines.exceptions( std::ios::badbit | std::ios::failbit );
   try {
      lines.setstate( std::ios::badbit );
   } catch ( std::ios::failure const & ) {}
   traceAll();
   EXPECT_THROW( Parser::parse( 1 ), int );
   EXPECT_EQ( Ldp::callDepth, 0 );
}

class TraceAndRing : public RingFixture {};

// With the ring on, the costly text of a Lazy is still nobody's business.
TEST_F( TraceAndRing, ringTakesTheCheapFormOfALazy ) {
   ASSERT_EQ( 0, inChild( [&] {
                 openRing();
                 int made = 0;
                 TWAIN_TRACE( 9, "header ", Twain::Lazy{ Twain::Hex{ "\1", 1 }, [&] { return ++made; } } );
                 EXPECT_EQ( made, 0 );
              } ) );
   EXPECT_EQ( texts( path( "ring" ) ), std::vector< std::string >{ "header \\x01" } );
}

} // namespace
