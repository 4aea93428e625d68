#pragma once

// Reads pcapng files (draft-ietf-opsawg-pcapng). libpcap reads them too, but does not say on which interface
// a packet was taken, and that is what tells one link from another.

#include "capture/Flow.h"
#include "capture/PduSink.h"

#include <cstdio>
#include <set>
#include <string>
#include <vector>

namespace LdpTool {

/// Takes the next packet of a file, one after the other. Not an octet of the file is trusted.
class PcapngReader {
 public:
   struct Packet {
      Octets octets; ///< valid until the next call
      std::int64_t seconds = 0;
      std::uint32_t nanoseconds = 0;
      int linkType = 0; ///< a `DLT_` value
      std::string const * interface =
           nullptr; ///< its name; null if the file has one interface without a name
   };

   /// The first octets of every pcapng file.
   static constexpr unsigned char firstOctet = 0x0a;

   /// Reads from the stream, which stays the caller's.
   explicit PcapngReader( std::FILE * file ) : file_( file ) {}

   /// The next packet; false at the end of the file. Throws InputError for what is not pcapng.
   bool next( Packet & packet );

 private:
   struct Interface {
      int linkType = 0;
      std::string const * name = nullptr;
      std::uint32_t snapLength = 0;
      std::uint64_t unitsPerSecond = 1000000;
      std::int64_t offset = 0; ///< seconds
   };
   struct Option {
      std::uint16_t code;
      Octets value;
   };

   [[noreturn]] static void fail( std::string const & why );
   bool take( void * to, std::size_t bytes );
   bool readBlock();
   void readSection();
   void readInterface();
   bool readPacket( Packet & packet );
   bool fill( Packet & packet, std::size_t interface, std::uint64_t units, Octets octets );
   std::string const * nameOf( std::string const & name );
   bool nextOption( Octets & rest, Option & option ) const;
   std::uint16_t u16( Octets at ) const;
   std::uint32_t u32( Octets at ) const;
   std::uint64_t u64( Octets at ) const;

   std::FILE * file_;
   bool swapped_ = false; ///< the section's byte order is not this machine's
   bool inSection_ = false;
   std::uint32_t type_ = 0;              ///< of the block in hand
   std::vector< std::uint8_t > body_;    ///< of the block in hand
   std::vector< Interface > interfaces_; ///< of the section in hand
   std::set< std::string > names_;       ///< of all sections; packets refer to them
};

} // namespace LdpTool
