// decode() and read().
#include "Messages.h"

#include "Errors.h"
#include "Values.h"

#include <pybind11/stl/filesystem.h>

namespace LdpPython {

using namespace LdpTool;

namespace {

/// As much as is decoded before it is played.
constexpr std::size_t tapeBytes = 1 << 20;

/// The PDUs of octets, until the tape is full.
class OctetsDecoder {
 public:
   OctetsDecoder( Octets octets, bool texts ) : octets_( octets ), left_( octets ), reporter_( texts ) {}

   TapeReporter const & reporter() const { return reporter_; }

   bool decode( Tape & tape ) {
      reporter_.tapeIs( tape );
      while ( tape.bytes() < tapeBytes ) {
         Octets const before = left_;
         Ldp::LdpPdu pdu = stream_.next( left_ );
         if ( !pdu ) {
            Octets const rest = stream_.held();
            if ( rest.empty() ) return false;
            std::vector< U8 > const held( rest.begin(), rest.end() ); // what is judged is not whole
            AnyLengthStream last;
            tell( last.datagram( held ), octets_.size() - held.size() );
            return false;
         }
         tell( pdu, octets_.size() - before.size() );
      }
      return true;
   }

 private:
   void tell( Ldp::LdpPdu const & pdu, std::size_t offset ) {
      Origin origin;
      origin.arrival.frame = offset;
      origin.unit = "offset";
      decoder_.onPdu( origin, pdu );
   }

