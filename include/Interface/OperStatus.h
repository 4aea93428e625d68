/// \file
/// Operational status of interfaces. A host that has an interface library puts it in the place of this
/// header.
#pragma once

#include "Vorn/Strep.h"

namespace Interface {

/// What an interface is able to do (ifOperStatus of RFC 2863, 6, with its numbers).
#define VORN_INTERFACE_OPER_STATUSES( X )                                                                    \
   X( intfOperUp, 1 )                                                                                        \
   X( intfOperDown, 2 )                                                                                      \
   X( intfOperTesting, 3 )                                                                                   \
   X( intfOperUnknown, 4 )                                                                                   \
   X( intfOperDormant, 5 )                                                                                   \
   X( intfOperNotPresent, 6 )                                                                                \
   X( intfOperLowerLayerDown, 7 )
VORN_ENUM( IntfOperStatus, VORN_INTERFACE_OPER_STATUSES )

} // namespace Interface
