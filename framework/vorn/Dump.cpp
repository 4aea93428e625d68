// A subtree as text, by reflection.
#include "Vorn/Dump.h"

#include "Vorn/GenericIf.h"

#include <cstdio>
#include <string>

namespace Vorn {

namespace {

// Reading by reflection takes a pointer that is not const, and changes nothing.
void * objectOf( Entity const & entity ) {
   return const_cast< PtrInterface * >( static_cast< PtrInterface const * >( &entity ) );
}

bool isStored( VornKind kind ) {
   return kind == VornKind::mutableAttr || kind == VornKind::constructor || kind == VornKind::state ||
          kind == VornKind::reference;
}

void append( std::string & out, Entity const & entity, std::size_t indent ) {
   std::string const blanks( indent, ' ' );
   auto const line = [&]( auto const &... part ) {
      out += blanks;
      ( ( out += part ), ... );
      out += '\n';
   };
   auto const entityBelow = [&]( GenericIf::Value const & value ) {
      auto const & below = *static_cast< Ptr< PtrInterface > const * >( value.data() );
      if ( below ) append( out, static_cast< Entity const & >( *below ), indent + 3 );
   };
   for ( VornAttr const * attr = entity.fwkType()->attributes; attr->name; ++attr ) {
      GenericIf::Value value( attr->type );
      if ( attr->keyed() ) {
         GenericIf::Value key( attr->keyType );
         for ( GenericIf::Iterator it( objectOf( entity ), *attr ); it; it.advance() ) {
            it.key( key.data() );
            it.object( value.data() );
            String const name = String( attr->name ) + "[" + key.stringValue() + "]";
            if ( attr->instantiating() ) {
               line( name.view() );
               entityBelow( value );
            } else {
               line( name.view(), " = ", value.stringValue().view() );
            }
         }
      } else if ( attr->kind() == VornKind::child ) {
         attr->ops->op( value.data(), objectOf( entity ), *attr, GenericIf::read, nullptr, nullptr );
         if ( !*static_cast< Ptr< PtrInterface > const * >( value.data() ) ) continue;
         line( attr->name );
         entityBelow( value );
      } else if ( isStored( attr->kind() ) ) {
         line( attr->name, " = ",
               GenericIf::attributeText( objectOf( entity ), *entity.fwkType(), *attr ).view() );
      }
   }
}

} // namespace

void dump( Entity const & entity ) {
   std::string out( entity.fwkType()->name );
   out += ' ';
   out += entity.nameText().view();
   out += '\n';
   append( out, entity, 3 );
   std::fputs( out.c_str(), stderr );
}

} // namespace Vorn
