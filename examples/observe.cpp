// Watches adjacencies come, change and go, as an agent does: run it without arguments.

#include "Ldp/LdpAdj.h"

#include <cstdio>

namespace {

using namespace Ldp;

/// Told of the attributes of one adjacency.
class AdjObserver : public LdpAdjStatus::NotifieeConst {
 public:
   void onAdjStatusCode() override {
      auto const & adj = static_cast< LdpAdjStatus const & >( *notifier() );
      std::printf( "   %s is now %s\n", adj.ldpAdjId().stringValue().charPtr(),
                   valueToStrep( adj.adjStatusCode() ).charPtr() );
   }
};

/// Told of the members of the collection.
class CollObserver : public LdpAdjStatusColl::NotifieeConst {
 public:
   void onAdjStatus( LdpAdjId const & id ) override {
      auto const & coll = static_cast< LdpAdjStatusColl const & >( *notifier() );
      std::printf( "%s %s\n", coll.adjStatus( id ) ? "new:" : "gone:", id.stringValue().charPtr() );
   }
};

/// Binds an observer that leaves the object's life alone.
template< class Observer >
Vorn::Ptr< Observer > watch( Vorn::PtrInterface const & object ) {
   auto const observer = Vorn::newObject< Observer >();
   observer->isRegisteredNotifieeIs( true );
   observer->notifierIs( Vorn::Ptr< Vorn::PtrInterface const >( &object ) );
   observer->isWeakReferenceIs( true );
   return observer;
}

} // namespace

int main() {
   auto const adjacencies = ldpAdjStatusCollFactory( Vorn::Name( "adjacencies" ) );
   auto const collObserver = watch< CollObserver >( *adjacencies );

   LdpAdjId const id( LdpIdentifier( 0x0a000001, 0 ), Lumo::IntfId( "Ethernet1" ) );
   auto const adj = adjacencies->adjStatusIs( id ); // "new:"
   adjacencies->adjStatusIs( id );                  // the same one, in silence

   auto const adjObserver = watch< AdjObserver >( *adj );
   adj->adjStatusCodeIs( holdTimerExpired ); // told
   adj->adjStatusCodeIs( holdTimerExpired ); // equal, so it is not

   adjacencies->adjStatusDel( id ); // "gone:"; `adj` still holds it, without a parent
   return adj->parent() ? 1 : 0;
}
