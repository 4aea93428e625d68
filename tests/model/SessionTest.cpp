// What sessions do beyond their attributes: identity, the state with its cause, the history.
#include "Ldp/LdpSession.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Test::observerOf;
using Test::Watcher;
using Vorn::Name;
using Vorn::Ptr;
using Vorn::String;

using Calls = std::vector< std::string >;

LdpSessionId peer( U32 lsrId, U16 lblSpace = 0 ) { return LdpSessionId( LdpIdentifier( lsrId, lblSpace ) ); }

// The mix as it is written down for 32-bit words, then the label space.
U32 mixed( U32 h, U16 s ) {
   h = ~h + ( h << 15 );
   h = h ^ ( h >> 12 );
   h = h * 5;
   h = h ^ ( h >> 4 );
   h = h * 2057;
   h = h ^ ( h >> 16 );
   return h + s;
}

TEST( LdpSessionIdTest, HashMixesTheLsrIdAndAddsTheLabelSpace ) {
   for ( U32 const lsrId : { 0u, 1u, 0x0a000001u, 0x7fffffffu, 0x80000000u, 0xffffffffu } ) {
      for ( U16 const space : { U16( 0 ), U16( 1 ), U16( 65535 ) } ) {
         EXPECT_EQ( peer( lsrId, space ).hash(), mixed( lsrId, space ) );
      }
   }
   EXPECT_EQ( peer( 0x0a000001, 1 ).hash(), peer( 0x0a000001 ).hash() + 1 ) << "neighbours";
}

TEST( LdpSessionIdTest, ABadTextNamesTheField ) {
   LdpSessionId id;
   try {
      Vorn::strepToValue( String( "10.0.0.1" ), &id );
      FAIL() << "a text without a label space was read";
   } catch ( Vorn::RangeException const & failure ) {
      EXPECT_NE( failure.message().view().find( "peerLdpId" ), std::string_view::npos );
   }
}

class StatusLog : public LdpSessionStatus::NotifieeConst {
 public:
   Calls calls;
   Calls taken() { return std::exchange( calls, {} ); }
   void onLdpSessionState() override { calls.push_back( "state" ); }
   void onSessionStateCount( SessionState key ) override {
      calls.push_back( std::string( "count " ) + valueToStrep( key ).charPtr() );
   }
   void onSessionStateLogEntryColl() override { calls.push_back( "log" ); }
   void onPeerLabelRescAvailableCount() override { calls.push_back( "resources" ); }
   void onFatalRetryCount() override { calls.push_back( "retries" ); }
   void onOperGrStateKick() override { calls.push_back( "kick" ); }

 private:
   VORN_OBJECT( StatusLog )
};
VORN_OBJECT_RECORD( Test, StatusLog, &LdpSessionStatus::NotifieeConst::_vornType )

class SessionStatusTest : public testing::Test {
 protected:
   Ptr< LdpSessionStatus > status = ldpSessionStatusFactory( peer( 1 ) );
   Ptr< StatusLog > seen = observerOf< StatusLog >( *status );
};

TEST_F( SessionStatusTest, StateAndCodeChangeTogether ) {
   status->ldpSessionStateIs( LdpSessionState( stateOperational, success ) );
   EXPECT_EQ( status->sessionState(), stateOperational );
   EXPECT_EQ( seen->taken(), Calls{ "state" } );
   status->ldpSessionStateIs( LdpSessionState( stateOperational, success ) );
   EXPECT_EQ( seen->taken(), Calls{} );
   status->ldpSessionStateIs( LdpSessionState( stateOperational, holdTimerExpired ) );
   EXPECT_EQ( status->code(), holdTimerExpired );
   EXPECT_EQ( seen->taken(), Calls{ "state" } ) << "the code alone differs";
}

TEST_F( SessionStatusTest, CheckInitMakesOneHistory ) {
   EXPECT_FALSE( status->sessionStateLogEntryColl() );
   status->checkInit();
   auto const log = status->sessionStateLogEntryColl();
   ASSERT_TRUE( log );
   EXPECT_TRUE( log->name().empty() );
   EXPECT_EQ( log->parent().ptr(), status.ptr() );
   status->checkInit();
   EXPECT_EQ( status->sessionStateLogEntryColl().ptr(), log.ptr() );
   EXPECT_EQ( seen->taken(), Calls{ "log" } );
   auto const named = status->sessionStateLogEntryCollIs( Vorn::Name( "named" ) );
   status->checkInit();
   EXPECT_EQ( status->sessionStateLogEntryColl(), named ) << "whatever it is";
}

