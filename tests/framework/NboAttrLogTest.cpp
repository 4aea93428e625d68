// The attribute log: what travels, when, and what does not.

#include "framework/LogOctets.h"
#include "framework/LogSamples.h"

#include <algorithm>

namespace {

using namespace Test;
using Vorn::Name;
using Vorn::String;

TEST( NboAttrLog, aWholeTreeArrivesThroughBuffersOfEverySize ) {
   auto const tree = grownTree();
   for ( U32 const capacity : { 64u, 65u, 100u, 127u, 300u, 1000u, 65536u } ) {
      LogPair pair( capacity );
      tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
      pair.flush();
      EXPECT_EQ( logged( *tree ), logged( *pair.root() ) ) << capacity;
   }
}

TEST( NboAttrLog, onlyLoggedAttributesTravel ) {
   Adjacencies pair;
   pair.member->rxPktCountInc( 1 );
   pair.member->msgIdIs( 7 );
   EXPECT_TRUE( pair.take().empty() );
   pair.member->operHoldTimeIs( 45 );
   // Token 0, the value, token 2; the value in its width, big-endian.
   EXPECT_EQ( ( std::vector< Record >{ { 0, 2, 0x106, { 0, 45 } } } ), records( pair.take() ) );
   pair.member->operHoldTimeIs( 45 );
   EXPECT_TRUE( pair.take().empty() ) << "an equal write is silent";
}

TEST( NboAttrLog, aMemberComesAndGoesAsOneRecordEach ) {
   Adjacencies pair;
   Ldp::LdpAdjId const id = adjId( 2 );
   pair.coll->adjStatusIs( id );
   auto const added = records( pair.take() );
   ASSERT_EQ( 7u, added.size() );
   // Identifier (address, label space), interface, target address; then the type's number and the entity's.
   EXPECT_EQ( ( Record{ 3, 1, 0x102, { 10,  0,   0,   2, 0, 0, 0, 0, 0, 9, 'E', 't', 'h', 'e', 'r', 'n',
                                       'e', 't', '1', 0, 0, 0, 0, 0, 0, 0, 2,   0,   0,   0,   3 } } ),
              added[0] );
   U32 last = 0;
   for ( std::size_t i = 1; i < added.size(); ++i ) {
      EXPECT_EQ( 3u, added[i].entity ) << "its scalars follow, one by one";
      EXPECT_LT( std::exchange( last, added[i].attribute ), added[i].attribute )
           << "in the order of their ids";
   }
   pair.coll->adjStatusDel( id );
   auto const deleted = records( pair.take() );
   ASSERT_EQ( 1u, deleted.size() );
   EXPECT_EQ( 0xfffffefeu, deleted[0].attribute );
   EXPECT_EQ( 0, std::memcmp( deleted[0].value.data(), added[0].value.data(), deleted[0].value.size() ) );
   EXPECT_EQ( 23u, deleted[0].value.size() ) << "the key alone";
}

TEST( NboAttrLog, whatFindsNoRoomGoesOutOnceWithItsLatestValue ) {
   Adjacencies pair( 100 );
   auto const other = pair.coll->adjStatusIs( adjId( 2 ) );
   pair.flush();
   pair.starve();
   for ( U16 i = 0; i < 10; ++i ) {
      other->operHoldTimeIs( U16( 100 + i ) );
   }
   while ( pair.source.out->hasSufficientBuffer() == false ) {
      pair.source.out->drained( pair.source.out->bytes() ); // lost for this test, which looks at what follows
   }
   auto const sent = records( pair.take() );
   std::size_t times = 0;
   for ( Record const & record : sent ) {
      if ( record.attribute != 0x106 ) continue;
      ++times;
      EXPECT_EQ( ( std::vector< U8 >{ 0, 109 } ), record.value );
   }
   EXPECT_EQ( 1u, times );
}

TEST( NboAttrLog, tenChangesOfAKeyCostOneRecord ) {
   auto const tree = grownTree();
   auto const branch = tree->branch( Name( "left" ) );
   LogPair pair( 64 );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   while ( pair.source.out->hasSufficientBuffer() ) {
      tree->ageIs( U8( tree->age() + 1 ) );
   }
   for ( U32 i = 0; i < 10; ++i ) {
      branch->flagIs( 1000, i % 2 );
      branch->scoreIs( "score 1", i );
      branch->scoreDel( "score 2" );
      branch->scoreIs( "score 2", 5.0 );
      branch->scoreDel( "score 2" );
   }
   std::vector< Record > sent;
   for ( auto octets = pair.take(); !octets.empty(); octets = pair.take() ) {
      for ( auto & record : records( octets ) ) {
         sent.push_back( record );
      }
   }
   auto const count = [&]( U32 attribute ) {
      return std::count_if( sent.begin(), sent.end(),
                            [&]( Record const & r ) { return r.attribute == attribute; } );
   };
   EXPECT_EQ( 1, count( 0x106 ) );
   EXPECT_EQ( 1, count( 0x104 ) );
   EXPECT_EQ( 1, count( 0u - 0x104 ) ) << "a key that is absent when room returns is deleted";
}

TEST( NboAttrLog, keysThatComeAndGoWhileNobodyListensDoNotPileUp ) {
   auto const tree = treeFactory( Name( "tree" ) );
   auto const branch = tree->branchIs( Name( "branch" ) );
   LogPair pair( 64 );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   branch->markIs( 1 );
   pair.flush();
   for ( U64 i = 0; i < 10000; ++i ) {
      branch->markIs( 2 + i );
      branch->markDel( 2 + i );
      branch->eventEnq( "event" );
      branch->eventDeq();
   }
   U64 const before = pair.copy.demuxer->records();
   pair.flush();
   EXPECT_LT( pair.copy.demuxer->records() - before, 100u );
   EXPECT_EQ( logged( *tree ), logged( *pair.root() ) );
   branch->eventEnq( "the next" );
   pair.flush();
   EXPECT_EQ( logged( *tree ), logged( *pair.root() ) );
}

TEST( NboAttrLog, aReferenceLeadsToTheCopyOfItsTargetWhileThatIsOnTheLog ) {
   auto const tree = treeFactory( Name( "tree" ) );
   auto const branch = tree->branchIs( Name( "branch" ) );
   auto const twig = branch->twigIs( 1U, String( "oak" ), U16( 0 ) );
   auto const loose = twigFactory( 2U, String( "drift" ), U16( 0 ) );
   LogPair pair;
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   Branch & copy = *static_cast< Tree & >( *pair.root() ).branch( Name( "branch" ) );
   branch->besideIs( "to the loose one", loose );
   branch->besideIs( "to the twig", twig );
   branch->insideIs( twig );
   twig->palIs( loose );
   pair.flush();
   EXPECT_EQ( copy.twig( 1 ), copy.beside( "to the twig" ) );
   EXPECT_EQ( copy.twig( 1 ), copy.inside( 1 ) );
   EXPECT_EQ( nullptr, copy.twig( 1 )->pal() );
   EXPECT_EQ( nullptr, copy.beside( "to the loose one" ) );

   loose->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   ASSERT_EQ( 2u, pair.copy.demuxer->roots().size() );
   EXPECT_EQ( pair.copy.demuxer->roots()[1], copy.twig( 1 )->pal() ) << "now the target is known";
   EXPECT_NE( nullptr, copy.beside( "to the loose one" ).ptr() );

   branch->twigDel( 1 );
   pair.flush();
   EXPECT_EQ( nullptr, copy.beside( "to the twig" ) )
        << "the original's still leads to it, but nobody here can know it";
   EXPECT_NE( nullptr, branch->beside( "to the twig" ).ptr() );
}

TEST( NboAttrLog, whatWaitedInAQueueComesInItsOrderWithItsIndices ) {
   for ( U32 const start : { 0u, 0xfffffff0u } ) {
      auto const branch = branchFactory( Name( "branch" ) );
      for ( U32 i = 0; i < 3; ++i ) {
         branch->eventIs( start + i, "before" );
      }
      LogPair pair( 64 );
      branch->vornNboAttrLogSaIs( 0, 0, pair.source.out );
      pair.flush();
      Branch & copy = static_cast< Branch & >( *pair.root() );
      struct Watch : Branch::NotifieeConst {
         explicit Watch( Branch & branch ) {
            isRegisteredNotifieeIs( true );
            notifierIs( Ptr< Vorn::PtrInterface const >( &branch ) );
            isWeakReferenceIs( true );
            hasNotificationActiveIs( true );
         }
         void onEvent( U32 index ) override {
            auto const & queue = static_cast< Branch const & >( *notifier() ).eventColl();
            if ( queue[index] ) told.push_back( index );
         }
         std::vector< U32 > told;
      };
      auto const watch = Vorn::newObject< Watch >( copy );
      for ( U32 i = 0; i < 40; ++i ) {
         branch->eventEnq( "waiting" );
         if ( i % 3 == 0 ) branch->eventDeq();
      }
      branch->eventDel( start + 42 ); // the last: the copy never hears of it as an element
      pair.flush();
      EXPECT_EQ( logged( *branch ), logged( copy ) );
      EXPECT_EQ( branch->eventColl().firstIndex(), copy.eventColl().firstIndex() );
      EXPECT_EQ( branch->eventColl().nextIndex(), copy.eventColl().nextIndex() );
      for ( std::size_t i = 1; i < watch->told.size(); ++i ) {
         EXPECT_LT( watch->told[i - 1] - start, watch->told[i] - start );
      }
      branch->eventDelAll();
      pair.flush();
      EXPECT_EQ( branch->eventColl().firstIndex(), copy.eventColl().firstIndex() ) << "an empty queue too";
   }
}

TEST( NboAttrLog, aMemberThatWasTakenOutIsSilent ) {
   Adjacencies pair;
   pair.coll->adjStatusDel( pair.member->ldpAdjId() );
   pair.flush();
   pair.member->operHoldTimeIs( 99 );
   EXPECT_TRUE( pair.take().empty() );
   EXPECT_EQ( nullptr, pair.member->vornNboAttrLogSa( pair.source.out ) );
}

TEST( NboAttrLog, flagsAreMergedIntoAnAdapterThatIsThere ) {
   Adjacencies pair;
   auto const sa = pair.coll->vornNboAttrLogSa( pair.source.out );
   EXPECT_EQ( sa, pair.coll->vornNboAttrLogSaIs( StreamAdapter::suppressed, 0, pair.source.out ) );
   EXPECT_TRUE( sa->flags().any( StreamAdapter::suppressed ) );
   EXPECT_TRUE( sa->flags().any( StreamAdapter::hasEntityId ) ) << "other flags stay";
   pair.member->operHoldTimeIs( 31 );
   pair.coll->adjStatusIs( adjId( 5 ) );
   EXPECT_TRUE( pair.take().empty() ) << "nothing is sent";
   pair.coll->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( logged( *pair.coll ), logged( *pair.root() ) )
        << "what changed meanwhile has not been forgotten";
   EXPECT_EQ( nullptr, pair.coll->vornNboAttrLogSaIs( 0, 0, nullptr ) );
}

TEST( NboAttrLog, whatTheHostHoldsBackWaits ) {
   Adjacencies pair;
   pair.coll->vornNboAttrLogSaIs( StreamAdapter::held, 0, pair.source.out );
   Ptr< Tree > const tree = grownTree();
   tree->vornNboAttrLogSaIs( StreamAdapter::held, 0, pair.source.out );
   for ( U16 i = 0; i < 10; ++i ) {
      pair.member->operHoldTimeIs( i );
   }
   pair.coll->adjStatusIs( adjId( 2 ) );
   pair.coll->adjStatusIs( adjId( 3 ) );
   pair.coll->adjStatusDel( adjId( 3 ) );
   EXPECT_TRUE( pair.take().empty() );
   auto & waiting = *pair.source.out->adapter( *pair.coll );
   EXPECT_TRUE( waiting.flags().any( StreamAdapter::flowOutPresent ) );
   EXPECT_EQ( waiting.vornRawFlowOut(), waiting.flowOut() );
   EXPECT_TRUE( waiting.flowOut()->hasDirtyCollKeys() );
   EXPECT_FALSE( waiting.flowOut()->hasDirtyAttributes() );
   pair.coll->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   Octets const taken = pair.take();
   pair.copy.demuxer->bytesIs( taken.data(), taken.size() );
   auto const sent = records( taken );
   // One record for the ten changes; of the keys an introduction with six scalars, and a deletion.
   EXPECT_EQ( 9u, sent.size() );
   EXPECT_EQ( 1, std::count( sent.begin(), sent.end(), Record{ 0, 2, 0x106, { 0, 9 } } ) );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( logged( *tree ), logged( *pair.copy.demuxer->roots().at( 1 ) ) );
}

TEST( NboAttrLog, whatWaitsGoesOutInTheOrderOfTheIds ) {
   Adjacencies pair;
   pair.coll->vornNboAttrLogSaIs( StreamAdapter::alwaysFlowOut, 0, pair.source.out );
   pair.member->peerSrcIpAddrIs( Lumo::IpGenAddr( Lumo::IpAddr( 1 ) ) );
   pair.member->peerIpAddrIs( Lumo::IpGenAddr( Lumo::IpAddr( 2 ) ) );
   pair.member->adjExpireTimeIs( 3 );
   pair.member->rxPktCountIs( 4 );
   pair.member->operHoldTimeIs( 5 );
   pair.member->peerHoldTimeIs( 6 );
   pair.member->msgIdIs( 7 );
   pair.member->adjStatusCodeIs( Ldp::LdpStatusCode( 8 ) );
   std::vector< U32 > ids;
   for ( Record const & record : records( pair.take() ) ) {
      ids.push_back( record.attribute );
   }
   EXPECT_EQ( ( std::vector< U32 >{ 0x103, 0x105, 0x106, 0x107, 0x108, 0x109 } ), ids );
}

TEST( NboAttrLog, aWalkThatWasSuppressedBeginsAnew ) {
   auto const tree = treeFactory( Name( "tree" ) );
   auto const branch = tree->branchIs( Name( "branch" ) );
   for ( U64 i = 0; i < 100; ++i ) {
      branch->markIs( i );
   }
   LogPair pair( 200 );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   auto const marks = [&] {
      auto const & roots = pair.copy.demuxer->roots();
      auto const copy =
           roots.empty() ? nullptr : static_cast< Tree & >( *roots[0] ).branch( Name( "branch" ) );
      return copy ? copy->marks() : 0;
   };
   while ( marks() < 50 ) {
      pair.carry();
   }
   tree->vornNboAttrLogSaIs( StreamAdapter::suppressed, 0, pair.source.out );
   pair.carry(); // what was ready
   EXPECT_EQ( 0u, pair.carry() ) << "nothing more";
   branch->markDelAll(); // those that have been sent as well
   branch->markIs( 1000 );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( logged( *tree ), logged( *pair.root() ) );
}

TEST( NboAttrLog, aLongValueIsNotKeptWaitingByShortOnes ) {
   auto const tree = treeFactory( Name( "tree" ) );
   LogPair pair( 64 );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   tree->kindIs( String( std::string( 500, 'x' ) ) );
   U32 rounds = 0;
   do {
      tree->ageIs( U8( ++rounds ) );
      tree->heightIs( rounds );
      pair.carry();
      ASSERT_LT( rounds, 20u );
   } while ( static_cast< Tree & >( *pair.root() ).kind().empty() );
}

TEST( NboAttrLog, aRootStaysUntilItIsTakenOff ) {
   for ( bool const room : { true, false } ) {
      Adjacencies pair( 100 );
      auto tree = treeFactory( Name( "tree" ) );
      tree->branchIs( Name( "branch" ) )->markIs( 5 );
      tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
      pair.flush();
      ASSERT_EQ( 2u, pair.copy.demuxer->roots().size() );
      U64 const trees = Tree::allocTrack().objects();
      Tree & held = *tree;
      tree = nullptr;
      EXPECT_EQ( trees, Tree::allocTrack().objects() ) << "the log holds it";
      if ( !room ) pair.starve();
      held.ageIs( 9 ); // may find no room, and then never will
      EXPECT_FALSE( pair.source.out->rootDel( *held.branch( Name( "branch" ) ) ) ) << "it is no root";
      EXPECT_TRUE( pair.source.out->rootDel( held ) );
      EXPECT_EQ( trees - 1, Tree::allocTrack().objects() );
      pair.flush();
      EXPECT_EQ( trees - 2, Tree::allocTrack().objects() ) << "nor does the copy's end keep it";
      ASSERT_EQ( 1u, pair.copy.demuxer->roots().size() );
      EXPECT_EQ( pair.source.out->adapters(), pair.copy.out->adapters() );
      EXPECT_EQ( logged( *pair.coll ), logged( *pair.root() ) );
      EXPECT_EQ( nullptr, pair.copy.out->takeException() );
   }
}

TEST( NboAttrLog, aRootThatBecomesAMemberIsNoRootAnyMore ) {
   auto const tree = treeFactory( Name( "tree" ) );
   auto const branch = tree->branchIs( Name( "branch" ) );
   branch->markIs( 5 );
   LogPair pair;
   branch->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   ASSERT_EQ( 1u, pair.copy.demuxer->roots().size() );
   EXPECT_EQ( logged( *tree ), logged( *pair.root() ) );
   branch->markIs( 6 );
   pair.flush();
   EXPECT_EQ( logged( *tree ), logged( *pair.root() ) );
}

TEST( NboAttrLogDeathTest, aSecondBookmark ) {
   Vorn::NboAttrLog::FlowOut flowOut( Branch::_vornType );
   U32 key = 7;
   flowOut.bookmarkIs( &key );
   EXPECT_DEATH( flowOut.bookmarkIs( &key ), "!rsc->bookmark\\(\\)" );
   EXPECT_EQ( &key, Vorn::NboAttrLog::vornFlowOutBookmarkDeq< U32 >( flowOut ) );
   EXPECT_EQ( nullptr, flowOut.bookmark() );
}

} // namespace
