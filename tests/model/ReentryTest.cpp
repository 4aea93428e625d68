// The re-entrant scheduler for a moment. LDP_REENTRY_SEED repeats a run, LDP_REENTRY_STEPS makes a long one.
#include "support/Reentry.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

using Test::Choices;
using Test::meddle;

U64 setting( char const * name, U64 otherwise ) {
   char const * const text = std::getenv( name );
   return text ? std::strtoull( text, nullptr, 10 ) : otherwise;
}

TEST( Reentry, noOrderOfCallsReachesWhatIsGone ) {
   constexpr U64 round = 2'000; // a world each, so that a failing one is short
   U64 seed = setting( "LDP_REENTRY_SEED", std::random_device()() );
   for ( U64 steps = setting( "LDP_REENTRY_STEPS", 40'000 ); steps; steps -= std::min( steps, round ) ) {
      // Said beforehand, since what goes wrong ends the process. The last one is the culprit.
      std::fprintf( stderr, "\rLDP_REENTRY_SEED=%llu ", static_cast< unsigned long long >( seed ) );
      Choices choices( seed++ );
      meddle( choices, std::min( steps, round ) );
   }
   std::fprintf( stderr, "\n" );
}

} // namespace
