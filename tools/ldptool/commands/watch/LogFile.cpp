// The attribute log in a file.
#include "commands/watch/LogFile.h"

#include "text/Output.h"

#include <cerrno>
#include <cstring>

namespace LdpTool {

LogFile::LogFile( Network & network, std::string const & name )
     : name_( name ), file_( name == "-" ? stdout : std::fopen( name.c_str(), "wbe" ) ) {
   if ( !file_ ) throw OutputError( name + ": " + std::strerror( errno ) );
   network.vornNboAttrLogSaIs( 0, 0, out_ );
}

LogFile::~LogFile() {
   if ( file_ != stdout ) std::fclose( file_ );
}

void LogFile::flush() {
   while ( auto const bytes = out_->bytes() ) {
      if ( std::fwrite( out_->data(), 1, bytes, file_ ) != bytes ) break;
      out_->drained( bytes );
   }
   if ( std::fflush( file_ ) != 0 || std::ferror( file_ ) )
      throw OutputError( name_ + ": " + std::strerror( errno ) );
}

} // namespace LdpTool
