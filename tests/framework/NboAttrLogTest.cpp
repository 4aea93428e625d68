// The attribute log: what travels, when, and what does not.

#include "framework/AllKinds.h"
#include "framework/LogKinds.h"
#include "framework/LogPair.h"

#include "Ldp/LdpAdj.h"

#include <algorithm>

namespace {

using namespace Test;
using Vorn::Name;
using Vorn::String;

Ldp::LdpAdjId adjId( U32 number ) {
   return Ldp::LdpAdjId( Ldp::LdpIdentifier( 0x0a000000 + number, 0 ), Lumo::IntfId( "Ethernet1" ) );
}

Ptr< Tree > grownTree() {
   auto const tree = treeFactory( Name( "oak" ) );
   tree->heightIs( 12.5 );
   tree->kindIs( "quercus" );
   tree->ageIs( 200 );
   tree->topIs( U32( 9 ), String( "ash" ), U16( 3 ) )->labelIs( "top" );
   auto const crown = tree->crownIs( Name( "crown" ) );
   for ( auto const & branch :
         { crown, tree->branchIs( Name( "left" ) ), tree->branchIs( Name( "right" ) ) } ) {
      for ( U32 i = 0; i < 20; ++i ) {
         auto const twig = branch->twigIs( i, String( "oak" ), U16( i ) );
         twig->labelIs( Vorn::format( "twig %u", i ) );
         branch->scoreIs( Vorn::format( "score %u", i ), i / 8.0 );
         branch->markIs( U64( i ) << 40 );
         branch->flagIs( i, i % 3 == 0 );
         branch->eventEnq( Vorn::format( "event %u", i ) );
         branch->besideIs( Vorn::format( "beside %u", i ), twig );
         branch->insideIs( twig );
      }
      branch->twig( 3 )->palIs( tree->top() );
      branch->twig( 4 )->palIs( branch->twig( 19 ) );
      branch->numberInc( 77 );
   }
   return tree;
}

/// The values of all records in what a log has written: what stands between their tokens, with the head.
struct Record {
   U8 kind;
   U32 entity;
   U32 attribute;
   std::vector< U8 > value;
   friend bool operator==( Record const &, Record const & ) = default;
};

U32 word( U8 const * at ) { return U32( at[0] ) << 24 | U32( at[1] ) << 16 | U32( at[2] ) << 8 | at[3]; }

std::vector< Record > records( std::vector< U8 > const & octets, std::size_t from = 0 ) {
   std::vector< Record > all;
   for ( U8 const * at = octets.data() + from; at != octets.data() + octets.size(); ) {
      U32 const length = word( at );
      U8 const * const value = at + 4 + Vorn::NboAttrLog::recordHeadBytes;
      U8 const * const end = at + 4 + length;
      EXPECT_EQ( 0, value[-1] ) << "a value begins with token 0";
      EXPECT_EQ( 2, end[-1] ) << "and ends with token 2";
      all.push_back( { at[4], word( at + 5 ), word( at + 9 ), { value, end - 1 } } );
      at = end;
   }
   return all;
}

/// An adjacency collection with one member, known to the copy.
struct Adjacencies : LogPair {
   explicit Adjacencies( U32 capacity = Out::defaultCapacity ) : LogPair( capacity ) {
      coll->vornNboAttrLogSaIs( 0, 0, source.out );
      flush();
   }
   Ldp::LdpAdjStatusColl & copied() { return static_cast< Ldp::LdpAdjStatusColl & >( *root() ); }
   /// Fills the buffer until a change finds no room.
   void starve() {
      while ( source.out->hasSufficientBuffer() ) {
         member->peerHoldTimeIs( U16( member->peerHoldTime() + 1 ) );
      }
   }

