// A ring for benchmarks, with the default sizes, in a file that is gone at once.
#pragma once

#include "Skein/Ring.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

// Turns the ring trace on, for good: benchmarks without it stand before those with it.
inline void ringOn() {
   static bool const on = [] {
      char path[] = "/tmp/ldp-bench-XXXXXX";
      int const fd = mkstemp( path );
      if ( fd >= 0 ) close( fd );
      int const failed =
           Skein::initialize( path, nullptr, nullptr, 0, 24, Skein::MultiThreading::one, true, 512 );
      unlink( path );
      if ( failed ) {
         std::perror( "ring" );
         std::exit( 1 );
      }
      return true;
   }();
   static_cast< void >( on );
}
