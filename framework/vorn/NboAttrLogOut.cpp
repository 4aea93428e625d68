#include "Vorn/NboAttrLogOut.h"

#include "NboAttrLogAnchors.h"
#include "NboAttrLogReferences.h"

namespace Vorn::NboAttrLog {

VORN_OBJECT_RECORD( Vorn::NboAttrLog, Out, nullptr )

namespace {

U64 addressOf( void const * object ) noexcept { return reinterpret_cast< std::uintptr_t >( object ); }

} // namespace

Permits::~Permits() = default;

bool Permits::writable( Entity & ) { return false; }

bool Permits::writeFromReadOnlyRemote( Entity &, U32 ) { return false; }

Out::Out( U32 capacity ) : buffer_( std::max( capacity, minCapacity ) ) {
   head_ = at_ = buffer_.data();
   limit_ = head_ + buffer_.size();
   put( streamMagic, sizeof streamMagic );
   putU16( streamVersion );
   putU16( 0 );
}

Out::~Out() {
   closing_ = true;
   for ( auto & node : adapters_ ) {
      node.value()->close();
   }
}

std::size_t Out::bytes() {
   flow();
   return used();
}

U8 const * Out::data() { return head_; }

void Out::drained( std::size_t n ) {
   VORN_ASSERT( n <= used() );
   head_ += n;
   if ( head_ == at_ ) {
      head_ = at_ = buffer_.data();
      limit_ = head_ + buffer_.size();
      if ( !large_.empty() ) large_ = {};
      blocked_ = !failure_.empty();
   } else if ( large_.empty() && buffer_.size() - used() >= need_ ) {
      blocked_ = !failure_.empty();
   }
}

bool Out::idle() { return bytes() == 0 && !firstPending_ && withdrawn_.empty(); }

void Out::begin( RecordKind kind, U32 entityId, U32 attributeId ) {
   VORN_ASSERT( !record_ );
   record_ = at_;
   missing_ = 0;
   U8 head[sizeof( U32 ) + recordHeadBytes] = {}; // in front the length, which `end` sets
   entityId = __builtin_bswap32( entityId );
   attributeId = __builtin_bswap32( attributeId );
   head[4] = kind;
   std::memcpy( head + 5, &entityId, sizeof entityId );
   std::memcpy( head + 9, &attributeId, sizeof attributeId );
   head[13] = beginToken;
   put( head, sizeof head );
}

bool Out::end() {
   putU8( endToken );
   U8 * const start = std::exchange( record_, nullptr );
   std::size_t const size = std::size_t( at_ - start ) + missing_;
   if ( missing_ ) {
      at_ = start;
      need_ = size;
      return false;
   }
   U32 const length = __builtin_bswap32( U32( size - sizeof( U32 ) ) );
   std::memcpy( start, &length, sizeof length );
   // A long record takes a block of its own, and nothing may follow it there.
   if ( !large_.empty() ) blocked_ = true;
   return true;
}

std::size_t Out::partBegin() {
   std::size_t const start = std::size_t( at_ - record_ );
   putU16( 2 * sizeof( U16 ) );
   putU16( 0 );
   return start;
}

void Out::partEnd( std::size_t start ) {
   std::size_t const bytes = std::size_t( at_ - record_ ) - start;
   if ( bytes > 0xffff ) {
      missing_ += bytes; // more than the offsets can say
   } else if ( !missing_ ) {
      U16 const end = __builtin_bswap16( U16( bytes ) );
      std::memcpy( record_ + start + sizeof( U16 ), &end, sizeof end );
   }
}

/// Finds room for the `need_` octets of a record that did not fit; false if that has to wait.
bool Out::roomIs() {
   std::size_t const ready = used();
   if ( need_ - sizeof( U32 ) > maxRecordBytes ) {
      failure_ = format( "a record of %zu octets cannot be written to the attribute log", need_ );
   } else if ( head_ != buffer_.data() && ready + need_ <= buffer_.size() ) {
      std::memmove( buffer_.data(), head_, ready );
      head_ = buffer_.data();
      at_ = head_ + ready;
      return true;
   } else if ( !ready ) {
      large_.resize( need_ );
      head_ = at_ = large_.data();
      limit_ = head_ + large_.size();
      return true;
   }
   blocked_ = true;
   return false;
}

void Out::flow() {
   if ( active_ ) return;
   ClearIsActiveAnchor const anchor( active_ );
   if ( !sendWithdrawals() ) return;
   while ( firstPending_ && !blocked_ ) {
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
   auto const * const node = adapters_[addressOf( &entity )];
   return node ? node->value().ptr() : nullptr;
}

Out::Adapter * Out::adapterById( U32 id ) const noexcept {
   auto const * const node = byId_[id];
   return node ? node->value() : nullptr;
}

Ptr< Out::Adapter > Out::newAdapter( Entity & entity, Vorn_BitSet flags, unsigned level, Adapter * parent ) {
   auto const adapter = newObject< Adapter >( entity, *this, flags, level, parent );
   adapters_.valueIs( addressOf( &entity ), adapter );
   return adapter;
}

void Out::adapterDel( Adapter & adapter ) {
   if ( closing_ ) return; // all go together
   if ( references_ ) references_->adapterDel( adapter );
   if ( adapter.ownId_ ) byId_.del( adapter.ownId_ );
   if ( adapter.peerId_ ) byId_.del( adapter.peerId_ );
   adapters_.del( addressOf( &adapter.entity() ) );
}

void Out::entityIdIs( Adapter & adapter, U32 id ) {
   U32 & number = id & numberedByPeer ? adapter.peerId_ : adapter.ownId_;
   if ( number == id ) return;
   if ( number ) byId_.del( number );
   number = id;
   adapter.flags_.bitsIs( StreamAdapter::hasEntityId, true );
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
