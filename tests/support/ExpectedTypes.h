// What the types must look like, written down apart from the code in the expected/*.txt beside the tests: a
// mistake in an attribute's line does not find itself here again. A type is a line, with a line for each of
// its attributes:
//
//     entity Ldp::LdpLinkConfig : Ldp::LdpLinkBaseConfig
//       0x182 ctor          no  intfId: Lumo::IntfId
//       0x183 mutable       log ipAddr: Lumo::IpAddr = 0.0.0.0
//       0x184 values        no  adjIdSet[Ldp::LdpAdjId]: bool
//
// An attribute is id, kind, whether the log carries it, name, key in brackets, type, and behind `=` the text
// of its default: `default` is that of its type, `#4` the enumerator of that number; of a child its type and
// name, of which FECs and VRFs are those of the samples. A `view` is state that reflection does not write.
//
// A type's attributes are its own, those of the base stand there. Behind its name come the constructor's
// arguments, `MplsLabelSet( name fwdEqvClass )`, unless they are its ctor lines or else its name, and
// `adapter` if it has one for the log although nothing of it is logged; of views over a packet their `size`.
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
   bool isWrite = false;    // an operation that only writes
   bool isView = false;     // state that is not written
   std::string defaultText; // empty where none is to be compared
   std::string owner;       // the type that declares it
};

enum class ExpectedForm {
   entity,
   base, // an entity type that others derive from; how one is made does not matter
   value,
   wire,    // a value of the decoders
   overlay, // a view over a packet
   object,  // a parser
};

struct ExpectedType {
   ExpectedForm form;
   std::string name;
   std::string base;                       // of entities that are not directly below Entity
   std::vector< std::string > ctorArgs;    // names
   bool adapter = false;                   // for the log, although nothing is logged
   std::size_t size = 0;                   // in octets; 0 where the wire does not say
   std::vector< ExpectedAttr > attributes; // its own
};

// The types of a form. Entities can be made and reached through reflection.
std::vector< ExpectedType > const & expectedTypes( ExpectedForm form );
inline std::vector< ExpectedType > const & expectedEntities() {
   return expectedTypes( ExpectedForm::entity );
}
// The attributes of a type behind those of its bases, without those that every entity has.
std::vector< ExpectedAttr > expectedAttributes( ExpectedType const & type );

struct ExpectedEnum {
   std::string name;
   std::vector< std::pair< std::string, U32 > > enumerators;
};
std::vector< ExpectedEnum > const & expectedEnums();

// The registered type of that name; throws if there is none.
Vorn::VornType const & typeOf( std::string const & name );

// The record is as written down.
void expectRecord( Vorn::VornAttr const & attr, ExpectedAttr const & expected );
// All enumerations are, and each enumerator reads back from its name and from its number.
void expectEnumerations();

} // namespace Test
