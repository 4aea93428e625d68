// Ring traces of child processes, and what the reader makes of them. A child begins without a ring, whatever
// the process before did.
#pragma once

#include "Skein/Ring.h"
#include "ring/RingReader.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

class RingFixture : public testing::Test {
 protected:
   void SetUp() override {
      char name[] = "/tmp/ldp-ring-XXXXXX";
      ASSERT_NE( mkdtemp( name ), nullptr );
      folder = name;
   }
   void TearDown() override { std::filesystem::remove_all( folder ); }

   std::string path( std::string const & name ) const { return folder + "/" + name; }

   // What wait tells of a child that runs `body`; 0 if it came to the end of it.
   static int inChild( std::function< void() > const & body ) {
      pid_t const child = fork();
      if ( child == 0 ) {
         body();
         _exit( testing::Test::HasFailure() ? 1 : 0 );
      }
      int status = -1;
      waitpid( child, &status, 0 );
      return status;
   }

   // Opens a ring of that size at path( "ring" ), in a child.
   void openRing( U32 ringKiB = 256, Skein::MultiThreading threads = Skein::MultiThreading::one,
                  unsigned descriptionsKiB = 64 ) const {
      Skein::SizeSpec sizes{ ringKiB };
      ASSERT_EQ( Skein::initialize( path( "ring" ).c_str(), &sizes, nullptr, 0, 24, threads, true,
                                    descriptionsKiB ),
                 0 );
   }

   static std::string contents( std::string const & path ) {
      std::ifstream in( path, std::ios::binary );
      std::ostringstream all;
      all << in.rdbuf();
      return all.str();
   }

   // A record that stands by itself.
   struct Line {
      LdpTool::RingRecord::Kind kind;
      std::string text;
      std::string file;
      std::string function;
      U32 level;
      U32 depth;
      U32 writer;
      bool timed;
      U64 nanoseconds;
   };
   static std::vector< Line > records( std::string const & path, U32 damaged = 0 ) {
      std::vector< Line > all;
      LdpTool::RingReader reader( contents( path ) );
      reader.forEach( [&]( LdpTool::RingRecord const & r ) {
         all.push_back( { r.kind, r.text, std::string( r.site->file ), std::string( r.site->function ),
                          r.site->level, r.depth, r.writer, r.timed, r.nanoseconds } );
      } );
      EXPECT_EQ( reader.damaged(), damaged );
      return all;
   }
   static std::vector< std::string > texts( std::string const & path ) {
      std::vector< std::string > all;
      for ( Line const & line : records( path ) )
         all.push_back( line.text );
      return all;
   }

   std::string folder;
};
