// The reader of the tables of expected types, and the comparison with them.
#include "support/ExpectedTypes.h"

#include "Vorn/GenericIf.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <stdexcept>

namespace Test {

namespace {

using Vorn::VornKind;

struct Tables {
   std::map< ExpectedForm, std::vector< ExpectedType > > types;
   std::vector< ExpectedEnum > enums;
};

std::map< std::string, ExpectedForm > const forms{
   { "entity", ExpectedForm::entity },   { "base", ExpectedForm::base },
   { "value", ExpectedForm::value },     { "wire", ExpectedForm::wire },
   { "overlay", ExpectedForm::overlay }, { "object", ExpectedForm::object },
};

ExpectedAttr readAttr( std::istringstream & line ) {
   static std::map< std::string, VornKind > const kinds{
      { "ctor", VornKind::constructor },
      { "mutable", VornKind::mutableAttr },
      { "entities", VornKind::entityColl },
      { "localEntities", VornKind::localEntityColl },
      { "values", VornKind::valueColl },
      { "localValues", VornKind::localValueColl },
      { "set", VornKind::valueColl },
      { "child", VornKind::child },
      { "queue", VornKind::queue },
      { "reference", VornKind::reference },
      { "references", VornKind::referenceColl },
      { "constant", VornKind::constant },
      { "derivedConstant", VornKind::derivedConstant },
      { "derived", VornKind::derived },
      { "read", VornKind::derivedLight },
      { "function", VornKind::function },
      { "state", VornKind::state },
      { "write", VornKind::state },
      { "view", VornKind::state },
   };
   std::string id, kind, log, name, type, equals;
   if ( !( line >> id >> kind >> log >> name >> type ) || name.back() != ':' )
      throw std::invalid_argument( "bad line in the tables of expected types: " + line.str() );
   name.pop_back();
   ExpectedAttr attr{};
   attr.kind = kinds.at( kind );
   attr.name = name;
   attr.id = U32( std::stoul( id, nullptr, 16 ) );
   attr.type = type;
   attr.logged = log == "log";
   attr.isSet = kind == "set";
   attr.isWrite = kind == "write";
   attr.isView = kind == "view";
   if ( auto const bracket = name.find( '[' ); bracket != std::string::npos ) {
      attr.name = name.substr( 0, bracket );
      attr.key = name.substr( bracket + 1, name.size() - bracket - 2 );
   }
   if ( line >> equals ) std::getline( line >> std::ws, attr.defaultText );
   return attr;
}

ExpectedType readType( ExpectedForm form, std::string head ) {
   ExpectedType type{ form, "", "", {}, false, 0, {} };
   if ( auto const open = head.find( '(' ); open != std::string::npos ) {
      auto const close = head.find( ')' );
      std::istringstream args( head.substr( open + 1, close - open - 1 ) );
      for ( std::string arg; args >> arg; ) {
         type.ctorArgs.push_back( arg );
      }
      if ( type.ctorArgs.empty() ) type.ctorArgs.push_back( "" ); // none, and that is said
      head.replace( open, close - open + 1, "" );
   }
   std::istringstream words( head );
   words >> type.name;
   for ( std::string word; words >> word; ) {
      if ( word == "adapter" ) {
         type.adapter = true;
      } else if ( word == "size" ) {
         words >> type.size;
      } else if ( word != ":" || !( words >> type.base ) ) {
         throw std::invalid_argument( "bad head in the tables of expected types: " + head );
      }
   }
   return type;
}

// What the lines of a type leave out.
void complete( ExpectedType & type ) {
   for ( ExpectedAttr & attr : type.attributes ) {
      attr.owner = type.name;
   }
   if ( type.ctorArgs.empty() && type.form != ExpectedForm::base ) {
      for ( ExpectedAttr const & attr : type.attributes ) {
         if ( attr.kind == VornKind::constructor ) type.ctorArgs.push_back( attr.name );
      }
      if ( type.ctorArgs.empty() && type.form == ExpectedForm::entity ) type.ctorArgs.push_back( "name" );
   }
   if ( type.ctorArgs == std::vector< std::string >{ "" } ) type.ctorArgs.clear();
}

ExpectedEnum readEnum( std::istringstream & words ) {
   ExpectedEnum type;
   words >> type.name;
   for ( std::string word; words >> word; ) {
      auto const equals = word.find( '=' );
      type.enumerators.emplace_back( word.substr( 0, equals ),
                                     U32( std::stoul( word.substr( equals + 1 ), nullptr, 0 ) ) );
   }
   return type;
}

void read( std::istream & lines, Tables & tables ) {
   ExpectedType * type = nullptr;
   for ( std::string line; std::getline( lines, line ); ) {
      std::istringstream words( line );
      std::string first;
      if ( line.starts_with( ' ' ) ) {
         type->attributes.push_back( readAttr( words ) );
      } else if ( words >> first ) {
         if ( first == "enum" ) {
            tables.enums.push_back( readEnum( words ) );
         } else {
            auto const form = forms.at( first );
            type = &tables.types[form].emplace_back( readType( form, line.substr( first.size() + 1 ) ) );
         }
      }
   }
}

Tables const & tables() {
   static Tables const read = [] {
      Tables all;
      for ( auto const & file : std::filesystem::directory_iterator( LDP_TEST_EXPECTED ) ) {
         std::ifstream lines( file.path() );
         Test::read( lines, all );
      }
      for ( auto const & [word, form] : forms ) {
         for ( ExpectedType & type : all.types[form] ) {
            complete( type );
         }
      }
      return all;
   }();
   return read;
}

} // namespace

std::vector< ExpectedType > const & expectedTypes( ExpectedForm form ) { return tables().types.at( form ); }
std::vector< ExpectedEnum > const & expectedEnums() { return tables().enums; }

std::vector< ExpectedAttr > expectedAttributes( ExpectedType const & type ) {
   std::vector< ExpectedAttr > all;
   for ( auto const & [form, types] : tables().types ) {
      for ( ExpectedType const & other : types ) {
         if ( other.name == type.base ) all = expectedAttributes( other );
      }
   }
   all.insert( all.end(), type.attributes.begin(), type.attributes.end() );
   return all;
}

Vorn::VornType const & typeOf( std::string const & name ) {
   Vorn::VornType const * const type = Vorn::typeNode( name.c_str() );
   if ( !type ) throw std::runtime_error( name + " is not registered" );
   return *type;
}

void expectRecord( Vorn::VornAttr const & attr, ExpectedAttr const & expected ) {
   SCOPED_TRACE( expected.owner + "::" + expected.name );
   EXPECT_EQ( attr.name, expected.name );
   EXPECT_EQ( attr.id(), expected.id );
   EXPECT_EQ( attr.kind(), expected.kind );
   EXPECT_EQ( attr.logged(), expected.logged );
   EXPECT_EQ( attr.owner->name, expected.owner );
   EXPECT_EQ( attr.type->name, expected.type );
   EXPECT_EQ( attr.keyType ? attr.keyType->name : "", expected.key );
   EXPECT_EQ( attr.keyed(), !expected.key.empty() );
}

void expectEnumerations() {
   for ( ExpectedEnum const & expected : expectedEnums() ) {
      Vorn::VornType const & type = typeOf( expected.name );
      SCOPED_TRACE( type.name );
      ASSERT_EQ( type.attributeNum, expected.enumerators.size() );
      for ( std::size_t i = 0; i < expected.enumerators.size(); ++i ) {
         auto const & [name, number] = expected.enumerators[i];
         EXPECT_EQ( type.attributes[i].name, name );
         EXPECT_EQ( type.attributes[i].id(), number );
         EXPECT_EQ( type.attributes[i].kind(), VornKind::enumerator );
         for ( std::string const & text : { name, std::to_string( number ) } ) {
            Vorn::GenericIf::Value read( &type );
            read.stringValueIs( text.c_str() );
            EXPECT_EQ( *static_cast< U32 const * >( read.data() ), number ) << text;
            EXPECT_EQ( read.stringValue(), name.c_str() );
         }
      }
   }
}

} // namespace Test
