/// \file
/// Compact indices for the opaque values of P2MP FECs (RFC 6388, 2.3). A FEC value has room for a root
/// address and a 32-bit index; the opaque value itself, of any length, is kept once, in a shared table.
#pragma once

#include "Mpls/FwdEqvClass.h"
#include "Mpls/MldpOpaqueValueTable.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// Hands out the indices, maps in both directions, and takes the index of a value back when the last FEC that
/// uses it is gone.
///
/// An index is in use (it has an entry in `table`), or waits in `freeId`, or lies above
/// `largestAllocatedId`. For one FEC: `getOrCreateOpaqueIndex` gives the index of which the FEC is built,
/// `addMembership` registers it, `delMembership` undoes that. An index that never gets a member stays.
///
/// `table` is set before anything but `allocate` and `free` is called. What goes wrong here is a mistake of
/// the caller's, and ends the process.
class VORN_API LdpP2mpOpaqueTable : public Vorn::Entity {
   VORN_ENTITY( LdpP2mpOpaqueTable, Vorn::Entity )

 public:
   explicit LdpP2mpOpaqueTable( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The opaque values and their indices, which somebody else owns.
   VORN_REFERENCE( 0x102, Mpls::MldpOpaqueValueTable, table, Table, replicated );
   VORN_FUNCTION( 0x103, getOrCreateOpaqueIndex );
   VORN_FUNCTION( 0x104, getOpaqueIndex );
   VORN_FUNCTION( 0x105, getOpaqueVal );
   VORN_FUNCTION( 0x106, addMembership );
   VORN_FUNCTION( 0x107, delMembership );
   /// The index of nothing.
   VORN_CONSTANT( 0x108, U32, invalidId, 0 );
   /// Released indices, the one that waits longest at the head; an index that was freed twice stands here
   /// twice.
   VORN_QUEUE( 0x109, U32, freeId, FreeId, replicated );
   /// The highest index handed out so far; it never falls.
   VORN_COUNTER( 0x10a, U32, largestAllocatedId, LargestAllocatedId, replicated ) = 0;
   VORN_FUNCTION( 0x10b, allocate );
   VORN_FUNCTION( 0x10c, free );

   /// The index of an opaque value, a new one if it has none. Values are the same if their octets are.
   U32 getOrCreateOpaqueIndex( Vorn::String const & value );
   /// The index of an opaque value, or `invalidId`.
   U32 getOpaqueIndex( Vorn::String const & value ) const;
   /// The opaque value of an index, which must be in use.
   Vorn::String getOpaqueVal( U32 index ) const;
   /// Registers a FEC with its value. The FEC's kind is not looked at: its index is what counts.
   void addMembership( Mpls::FwdEqvClass const & fec );
   /// Removes a FEC from its value, and the value with its index if no FEC is left, whether or not this one
   /// was there.
   void delMembership( Mpls::FwdEqvClass const & fec );
   /// An index that is not in use: the one released longest ago, else a new one. All 2^32 - 1 in use ends the
   /// process.
   U32 allocate();
   /// Takes an index back. It may not be `invalidId`; nothing else is looked at.
   void free( U32 id );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpP2mpOpaqueTable, ldpP2mpOpaqueTableFactory )

} // namespace Ldp
