/// \file
/// Small test types that have every kind of attribute, for the tests of the object framework.
#pragma once

#include "Vorn/Attributes.h"

namespace Test {

/// A child that is made from its name.
class Leaf : public Vorn::Entity {
   VORN_ENTITY( Leaf, Vorn::Entity )

 public:
   explicit Leaf( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   VORN_MUTABLE( 0x102, U32, size, Size, replicated ) = 7;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( Leaf, leafFactory )

/// A member with further constructor arguments, one of which can be changed afterwards. The key is not the
/// first of them.
class Member : public Vorn::Entity {
   VORN_ENTITY( Member, Vorn::Entity )
   VORN_CTOR_TYPES( U16, U32, U32 )

 public:
   Member( U16 port, U32 id, U32 weight ) : port_( port ), id_( id ), weight_( weight ) {}

   VORN_CTOR_ARG( 0x102, U16, port );
   VORN_KEY( 0x103, U32, id );
   VORN_MUTABLE_CTOR_ARG( 0x104, U32, weight, Weight, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};

/// Takes the key of a leaf that is referred to.
struct LeafName {
   Vorn::Name operator()( Vorn::Ptr< Leaf > const & leaf ) const { return leaf->name(); }
};

/// Every kind of attribute.
class Everything : public Vorn::Entity {
   VORN_ENTITY( Everything, Vorn::Entity )

 public:
   explicit Everything( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   VORN_MUTABLE( 0x102, U32, number, Number, replicated ) = 0;
   VORN_MUTABLE( 0x103, double, ratio, Ratio, replicated ) = 0.0;
   VORN_MUTABLE( 0x104, Vorn::String, text, Text, local );
   VORN_COUNTER_DEC( 0x105, U8, count, Count, replicated ) = 0;
   VORN_CHILD( 0x106, Leaf, child, Child, replicated );
   VORN_ENTITY_COLL( 0x107, Leaf, Vorn::Name, leaf, Leaf, replicated );
   VORN_ENTITY_COLL( 0x108, Member, U32, member, Member, replicated );
   VORN_VALUE_COLL( 0x109, U64, U32, score, Score, replicated );
   VORN_COUNTER_COLL( 0x10a, U32, U32, tally, Tally, local );
   VORN_SET( 0x10b, Vorn::Name, tag, Tag, replicated );
   VORN_REFERENCE( 0x10c, Leaf, pal, Pal, local );
   VORN_REFERENCE_COLL( 0x10d, Leaf, U32, beside, Beside, local );
   VORN_KEYED_REFERENCE_COLL( 0x10e, Leaf, Vorn::Name, LeafName, inside, Inside, local );
   VORN_QUEUE( 0x10f, U64, event, Event, replicated );
   VORN_STATE( 0x110, U32, scratch ) = 0;
   VORN_CONSTANT( 0x111, U16, limit, 99 );
   VORN_DERIVED_CONSTANT( 0x112, Vorn::String, motto );
   VORN_DERIVED( 0x113, U32, doubled );
   VORN_FUNCTION( 0x114, sum );
   U32 sum( U32 a, U32 b );

   VORN_OBSERVERS;
};
VORN_FACTORY( Everything, everythingFactory )

/// A type with a base of its own: its ids begin further up.
class Derived : public Everything {
   VORN_ENTITY( Derived, Everything )

 public:
   explicit Derived( Vorn::Name const & name ) : Everything( name ) {}

   VORN_MUTABLE( 0x182, U32, extra, Extra, replicated ) = 3;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( Derived, derivedFactory )

} // namespace Test
