// Live objects. Their classes are made by hand and not by pybind11: there is one for each type, and an
// attribute of each is a descriptor of its own, whose text `help` shows.
#include "Entities.h"

#include "Collections.h"
#include "Errors.h"
#include "Observe.h"
#include "Values.h"

#include "views/Tree.h"

#include <deque>
#include <new>
#include <unordered_map>

namespace LdpPython {

using Vorn::Entity;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;

namespace {

struct Object {
   PyObject_HEAD Vorn::Ptr< Entity > entity;
   SourcePtr source;
};

Object & of( PyObject * self ) { return *reinterpret_cast< Object * >( self ); }

/// What a slot of a type calls: no exception of C++ goes through the interpreter.
template< class Call >
PyObject * guarded( Call const & call ) noexcept {
   try {
      return call().release().ptr();
   } catch ( py::error_already_set & error ) {
      error.restore();
   } catch ( py::builtin_exception const & error ) {
      error.set_error();
   } catch ( std::exception const & error ) {
      PyErr_SetString( errors.error, error.what() );
   }
   return nullptr;
}

void dealloc( PyObject * self ) {
   PyTypeObject * const type = Py_TYPE( self );
   of( self ).entity.~Ptr();
   of( self ).source.~SourcePtr();
   type->tp_free( self );
   Py_DECREF( type );
}

/// Its name or key as a text, without the quotes that names have elsewhere.
py::object nameOf( Entity const & entity ) {
   Vorn::String text = entity.nameText();
   if ( text.view().starts_with( '\'' ) ) Vorn::strepToValue( Vorn::String( text ), &text );
   return textOf( text.view() );
}

PyObject * repr( PyObject * self ) {
   return guarded( [&]() -> py::object {
      return py::str( "<" ) + py::str( Py_TYPE( self )->tp_name ) + py::str( " " ) +
             nameOf( *of( self ).entity ) + py::str( ">" );
   } );
}

Py_hash_t hash( PyObject * self ) {
   return Py_hash_t( reinterpret_cast< std::uintptr_t >( of( self ).entity.ptr() ) >> 4 );
}

PyObject * compare( PyObject * self, PyObject * other, int op ) {
   bool const comparable = ( op == Py_EQ || op == Py_NE ) && PyObject_TypeCheck( other, Py_TYPE( self ) );
   if ( !comparable ) Py_RETURN_NOTIMPLEMENTED;
   return PyBool_FromLong( ( of( self ).entity == of( other ).entity ) == ( op == Py_EQ ) );
}

PyObject * get( PyObject * self, void * attr ) {
   return guarded( [&] {
      return attributeOf( *of( self ).entity, *static_cast< VornAttr const * >( attr ), of( self ).source );
   } );
}

bool isReference( VornAttr const & attr ) { return !attr.keyed() && LdpTool::isReference( *attr.type ); }

/// A member that stands for itself, or by its name for another.
py::object snapshotOf( Entity const & entity, bool owned, SourcePtr const & source ) {
   if ( !owned ) return nameOf( entity );
   py::dict all;
   for ( VornAttr const * attr = entity.fwkType()->attributes; attr->name; ++attr ) {
      if ( !isShown( *attr ) || !LdpTool::belongs( *attr, LdpTool::TreeContent::stored ) ) continue;
      py::object value;
      if ( attr->kind() == VornKind::child ) {
         auto const child = LdpTool::childOf( entity, *attr );
         value = child ? snapshotOf( *child, true, source ) : py::none();
      } else {
         value = attributeOf( entity, *attr, source );
         if ( attr->keyed() ) value = value.cast< Collection const & >().snapshot( snapshotOf );
         if ( isReference( *attr ) && !value.is_none() ) value = nameOf( entityOf( value ) );
      }
      all[attr->name] = value;
   }
   return all;
}

PyObject * snapshot( PyObject * self, PyObject * ) {
   return guarded( [&] { return snapshotOf( *of( self ).entity, true, of( self ).source ); } );
}

PyObject * observe( PyObject * self, PyObject * args, PyObject * keywords ) {
   return guarded( [&] {
      static char const * names[] = { "callback", "below", nullptr };
      PyObject * callback = nullptr;
      int below = 0;
      if ( !PyArg_ParseTupleAndKeywords( args, keywords, "O|$p", const_cast< char ** >( names ), &callback,
                                         &below ) )
         throw py::error_already_set();
      return observe( *of( self ).entity, of( self ).source, callback, below );
   } );
}

PyMethodDef methods[] = {
   { "observe", reinterpret_cast< PyCFunction >( reinterpret_cast< void ( * )() >( observe ) ),
     METH_VARARGS | METH_KEYWORDS,
     "observe(callback, *, below=False)\n--\n\n"
     "Call callback(object, attribute, key) behind each change of the object, with below also of all that "
     "it\n"
     "owns, of what comes later too. key is None for an attribute that is no collection. It goes on until\n"
     "stop() of the Observation that this gives, or for as long as the watch or replica is there. An "
     "exception\n"
     "from the callback is reported and ends nothing." },
   { "snapshot", snapshot, METH_NOARGS,
     "snapshot()\n--\n\nAll that is stored in the object and below it as dicts and lists, which do not "
     "change any more." },
   { nullptr, nullptr, 0, nullptr }
};

std::unordered_map< VornType const *, PyObject * > & classes() {
   static auto & all = *new std::unordered_map< VornType const *, PyObject * >;
   return all;
}

/// A text that a class refers to for as long as the process lives.
char const * keep( std::string text ) {
   static auto & texts = *new std::deque< std::string >;
   return texts.emplace_back( std::move( text ) ).c_str();
}

char const * docOf( py::dict const & texts, std::string const & name ) {
   py::str const key( name );
   return texts.contains( key ) ? keep( texts[key].cast< std::string >() ) : nullptr;
}

bool isOwn( VornType const & type, VornAttr const & attr ) {
   return !type.base || !type.base->attribute( attr.name );
}

PyObject * newClass( VornType const & type, PyObject * base, py::dict const & texts ) {
   auto & getters = *new std::vector< PyGetSetDef >;
   for ( VornAttr const * attr = type.attributes; attr && attr->name; ++attr ) {
      if ( !isShown( *attr ) || !isOwn( type, *attr ) ) continue;
      std::string const name = std::string( shortName( *attr->owner ) ) + "." + attr->name;
      getters.push_back(
           { attr->name, get, nullptr, docOf( texts, name ), const_cast< VornAttr * >( attr ) } );
   }
   getters.push_back( {} );
   std::vector< PyType_Slot > slots{ { Py_tp_getset, getters.data() } };
   if ( char const * const doc = docOf( texts, shortName( type ) ) )
      slots.push_back( { Py_tp_doc, const_cast< char * >( doc ) } );
   if ( !base ) {
      slots.insert( slots.end(), { { Py_tp_dealloc, reinterpret_cast< void * >( dealloc ) },
                                   { Py_tp_repr, reinterpret_cast< void * >( repr ) },
                                   { Py_tp_hash, reinterpret_cast< void * >( hash ) },
                                   { Py_tp_richcompare, reinterpret_cast< void * >( compare ) },
                                   { Py_tp_methods, methods } } );
   }
   slots.push_back( {} );
   PyType_Spec spec{ keep( std::string( "ldp." ) + shortName( type ) ), int( sizeof( Object ) ), 0,
                     Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION,
                     slots.data() };
   py::object const bases = base ? py::make_tuple( py::handle( base ) ) : py::object();
   PyObject * const made = PyType_FromSpecWithBases( &spec, bases.ptr() );
   if ( !made ) throw py::error_already_set();
   return made;
}

PyObject * entityClass( VornType const & type, py::module_ const & module, py::dict const & texts ) {
   if ( auto const found = classes().find( &type ); found != classes().end() ) return found->second;
   PyObject * const base = &type == &Entity::_vornType ? nullptr : entityClass( *type.base, module, texts );
   PyObject * const made = newClass( type, base, texts );
   classes()[&type] = made;
   py::setattr( module, shortName( type ), made );
   return made;
}

void defineTuple( VornType const & type, py::module_ const & module, py::dict const & texts ) {
   py::list names;
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr )
      if ( LdpTool::isPart( *attr ) ) names.append( attr->name );
   py::object const made =
        py::module_::import( "collections" )
             .attr( "namedtuple" )( shortName( type ), names, py::arg( "module" ) = "ldp" );
   py::str const name( shortName( type ) );
   if ( texts.contains( name ) ) made.attr( "__doc__" ) = texts[name];
   py::setattr( module, name, made );
   classes()[&type] = py::object( made ).release().ptr();
}

} // namespace

