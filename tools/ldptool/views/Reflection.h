#pragma once

// What all forms of a tree read by reflection: nothing here knows a type of the model.

#include "Vorn/Entity.h"
#include "Vorn/GenericIf.h"

#include <map>
#include <string>

namespace LdpTool {

/// Which attributes stand in a tree.
enum class TreeContent {
   stored, ///< everything that is stored: what a user wants to see
   logged, ///< what the attribute log carries: what two copies must agree on
};
bool belongs( Vorn::VornAttr const & attr, TreeContent content );

/// Whether values of the type are references to entities.
bool isReference( Vorn::VornType const & type );
/// What a reference leads to, if that is an entity; else null.
Vorn::Entity const * referenced( void const * value );

/// A member of a collection or queue.
struct Member {
   Member( Vorn::VornAttr const & attr, void const * at ) : key( attr.keyType, at ), value( attr.type ) {}

   Vorn::GenericIf::Value key;
   Vorn::GenericIf::Value value;
   Vorn::Ptr< Vorn::Entity > entity; ///< of a collection that owns entities
};
/// Numbers by their value, everything else as texts go.
struct KeyOrder {
   bool operator()( std::string const & a, std::string const & b ) const;
};
/// By the keys' texts.
using Members = std::map< std::string, Member, KeyOrder >;
/// The members in an order that two equal trees share, whatever their hashes.
Members membersOf( Vorn::Entity const & entity, Vorn::VornAttr const & attr );
/// The owned child, or the member at the key; null where there is none.
Vorn::Ptr< Vorn::Entity > childOf( Vorn::Entity const & entity, Vorn::VornAttr const & attr,
                                   void const * key = nullptr );
/// Whether the collection has the key; true without one.
bool has( Vorn::Entity const & entity, Vorn::VornAttr const & attr, void const * key );
/// The attribute, or its member at the key.
void read( Vorn::Entity const & entity, Vorn::VornAttr const & attr, void const * key,
           Vorn::GenericIf::Value & value );

} // namespace LdpTool
