#pragma once

// Every change of a tree of entities, by reflection alone.

#include "capture/Flow.h"
#include "text/JsonWriter.h"
#include "views/Reflection.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace LdpTool {

struct TreeChange {
   std::string const & path;                 ///< of the entity, as a text
   std::vector< std::string > const & steps; ///< the same in the tree's JSON
   Vorn::Entity const & entity;
   Vorn::VornAttr const & attr;
   void const * key; ///< of what has changed in a collection; else null
};

/// `network/speaker[10.0.0.1:0]/... attribute[key] = value`; "made" for an entity, "-" for what is no more.
std::string changeText( TreeChange const & change );
/// An object with `time`, `path` (where the change stands in the tree's JSON, step by step) and `value`; what
/// is no more is null.
void writeChange( JsonWriter & json, Arrival const & at, TreeChange const & change );

/// Tells every change of an entity and of all below it, children that come later included, for as long as it
/// lives.
class TreeWatcher {
 public:
   using OnChange = std::function< void( TreeChange const & ) >;

   TreeWatcher( Vorn::Entity & root, OnChange onChange );
   ~TreeWatcher();

 private:
   class Watch;
   struct Watches;
   std::unique_ptr< Watches > watches_;
};

} // namespace LdpTool
