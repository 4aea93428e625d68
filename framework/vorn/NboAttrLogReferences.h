/// \file
/// The references that a log has written: each goes out again when the entity that it leads to comes to the
/// log or leaves it.
#pragma once

#include "Vorn/StreamAdapter.h"

#include <unordered_map>

namespace Vorn::NboAttrLog {

class References {
 public:
   /// The reference of an attribute, at a key for a collection, was written and leads to `target`; null: it
   /// leads nowhere any more.
   void referenceIs( Out::Adapter & adapter, VornAttr const & attr, void const * key, Entity const * target );
   /// An entity came to the log, or left it.
   void targetIs( Entity const & target );
   /// An adapter leaves the log, with the references that its entity holds, and as a target.
   void adapterDel( Out::Adapter & adapter );

 private:
   struct Place {
      Out::Adapter * adapter;
      VornAttr const * attr;
      GenericIf::Value key; // a null U32 for an attribute without a key
      friend bool operator==( Place const & a, Place const & b ) {
         return a.adapter == b.adapter && a.attr == b.attr && a.key == b.key;
      }
   };
   using Targets = std::unordered_map< GenericIf::Value, Entity const *, FlowOut::KeyHash >;
   using Places = std::unordered_multimap< Entity const *, Place >;

   void placeDel( Place const & place, Entity const * target );

   std::map< std::pair< Out::Adapter *, VornAttr const * >, Targets > targets_;
   Places places_;
};

} // namespace Vorn::NboAttrLog
