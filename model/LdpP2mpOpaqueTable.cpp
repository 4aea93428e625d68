// The allocator of opaque values.
#include "Ldp/LdpP2mpOpaqueTable.h"

#include "Twain/Trace.h"
#include "Twain/Values.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpP2mpOpaqueTable )

namespace {

VORN_TRACE_FACILITY( "LdpP2mpOpaqueTable" )

} // namespace

U32 LdpP2mpOpaqueTable::allocate() {
   bool const reused = freeIds() != 0;
   U32 const id = reused ? freeIdDeq() : largestAllocatedIdInc( 1 );
   VORN_ASSERT( id != invalidId() );
   TWAIN_TRACE( 9, "In LdpP2mpOpaqueTable id is ", id, " reused = ", reused );
   return id;
}

void LdpP2mpOpaqueTable::free( U32 id ) {
   VORN_ASSERT( id != invalidId() );
   freeIdEnq( id );
}

U32 LdpP2mpOpaqueTable::getOpaqueIndex( Vorn::String const & value ) const {
   auto const entry = table_->opaqueValColl()->opaqueVal( value );
   return entry ? entry->oValIndex() : invalidId();
}

U32 LdpP2mpOpaqueTable::getOrCreateOpaqueIndex( Vorn::String const & value ) {
   // What observers of the new index may drop.
   Vorn::Hold const hold( *this );
   auto const values = table_->opaqueValColl();
   auto const indices = table_->opaqueIndexColl();
   if ( auto const entry = values->opaqueVal( value ) ) return entry->oValIndex();
   U32 const newIndex = allocate();
   TWAIN_TRACE( 9, " In LdpP2mpOpaqueTable::getOrCreateOpaqueIndex newIndex is ", newIndex );
   values->opaqueValIs( value )->oValIndexIs( newIndex );
   // An index that was freed twice comes to light here.
   auto const oi = indices->opaqueIndex( newIndex );
   VORN_ASSERT( !oi );
   indices->opaqueIndexIs( newIndex )->oValStrIs( value );
   return newIndex;
}

Vorn::String LdpP2mpOpaqueTable::getOpaqueVal( U32 index ) const {
   auto const entry = table_->opaqueIndexColl()->opaqueIndex( index );
   VORN_ASSERT_TEXT( entry, "false && \"OpaqueValue absent for internal id\"" );
   return entry->oValStr();
}

void LdpP2mpOpaqueTable::addMembership( Mpls::FwdEqvClass const & fec ) {
   auto const oi = table_->opaqueIndexColl()->opaqueIndex( fec.first() );
   VORN_ASSERT( oi );
   oi->membershipIs( fec );
   TWAIN_TRACE( 9, "Added membership for ", fec );
}

void LdpP2mpOpaqueTable::delMembership( Mpls::FwdEqvClass const & fec ) {
   U32 const index = fec.first();
   TWAIN_TRACE( 9, "In LdpP2mpOpaqueTable::delMembership oIndex is ", index );
   // What observers of the removal may drop.
   Vorn::Hold const hold( *this );
   auto const values = table_->opaqueValColl();
   auto const indices = table_->opaqueIndexColl();
   auto const oi = indices->opaqueIndex( index );
   VORN_ASSERT( oi );
   TWAIN_TRACE( 9, "Removing membership for p2mpFecId ", fec );
   oi->membershipDel( fec );
   Vorn::String const value = oi->oValStr();
   TWAIN_TRACE( 9, "Number of memberships = ", oi->memberships() );
   // An observer may have removed another FEC of the value, the last one, and so the index with it.
   if ( oi->memberships() == 0 && indices->opaqueIndex( index ) == oi ) {
      indices->opaqueIndexDel( index );
      values->opaqueValDel( value );
      free( index );
   }
}

} // namespace Ldp
