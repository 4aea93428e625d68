#pragma once

// Entities as a tree, by reflection alone: nothing here knows a type of the model.

#include "Vorn/GenericIf.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <memory>
#include <string>

namespace LdpTool {

/// Which attributes stand in a tree.
enum class TreeContent {
   stored, ///< everything that is stored: what a user wants to see
   logged, ///< what the attribute log carries: what two copies must agree on
};

/// The entity and all below it, an attribute a line, members in order of their keys' texts.
std::string treeText( Vorn::Entity const & entity, TreeContent content );

/// The same as JSON: attributes by name; collections as objects by the keys' texts, sets as lists.
nlohmann::ordered_json treeJson( Vorn::Entity const & entity, TreeContent content );

/// A change of an attribute, in words.
struct TreeChange {
   std::string const & path; ///< of the entity, from the root
   std::string attribute;    ///< its name, with the key where there is one
   std::string value;        ///< what it is now; "-" for a member or child that went
};

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
