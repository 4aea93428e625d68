/// \file
/// The resynchronisations that run: of which collections, and of a queue, which has no marks of its own, the
/// elements that have come in since.
#pragma once

#include "Vorn/HashMap2018.h"
#include "Vorn/Impl/StreamAdapter.h"

#include <map>

namespace Vorn::NboAttrLog {

class Transactions {
 public:
   using Adapter = Entity::VornNboAttrLogSa;
   using Indices = HashMap2018< Transactions, U32 >;

   /// How often one may begin before it ends. Each time walks over all members, which have cost a record
   /// each; begins alone must not. An honest writer begins anew where it has made the entity anew meanwhile.
   static constexpr U32 mostBegins = 64;

   /// One begins, or begins anew. False if it does so too often.
   bool begin( Adapter const & adapter, VornAttr const & attr ) {
      Transaction & transaction = running_[{ &adapter, attr.id() }];
      if ( attr.kind() == VornKind::queue ) transaction.seen = std::make_unique< Indices >();
      return ++transaction.begins < mostBegins;
   }
   /// An element of a queue has come in, or gone.
   void indexIs( Adapter const & adapter, U32 attributeId, U32 index, bool present ) {
      auto const at = running_.empty() ? running_.end() : running_.find( { &adapter, attributeId } );
      if ( at == running_.end() ) return;
      Indices & seen = *at->second.seen;
      present ? static_cast< void >( seen.keyIs( index ) ) : static_cast< void >( seen.del( index ) );
   }
   /// It ends. False if it did not run; `seen` has the elements of a queue that came in.
   bool end( Adapter const & adapter, U32 attributeId, std::unique_ptr< Indices > & seen ) {
      auto node = running_.extract( { &adapter, attributeId } );
      if ( node ) seen = std::move( node.mapped().seen );
      return bool( node );
   }
   /// The entity leaves the log.
   void adapterDel( Adapter const & adapter ) noexcept {
      if ( running_.empty() ) return;
      running_.erase( running_.lower_bound( { &adapter, 0 } ), running_.upper_bound( { &adapter, ~0u } ) );
   }

 private:
   struct Transaction {
      std::unique_ptr< Indices > seen; // of a queue
      U32 begins = 0;
   };

   std::map< std::pair< Adapter const *, U32 >, Transaction > running_;
};

} // namespace Vorn::NboAttrLog
