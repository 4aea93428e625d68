// Values of every type, made by the type's own text reader.
#pragma once

#include "Vorn/GenericIf.h"

#include <string>
#include <vector>

namespace Test {

// Texts of values of that type, all different and none the default. Fails the test for a type without any.
std::vector< std::string > sampleTexts( Vorn::VornType const & type );

// The value with that text; for an entity type a new object, made from samples.
Vorn::GenericIf::Value sample( Vorn::VornType const & type, std::size_t index );

// A new object of an entity type. Its constructor's arguments are the samples of that index.
Vorn::Ptr< Vorn::PtrInterface > newSampleObject( Vorn::VornType const & type, std::size_t index );

// An object by address, as reflection takes it.
inline void * address( Vorn::Ptr< Vorn::PtrInterface > const & object ) { return object.ptr(); }

} // namespace Test