TEST_F( SessionStatusTest, AHistoryHeldElsewhereOutlivesTheStatus ) {
   status->checkInit();
   auto const log = status->sessionStateLogEntryColl();
   seen->taken();
   status = nullptr;
   EXPECT_EQ( seen->taken(), Calls{ "log" } ) << "the child goes while observers are bound";
   EXPECT_FALSE( log->parent() );
   log->addSessionStateLogEntry( LdpSessionStateLogEntry( 1.0, stateExpired, success, "later" ) );
   EXPECT_EQ( log->sessionStateLogEntrys(), 1u );
}

TEST_F( SessionStatusTest, CountersWrapAtTheirWidthAndTellOfChanges ) {
   EXPECT_EQ( status->sessionStateCountInc( stateOperational, 1 ), 1u );
   EXPECT_EQ( seen->taken(), Calls{ "count stateOperational" } );
   EXPECT_EQ( status->sessionStateCountInc( stateExpired, 0 ), 0u );
   EXPECT_TRUE( status->sessionStateCountHas( stateExpired ) ) << "a zero entry stays behind";
   EXPECT_EQ( seen->taken(), Calls{} );
   EXPECT_EQ( status->fatalRetryCountInc( ~U64( 0 ) ), ~U64( 0 ) );
   EXPECT_EQ( status->fatalRetryCountInc( 2 ), 1u );
   EXPECT_EQ( status->peerLabelRescAvailableCountInc( ~0u ), ~0u );
   EXPECT_EQ( status->peerLabelRescAvailableCountInc( 0 ), ~0u );
   EXPECT_EQ( status->operGrStateKickInc( 1 ), 1u );
   EXPECT_EQ( seen->taken(), ( Calls{ "retries", "retries", "resources", "kick" } ) );
}

class HistoryLog : public LdpSessionStateLogEntryColl::NotifieeConst {
 public:
   std::vector< U32 > calls;
   std::vector< U32 > taken() { return std::exchange( calls, {} ); }
   void onSessionStateLogEntry( U32 index ) override { calls.push_back( index ); }

 private:
   VORN_OBJECT( HistoryLog )
};
VORN_OBJECT_RECORD( Test, HistoryLog, &LdpSessionStateLogEntryColl::NotifieeConst::_vornType )

class SessionHistoryTest : public testing::Test {
 protected:
   using Indices = std::vector< U32 >;
   using Entry = LdpSessionStateLogEntry;

   Ptr< LdpSessionStateLogEntryColl > log = ldpSessionStateLogEntryCollFactory( "" );
   Ptr< HistoryLog > seen = observerOf< HistoryLog >( *log );

   Entry entry( double time, String const & reason = "up" ) {
      return Entry( time, stateOperational, success, reason );
   }
   Indices indices() {
      Indices found;
      for ( Vorn::LinkQueue< LdpSessionStateLogEntryColl, U32, Entry >::IteratorConst it(
                 log->sessionStateLogEntryColl() );
            it; it.advance() ) {
         found.push_back( it->index() );
      }
      return found;
   }
   void fill( U32 entries ) {
      for ( U32 i = 0; i < entries; ++i ) {
         log->addSessionStateLogEntry( entry( i, Vorn::valueToStrep( i ) ) );
      }
      seen->taken();
   }
};

TEST_F( SessionHistoryTest, AnEmptyLogTakesEvenTheDefaultEntry ) {
   EXPECT_TRUE( log->shouldAddSessionStateLogEntry( Entry() ) );
   log->addSessionStateLogEntry( Entry() );
   EXPECT_EQ( indices(), Indices{ 0 } );
   log->addSessionStateLogEntry( Entry() );
   EXPECT_EQ( indices(), Indices{ 0 } ) << "now it repeats the newest";
}

