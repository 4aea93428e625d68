// Indices of opaque values: handed out, shared, released in turn.
#include "Ldp/LdpP2mpOpaqueTable.h"
#include "Vorn/Trace.h"
#include "model/Observe.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

using namespace Ldp;
using Mpls::FwdEqvClass;
using Test::Watcher;
using Vorn::Ptr;
using Vorn::String;

class P2mpOpaqueTableTest : public testing::Test {
 protected:
   P2mpOpaqueTableTest() { opaque->tableIs( table ); }

   // A FEC of that index, known by its root.
   static FwdEqvClass fec( U32 index, U32 root = 1 ) { return FwdEqvClass( Lumo::IpAddr( root ), index ); }
   U32 newIndex( String const & value ) {
      U32 const index = opaque->getOrCreateOpaqueIndex( value );
      opaque->addMembership( fec( index ) );
      return index;
   }

   Ptr< Mpls::MldpOpaqueValueTable > table = Mpls::mldpOpaqueValueTableFactory( "table" );
   Ptr< LdpP2mpOpaqueTable > opaque = ldpP2mpOpaqueTableFactory( "opaque" );
};

TEST_F( P2mpOpaqueTableTest, HandsOutIndicesFromOneUpward ) {
   EXPECT_EQ( newIndex( "a" ), 1u );
   EXPECT_EQ( newIndex( "b" ), 2u );
   EXPECT_EQ( newIndex( String( "a\0b", 3 ) ), 3u ) << "zero octets count";
   EXPECT_EQ( opaque->getOrCreateOpaqueIndex( "a" ), 1u );
   EXPECT_EQ( opaque->largestAllocatedId(), 3u );
   EXPECT_EQ( opaque->getOpaqueIndex( "b" ), 2u );
   EXPECT_EQ( opaque->getOpaqueVal( 3 ), String( "a\0b", 3 ) );
   EXPECT_EQ( opaque->getOpaqueIndex( "c" ), 0u );
   EXPECT_EQ( table->opaqueValColl()->opaqueVals(), 3u ) << "asking creates nothing";
   EXPECT_EQ( opaque->largestAllocatedId(), 3u );
}

TEST_F( P2mpOpaqueTableTest, ReleasedIndicesComeBackOldestFirst ) {
   for ( char const * value : { "a", "b", "c" } ) {
      newIndex( value );
   }
   opaque->delMembership( fec( 2 ) );
   opaque->delMembership( fec( 1 ) );
   EXPECT_EQ( newIndex( "d" ), 2u );
   EXPECT_EQ( newIndex( "a" ), 1u );
   EXPECT_EQ( newIndex( "e" ), 4u );
   EXPECT_EQ( opaque->getOpaqueVal( 2 ), "d" );
   EXPECT_EQ( opaque->getOpaqueIndex( "b" ), 0u );
}

TEST_F( P2mpOpaqueTableTest, AValueGoesWithItsLastFec ) {
   newIndex( "a" );
   opaque->addMembership( fec( 1, 2 ) );
   opaque->delMembership( fec( 1, 2 ) );
   EXPECT_EQ( opaque->getOpaqueIndex( "a" ), 1u );
   opaque->delMembership( fec( 1, 3 ) ); // was never there
   EXPECT_EQ( opaque->getOpaqueIndex( "a" ), 1u );
   opaque->delMembership( fec( 1 ) );
   EXPECT_EQ( opaque->getOpaqueIndex( "a" ), 0u );
   EXPECT_FALSE( table->opaqueIndexColl()->opaqueIndex( 1 ) );
   EXPECT_EQ( opaque->freeIds(), 1u );

   opaque->getOrCreateOpaqueIndex( "b" ); // gets no member
   opaque->delMembership( fec( 1 ) );
   EXPECT_EQ( opaque->getOpaqueIndex( "b" ), 0u ) << "the count decides, not what was removed";
}

