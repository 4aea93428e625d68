/// \file
/// The opaque values of P2MP FECs and their indices (RFC 6388, 2.3). A host that has an MPLS library puts it
/// in the place of this header.
#pragma once

#include "Mpls/FwdEqvClass.h"
#include "Vorn/Attributes.h"

namespace Mpls {

/// One index: its opaque value, and the FECs that use it.
class VORN_API MldpOpaqueIndex : public Vorn::Entity {
   VORN_ENTITY( MldpOpaqueIndex, Vorn::Entity )

 public:
   explicit MldpOpaqueIndex( U32 const & index ) : index_( index ) {}

   VORN_KEY( 0x102, U32, index );
   /// The opaque value; any octets.
   VORN_MUTABLE( 0x103, Vorn::String, oValStr, OValStr, replicated );
   /// The FECs that use it.
   VORN_SET( 0x104, FwdEqvClass, membership, Membership, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( MldpOpaqueIndex, mldpOpaqueIndexFactory )

/// The indices.
class VORN_API MldpOpaqueIndexColl : public Vorn::Entity {
   VORN_ENTITY( MldpOpaqueIndexColl, Vorn::Entity )

 public:
   explicit MldpOpaqueIndexColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The indices, each with its opaque value.
   VORN_ENTITY_COLL( 0x102, MldpOpaqueIndex, U32, opaqueIndex, OpaqueIndex, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( MldpOpaqueIndexColl, mldpOpaqueIndexCollFactory )

/// One opaque value: any octets, and its index.
class VORN_API MldpOpaqueVal : public Vorn::Entity {
   VORN_ENTITY( MldpOpaqueVal, Vorn::Entity )

 public:
   explicit MldpOpaqueVal( Vorn::String const & oValStr ) : oValStr_( oValStr ) {}

   VORN_KEY( 0x102, Vorn::String, oValStr );
   /// The index.
   VORN_MUTABLE( 0x103, U32, oValIndex, OValIndex, replicated ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( MldpOpaqueVal, mldpOpaqueValFactory )

/// The opaque values.
class VORN_API MldpOpaqueValColl : public Vorn::Entity {
   VORN_ENTITY( MldpOpaqueValColl, Vorn::Entity )

 public:
   explicit MldpOpaqueValColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The opaque values, each with its index.
   VORN_ENTITY_COLL( 0x102, MldpOpaqueVal, Vorn::String, opaqueVal, OpaqueVal, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( MldpOpaqueValColl, mldpOpaqueValCollFactory )

/// Both. The constructor makes the two collections, under the empty name.
class VORN_API MldpOpaqueValueTable : public Vorn::Entity {
   VORN_ENTITY( MldpOpaqueValueTable, Vorn::Entity )

 public:
   /// Makes the two collections as well.
   explicit MldpOpaqueValueTable( Vorn::Name const & name );

   VORN_NAME;
   /// The indices.
   VORN_CHILD( 0x102, MldpOpaqueIndexColl, opaqueIndexColl, OpaqueIndexColl, replicated );
   /// The opaque values.
   VORN_CHILD( 0x103, MldpOpaqueValColl, opaqueValColl, OpaqueValColl, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( MldpOpaqueValueTable, mldpOpaqueValueTableFactory )

} // namespace Mpls
