#include "Vorn/NboAttrLogOut.h"

#include "NboAttrLogAnchors.h"
#include "NboAttrLogReferences.h"

#include <typeinfo>

namespace Vorn::NboAttrLog {

VORN_OBJECT_RECORD( Vorn::NboAttrLog, Out, nullptr )

namespace {

U64 addressOf( void const * object ) noexcept { return reinterpret_cast< std::uintptr_t >( object ); }

} // namespace

Permits::~Permits() = default;

bool Permits::writable( Entity & ) { return false; }

bool Permits::writeFromReadOnlyRemote( Entity &, U32 ) { return false; }

Out::Out( U32 capacity ) : Connection::Out( capacity ) {
   put( streamMagic, sizeof streamMagic );
   putU16( streamVersion );
   putU16( 0 );
}

Out::~Out() {
   closing_ = true;
   while ( firstRoot_ ) {
      firstRoot_->close();
   }
}

std::size_t Out::bytes() {
   flow();
   return used();
}

bool Out::idle() { return bytes() == 0 && !firstPending_ && withdrawn_.empty(); }

void Out::flow() {
   if ( active_ ) return;
   ClearIsActiveAnchor const anchor( active_ );
   if ( !sendWithdrawals() ) return;
   while ( firstPending_ && hasSufficientBuffer() ) {
      Adapter & adapter = *firstPending_;
      if ( adapter.orphanPending_ ) {
         adapter.doSerializeOrphan();
      } else {
         // Leaves the list when nothing is left; an attribute in front may have become dirty meanwhile.
         adapter.handleAttrFlowOut( adapter.flowOut()->attrId() );
      }
   }
}

/// Says which roots have gone. False if there is no room for all.
bool Out::sendWithdrawals() {
   while ( !withdrawn_.empty() ) {
      if ( !record( attributeRecord, withdrawn_.back(), 0 - orphanId, [] {} ) ) return false;
      withdrawn_.pop_back();
   }
   return true;
}

U32 Out::typeNumber( VornType const & type ) {
   if ( auto const * node = typeNumbers_[addressOf( &type )] ) return node->value();
   U32 const number = typeNumbers_.members() + 1;
   bool const sent = record( typeRecord, 0, number, [&] { put( type.name, std::strlen( type.name ) ); } );
   if ( !sent ) return 0;
   typeNumbers_.valueIs( addressOf( &type ), number );
   return number;
}

U32 Out::newEntityId() {
   VORN_ASSERT( lastEntityId_ + 1 < numberedByPeer ); // a connection that lives so long must be made anew
   return ++lastEntityId_;
}

Out::Adapter * Out::adapter( Entity const & entity ) const noexcept {
   // Among the entity's observers, which are few, so that no table has to be kept.
   using Observer = Adapter::VornNboAttrLogSaAdapter_;
   auto const * const found =
        entity.notifieeList()->find( [&]( PtrInterface::NotifieeConst const & notifiee ) {
           return typeid( notifiee ) == typeid( Observer ) &&
                  static_cast< Observer const & >( notifiee ).adapter()->out_ == this;
        } );
   return found ? static_cast< Observer const * >( found )->adapter() : nullptr;
}

Out::Adapter * Out::adapterById( U32 id ) const noexcept {
   auto const * const node = byId_[id];
   return node ? node->value() : nullptr;
}

Ptr< Out::Adapter > Out::newAdapter( Entity & entity, Vorn_BitSet flags, unsigned level, Adapter * parent ) {
   auto const adapter = newObject< Adapter >( entity, *this, flags, level, parent );
   adapter->referenceInc(); // until it leaves the log
   ++adapters_;
   return adapter;
}

void Out::adapterDel( Adapter & adapter ) {
   if ( !closing_ ) { // else all go together
      if ( references_ ) references_->adapterDel( adapter );
      if ( adapter.ownId_ ) byId_.del( adapter.ownId_ );
      if ( adapter.peerId_ ) byId_.del( adapter.peerId_ );
   }
   --adapters_;
   adapter.referenceDec();
}

void Out::entityIdIs( Adapter & adapter, U32 id ) {
   U32 & number = id & numberedByPeer ? adapter.peerId_ : adapter.ownId_;
   if ( number == id ) return;
   if ( number ) byId_.del( number );
   number = id;
   adapter.status_.bitsIs( StreamAdapter::hasEntityId, true );
   byId_.valueIs( id, &adapter );
   if ( references_ ) references_->targetIs( adapter.entity() );
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
