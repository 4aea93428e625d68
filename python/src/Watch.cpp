// watch(): the monitor of ldptool, its objects and its history.
#include "Watch.h"

#include "Entities.h"
#include "Errors.h"
#include "Observe.h"
#include "Socket.h"
#include "Values.h"

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>

namespace LdpPython {

using namespace LdpTool;

namespace {

py::object identifierOf( Ldp::LdpIdentifier const & id ) {
   return toPython( Ldp::LdpIdentifier::_vornType, &id, nullptr );
}

double timeOf( Arrival const & at ) { return double( at.seconds ) + double( at.nanoseconds ) * 1e-9; }

py::list historyOf( Watch const & watch ) {
   py::list changes;
   for ( Change const & change : watch.journal().changes() ) {
      py::dict row;
      row["time"] = timeOf( change.at );
      row["frame"] = change.at.frame;
      row["speaker"] = identifierOf( change.speaker );
      row["peer"] = identifierOf( change.peer );
      row["what"] = textOf( change.subject );
      row["from"] = change.from == "-" ? py::object( py::none() ) : textOf( change.from );
      row["to"] = change.to == "-" ? py::object( py::none() ) : textOf( change.to );
      row["cause"] = textOf( change.cause );
      changes.append( row );
   }
   return changes;
}

} // namespace

Publication::Publication( Vorn::Entity & root, py::object const & to )
     : out_( Vorn::newObject< Vorn::NboAttrLog::Out >() ) {
   Socket const socket( to );
   socket_ = socket.object;
   descriptor_ = socket.descriptor;
   root.vornNboAttrLogSaIs( 0, 0, out_ );
}

void Publication::flush() {
   while ( std::size_t const bytes = out_->bytes() ) {
      ssize_t const sent = ::send( descriptor_, out_->data(), bytes, MSG_NOSIGNAL | MSG_DONTWAIT );
      if ( sent >= 0 ) {
         out_->drained( std::size_t( sent ) );
      } else if ( errno == EAGAIN ) {
         wait( descriptor_, POLLOUT, -1 );
      } else if ( errno != EINTR ) {
         PyErr_SetFromErrno( PyExc_OSError );
         throw py::error_already_set();
      }
   }
}

Watch::Watch( std::string const & path, CaptureRange range )
     : path_( path ), capture_( Capture::file( path ) ) {
   capture_.begin( decoder_, range );
}

void Watch::read( int packets ) {
   std::exception_ptr failure; // what was read before it counts
   write( *source_, [&] {
      try {
         more_ = capture_.read( packets );
      } catch ( InputError const & ) {
         more_ = false;
         failure = std::current_exception();
      }
      if ( !more_ && capture_.endTime() ) monitor_.timeIs( *capture_.endTime() );
      for ( auto at = publications_.begin(); at != publications_.end(); ++at ) {
         try {
            ( *at )->flush();
         } catch ( ... ) { // nobody reads there any more
            publications_.erase( at );
            throw;
         }
      }
   } );
   decoder_.warnNow( path_ );
   if ( failure ) std::rethrow_exception( failure );
   if ( !more_ && monitor_.turnedAway() )
      warn( path_ + ": more speakers, adjacencies or FECs than are followed" );
}

void Watch::run() {
   constexpr int packetsAtOnce = 64;
   while ( more_ ) {
      read( packetsAtOnce );
      if ( PyErr_CheckSignals() < 0 ) throw py::error_already_set();
      py::gil_scoped_release const others; // who waits for the lock gets it
   }
}

bool Watch::step() {
   std::uint64_t const frame = journal().arrival().frame;
   while ( more_ && journal().arrival().frame == frame )
      read( 1 );
   return journal().arrival().frame != frame;
}

void Watch::publish( py::object const & to ) {
   auto made = std::make_unique< Publication >( *network_, to );
   write( *source_, [&] { made->flush(); } );
   publications_.push_back( std::move( made ) );
}

void addWatch( py::module_ & module ) {
   py::class_< Watch >( module, "Watch", collected< Watch >(), "The state of the speakers in a capture." )
        .def_property_readonly(
             "root", []( Watch const & self ) { return wrap( &self.network(), self.source() ); },
             "All speakers: the object that owns all others." )
        .def_property_readonly(
             "time", []( Watch const & self ) { return self.journal().now(); },
             "When the packet came that was read last, in seconds since 1970." )
        .def_property_readonly(
             "frame", []( Watch const & self ) { return self.journal().arrival().frame; },
             "Its number, from 1." )
        .def_property_readonly(
             "history", historyOf,
             "Each change of a session or adjacency so far, as a list of dicts: time, frame,\n"
             "speaker, peer, what, from, to, cause." )
        .def(
             "run",
             []( py::object self ) {
                self.cast< Watch & >().run();
                return self;
             },
             "Read all that is left. Gives the watch itself." )
        .def( "step", &Watch::step,
              "Read on to the next packet that shows something; False when there is none." )
        .def( "__iter__", []( py::object self ) { return self; } )
        .def( "__next__",
              []( Watch & self ) {
                 if ( !self.step() ) throw py::stop_iteration();
                 return self.journal().arrival().frame;
              } )
        .def(
             "observe",
             []( Watch & self, py::handle callback ) {
                return observe( self.network(), self.source(), callback, true );
             },
             py::arg( "callback" ),
             "Call callback(object, attribute, key) behind each change of any object. See Entity.observe." )
        .def( "publish", &Watch::publish, py::arg( "socket" ),
              "Send all of the state to a socket, a file descriptor or the path of a Unix socket, as an "
              "attribute\n"
              "log, and each change as it is read. A Replica at the other end follows." );
   module.def(
        "watch",
        []( std::filesystem::path const & path, std::optional< double > time,
            std::optional< std::uint64_t > frame, std::string const & filter ) {
           CaptureRange range;
           range.to.time = time;
           range.to.frame = frame;
           range.filter = filter;
           if ( std::string const error = Capture::filterError( filter ); !error.empty() )
              throw py::value_error( "filter: " + error );
           return std::make_unique< Watch >( path.string(), range );
        },
        py::arg( "path" ), py::pos_only(), py::kw_only(), py::arg( "time" ) = py::none(),
        py::arg( "frame" ) = py::none(), py::arg( "filter" ) = "",
        "The state of the speakers in a capture, of which nothing is read yet: run() reads all of it, step() "
        "or a\n"
        "loop over the watch goes packet by packet. time, in seconds since 1970, and frame: the last packet "
        "to read." );
}

} // namespace LdpPython
