// Every mutator from within every callback.
#include "support/Reentry.h"

#include "Ldp/LdpStatus.h"
#include "Lumo/Pkt.h"
#include "Vorn/Entity.h"
#include "Vorn/GenericIf.h"
#include "Vorn/Trace.h"

#include <map>
#include <stdexcept>
#include <vector>

namespace Test {

U32 Choices::below( U32 n ) noexcept {
   if ( at_ ) return at_ == end_ ? 0 : *at_++ % n;
   state_ += 0x9e3779b97f4a7c15; // splitmix64
   U64 mixed = ( state_ ^ state_ >> 30 ) * 0xbf58476d1ce4e5b9;
   mixed = ( mixed ^ mixed >> 27 ) * 0x94d049bb133111eb;
   return U32( ( mixed ^ mixed >> 31 ) >> 32 ) % n;
}

namespace {

using namespace Ldp;
using Vorn::Entity;
using Vorn::Name;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
using Vorn::VornCtorArg;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;
namespace GenericIf = Vorn::GenericIf;

using Observer = PtrInterface::NotifieeConst;

// A few values of each type, a default one first: few, so that keys meet again.
std::vector< Value > const & valuesOf( VornType const & type ) {
   static char const * const texts[]{
      "1",          "7",          "True",       "10.0.0.1",    "10.0.0.2",
      "10.0.0.1:0", "10.0.0.2:0", "10.0.0.0/8", "10.1.0.0/16", "10.0.0.1:0_e",
      "a",          "b",          "'a'",        "10.0.0.1-e",  "10.0.0.1:646"
   };
   static std::map< VornType const *, std::vector< Value > > known;
   auto const [at, fresh] = known.try_emplace( &type );
   std::vector< Value > & values = at->second;
   if ( !fresh ) return values;
   values.reserve( 3 );
   values.emplace_back( &type );
   for ( char const * text : texts ) {
      if ( values.size() == 3 ) break;
      try {
         Value value( &type );
         value.stringValueIs( text );
         if ( !( value == values.back() ) ) values.push_back( value );
      } catch ( Vorn::Exception const & ) { // the text of another type
      }
   }
   return values;
}

// What reflection writes, but for what ends the process by contract: indices of opaque values that somebody
// else hands out, and sessions of no pseudowire.
std::vector< VornAttr const * > const & writtenOf( VornType const & type ) {
   static std::map< VornType const *, std::vector< VornAttr const * > > known;
   auto const [at, fresh] = known.try_emplace( &type );
   if ( !fresh ) return at->second;
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !attr->ops || attr->kind() == VornKind::function || attr->kind() == VornKind::derived ) continue;
      if ( attr->type == &PwFecSessionConfig::_vornType || attr->owner == &LdpP2mpOpaqueTable::_vornType ||
           attr->owner == &Mpls::MldpOpaqueIndexColl::_vornType )
         continue;
      if ( attr->instantiating() || attr->keyed() || attr->kind() == VornKind::mutableAttr ||
           attr->kind() == VornKind::reference )
         at->second.push_back( attr );
   }
   return at->second;
}

class World {
 public:
   World( Choices & choices, U64 steps ) : choices_( choices ), left_( steps ) { world = this; }
   ~World();

   void run();
   // Does something, whatever it is. From within a callback, or as a step of its own.
   void act();
   bool chance( U32 oneIn ) { return choices_.below( oneIn ) == 0; }

   static World * world;

 private:
   static constexpr U32 entities = 16;
   static constexpr U32 observers = 12;

   // One that is held, if any is.
   Entity * any() const {
      U32 const from = choices_.below( entities );
      for ( U32 i = 0; i < entities; ++i ) {
         if ( Entity * const entity = held_[( from + i ) % entities].ptr() ) return entity;
      }
      return nullptr;
   }
   void hold( PtrInterface * object );
   void hold( Ptr< PtrInterface > const & object ) { hold( object.ptr() ); }
   Value const & valueFor( VornType const & type ) const {
      auto const & values = valuesOf( type );
      return values[choices_.below( U32( values.size() ) )];
   }
   void makeRoot();
   void mutate( Entity & entity );
   void callTyped( Entity & entity );
   void walk( Entity & entity );
   void drop();
   void makeObserver();
   void changeBinding();
   void look();

