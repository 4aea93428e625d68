#pragma once

// An entity and all below it, as text and as JSON.

#include "text/JsonWriter.h"
#include "views/Reflection.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace LdpTool {

/// Which of the entities that the root of a tree owns are in it.
using Wanted = std::function< bool( Vorn::Entity const & ) >;
inline bool wantsAll( Vorn::Entity const & ) { return true; }

/// An attribute a line, members in the order of their keys.
std::string treeText( Vorn::Entity const & entity, TreeContent content, Wanted const & wanted = wantsAll );
/// The attribute as text: of a collection the member at `key`, "-" where there is none.
std::string attributeText( Vorn::Entity const & entity, Vorn::VornAttr const & attr, void const * key );

/// An object with a member for each attribute; `docs/json.md` says what becomes of each kind of value.
void writeTree( JsonWriter & json, Vorn::Entity const & entity, TreeContent content,
                Wanted const & wanted = wantsAll );
/// A value by its record.
void writeValue( JsonWriter & json, Vorn::VornType const & type, void const * value );
/// A key's text, or any other value's, without the quotes around it.
std::string plainText( Vorn::VornType const & type, void const * value );
/// The number that such a text is, of one that has neither fields nor names; none for any other text.
std::optional< std::uint64_t > numberIn( std::string const & text );
/// The only field of a value that is no more than it, say the identifier in a session's; else null.
Vorn::VornAttr const * onlyField( Vorn::VornType const & type );
/// Whether an attribute of a value is a member of its object: a field, or a flag.
bool isPart( Vorn::VornAttr const & attr );
/// What values of the type are in JSON.
char const * jsonForm( Vorn::VornType const & type );
/// Whether collections with such keys are arrays of objects with `key` and `value`, since the keys have no
/// short text.
bool isKeyedByStructure( Vorn::VornAttr const & attr );

} // namespace LdpTool
