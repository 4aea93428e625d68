// Entities and values as JSON, by their records.
#include "views/Tree.h"

#include <algorithm>

namespace LdpTool {

using Vorn::Entity;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;

namespace {

template< class... Numbers >
bool isOneOf( VornType const & type ) {
   return ( ( &type == Vorn::recordOf< Numbers >() ) || ... );
}

bool isUnsigned( VornType const & type ) { return isOneOf< U8, U16, U32, U64 >( type ); }
bool isBool( VornType const & type ) { return isOneOf< bool >( type ); }

/// Whether a value is an object of its fields (and flags). Numbers side by side have a notation that everyone
/// knows, as an LDP identifier has.
bool isStructure( VornType const & type ) {
   if ( type.isEnum() || !type.attributes || onlyField( type ) ) return false;
   return std::any_of( type.attributes, type.attributes + type.attributeNum, []( VornAttr const & attr ) {
      return ( attr.isField() && !isUnsigned( *attr.type ) ) || ( attr.isView() && isBool( *attr.type ) );
   } );
}

std::string unquoted( Vorn::String text ) {
   if ( text.view().starts_with( '\'' ) ) Vorn::strepToValue( Vorn::String( text ), &text );
   return std::string( text.view() );
}

template< class Number >
Number as( void const * value ) {
   return *static_cast< Number const * >( value );
}

void writeStructure( JsonWriter & json, VornType const & type, void const * value ) {
   json.object();
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !isPart( *attr ) ) continue;
      Value field( attr->type );
      Vorn::GenericIf::attributeOp( type, field.data(), const_cast< void * >( value ), *attr,
                                    Vorn::GenericIf::read, nullptr, nullptr );
      json.key( attr->name );
      writeValue( json, *attr->type, field.data() );
   }
   json.endObject();
}

template< class Number >
bool writeIf( JsonWriter & json, VornType const & type, void const * value ) {
   if ( &type != Vorn::recordOf< Number >() ) return false;
   json.value( as< Number >( value ) );
   return true;
}

template< class... Numbers >
void writeNumber( JsonWriter & json, VornType const & type, void const * value ) {
   static_cast< void >( ( writeIf< Numbers >( json, type, value ) || ... ) );
}

/// Names and notations are texts; of what is a number without a field, only the text says so.
void writeWord( JsonWriter & json, VornType const & type, void const * value ) {
   std::string const text = plainText( type, value );
   auto const number = numberIn( text );
   number ? json.value( *number ) : json.value( text );
}

void writeMembers( JsonWriter & json, Entity const & entity, VornAttr const & attr, TreeContent content,
                   Wanted const & wanted ) {
   bool const queue = attr.kind() == VornKind::queue;
   bool const pairs = isKeyedByStructure( attr ) && !attr.isSet();
   bool const array = queue || pairs || attr.isSet();
   array ? json.array() : json.object();
   for ( auto const & [key, member] : membersOf( entity, attr ) ) {
      if ( member.entity && !wanted( *member.entity ) ) continue;
      if ( attr.isSet() ) {
         writeValue( json, *attr.keyType, member.key.data() );
         continue;
      }
      if ( pairs ) {
         json.object();
         json.key( "key" );
         writeValue( json, *attr.keyType, member.key.data() );
         json.key( "value" );
      } else if ( !queue ) {
         json.foreignKey( plainText( *attr.keyType, member.key.data() ) );
      }
      if ( member.entity ) {
         writeTree( json, *member.entity, content );
      } else {
         writeValue( json, *attr.type, member.value.data() );
      }
      if ( pairs ) json.endObject();
   }
   array ? json.endArray() : json.endObject();
}

} // namespace

VornAttr const * onlyField( VornType const & type ) {
   VornAttr const * only = nullptr;
   for ( VornAttr const * attr = type.attributes; attr && attr->name; ++attr ) {
      if ( attr->isView() && isBool( *attr->type ) ) return nullptr;
      if ( !attr->isField() ) continue;
      if ( only ) return nullptr;
      only = attr;
   }
   return only;
}

bool isPart( VornAttr const & attr ) { return attr.isField() || ( attr.isView() && isBool( *attr.type ) ); }

std::string plainText( VornType const & type, void const * value ) {
   if ( isOneOf< Vorn::String >( type ) )
      return std::string( static_cast< Vorn::String const * >( value )->view() );
   return unquoted( type.methods->genericIfStrRep( value, &type ) );
}

std::optional< std::uint64_t > numberIn( std::string const & text ) {
   bool const number = !text.empty() && text.size() <= 10 && ( text[0] != '0' || text.size() == 1 ) &&
                       text.find_first_not_of( "0123456789" ) == text.npos;
   return number ? std::optional< std::uint64_t >( std::stoull( text ) ) : std::nullopt;
}

char const * jsonForm( VornType const & type ) {
   if ( type.isEnum() ) return "name";
   if ( isReference( type ) ) return "reference";
   if ( isBool( type ) ) return "boolean";
   if ( isUnsigned( type ) ) return "integer";
   if ( isOneOf< double >( type ) ) return "number";
   if ( VornAttr const * const only = onlyField( type ) ) return jsonForm( *only->type );
   return isStructure( type ) ? "object" : "word";
}

bool isKeyedByStructure( VornAttr const & attr ) {
   return attr.kind() != VornKind::queue && isStructure( *attr.keyType ) &&
          Value( attr.keyType ).stringValue().view().starts_with( "Value(" );
}

void writeValue( JsonWriter & json, VornType const & type, void const * value ) {
   if ( isReference( type ) ) {
      Entity const * const entity = referenced( value );
      return entity ? json.value( unquoted( entity->nameText() ) ) : json.null();
   }
   if ( isBool( type ) ) return json.value( as< bool >( value ) );
   if ( isUnsigned( type ) ) return writeNumber< U8, U16, U32, U64 >( json, type, value );
   if ( isOneOf< double >( type ) ) return json.value( as< double >( value ) );
   if ( isOneOf< Vorn::String >( type ) ) return json.value( plainText( type, value ) );
   if ( isStructure( type ) ) return writeStructure( json, type, value );
   if ( VornAttr const * const only = onlyField( type ) ) {
      Value field( only->type );
      Vorn::GenericIf::attributeOp( type, field.data(), const_cast< void * >( value ), *only,
                                    Vorn::GenericIf::read, nullptr, nullptr );
      return writeValue( json, *only->type, field.data() );
   }
   writeWord( json, type, value );
}

void writeTree( JsonWriter & json, Entity const & entity, TreeContent content, Wanted const & wanted ) {
   json.object();
   for ( VornAttr const * attr = entity.fwkType()->attributes; attr->name; ++attr ) {
      if ( !belongs( *attr, content ) ) continue;
      json.key( attr->name );
      if ( attr->keyed() ) {
         writeMembers( json, entity, *attr, content, wanted );
      } else if ( attr->kind() == VornKind::child ) {
         auto const child = childOf( entity, *attr );
         child ? writeTree( json, *child, content ) : json.null();
      } else {
         Value value( attr->type );
         read( entity, *attr, nullptr, value );
         writeValue( json, *attr->type, value.data() );
      }
   }
   json.endObject();
}

} // namespace LdpTool
