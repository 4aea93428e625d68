// The table of opaque values as far as the model writes it.
#include "Mpls/MldpOpaqueValueTable.h"

namespace Mpls {

VORN_RECORD( Mpls, MldpOpaqueIndex )
VORN_RECORD( Mpls, MldpOpaqueIndexColl )
VORN_RECORD( Mpls, MldpOpaqueVal )
VORN_RECORD( Mpls, MldpOpaqueValColl )
VORN_RECORD( Mpls, MldpOpaqueValueTable )

MldpOpaqueValueTable::MldpOpaqueValueTable( Vorn::Name const & name ) : name_( name ) {
   opaqueIndexCollIs( Vorn::Name() );
   opaqueValCollIs( Vorn::Name() );
}

} // namespace Mpls
