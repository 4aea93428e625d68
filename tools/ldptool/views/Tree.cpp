// Entities as a tree of text.
#include "views/Tree.h"

namespace LdpTool {

using Vorn::Entity;
using Vorn::VornAttr;
using Vorn::VornKind;

namespace {

std::string valueText( VornAttr const & attr, Vorn::GenericIf::Value const & value ) {
   if ( !isReference( *attr.type ) ) return std::string( value.stringValue().view() );
   Entity const * const entity = referenced( value.data() );
   return entity ? std::string( entity->fullName().view() ) : "null";
}

void appendText( std::string & out, Entity const & entity, TreeContent content, Wanted const & wanted,
                 std::size_t indent ) {
   std::string const blanks( indent, ' ' );
   for ( VornAttr const * attr = entity.fwkType()->attributes; attr->name; ++attr ) {
      if ( !belongs( *attr, content ) ) continue;
      if ( attr->keyed() ) {
         for ( auto const & [key, member] : membersOf( entity, *attr ) ) {
            if ( member.entity && !wanted( *member.entity ) ) continue;
            out += blanks + attr->name + "[" + key + "]";
            out += member.entity ? "\n" : " = " + valueText( *attr, member.value ) + "\n";
            if ( member.entity ) appendText( out, *member.entity, content, wantsAll, indent + 3 );
         }
      } else if ( attr->kind() == VornKind::child ) {
         if ( auto const child = childOf( entity, *attr ) ) {
            out += blanks + attr->name + "\n";
            appendText( out, *child, content, wantsAll, indent + 3 );
         }
      } else {
         out += blanks + attr->name + " = " + attributeText( entity, *attr, nullptr ) + "\n";
      }
   }
}

} // namespace

std::string attributeText( Entity const & entity, VornAttr const & attr, void const * key ) {
   if ( !has( entity, attr, key ) ) return "-";
   Vorn::GenericIf::Value value( attr.type );
   read( entity, attr, key, value );
   return valueText( attr, value );
}

std::string treeText( Entity const & entity, TreeContent content, Wanted const & wanted ) {
   std::string out = std::string( entity.nameText().view() ) + "\n";
   appendText( out, entity, content, wanted, 3 );
   return out;
}

} // namespace LdpTool
