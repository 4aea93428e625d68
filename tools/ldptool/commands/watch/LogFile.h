#pragma once

// The attribute log of the network in a file.

#include "monitor/speaker/Network.h"

#include "Vorn/NboAttrLog.h"

#include <cstdio>
#include <string>

namespace LdpTool {

class LogFile {
 public:
   /// Makes the file; a minus is standard output. Throws OutputError, as all of it does where the file cannot
   /// be written.
   LogFile( Network & network, std::string const & name );
   ~LogFile();
   LogFile( LogFile const & ) = delete;
   LogFile & operator=( LogFile const & ) = delete;

   /// Writes what has changed.
   void flush();

 private:
   std::string name_;
   std::FILE * file_;
   Vorn::Ptr< Vorn::NboAttrLog::Out > out_ = Vorn::newObject< Vorn::NboAttrLog::Out >();
};

} // namespace LdpTool
