// Packets from libpcap, handed on as segments and datagrams.
#include "capture/Capture.h"

#include <pcap/pcap.h>
#include <tins/exceptions.h>
#include <tins/ip.h>

#include <cstdio>
#include <sys/stat.h>

namespace LdpTool {

namespace {

constexpr int packetsAtOnce = 4096;
constexpr std::size_t mostFragmentOctets = 8 << 20;
constexpr std::size_t pduHeader = 10;

/// The size of a regular file; 0 of anything else.
std::int64_t sizeOf( std::FILE * file ) {
   struct stat status;
   return file && fstat( fileno( file ), &status ) == 0 && S_ISREG( status.st_mode ) ? status.st_size : 0;
}

} // namespace

void Capture::PcapCloser::operator()( pcap * handle ) const { pcap_close( handle ); }

Capture::Capture( Handle handle, std::string name, bool live )
     : handle_( std::move( handle ) ), name_( std::move( name ) ), live_( live ),
       linkType_( pcap_datalink( handle_.get() ) ) {
   if ( linkTypeKnown( linkType_ ) ) return;
   char const * linkName = pcap_datalink_val_to_name( linkType_ );
   throw InputError( name_ + ": link type " + ( linkName ? linkName : std::to_string( linkType_ ) ) +
                     " is not supported" );
}

Capture Capture::file( std::string const & name ) {
   char error[PCAP_ERRBUF_SIZE] = "";
   Handle handle(
        pcap_open_offline_with_tstamp_precision( name.c_str(), PCAP_TSTAMP_PRECISION_NANO, error ) );
   if ( !handle ) {
      std::string const text = error; // some of libpcap's texts name the file, others do not
      throw InputError( text.find( name ) == std::string::npos ? name + ": " + text : text );
   }
   return Capture( std::move( handle ), name, false );
}

Capture Capture::interface( std::string const & name ) {
   constexpr int wholePackets = 262144;
   constexpr int waitMilliseconds = 100;
   char error[PCAP_ERRBUF_SIZE] = "";
   Handle handle( pcap_create( name.c_str(), error ) );
   if ( !handle ) throw InputError( name + ": " + error );
   pcap_set_snaplen( handle.get(), wholePackets );
   pcap_set_promisc( handle.get(), 1 );
   pcap_set_timeout( handle.get(), waitMilliseconds );
   pcap_set_tstamp_precision( handle.get(), PCAP_TSTAMP_PRECISION_NANO );
   if ( int const status = pcap_activate( handle.get() ); status < 0 ) {
      std::string const detail = pcap_geterr( handle.get() );
      throw InputError( name + ": " + ( detail.empty() ? pcap_statustostr( status ) : detail ) );
   }
   // `vlan` shifts all that follows it, so each depth of tags needs its own test. Some link types know no
   // tags.
   bpf_program program;
   char const * const filters[] = { "port 646 or (vlan and (port 646 or (vlan and port 646)))", "port 646" };
   bool compiled = false;
   for ( char const * filter : filters ) {
      compiled = pcap_compile( handle.get(), &program, filter, 1, PCAP_NETMASK_UNKNOWN ) == 0;
      if ( compiled ) break;
   }
   if ( !compiled ) throw InputError( name + ": " + pcap_geterr( handle.get() ) );
   int const status = pcap_setfilter( handle.get(), &program );
   pcap_freecode( &program );
   if ( status != 0 ) throw InputError( name + ": " + pcap_geterr( handle.get() ) );
   return Capture( std::move( handle ), name, true );
}

void Capture::stop() { pcap_breakloop( handle_.get() ); }

void Capture::run( PduSink & sink ) {
   sink_ = &sink;
   streams_ = std::make_unique< Streams >( sink );
   std::FILE * const stream = live_ ? nullptr : pcap_file( handle_.get() );
   std::int64_t const size = sizeOf( stream );
   auto const each = []( u_char * self, pcap_pkthdr const * header, u_char const * octets ) {
      reinterpret_cast< Capture * >( self )->onPacket( *header, octets );
   };
   int status;
   do {
      status = pcap_dispatch( handle_.get(), packetsAtOnce, each, reinterpret_cast< u_char * >( this ) );
      if ( live_ ) sink.onIdle();
      if ( size ) sink.onProgress( ftello( stream ), size );
   } while ( status > 0 || ( status == 0 && live_ ) );
   if ( size ) sink.onProgress( size, size );
   streams_->finish();
   counters_.repeatedOctets = streams_->repeatedOctets();
   if ( status == PCAP_ERROR ) throw InputError( name_ + ": " + pcap_geterr( handle_.get() ) );
}

void Capture::onPacket( pcap_pkthdr const & header, std::uint8_t const * octets ) {
   ++counters_.packets;
   // With nanosecond precision, tv_usec holds nanoseconds.
   Arrival const arrival{ counters_.packets, header.ts.tv_sec, std::uint32_t( header.ts.tv_usec ) };
   Segment segment;
   Octets ipPacket;
   switch ( parseLink( linkType_, { octets, header.caplen }, segment, ipPacket ) ) {
   case LinkResult::segment: onSegment( segment, arrival ); break;
   case LinkResult::fragment: onFragment( ipPacket, arrival ); break;
   case LinkResult::truncated: ++counters_.truncated; break;
   case LinkResult::other: break;
   }
}

void Capture::onFragment( Octets ipPacket, Arrival const & arrival ) {
   ++counters_.fragments;
   bool const ipv4 = ipPacket[0] >> 4 == 4;
   if ( !ipv4 ) return; // libtins puts only IPv4 together
   // Fragments whose fellows never come would stay for ever.
   fragmentOctets_ += ipPacket.size();
   if ( fragmentOctets_ > mostFragmentOctets ) {
      reassembler_.clear_streams();
      fragmentOctets_ = ipPacket.size();
   }
   try {
      Tins::IP packet( ipPacket.data(), std::uint32_t( ipPacket.size() ) );
      if ( reassembler_.process( packet ) != Tins::IPv4Reassembler::REASSEMBLED ) return;
      ++counters_.reassembled;
      auto const whole = packet.serialize();
      Segment segment;
      if ( parseIp( whole, segment ) == LinkResult::segment ) onSegment( segment, arrival );
   } catch ( Tins::exception_base const & ) {
      ++counters_.truncated; // what libtins does not take for an IP packet
   }
}

void Capture::onSegment( Segment const & segment, Arrival const & arrival ) {
   ++counters_.ldpPackets;
   if ( segment.flow.protocol == protocolTcp ) {
      streams_->take( segment, arrival );
   } else {
      onDatagram( segment, arrival );
   }
}

// A datagram holds one PDU; if octets are left that look like another, they are taken for one.
void Capture::onDatagram( Segment const & segment, Arrival const & arrival ) {
   Origin const origin{ arrival, &segment.flow };
   Octets rest = segment.payload;
   if ( segment.missing ) {
      ++counters_.truncated;
      sink_->onWarning( origin, "datagram cut off by the capture, " + std::to_string( segment.missing ) +
                                     " of its octets are missing" );
      return;
   }
   for ( ;; ) {
      sink_->onPdu( origin, datagrams_.datagram( rest ) );
      if ( rest.size() < pduHeader ) return; // judged as too small
      std::size_t const total = std::uint16_t( ( rest[2] << 8 | rest[3] ) + 4 );
      if ( total < pduHeader || total >= rest.size() ) return;
      rest = rest.subspan( total );
      bool const another = rest.size() >= pduHeader && rest[0] == 0 && rest[1] == 1;
      if ( !another ) {
         sink_->onWarning( origin, std::to_string( rest.size() ) + " octets behind the PDU of a datagram" );
         return;
      }
   }
}

} // namespace LdpTool
