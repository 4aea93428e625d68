// A stream that `ldptool log` is given: cut into records, each told as a line.
//
// The first octet says in which pieces the stream comes, which must make no difference; and what the
// library's own reader takes, the lines must be able to tell.
#include "log/RecordText.h"

#include <cstdlib>

namespace {

using namespace LdpTool;
namespace NboAttrLog = Vorn::NboAttrLog;

struct Told {
   std::string text;
   bool good = true; ///< each record
};

Told told( std::string_view stream, std::size_t piece ) {
   Told all;
   RecordText records;
   Output out( all.text );
   LogStream cut( [&]( LogRecord const & record ) {
      if ( record.offset ) all.good &= records.print( out, record );
   } );
   try {
      for ( ; !stream.empty(); stream.remove_prefix( std::min( piece, stream.size() ) ) )
         cut.octetsIs( stream.substr( 0, piece ) );
      cut.endIs();
   } catch ( LogError const & error ) {
      all.good = false;
      out << error.what();
   }
   out.flush();
   return all;
}

bool isTaken( std::string_view stream ) {
   auto const demuxer = Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
   try {
      demuxer->bytesIs( stream.data(), stream.size() );
   } catch ( Vorn::Exception const & ) {
      return false;
   }
   return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   if ( size < 1 ) return 0;
   std::string_view const stream( reinterpret_cast< char const * >( data + 1 ), size - 1 );
   Told const whole = told( stream, std::max< std::size_t >( stream.size(), 1 ) );
   if ( told( stream, 1 + data[0] ).text != whole.text ) std::abort();
   bool const ends = whole.text.find( "the stream " ) == whole.text.npos; // the library waits for the rest
   if ( ends && !whole.good && isTaken( stream ) ) std::abort();
   return 0;
}
