#pragma once

// How the attribute log lays a value down, for readers of it in other languages; docs/attribute-log.md has
// the forms.

#include "text/JsonWriter.h"

#include "Vorn/VornType.h"

namespace LdpTool {

/// Writes the form of a type's values: the name of one that the page describes, or an array of the name and
/// type of each field; null for a type that the log cannot carry.
void writeWireForm( JsonWriter & json, Vorn::VornType const & type );

} // namespace LdpTool
