// An outgoing stream: who sends next, roots, withdrawals, what a copy may write back.
#include "Vorn/Impl/NboAttrLogOut.h"

#include "NboAttrLogAnchors.h"
#include "NboAttrLogState.h"

namespace Vorn::NboAttrLog {

VORN_UNLISTED_RECORD( Vorn::NboAttrLog, Out, nullptr )

Permits::~Permits() = default;

bool Permits::writable( Entity & ) { return false; }

bool Permits::writeFromReadOnlyRemote( Entity &, U32 ) { return false; }

Out::Out( U32 capacity ) : Connection::Out( capacity ), state_( std::make_unique< OutState >() ) {
   put( streamMagic, sizeof streamMagic );
   putU16( streamVersion );
   putU16( 0 );
}

Out::~Out() {
   state_->closing = true;
   while ( auto * const root = state_->roots.first() ) {
      root->close();
   }
}

U32 Out::adapters() const noexcept { return state_->adapters; }

std::size_t Out::bytes() {
   flow();
   return used();
}

bool Out::idle() {
   return bytes() == 0 && !state_->pending.first() && !state_->awaiting.first() && state_->withdrawn.empty();
}

void Out::flow() {
   if ( state_->active ) return;
   Ptr< Out > const hold( this );
   ClearIsActiveAnchor const anchor( state_->active );
   if ( state_->forgotten ) queueForgotten();
   if ( !sendWithdrawals() ) return;
   while ( hasSufficientBuffer() ) {
      if ( auto * const next = state_->pending.first() ) {
         next->adapter->flow();
         continue;
      }
      // All else has been sent: what is still not there will not come.
      state_->settling = state_->awaiting.first();
      if ( !state_->settling ) return;
      while ( auto * const next = state_->awaiting.first() ) {
         next->adapter->queueIs( StreamAdapter::pendingQueued );
      }
   }
}

/// Queues all that wait, whom memory was lacking for.
void Out::queueForgotten() {
   state_->forgotten = false;
   for ( Adapter * adapter = state_->roots.first(); adapter; adapter = adapter->following() ) {
      adapter->reschedule();
   }
   if ( state_->forgotten ) throw std::bad_alloc();
}

/// Says which roots have gone. False if there is no room for all.
bool Out::sendWithdrawals() {
   auto & withdrawn = state_->withdrawn;
   while ( !withdrawn.empty() ) {
      if ( !record( attributeRecord, withdrawn.back(), 0 - orphanId, [] {} ) ) return false;
      withdrawn.pop_back();
   }
   return true;
}

bool Out::rootDel( Entity & entity ) {
   Ptr< Adapter > const root( adapter( entity ) );
   if ( !root || root->parent() ) return false;
   root->close();
   return true;
}

Out::Adapter * Out::adapter( Entity const & entity ) const noexcept {
   // Among the entity's observers, which are few, so that no table has to be kept.
   return static_cast< Adapter * >( entity.notifieeList()->find( [&]( NotifieeConst const & notifiee ) {
      return notifiee.isStreamAdapter() && static_cast< Adapter const & >( notifiee ).nboAttrLogOut() == this;
   } ) );
}

// What the two directions share.

U32 OutState::typeNumber( Out & out, VornType const & type ) {
   if ( &type == lastType ) return lastTypeNumber;
   U64 const address = reinterpret_cast< std::uintptr_t >( &type );
   if ( auto const * node = typeNumbers[address] ) {
      lastType = &type;
      return lastTypeNumber = node->value();
   }
   // The place is taken first, so that a number that has been announced is never forgotten.
   U32 const number = typeNumbers.members() + 1;
   typeNumbers.valueIs( address, number );
   bool sent = false;
   try {
      sent = out.record( typeRecord, 0, number, [&] { out.put( type.name, std::strlen( type.name ) ); } );
   } catch ( ... ) {
      typeNumbers.del( address );
      throw;
   }
   if ( !sent ) typeNumbers.del( address );
   return sent ? number : 0;
}

void OutState::entityIdIs( Adapter & adapter, U32 id ) {
   bool const byPeer = id & numberedByPeer;
   U32 const old = adapter.entityId( byPeer );
   if ( old == id ) return;
   numbers.adapterIs( id, adapter );
   if ( old ) numbers.del( old );
   adapter.entityIdIs( id, byPeer );
   references.targetIs( adapter.entity() );
}

void OutState::entityIdDel( Adapter & adapter, bool byPeer ) noexcept {
   U32 const id = adapter.entityId( byPeer );
   if ( !id ) return;
   numbers.del( id );
   adapter.entityIdIs( 0, byPeer );
}

Ptr< OutState::Adapter > OutState::newAdapter( Out & out, Entity & entity, Vorn_BitSet flags, unsigned level,
                                               Adapter * parent ) {
   auto const adapter = newObject< Adapter >( entity, out, flags, level, parent );
   adapter->referenceInc(); // until it leaves the log
   ++adapters;
   return adapter;
}

void OutState::adapterDel( Adapter & adapter ) {
   if ( !closing ) { // else all go together
      references.adapterDel( adapter );
      transactions.adapterDel( adapter );
      entityIdDel( adapter, false );
      entityIdDel( adapter, true );
   }
   --adapters;
   adapter.referenceDec();
}

// Values.

void logOut( Out & out, bool value ) { out.putU8( value ); }
void logOut( Out & out, U8 value ) { out.putU8( value ); }
void logOut( Out & out, U16 value ) { out.putU16( value ); }
void logOut( Out & out, U32 value ) { out.putU32( value ); }
void logOut( Out & out, U64 value ) { out.putU64( value ); }
void logOut( Out & out, double value ) {
   U64 bits;
   std::memcpy( &bits, &value, sizeof bits );
   out.putU64( bits );
}
void logOut( Out & out, String const & value ) {
   out.putU32( value.bytes() );
   out.put( value.charPtr(), value.bytes() );
}

} // namespace Vorn::NboAttrLog
