// The extension _ldp: what the package ldp is made of.
#include "Module.h"

#include "Collections.h"
#include "Entities.h"
#include "Errors.h"
#include "Messages.h"
#include "Observe.h"
#include "Replica.h"
#include "Watch.h"

#include "Ldp/Version.h"

PYBIND11_MODULE( _ldp, module ) {
   using namespace LdpPython;
   // Threads of Python decode at the same time.
   Vorn::VFPtrInterface::threadSafePointers_ = true;
   module.attr( "__name__" ) = "ldp"; // where people find what is made here
   addErrors( module );
   addRecords( module );
   addCollections( module );
   addObservation( module );
   addMessages( module );
   addWatch( module );
   addReplica( module );
   addRing( module );
   module.def( "define_types",
               []( py::module_ const & into, py::dict const & texts ) { defineTypes( into, texts ); } );
   module.attr( "__version__" ) = LDP_VERSION;
   module.attr( "__name__" ) = "_ldp";
}
