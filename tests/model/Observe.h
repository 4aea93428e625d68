// Binding of observers.
#pragma once

#include "Vorn/Entity.h"

#include <string>
#include <vector>

namespace Test {

// Binds an observer as a program does; the binding leaves the object's life alone.
template< class Observer >
Vorn::Ptr< Observer > observerOf( Vorn::PtrInterface const & object ) {
   auto observer = Vorn::newObject< Observer >();
   observer->isRegisteredNotifieeIs( true );
   observer->notifierIs( Vorn::Ptr< Vorn::PtrInterface const >( &object ) );
   observer->isWeakReferenceIs( true );
   return observer;
}

} // namespace Test
