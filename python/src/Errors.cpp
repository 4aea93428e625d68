// The exceptions of the module, and what becomes of those of the library.
#include "Errors.h"

#include "capture/PduSink.h"
#include "ring/RingReader.h"

#include "Vorn/Exception.h"

namespace LdpPython {

Errors errors;

namespace {

PyObject * add( py::module_ & module, char const * name, char const * doc, py::object const & bases ) {
   std::string const fullName = std::string( "ldp." ) + name;
   PyObject * const type = PyErr_NewExceptionWithDoc( fullName.c_str(), doc, bases.ptr(), nullptr );
   if ( !type ) throw py::error_already_set();
   module.attr( name ) = py::handle( type );
   return type;
}

} // namespace

void addErrors( py::module_ & module ) {
   auto const below = []( PyObject * base ) { return py::reinterpret_borrow< py::object >( base ); };
   errors.error = add( module, "Error", "Base of all errors of this module.", below( PyExc_Exception ) );
   py::object const error = below( errors.error );
   errors.captureError = add( module, "CaptureError",
                              "A capture cannot be opened, or is damaged; the text says which and where.",
                              py::make_tuple( error, below( PyExc_OSError ) ) );
   errors.decodeError =
        add( module, "DecodeError",
             "Octets that are no good LDP.\n\nstatus: the status code to answer with. reason: what "
             "is wrong. offset: where in the octets.\nmessage: all that is known, as decode() has it "
             "when it is not strict.",
             error );
   errors.ringError = add( module, "RingError", "A file is no ring trace.", error );
   errors.logError = add( module, "LogError",
                          "An attribute log that cannot be. What stood before it was applied.", error );
   errors.captureWarning = add( module, "CaptureWarning", "Something of a capture was not seen or not kept.",
                                below( PyExc_UserWarning ) );
   py::register_exception_translator( []( std::exception_ptr thrown ) {
      try {
         std::rethrow_exception( thrown );
      } catch ( LdpTool::InputError const & e ) {
         PyErr_SetString( errors.captureError, e.what() );
      } catch ( LdpTool::RingError const & e ) {
         PyErr_SetString( errors.ringError, e.what() );
      } catch ( Vorn::AttrLogRecordException const & e ) {
         PyErr_SetString( errors.logError, e.what() );
      } catch ( Vorn::Exception const & e ) {
         PyErr_SetString( errors.error, e.what() );
      }
   } );
}

void raise( PyObject * type, std::string const & text ) {
   PyErr_SetString( type, text.c_str() );
   throw py::error_already_set();
}

void warn( std::string const & text ) {
   if ( PyErr_WarnEx( errors.captureWarning, text.c_str(), 1 ) < 0 ) throw py::error_already_set();
}

} // namespace LdpPython
