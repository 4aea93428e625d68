#pragma once

// A second process that holds a copy of the network, fed by the attribute log alone.

#include "monitor/speaker/Network.h"

#include "Vorn/NboAttrLog.h"

#include <string>
#include <sys/types.h>

namespace LdpTool {

class Replica {
 public:
   /// Starts the process and attaches the network to a log on a socket to it. Throws InputError when the
   /// system has no room for either.
   explicit Replica( Network & network );
   ~Replica();
   Replica( Replica const & ) = delete;
   Replica & operator=( Replica const & ) = delete;

   /// Sends what the log holds.
   void flush();
   /// Sends the rest, closes the log, waits for the process, and returns the copy as it prints it: as text,
   /// or as JSON.
   std::string finish( bool json );
   /// The copy's logged attributes as JSON text; after `finish`.
   std::string const & logged() const { return logged_; }

 private:
   [[noreturn]] static void run( int socket );
   void sendAll( void const * octets, std::size_t bytes );
   std::string receive();
   /// The first thing that it says: nothing, or why it failed, which throws.
   void receiveVerdict();

   Vorn::Ptr< Vorn::NboAttrLog::Out > out_;
   pid_t pid_ = -1;
   int socket_ = -1;
   std::string logged_;
};

/// Where two networks' logged attributes differ, as a path; empty if nowhere. The second is JSON text.
std::string firstDifference( Network const & network, std::string const & logged );

} // namespace LdpTool