   Choices & choices_;
   U64 left_;
   U32 depth_ = 0;
   U32 budget_ = 0;             // calls that are left to the callbacks of this step
   Entity * working_ = nullptr; // whose mutator runs, the innermost; it may be gone
   Ptr< Entity > held_[entities];
   Ptr< Observer > observers_[observers];
   Ptr< Lumo::Pkt > packet_;
};

World * World::world = nullptr;

// Meddles in every callback of the base's. What it holds goes with it.
template< class Base >
class Meddler : public Base {
 public:
   ~Meddler() override {
      try {
         World::world->act();
      } catch ( std::exception const & ) { // may not leave a destructor
      }
      gone_ = true; // and what it holds goes now
   }
   void onNotificationException() override {
      called();
      if ( World::world->chance( 4 ) ) throw std::runtime_error( "and again" );
   }
   void onZeroReferences() override { called(); }
   void vornFwkActivity() override { called(); }

   Ptr< PtrInterface > mine;

 protected:
   void called() {
      VORN_ASSERT_TEXT( !gone_, "no callback comes to an observer that dies" );
      World::world->act();
   }

 private:
   bool gone_ = false;
};

class AnyMeddler : public Meddler< Entity::NotifieeConst > {
 public:
   AnyMeddler() { watchesAllIs( true ); }
   void handleNotification( U32 id, void const * key ) override {
      if ( !key ) return called();
      // The key stays readable until the callback returns.
      VornType const & keyType = *notifier()->fwkType()->attribute( id )->keyType;
      Value const before( &keyType, key );
      called();
      VORN_ASSERT( keyType.methods->equal( before.data(), key ) );
   }
};

class CollMeddler : public Meddler< LdpAdjStatusColl::NotifieeConst > {
 public:
   void onAdjStatus( LdpAdjId const & key ) override {
      LdpAdjId const before = key;
      called();
      VORN_ASSERT( key == before );
   }
};

class FecMeddler : public Meddler< LdpFecConfig::NotifieeConst > {
 public:
   void onMplsLabelSet() override { called(); }
   void onVia( Via const & key ) override {
      Via const before = key;
      called();
      VORN_ASSERT( key == before );
   }
};

void World::hold( PtrInterface * object ) {
   if ( !object || object->vornMarkedForDeletion() ) return; // who keeps a dying object ends the process
   if ( auto * const entity = dynamic_cast< Entity * >( object ) )
      held_[choices_.below( entities )] = Ptr< Entity >( entity );
}

void World::makeRoot() {
   switch ( choices_.below( 14 ) ) {
   case 0:
   case 1: return hold( ldpAdjStatusCollFactory( Name( "adjs" ) ) );
   case 2:
   case 3: return hold( ldpStatusCollFactory( Name( "all" ) ) );
   case 4: return hold( statusFactory( L3::VrfName( "a" ) ) );
   case 5: return hold( ldpConfigCollFactory( Name( "configs" ) ) );
   case 6: return hold( ldpFecConfigCollFactory( Name( "fecs" ) ) );
   case 7: return hold( ldpSessionStatusFactory( LdpSessionId() ) );
   case 8: return hold( ldpSessionStateLogEntryCollFactory( Name( "log" ) ) );
   case 9: {
      auto const table = ldpP2mpOpaqueTableFactory( Name( "opaque" ) );
      table->tableIs( Mpls::mldpOpaqueValueTableFactory( Name( "table" ) ) );
      return hold( table );
   }
   case 10: return hold( ldpTargetMsgPipeCollectionFactory( Name( "pipes" ) ) );
   case 11: return hold( pwFecSessionInfoMapFactory( Pseudowire::PseudowireLdpRequestKey() ) );
   case 12: return hold( ldpMsgPipeFactory( Name( "pipe" ) ) );
   default: return hold( ldpIndexFactory( Name( "index" ) ) );
   }
}

