#pragma once

// The parts of the module that nothing else needs.

#include <pybind11/pybind11.h>

namespace LdpPython {

namespace py = pybind11;

void addRing( py::module_ & module );
void addRecords( py::module_ & module );

} // namespace LdpPython
