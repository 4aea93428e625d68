#pragma once

// Values in Python, by their records: one set of conversions for messages and for live state. No type of the
// model is known here; addresses and prefixes are, as numbers and texts are.

#include "Source.h"

#include "Vorn/GenericIf.h"

#include <string_view>

namespace LdpPython {

/// A value of that type: int, bool, float, str, an address or network of `ipaddress`, None for an address
/// that is not set, an entity, or for a value with parts a named tuple. References lead to live objects of
/// `source`.
py::object toPython( Vorn::VornType const & type, void const * value, SourcePtr const & source );

/// The same way back, for keys: from what `toPython` gives, or from the value's text. Throws KeyError for
/// what is no such value.
void fromPython( Vorn::VornType const & type, py::handle from, Vorn::GenericIf::Value & value );

/// Throws KeyError as a dict does.
[[noreturn]] void throwKeyError( py::handle key );

/// A text is octets that a peer may have chosen: each reads as the code point of its value, as in JSON.
py::object textOf( std::string_view octets );

/// The name of an enumerator; the number where it has none.
py::object enumeratorOf( Vorn::VornType const & type, U32 number );

/// What the values of a type are in Python, for the stubs: "int", "IPv4Address | IPv6Address | None", "str".
/// The name of the type itself for named tuples, enumerations and entities.
std::string pythonForm( Vorn::VornType const & type );

/// Whether values of the type are named tuples.
bool isTuple( Vorn::VornType const & type );

/// The name of a type without its namespace.
char const * shortName( Vorn::VornType const & type );

} // namespace LdpPython
