/// \file
/// Enumerations that several parts of the model share.
#pragma once

#include "Vorn/Strep.h"

namespace Ldp {

/// Label advertisement discipline (RFC 5036, 2.6.3). There is no 0.
#define VORN_LDP_LABEL_ADV_DSPLS( X )                                                                        \
   X( onDemand, 1 )                                                                                          \
   X( unSolicited, 2 )                                                                                       \
   X( unknownAdvDspl, 3 )
VORN_ENUM( LdpLabelAdvDspl, VORN_LDP_LABEL_ADV_DSPLS )

/// Where a FEC leads: to this router, to another one, or out of the domain at this one.
#define VORN_LDP_FEC_DELIVERY_TYPES( X )                                                                     \
   X( Unknown, 0 )                                                                                           \
   X( Local, 1 )                                                                                             \
   X( Remote, 2 )                                                                                            \
   X( Egress, 3 )
VORN_ENUM( LdpFecDeliveryType, VORN_LDP_FEC_DELIVERY_TYPES )

} // namespace Ldp
