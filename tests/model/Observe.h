// Observers for tests, and what failing calls say.
#pragma once

#include "Vorn/Entity.h"
#include "Vorn/GenericIf.h"

#include <functional>
#include <string>
#include <vector>

namespace Test {

using Calls = std::vector< std::string >;

// Binds an observer as a program does; the binding leaves the object's life alone.
template< class Observer >
Vorn::Ptr< Observer > observerOf( Vorn::PtrInterface const & object ) {
   auto observer = Vorn::newObject< Observer >();
   observer->isRegisteredNotifieeIs( true );
   observer->notifierIs( Vorn::Ptr< Vorn::PtrInterface const >( &object ) );
   observer->isWeakReferenceIs( true );
   return observer;
}

// An observer of any entity, which writes down what it is told of as `msgId` and `adjStatus[10.0.0.1:0_e]`.
class Watcher : private Vorn::GenericIf::NotifieeConst {
 public:
   // `also` is called on each change, in place of what an agent does there.
   explicit Watcher( Vorn::PtrInterface const & object, std::function< void() > also = {} );
   ~Watcher() override;

   // What was told since the last call.
   Calls taken() { return std::exchange( seen_, {} ); }

 private:
   void onRawAttribute( U32 id ) override;
   void onRawAttribute( U32 id, void const * key, bool keyed ) override;
   void see( std::string const & text );

   Vorn::VornType const & type_;
   std::function< void() > also_;
   Vorn::Ptr< Vorn::PtrInterface::NotifieeConst > bound_;
   Calls seen_;
};

// The message of the exception that a call throws; "none" if it throws none of that type.
template< class Failure, class Call >
std::string messageOf( Call const & call ) {
   try {
      call();
   } catch ( Failure const & failure ) {
      return failure.message().charPtr();
   }
   return "none";
}

} // namespace Test
