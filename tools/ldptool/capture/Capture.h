#pragma once

// A capture, from a file or from an interface, as a source of PDUs: packets by libpcap, IP fragments put
// together by libtins, TCP by Streams, each UDP datagram walked from its first PDU on.

#include "capture/Link.h"
#include "capture/PduSink.h"
#include "capture/Streams.h"

#include <tins/ip_reassembler.h>

#include <memory>
#include <string>

struct pcap;
struct pcap_pkthdr;

namespace LdpTool {

struct CaptureCounters {
   std::uint64_t packets = 0;
   std::uint64_t ldpPackets = 0;
   std::uint64_t truncated = 0; ///< cut off by the capture inside a header or datagram
   std::uint64_t fragments = 0;
   std::uint64_t reassembled = 0; ///< IP packets put together from fragments
   std::uint64_t repeatedOctets = 0;
};

class Capture {
 public:
   /// Open a file ("-" for standard input). Throws InputError.
   static Capture file( std::string const & name );
   /// Listen on an interface. Throws InputError.
   static Capture interface( std::string const & name );

   /// Deliver every PDU to `sink`. Returns at the end of the file, or once `stop` was called.
   /// Throws InputError when the file turns out damaged; what stands before the damage has been delivered by
   /// then.
   void run( PduSink & sink );

   /// End `run` from within a signal handler, or from within the sink.
   void stop();

   CaptureCounters const & counters() const { return counters_; }

 private:
   struct PcapCloser {
      void operator()( pcap * handle ) const;
   };
   using Handle = std::unique_ptr< pcap, PcapCloser >;

   Capture( Handle handle, std::string name, bool live );
   void onPacket( pcap_pkthdr const & header, std::uint8_t const * octets );
   void onFragment( Octets ipPacket, Arrival const & arrival );
   void onSegment( Segment const & segment, Arrival const & arrival );
   void onDatagram( Segment const & segment, Arrival const & arrival );

   Handle handle_;
   std::string name_;
   bool live_;
   int linkType_;
   PduSink * sink_ = nullptr;
   std::unique_ptr< Streams > streams_;
   AnyLengthStream datagrams_;
   Tins::IPv4Reassembler reassembler_;
   std::size_t fragmentOctets_ = 0; ///< handed to the reassembler since it was last emptied
   CaptureCounters counters_;
};

} // namespace LdpTool
