#pragma once

// What a passive monitor keeps of the speakers that it hears: of each the same state that the speaker itself
// would keep, as far as the capture shows it.

#include "Ldp/LdpStatus.h"

namespace LdpTool {

/// One speaker.
class Speaker : public Vorn::Entity {
   VORN_ENTITY( Speaker, Vorn::Entity )

 public:
   explicit Speaker( Ldp::LdpIdentifier const & ldpIdentifier ) : ldpIdentifier_( ldpIdentifier ) {}

   VORN_KEY( 0x102, Ldp::LdpIdentifier, ldpIdentifier );
   /// Opaque values of P2MP FECs, to which the opaque table of the state below refers.
   VORN_CHILD( 0x103, Mpls::MldpOpaqueValueTable, opaqueValueTable, OpaqueValueTable, replicated );
   /// State by VRF. A capture names none: all that it shows stands in the VRF "default".
   VORN_CHILD( 0x104, Ldp::LdpStatusColl, ldpStatusColl, LdpStatusColl, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};

/// All speakers heard.
class Network : public Vorn::Entity {
   VORN_ENTITY( Network, Vorn::Entity )

 public:
   explicit Network( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   VORN_ENTITY_COLL( 0x102, LdpTool::Speaker, Ldp::LdpIdentifier, speaker, Speaker, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( Network, networkFactory )

} // namespace LdpTool
