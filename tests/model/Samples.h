// Values of every type, made by the type's own text reader.
#pragma once

#include "support/ExpectedTypes.h"

#include "Vorn/GenericIf.h"

#include <string>
#include <vector>

namespace Test {

// What texts.txt says of a type.
struct WrittenTexts {
   std::vector< std::string > good, bad;
   std::string refusal; // what the reader says of the bad ones
};
WrittenTexts const & writtenTexts( Vorn::VornType const & type );

// Texts of values of that type, all different and none the default. Fails the test for a type without any.
std::vector< std::string > sampleTexts( Vorn::VornType const & type );

// Room for a value of that type, or for a reference to a counted object of it.
Vorn::GenericIf::Value room( Vorn::VornType const & type );

// The value with that text; for a counted type a new object, made from samples.
Vorn::GenericIf::Value sample( Vorn::VornType const & type, std::size_t index );

// A new object of an entity type. Its constructor's arguments are the samples of that index.
Vorn::Ptr< Vorn::PtrInterface > newSampleObject( Vorn::VornType const & type, std::size_t index );

// An object by address, as reflection takes it.
inline void * address( Vorn::Ptr< Vorn::PtrInterface > const & object ) { return object.ptr(); }

// An operation on an attribute through reflection. `args` are the arguments of what it writes.
U32 attributeOp( Vorn::Ptr< Vorn::PtrInterface > const & object, Vorn::VornAttr const & attr, U32 op,
                 void * result, void const * key, std::vector< Vorn::GenericIf::Value > const & args );

// What an attribute is written with: of entities the constructor's arguments, else the one value.
std::vector< Vorn::GenericIf::Value > sampleArgs( Vorn::VornAttr const & attr, std::size_t index );

// The key that goes with those arguments; 0 where there is none, and where a queue begins.
Vorn::GenericIf::Value sampleKey( Vorn::VornAttr const & attr, std::size_t index );

// Whether writing is all that an attribute's kind is about: it is stored or made, not computed or constant.
bool isWritten( Vorn::VornAttr const & attr );

} // namespace Test
