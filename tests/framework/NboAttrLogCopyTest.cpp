// The attribute log: the copy and its original, from one connection to the next.

#include "framework/LogOctets.h"
#include "framework/LogSamples.h"

#include "framework/AllKinds.h"

#include "Ldp/LdpConfig.h"

namespace {

using namespace Test;
using Vorn::Name;
using Vorn::String;

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

/// Told of every change of all that is below an entity.
class Teller : public Vorn::GenericIf::NotifieeConst {
 public:
   void watch( Vorn::Entity & entity ) {
      observers_.push_back( entity.fwkType()->genericIfNotifiee( *this ) );
      auto & observer = static_cast< Vorn::PtrInterface::NotifieeConst & >( *observers_.back() );
      observer.isRegisteredNotifieeIs( true );
      observer.notifierIs( Ptr< Vorn::PtrInterface const >( &entity ) );
      observer.isWeakReferenceIs( true );
   }
   void onRawAttribute( U32 attributeId ) override { told.push_back( attributeId ); }
   void onRawAttribute( U32 attributeId, void const *, bool ) override { told.push_back( attributeId ); }
   std::vector< U32 > told;

 private:
   std::vector< Ptr< Vorn::PtrInterface > > observers_;
};

TEST( NboAttrLog, aReconnectionThatChangesNothingTellsNobody ) {
   auto const loose = twigFactory( 7U, String( "drift" ), U16( 0 ) );
   auto const tree = grownTree();
   auto const left = tree->branch( Name( "left" ) );
   left->twig( 1 )->palIs( loose );
   left->besideIs( "loose", loose );
   left->insideIs( loose );
   // Whichever comes first, whatever the buffer: what refers to the other keeps what it has until it is
   // there.
   for ( U32 const capacity : { 64u, 200u, 65536u } ) {
      for ( bool const looseFirst : { true, false } ) {
         std::vector< Ptr< Vorn::Entity > > copies;
         Teller teller;
         for ( bool const again : { false, true } ) {
            LogPair pair( capacity );
            for ( auto const & copy : copies ) {
               pair.copy.demuxer->rootIs( copy );
            }
            if ( again ) {
               Branch & copy = *static_cast< Tree & >( *copies[looseFirst] ).branch( Name( "left" ) );
               ASSERT_EQ( copies[!looseFirst], copy.twig( 1 )->pal() );
               for ( Vorn::Entity * const entity : std::initializer_list< Vorn::Entity * >{
                          copies[looseFirst].ptr(), &copy, copy.twig( 1 ).ptr(),
                          copies[!looseFirst].ptr() } ) {
                  teller.watch( *entity );
               }
            }
            if ( looseFirst ) loose->vornNboAttrLogSaIs( 0, 0, pair.source.out );
            tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
            if ( !looseFirst ) loose->vornNboAttrLogSaIs( 0, 0, pair.source.out );
            pair.flush();
            copies = pair.copy.demuxer->roots();
         }
         EXPECT_EQ( std::vector< U32 >(), teller.told ) << capacity << looseFirst;
         EXPECT_EQ( logged( *tree ), logged( *copies[looseFirst] ) );
      }
   }
   // Where the entity does not come back, the reference goes when all else is there.
   LogPair pair;
   auto const copy = twigFactory( 1U, String( "oak" ), U16( 0 ) );
   auto const original = twigFactory( 1U, String( "oak" ), U16( 0 ) );
   original->palIs( loose );
   copy->palIs( loose );
   pair.copy.demuxer->rootIs( copy );
   original->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( nullptr, copy->pal() );
}

TEST( NboAttrLog, anOfferedEntityIsTheOneOnlyWithTheSameArguments ) {
   LogPair pair;
   auto const original = twigFactory( 1U, String( "oak" ), U16( 5 ) );
   Ptr< Twig > const offered[] = { twigFactory( 1U, String( "ash" ), U16( 5 ) ),
                                   twigFactory( 2U, String( "oak" ), U16( 5 ) ),
                                   twigFactory( 1U, String( "oak" ), U16( 6 ) ),
                                   twigFactory( 1U, String( "oak" ), U16( 5 ) ) };
   for ( auto const & entity : offered ) {
      pair.copy.demuxer->rootIs( entity );
   }
   original->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( offered[2], pair.root() ) << "the first; an argument that can be changed does not count";
   EXPECT_EQ( 5, offered[2]->load() );
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
   EXPECT_EQ( nullptr, type.childAttrLogIs( &type, "crow", *tree, pair.source.out ) );
   // A member that is attached by hand comes through its parent all the same.
   tree->branch( Name( "left" ) )->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( 1u, pair.copy.demuxer->roots().size() );
   EXPECT_EQ( logged( *tree ), logged( *pair.root() ) );
   EXPECT_EQ( ( std::vector< U32 >{ 0x103, 0x104, 0x105, 0x106, 0x107, 0x108, 0x109, 0 } ),
              tree->crown()->vornNboAttrLogSa( pair.source.out )->attrIdsReqSync() );
   // The base answers for its own children.
   auto const everything = derivedFactory( Name( "everything" ) );
   everything->childIs( Name( "child" ) );
   everything->vornNboAttrLogSaIs( StreamAdapter::alwaysFlowOut, 0, pair.source.out );
   EXPECT_NE( nullptr, Derived::_vornType.childAttrLogIs( &Derived::_vornType, "child", *everything,
                                                          pair.source.out ) );
   // Of the model.
   auto const sync = [&]( Ptr< Vorn::Entity > const & entity ) {
      entity->vornNboAttrLogSaIs( 0, 0, pair.source.out );
      return entity->vornNboAttrLogSa( pair.source.out )->attrIdsReqSync();
   };
   EXPECT_EQ( ( std::vector< U32 >{ 0x102, 0 } ), sync( Ldp::ldpAdjStatusCollFactory( Name( "status" ) ) ) );
   EXPECT_EQ( ( std::vector< U32 >{ 0x109, 0x10a, 0x111, 0x112, 0x11c, 0x11f, 0 } ),
              sync( Ldp::configFactory( L3::VrfName( "default" ) ) ) );
}

TEST( NboAttrLog, aQueueGoesOnWhereTheOriginalDoes ) {
   struct Row {
      char const * name;
      U32 first, next;    // of the original, in which every third element has gone
      U32 copied, copies; // what an earlier connection left: indices from there on, so many
   };
   Row const rows[] = {
      { "a copy that is empty", 5, 30, 0, 0 },
      { "a copy that is further", 5, 30, 10, 60 },
      { "a copy that is behind", 40, 50, 0, 45 },
      { "a copy of which nothing is left", 100, 110, 0, 10 },
      { "an original whose indices have wrapped", 0xfffffff0, 10, 0, 20 },
      { "a copy whose indices have wrapped", 0, 5, 0xfffffff8, 20 },
   };
   for ( Row const & row : rows ) {
      SCOPED_TRACE( row.name );
      auto const fill = []( Branch & branch, U32 first, U32 number, bool gaps ) {
         for ( U32 i = 0; i < number; ++i ) {
            branch.eventIs( first + i, Vorn::format( "event %u", i ) );
         }
         for ( U32 i = 2; gaps && i < number; i += 3 ) {
            branch.eventDel( first + i );
         }
      };
      auto const original = branchFactory( Name( "branch" ) );
      auto const copy = branchFactory( Name( "branch" ) );
      fill( *original, row.first, row.next - row.first, true );
      fill( *copy, row.copied, row.copies, false );
      LogPair pair;
      pair.copy.demuxer->rootIs( copy );
      original->vornNboAttrLogSaIs( 0, 0, pair.source.out );
      pair.flush();
      EXPECT_EQ( logged( *original ), logged( *copy ) );
      EXPECT_EQ( original->eventColl().firstIndex(), copy->eventColl().firstIndex() );
      EXPECT_EQ( original->eventColl().nextIndex(), copy->eventColl().nextIndex() );
      original->eventEnq( "the next" );
      pair.flush();
      EXPECT_EQ( logged( *original ), logged( *copy ) );
      EXPECT_EQ( original->eventColl().nextIndex(), copy->eventColl().nextIndex() );
   }
}

TEST( NboAttrLog, aGroupBringsScalarsMembersAndDeletions ) {
   auto const group = []( Octets const & entries ) {
      U32 const end = U32( entries.size() ) + 4;
      return Octets{ 0, 4, U8( end >> 8 ), U8( end ) } + entries;
   };
   Octets const twigs = number( 0x103 ) + number( 5 ) + counted( "oak" ) + Octets{ 0, 9 } + number( 3 ) +
                        number( 3 ) + number( 0x103 ) + number( 6 ) + counted( "ash" ) + Octets{ 0, 1 } +
                        number( 3 ) + number( 4 );
   Octets const score = number( 0x104 ) + counted( "score" ) + number( 0x3ff00000 ) + number( 0 );
   for ( U32 const id : { 0x90u, 0u - 0x90u } ) {
      SCOPED_TRACE( id );
      LogEnd end( StreamAdapter::readOnly );
      Octets const brought = good + record( 0, 2, id, group( number( 0x77 ) + twigs + score ) );
      end.demuxer->bytesIs( brought.data(), brought.size() );
      Branch & branch = *static_cast< Tree & >( *end.demuxer->roots().at( 0 ) ).branch( Name( "branch" ) );
      ASSERT_EQ( 2u, branch.twigs() );
      EXPECT_EQ( 9, branch.twig( 5 )->load() );
      EXPECT_EQ( 1.0, branch.score( "score" ) );
      // Its second entry is bad, so that the first is not applied either.
      Octets const lie = record( 0, 2, id, group( number( 0 - 0x103u ) + number( 5 ) + twigs ) );
      // The members are tied to their numbers.
      Octets const taken =
           record( 0, 4, 0x104, { 0, 77 } ) + record( 0, 2, id, group( number( 0 - 0x103u ) + number( 5 ) ) );
      end.demuxer->bytesIs( taken.data(), taken.size() );
      EXPECT_EQ( nullptr, branch.twig( 5 ) );
      EXPECT_EQ( 77, branch.twig( 6 )->load() );
      std::string const before = logged( branch );
      EXPECT_THROW( end.demuxer->bytesIs( lie.data(), lie.size() ), Vorn::AttrLogRecordException );
      EXPECT_EQ( before, logged( branch ) );
   }
}

} // namespace