TEST_F( P2mpOpaqueTableTest, AnObserverMayDropTheAllocatorAndTheTable ) {
   {
      auto & dropped = *opaque;
      Watcher dropping( dropped, [&] { opaque = nullptr; } );
      EXPECT_EQ( dropped.getOrCreateOpaqueIndex( "a" ), 1u );
      EXPECT_EQ( table->opaqueIndexColl()->opaqueIndex( 1 )->oValStr(), "a" );
   }
   opaque = ldpP2mpOpaqueTableFactory( "another" );
   opaque->tableIs( table );
   opaque->addMembership( fec( 1 ) );
   auto & dropped = *opaque;
   Watcher dropping( *table->opaqueIndexColl(), [&] {
      opaque = nullptr;
      dropped.tableIs( nullptr );
      table = nullptr;
   } );
   auto const values = table->opaqueValColl();
   dropped.delMembership( fec( 1 ) );
   EXPECT_FALSE( opaque || table );
   EXPECT_EQ( values->opaqueVals(), 0u );
}

TEST_F( P2mpOpaqueTableTest, AnObserverMayRemoveTheLastFecBeforeTheOther ) {
   newIndex( "a" );
   opaque->addMembership( fec( 1, 2 ) );
   bool once = true;
   Watcher removing( *table->opaqueIndexColl()->opaqueIndex( 1 ), [&] {
      if ( std::exchange( once, false ) ) opaque->delMembership( fec( 1, 2 ) );
   } );
   opaque->delMembership( fec( 1 ) );
   EXPECT_EQ( opaque->freeIds(), 1u ) << "released once";
}

TEST_F( P2mpOpaqueTableTest, TracesWhatItDoes ) {
   newIndex( "a" );
   opaque->delMembership( fec( 1 ) );
   std::stringstream lines;
   Vorn::TraceFacility::sinkIs( &lines );
   Vorn::TraceFacility::levelsIs( "LdpP2mpOpaqueTable", 1u << 9 );
   newIndex( "b" );
   opaque->allocate();
   opaque->delMembership( fec( 1 ) );
   Vorn::TraceFacility::levelsIs( "LdpP2mpOpaqueTable", 0 );
   Vorn::TraceFacility::sinkIs( nullptr );
   std::string line;
   for ( char const * text :
         { "In LdpP2mpOpaqueTable id is 1 reused = 1",
           " In LdpP2mpOpaqueTable::getOrCreateOpaqueIndex newIndex is 1",
           "Added membership for p2mp(0.0.0.1,1)", "In LdpP2mpOpaqueTable id is 2 reused = 0",
           "In LdpP2mpOpaqueTable::delMembership oIndex is 1",
           "Removing membership for p2mpFecId p2mp(0.0.0.1,1)", "Number of memberships = 0" } ) {
      std::getline( lines, line );
      EXPECT_TRUE( line.ends_with( std::string( " " ) + text ) ) << line;
   }
   EXPECT_FALSE( std::getline( lines, line ) ) << line;
}

TEST_F( P2mpOpaqueTableTest, MistakesEndTheProcess ) {
   newIndex( "a" );
   EXPECT_DEATH( opaque->getOpaqueVal( 2 ), "`false && \"OpaqueValue absent for internal id\"'" );
   EXPECT_DEATH( opaque->addMembership( fec( 2 ) ), "`oi'" );
   EXPECT_DEATH( opaque->delMembership( fec( 2 ) ), "`oi'" );
   EXPECT_DEATH( opaque->free( 0 ), "`id != invalidId\\(\\)'" );
   opaque->free( 1 ); // while it is in use
   EXPECT_EQ( opaque->getOrCreateOpaqueIndex( "a" ), 1u );
   EXPECT_DEATH( opaque->getOrCreateOpaqueIndex( "b" ), "`!oi'" );
}

TEST_F( P2mpOpaqueTableTest, RunningOutEndsTheProcess ) {
   opaque->largestAllocatedIdIs( ~0u );
   opaque->free( 7 );
   opaque->free( 7 ); // nobody looks
   EXPECT_EQ( opaque->allocate(), 7u );
   EXPECT_EQ( opaque->allocate(), 7u );
   EXPECT_DEATH( opaque->allocate(), "`id != invalidId\\(\\)'" );
}

} // namespace
