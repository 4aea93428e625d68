/// \file
/// The references that a log has written, or would: each goes out again when the entity that it leads to
/// comes to the log or leaves it. However many there are, and however many lead to one entity, each step
/// costs the same.
#pragma once

#include "Vorn/Impl/StreamAdapter.h"

#include <unordered_map>

namespace Vorn::NboAttrLog {

class References {
 public:
   using Adapter = Entity::VornNboAttrLogSa;

   /// The reference of an attribute, at a key for a collection, leads to `target`; null: nowhere any more.
   void referenceIs( Adapter & adapter, VornAttr const & attr, void const * key, Entity const * target );
   /// An entity came to the log, or left it.
   void targetIs( Entity const & target );
   /// An adapter leaves the log, with the references that its entity holds, and as a target.
   void adapterDel( Adapter & adapter );

 private:
   struct ByTarget;
   struct ByAdapter;
   struct PlaceId {
      Adapter * adapter;
      VornAttr const * attr;
      GenericIf::Value key; // a null U32 for an attribute without a key
      friend bool operator==( PlaceId const & a, PlaceId const & b ) {
         return a.adapter == b.adapter && a.attr == b.attr && a.key == b.key;
      }
   };
   struct PlaceHash {
      std::size_t operator()( PlaceId const & id ) const;
   };
   struct Place : ListLink< Place, ByTarget >, ListLink< Place, ByAdapter > {
      PlaceId const * id = nullptr; // its key in the table
      Entity const * target = nullptr;
   };
   using Places = std::unordered_map< PlaceId, Place, PlaceHash >;
   using TargetPlaces = LinkedList< Place, ByTarget >;
   using AdapterPlaces = LinkedList< Place, ByAdapter >;

   void placeDel( Place & place );

   Places places_;
   std::unordered_map< Entity const *, TargetPlaces > targets_;
   std::unordered_map< Adapter const *, AdapterPlaces > adapters_;
};

} // namespace Vorn::NboAttrLog
