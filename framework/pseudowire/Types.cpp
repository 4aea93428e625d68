#include "Pseudowire/Types.h"

#include "Vorn/ValueType.h"

namespace Pseudowire {

VORN_ENUM_RECORD( Pseudowire, PseudowireType, PSEUDOWIRE_TYPES )

PseudowireType PseudowireTypeInstance( Vorn::String const & text ) {
   PseudowireType type{};
   Vorn::strepToValue( text, &type );
   return type;
}

} // namespace Pseudowire

VORN_OUTSIDE_RECORD( Pseudowire, PseudowireId )
VORN_OUTSIDE_RECORD( Pseudowire, GroupId )
VORN_OUTSIDE_RECORD( Pseudowire, VccvCvTypes )
VORN_OUTSIDE_RECORD( Pseudowire, PseudowireLdpStatusFlags )
