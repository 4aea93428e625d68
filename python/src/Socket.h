#pragma once

// Sockets that Python hands over.

#include <pybind11/pybind11.h>

namespace LdpPython {

namespace py = pybind11;

/// A connected socket: the object itself if it is one, the descriptor that a number is, or one that is
/// connected to the Unix socket of that path. Whoever holds `object` holds the socket.
struct Socket {
   explicit Socket( py::object const & given );

   py::object object;
   int descriptor;
};

/// Waits until something can be received or, for POLLOUT, sent. The interpreter's lock is free meanwhile.
/// False if nothing could be done within so many seconds; below zero is for ever.
bool wait( int descriptor, short events, double seconds );

} // namespace LdpPython
