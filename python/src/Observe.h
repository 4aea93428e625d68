#pragma once

// Callbacks of Python for changes of live objects.

#include "Source.h"

#include "views/TreeWatcher.h"

namespace LdpPython {

/// Calls a callback behind each change of an entity, or of all below it too, until it is stopped.
///
/// The callback runs within the write, with the interpreter's lock held from its beginning to its end. It may
/// read whatever it likes, keep and drop objects, stop this and other observations and begin new ones. It
/// cannot write: nothing in Python can.
class Observation {
 public:
   Observation( Vorn::Entity & entity, SourcePtr const & source, py::object callback, bool below );
   ~Observation();
   Observation( Observation const & ) = delete;
   Observation & operator=( Observation const & ) = delete;

   void stop();
   bool active() const { return bool( callback_ ); }
   PyObject * callback() const { return callback_.ptr(); }

 private:
   class Own;
   void tell( Vorn::Entity const & entity, Vorn::VornAttr const & attr, void const * key );

   std::weak_ptr< Source > source_;
   py::object callback_;
   // One of the two.
   std::unique_ptr< LdpTool::TreeWatcher > below_;
   std::unique_ptr< Own > own_;
};

py::object observe( Vorn::Entity & entity, SourcePtr const & source, py::handle callback, bool below );

void addObservation( py::module_ & module );

} // namespace LdpPython
