#pragma once

// Live objects: a class for each type of entities, made from its record, with an attribute for each of the
// record's. An object holds its entity, so that it can be read for as long as anybody wants to; it cannot be
// written. Two objects are equal if they are of the same entity.

#include "Source.h"

#include "Vorn/GenericIf.h"

namespace LdpPython {

/// The object of an entity: None for null, and for an entity that is being destroyed, which nobody may keep.
py::object wrap( Vorn::Entity const * entity, SourcePtr const & source );

/// The entity of an object. Throws TypeError for anything else.
Vorn::Entity & entityOf( py::handle object );
SourcePtr const & sourceOf( py::handle object );

/// The class of a type of entities, or of values with parts.
py::handle classOf( Vorn::VornType const & type );

/// Whether the classes have the attribute.
bool isShown( Vorn::VornAttr const & attr );

/// An attribute's value: a collection as a `Mapping`, `Set` or `Queue`. Throws AttributeError where it does
/// not apply.
py::object attributeOf( Vorn::Entity const & entity, Vorn::VornAttr const & attr, SourcePtr const & source );

/// Makes the classes, with the texts of `texts` ("Type" and "Type.attribute").
void defineTypes( py::module_ const & module, py::dict const & texts );

} // namespace LdpPython
