// What each kind of attribute does: the order of compare, store and notification, what observers can see,
// ownership.
#include "framework/AllKinds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace {

using namespace Test;
using Vorn::Name;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::String;

template< class Observer >
void bind( Observer & observer, PtrInterface const & object ) {
   observer.isRegisteredNotifieeIs( true );
   observer.notifierIs( Ptr< PtrInterface const >( &object ) );
   observer.isWeakReferenceIs( true );
}

template< class Observer >
void unbind( Observer & observer ) {
   observer.isWeakReferenceIs( false );
   observer.isRegisteredNotifieeIs( false );
   observer.notifierIs( nullptr );
}

/// Writes down every call, and what the object says at that moment.
class Log : public Everything::NotifieeConst {
 public:
   std::vector< std::string > calls;
   std::string taken() { return std::exchange( joined(), {} ); }

   void onNumber() override { say( "number " + std::to_string( at().number() ) ); }
   void onRatio() override { say( "ratio" ); }
   void onText() override { say( "text " + std::string( at().text().view() ) ); }
   void onCount() override { say( "count " + std::to_string( at().count() ) ); }
   void onChild() override { say( at().child() ? "child " + text( at().child()->name() ) : "no child" ); }
   void onLeaf( Name const & key ) override {
      say( ( at().leaf( key ) ? "leaf " : "no leaf " ) + text( key ) );
   }
   void onMember( U32 key ) override {
      say( ( at().member( key ) ? "member " : "no member " ) + std::to_string( key ) );
   }
   void onScore( U32 key ) override {
      say( "score " + std::to_string( key ) + "=" +
           ( at().scoreHas( key ) ? std::to_string( at().score( key ) ) : "none" ) );
   }
   void onTally( U32 key ) override {
      say( "tally " + std::to_string( key ) + "=" + std::to_string( at().tally( key ) ) );
   }
   void onTag( Name const & key ) override {
      say( ( at().tagHas( key ) ? "tag " : "no tag " ) + text( key ) );
   }
   void onPal() override { say( "pal" ); }
   void onBeside( U32 key ) override {
      say( ( at().beside( key ) ? "beside " : "not beside " ) + std::to_string( key ) );
   }
   void onInside( Name const & key ) override {
      say( ( at().inside( key ) ? "inside " : "not inside " ) + text( key ) );
   }
   void onEvent( U32 index ) override { say( "event " + std::to_string( index ) ); }
   void onLeaf() override { say( "WRONG" ); }
   void onLeafvornImmediate() override { say( "WRONG" ); }

 private:
   static std::string text( String const & name ) { return std::string( name.view() ); }
   Everything const & at() const { return static_cast< Everything const & >( *notifier() ); }
   void say( std::string call ) { line_ += ( line_.empty() ? "" : ", " ) + call; }
   std::string & joined() { return line_; }
   std::string line_;
};

class EntityTest : public testing::Test {
 protected:
   EntityTest() { bind( *log, *thing ); }

   Ptr< Everything > thing = everythingFactory( Name( "it" ) );
   Ptr< Log > log = Vorn::newObject< Log >();
};

TEST_F( EntityTest, scalarsTellAfterTheStoreAndOnlyOfAChange ) {
   thing->numberIs( 0 );
   EXPECT_EQ( log->taken(), "" );
   thing->numberIs( 5 );
   thing->numberIs( 5 );
   EXPECT_EQ( log->taken(), "number 5" );
   thing->textIs( "a" );
   thing->textIs( String( "a" ) ); // equal by content, another string
   EXPECT_EQ( log->taken(), "text a" );
   double const nan = std::numeric_limits< double >::quiet_NaN();
   thing->ratioIs( nan );
   thing->ratioIs( nan ); // unequal to itself, so it is told each time
   EXPECT_EQ( log->taken(), "ratio, ratio" );
   thing->scratchIs( 3 ); // outside notification
   EXPECT_EQ( thing->scratch(), 3u );
   EXPECT_EQ( log->taken(), "" );
}

TEST_F( EntityTest, countersWrapAtTheirWidth ) {
   EXPECT_EQ( thing->countInc( 0 ), 0 );
   EXPECT_EQ( log->taken(), "" );
   EXPECT_EQ( thing->countInc( 255 ), 255 );
   EXPECT_EQ( thing->countInc( 1 ), 0 );
   EXPECT_EQ( thing->countDec( 1 ), 255 );
   EXPECT_EQ( log->taken(), "count 255, count 0, count 255" );

   EXPECT_EQ( thing->tallyInc( 4, 0 ), 0u ); // enters the key in silence
   EXPECT_TRUE( thing->tallyHas( 4 ) );
   EXPECT_EQ( log->taken(), "" );
   EXPECT_EQ( thing->tallyInc( 4, 2 ), 2u );
   EXPECT_EQ( log->taken(), "tally 4=2" );
}

