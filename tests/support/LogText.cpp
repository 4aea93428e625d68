// A tree as text, so that two ends can be compared.
#include "support/LogText.h"

#include "Vorn/GenericIf.h"

#include <algorithm>
#include <vector>

namespace Test {

namespace {

using namespace Vorn;
namespace Gen = Vorn::GenericIf;

std::string text( void const * value, VornType const & type ) {
   return std::string( type.methods->genericIfStrRep( value, &type ).view() );
}

/// The path from the root to an entity; "null" where there is none.
std::string path( Entity const * entity, Entity const & root ) {
   std::string names;
   for ( Ptr< Entity > at( const_cast< Entity * >( entity ) ); at; at = at->parent() ) {
      if ( at.ptr() == &root ) return "root" + names;
      names = "/" + std::string( at->nameText().view() ) + names;
   }
   return "null";
}

class Writer {
 public:
   explicit Writer( Entity & root ) : root_( root ) {}

   std::string entity( Entity & entity, std::string const & indent ) {
      std::string all = entity.fwkType()->name;
      for ( VornAttr const * attr = entity.fwkType()->attributes; attr->name; ++attr ) {
         if ( !attr->logged() && !attr->isCtorArg() ) continue;
         all += "\n" + indent + attr->name + ": " + attribute( entity, *attr, indent + "  " );
      }
      return all;
   }

 private:
   std::string attribute( Entity & entity, VornAttr const & attr, std::string const & indent ) {
      void * const object = static_cast< PtrInterface * >( &entity );
      if ( !attr.keyed() ) {
         Gen::Value value( attr.type );
         attr.ops->op( value.data(), object, attr, Gen::read, nullptr, nullptr );
         return member( value.data(), attr, indent );
      }
      std::vector< std::string > members;
      for ( Gen::Iterator it( object, attr ); it; it.advance() ) {
         Gen::Value key( attr.keyType );
         Gen::Value value( attr.type );
         it.key( key.data() );
         it.object( value.data() );
         std::string const shown = member( value.data(), attr, indent );
         if ( shown != "null" )
            members.push_back( "\n" + indent + text( key.data(), *attr.keyType ) + " = " + shown );
      }
      std::string all;
      if ( attr.kind() == VornKind::queue ) {
         U32 indices[2];
         attr.ops->op( indices, object, attr, GenericIf::indices, nullptr, nullptr );
         all = Vorn::format( "from %u to %u", indices[0], indices[1] ).view();
      } else {
         std::sort( members.begin(), members.end() );
      }
      for ( auto const & one : members ) {
         all += one;
      }
      return all;
   }

   std::string member( void const * value, VornAttr const & attr, std::string const & indent ) {
      if ( attr.type->methods != &GenericIfImpl::GenericIfPtrInterfaceMethods< PtrInterface >::vtable_ )
         return text( value, *attr.type );
      auto const & object = *static_cast< Ptr< PtrInterface > const * >( value );
      auto * const target = static_cast< Entity * >( object.ptr() );
      if ( attr.instantiating() ) return target ? entity( *target, indent ) : "null";
      return path( target, root_ );
   }

   Entity & root_;
};

} // namespace

std::string logged( Entity & root ) { return Writer( root ).entity( root, "" ); }

} // namespace Test