   Octets const octets_;
   Octets left_;
   AnyLengthStream stream_;
   TapeReporter reporter_;
   QuietDecoder decoder_{ reporter_, {} };
};

[[noreturn]] void raiseDefect( TapeReporter::Defect const & defect, py::object const & message ) {
   py::object const status = enumeratorOf( *Vorn::recordOf< Ldp::LdpStatusCode >(), defect.status );
   py::object const reason = textOf( defect.reason );
   std::string const text = std::string( py::str( status ) ) + ": " + std::string( py::str( reason ) ) +
                            ", at offset " + std::to_string( defect.offset );
   py::object const error = py::handle( errors.decodeError )( text );
   error.attr( "status" ) = status;
   error.attr( "reason" ) = reason;
   error.attr( "offset" ) = defect.offset;
   error.attr( "message" ) = message;
   PyErr_SetObject( errors.decodeError, error.ptr() );
   throw py::error_already_set();
}

bool isBad( py::dict const & message ) { return message.contains( "fault" ); }

py::list decode( py::buffer const & given, bool strict, bool texts ) {
   // A bytes object stays as it is; of anything else that another thread may write to, a copy does.
   py::bytes const octets = py::isinstance< py::bytes >( given )
                                 ? py::reinterpret_borrow< py::bytes >( given )
                                 : py::reinterpret_steal< py::bytes >( PyBytes_FromObject( given.ptr() ) );
   if ( !octets ) throw py::error_already_set();
   std::string_view const view = octets;
   OctetsDecoder decoder( { reinterpret_cast< U8 const * >( view.data() ), view.size() }, texts );
   py::list messages;
   Player player;
   for ( bool more = true; more; ) {
      Tape & tape = player.rewound();
      {
         py::gil_scoped_release const unlocked;
         more = decoder.decode( tape );
      }
      while ( !player.atEnd() ) {
         py::dict const message = player.next();
         if ( strict && isBad( message ) ) raiseDefect( decoder.reporter().defect(), message );
         messages.append( message );
      }
   }
   return messages;
}

std::set< std::uint32_t > typesOf( py::iterable const & names ) {
   Vorn::VornType const & type = *Vorn::recordOf< Ldp::LdpMsgType >();
   std::set< std::uint32_t > types;
   for ( py::handle name : names ) {
      if ( py::isinstance< py::int_ >( name ) ) {
         types.insert( name.cast< std::uint32_t >() );
         continue;
      }
      auto const * const row = type.attribute( name.cast< std::string >().c_str() );
      if ( !row ) throw py::value_error( "no type of messages: " + name.cast< std::string >() );
      types.insert( row->id() );
   }
   return types;
}

std::unique_ptr< Reader > read( std::filesystem::path const & path, bool texts, py::iterable const & types,
                                std::string const & filter, bool badOnly ) {
   Selection selection;
   selection.types = typesOf( types );
   selection.badOnly = badOnly;
   CaptureRange range;
   range.filter = filter;
   if ( std::string const error = Capture::filterError( filter ); !error.empty() )
      throw py::value_error( "filter: " + error );
   return std::make_unique< Reader >( path.string(), range, std::move( selection ), texts );
}

} // namespace

void QuietDecoder::onWarning( Origin const & origin, std::string const & text ) {
   if ( warnings_.size() == mostWarnings ) {
      ++more_;
   } else {
      warnings_.push_back( "frame " + std::to_string( origin.arrival.frame ) + ": " + originText( origin ) +
                           ": " + text );
   }
}

void QuietDecoder::warnNow( std::string const & name ) {
   std::vector< std::string > const warnings = std::exchange( warnings_, {} );
   std::uint64_t const more = std::exchange( more_, 0 );
   for ( std::string const & text : warnings )
      warn( name + ": " + text );
   if ( more ) warn( name + ": " + std::to_string( more ) + " more warnings" );
}

Reader::Reader( std::string const & path, CaptureRange range, Selection selection, bool texts )
     : path_( path ), reporter_( texts ), decoder_( reporter_, std::move( selection ) ),
       capture_( Capture::file( path ) ) {
   capture_.begin( decoder_, range );
}

py::dict Reader::next() {
   Busy const reading( busy_ );
   constexpr int packetsAtOnce = 16;
   while ( player_.atEnd() && more_ ) {
      Tape & tape = player_.rewound();
      {
         py::gil_scoped_release const unlocked;
         reporter_.tapeIs( tape );
         try {
            while ( more_ && tape.bytes() < tapeBytes )
               more_ = capture_.read( packetsAtOnce );
         } catch ( InputError const & ) {
            more_ = false;
            failure_ = std::current_exception(); // what was read before it counts
         }
      }
      decoder_.warnNow( path_ );
   }
   if ( !player_.atEnd() ) return player_.next();
   if ( failure_ ) std::rethrow_exception( std::exchange( failure_, nullptr ) );
   throw py::stop_iteration();
}

void addMessages( py::module_ & module ) {
   module.def(
        "decode", decode, py::arg( "octets" ), py::pos_only(), py::kw_only(), py::arg( "strict" ) = false,
        py::arg( "text" ) = false,
        "The LDP messages of octets: of one PDU or several, from a datagram or from TCP.\n\n"
        "Gives a list with a dict for each message, in the shape of `ldptool decode --json`; a PDU that\n"
        "is bad as a whole is one dict with valid False. strict: raise DecodeError for the first message\n"
        "or PDU that is refused. text: with the library's own text of each message." );
   py::class_< Reader >( module, "Reader", "The messages of a capture, one after the other." )
        .def( "__iter__", []( py::object self ) { return self; } )
        .def( "__next__", &Reader::next );
   module.def(
        "read", read, py::arg( "path" ), py::pos_only(), py::kw_only(), py::arg( "text" ) = false,
        py::arg( "types" ) = py::tuple(), py::arg( "filter" ) = "", py::arg( "bad" ) = false,
        "An iterator over the LDP messages of a capture: pcap or pcapng, also gzipped.\n\n"
        "Each is a dict as decode() gives it, with frame, time (seconds since 1970), src, dst, ports and\n"
        "protocol. types: only those types of messages, as in (\"LdpLabelMapping\",). filter: only such\n"
        "packets, in the language of pcap-filter(7). bad: only what is refused. What of a capture could\n"
        "not be read is told by CaptureWarning; CaptureError is raised where it is damaged." );
}

} // namespace LdpPython