// By reflection, an attribute of whatever kind. Nobody here holds the entity.
void World::mutate( Entity & entity ) {
   auto const & attrs = writtenOf( *entity.fwkType() );
   if ( attrs.empty() ) return;
   // Mostly the first few, so that large types come to something.
   auto const num = U32( attrs.size() );
   VornAttr const & attr = *attrs[choices_.below( chance( 4 ) ? num : std::min( num, 6u ) )];
   static constexpr U32 ops[]{ GenericIf::write, GenericIf::write, GenericIf::write,
                               GenericIf::del,   GenericIf::del,   GenericIf::delAll };
   U32 const op = ops[choices_.below( attr.keyed() ? 6 : 5 )];
   void const * const key = attr.keyed() ? valueFor( *attr.keyType ).data() : nullptr;
   Ptr< PtrInterface > object;
   std::vector< void const * > args;
   if ( attr.instantiating() ) {
      for ( VornCtorArg const * arg = attr.memberCtorArgs; arg->name; ++arg ) {
         args.push_back( valueFor( *arg->type ).data() );
      }
   } else if ( attr.type->isPolymorphic() ) {
      Entity * const target = any();
      if ( target && target->fwkType()->isDerived( attr.type ) && !target->vornMarkedForDeletion() )
         object = Ptr< PtrInterface >( target );
      args.push_back( &object );
   } else {
      args.push_back( valueFor( *attr.type ).data() );
   }
   Ptr< PtrInterface > result;
   void * const out = attr.type->isPolymorphic() ? &result : nullptr;
   attr.ops->op( out, static_cast< PtrInterface * >( &entity ), attr, op, key, args.data() );
   if ( chance( 2 ) ) hold( result );
}

// What reflection does not reach, and what has logic of its own. Nobody here holds the entity.
void World::callTyped( Entity & entity ) {
   if ( auto * const coll = dynamic_cast< LdpAdjStatusColl * >( &entity ) ) {
      auto const it = coll->adjStatusColl().begin();
      if ( !it ) return;
      if ( chance( 2 ) ) return coll->adjStatusNotify( it->ldpAdjId() );
      coll->adjStatusDel( it->ldpAdjId() ); // the key lies in the member
   } else if ( auto * const adj = dynamic_cast< LdpAdjStatus * >( &entity ) ) {
      adj->rxPktCountInc( choices_.below( 2 ) );
   } else if ( auto * const configs = dynamic_cast< LdpConfigColl * >( &entity ) ) {
      configs->handleInitialized();
   } else if ( auto * const session = dynamic_cast< LdpSessionStatus * >( &entity ) ) {
      switch ( choices_.below( 4 ) ) {
      case 0: return session->checkInit();
      case 1: session->sessionStateCountInc( stateExpired, choices_.below( 3 ) ); return;
      case 2: return session->sessionStateCountDelAll();
      default: return session->peerIntfIpDelAll();
      }
   } else if ( auto * const log = dynamic_cast< LdpSessionStateLogEntryColl * >( &entity ) ) {
      switch ( choices_.below( 3 ) ) {
      case 0: log->sessionStateLogEntryEnq( {} ); return;
      case 1: log->sessionStateLogEntryDeq(); return;
      default: return log->sessionStateLogEntryDelAll();
      }
   } else if ( auto * const fecs = dynamic_cast< LdpFecConfigColl * >( &entity ) ) {
      auto const it = fecs->fecConfigColl().begin();
      auto * const notifier = fecs->fecConfigNotifier().ptr();
      if ( !it || !notifier ) return;
      Ptr< LdpFecConfig const > const fec( &*it );
      chance( 2 ) ? notifier->updateVia( fec ) : notifier->updateMplsLabelSet( fec, Lumo::MplsLabel() );
   } else if ( auto * const fec = dynamic_cast< LdpFecConfig * >( &entity ) ) {
      fec->viaDelAll();
   } else if ( auto * const pipes = dynamic_cast< LdpTargetMsgPipeCollection * >( &entity ) ) {
      pipes->msgPipeDelAll();
   } else if ( auto * const pipe = dynamic_cast< LdpMsgPipe * >( &entity ) ) {
      auto const taken = pipe->rxMsg(); // one slot, which must be empty
      pipe->txMsgIs( ldpMsgFactory( {}, packet_, 0 ) );
   } else if ( auto * const opaque = dynamic_cast< LdpP2mpOpaqueTable * >( &entity ) ) {
      auto const table = opaque->table();
      if ( !table || !table->opaqueIndexColl() || !table->opaqueValColl() ) return;
      Vorn::String const text( chance( 2 ) ? "one" : "other" );
      if ( chance( 2 ) ) {
         opaque->getOrCreateOpaqueIndex( text );
         return;
      }
      U32 const index = opaque->getOpaqueIndex( text );
      if ( !index || !table->opaqueIndexColl()->opaqueIndex( index ) ) return;
      Mpls::FwdEqvClass const p2mp( Lumo::IpGenAddr( Lumo::IpAddr( 1 + choices_.below( 2 ) ) ), index );
      chance( 2 ) ? opaque->addMembership( p2mp ) : opaque->delMembership( p2mp );
   }
}

