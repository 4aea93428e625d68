// Counted objects at the end of their lives.
#include "Vorn/Ptr.h"

#include "NotifieeVisit.h"

namespace Vorn {

NotifieeList * PtrInterface::notifieeList() const { return nullptr; }

void PtrInterface::hasNotificationActiveIs( bool ) {}

void PtrInterface::zeroReferencesIs( bool ) {}

PtrInterface::~PtrInterface() {
   if ( refs_ & ~beingDestroyed ) [[unlikely]] {
      if ( refs_ & boundAside ) NotifieeList::asideDel( *this ); // bound on the way down
      VORN_ASSERT_TEXT( ( refs_ & referenceMask & ~beingDestroyed ) == 0,
                        "nobody keeps a reference to an object that is destroyed" );
   }
}

void PtrInterface::handleZeroRef() const noexcept {
   if ( NotifieeVisit::keeps( *this ) ) [[unlikely]]
      return;
   vornMarkedForDeletionIs( true );
   auto * self = const_cast< PtrInterface * >( this );
   self->zeroReferencesIs( true );
   if ( refs_ & boundAside ) [[unlikely]] {
      NotifieeList::of( *this ).doVisitZeroReferences( *this );
      NotifieeList::asideDel( *this );
   }
   delete self;
}

} // namespace Vorn
