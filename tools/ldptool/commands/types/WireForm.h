#pragma once

// How the attribute log lays a value down, for readers of it in other languages; docs/attribute-log.md has
// the forms.

#include "text/JsonWriter.h"

#include "Vorn/VornType.h"

#include <optional>

namespace LdpTool {

/// Writes the form of a type's values: the name of one that the page describes, or an array of the name and
/// type of each field; null for a type that the log cannot carry.
void writeWireForm( JsonWriter & json, Vorn::VornType const & type );
/// Where the form holds more than the type: of numbers and flag words the greatest, of texts the greatest
/// number of octets.
std::optional< U32 > limitOf( Vorn::VornType const & type );

/// Of a flag of a word, the bit that stands for it.
std::optional< U64 > maskOf( Vorn::VornType const & type, Vorn::VornAttr const & flag );

} // namespace LdpTool
