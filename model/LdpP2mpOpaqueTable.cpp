#include "Ldp/LdpP2mpOpaqueTable.h"

#include "Twain/Trace.h"
#include "Twain/Values.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpP2mpOpaqueTable )
VORN_MODULE( &LdpP2mpOpaqueTable::_vornType )

LdpP2mpOpaqueTable::~LdpP2mpOpaqueTable() { vornTeardown(); }

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
   auto const table = table_; // an observer of the new index may drop this object
   if ( auto const entry = table->opaqueValColl()->opaqueVal( value ) ) return entry->oValIndex();
   U32 const newIndex = allocate();
   TWAIN_TRACE( 9, " In LdpP2mpOpaqueTable::getOrCreateOpaqueIndex newIndex is ", newIndex );
   table->opaqueValColl()->opaqueValIs( value )->oValIndexIs( newIndex );
   // An index that was freed twice comes to light here.
   auto const oi = table->opaqueIndexColl()->opaqueIndex( newIndex );
   VORN_ASSERT( !oi );
   table->opaqueIndexColl()->opaqueIndexIs( newIndex )->oValStrIs( value );
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
   auto const oi = table_->opaqueIndexColl()->opaqueIndex( index );
   VORN_ASSERT( oi );
   TWAIN_TRACE( 9, "Removing membership for p2mpFecId ", fec );
   oi->membershipDel( fec );
   auto const value = table_->opaqueValColl()->opaqueVal( oi->oValStr() );
   TWAIN_TRACE( 9, "Number of memberships = ", oi->memberships() );
   if ( oi->memberships() == 0 ) {
      table_->opaqueIndexColl()->opaqueIndexDel( index );
      table_->opaqueValColl()->opaqueValDel( value->oValStr() );
      free( index );
   }
}

} // namespace Ldp
