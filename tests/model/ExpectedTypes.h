// What the model's types must look like, written down apart from the code: a mistake in an attribute's line
// does not find itself here again.
#pragma once

#include "Vorn/VornType.h"

#include <string>
#include <vector>

namespace Test {

struct ExpectedAttr {
   Vorn::VornKind kind;
   std::string name;
   U32 id;
   std::string type;
   std::string key; // empty for an attribute without a key
   bool logged;
   bool isSet = false;      // a collection of bool that holds keys alone
   std::string defaultText; // empty where none is to be compared
};

struct ExpectedType {
   std::string name;
   std::vector< ExpectedAttr > attributes; // without those that every entity has
};

// Entities, in no order.
std::vector< ExpectedType > const & expectedEntities();
// Value types.
std::vector< ExpectedType > const & expectedValues();

struct ExpectedEnum {
   std::string name;
   std::vector< std::pair< std::string, U32 > > enumerators;
};
std::vector< ExpectedEnum > const & expectedEnums();

} // namespace Test
