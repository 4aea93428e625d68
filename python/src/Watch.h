#pragma once

// The state of the speakers in a capture, as live objects.

#include "Messages.h"

#include "monitor/Monitor.h"

#include "Vorn/NboAttrLog.h"

namespace LdpPython {

/// Sends the attribute log of a tree to a socket of somebody else.
class Publication {
 public:
   /// Throws where the object is no socket, file descriptor or path of a Unix socket.
   Publication( Vorn::Entity & root, py::object const & to );

   /// Sends what has changed. Waits, without the interpreter's lock, where the other end is slow; throws
   /// OSError where it is gone.
   void flush();

 private:
   py::object socket_;
   int descriptor_;
   Vorn::Ptr< Vorn::NboAttrLog::Out > out_;
};

class Watch {
 public:
   /// Opens the file. Throws InputError.
   Watch( std::string const & path, LdpTool::CaptureRange range );
   ~Watch() { source_->stopAll(); }

   SourcePtr const & source() const { return source_; }
   LdpTool::Network & network() const { return *network_; }
   LdpTool::Journal const & journal() const { return monitor_.journal(); }

   /// Reads all that is left.
   void run();
   /// Reads on until a packet has shown something; false when there are no more.
   bool step();
   void publish( py::object const & to );

 private:
   void read( int packets );

   std::string const path_;
   SourcePtr const source_ = std::make_shared< Source >();
   Vorn::Ptr< LdpTool::Network > const network_ = LdpTool::networkFactory( Vorn::Name( "network" ) );
   LdpTool::Monitor monitor_{ *network_ };
   QuietDecoder decoder_{ monitor_, {} };
   LdpTool::Capture capture_;
   std::vector< std::unique_ptr< Publication > > publications_;
   bool more_ = true;
};

void addWatch( py::module_ & module );

} // namespace LdpPython
