#pragma once

// Entities as a tree, by reflection alone: nothing here knows a type of the model.

#include "Vorn/GenericIf.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
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

/// Tells every change of an entity and of all below it, children that come later included, for as long as it
/// lives.
class TreeWatcher {
 public:
   /// Called behind each change with the entity, the attribute, and the key and its text where there is one.
   using OnChange = std::function< void( Vorn::Entity const & entity, Vorn::VornAttr const & attr,
                                         void const * key, std::string const & keyText ) >;

   TreeWatcher( Vorn::Entity & root, OnChange onChange );
   ~TreeWatcher();

 private:
   class Watch;
   struct Watches;
   std::unique_ptr< Watches > watches_;
};

/// The attribute as text: of a collection the member at `key`, "-" where there is none.
std::string attributeText( Vorn::Entity const & entity, Vorn::VornAttr const & attr, void const * key );

} // namespace LdpTool
