// An observer that writes down what it is told.
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace Test {

using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;

Watcher::Watcher( PtrInterface const & object, std::function< void() > also )
     : type_( *object.fwkType() ), also_( std::move( also ) ) {
   bound_ = Ptr< PtrInterface::NotifieeConst >(
        static_cast< PtrInterface::NotifieeConst * >( type_.genericIfNotifiee( *this ).ptr() ) );
   bound_->isRegisteredNotifieeIs( true );
   bound_->notifierIs( Ptr< PtrInterface const >( &object ) );
   bound_->isWeakReferenceIs( true );
}

Watcher::~Watcher() {
   bound_->isWeakReferenceIs( false );
   bound_->isRegisteredNotifieeIs( false );
   bound_->notifierIs( nullptr );
}

void Watcher::onRawAttribute( U32 id ) {
   VornAttr const * const attr = type_.attribute( id );
   see( attr ? attr->name : "?" );
}

void Watcher::onRawAttribute( U32 id, void const * key, bool keyed ) {
   EXPECT_TRUE( keyed );
   VornAttr const & attr = *type_.attribute( id );
   see( std::string( attr.name ) + "[" +
        attr.keyType->methods->genericIfStrRep( key, attr.keyType ).charPtr() + "]" );
}

void Watcher::see( std::string const & text ) {
   seen_.push_back( text );
   if ( also_ ) also_();
}

} // namespace Test
