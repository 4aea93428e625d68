/// \file
/// Test types whose every attribute is logged, in three storeys, for the tests of the attribute log.
#pragma once

#include "Vorn/Attributes.h"

namespace Test {

/// At the bottom: members with a further argument, and with one that can be changed.
class Twig : public Vorn::Entity {
   VORN_ENTITY( Twig, Vorn::Entity )
   VORN_CTOR_TYPES( U32, Vorn::String, U16 )

 public:
   Twig( U32 id, Vorn::String const & wood, U16 load ) : id_( id ), wood_( wood ), load_( load ) {}

   VORN_KEY( 0x102, U32, id );
   VORN_CTOR_ARG( 0x103, Vorn::String, wood );
   VORN_MUTABLE_CTOR_ARG( 0x104, U16, load, Load, replicated );
   VORN_MUTABLE( 0x105, Vorn::String, label, Label, replicated );
   VORN_REFERENCE( 0x106, Twig, pal, Pal, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( Twig, twigFactory )

struct TwigId {
   U32 operator()( Vorn::Ptr< Twig > const & twig ) const { return twig->id(); }
};

/// In the middle, by name: collections of every kind.
class Branch : public Vorn::Entity {
   VORN_ENTITY( Branch, Vorn::Entity )

 public:
   explicit Branch( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   VORN_COUNTER( 0x102, U64, number, Number, replicated ) = 0;
   VORN_ENTITY_COLL( 0x103, Twig, U32, twig, Twig, replicated );
   VORN_VALUE_COLL( 0x104, double, Vorn::String, score, Score, replicated );
   VORN_SET( 0x105, U64, mark, Mark, replicated );
   VORN_VALUE_COLL( 0x106, bool, U32, flag, Flag, replicated );
   VORN_QUEUE( 0x107, Vorn::String, event, Event, replicated );
   VORN_REFERENCE_COLL( 0x108, Twig, Vorn::String, beside, Beside, replicated );
   VORN_KEYED_REFERENCE_COLL( 0x109, Twig, U32, TwigId, inside, Inside, replicated );
   VORN_MUTABLE( 0x10a, U32, secret, Secret, local ) = 0;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( Branch, branchFactory )

/// At the top.
class Tree : public Vorn::Entity {
   VORN_ENTITY( Tree, Vorn::Entity )

 public:
   explicit Tree( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   VORN_MUTABLE( 0x102, double, height, Height, replicated ) = 0.0;
   VORN_MUTABLE( 0x103, Vorn::String, kind, Kind, replicated );
   VORN_MUTABLE( 0x104, bool, alive, Alive, replicated ) = true;
   VORN_MUTABLE( 0x105, U8, age, Age, replicated ) = 0;
   VORN_CHILD( 0x106, Branch, crown, Crown, replicated );
   VORN_CHILD( 0x107, Twig, top, Top, replicated );
   VORN_ENTITY_COLL( 0x108, Branch, Vorn::Name, branch, Branch, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( Tree, treeFactory )

} // namespace Test
