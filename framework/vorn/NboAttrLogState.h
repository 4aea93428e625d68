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
   VornType const * lastType = nullptr;           // the one that was asked for last, most often again
   U32 lastTypeNumber = 0;
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

/// What is being applied to an entity: a change that the observer reports of it came from the other end and
/// does not go back.
class FlowIn {
 public:
   using Adapter = Entity::VornNboAttrLogSa;

   /// A change of one attribute, at a key for a collection.
   FlowIn( OutState & state, Adapter const & adapter, VornAttr const & attr, void const * key ) noexcept
        : state_( state ), adapter_( adapter ), attr_( attr ), key_( key ),
          outer_( std::exchange( state_.flowIn, this ) ) {}
   ~FlowIn() { state_.flowIn = outer_; }
   FlowIn( FlowIn const & ) = delete;
   FlowIn & operator=( FlowIn const & ) = delete;

   /// Whether it is about that attribute of that entity, and that key if one is given, or about an argument
   /// of the member that is asked for.
   bool holds( Adapter const & adapter, VornAttr const & attr, void const * key ) const {
      if ( &adapter != &adapter_ ) return asks_ && attr.isCtorArg() && asksFor( adapter.entity() );
      return &attr == &attr_ && ( !key_ || !key || attr.keyType->methods->equal( key, key_ ) );
   }
   /// A member is asked for with its arguments.
   void asks() noexcept { asks_ = true; }
   void reported() noexcept { ++reported_; }
   FlowIn * outer() const noexcept { return outer_; }
   /// One more change than the one that the record asks for is made to apply it.
   void furtherChange() noexcept { ++made_; }
   /// Whether more happened than was applied: an observer wrote the attribute again.
   bool writtenAgain() const noexcept { return reported_ > made_; }

 private:
   bool asksFor( Entity const & entity ) const;

   OutState & state_;
   Adapter const & adapter_;
   VornAttr const & attr_;
   void const * key_;
   FlowIn * outer_;
   bool asks_ = false;
   unsigned made_ = 1;
   unsigned reported_ = 0;
};

} // namespace Vorn::NboAttrLog

namespace Vorn {

inline NboAttrLog::FlowIn * Entity::VornNboAttrLogSa::flowInFor( VornAttr const & attr,
                                                                 void const * key ) const noexcept {
   NboAttrLog::FlowIn * flowIn = out_->state().flowIn;
   while ( flowIn && !flowIn->holds( *this, attr, key ) ) {
      flowIn = flowIn->outer();
   }
   return flowIn;
}

inline bool Entity::VornNboAttrLogSa::handlingFlowInFor( VornAttr const & attr, void const * key ) const {
   NboAttrLog::FlowIn * const flowIn = flowInFor( attr, key );
   if ( flowIn ) flowIn->reported();
   return flowIn;
}

} // namespace Vorn