TEST_F( EntityTest, singleChildIsReplacedOnlyUnderAnotherName ) {
   auto const first = thing->childIs( Name( "a" ) );
   EXPECT_EQ( thing->childIs( Name( "a" ) ), first );
   EXPECT_EQ( log->taken(), "child a" );
   EXPECT_EQ( first->parent(), thing );
   EXPECT_EQ( first->fullName(), "it/child[a]" );
   auto const second = thing->childIs( Name( "b" ) );
   EXPECT_NE( second.ptr(), first.ptr() );
   EXPECT_EQ( first->parent(), nullptr );
   EXPECT_EQ( log->taken(), "child b" );
   EXPECT_EQ( thing->childDel(), second );
   EXPECT_EQ( thing->childDel(), nullptr );
   EXPECT_EQ( second->parent(), nullptr );
   EXPECT_EQ( log->taken(), "no child" );
}

TEST_F( EntityTest, entityCollection ) {
   auto const a = thing->leafIs( Name( "a" ) );
   EXPECT_EQ( thing->leafIs( Name( "a" ) ), a );
   EXPECT_EQ( log->taken(), "leaf a" );
   EXPECT_EQ( a->parentAttrName(), "leaf" );
   EXPECT_EQ( thing->entity( "a" ), a );
   EXPECT_EQ( thing->leafDel( Name( "none" ) ), nullptr );
   EXPECT_EQ( log->taken(), "" );
   EXPECT_EQ( thing->leafDel( a->name() ), a ); // the key lies in the member
   EXPECT_EQ( a->parent(), nullptr );
   EXPECT_EQ( log->taken(), "no leaf a" );
   thing->leafDelAll();
   EXPECT_EQ( log->taken(), "" );
   for ( char const * name : { "x", "y", "z" } ) {
      thing->leafIs( Name( name ) );
   }
   log->taken();
   thing->leafDelAll();
   EXPECT_EQ( thing->leafs(), 0u );
   EXPECT_EQ( log->taken().size(), std::string( "no leaf x, no leaf y, no leaf z" ).size() );
}

TEST_F( EntityTest, reinstantiationComparesImmutablesAndWritesTheOthers ) {
   auto const member = thing->memberIs( 646, 1, 10 );
   EXPECT_EQ( thing->memberIs( 646, 1, 20 ), member );
   EXPECT_EQ( member->weight(), 20u );
   EXPECT_EQ( log->taken(), "member 1" );
   EXPECT_STREQ( Everything::_vornType.attribute( "member" )->memberKey, "id" ) << "the second argument";
   try {
      thing->memberIs( 647, 1, 30 );
      FAIL();
   } catch ( Vorn::NameInUseException const & failure ) {
      EXPECT_STREQ( failure.what(),
                    "Reinstantiating the entity with fullName 'it/member[1]' where constructor parameter "
                    "attribute 'port' has a different value of 647 than the current value of 646 not "
                    "allowed" );
   }
   EXPECT_EQ( member->weight(), 20u );
   EXPECT_EQ( log->taken(), "" );
}

TEST_F( EntityTest, valueCollectionAndSet ) {
   thing->scoreIs( 1, 10 );
   thing->scoreIs( 1, 10 );
   thing->scoreIs( 1, 11 );
   EXPECT_EQ( log->taken(), "score 1=10, score 1=11" );
   EXPECT_EQ( thing->score( 2 ), 0u );
   EXPECT_EQ( thing->scoreDel( 2 ), 0u );
   EXPECT_EQ( thing->scoreDel( 1 ), 11u );
   EXPECT_EQ( log->taken(), "score 1=none" );
   thing->tagIs( Name( "t" ) );
   thing->tagIs( Name( "t" ) );
   EXPECT_TRUE( thing->tagDel( Name( "t" ) ) );
   EXPECT_FALSE( thing->tagDel( Name( "t" ) ) );
   EXPECT_EQ( log->taken(), "tag t, no tag t" );
   thing->scoreIs( 5, 1 );
   thing->scoreNotify( 5 );
   EXPECT_EQ( log->taken(), "score 5=1, score 5=1" );
}

TEST_F( EntityTest, references ) {
   auto const leaf = leafFactory( Name( "l" ) );
   thing->palIs( leaf );
   thing->palIs( leaf );
   EXPECT_EQ( log->taken(), "pal" );
   thing->besideIs( 3, leaf );
   thing->besideIs( 3, nullptr );
   EXPECT_EQ( log->taken(), "beside 3, not beside 3" );
   thing->insideIs( leaf );
   thing->insideIs( leaf );
   auto const twin = leafFactory( Name( "l" ) );
   thing->insideIs( twin ); // the same key, another object
   EXPECT_EQ( thing->inside( Name( "l" ) ), twin );
   EXPECT_EQ( log->taken(), "inside l, inside l" );
   try {
      thing->insideIs( nullptr );
      FAIL();
   } catch ( Vorn::RangeException const & failure ) {
      EXPECT_STREQ( failure.what(),
                    "null _inside parameter to mutator for Test::Everything::inside not allowed\"" );
   }
   EXPECT_EQ( leaf->parent(), nullptr ); // references own nothing
}

