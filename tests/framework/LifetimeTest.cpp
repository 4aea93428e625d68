// Who lives how long while observers call back: owners of what changes, children of what goes, bindings.
#include "framework/AllKinds.h"

#include "Lumo/Pkt.h"
#include "Vorn/Trace.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <stdexcept>

namespace {

using namespace Test;
using Vorn::Name;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Call = std::function< void() >;

/// Calls what a test sets, whatever it is told. What it holds goes with it.
template< class Base >
class Hook : public Base {
 public:
   explicit Hook( PtrInterface const & object ) {
      this->hasNotificationActiveIs( true );
      this->isRegisteredNotifieeIs( true );
      this->notifierIs( Ptr< PtrInterface const >( &object ) );
      this->isWeakReferenceIs( true );
   }
   void onZeroReferences() override { run( zero ); }
   void vornFwkActivity() override { run( parent ); }
   void onNotificationException() override { run( exception ); }

   Call zero, parent, change, exception;
   Ptr< PtrInterface > held;

 protected:
   static void run( Call const & call ) {
      if ( call ) call();
   }
};
class OnLeaf : public Hook< Leaf::NotifieeConst > {
 public:
   using Hook::Hook;
   void onSize() override { run( change ); }
};
class OnThing : public Hook< Everything::NotifieeConst > {
 public:
   using Hook::Hook;
   void onNumber() override { run( change ); }
   void onChild() override { run( change ); }
   void onLeaf( Name const & ) override { run( change ); }
   void onScore( U32 ) override { run( change ); }
};

class LifetimeTest : public testing::Test {
 protected:
   Ptr< Everything > thing = everythingFactory( "thing" );
};

// Once for each mutator that calls others than the owner's observers, who could be held by the visit alone.
TEST_F( LifetimeTest, theOwnerStaysUntilItsMutatorIsDone ) {
   using Mutator = void ( * )( Everything & );
   Mutator const mutators[]{
      []( Everything & owner ) { owner.leafDel( "a" ); },
      []( Everything & owner ) { owner.leafDelAll(); },
      []( Everything & owner ) { owner.childDel(); },
      []( Everything & owner ) { owner.childIs( Name( "another" ) ); },
      []( Everything & owner ) { owner.palIs( nullptr ); },
      []( Everything & owner ) { owner.besideIs( 1, leafFactory( "another" ) ); },
      []( Everything & owner ) { owner.besideDelAll(); },
      []( Everything & owner ) { owner.insideIs( leafFactory( "a" ) ); },
   };
   for ( Mutator const mutator : mutators ) {
      Ptr< Everything > owner = everythingFactory( "owner" );
      std::vector< Ptr< OnLeaf > > hooks;
      auto const drop = [&] { owner = nullptr; };
      auto const watched = [&]( Ptr< Leaf > const & leaf ) {
         hooks.push_back( Vorn::newObject< OnLeaf >( *leaf ) );
         hooks.back()->zero = hooks.back()->parent = drop;
         return leaf;
      };
      watched( owner->leafIs( Name( "a" ) ) );
      watched( owner->childIs( Name( "c" ) ) );
      owner->palIs( watched( leafFactory( "a" ) ) );
      owner->besideIs( 1, watched( leafFactory( "a" ) ) );
      owner->insideIs( watched( leafFactory( "a" ) ) );
      U64 const objects = Everything::allocTrack().objects();
      mutator( *owner );
      EXPECT_FALSE( owner );
      EXPECT_EQ( Everything::allocTrack().objects(), objects - 1 );
   }
}

TEST_F( LifetimeTest, whatAnObserverMakesWhileTheParentGoesHasNoParentInTheEnd ) {
   Everything * const raw = thing.ptr();
   raw->leafIs( Name( "a" ) );
   raw->childIs( Name( "c" ) );
   Ptr< Leaf > child, leaf;
   auto const hook = Vorn::newObject< OnThing >( *thing );
   bool dying = false;
   hook->change = [&] {
      dying = hook->notifier()->vornMarkedForDeletion();
      if ( !child ) child = raw->childIs( Name( "again" ) );
      if ( !leaf ) leaf = raw->leafIs( Name( "again" ) );
   };
   thing = nullptr;
   EXPECT_TRUE( dying ) << "it can tell";
   ASSERT_TRUE( child && leaf );
   EXPECT_FALSE( child->parent() || leaf->parent() );
   EXPECT_EQ( leaf->fullName(), "again" );
}

TEST_F( LifetimeTest, aChildThatComesInBetweenLeavesAsWell ) {
   auto const hook = Vorn::newObject< OnLeaf >( *thing->childIs( Name( "first" ) ) );
   Ptr< Leaf > between;
   hook->parent = [&] {
      if ( !between ) between = thing->childIs( Name( "between" ) );
   };
   auto const last = thing->childIs( Name( "last" ) );
   EXPECT_EQ( thing->child(), last );
   EXPECT_EQ( last->parent(), thing );
   EXPECT_FALSE( between->parent() );
}

// A derived type's fields are there still while observers hear of the base's children.
TEST_F( LifetimeTest, anEntityIsWholeWhileItsChildrenGo ) {
   Ptr< Derived > derived = derivedFactory( "derived" );
   derived->childIs( Name( "c" ) );
   auto const hook = Vorn::newObject< OnThing >( *derived );
   Vorn::VornType const * type = nullptr;
   hook->change = [&] { type = hook->notifier()->fwkType(); };
   derived = nullptr;
   EXPECT_EQ( type, &Derived::_vornType );
}

TEST_F( LifetimeTest, delAllEndsWhenNoMemberRemains ) {
   auto const hook = Vorn::newObject< OnThing >( *thing );
   int again = 3;
   hook->change = [&] {
      if ( again-- <= 0 ) return;
      thing->leafIs( Name( "again" ) );
      thing->scoreIs( 7, U64( again ) );
   };
   thing->leafIs( Name( "a" ) );
   again = 3;
   thing->leafDelAll();
   EXPECT_EQ( thing->leafs(), 0u );
   again = 3;
   thing->scoreDelAll();
   EXPECT_EQ( thing->scores(), 0u );
}

TEST_F( LifetimeTest, delAllMayNestAsDeepAsThereAreMembers ) {
   for ( U32 i = 1; i <= 100; ++i ) {
      thing->scoreIs( i, i );
   }
   auto const hook = Vorn::newObject< OnThing >( *thing );
   int calls = 0;
   hook->change = [&] {
      ++calls;
      thing->scoreDelAll();
   };
   thing->scoreDelAll();
   EXPECT_EQ( calls, 100 );
}

// The next member goes as the one before it dies, between two calls.
TEST_F( LifetimeTest, delAllMissesNothingThatGoesByItself ) {
   std::vector< Ptr< OnLeaf > > hooks;
   for ( char const * name : { "a", "b", "c", "d", "e", "f" } ) {
      hooks.push_back( Vorn::newObject< OnLeaf >( *thing->leafIs( Name( name ) ) ) );
      hooks.back()->zero = [&] {
         if ( auto const it = thing->leafColl().begin() ) thing->leafDel( it->name() );
      };
   }
   thing->leafDelAll();
   EXPECT_EQ( thing->leafs(), 0u );
}

TEST_F( LifetimeTest, aBindingEndsWithItsObjectInEveryState ) {
   auto const leaf = [&]( auto const & state ) {
      Ptr< Leaf > object = leafFactory( "l" );
      auto const hook = Vorn::newObject< OnLeaf >( *object );
      state( *hook );
      object = nullptr;
      EXPECT_FALSE( hook->notifier() );
      // In the order in which it is unbound, and again.
      hook->isWeakReferenceIs( false );
      hook->isRegisteredNotifieeIs( false );
      hook->notifierIs( nullptr );
      hook->isRegisteredNotifieeIs( true );
   };
   leaf( []( OnLeaf & ) {} );
   leaf( []( OnLeaf & hook ) { hook.isRegisteredNotifieeIs( false ); } );
   leaf( []( OnLeaf & hook ) { hook.hasNotificationActiveIs( false ); } );

   Ptr< Lumo::Pkt > packet = Lumo::pktFactory( "x", 1 ); // has no list
   auto const hook = Vorn::newObject< Hook< PtrInterface::NotifieeConst > >( *packet );
   auto const paused = Vorn::newObject< Hook< PtrInterface::NotifieeConst > >( *packet );
   paused->isRegisteredNotifieeIs( false );
   int told = 0;
   hook->zero = paused->zero = [&] { ++told; };
   packet = nullptr;
   EXPECT_EQ( told, 1 );
   EXPECT_FALSE( hook->notifier() || paused->notifier() );
}

TEST_F( LifetimeTest, aPausedObserverComesBackAtTheEnd ) {
   std::string order;
   auto const a = Vorn::newObject< OnThing >( *thing );
   auto const b = Vorn::newObject< OnThing >( *thing );
   a->change = [&] { order += "a"; };
   b->change = [&] { order += "b"; };
   a->notifierIs( thing ); // as it is
   thing->numberIs( 1 );
   a->isRegisteredNotifieeIs( false );
   thing->numberIs( 2 );
   a->isRegisteredNotifieeIs( true );
   thing->numberIs( 3 );
   EXPECT_EQ( order, "ab"
                     "b"
                     "ba" );
}

// What a derived class holds goes before the binding that the base has.
TEST_F( LifetimeTest, anObserverThatDiesIsNotCalledAnyMore ) {
   thing->childIs( Name( "c" ) );
   auto hook = Vorn::newObject< OnThing >( *thing );
   bool called = false;
   hook->change = hook->zero = [&] { called = true; };
   hook->held = thing; // and lets go of it last
   thing = nullptr;
   hook = nullptr;
   EXPECT_FALSE( called );
}

TEST_F( LifetimeTest, exceptionsAreTracedAndKeptFromTheOthers ) {
   std::ostringstream lines;
   Vorn::TraceFacility::sinkIs( &lines );
   auto const a = Vorn::newObject< OnThing >( *thing );
   auto const b = Vorn::newObject< OnThing >( *thing );
   bool told = false;
   std::string before;
   a->change = [] { throw std::logic_error( "a mistake" ); };
   a->exception = [&] {
      before = lines.str();
      throw 7;
   };
   b->change = [&] { told = true; };
   thing->numberIs( 1 );
   Vorn::TraceFacility::sinkIs( nullptr );
   EXPECT_TRUE( told );
   EXPECT_NE( before.find( "of Test::Everything: a mistake" ), std::string::npos ) << before;
   EXPECT_NE( lines.str().find( "onNotificationException" ), std::string::npos );
}

TEST_F( LifetimeTest, visitsByAFunction ) {
   auto const a = Vorn::newObject< OnThing >( *thing );
   auto const b = Vorn::newObject< OnThing >( *thing );
   int told = 0;
   a->change = [&] {
      ++told;
      b->notifierIs( nullptr );
   };
   b->change = [&] { told += 10; };
   thing->notifieeList()->doVisit( []( PtrInterface::NotifieeConst & notifiee ) {
      static_cast< Everything::NotifieeConst & >( notifiee ).onNumber();
   } );
   EXPECT_EQ( told, 1 );
   U32 const key = 4;
   U32 seen = 0;
   thing->notifieeList()->doVisit(
        [&seen]( PtrInterface::NotifieeConst &, void const * with ) {
           seen = *static_cast< U32 const * >( with );
        },
        &key );
   EXPECT_EQ( seen, 4u );
}

TEST_F( LifetimeTest, whoUnbindsAllMayLetGoOfTheObject ) {
   auto const hook = Vorn::newObject< OnThing >( *thing );
   hook->isWeakReferenceIs( false );
   Vorn::NotifieeList & list = *thing->notifieeList();
   thing = nullptr;
   list.deleteAll();
   EXPECT_FALSE( hook->notifier() );
}

TEST( LifetimeDeathTest, aReferenceToWhatIsDestroyed ) {
   EXPECT_DEATH(
        {
           Ptr< Leaf > leaf = leafFactory( "l" );
           Ptr< PtrInterface const > kept;
           auto const hook = Vorn::newObject< OnLeaf >( *leaf );
           hook->zero = [&] { kept = Ptr< PtrInterface const >( hook->notifier() ); };
           leaf = nullptr;
        },
        "nobody keeps a reference" );
}

} // namespace
