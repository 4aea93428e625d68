// What an adapter still has to send: marks on attributes and keys.
#include "Vorn/Impl/NboAttrLogFlow.h"

#include <algorithm>

namespace Vorn::NboAttrLog {

FlowOut::FlowOut( VornType const & type ) {
   std::size_t behind = 0;
   for ( U32 i = type.attributeNum; i && !bit( type.attributes[i - 1].id() ); --i ) {
      behind += type.attributes[i - 1].logged();
   }
   if ( behind ) waitingIs().marks.reserve( behind );
}

FlowOut::~FlowOut() = default;

FlowOut::Waiting & FlowOut::waitingIs() {
   if ( !waiting_ ) waiting_ = std::make_unique< Waiting >();
   return *waiting_;
}

void FlowOut::waitingDel() noexcept {
   if ( !waiting_ || waiting_->adapter || waiting_->attrId || walking() || bookmark() || waitingAny() )
      return;
   // Keys that went out leave their sets behind, for when nothing waits at all.
   if ( waiting_->marks.capacity() ) {
      waiting_->keys.clear();
   } else {
      waiting_ = nullptr;
   }
}

bool FlowOut::waitingAny() const noexcept { return !waiting_->marks.empty() || hasDirtyCollKeys(); }

bool FlowOut::markedBehind( U32 attributeId ) const noexcept {
   if ( !waiting_ ) return false;
   auto const & marks = waiting_->marks;
   return std::find( marks.begin(), marks.end(), attributeId ) != marks.end();
}

void FlowOut::markBehindIs( U32 attributeId, bool mark ) {
   if ( mark == markedBehind( attributeId ) ) return;
   if ( mark ) {
      waitingIs().marks.push_back( attributeId );
   } else {
      std::erase( waiting_->marks, attributeId );
   }
}

bool FlowOut::hasDirtyAttributes() const noexcept {
   return marks_ || ( waiting_ && !waiting_->marks.empty() );
}

KeySet * FlowOut::vornIsXDirty( U32 attributeId ) const noexcept {
   if ( !waiting_ ) return nullptr;
   auto const & keys = waiting_->keys;
   auto const found = std::find_if( keys.begin(), keys.end(),
                                    [&]( auto const & entry ) { return entry.first == attributeId; } );
   return found != keys.end() && found->second->members() ? found->second.get() : nullptr;
}

void FlowOut::vornIsXDirtyIs( void * object, VornAttr const & x, void const * key ) {
   auto & keys = waitingIs().keys;
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
   if ( waiting_ )
      std::erase_if( waiting_->keys, [&]( auto const & entry ) { return entry.first == attributeId; } );
}

bool FlowOut::hasDirtyCollKeys() const noexcept {
   return waiting_ && std::any_of( waiting_->keys.begin(), waiting_->keys.end(),
                                   []( auto const & entry ) { return entry.second->members() != 0; } );
}

void FlowOut::attrIdIs( U32 attributeId ) {
   if ( attributeId ) {
      waitingIs().attrId = attributeId;
   } else if ( waiting_ ) {
      waiting_->attrId = 0;
      waitingDel(); // the end of a pass
   }
}

void FlowOut::bookmarkIs( void * key ) {
   FlowOut * const rsc = this;
   VORN_ASSERT( !rsc->bookmark() );
   waitingIs().bookmark = key;
}

} // namespace Vorn::NboAttrLog
