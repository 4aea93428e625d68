// Every type's record is as the tables of expected types have it.
#include "model/Samples.h"

#include "Vorn/Entity.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

namespace {

using namespace Test;
using Vorn::Entity;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;

// The key of a collection's members is the argument of its type, wherever it stands among them.
void expectMemberKey( VornAttr const & attr ) {
   if ( !attr.keyed() || !attr.instantiating() ) return;
   std::string key;
   for ( auto const * arg = attr.memberCtorArgs; arg->name; ++arg ) {
      if ( arg->type == attr.keyType ) key = arg->name;
   }
   EXPECT_EQ( attr.memberKey, key );
}

void expectCtorArgs( VornType const & type, ExpectedType const & expected ) {
   std::vector< std::string > args;
   for ( auto const * arg = type.ctorArgs; arg->name; ++arg ) {
      args.push_back( arg->name );
   }
   EXPECT_EQ( args, expected.ctorArgs );
}

void expectType( ExpectedType const & expected ) {
   VornType const & type = typeOf( expected.name );
   SCOPED_TRACE( type.name );
   EXPECT_EQ( type.base, expected.base.empty() ? &Entity::_vornType : &typeOf( expected.base ) );
   EXPECT_EQ( type.sizeAndFlags >> 28, 8u );
   EXPECT_EQ( type.flags, 0x0200ffffu );
   static char const * const inherited[] = { "name", "fullName", "parent", "parentAttrName", "entity" };
   auto const attributes = expectedAttributes( expected );
   ASSERT_EQ( type.attributeNum, std::size( inherited ) + attributes.size() );
   VornAttr const * attr = type.attributes;
   for ( char const * name : inherited ) {
      EXPECT_STREQ( attr++->name, name );
   }
   for ( ExpectedAttr const & own : attributes ) {
      expectRecord( *attr, own );
      expectMemberKey( *attr++ );
   }
   EXPECT_EQ( attr->name, nullptr ) << "the end of the table";
   if ( expected.form != ExpectedForm::base ) expectCtorArgs( type, expected );
}

TEST( TypeRecords, OfEntitiesAreAsWrittenDown ) {
   for ( ExpectedType const & expected : expectedEntities() ) {
      expectType( expected );
   }
   for ( ExpectedType const & expected : expectedTypes( ExpectedForm::base ) ) {
      expectType( expected );
   }
}

TEST( TypeRecords, OfValuesAreAsWrittenDown ) {
   for ( ExpectedType const & expected : expectedTypes( ExpectedForm::value ) ) {
      VornType const & type = typeOf( expected.name );
      SCOPED_TRACE( type.name );
      EXPECT_EQ( type.base, nullptr );
      EXPECT_EQ( type.flags, 0xffffu );
      ASSERT_EQ( type.attributeNum, expected.attributes.size() );
      Value value( &type );
      for ( std::size_t i = 0; i < expected.attributes.size(); ++i ) {
         ExpectedAttr const & attr = expected.attributes[i];
         expectRecord( type.attributes[i], attr );
         if ( attr.defaultText.empty() ) continue;
         std::string const text = attr.defaultText == "default"
                                       ? room( *type.attributes[i].type ).stringValue().charPtr()
                                       : attr.defaultText;
         EXPECT_EQ( Vorn::GenericIf::attributeText( value.data(), type, type.attributes[i] ), text.c_str() );
      }
      expectCtorArgs( type, expected );
   }
}

TEST( TypeRecords, OfEnumerationsAreAsWrittenDown ) { expectEnumerations(); }

TEST( TypeRecords, NoTypeOfTheModelIsLeftOut ) {
   // Entities of neighbouring libraries, which say themselves what they hold.
   std::set< std::string > expected{ "Ldp::LdpIdentifierSet", "Ldp::LabelAdvertisementColl",
                                     "Ldp::LdpIpAddrColl", "Ldp::LdpIdIntfIpMappingTable",
                                     "Ldp::LdpIdIntfIpMappingEntryTable" };
   for ( auto const * types : { &expectedEntities(), &expectedTypes( ExpectedForm::base ) } ) {
      for ( ExpectedType const & type : *types ) {
         expected.insert( type.name );
      }
   }
   std::string before;
   for ( VornType const * type : Vorn::typeNodes() ) {
      EXPECT_LT( before, type->name ) << "in order of name, each once";
      before = type->name;
      if ( !type->isDerived( &Entity::_vornType ) || std::strncmp( type->name, "Ldp::", 5 ) != 0 ) continue;
      EXPECT_TRUE( expected.count( type->name ) ) << type->name;
   }
}

} // namespace
