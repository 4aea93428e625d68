#pragma once

// The network for other processes: a Unix socket, and to each that connects the attribute log.

#include "commands/Interruptible.h"
#include "monitor/speaker/Network.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace LdpTool {

/// A reader costs its log's buffer and what its log keeps for each entity, however slowly it reads: what
/// finds no room is marked, and goes out with the value that it has then (see Vorn/NboAttrLog.h). What a
/// reader sends is passed over.
class Publisher {
 public:
   static constexpr std::size_t mostReaders = 16;

   /// Listens at the path, for processes of the same user only. A socket where nobody listens is replaced,
   /// anything else that stands there throws InputError, and so does what the system refuses.
   Publisher( Network & network, std::string const & path );
   /// Closes all and takes the path away again.
   ~Publisher();
   Publisher( Publisher const & ) = delete;
   Publisher & operator=( Publisher const & ) = delete;

   /// Takes in whoever asks, and sends each reader as much as it takes. Does not wait.
   void serve();
   /// The same until the command is interrupted.
   void serveUntil( Interruptible const & ending );
   /// Gives the readers a moment to take the rest.
   void finish();

 private:
   class Reader;

   void listenAt( std::string const & path );
   std::vector< pollfd > descriptors() const;
   void turn( std::vector< pollfd > const & ready );
   void accept();

   Network & network_;
   std::string path_;
   int socket_ = -1;
   dev_t device_ = 0; // where the socket stands, so that nobody else's is taken away
   ino_t node_ = 0;
   std::vector< std::unique_ptr< Reader > > readers_;
};

} // namespace LdpTool