// Over a collection, while others change it. Who walks holds the owner.
void World::walk( Entity & entity ) {
   Ptr< Entity > const owner( entity.vornMarkedForDeletion() ? nullptr : &entity );
   auto const & attrs = writtenOf( *entity.fwkType() );
   if ( !owner || attrs.empty() ) return;
   VornAttr const & attr = *attrs[choices_.below( U32( attrs.size() ) )];
   if ( !attr.keyed() ) return;
   for ( GenericIf::Iterator it( static_cast< PtrInterface * >( owner.ptr() ), attr ); it; it.advance() ) {
      act();
      Value key( attr.keyType );
      it.key( key.data() );
      if ( attr.instantiating() ) {
         Ptr< PtrInterface > member;
         it.object( &member );
         hold( member );
      }
   }
}

// Some reference, or all to what is at work.
void World::drop() {
   Entity * const gone = working_;
   if ( !gone || chance( 3 ) ) {
      held_[choices_.below( entities )] = nullptr;
      return;
   }
   for ( auto & slot : held_ ) {
      if ( slot.ptr() == gone ) slot = nullptr;
   }
}

void World::makeObserver() {
   Entity * const entity = any();
   Ptr< PtrInterface > mine;
   if ( Entity * const its = chance( 2 ) ? entity : any();
        its && chance( 3 ) && !its->vornMarkedForDeletion() )
      mine = Ptr< PtrInterface >( its );
   auto const make = [&]< class Kind >( Kind * ) -> Ptr< Observer > {
      auto const made = Vorn::newObject< Kind >();
      made->mine = mine;
      return made;
   };
   PtrInterface * object = entity;
   Ptr< Observer > observer;
   if ( dynamic_cast< LdpAdjStatusColl * >( entity ) && chance( 2 ) ) {
      observer = make( static_cast< CollMeddler * >( nullptr ) );
   } else if ( dynamic_cast< LdpFecConfig * >( entity ) && chance( 2 ) ) {
      observer = make( static_cast< FecMeddler * >( nullptr ) );
   } else if ( chance( 8 ) ) {
      object = packet_.ptr();
      observer = make( static_cast< Meddler< Observer > * >( nullptr ) );
   } else {
      observer = make( static_cast< AnyMeddler * >( nullptr ) );
   }
   if ( !object ) return;
   observer->isRegisteredNotifieeIs( true );
   bool const strong = chance( 4 ) && !object->vornMarkedForDeletion();
   if ( strong || !chance( 2 ) ) {
      observer->notifierIs( Ptr< PtrInterface const >( object ) );
      observer->isWeakReferenceIs( !strong );
   } else {
      observer->isWeakReferenceIs( true );
      observer->notifierIs( Ptr< PtrInterface const >( object ) );
   }
   observers_[choices_.below( observers )] = observer;
}

