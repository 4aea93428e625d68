// Collections of live objects.
#include "Collections.h"

#include "Entities.h"
#include "Values.h"

#include "views/Reflection.h"

#include <algorithm>

namespace LdpPython {

using Vorn::Entity;
using Vorn::VornAttr;
using Vorn::VornKind;
namespace GenericIf = Vorn::GenericIf;

namespace {

void * objectOf( Entity const & entity ) {
   return const_cast< Vorn::PtrInterface * >( static_cast< Vorn::PtrInterface const * >( &entity ) );
}

} // namespace

std::size_t Collection::size() const {
   U32 members = 0;
   attr_.ops->op( &members, objectOf( *entity_ ), attr_, GenericIf::members, nullptr, nullptr );
   return members;
}

bool Collection::has( py::handle key ) const {
   GenericIf::Value at( attr_.keyType );
   try {
      fromPython( *attr_.keyType, key, at );
   } catch ( py::error_already_set const & error ) {
      if ( error.matches( PyExc_KeyError ) ) return false;
      throw;
   }
   return LdpTool::has( *entity_, attr_, at.data() );
}

py::object Collection::at( py::handle key ) const {
   GenericIf::Value at( attr_.keyType );
   fromPython( *attr_.keyType, key, at );
   if ( !LdpTool::has( *entity_, attr_, at.data() ) ) throw py::key_error( std::string( py::repr( key ) ) );
   GenericIf::Value value( attr_.type );
   LdpTool::read( *entity_, attr_, at.data(), value );
   return member( value.data() );
}

py::object Collection::member( void const * value ) const { return toPython( *attr_.type, value, source_ ); }

// All of it at once: while Python has one of them in hand the collection may change in any way.
py::list Collection::list( bool keys, bool values ) const {
   struct Node {
      std::string order;
      py::object key, value;
   };
   std::vector< Node > nodes;
   nodes.reserve( size() );
   bool const ordered = attr_.kind() == VornKind::queue;
   GenericIf::Value key( attr_.keyType ), value( attr_.type );
   for ( GenericIf::Iterator it( objectOf( *entity_ ), attr_ ); it; it.advance() ) {
      it.key( key.data() );
      Node & node = nodes.emplace_back();
      if ( !ordered ) node.order = key.stringValue().view();
      if ( keys ) node.key = toPython( *attr_.keyType, key.data(), nullptr );
      if ( !values ) continue;
      it.object( value.data() );
      node.value = member( value.data() );
   }
   if ( !ordered ) {
      std::sort( nodes.begin(), nodes.end(),
                 []( Node const & a, Node const & b ) { return LdpTool::KeyOrder()( a.order, b.order ); } );
   }
   py::list list( nodes.size() );
   for ( std::size_t i = 0; i < nodes.size(); ++i ) {
      Node & node = nodes[i];
      list[i] = keys && values ? py::make_tuple( node.key, node.value ) : keys ? node.key : node.value;
   }
   return list;
}

py::object Collection::snapshot( py::object ( *of )( Entity const &, bool, SourcePtr const & ) ) const {
   if ( attr_.isSet() ) return keys();
   bool const queue = attr_.kind() == VornKind::queue;
   py::dict all;
   py::list row;
   for ( py::handle pair : items() ) {
      py::object value = pair.cast< py::tuple >()[1];
      bool const entity = LdpTool::isReference( *attr_.type ) && !value.is_none();
      if ( entity ) value = of( entityOf( value ), attr_.instantiating(), source_ );
      if ( queue ) {
         row.append( value );
      } else {
         all[pair.cast< py::tuple >()[0]] = value;
      }
   }
   return queue ? py::object( row ) : py::object( all );
}

std::string Collection::repr( char const * kind ) const {
   return std::string( "<" ) + kind + " " + attr_.name + " of " + std::to_string( size() ) + ">";
}

py::object collectionOf( Entity const & entity, VornAttr const & attr, SourcePtr const & source ) {
   if ( attr.isSet() ) return py::cast( Set( entity, attr, source ) );
   if ( attr.kind() == VornKind::queue ) return py::cast( Queue( entity, attr, source ) );
   return py::cast( Mapping( entity, attr, source ) );
}

void addCollections( py::module_ & module ) {
   auto const iterator = []( py::list const & list ) { return py::iter( list ); };
   py::class_< Collection >( module, "Collection", "Members of a live object, as they are at the moment." )
        .def( "__len__", &Collection::size );
   py::class_< Mapping, Collection >( module, "Mapping",
                                      "Members by their keys; a text of a key will do as the key." )
        .def( "__iter__", [=]( Mapping const & self ) { return iterator( self.keys() ); } )
        .def( "__contains__", &Mapping::has )
        .def( "__getitem__", &Mapping::at )
        .def( "__repr__", []( Mapping const & self ) { return self.repr( "Mapping" ); } )
        .def(
             "get",
             []( Mapping const & self, py::handle key, py::object none ) {
                return self.has( key ) ? self.at( key ) : none;
             },
             py::arg( "key" ), py::arg( "default" ) = py::none(), "The member at the key, or the default." )
        .def( "keys", &Mapping::keys, "The keys, as a list." )
        .def( "values", &Mapping::values, "The members, as a list." )
        .def( "items", &Mapping::items, "Pairs of key and member, as a list." );
   py::class_< Set, Collection >( module, "Set", "Keys alone." )
        .def( "__contains__", &Set::has )
        .def( "__iter__", [=]( Set const & self ) { return iterator( self.keys() ); } )
        .def( "__repr__", []( Set const & self ) { return self.repr( "Set" ); } );
   py::class_< Queue, Collection >( module, "Queue",
                                    "Values in their order, each under an index that rises." )
        .def( "__iter__", [=]( Queue const & self ) { return iterator( self.values() ); } )
        .def( "__getitem__", &Queue::at )
        .def( "__repr__", []( Queue const & self ) { return self.repr( "Queue" ); } )
        .def( "items", &Queue::items, "Pairs of index and value, as a list." );
   py::module_ const abc = py::module_::import( "collections.abc" );
   abc.attr( "Mapping" ).attr( "register" )( module.attr( "Mapping" ) );
   abc.attr( "Set" ).attr( "register" )( module.attr( "Set" ) );
}

} // namespace LdpPython
