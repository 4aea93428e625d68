#include "Vorn/Ptr.h"

namespace Vorn {

NotifieeList * PtrInterface::notifieeList() const { return nullptr; }

void PtrInterface::hasNotificationActiveIs( bool ) {}

void PtrInterface::zeroReferencesIs( bool ) {}

PtrInterface::~PtrInterface() = default;

void PtrInterface::handleZeroRef() const noexcept {
   refs_ |= beingDestroyed;
   auto * self = const_cast< PtrInterface * >( this );
   self->zeroReferencesIs( true );
   delete self;
}

} // namespace Vorn
