// What could not be written at once, and the walk over an entity that brings it out.

#include "Vorn/NboAttrLogFlow.h"

#include "NboAttrLogAnchors.h"
#include "Vorn/NboAttrLogIn.h"

#include <algorithm>

namespace Vorn {

using Sa = Entity::VornNboAttrLogSa;

namespace {

/// The first logged attribute from there on, or null.
VornAttr const * logged( VornAttr const * attr ) noexcept {
   while ( attr->name && !attr->logged() ) {
      ++attr;
   }
   return attr->name ? attr : nullptr;
}

} // namespace

Sa::FlowOut & Sa::flowOutIs() {
   if ( !flowOut_ ) flowOutIs( NboAttrLog::Demuxer::createFlowOut( type_ ) );
   return *flowOut_;
}

void Sa::flowOutIs( std::unique_ptr< FlowOut > flowOut ) {
   flowOut_ = std::move( flowOut );
   status_.bitsIs( flowOutPresent, bool( flowOut_ ) );
   reschedule();
}

void Sa::keyDirtyIs( VornAttr const & x, void const * key ) {
   U32 const id = x.id();
   auto & flowOut = flowOutIs();
   // A walk that is still to come sends every key.
   if ( !flowOut.vornHasSynced( id ) && !flowOut.walking( id ) ) return;
   flowOut.vornIsXDirtyIs( id, GenericIf::Value( x.keyType, key ) );
   // Keys that come and go while the other end does not listen would grow without end: then all members are
   // sent anew, which says what has gone as well.
   U32 members = 0;
   x.ops->op( &members, object(), x, GenericIf::members, nullptr, nullptr );
   auto & keys = flowOut.vornIsXDirty( id );
   if ( keys.size() <= members + FlowOut::spareDirtyKeys ) return;
   keys.clear();
   if ( flowOut.walking( id ) ) freeResyncState( flowOut );
   flowOut.vornHasSyncedIs( id, false );
}

void Sa::freeResyncState( NboAttrLog::FlowOut & flowOut ) {
   VornAttr const * const x = attribute( flowOut.attrId() );
   if ( !x || !x->keyed() ) return;
   vornFlowOutBookmarkDeq( flowOut );
   flowOut.walkedAllIs( false );
}

U32 Sa::handleAttrFlowOut( U32 attributeId ) {
   NboAttrLog::HandlingScheduledFlowOutAnchor const anchor( status_, bool( flowOut_ ) );
   VornAttr const * x = logged( type_.attributes );
   if ( !flowOut_ || !x ) return 0;
   auto & flowOut = *flowOut_;
   if ( flowOut.walking() ) attributeId = flowOut.attrId();
   if ( attributeId < x->id() ) {
      if ( U32 const at = StreamAdapter::handleAttrFlowOut( attributeId ) ) return at;
      if ( !continueFlowOut() ) return x->id();
   }
   while ( x ) {
      U32 const id = x->id();
      VornAttr const * const next = logged( x + 1 );
      if ( id >= attributeId ) {
         flowOut.attrIdIs( id );
         if ( x->keyed() ) {
            if ( !vornHandleXSerializeColl( *x ) ) return id;
         } else if ( flowOut.vornIsDirty( id ) ) {
            onX( *x, nullptr );
         }
         if ( !continueFlowOut() ) {
            // A record that found no room is the first to be tried again: behind shorter ones that change all
            // the time it could wait for ever.
            if ( status_.any( noRoom ) ) return id;
            if ( next ) {
               flowOut.attrIdIs( next->id() );
               return next->id();
            }
         }
      }
      x = next;
   }
   flowOut.attrIdIs( 0 );
   if ( !flowOut.hasDirtyAttributes() && !flowOut.hasDirtyCollKeys() ) flowOutIs( nullptr );
   return 0;
}

bool Sa::continueFlowOut() const noexcept { return maySend() && out_->hasSufficientBuffer(); }

/// Sends a collection that has not been walked, then the keys that changed meanwhile. False where it stops
/// before the end.
bool Sa::vornHandleXSerializeColl( VornAttr const & x ) {
   if ( !maySend() || flowInFor( x, nullptr ) ) return false;
   auto & flowOut = *flowOut_;
   U32 const id = x.id();
   if ( !flowOut.vornHasSynced( id ) ) {
      if ( !flowOut.walkedAll() && !vornHandleXSerializeWalk( x ) ) return false;
      if ( !sendTransactionMarker( x, transactionEnd ) ) return false;
      flowOut.walkedAllIs( false );
      flowOut.vornHasSyncedIs( id, true );
   }
   if ( !flowOut.hasDirtyCollKeys() ) return true;
   auto & keys = flowOut.vornIsXDirty( id );
   while ( !keys.empty() ) {
      // The record may make other keys dirty, so the key is not left in the set while it is written.
      auto node = keys.extract( keys.begin() );
      if ( serializeKey( x, node.value().data() ) ) continue;
      keys.insert( std::move( node ) );
      return false;
   }
   return true;
}

/// Sends the members, from the first, behind a marker, or from where the walk was interrupted.
bool Sa::vornHandleXSerializeWalk( VornAttr const & x ) {
   auto & flowOut = *flowOut_;
   auto const start = vornFlowOutBookmarkDeq( flowOut );
   if ( !start && !sendTransactionMarker( x, transactionBegin ) ) return false;
   GenericIf::Value key( x.keyType );
   for ( GenericIf::Iterator it( object(), x, start ? start->data() : nullptr ); it; it.advance() ) {
      it.key( key.data() );
      bool sent;
      if ( x.kind() == VornKind::entityColl ) {
         Ptr< PtrInterface > member;
         it.object( &member );
         sent = serializeMember( x, static_cast< Entity & >( *member ) );
      } else {
         sent = serializeKey( x, key.data() );
      }
      if ( sent ) continue;
      flowOut.bookmarkIs( std::make_unique< GenericIf::Value >( key ) );
      return false;
   }
   flowOut.walkedAllIs( true );
   return true;
}

std::vector< U32 > Sa::attrIdsReqSync() const {
   std::vector< U32 > ids;
   for ( VornAttr const * attr = type_.attributes; attr->name; ++attr ) {
      if ( attr->logged() && attr->keyed() ) ids.push_back( attr->id() );
   }
   ids.push_back( 0 );
   return ids;
}

namespace NboAttrLog {

FlowOut::FlowOut( VornType const & type )
     : type_( &type ), dirty_( type.attributeNum ), unsynced_( type.attributeNum ) {}

U32 FlowOut::index( U32 attributeId ) const noexcept {
   U32 const place = 5 + attributeId - Entity::vornChildFirstId;
   if ( place < type_->attributeNum && type_->attributes[place].id() == attributeId ) return place;
   return U32( type_->attribute( attributeId ) - type_->attributes );
}

void FlowOut::bitIs( Bits & bits, U32 & count, U32 attributeId, bool set ) noexcept {
   auto bit = bits[index( attributeId )];
   if ( bit == set ) return;
   bit = set;
   set ? ++count : --count;
}

bool FlowOut::hasDirtyCollKeys() const noexcept {
   return std::any_of( keys_.begin(), keys_.end(), []( auto const & keys ) { return !keys.second.empty(); } );
}

void FlowOut::bookmarkIs( std::unique_ptr< GenericIf::Value > key ) {
   FlowOut * const rsc = this;
   VORN_ASSERT( !rsc->bookmark() );
   bookmark_ = std::move( key );
}

} // namespace NboAttrLog

} // namespace Vorn
