// What several threads may do at once in a process that has set `VFPtrInterface::threadSafePointers_`: take
// and drop references, decode, and work on trees of their own. `make thread` runs this under the thread
// sanitizer.
#include "Ldp/LdpPduStream.h"
#include "Ldp/LdpStatus.h"
#include "Skein/Ring.h"
#include "Twain/Trace.h"
#include "Vorn/NboAttrLog.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Test {

std::atomic< U32 > destroyed = 0;

/// An entity that counts how often its kind is destroyed.
class Shared : public Vorn::Entity {
   VORN_ENTITY( Shared, Vorn::Entity )

 public:
   explicit Shared( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   VORN_MUTABLE( 0x102, U32, number, Number, local ) = 0;

   VORN_OBSERVERS;
};
VORN_RECORD_BUT_DESTRUCTOR( Test, Shared )
Shared::~Shared() { ++destroyed; }

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

/// Does `work( number of the thread )` in all threads at the same time.
template< class Work >
void inAllThreads( Work const & work ) {
   std::latch start( threads );
   std::vector< std::thread > all;
   for ( U32 i = 0; i < threads; ++i ) {
      all.emplace_back( [&start, &work, i] {
         start.arrive_and_wait();
         work( i );
      } );
   }
   for ( std::thread & each : all ) {
      each.join();
   }
}

// Each thread has a stream of its own. Packets, finished parsers and their texts go from one to the other,
// with both traces on.
TEST_F( ThreadTest, decodeAndHandOn ) {
   static U8 const octets[] = {
      0, 1, 0, 33, 10, 0, 0, 1,  0,  0, 4, 0, 0, 23, 0, 0, 0, 9, // PDU, Label Mapping
      1, 0, 0, 7,  2,  0, 1, 24, 10, 1, 2, 2, 0, 0,  4, 0, 0, 0, 99,
      0, 1, 0, 33, 10, 0, 0, 1,  0,  0, 4, 0, 0, 23, 0, 0, 0, 9, // the same with a FEC that nobody knows
      1, 0, 0, 7,  9,  0, 1, 24, 10, 1, 2, 2, 0, 0,  4, 0, 0, 0, 99,
   };
   std::string const ring = testing::TempDir() + "thread_test_" +
                            std::to_string( ::testing::UnitTest::GetInstance()->random_seed() ) + ".sk";
   ASSERT_EQ(
        Skein::initialize( ring.c_str(), nullptr, "", 0, 24, Skein::MultiThreading::perThread, true, 512 ),
        0 );
   std::ofstream nowhere( "/dev/null" );
   Vorn::TraceFacility::sinkIs( &nowhere );
   Vorn::TraceFacility::levelsIs( "LdpGenMsgParser", ~0u );
   std::mutex mutex;
   std::vector< Vorn::Ptr< Ldp::LdpMsgParser > > handedOn;
   std::atomic< U32 > good = 0, bad = 0, seen = 0;
   constexpr U32 rounds = 500;
   inAllThreads( [&]( U32 ) {
      Ldp::LdpPduStream stream;
      for ( U32 i = 0; i < rounds; ++i ) {
         std::span< U8 const > left( octets );
         while ( auto const pdu = stream.next( left ) ) {
            auto const message = pdu.message( 0 );
            ++( message->validMsg() ? good : bad );
            Vorn::Ptr< Ldp::LdpMsgParser > other;
            {
               std::scoped_lock const lock( mutex );
               handedOn.push_back( message );
               if ( handedOn.size() > 8 ) {
                  other = handedOn.front();
                  handedOn.erase( handedOn.begin() );
               }
            }
            if ( other && other->msgId() == 9 &&
                 other->stringValue().view().ends_with( other->validMsg() ? "L(99)" : "0x09" ) )
               ++seen;
         }
      }
   } );
   Vorn::TraceFacility::levelsIs( "LdpGenMsgParser", 0 );
   Vorn::TraceFacility::sinkIs( nullptr );
   std::remove( ring.c_str() );
   EXPECT_EQ( good, threads * rounds );
   EXPECT_EQ( bad, threads * rounds );
   EXPECT_EQ( seen, 2 * threads * rounds - 8 );
   EXPECT_EQ( Ldp::callDepth, 0 ) << "all have come back";
}

// Each thread has a tree of its own, observed and copied through a log; keys and values are shared.
TEST_F( ThreadTest, aTreeToEachThread ) {
   struct Observer : Ldp::LdpSessionStatus::NotifieeConst {
      void onLdpSessionState() override { ++told; }
      U32 told = 0;
   };
   Vorn::Name const name( "sessions" );
   Vorn::String const reason( "a reason that all of them share" );
   std::atomic< U32 > told = 0, copied = 0;
   constexpr U32 sessions = 100;
   inAllThreads( [&]( U32 ) {
      auto const tree = Ldp::ldpSessionStatusCollFactory( name );
      auto const log = Vorn::newObject< Vorn::NboAttrLog::Out >();
      tree->vornNboAttrLogSaIs( 0, 0, log );
      auto const copy = Ldp::ldpSessionStatusCollFactory( name );
      auto const reader =
           Vorn::newObject< Vorn::NboAttrLog::Demuxer >( Vorn::newObject< Vorn::NboAttrLog::Out >() );
      reader->rootIs( copy );
      for ( U32 i = 0; i < sessions; ++i ) {
         auto const session = tree->sessionStatusIs( Ldp::LdpSessionId( Ldp::LdpIdentifier( i, 0 ) ) );
         auto const observer = Vorn::newObject< Observer >();
         observer->isRegisteredNotifieeIs( true );
         observer->notifierIs( session );
         session->sessionStateReasonIs( reason );
         session->ldpSessionStateIs( Ldp::LdpSessionState( Ldp::stateOpenSent, Ldp::success ) );
         session->peerIntfIpIs( Lumo::IpGenAddr( Lumo::IpAddr( i ) ), true );
         told += observer->told;
         while ( auto const bytes = log->bytes() ) {
            reader->bytesIs( log->data(), bytes );
            log->drained( bytes );
         }
         if ( i % 3 == 0 ) tree->sessionStatusDel( session->ldpSessionId() );
      }
      copied += copy->sessionStatuss();
   } );
   EXPECT_EQ( told, threads * sessions );
   EXPECT_GT( copied, threads * sessions / 2 );
}

} // namespace
} // namespace Test
