// Record of the port number.
#include "Lumo/Port.h"

#include "Vorn/ValueType.h"

VORN_OUTSIDE_RECORD( Lumo, Port )
VORN_OUTSIDE_RECORD( Lumo, IpTtl )
