/// \file
/// Originals for the tests of the attribute log: a tree with something of every kind, and a collection of
/// adjacencies on a connection.
#pragma once

#include "framework/LogPair.h"
#include "support/LogKinds.h"

#include "Ldp/LdpAdj.h"

namespace Test {

Ldp::LdpAdjId adjId( U32 number );
Ptr< Tree > grownTree();

/// An adjacency collection with one member, known to the copy.
struct Adjacencies : LogPair {
   explicit Adjacencies( U32 capacity = Out::defaultCapacity ) : LogPair( capacity ) {
      coll->vornNboAttrLogSaIs( 0, 0, source.out );
      flush();
   }
   Ldp::LdpAdjStatusColl & copied() { return static_cast< Ldp::LdpAdjStatusColl & >( *root() ); }
   /// Fills the buffer until a change finds no room.
   void starve() {
      while ( source.out->hasSufficientBuffer() ) {
         member->peerHoldTimeIs( U16( member->peerHoldTime() + 1 ) );
      }
   }

   Ptr< Ldp::LdpAdjStatusColl > coll = Ldp::ldpAdjStatusCollFactory( Vorn::Name( "default" ) );
   Ptr< Ldp::LdpAdjStatus > member = coll->adjStatusIs( adjId( 1 ) );
};

} // namespace Test
