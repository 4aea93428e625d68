/// \file
/// The packet mover of a UDP socket. A host puts its own in the place of this header.
#pragma once

#include "Vorn/Ptr.h"

namespace Lumo {

/// Moves packets between a UDP socket and its user. The model only keeps references to it.
class VORN_API UdpPam : public Vorn::PtrInterface {
   VORN_OBJECT( UdpPam )

 public:
   ~UdpPam() override;
};

} // namespace Lumo
