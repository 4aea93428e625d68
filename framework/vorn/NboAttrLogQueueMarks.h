/// \file
/// The elements of queues that have come in since the resynchronisation of each began: a queue has no marks
/// of its own.
#pragma once

#include "Vorn/HashMap2018.h"
#include "Vorn/Impl/StreamAdapter.h"

#include <map>

namespace Vorn::NboAttrLog {

class QueueMarks {
 public:
   using Adapter = Entity::VornNboAttrLogSa;
   using Indices = HashMap2018< QueueMarks, U32 >;

   /// A resynchronisation begins, also anew.
   void begin( Adapter const & adapter, U32 attributeId ) {
      seen_[{ &adapter, attributeId }] = std::make_unique< Indices >();
   }
   /// An element has come in, or gone.
   void indexIs( Adapter const & adapter, U32 attributeId, U32 index, bool present ) {
      auto const at = seen_.empty() ? seen_.end() : seen_.find( { &adapter, attributeId } );
      if ( at == seen_.end() ) return;
      present ? static_cast< void >( at->second->keyIs( index ) )
              : static_cast< void >( at->second->del( index ) );
   }
   /// It ends. The elements that came in; null if none had begun.
   std::unique_ptr< Indices > end( Adapter const & adapter, U32 attributeId ) {
      auto node = seen_.extract( { &adapter, attributeId } );
      return node ? std::move( node.mapped() ) : nullptr;
   }
   /// The entity leaves the log.
   void adapterDel( Adapter const & adapter ) noexcept {
      if ( seen_.empty() ) return;
      seen_.erase( seen_.lower_bound( { &adapter, 0 } ), seen_.upper_bound( { &adapter, ~0u } ) );
   }

 private:
   std::map< std::pair< Adapter const *, U32 >, std::unique_ptr< Indices > > seen_;
};

} // namespace Vorn::NboAttrLog