TEST_F( EntityTest, queueKeepsItsIndicesRising ) {
   EXPECT_EQ( thing->eventDeq(), 0u );
   EXPECT_EQ( thing->eventEnq( 100 ), 0u );
   EXPECT_EQ( thing->eventEnq( 101 ), 1u );
   EXPECT_EQ( thing->eventDeq(), 100u );
   EXPECT_EQ( thing->eventDeq(), 101u );
   EXPECT_EQ( thing->eventEnq( 102 ), 2u );
   thing->eventIs( 2, 7 );
   EXPECT_EQ( thing->event( 2 ), 7u );
   EXPECT_EQ( thing->eventDel( thing->event().begin() ), 7u );
   EXPECT_EQ( thing->eventDel( thing->event().begin() ), 0u ); // stands on nothing
   thing->eventIs( 3, 8 );
   thing->eventDelAll();
   EXPECT_EQ( log->taken(),
              "event 0, event 1, event 0, event 1, event 2, event 2, event 2, event 3, event 3" );
}

TEST_F( EntityTest, constantsDerivedAndFunctions ) {
   EXPECT_EQ( Everything::limit(), 99 );
   thing->numberIs( 21 );
   EXPECT_EQ( thing->doubled(), 42u );
   EXPECT_EQ( thing->sum( 1, 2 ), 24u );
}

TEST_F( EntityTest, destructionDeletesEntityChildrenWithNotificationAndValuesInSilence ) {
   auto const leaf = thing->leafIs( Name( "a" ) );
   auto const child = thing->childIs( Name( "c" ) );
   thing->scoreIs( 1, 1 );
   thing->tagIs( Name( "t" ) );
   log->taken();
   thing = nullptr;
   EXPECT_EQ( log->taken(), "no child, no leaf a" );
   EXPECT_EQ( log->notifier(), nullptr );
   EXPECT_EQ( leaf->parent(), nullptr ); // held elsewhere, it outlives its parent
   leaf->sizeIs( 9 );
   EXPECT_EQ( leaf->size(), 9u );
}

TEST_F( EntityTest, observersAreUnboundBeforeTheAttributesGo ) {
   struct Last : Leaf::NotifieeConst {
      explicit Last( std::function< void() > call ) : call_( std::move( call ) ) {}
      void onZeroReferences() override { call_(); }
      std::function< void() > call_;
   };
   bool bound = true;
   auto const last = Vorn::newObject< Last >( std::function< void() >( [&] { bound = log->notifier(); } ) );
   thing->palIs( leafFactory( Name( "p" ) ) );
   bind( *last, *thing->pal() );
   thing = nullptr;
   EXPECT_FALSE( bound );
}

/// An observer whose callback is the test's.
class Hook : public Everything::NotifieeConst {
 public:
   explicit Hook( std::function< void() > onNumber ) : onNumber_( std::move( onNumber ) ) {}
   int failures = 0;
   int lastReferences = 0;
   void onNumber() override { onNumber_(); }
   void onNotificationException() override { ++failures; }
   void onZeroReferences() override { ++lastReferences; }

 private:
   std::function< void() > onNumber_;
};

class ObserverTest : public testing::Test {
 protected:
   Ptr< Hook > hook( char const * name, std::function< void() > also = {} ) {
      auto const made = Vorn::newObject< Hook >( std::function< void() >( [this, name, also] {
         order += name;
         if ( also ) also();
      } ) );
      bind( *made, *thing );
      return made;
   }
   std::string change() {
      order.clear();
      thing->numberIs( ++last );
      return order;
   }

   Ptr< Everything > thing = everythingFactory( Name( "it" ) );
   std::string order;
   U32 last = 0;
};

TEST_F( ObserverTest, orderIsThatOfBinding ) {
   auto const a = hook( "a" );
   auto const b = hook( "b" );
   auto const c = hook( "c" );
   EXPECT_EQ( change(), "abc" );
   unbind( *a );
   EXPECT_EQ( change(), "bc" );
   bind( *a, *thing );
   EXPECT_EQ( change(), "bca" );
}

TEST_F( ObserverTest, boundDuringAVisitIsNotCalledInIt ) {
   Ptr< Hook > late;
   auto const a = hook( "a", [&] {
      if ( !late ) late = hook( "L" );
   } );
   auto const b = hook( "b" );
   EXPECT_EQ( change(), "ab" );
   EXPECT_EQ( change(), "abL" );
}

