// The ring: what statements write, and that a reader gets it back, from whatever a process has left.

#include "RingFixture.h"
#include "Twain/Trace.h"
#include "Twain/Values.h"

#include <chrono>
#include <csignal>
#include <thread>

namespace {

VORN_TRACE_FACILITY( "SkeinRingTest" )

using Kind = LdpTool::RingRecord::Kind;

class SkeinRing : public RingFixture {};

// One statement for each kind of argument.
void allKinds() {
   Lumo::Ip6Addr v6;
   v6.octets()[0] = 0x20;
   v6.octets()[15] = 1;
   TWAIN_TRACE( 6, "no argument" );
   TWAIN_TRACE( 6, "U8 ", U8( 255 ), " U16 ", U16( 65535 ), " U32 ", 0xffffffffu, " U64 ", ~U64( 0 ) );
   TWAIN_TRACE( 6, "short ", short( -2 ), " int ", -1, " long ", -5000000000L, "." );
   TWAIN_TRACE( 6, true, " and ", false );
   TWAIN_TRACE( 6, Lumo::ipv6, " ", Lumo::AddressFamily( 77 ) );
   TWAIN_TRACE( 6, "octets '", Vorn::String( std::string_view( "a\0\n\x1b[1m\xff", 8 ) ), "'",
                Vorn::String() );
   TWAIN_TRACE( 6, "hex ", Twain::Hex{ "\x01\x00\xfe", 3 }, Twain::Hex{ nullptr, 0 } );
   TWAIN_TRACE( 6, Lumo::IpAddr( 0x0a000001 ), " ", v6 );
   TWAIN_TRACE( 6, Lumo::IpGenAddr(), " ", Lumo::IpGenAddr( v6 ), " ", Lumo::IpGenAddr( Lumo::IpAddr( 1 ) ) );
   TWAIN_TRACE( 6, Lumo::IpGenPrefix( Lumo::IpAddr( 0x0a000000 ), 8 ), " ", Lumo::IpGenPrefix( v6, 128 ) );
   TWAIN_TRACE( 6, Mpls::FwdEqvClass(), " ", Mpls::FwdEqvClass( Lumo::IpGenPrefix( v6, 16 ) ), " ",
                Mpls::FwdEqvClass( 1, 2 ), " ",
                Mpls::FwdEqvClass( Lumo::IpGenAddr( Lumo::IpAddr( 9 ) ), 7 ) );
   TWAIN_TRACE( 6, "not there: ", Skein::QNull(), "." );
}

TEST_F( SkeinRing, bothTracesTellTheSame ) {
   ASSERT_EQ( 0, inChild( [&] {
                 openRing();
                 std::ofstream lines( path( "text" ) );
                 Vorn::TraceFacility::sinkIs( &lines );
                 Vorn::TraceFacility::levelsIs( "SkeinRingTest", 1 << 6 );
                 allKinds();
              } ) );
   std::vector< std::string > lines;
   std::ifstream text( path( "text" ) );
   for ( std::string line; std::getline( text, line ); )
      lines.push_back( line.substr( line.find( " allKinds " ) + 10 ) );
   EXPECT_EQ( texts( path( "ring" ) ), lines );
   EXPECT_EQ( lines.at( 1 ), "U8 255 U16 65535 U32 4294967295 U64 18446744073709551615" );
   EXPECT_EQ( lines.at( 2 ), "short -2 int -1 long -5000000000." );
   EXPECT_EQ( lines.at( 3 ), "1 and 0" );
   EXPECT_EQ( lines.at( 4 ), "ipv6 77" );
   EXPECT_EQ( lines.at( 5 ), "octets 'a\\x00\\x0a\\x1b[1m\\xff'" );
   EXPECT_EQ( lines.at( 9 ), "10.0.0.0/8 2000::1/128" );
}

TEST_F( SkeinRing, longOctetsAreCutInTheRing ) {
   ASSERT_EQ( 0, inChild( [&] {
                 openRing();
                 std::string const long_( Skein::maxOctets + 1, 'x' );
                 TWAIN_TRACE( 5, Vorn::String( std::string_view( long_ ).substr( 1 ) ), "|",
                              Vorn::String( long_ ), "|", Twain::Hex{ long_.data(), long_.size() } );
              } ) );
   std::string hex;
   for ( U32 i = 0; i < Skein::maxOctets; ++i )
      hex += "\\x78";
   std::string const kept( Skein::maxOctets, 'x' );
   EXPECT_EQ( texts( path( "ring" ) ), std::vector{ kept + "|" + kept + "...|" + hex + "..." } );
}

void inner( U32 index ) {
   TWAIN_FUNCTION( "Inner::inner" );
   TWAIN_TRACE( 6, "step ", index );
}

void outer() {
   TWAIN_FUNCTION( "Outer::outer" );
   inner( 1 );
   TWAIN_TRACE( 9, "between" );
   try {
      TWAIN_FUNCTION( "Thrower::run" );
      throw 1;
   } catch ( int ) {}
   inner( 2 );
}

TEST_F( SkeinRing, functionsShowTheirNestingAndTimes ) {
   auto const now = [] { return U64( std::chrono::system_clock::now().time_since_epoch().count() ); };
   U64 const before = now();
   ASSERT_EQ( 0, inChild( [&] {
                 openRing();
                 TWAIN_TRACE( 6, "alone" );
                 outer();
                 EXPECT_EQ( Ldp::callDepth, 0 );
              } ) );
   struct Expected {
      Kind kind;
      char const * text;
      U32 depth;
      bool timed;
   };
   std::vector< Expected > const expected{
      { Kind::message, "alone", 0, true },
      { Kind::open, "[1] Outer::outer() ", 0, true },
      { Kind::open, "[2] Inner::inner() ", 1, false },
      { Kind::message, "step 1", 2, false },
      { Kind::close, "[2] Inner::inner() ", 1, true },
      { Kind::message, "between", 1, false },
      { Kind::open, "[2] Thrower::run() ", 1, false },
      { Kind::close, "[2] Thrower::run() ", 1, true },
      { Kind::open, "[2] Inner::inner() ", 1, false },
      { Kind::message, "step 2", 2, false },
      { Kind::close, "[2] Inner::inner() ", 1, true },
      { Kind::close, "[1] Outer::outer() ", 0, true },
   };
   auto const found = records( path( "ring" ) );
   ASSERT_EQ( found.size(), expected.size() );
   U64 last = before - 1000000; // the clock's rate is known to some millionths only
   for ( std::size_t i = 0; i < found.size(); ++i ) {
      SCOPED_TRACE( i );
      EXPECT_EQ( found[i].kind, expected[i].kind );
      EXPECT_EQ( found[i].text, expected[i].text );
      EXPECT_EQ( found[i].depth, expected[i].depth );
      EXPECT_EQ( found[i].timed, expected[i].timed );
      EXPECT_EQ( found[i].file, "SkeinRingTest" );
      EXPECT_GE( found[i].nanoseconds, last );
      last = found[i].nanoseconds;
   }
   EXPECT_LE( last, now() + 1000000 );
   EXPECT_EQ( found[3].function, "inner" );
   EXPECT_EQ( found[3].level, 6u );
   EXPECT_EQ( found[1].level, 8u );
}

TEST_F( SkeinRing, wrapsAndKeepsTheYoungest ) {
   U32 const records_ = 50000;
   ASSERT_EQ( 0, inChild( [&] {
                 openRing( 64 ); // four blocks
                 for ( U32 i = 0; i < records_; ++i )
                    TWAIN_TRACE( 6, i );
                 TWAIN_TRACE( 6, "a site that comes late" );
              } ) );
   auto const found = texts( path( "ring" ) );
   EXPECT_GT( found.size(), 3 * 16384 / 14 - 4 * 1024 / 14u );
   EXPECT_LT( found.size(), 4 * 16384 / 14u + 1 );
   EXPECT_EQ( found.back(), "a site that comes late" );
   for ( std::size_t i = 2; i <= found.size(); ++i )
      ASSERT_EQ( found[found.size() - i], std::to_string( records_ + 1 - i ) );
}

template< int n >
void numberedSite() {
   TWAIN_TRACE( 6, "this is a piece of text of some length, and the site's number is ", n );
}

TEST_F( SkeinRing, sitesWithoutRoomWriteNothing ) {
   ASSERT_EQ( 0, inChild( [&] {
                 openRing( 64, Skein::MultiThreading::one, 1 );
                 auto const all = []< int... n >( std::integer_sequence< int, n... > ) {
                    ( numberedSite< n >(), ... );
                 };
                 for ( int round = 0; round < 2; ++round )
                    all( std::make_integer_sequence< int, 40 >() );
              } ) );
   auto const found = texts( path( "ring" ) );
   ASSERT_GT( found.size(), 4u );
   ASSERT_LT( found.size(), 40u );
   std::size_t const round = found.size() / 2;
   for ( std::size_t i = 0; i < found.size(); ++i )
      EXPECT_TRUE( found[i].ends_with( " is " + std::to_string( i % round ) ) ) << found[i];
}

TEST_F( SkeinRing, nothingBeforeItStands ) {
   ASSERT_EQ( 0, inChild( [&] {
                 outer();
                 openRing();
                 TWAIN_TRACE( 6, "first" );
              } ) );
   EXPECT_EQ( texts( path( "ring" ) ), std::vector< std::string >{ "first" } );
}

TEST_F( SkeinRing, eachThreadWritesByItself ) {
   constexpr U32 threads = 4, each = 20000;
   ASSERT_EQ( 0, inChild( [&] {
                 openRing( 256, Skein::MultiThreading::perThread );
                 std::vector< std::thread > all;
                 for ( U32 t = 0; t < threads; ++t ) {
                    all.emplace_back( [t] {
                       for ( U32 i = 0; i < each; ++i )
                          TWAIN_TRACE( 6, t, ":", i );
                    } );
                 }
                 for ( std::thread & thread : all )
                    thread.join();
              } ) );
   std::map< U32, std::vector< std::string > > byWriter;
   for ( Line const & line : records( path( "ring" ) ) )
      byWriter[line.writer].push_back( line.text );
   EXPECT_FALSE( byWriter.empty() );
   // The last of all has its last record; of each there is an unbroken run.
   bool complete = false;
   for ( auto const & [writer, found] : byWriter ) {
      std::string const thread = found.front().substr( 0, 2 );
      U32 next = U32( std::stoul( found.front().substr( 2 ) ) );
      for ( std::string const & text : found )
         ASSERT_EQ( text, thread + std::to_string( next++ ) );
      complete |= next == each;
   }
   EXPECT_TRUE( complete );
}

TEST_F( SkeinRing, moreThreadsThanBlocks ) {
   ASSERT_EQ( 0, inChild( [&] {
                 openRing( 32, Skein::MultiThreading::perThread ); // two blocks
                 TWAIN_TRACE( 6, "one" );
                 std::thread( [] {
                    TWAIN_TRACE( 6, "two" );
                    std::thread( [] { TWAIN_TRACE( 6, "finds no block" ); } ).join();
                 } ).join();
                 std::thread( [] { TWAIN_TRACE( 6, "takes over" ); } ).join();
              } ) );
   EXPECT_EQ( texts( path( "ring" ) ), ( std::vector< std::string >{ "one", "takes over" } ) );
}

TEST_F( SkeinRing, childOfAForkLeavesTheRingAlone ) {
   ASSERT_EQ( 0, inChild( [&] {
                 openRing();
                 TWAIN_FUNCTION( "Parent::run" );
                 outer();
                 EXPECT_EQ( 0, inChild( [&] {
                               TWAIN_TRACE( 6, "nowhere" );
                               { TWAIN_FUNCTION( "Child::nowhere" ); }
                               EXPECT_EQ( Skein::initialize( path( "child" ).c_str(), nullptr, nullptr, 0, 24,
                                                             Skein::MultiThreading::one, true, 64 ),
                                          0 );
                               TWAIN_FUNCTION( "Child::run" );
                               inner( 3 ); // a site that the parent's ring has described
                            } ) );
                 TWAIN_TRACE( 6, "parent goes on" );
              } ) );
   auto const parent = texts( path( "ring" ) );
   EXPECT_EQ( parent.size(), 14u ); // outer() makes 11, its frame 2
   EXPECT_EQ( parent.at( parent.size() - 2 ), "parent goes on" );
   EXPECT_EQ( texts( path( "child" ) ),
              ( std::vector< std::string >{ "[2] Child::run() ", "[3] Inner::inner() ", "step 3",
                                            "[3] Inner::inner() ", "[2] Child::run() " } ) );
}

TEST_F( SkeinRing, survivesEveryDeath ) {
   struct Death {
      char const * name;
      int signal;
      void ( *die )();
   };
   Death const deaths[] = {
      { "assertion", SIGABRT, [] { VORN_ASSERT_TEXT( false, "dies as it should" ); } },
      { "kill", SIGKILL, [] { raise( SIGKILL ); } },
   };
   for ( Death const & death : deaths ) {
      SCOPED_TRACE( death.name );
      int const status = inChild( [&] {
         openRing();
         TWAIN_FUNCTION( "Victim::run" );
         inner( 4 );
         TWAIN_TRACE( 6, "last words" );
         death.die();
      } );
      EXPECT_TRUE( WIFSIGNALED( status ) && WTERMSIG( status ) == death.signal );
      auto const found = records( path( "ring" ) );
      ASSERT_EQ( found.size(), 5u );
      EXPECT_EQ( found[0].text, "[1] Victim::run() " );
      EXPECT_EQ( found[4].text, "last words" );
      EXPECT_EQ( found[4].depth, 1u );
   }
}

} // namespace
