// Replica: a copy of another process's objects, by the attribute log.
#include "Replica.h"

#include "Entities.h"
#include "Errors.h"
#include "Observe.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>

namespace LdpPython {

Socket::Socket( py::object const & given ) {
   py::module_ const socket = py::module_::import( "socket" );
   if ( py::isinstance< py::int_ >( given ) || py::isinstance( given, socket.attr( "socket" ) ) ) {
      object = given;
   } else {
      object = socket.attr( "socket" )( socket.attr( "AF_UNIX" ), socket.attr( "SOCK_STREAM" ) );
      object.attr( "connect" )( py::module_::import( "os" ).attr( "fspath" )( given ) );
   }
   descriptor = PyObject_AsFileDescriptor( object.ptr() );
   if ( descriptor < 0 ) throw py::error_already_set();
}

bool wait( int descriptor, short events, double seconds ) {
   constexpr double longest = 1e6;
   int const milliseconds = seconds < 0 ? -1 : int( std::min( seconds, longest ) * 1000 );
   pollfd which{ descriptor, events, 0 };
   for ( ;; ) {
      int ready;
      {
         py::gil_scoped_release const unlocked;
         ready = ::poll( &which, 1, milliseconds );
      }
      if ( ready >= 0 ) return ready > 0;
      if ( errno != EINTR ) {
         PyErr_SetFromErrno( PyExc_OSError );
         throw py::error_already_set();
      }
      if ( PyErr_CheckSignals() < 0 ) throw py::error_already_set();
   }
}

bool Replica::poll( double seconds ) {
   constexpr int mostAtOnce = 16; // or a busy other end would keep it
   for ( int i = 0; i < mostAtOnce && open_ && wait( socket_.descriptor, POLLIN, i ? 0 : seconds ); ++i ) {
      ssize_t const bytes = ::recv( socket_.descriptor, octets_, sizeof octets_, MSG_DONTWAIT );
      if ( bytes > 0 ) {
         take( std::size_t( bytes ) );
      } else if ( bytes == 0 || ( errno != EINTR && errno != EAGAIN ) ) {
         open_ = false;
         if ( bytes == 0 ) break;
         PyErr_SetFromErrno( PyExc_OSError );
         throw py::error_already_set();
      }
   }
   return open_;
}

void Replica::take( std::size_t bytes ) {
   try {
      write( *source_, [&] { demuxer_->bytesIs( octets_, bytes ); } );
   } catch ( Vorn::Exception const & ) {
      open_ = false;
      throw;
   }
}

void addReplica( py::module_ & module ) {
   py::class_< Replica >(
        module, "Replica", collected< Replica >(),
        "A copy of the objects of another process, which follows them by the attribute log." )
        .def( py::init< py::object >(), py::arg( "socket" ),
              "socket: a connected socket, a file descriptor, or the path of a Unix socket to connect to." )
        .def_property_readonly(
             "roots",
             []( Replica const & self ) {
                py::list all;
                for ( auto const & root : self.roots() )
                   all.append( wrap( root.ptr(), self.source() ) );
                return all;
             },
             "The objects that the other process has attached, in its order." )
        .def_property_readonly(
             "root",
             []( Replica const & self ) -> py::object {
                if ( self.roots().empty() ) return py::none();
                return wrap( self.roots().front().ptr(), self.source() );
             },
             "The first of them; None before it has come." )
        .def_property_readonly( "records", &Replica::records, "Records of the log that were applied." )
        .def( "poll", &Replica::poll, py::arg( "timeout" ) = 0.0,
              "Take what has come, after waiting for at most so many seconds. False once the other end has "
              "closed.\n"
              "LogError: what came is no attribute log; the copy stays as it was before that." )
        .def(
             "run",
             []( py::object self ) {
                while ( self.cast< Replica & >().poll( -1 ) ) {}
                return self;
             },
             "Follow until the other end closes. Gives the replica itself." );
}

} // namespace LdpPython