TEST_F( SessionHistoryTest, ARepeatKeepsTheFirstTime ) {
   log->addSessionStateLogEntry( entry( 1.0 ) );
   log->addSessionStateLogEntry( entry( 2.0 ) );
   EXPECT_EQ( log->sessionStateLogEntrys(), 1u );
   EXPECT_EQ( log->sessionStateLogEntry( 0 ).timeStamp(), 1.0 );
   EXPECT_EQ( seen->taken(), Indices{ 0 } );
   log->internalAddLogEntry_( entry( 3.0 ) );
   EXPECT_EQ( indices(), ( Indices{ 0, 1 } ) ) << "which asks for no difference";
}

TEST_F( SessionHistoryTest, ADifferenceInStateCodeOrReasonIsNoRepeat ) {
   Entry const other[] = {
      Entry( 1.0, stateExpired, success, "up" ),
      Entry( 1.0, stateOperational, shutdown, "up" ),
      Entry( 1.0, stateOperational, success, "up " ),
      Entry( 1.0, stateOperational, success, "UP" ),
   };
   for ( Entry const & differs : other ) {
      log = ldpSessionStateLogEntryCollFactory( "" );
      log->addSessionStateLogEntry( entry( 1.0 ) );
      log->addSessionStateLogEntry( differs );
      log->addSessionStateLogEntry( entry( 1.0 ) );
      EXPECT_EQ( log->sessionStateLogEntrys(), 3u ) << "only the newest counts: " << differs;
   }
}

TEST_F( SessionHistoryTest, TheEleventhPushesOutTheOldest ) {
   fill( 10 );
   log->addSessionStateLogEntry( entry( 10.0 ) );
   EXPECT_EQ( seen->taken(), ( Indices{ 0, 10 } ) );
   EXPECT_EQ( indices(), ( Indices{ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 } ) );
   fill( 14 );
   EXPECT_EQ( indices().front(), 15u );
   EXPECT_EQ( indices().back(), 24u );
}

TEST_F( SessionHistoryTest, AnObserverMayDropTheLogAtTheFirstOfTwoChanges ) {
   fill( 10 );
   Watcher dropper( *log, [&] { log = nullptr; } );
   log->addSessionStateLogEntry( entry( 10.0 ) );
   EXPECT_EQ( dropper.taken(), ( Calls{ "sessionStateLogEntry[0]", "sessionStateLogEntry[10]" } ) );
}

TEST_F( SessionHistoryTest, AnEmptiedLogGoesOnCounting ) {
   fill( 3 );
   log->sessionStateLogEntryDelAll();
   EXPECT_EQ( seen->taken(), ( Indices{ 0, 1, 2 } ) );
   EXPECT_EQ( log->sessionStateLogEntryDeq(), Entry() );
   EXPECT_EQ( seen->taken(), Indices{} );
   EXPECT_EQ( log->sessionStateLogEntryEnq( entry( 1.0 ) ), 3u );
}

TEST_F( SessionHistoryTest, MoreThanTenEndTheProcessAtTheNextAddition ) {
   fill( 10 );
   log->sessionStateLogEntryEnq( entry( 10.0 ) );
   log->addSessionStateLogEntry( entry( 11.0 ) ); // a repeat does not come so far
   EXPECT_EQ( log->sessionStateLogEntrys(), 11u );
   char const * const text = "sessionStateLogEntrys\\(\\) <= maxSize\\(\\)";
   EXPECT_DEATH( log->internalAddLogEntry_( entry( 11.0 ) ), text );
   EXPECT_DEATH( log->addSessionStateLogEntry( entry( 11.0, "down" ) ), text );
}

TEST_F( SessionHistoryTest, IsReachedThroughReflection ) {
   auto const & type = *log->fwkType();
   Entry const up = entry( 1.0 );
   void const * const args[] = { &up };
   auto const call = [&]( char const * name, void * result ) {
      return type.genericIfAttributeOp( result, static_cast< Vorn::PtrInterface * >( log.ptr() ),
                                        *type.attribute( name ), Vorn::GenericIf::write, nullptr, args );
   };
   bool should = false;
   EXPECT_EQ( call( "shouldAddSessionStateLogEntry", &should ), Vorn::GenericIf::done );
   EXPECT_TRUE( should );
   EXPECT_EQ( call( "addSessionStateLogEntry", nullptr ), Vorn::GenericIf::done );
   EXPECT_EQ( call( "shouldAddSessionStateLogEntry", &should ), Vorn::GenericIf::done );
   EXPECT_FALSE( should );
}

} // namespace
