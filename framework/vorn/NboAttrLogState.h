/// \file
/// What the adapters of a log and its two directions share: which entities it carries, which of them have
/// something to write, and what is being applied.
#pragma once

#include "NboAttrLogNumbers.h"
#include "NboAttrLogReferences.h"
#include "NboAttrLogTransactions.h"
#include "Vorn/HashMap2018.h"

namespace Vorn::NboAttrLog {

/// What came of an attempt to write.
enum class Sent : U8 {
   yes,
   noRoom,
   awaits ///< a reference to an entity that the log does not carry, but may yet before all else has been sent
};

struct OutState {
   using Adapter = Entity::VornNboAttrLogSa;

   /// The number of a type on the log, which is announced first; 0 if there is no room for that.
   U32 typeNumber( Out & out, VornType const & type );
   /// The adapter of a number, as this end counts, or null.
   Adapter * adapterById( U32 id ) const noexcept { return numbers.adapter( id ); }
   /// Gives an adapter a number, in the place of one that the same end gave before.
   void entityIdIs( Adapter & adapter, U32 id );
   /// Takes back the number that one end gave.
   void entityIdDel( Adapter & adapter, bool byPeer ) noexcept;
   Ptr< Adapter > newAdapter( Out & out, Entity & entity, Vorn_BitSet flags, unsigned level,
                              Adapter * parent );
   /// An adapter has left: nothing here leads to it any more.
   void adapterDel( Adapter & adapter );

   U32 adapters = 0;
   Numbers numbers;
   HashMap2018< OutState, U64, U32 > typeNumbers; // by the record's address
   Adapter::Family roots; // adapters without a parent; with all below them they are held
   LinkedList< FlowOut::Waiting, Queued > pending;
   LinkedList< FlowOut::Waiting, Queued > awaiting;
   bool forgotten = false;       // somebody waits who stands in neither: memory ran out
   U32 lastEntityId = 0;         // that this end gave
   std::vector< U32 > withdrawn; // roots that have gone, and that the other end has still
   References references;
   Transactions transactions; // of the incoming side
   FlowIn * flowIn = nullptr; // what is being applied, innermost first
   bool active = false;       // something flows out, or records come in: nothing flows out by itself
   bool settling = false;     // all has been sent but what awaited entities, which goes out as it is
   bool closing = false;
};

} // namespace Vorn::NboAttrLog

namespace Vorn {

inline bool Entity::VornNboAttrLogSa::handlingFlowInFor( VornAttr const & attr, void const * key ) {
   return out_->state().flowIn && flowInReported( attr, key );
}

} // namespace Vorn
