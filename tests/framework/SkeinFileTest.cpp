// The ring's file: its name, what is found in its place, and that a reader trusts no octet of it.

#include "Ldp/LdpTrace.h"
#include "RingFixture.h"
#include "Twain/Trace.h"

#include <cerrno>
#include <random>
#include <sys/resource.h>

namespace {

VORN_TRACE_FACILITY( "SkeinFileTest" )

namespace fs = std::filesystem;

class SkeinFile : public RingFixture {
 protected:
   // Ldp_skeinInitialize in a child whose working folder is ours. Returns the child's process id, which is
   // part of names, and checks its result.
   pid_t initialize( char const * skfile, int expected = 0 ) {
      int idPipe[2];
      EXPECT_EQ( pipe( idPipe ), 0 );
      EXPECT_EQ( 0, inChild( [&] {
                    EXPECT_EQ( chdir( folder.c_str() ), 0 );
                    skfile ? setenv( "SKFILE", skfile, 1 ) : unsetenv( "SKFILE" );
                    EXPECT_EQ( Ldp_skeinInitialize(), expected );
                    EXPECT_EQ( Ldp_skeinInitialize(), expected ); // once more does nothing
                    TWAIN_TRACE( 6, "traced" );
                    pid_t const id = getpid();
                    EXPECT_EQ( write( idPipe[1], &id, sizeof id ), ssize_t( sizeof id ) );
                 } ) );
      pid_t id = 0;
      EXPECT_EQ( read( idPipe[0], &id, sizeof id ), ssize_t( sizeof id ) );
      close( idPipe[0] );
      close( idPipe[1] );
      return id;
   }
   std::vector< std::string > files() const {
      std::vector< std::string > names;
      for ( auto const & entry : fs::recursive_directory_iterator( folder ) )
         if ( !entry.is_directory() ) names.push_back( fs::relative( entry.path(), folder ).string() );
      std::sort( names.begin(), names.end() );
      return names;
   }
   using Names = std::vector< std::string >;
};

TEST_F( SkeinFile, nameComesFromTheEnvironment ) {
   fs::create_directory( path( "sub" ) );
   struct Case {
      char const * skfile;
      std::string name; // ID is the process
   };
   std::string const absolute = path( "sub/absolute" );
   Case const cases[] = {
      { nullptr, "LdpAgent-ID.sk" },
      { "", "LdpAgent-ID.sk" },
      { "plain.ring", "plain.ring" },
      { "sub/below.sk", "sub/below.sk" },
      { absolute.c_str(), "sub/absolute" },
      { "with %s%n 100%.sk", "with %s%n 100%.sk" },
      { "mine-%d", "mine-ID" },
   };
   for ( Case const & c : cases ) {
      SCOPED_TRACE( c.skfile ? c.skfile : "unset" );
      std::string const id = std::to_string( initialize( c.skfile ) );
      std::string name = c.name;
      if ( auto const at = name.find( "ID" ); at != name.npos ) name.replace( at, 2, id );
      EXPECT_EQ( files(), Names{ name } );
      EXPECT_EQ( texts( path( name ) ), Names{ "traced" } );
      EXPECT_EQ( std::to_string( LdpTool::RingReader( contents( path( name ) ) ).processId() ), id );
      fs::remove( path( name ) );
   }
}

TEST_F( SkeinFile, olderRingIsKept ) {
   std::string const first = std::to_string( initialize( "ring" ) );
   std::string const second = std::to_string( initialize( "ring" ) );
   EXPECT_EQ( files(), ( Names{ "ring", "ring.old" } ) );
   EXPECT_EQ( std::to_string( LdpTool::RingReader( contents( path( "ring" ) ) ).processId() ), second );
   EXPECT_EQ( std::to_string( LdpTool::RingReader( contents( path( "ring.old" ) ) ).processId() ), first );
   EXPECT_EQ( 0, inChild( [&] {
                 EXPECT_EQ( Skein::initialize( "ring", nullptr, folder.c_str(), 0, 24,
                                               Skein::MultiThreading::one, false, 64 ),
                            0 );
              } ) );
   EXPECT_EQ( std::to_string( LdpTool::RingReader( contents( path( "ring.old" ) ) ).processId() ), first );
}

TEST_F( SkeinFile, emptyFileIsReplaced ) {
   std::ofstream( path( "made-by-mktemp" ) ).flush();
   initialize( "made-by-mktemp" );
   EXPECT_EQ( texts( path( "made-by-mktemp" ) ), Names{ "traced" } );
}

TEST_F( SkeinFile, nothingElseIsTouched ) {
   std::ofstream( path( "letter" ) ) << "not a ring at all";
   fs::create_symlink( "letter", path( "link" ) );
   fs::create_symlink( "nowhere", path( "dangling" ) );
   fs::create_directory( path( "sub" ) );
   ASSERT_EQ( mkfifo( path( "pipe" ).c_str(), 0600 ), 0 );
   Names const before = files();
   for ( char const * name : { "letter", "link", "dangling", "sub", "pipe" } ) {
      SCOPED_TRACE( name );
      initialize( name, EEXIST );
   }
   initialize( "missing/ring", ENOENT );
   // Nor where a ring would go aside: then neither is moved.
   initialize( "ring" );
   std::ofstream( path( "ring.old" ) ) << "a letter too";
   std::string const ring = contents( path( "ring" ) );
   initialize( "ring", EEXIST );
   EXPECT_EQ( contents( path( "ring" ) ), ring );
   EXPECT_EQ( contents( path( "ring.old" ) ), "a letter too" );
   fs::remove( path( "ring" ) );
   fs::remove( path( "ring.old" ) );
   EXPECT_EQ( files(), before );
   EXPECT_EQ( contents( path( "letter" ) ), "not a ring at all" );
}

TEST_F( SkeinFile, limitOfTheProcessIsAnError ) {
   EXPECT_EQ( 0, inChild( [&] {
                 rlimit const limit{ 64 * 1024, 64 * 1024 };
                 EXPECT_EQ( setrlimit( RLIMIT_FSIZE, &limit ), 0 );
                 EXPECT_EQ( Skein::initialize( "ring", nullptr, folder.c_str(), 0, 24,
                                               Skein::MultiThreading::one, true, 64 ),
                            EFBIG );
              } ) );
   EXPECT_EQ( files(), Names() );
}

TEST_F( SkeinFile, sizes ) {
   struct Case {
      char const * name;
      U32 ringKiB;
      int sizeBits;
      unsigned descriptionsKiB;
      int result;
      U64 blocks;
   };
   Case const cases[] = {
      { "rounded down to blocks", 47, 24, 64, 0, 2 },
      { "less than two blocks", 31, 24, 64, EINVAL, 0 },
      { "cut to the file's bound", 1 << 20, 20, 64, 0, 59 },
      { "descriptions beyond the bound", 64, 16, 64, EINVAL, 0 },
      { "bound too low", 64, 15, 1, EINVAL, 0 },
      { "bound too high", 64, 33, 1, EINVAL, 0 },
   };
   for ( Case const & c : cases ) {
      SCOPED_TRACE( c.name );
      fs::remove( path( "ring" ) );
      EXPECT_EQ( 0, inChild( [&] {
                    Skein::SizeSpec sizes{ c.ringKiB };
                    EXPECT_EQ( Skein::initialize( "ring", &sizes, folder.c_str(), 0, c.sizeBits,
                                                  Skein::MultiThreading::one, true, c.descriptionsKiB ),
                               c.result );
                 } ) );
      ASSERT_EQ( fs::exists( path( "ring" ) ), c.result == 0 );
      if ( c.result ) continue;
      U64 const size = fs::file_size( path( "ring" ) );
      EXPECT_EQ( size,
                 sizeof( Skein::FileHeader ) + c.descriptionsKiB * 1024 + c.blocks * Skein::blockBytes );
      EXPECT_LE( size, U64( 1 ) << c.sizeBits );
   }
   EXPECT_EQ( Skein::initialize( "", nullptr, nullptr, 0, 24, Skein::MultiThreading::one, true, 64 ),
              EINVAL );
}

// A ring with some of everything, small enough to be damaged everywhere.
class DamagedRing : public SkeinFile {
 protected:
   void SetUp() override {
      SkeinFile::SetUp();
      ASSERT_EQ( 0, inChild( [&] {
                    openRing( 32, Skein::MultiThreading::one, 1 );
                    TWAIN_FUNCTION( "Damaged::run" );
                    for ( U32 i = 0; i < 40; ++i )
                       TWAIN_TRACE( 6, "number ", i, Vorn::String( "text" ), true );
                 } ) );
      good = contents( path( "ring" ) );
   }
   template< class T >
   std::string with( std::size_t offset, T value ) const {
      std::string octets = good;
      octets.replace( offset, sizeof value, reinterpret_cast< char const * >( &value ), sizeof value );
      return octets;
   }
   std::string good;
};

TEST_F( DamagedRing, headerIsRefusedWithItsReason ) {
   using Skein::FileHeader;
   struct Case {
      std::string octets;
      char const * reason;
   };
   Case const cases[] = {
      { "", "no ring trace" },
      { "SKEIN", "no ring trace" },
      { with( 0, 'X' ), "no ring trace" },
      { good.substr( 0, sizeof( FileHeader ) - 1 ), "a ring trace cut short" },
      { with( offsetof( FileHeader, byteOrder ), 0x04030201u ),
        "a ring trace of a machine with another byte order" },
      { with( offsetof( FileHeader, version ), 2u ), "a ring trace of version 2, which is unknown" },
      { with( offsetof( FileHeader, descriptionsBytes ), ~U64( 0 ) ),
        "a ring trace whose descriptions lie outside of the file" },
      { with( offsetof( FileHeader, descriptionsOffset ), ~U64( 0 ) ),
        "a ring trace whose descriptions lie outside of the file" },
      { with( offsetof( FileHeader, blockNum ), U64( 3 ) ),
        "a ring trace whose blocks lie outside of the file" },
      { with( offsetof( FileHeader, blockNum ), U64( 0 ) ),
        "a ring trace whose blocks lie outside of the file" },
      { with( offsetof( FileHeader, blockBytes ), 0u ), "a ring trace whose blocks lie outside of the file" },
      { with( offsetof( FileHeader, ticksPerSecond ), U64( 0 ) ), "a ring trace whose clock stands still" },
      { good.substr( 0, good.size() - 1 ), "a ring trace whose blocks lie outside of the file" },
   };
   for ( Case const & c : cases ) {
      try {
         LdpTool::RingReader reader( c.octets );
         ADD_FAILURE() << "accepted, not: " << c.reason;
      } catch ( LdpTool::RingError const & error ) {
         EXPECT_STREQ( error.what(), c.reason );
      }
   }
}

TEST_F( DamagedRing, restOfABlockIsLeftOut ) {
   // The writer begins with block 1. Spoil the message id of its second record, behind the timed open.
   std::size_t const block = sizeof( Skein::FileHeader ) + 1024 + Skein::blockBytes;
   std::size_t const second = block + sizeof( Skein::Block ) + 2 + 8 + 2;
   std::string const octets = with( second, U16( 0x3ff0 ) );
   U32 seen = 0;
   LdpTool::RingReader reader( octets );
   reader.forEach( [&]( auto const & ) { ++seen; } );
   EXPECT_EQ( seen, 1u );
   EXPECT_EQ( reader.damaged(), 1u );
}

} // namespace
