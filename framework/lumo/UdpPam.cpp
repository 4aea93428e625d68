// Record of the packet mover of a UDP socket.
#include "Lumo/UdpPam.h"

#include "Vorn/VornType.h"

namespace Lumo {

VORN_OBJECT_RECORD( Lumo, UdpPam, nullptr )

UdpPam::~UdpPam() = default;

} // namespace Lumo
