// Graceful restart of this speaker.
#include "Ldp/LdpGr.h"
#include "Vorn/System.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST( LocalGrStatusTest, RemainingTimeEndsAtZeroAndForeverIsZeroToo ) {
   auto const status = Ldp::localGrStatusFactory();
   Vorn::System::clockIs( [] { return 1000.0; } );
   EXPECT_EQ( status->remainingHoldingTime(), 0.0 ) << "never set";
   status->holdingTimerExpirationTimeIs( 1000.25 );
   EXPECT_EQ( status->remainingHoldingTime(), 0.25 );
   status->holdingTimerExpirationTimeIs( 1000.0 );
   EXPECT_EQ( status->remainingHoldingTime(), 0.0 );
   status->holdingTimerExpirationTimeIs( 900.0 );
   EXPECT_EQ( status->remainingHoldingTime(), 0.0 ) << "expired";
   double const most = std::numeric_limits< double >::max();
   status->holdingTimerExpirationTimeIs( most );
   EXPECT_EQ( status->remainingHoldingTime(), most ) << "far, but not forever";
   status->holdingTimerExpirationTimeIs( std::numeric_limits< double >::infinity() );
   EXPECT_EQ( status->remainingHoldingTime(), 0.0 );
   Vorn::System::clockIs( nullptr );
}

} // namespace
