#pragma once

// The exceptions of the module.

#include <pybind11/pybind11.h>

#include <string>

namespace LdpPython {

namespace py = pybind11;

struct Errors {
   PyObject * error;          ///< base of all
   PyObject * captureError;   ///< a capture cannot be opened, or is damaged; an OSError too
   PyObject * decodeError;    ///< octets that are no good LDP, with `status`, `reason`, `offset`, `message`
   PyObject * ringError;      ///< no ring trace
   PyObject * logError;       ///< an attribute log that cannot be
   PyObject * captureWarning; ///< something of a capture was not seen
};
/// They live as long as the process.
extern Errors errors;

void addErrors( py::module_ & module );

[[noreturn]] void raise( PyObject * type, std::string const & text );
/// Issues a CaptureWarning; throws where warnings are errors.
void warn( std::string const & text );

} // namespace LdpPython
