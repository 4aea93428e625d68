// ldptool types: the library's type table.

#include "commands/Commands.h"
#include "commands/types/WireForm.h"
#include "text/JsonWriter.h"
#include "views/Tree.h"

#include "Vorn/Entity.h"
#include "Vorn/GenericIf.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstring>
#include <fnmatch.h>
#include <iostream>
#include <memory>

namespace LdpTool {

namespace {

using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;

struct TypesOptions {
   bool json = false;
   std::string pattern;
};

/// An entity, another counted object, a view over foreign bytes, a value or an enumeration.
char const * kindOf( VornType const & type ) {
   if ( type.isEnum() ) return "enum";
   if ( type.isOverlay() ) return "overlay";
   if ( type.isDerived( &Vorn::Entity::_vornType ) ) return "entity";
   return type.isPolymorphic() ? "object" : "value";
}

char const * kindText( VornAttr const & attr ) {
   if ( attr.isSet() && attr.keyed() ) return "set";
   switch ( attr.kind() ) {
   case VornKind::mutableAttr: return "mutable";
   case VornKind::constructor: return "constructor";
   case VornKind::state: return "state";
   case VornKind::derived:
   case VornKind::derivedLight: return "derived";
   case VornKind::constant: return "constant";
   case VornKind::derivedConstant: return "derived constant";
   case VornKind::enumerator: return "enumerator";
   case VornKind::function: return "function";
   case VornKind::child: return "child";
   case VornKind::entityColl:
   case VornKind::localEntityColl: return "entities";
   case VornKind::reference: return "reference";
   case VornKind::referenceColl: return "references";
   case VornKind::valueColl:
   case VornKind::localValueColl: return "values";
   case VornKind::queue: return "queue";
   }
   return "?";
}

std::string flagText( VornAttr const & attr ) {
   char text[24];
   std::snprintf( text, sizeof text, "0x%016llx", static_cast< unsigned long long >( attr.flags ) );
   return text;
}

void writeName( JsonWriter & json, char const * member, VornType const * type ) {
   json.key( member );
   type ? json.value( type->name ) : json.null();
}

void writeType( JsonWriter & json, VornType const & type ) {
   json.object();
   json.member( "type", type.name );
   json.member( "kind", kindOf( type ) );
   writeName( json, "base", type.base );
   if ( type.methods ) json.member( "json", jsonForm( type ) );
   if ( type.isDerived( &Vorn::Entity::_vornType ) ) {
      json.member( "carried", type.newEntityForAttrLog != nullptr );
   } else if ( !type.isPolymorphic() && !type.isOverlay() ) {
      json.key( "wire" );
      writeWireForm( json, type );
      if ( auto const limit = limitOf( type ) ) json.member( "max", *limit );
   }
   if ( type.isEnum() ) {
      json.key( "enumerators" );
      json.object();
      for ( VornAttr const * attr = type.attributes; attr->name; ++attr )
         json.member( attr->name, attr->id() );
      json.endObject();
      return json.endObject();
   }
   json.key( "ctor" );
   json.array();
   for ( auto const * arg = type.ctorArgs; arg && arg->name; ++arg ) {
      json.array();
      json.value( arg->name );
      json.value( arg->type->name );
      json.endArray();
   }
   json.endArray();
   json.key( "attributes" );
   json.array();
   for ( VornAttr const * attr = type.attributes; attr && attr->name; ++attr ) {
      json.object();
      json.member( "name", attr->name );
      json.member( "id", attr->id() );
      json.member( "type", attr->type->name );
      writeName( json, "key", attr->keyType );
      json.member( "kind", kindText( *attr ) );
      json.member( "flags", flagText( *attr ) );
      json.member( "logged", attr->logged() );
      json.member( "instantiating", attr->instantiating() );
      if ( auto const mask = maskOf( type, *attr ) ) json.member( "mask", *mask );
      if ( attr->keyed() && attr->keyType ) {
         bool const array = attr->isSet() || attr->kind() == VornKind::queue;
         json.member( "json", array ? "array" : isKeyedByStructure( *attr ) ? "pairs" : "object" );
      }
      json.endObject();
   }
   json.endArray();
   json.endObject();
}

void printType( Output & out, VornType const & type ) {
   out << type.name << "  " << kindOf( type );
   if ( type.base ) out << " : " << type.base->name;
   out << '\n';
   char line[256];
   for ( VornAttr const * attr = type.attributes; attr && attr->name; ++attr ) {
      if ( attr->kind() == VornKind::enumerator ) {
         std::snprintf( line, sizeof line, "   %-10u %s\n", attr->id(), attr->name );
         out << line;
         continue;
      }
      std::snprintf( line, sizeof line, "   0x%-5x %-36s %-16s %-28s", attr->id(), attr->name,
                     kindText( *attr ), attr->type->name );
      out << line;
      if ( attr->keyType ) out << " by " << attr->keyType->name;
      out << ( attr->logged() ? "  replicated\n" : "\n" );
   }
}

/// A pattern matches the full name, or the name behind the namespace.
bool matches( VornType const & type, std::string const & pattern ) {
   if ( pattern.empty() ) return true;
   char const * const behind = std::strstr( type.name, "::" );
   return fnmatch( pattern.c_str(), type.name, 0 ) == 0 ||
          ( behind && fnmatch( pattern.c_str(), behind + 2, 0 ) == 0 );
}

int typesCommand( TypesOptions const & options ) {
   auto const output = std::make_unique< Output >( stdout );
   Output & out = *output;
   JsonWriter json( out );
   bool found = false;
   for ( VornType const * type : Vorn::typeNodes() ) {
      if ( !matches( *type, options.pattern ) ) continue;
      if ( options.json ) {
         writeType( json, *type );
         json.endLine();
      } else {
         if ( found ) out << '\n';
         printType( out, *type );
      }
      found = true;
   }
   out.flush();
   if ( found ) return exitGood;
   std::cerr << "ldptool: no type matches " << options.pattern << '\n';
   return exitUsage;
}

} // namespace

void addTypesCommand( CLI::App & app ) {
   auto options = std::make_shared< TypesOptions >();
   auto * command = app.add_subcommand( "types", "Print the table of the library's types" );
   command->add_flag( "--json", options->json, "One JSON object a line" );
   command->add_option( "PATTERN", options->pattern,
                        "Only types whose name matches (as in a shell: Ldp*Coll)" );
   command->callback( [options] { throw CLI::RuntimeError( typesCommand( *options ) ); } );
}

} // namespace LdpTool
