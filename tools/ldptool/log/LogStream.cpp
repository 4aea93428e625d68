// The framing of the attribute log.
#include "log/LogStream.h"

#include "Vorn/NboAttrLog.h"

#include <algorithm>

namespace LdpTool {

namespace NboAttrLog = Vorn::NboAttrLog;
using Out = Vorn::Connection::Out;

namespace {

constexpr std::size_t lengthBytes = 4;

std::uint32_t wordAt( std::string_view octets, std::size_t at ) {
   std::uint32_t word = 0;
   for ( char const octet : octets.substr( at, 4 ) )
      word = word << 8 | std::uint8_t( octet );
   return word;
}

} // namespace

/// Octets of the unit that begins here, as far as they tell: the header, or a record.
std::size_t LogStream::wanted( std::string_view octets ) const {
   if ( offset_ == 0 ) return NboAttrLog::streamHeaderBytes;
   if ( octets.size() < lengthBytes ) return lengthBytes;
   std::uint32_t const length = wordAt( octets, 0 );
   if ( length <= Out::recordHeadBytes || length > Out::maxRecordBytes )
      throw LogError( "a record cannot have a length of " + std::to_string( length ) );
   return lengthBytes + length;
}

void LogStream::unitIs( std::string_view octets ) {
   if ( offset_ == 0 ) {
      std::string header( NboAttrLog::streamMagic, sizeof NboAttrLog::streamMagic );
      if ( octets.substr( 0, header.size() ) != header ) throw LogError( "this is no attribute log" );
      if ( wordAt( octets, 4 ) != std::uint32_t( NboAttrLog::streamVersion ) << 16 )
         throw LogError( "this is an attribute log of another version" );
      return onRecord_( { 0, 0, 0, 0, {}, octets } );
   }
   constexpr std::size_t headBytes = lengthBytes + Out::recordHeadBytes;
   LogRecord const record{ offset_,
                           std::uint8_t( octets[lengthBytes] ),
                           wordAt( octets, 5 ),
                           wordAt( octets, 9 ),
                           octets.substr( headBytes, octets.size() - headBytes - 1 ),
                           octets };
   if ( octets[headBytes - 1] != Out::beginToken || octets.back() != Out::endToken )
      throw LogError( "a record's value does not stand between its tokens" );
   onRecord_( record );
}

/// Hands on the whole units and returns their octets.
std::size_t LogStream::unitsOf( std::string_view octets ) {
   std::size_t taken = 0;
   for ( ;; ) {
      std::string_view const left = octets.substr( taken );
      std::size_t const want = wanted( left );
      if ( left.size() < want || ( offset_ && want == lengthBytes ) ) return taken;
      unitIs( left.substr( 0, want ) );
      taken += want;
      offset_ += want;
   }
}

void LogStream::octetsIs( std::string_view octets ) {
   while ( !octets.empty() ) {
      if ( part_.empty() ) {
         part_ = octets.substr( unitsOf( octets ) );
         return;
      }
      // Completes what began in an earlier piece, first its length.
      std::size_t const more = std::min( octets.size(), wanted( part_ ) - part_.size() );
      part_ += octets.substr( 0, more );
      octets.remove_prefix( more );
      if ( unitsOf( part_ ) ) part_.clear();
   }
}

void LogStream::endIs() const {
   if ( offset_ == 0 )
      throw LogError( part_.empty() ? "the stream is empty" : "the stream ends within its header" );
   if ( !part_.empty() ) throw LogError( "the stream ends within a record" );
}

} // namespace LdpTool