void World::changeBinding() {
   Ptr< Observer > & slot = observers_[choices_.below( observers )];
   if ( !slot || chance( 4 ) ) {
      slot = nullptr;
      return;
   }
   Ptr< Observer > const observer = slot;
   switch ( choices_.below( 6 ) ) {
   case 0:
      observer->isWeakReferenceIs( false );
      observer->isRegisteredNotifieeIs( false );
      return observer->notifierIs( nullptr );
   case 1: return observer->isRegisteredNotifieeIs( chance( 2 ) );
   case 2: return observer->isWeakReferenceIs( !chance( 3 ) );
   case 3: return observer->hasNotificationActiveIs( !chance( 3 ) );
   case 4: return slot->notifierIs( nullptr );
   default: {
      Entity * const entity = any();
      if ( entity && entity->fwkType()->isDerived( observer->notifierType() ) )
         observer->notifierIs( Ptr< PtrInterface const >( entity ) );
   }
   }
}

void World::act() {
   if ( depth_ > 5 || !budget_ || choices_.ended() ) return;
   --budget_;
   if ( left_ ) --left_;
   struct Deeper {
      explicit Deeper( U32 & depth ) : depth_( ++depth ) {}
      ~Deeper() { --depth_; }
      U32 & depth_;
   } const deeper( depth_ );
   Entity * const entity = any();
   if ( !entity ) return makeRoot();
   switch ( choices_.below( 16 ) ) {
   case 0: return makeRoot();
   case 1: return drop();
   case 2: return hold( entity->parent() );
   case 3:
   case 4: return makeObserver();
   case 5:
   case 6: return changeBinding();
   case 7:
      if ( depth_ > 1 && chance( 2 ) ) throw std::runtime_error( "meddled" );
      packet_ = Lumo::pktFactory( "", 0 );
      return;
   case 8: return walk( *entity );
   default: {
      struct Working {
         Working( Entity *& place, Entity * entity )
              : place_( place ), outer_( std::exchange( place, entity ) ) {}
         ~Working() { place_ = outer_; }
         Entity *& place_;
         Entity * const outer_;
      } const working( working_, entity );
      chance( 4 ) ? callTyped( *entity ) : mutate( *entity );
   }
   }
}

// Nothing that is held leads to what is gone. What says that it has a parent is found there.
void World::look() {
   for ( auto const & entity : held_ ) {
      if ( !entity ) continue;
      if ( Ptr< Entity > const parent = entity->parent() ) VORN_ASSERT( parent->references() > 1 );
   }
   for ( auto const & observer : observers_ ) {
      if ( observer && observer->notifier() ) VORN_ASSERT( !observer->notifier()->vornMarkedForDeletion() );
   }
   if ( Entity * const entity = any(); entity && entity->parent() )
      VORN_ASSERT_TEXT( entity->parentAttrName().bytes(), "the parent owns the child" );
}

void World::run() {
   packet_ = Lumo::pktFactory( "", 0 );
   while ( left_ && !choices_.ended() ) {
      budget_ = 60;
      try {
         act();
      } catch ( std::exception const & ) {}
      look();
   }
}

World::~World() {
   budget_ = 0;
   for ( auto & observer : observers_ ) {
      observer = nullptr;
   }
   for ( auto & entity : held_ ) {
      entity = nullptr;
   }
}

} // namespace

void meddle( Choices & choices, U64 steps ) {
   auto const alive = [] {
      return LdpAdjStatus::allocTrack().objects() + LdpFecConfig::allocTrack().objects();
   };
   U64 const before = alive();
   Vorn::TraceFacility::levelsIs( "Notifiee", 0 ); // the exceptions are meant
   World( choices, steps ).run();
   Vorn::TraceFacility::levelsIs( "Notifiee", ~0u );
   VORN_ASSERT_TEXT( alive() == before, "nothing stays that nobody holds" );
}

} // namespace Test
