#pragma once

// A copy of another process's objects, which follows them by the attribute log.

#include "Socket.h"
#include "Source.h"

#include "Vorn/NboAttrLog.h"

namespace LdpPython {

class Replica {
 public:
   /// Throws where the object is no socket, file descriptor or path of a Unix socket.
   explicit Replica( py::object const & from ) : socket_( from ) {}
   ~Replica() { source_->stopAll(); }

   SourcePtr const & source() const { return source_; }
   std::vector< Vorn::Ptr< Vorn::Entity > > const & roots() const { return demuxer_->roots(); }
   U64 records() const { return demuxer_->records(); }

   /// Takes what has come, after waiting for so many seconds at most; below zero is for ever. False once the
   /// other end has closed. Throws AttrLogRecordException, and OSError.
   bool poll( double seconds );

 private:
   void take( std::size_t bytes );

   Socket const socket_;
   SourcePtr const source_ = std::make_shared< Source >();
   Vorn::Ptr< Vorn::NboAttrLog::Demuxer > const demuxer_ =
        Vorn::newObject< Vorn::NboAttrLog::Demuxer >( Vorn::newObject< Vorn::NboAttrLog::Out >() );
   bool open_ = true;
   char octets_[64 * 1024];
};

void addReplica( py::module_ & module );

} // namespace LdpPython