py::object wrap( Entity const * entity, SourcePtr const & source ) {
   if ( !entity || entity->vornMarkedForDeletion() ) return py::none();
   auto * const type = reinterpret_cast< PyTypeObject * >( classOf( *entity->fwkType() ).ptr() );
   PyObject * const object = type->tp_alloc( type, 0 );
   if ( !object ) throw py::error_already_set();
   new ( &of( object ).entity ) Vorn::Ptr< Entity >( const_cast< Entity * >( entity ) );
   new ( &of( object ).source ) SourcePtr( source );
   return py::reinterpret_steal< py::object >( object );
}

Entity & entityOf( py::handle object ) { return *of( object.ptr() ).entity; }
SourcePtr const & sourceOf( py::handle object ) { return of( object.ptr() ).source; }

py::handle classOf( VornType const & type ) {
   auto const found = classes().find( &type );
   if ( found == classes().end() ) raise( errors.error, std::string( "no class of " ) + type.name );
   return found->second;
}

bool isShown( VornAttr const & attr ) {
   if ( attr.kind() == VornKind::function || !attr.type->methods ) return false;
   bool const object = attr.type->isPolymorphic() || attr.type->isOverlay();
   if ( object && !attr.type->isDerived( &Entity::_vornType ) ) return false;
   return !attr.keyed() || attr.ops->iterator; // what is computed for a key is no collection
}

py::object attributeOf( Entity const & entity, VornAttr const & attr, SourcePtr const & source ) {
   if ( attr.keyed() ) return collectionOf( entity, attr, source );
   Vorn::GenericIf::Value value( attr.type );
   U32 const outcome = attr.ops->op(
        value.data(),
        const_cast< Vorn::PtrInterface * >( static_cast< Vorn::PtrInterface const * >( &entity ) ), attr,
        Vorn::GenericIf::read, nullptr, nullptr );
   if ( outcome != Vorn::GenericIf::done ) throw py::attribute_error( attr.name );
   return toPython( *attr.type, value.data(), source );
}

void defineTypes( py::module_ const & module, py::dict const & texts ) {
   for ( VornType const * type : Vorn::typeNodes() ) {
      if ( type->isDerived( &Entity::_vornType ) ) {
         entityClass( *type, module, texts );
      } else if ( isTuple( *type ) ) {
         defineTuple( *type, module, texts );
      }
   }
}

} // namespace LdpPython