TEST_F( ObserverTest, unboundDuringAVisitIsNotCalledAnyMore ) {
   Ptr< Hook > b, c;
   auto const a = hook( "a", [&] {
      unbind( *b ); // the next one
      unbind( *c ); // the one behind it
   } );
   b = hook( "b" );
   c = hook( "c" );
   auto const d = hook( "d" );
   EXPECT_EQ( change(), "ad" );
}

TEST_F( ObserverTest, mayUnbindAndDropItself ) {
   Ptr< Hook > a;
   a = hook( "a", [&] {
      unbind( *a );
      a = nullptr;
   } );
   auto const b = hook( "b" );
   EXPECT_EQ( change(), "ab" );
   EXPECT_EQ( change(), "b" );
}

TEST_F( ObserverTest, writesAgainFromWithin ) {
   auto const a = hook( "a", [&] {
      if ( last == 1 ) thing->numberIs( ++last );
   } );
   auto const b = hook( "b" );
   EXPECT_EQ( change(), "aabb" ); // the inner visit whole, then the rest of the outer
   EXPECT_EQ( thing->number(), 2u );
}

TEST_F( ObserverTest, notifierLivesThroughTheVisit ) {
   auto const a = hook( "a", [&] { thing = nullptr; } );
   auto const b = hook( "b" );
   auto & object = *thing;
   object.numberIs( 1 );
   EXPECT_EQ( order, "ab" );
   EXPECT_EQ( a->notifier(), nullptr );
   EXPECT_EQ( a->lastReferences, 1 );
}

TEST_F( ObserverTest, mayDropTheOwnerWhileAllMembersGo ) {
   struct Dropper : Everything::NotifieeConst {
      explicit Dropper( Ptr< Everything > * thing ) : thing_( thing ) {}
      void onMember( U32 ) override { drop(); }
      void onScore( U32 ) override { drop(); }
      void onEvent( U32 ) override { drop(); }
      void drop() {
         ++calls;
         *thing_ = nullptr;
      }
      Ptr< Everything > * thing_;
      int calls = 0;
   };
   for ( auto const delAll :
         { &Everything::memberDelAll, &Everything::scoreDelAll, &Everything::eventDelAll } ) {
      Ptr< Everything > owner = everythingFactory( Name( "it" ) );
      for ( U32 i = 0; i < 3; ++i ) {
         owner->memberIs( 0, i, 0 );
         owner->scoreIs( i, i );
         owner->eventEnq( i );
      }
      auto const dropper = Vorn::newObject< Dropper >( &owner );
      bind( *dropper, *owner );
      ( owner.ptr()->*delAll )();
      EXPECT_FALSE( owner );
      EXPECT_GE( dropper->calls, 3 );
   }
}

TEST_F( ObserverTest, objectsOfNestedVisitsLiveUntilTheOutermostEnds ) {
   Ptr< Hook > a;
   auto const & object = *thing;
   U32 seen = 0;
   a = hook( "a", [&] {
      if ( last == 1 ) {
         thing->numberIs( ++last );
         seen = object.number(); // the visit within is over
         EXPECT_EQ( a, nullptr );
         Ptr< Everything const > const again( &object ); // taken and dropped
         return;
      }
      thing = nullptr; // within the inner visit: both are still needed by the outer
      a = nullptr;
   } );
   auto const b = hook( "b" );
   U64 const objects = Everything::allocTrack().objects();
   thing->numberIs( ++last );
   EXPECT_EQ( seen, 2u );
   EXPECT_EQ( order, "aabb" );
   EXPECT_EQ( b->lastReferences, 1 );
   EXPECT_EQ( Everything::allocTrack().objects(), objects - 1 );
}

TEST_F( ObserverTest, strongBindingKeepsTheObject ) {
   auto const a = hook( "a" );
   a->isWeakReferenceIs( false );
   Everything * const object = thing.ptr();
   thing = nullptr;
   EXPECT_EQ( object->references(), 1u );
   a->isWeakReferenceIs( true );
   EXPECT_EQ( a->notifier(), nullptr );
}

TEST_F( ObserverTest, ofABaseTypeHearsTheBaseAttributesOfADerivedObject ) {
   auto const derived = derivedFactory( Name( "d" ) );
   auto const base = Vorn::newObject< Hook >( std::function< void() >( [&] { order += "n"; } ) );
   bind( *base, *derived );
   derived->numberIs( 1 );
   derived->extraIs( 9 ); // declared below the observer's type
   EXPECT_EQ( order, "n" );
}

TEST( ObserverDeathTest, ofAnotherTypeCannotBeBound ) {
   auto const leaf = leafFactory( Name( "l" ) );
   auto const observer = Vorn::newObject< Hook >( std::function< void() >( [] {} ) );
   EXPECT_DEATH( bind( *observer, *leaf ), "isDerived" );
}

} // namespace
