#pragma once

// Where live objects come from: a watch or a replica. It owns what observes them, and sees to it that only
// one call at a time changes them.

#include "Vorn/Entity.h"

#include <pybind11/pybind11.h>

#include <exception>
#include <memory>
#include <utility>
#include <vector>

namespace LdpPython {

namespace py = pybind11;

class Observation;

struct Source {
   bool busy = false; ///< something writes to the objects; a callback may be under way
   std::vector< std::shared_ptr< Observation > > observations;
   std::exception_ptr pending; ///< left a callback, and is no error of it: KeyboardInterrupt

   /// Ends all observations.
   void stopAll();
   /// Lets go of those that are stopped.
   void sweep();
   int visitCallbacks( visitproc visit, void * arg ) const;
};
using SourcePtr = std::shared_ptr< Source >;

/// Marks what only one may do at a time. Throws Error if somebody does it already: a callback that asks for
/// more, or another thread.
class Busy {
 public:
   explicit Busy( bool & busy );
   ~Busy() { busy_ = false; }
   Busy( Busy const & ) = delete;
   Busy & operator=( Busy const & ) = delete;

 private:
   bool & busy_;
};

/// Calls what writes to the objects of a source, and throws what left a callback meanwhile.
template< class Write >
void write( Source & source, Write const & write ) {
   {
      Busy const busy( source.busy );
      write();
   }
   source.sweep();
   if ( source.pending ) std::rethrow_exception( std::exchange( source.pending, nullptr ) );
}

/// The class of Python objects that own a source. The interpreter's collector looks through it at the
/// callbacks, which lead back to the object more often than not.
template< class Owner >
py::custom_type_setup collected() {
   return py::custom_type_setup( []( PyHeapTypeObject * heapType ) {
      static auto const source = []( PyObject * self ) -> Source * {
         auto const held = reinterpret_cast< py::detail::instance * >( self )->get_value_and_holder();
         return held.value_ptr() ? static_cast< Owner * >( held.value_ptr() )->source().get() : nullptr;
      };
      PyTypeObject & type = heapType->ht_type;
      type.tp_flags |= Py_TPFLAGS_HAVE_GC;
      type.tp_traverse = []( PyObject * self, visitproc visit, void * arg ) {
         Py_VISIT( Py_TYPE( self ) );
         if ( Source const * const of = source( self ) ) return of->visitCallbacks( visit, arg );
         return 0;
      };
      type.tp_clear = []( PyObject * self ) {
         if ( Source * const of = source( self ) ) of->stopAll();
         return 0;
      };
   } );
}

} // namespace LdpPython
