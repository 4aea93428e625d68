#pragma once

// A capture, from a file or from an interface, as a source of PDUs: packets by libpcap, IP fragments put
// together by libtins, TCP by Streams, each UDP datagram walked from its first PDU on.

#include "capture/Limits.h"
#include "capture/Link.h"
#include "capture/Pcapng.h"
#include "capture/PduSink.h"
#include "capture/Streams.h"

#include <tins/ip_reassembler.h>

#include <csignal>
#include <exception>
#include <map>
#include <memory>
#include <string>

struct bpf_program;
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
   std::uint64_t straySegments = 0;  ///< of no connection that is under way: far from its sequence numbers
   std::uint64_t forgottenFlows = 0; ///< conversations given up for others, because there are too many
   std::uint64_t dropped = 0;        ///< by the system, which had no room for them
   std::uint64_t lostFragments = 0;  ///< given up before their fellows came, because there are too many
};

class Capture {
 public:
   /// Open a file ("-" for standard input). Throws InputError.
   static Capture file( std::string const & name, CaptureLimits const & limits = {} );
   /// Listen on an interface. Throws InputError.
   static Capture interface( std::string const & name, CaptureLimits const & limits = {} );

   /// What is wrong with an expression of pcap-filter(7); empty if it makes sense on some link.
   static std::string filterError( std::string const & expression );

   /// Deliver every PDU to `sink`. Returns at the end of the file, or once `stop` was called.
   /// Throws InputError when the file turns out damaged; what stands before the damage has been delivered by
   /// then.
   void run( PduSink & sink, CaptureRange const & range = {} );
   /// The same step by step, for whoever has other things to do in between: after `begin`, `read` delivers
   /// what some packets hold, at most so many, and says whether there may be more. It ends as `run` does.
   void begin( PduSink & sink, CaptureRange const & range = {} );
   bool read( int packets );
   /// The time up to which it was to be read, once that is known.
   std::optional< double > endTime() const { return range_.to.time; }

   /// End `run` from within a signal handler, or from within the sink.
   void stop();

   /// What has been counted up to now, the system's drops included.
   CaptureCounters const & counters();

 private:
   struct PcapCloser {
      void operator()( pcap * handle ) const;
   };
   using Handle = std::unique_ptr< pcap, PcapCloser >;
   struct ProgramFreer {
      void operator()( bpf_program * program ) const;
   };

   struct FileCloser {
      void operator()( std::FILE * file ) const { std::fclose( file ); }
   };
   using File = std::unique_ptr< std::FILE, FileCloser >;

   Capture( std::string name, CaptureLimits const & limits )
        : name_( std::move( name ) ), limits_( limits ) {}
   void handleIs( Handle handle );
   bool isWanted( Octets octets, Arrival const & arrival, int linkType );
   bool passes( Octets octets, int linkType );
   bool readPcap( int packets, std::string & failure );
   bool readPcapng( int packets, std::string & failure );
   std::FILE * stream() const;
   void finish();
   std::string const * interfaceOf( std::uint32_t index );
   void onPacket( Octets octets, Arrival const & arrival, int linkType, std::string const * interface );
   void onFragment( Octets ipPacket, Arrival const & arrival, Place const & place );
   void onSegment( Segment const & segment, Arrival const & arrival );
   void onDatagram( Segment const & segment, Arrival const & arrival );

   std::string name_;
   CaptureLimits limits_;
   File file_; // of a pcapng file
   std::unique_ptr< PcapngReader > pcapng_;
   Handle handle_; // of anything else
   bool live_ = false;
   int linkType_ = 0;
   std::string interface_;                             ///< that a live capture listens on
   std::map< std::uint32_t, std::string > interfaces_; ///< by the index that the link header has
   volatile std::sig_atomic_t stopped_ = 0;
   std::uint64_t otherLinkTypes_ = 0; ///< packets of links that cannot be read
   CaptureRange range_;
   std::map< int, std::unique_ptr< bpf_program, ProgramFreer > > filters_; ///< by link type
   bool started_ = false;
   std::exception_ptr thrown_; ///< by the sink, while libpcap is on the stack
   PduSink * sink_ = nullptr;
   std::unique_ptr< Streams > streams_;
   AnyLengthStream datagrams_;
   Tins::IPv4Reassembler reassembler_;
   // Handed to the reassembler since it was last emptied.
   std::size_t fragmentOctets_ = 0;
   std::uint64_t waitingFragments_ = 0;
   CaptureCounters counters_;
};

} // namespace LdpTool
