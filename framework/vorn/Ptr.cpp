#include "Vorn/Ptr.h"

#include "NotifieeVisit.h"

namespace Vorn {

NotifieeList * PtrInterface::notifieeList() const { return nullptr; }

void PtrInterface::hasNotificationActiveIs( bool ) {}

void PtrInterface::zeroReferencesIs( bool ) {}

PtrInterface::~PtrInterface() = default;

void PtrInterface::handleZeroRef() const noexcept {
   if ( NotifieeVisit::keeps( *this ) ) [[unlikely]]
      return;
   vornMarkedForDeletionIs( true );
   auto * self = const_cast< PtrInterface * >( this );
   self->zeroReferencesIs( true );
   delete self;
}

} // namespace Vorn