   Ptr< Ldp::LdpAdjStatusColl > coll = Ldp::ldpAdjStatusCollFactory( Name( "default" ) );
   Ptr< Ldp::LdpAdjStatus > member = coll->adjStatusIs( adjId( 1 ) );
};

/// Counts the callbacks on a collection of adjacencies.
struct Counter : Ldp::LdpAdjStatusColl::NotifieeConst {
   explicit Counter( Ldp::LdpAdjStatusColl & coll ) {
      isRegisteredNotifieeIs( true );
      notifierIs( Ptr< Vorn::PtrInterface const >( &coll ) );
      isWeakReferenceIs( true );
      hasNotificationActiveIs( true );
   }
   void onAdjStatus( Ldp::LdpAdjId const & key ) override { keys.push_back( key ); }
   std::vector< Ldp::LdpAdjId > keys;
};

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
   ASSERT_EQ( 2u, added.size() );
   // Identifier (address, label space), interface, target address; then the type's number and the entity's.
   EXPECT_EQ( ( Record{ 3, 1, 0x102, { 10,  0,   0,   2, 0, 0, 0, 0, 0, 9, 'E', 't', 'h', 'e', 'r', 'n',
                                       'e', 't', '1', 0, 0, 0, 0, 0, 0, 0, 2,   0,   0,   0,   3 } } ),
              added[0] );
   EXPECT_EQ( 3u, added[1].entity );
   EXPECT_EQ( 0x90u, added[1].attribute ) << "its scalars follow in a group";
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

TEST( NboAttrLog, aTransactionWithoutMembersEmptiesTheCollection ) {
   Adjacencies first;
   for ( U32 i = 2; i < 9; ++i ) {
      first.coll->adjStatusIs( adjId( i ) );
   }
   first.flush();
   auto const copy = first.root();
   auto const empty = Ldp::ldpAdjStatusCollFactory( Name( "default" ) );
   auto const counter = Vorn::newObject< Counter >( first.copied() );
   LogPair second;
   second.copy.demuxer->rootIs( copy );
   empty->vornNboAttrLogSaIs( 0, 0, second.source.out );
   second.flush();
   EXPECT_EQ( copy, second.root() ) << "the entity that was offered is the one";
   EXPECT_EQ( 8u, counter->keys.size() ) << "each member is told of";
   EXPECT_EQ( 0u, static_cast< Ldp::LdpAdjStatusColl & >( *copy ).adjStatuss() );
}

TEST( NboAttrLog, aFreshConnectionKeepsTheEntitiesThatMatch ) {
   auto const tree = grownTree();
   Ptr< Vorn::Entity > copy;
   {
      LogPair pair;
      tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
      pair.flush();
      copy = pair.root();
   }
   Branch & left = *static_cast< Tree & >( *copy ).branch( Name( "left" ) );
   auto const kept = left.twig( 1 );
   auto const replaced = left.twig( 2 );
   auto const gone = left.twig( 3 );
   Branch & original = *tree->branch( Name( "left" ) );
   original.twigDel( 2 );
   original.twigIs( 2U, String( "another wood" ), U16( 1 ) );
   original.twigDel( 3 );
   original.scoreDel( "score 1" );
   original.markDel( 0 );
   original.eventDeq();
   LogPair pair;
   pair.copy.demuxer->rootIs( copy );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( logged( *tree ), logged( *copy ) );
   EXPECT_EQ( kept, left.twig( 1 ) );
   EXPECT_NE( replaced, left.twig( 2 ) ) << "another constructor argument makes another entity";
   EXPECT_EQ( nullptr, gone->parent() );
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

TEST( NboAttrLog, aMemberThatWasTakenOutIsSilent ) {
   Adjacencies pair;
   pair.coll->adjStatusDel( pair.member->ldpAdjId() );
   pair.flush();
   pair.member->operHoldTimeIs( 99 );
   EXPECT_TRUE( pair.take().empty() );
   EXPECT_EQ( nullptr, pair.member->vornNboAttrLogSa( pair.source.out ) );
}

// Two ends that both write.

TEST( NboAttrLog, bothEndsWriteAndNothingComesBack ) {
   LogEnd a( 0 ), b( 0 );
   auto const carry = []( LogEnd & from, LogEnd & to ) {
      std::size_t const bytes = from.out->bytes();
      if ( bytes ) to.demuxer->bytesIs( from.out->data(), bytes );
      from.out->drained( bytes );
      return bytes;
   };
   auto const tree = grownTree();
   tree->vornNboAttrLogSaIs( 0, 0, a.out );
   carry( a, b );
   auto & copy = static_cast< Tree & >( *b.demuxer->roots().at( 0 ) );
   EXPECT_EQ( Vorn::NboAttrLog::streamHeaderBytes, b.out->bytes() );
   copy.ageIs( 5 );
   copy.branchIs( Name( "from the copy" ) )->twigIs( 1U, String( "elm" ), U16( 2 ) )->labelIs( "new" );
   copy.branchDel( Name( "right" ) );
   tree->kindIs( "changed meanwhile" );
   tree->branch( Name( "right" ) )->numberInc( 5 ); // crosses the deletion
   tree->branch( Name( "right" ) )->twigIs( 77U, String( "elm" ), U16( 2 ) )->labelIs( "lost" );
   carry( a, b );
   carry( b, a );
   EXPECT_EQ( logged( *tree ), logged( copy ) );
   EXPECT_EQ( 5, tree->age() );
   EXPECT_EQ( nullptr, tree->branch( Name( "right" ) ) );
   EXPECT_EQ( 0u, a.out->bytes() + b.out->bytes() );

   // Both make the same member at the same time; each then knows it by its own number.
   tree->branchIs( Name( "both" ) );
   copy.branchIs( Name( "both" ) );
   carry( a, b );
   carry( b, a );
   tree->branch( Name( "both" ) )->numberInc( 3 );
   carry( a, b );
   EXPECT_EQ( 3u, copy.branch( Name( "both" ) )->number() );
   copy.branch( Name( "both" ) )->markIs( 9 );
   carry( b, a );
   EXPECT_EQ( logged( *tree ), logged( copy ) );
   EXPECT_EQ( nullptr, a.out->takeException() );
}

TEST( NboAttrLog, whatAnObserverMakesOfARecordGoesBack ) {
   LogEnd a( 0 ), b( 0 );
   auto const tree = treeFactory( Name( "tree" ) );
   tree->vornNboAttrLogSaIs( 0, 0, a.out );
   b.demuxer->bytesIs( a.out->data(), a.out->bytes() );
   a.out->drained( a.out->bytes() );
   auto & copy = static_cast< Tree & >( *b.demuxer->roots().at( 0 ) );
   struct AtMostNine : Tree::Notifiee {
      explicit AtMostNine( Tree & tree ) : tree_( tree ) {
         isRegisteredNotifieeIs( true );
         notifierIs( Ptr< Vorn::PtrInterface const >( &tree ) );
         isWeakReferenceIs( true );
         hasNotificationActiveIs( true );
      }
      void onAge() override {
         if ( tree_.age() > 9 ) tree_.ageIs( 9 );
      }
      Tree & tree_;
   };
   auto const observer = Vorn::newObject< AtMostNine >( copy );
   tree->ageIs( 50 );
   b.demuxer->bytesIs( a.out->data(), a.out->bytes() );
   a.out->drained( a.out->bytes() );
   a.demuxer->bytesIs( b.out->data(), b.out->bytes() );
   EXPECT_EQ( 9, tree->age() );
}

// Ends that do not write.

TEST( NboAttrLog, aLocalWriteOnAReadOnlyEndIsReported ) {
   Adjacencies pair;
   pair.copied().adjStatus( adjId( 1 ) )->operHoldTimeIs( 5 );
   auto const raised = pair.copy.out->takeException();
   ASSERT_NE( nullptr, raised );
   EXPECT_THROW( std::rethrow_exception( raised ), Vorn::RangeException );
   EXPECT_EQ( nullptr, pair.copy.out->takeException() );
   EXPECT_EQ( Vorn::NboAttrLog::streamHeaderBytes, pair.copy.out->bytes() ) << "nothing is sent";
}

TEST( NboAttrLog, aWriteFromAReadOnlyCopyIsRefused ) {
   LogEnd a( StreamAdapter::remoteReadOnly ), b( 0 );
   auto const tree = treeFactory( Name( "tree" ) );
   tree->vornNboAttrLogSaIs( StreamAdapter::remoteReadOnly, 0, a.out );
   b.demuxer->bytesIs( a.out->data(), a.out->bytes() );
   static_cast< Tree & >( *b.demuxer->roots().at( 0 ) ).ageIs( 5 );
   EXPECT_THROW( a.demuxer->bytesIs( b.out->data(), b.out->bytes() ), Vorn::AttrLogRecordException );
   EXPECT_EQ( 0, tree->age() );
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

TEST( NboAttrLog, theHooksOfTheRecords ) {
   auto const & type = Tree::_vornType;
   ASSERT_NE( nullptr, type.childAttrLogIs );
   EXPECT_EQ( nullptr, Twig::_vornType.childAttrLogIs ) << "no logged child";
   auto const tree = grownTree();
   LogPair pair;
   tree->vornNboAttrLogSaIs( StreamAdapter::alwaysFlowOut, 0, pair.source.out );
   EXPECT_EQ( nullptr, type.childAttrLogIs( &type, "height", *tree, pair.source.out ) );
   auto const crown = type.childAttrLogIs( &type, "crown", *tree, pair.source.out );
   EXPECT_EQ( tree->crown()->vornNboAttrLogSa( pair.source.out ), crown );
   EXPECT_EQ( 1u, crown->level() );
   // A member that is attached by hand comes through its parent all the same.
   tree->branch( Name( "left" ) )->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( 1u, pair.copy.demuxer->roots().size() );
   EXPECT_EQ( logged( *tree ), logged( *pair.root() ) );
   EXPECT_EQ( ( std::vector< U32 >{ 0x103, 0x104, 0x105, 0x106, 0x107, 0x108, 0x109, 0 } ),
              tree->crown()->vornNboAttrLogSa( pair.source.out )->attrIdsReqSync() );
}

TEST( NboAttrLogDeathTest, aSecondBookmark ) {
   Vorn::NboAttrLog::FlowOut flowOut( Branch::_vornType );
   auto const key = [] {
      return std::make_unique< Vorn::GenericIf::Value >( &Vorn::BuiltinType< U32 >::record );
   };
   flowOut.bookmarkIs( key() );
   EXPECT_DEATH( flowOut.bookmarkIs( key() ), "!rsc->bookmark\\(\\)" );
}

} // namespace
