// References that several threads take and drop: what a process may do once it has set
// `VFPtrInterface::threadSafePointers_`, and all that it may do. `make thread` runs this under the thread
// sanitizer.
#include "Vorn/Attributes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

namespace Test {

std::atomic< U32 > destroyed = 0;

/// An entity that counts how often its kind is destroyed.
class Shared : public Vorn::Entity {
   VORN_ENTITY( Shared, Vorn::Entity )
   VORN_NOTIFIEE( VORN_ON( Number ); )

 public:
   explicit Shared( Vorn::Name const & name ) : name_( name ) {}
   ~Shared() override { ++destroyed; }

   VORN_NAME;
   VORN_MUTABLE( 0x102, U32, number, Number, local ) = 0;

   VORN_OBSERVERS;
};
VORN_RECORD( Test, Shared )

namespace {

constexpr U32 threads = 4;
constexpr U32 objects = 20'000;

class ThreadTest : public testing::Test {
 protected:
   static void SetUpTestSuite() { Vorn::VFPtrInterface::threadSafePointers_ = true; }

   /// Gives each thread references of its own to all of `held`, lets them go through these in the same order
   /// at the same time, and drops each behind them. `use( reference )` is done with each, several times.
   template< class Reference, class Use >
   static void shareAndDrop( std::vector< Reference > held, Use const & use ) {
      std::latch start( threads );
      std::vector< std::thread > all;
      for ( U32 i = 0; i < threads; ++i ) {
         all.emplace_back( [&start, &use, mine = held]() mutable {
            start.arrive_and_wait();
            for ( Reference & reference : mine ) {
               for ( U32 round = 0; round < 8; ++round ) {
                  Reference const copy( reference );
                  use( copy );
               }
               reference = Reference();
            }
         } );
      }
      held.clear(); // so the last drop is one of the threads'
      for ( std::thread & each : all ) {
         each.join();
      }
   }
};

TEST_F( ThreadTest, theLastDropDestroysAnEntityOnce ) {
   std::vector< Vorn::Ptr< Shared > > held;
   for ( U32 i = 0; i < objects; ++i ) {
      held.push_back( Shared::SharedIs( Vorn::Name( "shared" ) ) );
      held.back()->numberIs( i );
   }
   std::atomic< U64 > sum = 0;
   destroyed = 0;
   shareAndDrop( std::move( held ), [&]( Vorn::Ptr< Shared > const & object ) { sum += object->number(); } );
   EXPECT_EQ( sum, U64( threads ) * 8 * objects * ( objects - 1 ) / 2 );
   EXPECT_EQ( destroyed, objects );
   EXPECT_EQ( Shared::allocTrack().objects(), 0u );
   EXPECT_EQ( Shared::allocTrack().bytes(), 0u );
}

TEST_F( ThreadTest, theLastDropFreesAString ) {
   std::vector< Vorn::String > held;
   for ( U32 i = 0; i < objects; ++i ) {
      held.push_back( Vorn::format( "string number %u", i ) );
   }
   std::atomic< U64 > octets = 0, wanted = 0;
   for ( Vorn::String const & text : held ) {
      wanted += text.bytes();
   }
   shareAndDrop( std::move( held ), [&]( Vorn::String const & text ) {
      // A block that was freed too early would be another's by now.
      if ( text.view().starts_with( "string number " ) ) octets += text.bytes();
   } );
   EXPECT_EQ( octets, threads * 8 * wanted );
}

} // namespace
} // namespace Test
