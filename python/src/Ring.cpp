// ring(): the records of a ring trace, one after the other.
#include "Errors.h"
#include "Module.h"
#include "Values.h"

#include "ring/RingReader.h"

#include <pybind11/stl/filesystem.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace LdpPython {

using LdpTool::RingReader;
using LdpTool::RingRecord;

namespace {

class Ring {
 public:
   explicit Ring( std::string octets, std::string name )
        : reader_( std::move( octets ) ), name_( std::move( name ) ) {}

   RingReader const & reader() const { return reader_; }

   py::dict next() {
      static constexpr char const * kinds[] = { "message", "open", "close" };
      RingRecord record;
      if ( !reader_.next( record ) ) {
         if ( U32 const damaged = std::exchange( untold_, false ) ? reader_.damaged() : 0 )
            warn( name_ + ": left out what could not be read in " + std::to_string( damaged ) + " place(s)" );
         throw py::stop_iteration();
      }
      py::dict row;
      row["nanoseconds"] = record.nanoseconds;
      row["timed"] = record.timed;
      row["kind"] = kinds[record.kind];
      row["thread"] = record.writer;
      row["depth"] = record.depth;
      row["file"] = textOf( record.site->file );
      row["line"] = record.site->line;
      row["function"] = textOf( record.site->function );
      row["level"] = record.site->level;
      row["text"] = textOf( record.text );
      if ( record.took ) row[record.exact ? "took" : "tookAtMost"] = record.took;
      return row;
   }

 private:
   RingReader reader_;
   std::string const name_;
   bool untold_ = true; ///< what could not be read
};

std::unique_ptr< Ring > ringOf( std::filesystem::path const & path ) {
   constexpr std::uintmax_t most = std::uintmax_t( 1 ) << 32; // no ring is made larger
   std::error_code error;
   std::uintmax_t const size = std::filesystem::file_size( path, error );
   std::ifstream file( path, std::ios::binary );
   if ( error || !file ) {
      errno = error ? error.value() : errno;
      PyErr_SetFromErrnoWithFilename( PyExc_OSError, path.c_str() );
      throw py::error_already_set();
   }
   try {
      if ( size > most ) throw LdpTool::RingError( "no ring trace" );
      std::string octets( std::istreambuf_iterator< char >( file ), {} );
      return std::make_unique< Ring >( std::move( octets ), path.string() );
   } catch ( LdpTool::RingError const & ringError ) {
      raise( errors.ringError, path.string() + ": " + ringError.what() );
   }
}

} // namespace

void addRing( py::module_ & module ) {
   py::class_< Ring >( module, "Ring", "The records of a ring trace, the oldest first." )
        .def_property_readonly(
             "process_id", []( Ring const & self ) { return self.reader().processId(); },
             "The process that has left it." )
        .def( "__iter__", []( py::object self ) { return self; } )
        .def( "__next__", &Ring::next );
   module.def( "ring", ringOf, py::arg( "path" ), py::pos_only(),
               "An iterator over the records of a ring trace file, as dicts: nanoseconds since 1970, and the "
               "members\n"
               "of `ldptool ring --json`. RingError: the file is none." );
}

} // namespace LdpPython
