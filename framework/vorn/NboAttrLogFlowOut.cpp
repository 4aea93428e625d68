// What an adapter still has to send: marks on attributes and keys.
#include "Vorn/Impl/NboAttrLogFlow.h"

#include <algorithm>

namespace Vorn::NboAttrLog {

FlowOut::FlowOut( VornType const & type ) noexcept : type_( &type ) {}

FlowOut::~FlowOut() = default;

FlowOut::Rest & FlowOut::rest() {
   if ( !rest_ ) rest_ = std::make_unique< Rest >();
   return *rest_;
}

bool FlowOut::restAny() const noexcept {
   return !rest_->dirty.empty() || !rest_->unsynced.empty() || hasDirtyCollKeys();
}

bool FlowOut::vornIsDirty( U32 attributeId ) const noexcept {
   if ( U32 const one = bit( attributeId ) ) return dirty_ & one;
   return rest_ && rest_->dirty.contains( attributeId );
}

void FlowOut::vornIsDirtyIs( U32 attributeId, bool dirty ) {
   if ( U32 const one = bit( attributeId ) ) {
      dirty_ = dirty ? dirty_ | one : dirty_ & ~one;
   } else if ( dirty ) {
      rest().dirty.insert( attributeId );
   } else if ( rest_ ) {
      rest_->dirty.erase( attributeId );
   }
}

bool FlowOut::vornHasSynced( U32 attributeId ) const noexcept {
   if ( U32 const one = bit( attributeId ) ) return !( unsynced_ & one );
   return !rest_ || !rest_->unsynced.contains( attributeId );
}

void FlowOut::vornHasSyncedIs( U32 attributeId, bool synced ) {
   if ( U32 const one = bit( attributeId ) ) {
      unsynced_ = synced ? unsynced_ & ~one : unsynced_ | one;
   } else if ( !synced ) {
      rest().unsynced.insert( attributeId );
   } else if ( rest_ ) {
      rest_->unsynced.erase( attributeId );
   }
}

bool FlowOut::hasDirtyAttributes() const noexcept {
   return dirty_ | unsynced_ || ( rest_ && ( !rest_->dirty.empty() || !rest_->unsynced.empty() ) );
}

KeySet * FlowOut::vornIsXDirty( U32 attributeId ) const noexcept {
   if ( !rest_ ) return nullptr;
   auto const & keys = rest_->keys;
   auto const found = std::find_if( keys.begin(), keys.end(),
                                    [&]( auto const & entry ) { return entry.first == attributeId; } );
   return found != keys.end() && found->second->members() ? found->second.get() : nullptr;
}

void FlowOut::vornIsXDirtyIs( void * object, VornAttr const & x, void const * key ) {
   auto & keys = rest().keys;
   auto at =
        std::find_if( keys.begin(), keys.end(), [&]( auto const & entry ) { return entry.first == x.id(); } );
   if ( at == keys.end() ) {
      std::unique_ptr< KeySet > made;
      x.ops->op( &made, object, x, GenericIf::newKeySet, nullptr, nullptr );
      keys.emplace_back( x.id(), std::move( made ) );
      at = keys.end() - 1;
   }
   at->second->keyIs( key );
}

void FlowOut::vornIsXDirtyDel( U32 attributeId, void const * key ) {
   if ( KeySet * const keys = vornIsXDirty( attributeId ) ) keys->keyDel( key );
}

void FlowOut::vornIsXDirtyDelAll( U32 attributeId ) noexcept {
   if ( rest_ )
      std::erase_if( rest_->keys, [&]( auto const & entry ) { return entry.first == attributeId; } );
}

bool FlowOut::hasDirtyCollKeys() const noexcept {
   return rest_ && std::any_of( rest_->keys.begin(), rest_->keys.end(),
                                []( auto const & entry ) { return entry.second->members() != 0; } );
}

void FlowOut::attrIdIs( U32 attributeId ) {
   if ( attributeId ) {
      rest().attrId = attributeId;
   } else if ( rest_ ) {
      rest_->attrId = 0;
      // The end of a pass. Keys that went out leave their sets behind, for when nothing waits at all.
      if ( !walking() && !restAny() ) rest_ = nullptr;
   }
}

void FlowOut::bookmarkIs( void * key ) {
   FlowOut * const rsc = this;
   VORN_ASSERT( !rsc->bookmark() );
   rest().bookmark = key;
}

} // namespace Vorn::NboAttrLog
