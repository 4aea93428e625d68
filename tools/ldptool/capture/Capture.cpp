// Packets from libpcap, handed on as segments and datagrams.
#include "capture/Capture.h"

#include "capture/Gzip.h"

#include <pcap/pcap.h>
#include <tins/exceptions.h>
#include <tins/ip.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <net/if.h>
#include <poll.h>
#include <sys/stat.h>
#include <tuple>

namespace LdpTool {

namespace {

constexpr int packetsAtOnce = 4096;
constexpr int waitMilliseconds = 100;
constexpr std::size_t mostInterfaces = 65536;
constexpr std::size_t pduHeader = 10;

std::string unsupported( int linkType ) {
   char const * const name = pcap_datalink_val_to_name( linkType );
   return "link type " + ( name ? std::string( name ) : std::to_string( linkType ) ) + " is not supported";
}

int firstOctet( std::FILE * file ) {
   int const first = std::getc( file );
   if ( first != EOF ) std::ungetc( first, file );
   return first;
}

/// What may hold LDP: the port itself, and whatever carries packets within packets (Link.h). A test of a tag
/// or label shifts all that follows it, so each depth of tags needs its own.
std::string liveFilter( bool ethernet ) {
   std::string one = "port 646 or ip proto 4 or ip proto 41 or ip proto 47 or udp dst port 4789 or "
                     "(ip[6:2] & 0x1fff != 0) or (ip6 and (";
   for ( int const next : { 0, 4, 41, 43, 44, 47, 51, 60, 135, 139, 140 } )
      one += ( next ? " or ip6[6] == " : "ip6[6] == " ) + std::to_string( next );
   one += "))";
   if ( !ethernet ) return one;
   one += " or ether proto 0x8847 or ether proto 0x8848 or ether proto 0x8864";
   return one + " or (vlan and (" + one + " or (vlan and (" + one + " or vlan))))";
}

/// The size of a regular file; 0 of anything else.
std::int64_t sizeOf( std::FILE * file ) {
   struct stat status;
   return file && fstat( fileno( file ), &status ) == 0 && S_ISREG( status.st_mode ) ? status.st_size : 0;
}

/// Returns what is wrong with the expression; empty for nothing.
std::string compile( std::string const & expression, int linkType, bpf_program & program ) {
   constexpr int wholePackets = 262144;
   pcap * const handle = pcap_open_dead( linkType, wholePackets );
   if ( !handle ) return "out of memory";
   bool const good = pcap_compile( handle, &program, expression.c_str(), 1, PCAP_NETMASK_UNKNOWN ) == 0;
   std::string const error = good ? "" : pcap_geterr( handle );
   pcap_close( handle );
   return error;
}

} // namespace

std::string Capture::filterError( std::string const & expression ) {
   std::string error;
   for ( int const linkType : { DLT_RAW, DLT_LINUX_SLL2, DLT_EN10MB } ) {
      bpf_program program{};
      error = compile( expression, linkType, program );
      pcap_freecode( &program );
      if ( error.empty() ) break;
   }
   return error;
}

void Capture::PcapCloser::operator()( pcap * handle ) const { pcap_close( handle ); }

void Capture::ProgramFreer::operator()( bpf_program * program ) const {
   pcap_freecode( program );
   delete program;
}

void Capture::handleIs( Handle handle ) {
   handle_ = std::move( handle );
   linkType_ = pcap_datalink( handle_.get() );
   if ( !linkTypeKnown( linkType_ ) ) throw InputError( name_ + ": " + unsupported( linkType_ ) );
}

Capture Capture::file( std::string const & name, CaptureLimits const & limits ) {
   Capture capture( name, limits );
   capture.file_.reset( name == "-" ? stdin : std::fopen( name.c_str(), "rb" ) );
   if ( !capture.file_ ) throw InputError( name + ": " + std::strerror( errno ) );
   int first = firstOctet( capture.file_.get() );
   if ( std::ferror( capture.file_.get() ) && errno == EINTR ) // whoever reads on would wait once more
      throw InputError( name + ": " + std::strerror( errno ) );
   if ( first == gzipFirstOctet ) {
      capture.file_.reset( gunzip( capture.file_.release() ) );
      if ( !capture.file_ ) throw InputError( name + ": " + std::strerror( errno ) );
      first = firstOctet( capture.file_.get() );
   }
   if ( first == PcapngReader::firstOctet ) {
      capture.pcapng_ = std::make_unique< PcapngReader >( capture.file_.get() );
      return capture;
   }
   char error[PCAP_ERRBUF_SIZE] = "";
   Handle handle(
        pcap_fopen_offline_with_tstamp_precision( capture.file_.get(), PCAP_TSTAMP_PRECISION_NANO, error ) );
   if ( !handle ) throw InputError( name + ": " + error );
   capture.file_.release(); // the handle closes it
   capture.handleIs( std::move( handle ) );
   return capture;
}

Capture Capture::interface( std::string const & name, CaptureLimits const & limits ) {
   constexpr int wholePackets = 262144;
   char error[PCAP_ERRBUF_SIZE] = "";
   Handle handle( pcap_create( name.c_str(), error ) );
   if ( !handle ) throw InputError( name + ": " + error );
   pcap_set_snaplen( handle.get(), wholePackets );
   pcap_set_promisc( handle.get(), 1 );
   pcap_set_timeout( handle.get(), waitMilliseconds );
   pcap_set_tstamp_precision( handle.get(), PCAP_TSTAMP_PRECISION_NANO );
   if ( int const status = pcap_activate( handle.get() ); status < 0 ) {
      std::string const detail = pcap_geterr( handle.get() );
      std::string why = detail.empty() ? pcap_statustostr( status ) : detail;
      if ( status == PCAP_ERROR_PERM_DENIED )
         why += " (as root, or once: setcap cap_net_raw+ep on the program)";
      throw InputError( name + ": " + why );
   }
   // All interfaces at once: this link type says which one each packet was on.
   if ( pcap_datalink( handle.get() ) == DLT_LINUX_SLL ) pcap_set_datalink( handle.get(), DLT_LINUX_SLL2 );
   // A read may last until a packet comes, however short its timeout; so it does not wait, and `run` does.
   if ( pcap_setnonblock( handle.get(), 1, error ) < 0 ) throw InputError( name + ": " + error );
   bpf_program program;
   bool compiled = false;
   for ( std::string const & filter : { liveFilter( true ) + " or llc", liveFilter( true ),
                                        liveFilter( false ), std::string( "port 646" ) } ) {
      // Some link types know no tags.
      compiled = pcap_compile( handle.get(), &program, filter.c_str(), 1, PCAP_NETMASK_UNKNOWN ) == 0;
      if ( compiled ) break;
   }
   if ( !compiled ) throw InputError( name + ": " + pcap_geterr( handle.get() ) );
   int const status = pcap_setfilter( handle.get(), &program );
   pcap_freecode( &program );
   if ( status != 0 ) throw InputError( name + ": " + pcap_geterr( handle.get() ) );
   Capture capture( name, limits );
   capture.live_ = true;
   capture.interface_ = name;
   capture.handleIs( std::move( handle ) );
   return capture;
}

void Capture::stop() {
   stopped_ = 1;
   if ( handle_ ) pcap_breakloop( handle_.get() );
}

// Whether the packet lies within the range, and the filter takes it. The first one behind the range ends the
// run.
bool Capture::isWanted( Octets octets, Arrival const & arrival, int linkType ) {
   double const at = double( arrival.seconds ) + double( arrival.nanoseconds ) * 1e-9;
   if ( !started_ ) {
      started_ = true;
      std::time_t second = std::time_t( arrival.seconds );
      std::tm day{};
      range_.utc ? gmtime_r( &second, &day ) : localtime_r( &second, &day );
      day.tm_hour = day.tm_min = day.tm_sec = 0;
      second = range_.utc ? timegm( &day ) : mktime( &day );
      for ( CaptureMoment * moment : { &range_.from, &range_.to } )
         if ( moment->timeOfDay ) moment->time = double( second ) + *moment->timeOfDay;
   }
   auto const & [from, to] = std::tie( range_.from, range_.to );
   if ( arrival.frame > to.frame.value_or( arrival.frame ) || at > to.time.value_or( at ) ) {
      stop();
      return false;
   }
   return arrival.frame >= from.frame.value_or( 0 ) && at >= from.time.value_or( at ) &&
          ( range_.filter.empty() || passes( octets, linkType ) );
}

bool Capture::passes( Octets octets, int linkType ) {
   auto & filter = filters_[linkType];
   if ( !filter ) {
      filter.reset( new bpf_program{} );
      std::string const error = compile( range_.filter, linkType, *filter );
      if ( !error.empty() ) throw InputError( "--bpf '" + range_.filter + "': " + error );
   }
   pcap_pkthdr header{};
   header.caplen = header.len = bpf_u_int32( octets.size() );
   return pcap_offline_filter( filter.get(), &header, octets.data() ) != 0;
}

std::FILE * Capture::stream() const {
   return live_ ? nullptr : file_ ? file_.get() : pcap_file( handle_.get() );
}

void Capture::run( PduSink & sink, CaptureRange const & range ) {
   begin( sink, range );
   while ( read( packetsAtOnce ) ) {}
}

void Capture::begin( PduSink & sink, CaptureRange const & range ) {
   sink_ = &sink;
   range_ = range;
   streams_ = std::make_unique< Streams >( sink, limits_.flows );
}

bool Capture::read( int packets ) {
   if ( !streams_ ) return false; // it has ended
   std::string failure;
   bool const more = !stopped_ && ( file_ ? readPcapng( packets, failure ) : readPcap( packets, failure ) );
   if ( live_ ) sink_->onIdle();
   if ( std::int64_t const size = sizeOf( stream() ) ) sink_->onProgress( ftello( stream() ), size );
   if ( more && !stopped_ ) return true;
   finish();
   if ( failure.empty() && otherLinkTypes_ && otherLinkTypes_ == counters_.packets )
      failure = unsupported( linkType_ );
   if ( !failure.empty() ) throw InputError( name_ + ": " + failure );
   return false;
}

void Capture::finish() {
   if ( std::int64_t const size = sizeOf( stream() ) ) sink_->onProgress( size, size );
   streams_->finish();
   counters_.repeatedOctets = streams_->repeatedOctets();
   counters_.straySegments = streams_->straySegments();
   counters_.forgottenFlows = streams_->forgotten();
   streams_.reset();
}

CaptureCounters const & Capture::counters() {
   pcap_stat system{};
   if ( live_ && pcap_stats( handle_.get(), &system ) == 0 ) counters_.dropped = system.ps_drop;
   return counters_;
}

// Some packets of anything but pcapng; false when there are no more.
bool Capture::readPcap( int packets, std::string & failure ) {
   auto const each = []( u_char * self, pcap_pkthdr const * header, u_char const * octets ) {
      auto & capture = *reinterpret_cast< Capture * >( self );
      ++capture.counters_.packets;
      // With nanosecond precision, tv_usec holds nanoseconds.
      Arrival const arrival{ capture.counters_.packets, header->ts.tv_sec,
                             std::uint32_t( header->ts.tv_usec ) };
      try {
         Octets const packet( octets, header->caplen );
         if ( capture.isWanted( packet, arrival, capture.linkType_ ) )
            capture.onPacket( packet, arrival, capture.linkType_,
                              capture.live_ ? &capture.interface_ : nullptr );
      } catch ( ... ) { // not through libpcap, which is C
         if ( !capture.thrown_ ) capture.thrown_ = std::current_exception();
         capture.stop();
      }
   };
   if ( live_ ) { // by itself libpcap would wait for a packet, and the sink would never be idle on a silent
                  // link
      pollfd ready{ pcap_get_selectable_fd( handle_.get() ), POLLIN, 0 };
      poll( &ready, 1, waitMilliseconds ); // a signal ends it too
   }
   int const status = pcap_dispatch( handle_.get(), packets, each, reinterpret_cast< u_char * >( this ) );
   if ( thrown_ ) std::rethrow_exception( std::exchange( thrown_, nullptr ) );
   if ( status == PCAP_ERROR ) failure = pcap_geterr( handle_.get() );
   return status > 0 || ( status == 0 && live_ );
}

bool Capture::readPcapng( int packets, std::string & failure ) {
   PcapngReader::Packet packet;
   for ( int i = 0; i < packets && !stopped_; ++i ) {
      try {
         if ( !pcapng_->next( packet ) ) return false;
      } catch ( InputError const & error ) {
         failure = error.what();
         return false;
      }
      ++counters_.packets;
      Arrival const arrival{ counters_.packets, packet.seconds, packet.nanoseconds };
      if ( linkTypeKnown( packet.linkType ) ) {
         if ( isWanted( packet.octets, arrival, packet.linkType ) )
            onPacket( packet.octets, arrival, packet.linkType, packet.interface );
      } else {
         linkType_ = packet.linkType;
         ++otherLinkTypes_;
      }
   }
   return true;
}

// The name of an interface that only its index is known of.
std::string const * Capture::interfaceOf( std::uint32_t index ) {
   auto const known = interfaces_.find( index );
   if ( known != interfaces_.end() ) return &known->second;
   if ( interfaces_.size() >= mostInterfaces ) return nullptr;
   char name[IF_NAMESIZE];
   bool const named = live_ && if_indextoname( index, name );
   return &interfaces_.emplace( index, named ? name : "if" + std::to_string( index ) ).first->second;
}

void Capture::onPacket( Octets octets, Arrival const & arrival, int linkType,
                        std::string const * interface ) {
   Segment segment;
   Octets ipPacket;
   switch ( parseLink( linkType, octets, segment, ipPacket ) ) {
   case LinkResult::segment:
      segment.place.interface = segment.interfaceIndex ? interfaceOf( segment.interfaceIndex ) : interface;
      onSegment( segment, arrival );
      break;
   case LinkResult::fragment: onFragment( ipPacket, arrival, segment.place ); break;
   case LinkResult::truncated: ++counters_.truncated; break;
   case LinkResult::other: break;
   }
}

void Capture::onFragment( Octets ipPacket, Arrival const & arrival, Place const & place ) {
   ++counters_.fragments;
   bool const ipv4 = ipPacket[0] >> 4 == 4;
   if ( !ipv4 ) return; // libtins puts only IPv4 together
   // Fragments whose fellows never come would stay for ever.
   fragmentOctets_ += ipPacket.size();
   ++waitingFragments_;
   if ( fragmentOctets_ > limits_.fragmentOctets ) {
      counters_.lostFragments += waitingFragments_ - 1;
      reassembler_.clear_streams();
      fragmentOctets_ = ipPacket.size();
      waitingFragments_ = 1;
   }
   try {
      Tins::IP packet( ipPacket.data(), std::uint32_t( ipPacket.size() ) );
      if ( reassembler_.process( packet ) != Tins::IPv4Reassembler::REASSEMBLED ) return;
      ++counters_.reassembled;
      auto const whole = packet.serialize();
      Segment segment;
      segment.place = place;
      Octets within; // a fragment of a packet that this one carries is given up
      if ( parseIp( whole, segment, within ) == LinkResult::segment ) onSegment( segment, arrival );
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
   Origin const origin{ arrival, &segment.flow, &segment.place };
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
