// The table of opaque values as far as the model writes it.
#include "Mpls/MldpOpaqueValueTable.h"

namespace Mpls {

VORN_RECORD( Mpls, MldpOpaqueIndex )
VORN_RECORD( Mpls, MldpOpaqueIndexColl )
VORN_RECORD( Mpls, MldpOpaqueVal )
VORN_RECORD( Mpls, MldpOpaqueValColl )
VORN_RECORD( Mpls, MldpOpaqueValueTable )
VORN_MODULE( &MldpOpaqueIndex::_vornType, &MldpOpaqueIndexColl::_vornType, &MldpOpaqueVal::_vornType,
             &MldpOpaqueValColl::_vornType, &MldpOpaqueValueTable::_vornType )

MldpOpaqueIndex::~MldpOpaqueIndex() = default;
MldpOpaqueIndexColl::~MldpOpaqueIndexColl() = default;
MldpOpaqueVal::~MldpOpaqueVal() = default;
MldpOpaqueValColl::~MldpOpaqueValColl() = default;
MldpOpaqueValueTable::~MldpOpaqueValueTable() = default;

MldpOpaqueValueTable::MldpOpaqueValueTable( Vorn::Name const & name ) : name_( name ) {
   opaqueIndexCollIs( Vorn::Name() );
   opaqueValCollIs( Vorn::Name() );
}

} // namespace Mpls
