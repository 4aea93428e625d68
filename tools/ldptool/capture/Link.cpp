// Link, VLAN, IP, UDP and TCP headers.
#include "capture/Link.h"

#include <pcap/pcap.h>

#include <algorithm>
#include <iterator>

namespace LdpTool {

namespace {

constexpr std::uint16_t etherIpv4 = 0x0800;
constexpr std::uint16_t etherIpv6 = 0x86dd;
constexpr std::uint16_t etherMpls = 0x8847;
constexpr std::uint16_t etherMplsUpstream = 0x8848;
constexpr std::uint16_t etherPppoe = 0x8864; // session stage
constexpr std::uint16_t mostLength = 1500;   // in the place of a type: IEEE 802.3 with a header of 802.2
constexpr std::uint16_t etherBridged = 0x6558;
constexpr std::uint16_t erspan2 = 0x88be; // types I and II
constexpr std::uint16_t erspan3 = 0x22eb;

constexpr std::uint8_t protocolIpv4 = 4;
constexpr std::uint8_t protocolIpv6 = 41;
constexpr std::uint8_t protocolGre = 47;
constexpr std::uint16_t vxlanPort = 4789;

constexpr unsigned mostHeaders = 8; // of packets within packets: more than any network nests

std::uint16_t read16( Octets octets, std::size_t at ) {
   return std::uint16_t( octets[at] << 8 | octets[at + 1] );
}

std::uint32_t read32( Octets octets, std::size_t at ) {
   return std::uint32_t( read16( octets, at ) ) << 16 | read16( octets, at + 2 );
}

bool vlanTag( std::uint16_t etherType ) {
   return etherType == 0x8100 || etherType == 0x88a8 || etherType == 0x9100 || etherType == 0x9200;
}

// Whether TCP options have one that authenticates the segment.
bool isAuthenticated( Octets options ) {
   constexpr std::uint8_t end = 0, nothing = 1, md5 = 19, ao = 29;
   while ( !options.empty() && options[0] != end ) {
      if ( options[0] == md5 || options[0] == ao ) return true;
      std::size_t const size = options[0] == nothing ? 1 : options.size() > 1 ? options[1] : 0;
      if ( size == 0 || size > options.size() || ( size == 1 && options[0] != nothing ) ) return false;
      options = options.subspan( size );
   }
   return false;
}

std::uint64_t linkAddress( Octets octets ) {
   return std::uint64_t( read32( octets, 0 ) ) << 16 | read16( octets, 4 );
}

// One packet, header by header, inwards. What is carried in it is read the same way, up to a bound.
class Walk {
 public:
   Walk( Segment & segment, Octets & ipPacket ) : segment_( segment ), ipPacket_( ipPacket ) {}

   LinkResult ether( std::uint16_t type, Octets packet );
   LinkResult frame( Octets packet );
   LinkResult ip( Octets packet );
   LinkResult ppp( Octets packet );

 private:
   LinkResult llc( Octets packet );
   LinkResult mpls( Octets packet );
   LinkResult pppoe( Octets packet );
   LinkResult ipv4( Octets packet );
   LinkResult ipv6( Octets packet );
   LinkResult carried( std::uint8_t protocol, Octets packet, std::size_t total );
   LinkResult gre( Octets packet );
   LinkResult transport( Octets packet, std::size_t total );

   Segment & segment_;
   Octets & ipPacket_; ///< the innermost
   unsigned headers_ = 0;
};

// What follows an Ethernet type.
LinkResult Walk::ether( std::uint16_t type, Octets packet ) {
   while ( vlanTag( type ) ) {
      if ( packet.size() < 4 ) return LinkResult::truncated;
      segment_.place.vlans = segment_.place.vlans << 12 | ( read16( packet, 0 ) & 0xfff );
      type = read16( packet, 2 );
      packet = packet.subspan( 4 );
   }
   if ( type <= mostLength ) return llc( packet.first( std::min< std::size_t >( packet.size(), type ) ) );
   switch ( type ) {
   case etherIpv4:
   case etherIpv6: return ip( packet );
   case etherMpls:
   case etherMplsUpstream: return mpls( packet );
   case etherPppoe: return pppoe( packet );
   default: return LinkResult::other;
   }
}

// IP behind a SNAP header says its type there (RFC 1042).
LinkResult Walk::llc( Octets packet ) {
   constexpr std::uint8_t snap[] = { 0xaa, 0xaa, 0x03, 0, 0, 0 };
   constexpr std::size_t header = sizeof snap + 2;
   if ( packet.size() < header ) return LinkResult::truncated;
   if ( !std::equal( std::begin( snap ), std::end( snap ), packet.begin() ) ) return LinkResult::other;
   std::uint16_t const type = read16( packet, sizeof snap );
   return type <= mostLength ? LinkResult::other : ether( type, packet.subspan( header ) );
}

LinkResult Walk::frame( Octets packet ) {
   constexpr std::size_t header = 14;
   if ( packet.size() < header ) return LinkResult::truncated;
   segment_.place.sender = linkAddress( packet.subspan( 6 ) );
   return ether( read16( packet, 12 ), packet.subspan( header ) );
}

// Labels say nothing of what is below them: IP tells itself, and the control word of a pseudowire has the
// first four bits clear (RFC 4385, 3).
LinkResult Walk::mpls( Octets packet ) {
   bool bottom = false;
   while ( !bottom ) {
      if ( packet.size() < 4 ) return LinkResult::truncated;
      bottom = packet[2] & 1;
      packet = packet.subspan( 4 );
   }
   if ( packet.empty() ) return LinkResult::truncated;
   if ( packet[0] >> 4 != 0 ) return ip( packet );
   if ( packet.size() < 4 ) return LinkResult::truncated;
   return ++headers_ > mostHeaders ? LinkResult::other : frame( packet.subspan( 4 ) );
}

// RFC 2516, 4 and the protocol number of PPP behind it.
LinkResult Walk::pppoe( Octets packet ) {
   if ( packet.size() < 6 ) return LinkResult::truncated;
   if ( packet[0] != 0x11 || packet[1] != 0 ) return LinkResult::other;
   return ppp( packet.subspan( 6 ) );
}

LinkResult Walk::ppp( Octets packet ) {
   if ( packet.size() < 2 ) return LinkResult::truncated;
   switch ( read16( packet, 0 ) ) {
   case 0x0021:
   case 0x0057: return ip( packet.subspan( 2 ) );
   case 0x0281:
   case 0x0283: return mpls( packet.subspan( 2 ) );
   default: return LinkResult::other;
   }
}

LinkResult Walk::ip( Octets packet ) {
   if ( packet.empty() ) return LinkResult::truncated;
   if ( ++headers_ > mostHeaders ) return LinkResult::other;
   ipPacket_ = packet;
   switch ( packet[0] >> 4 ) {
   case 4: return ipv4( packet );
   case 6: return ipv6( packet );
   default: return LinkResult::other;
   }
}

// What an IP packet carries. `total` octets of it were sent.
LinkResult Walk::carried( std::uint8_t protocol, Octets packet, std::size_t total ) {
   segment_.flow.protocol = protocol;
   switch ( protocol ) {
   case protocolTcp:
   case protocolUdp: return transport( packet, total );
   case protocolIpv4:
   case protocolIpv6: return ip( packet );
   case protocolGre: return gre( packet );
   default: return LinkResult::other;
   }
}

// RFC 2784 and RFC 2890. A sequence number tells ERSPAN of type II, which has a header of its own, from type
// I.
LinkResult Walk::gre( Octets packet ) {
   if ( packet.size() < 4 ) return LinkResult::truncated;
   unsigned const flags = read16( packet, 0 );
   constexpr unsigned checksum = 0x8000, routing = 0x4000, key = 0x2000, sequence = 0x1000, version = 0x0007;
   if ( flags & ( routing | version ) ) return LinkResult::other;
   std::uint16_t const type = read16( packet, 2 );
   std::size_t header = 4;
   for ( unsigned const field : { checksum, key, sequence } )
      header += flags & field ? 4 : 0;
   if ( type == erspan2 && flags & sequence ) header += 8;
   if ( type == erspan3 ) {
      if ( packet.size() < header + 12 ) return LinkResult::truncated;
      bool const subheader = packet[header + 11] & 1;
      header += subheader ? 20 : 12;
   }
   if ( packet.size() < header ) return LinkResult::truncated;
   packet = packet.subspan( header );
   if ( type != etherBridged && type != erspan2 && type != erspan3 ) return ether( type, packet );
   return ++headers_ > mostHeaders ? LinkResult::other : frame( packet );
}

LinkResult Walk::ipv4( Octets packet ) {
   Segment & segment = segment_;
   if ( packet.size() < 20 ) return LinkResult::truncated;
   std::size_t const header = std::size_t( packet[0] & 0x0f ) * 4;
   // Offloading network cards hand up packets with a length of 0: then the capture knows better.
   std::size_t const length = read16( packet, 2 );
   std::size_t const total = length ? length : packet.size();
   if ( header < 20 || total < header ) return LinkResult::other;
   std::uint8_t const protocol = packet[9];
   segment.flow.addressSize = 4;
   segment.flow.source = segment.flow.destination = {};
   std::copy_n( &packet[12], 4, segment.flow.source.begin() );
   std::copy_n( &packet[16], 4, segment.flow.destination.begin() );
   bool const fragment = ( read16( packet, 6 ) & 0x3fff ) != 0; // more fragments, or an offset
   if ( fragment ) {
      constexpr std::uint8_t carriers[] = { protocolTcp, protocolUdp, protocolIpv4, protocolIpv6,
                                            protocolGre };
      bool const may =
           std::find( std::begin( carriers ), std::end( carriers ), protocol ) != std::end( carriers );
      return may ? LinkResult::fragment : LinkResult::other;
   }
   if ( packet.size() < header ) return LinkResult::truncated;
   return carried( protocol, packet.subspan( header, std::min( packet.size(), total ) - header ),
                   total - header );
}

LinkResult Walk::ipv6( Octets packet ) {
   Segment & segment = segment_;
   constexpr std::size_t fixedHeader = 40;
   if ( packet.size() < fixedHeader ) return LinkResult::truncated;
   std::size_t const length = read16( packet, 4 ); // 0 with a jumbo payload
   std::size_t total = length ? length : packet.size() - fixedHeader;
   std::uint8_t next = packet[6];
   segment.flow.addressSize = 16;
   std::copy_n( &packet[8], 16, segment.flow.source.begin() );
   std::copy_n( &packet[24], 16, segment.flow.destination.begin() );
   packet = packet.subspan( fixedHeader, std::min( packet.size() - fixedHeader, total ) );
   for ( ;; ) {
      std::size_t size; // of the extension header; each is at least 8, so the walk moves on
      switch ( next ) {
      case 0:   // hop by hop
      case 43:  // routing
      case 60:  // destination options
      case 135: // mobility
      case 139: // host identity
      case 140: // shim6
      case 44:  // fragment
      case 51:  // authentication
         if ( packet.size() < 8 ) return LinkResult::truncated;
         size = next == 44 ? 8 : next == 51 ? ( packet[1] + 2U ) * 4 : ( packet[1] + 1U ) * 8;
         // A fragment header with no offset and no more fragments heads a whole packet.
         if ( next == 44 && ( read16( packet, 2 ) & 0xfff9 ) != 0 ) return LinkResult::fragment;
         if ( size > total ) return LinkResult::other;
         if ( size > packet.size() ) return LinkResult::truncated;
         next = packet[0];
         packet = packet.subspan( size );
         total -= size;
         break;
      default: return carried( next, packet, total );
      }
   }
}

// UDP or TCP header and payload. `total` is what the IP header says, `packet` what of it was captured.
LinkResult Walk::transport( Octets packet, std::size_t total ) {
   Segment & segment = segment_;
   bool const tcp = segment.flow.protocol == protocolTcp;
   if ( packet.size() < 4 ) return LinkResult::truncated;
   segment.flow.sourcePort = read16( packet, 0 );
   segment.flow.destinationPort = read16( packet, 2 );
   if ( segment.flow.sourcePort != ldpPort && segment.flow.destinationPort != ldpPort ) {
      constexpr std::size_t vxlanHeader = 16; // with that of UDP (RFC 7348, 5)
      if ( tcp || segment.flow.destinationPort != vxlanPort ) return LinkResult::other;
      if ( packet.size() < vxlanHeader ) return LinkResult::truncated;
      return ++headers_ > mostHeaders ? LinkResult::other : frame( packet.subspan( vxlanHeader ) );
   }
   std::size_t header = 8;
   if ( packet.size() < ( tcp ? 20U : 8U ) ) return LinkResult::truncated;
   if ( tcp ) {
      header = std::size_t( packet[12] >> 4 ) * 4;
      segment.sequence = read32( packet, 4 );
      segment.acknowledged = read32( packet, 8 );
      std::uint8_t const flags = packet[13];
      segment.fin = flags & 0x01;
      segment.syn = flags & 0x02;
      segment.rst = flags & 0x04;
      segment.ack = flags & 0x10;
      segment.authenticated = segment.syn && header <= packet.size() && header > 20 &&
                              isAuthenticated( packet.subspan( 20, header - 20 ) );
   } else if ( std::size_t const length = read16( packet, 4 ); length != 0 ) {
      total = std::min( total, length );
   }
   if ( header < ( tcp ? 20U : 8U ) || header > total ) return LinkResult::other;
   std::size_t const captured = std::min( packet.size(), total );
   if ( header > captured ) return LinkResult::truncated;
   segment.payload = packet.subspan( header, captured - header );
   segment.missing = total - captured;
   return LinkResult::segment;
}

} // namespace

bool linkTypeKnown( int linkType ) {
   switch ( linkType ) {
   case DLT_EN10MB:
   case DLT_LINUX_SLL:
   case DLT_LINUX_SLL2:
   case DLT_RAW:
   case DLT_IPV4:
   case DLT_IPV6:
   case DLT_NULL:
   case DLT_LOOP:
   case DLT_PPP:
   case DLT_C_HDLC: return true;
   default: return false;
   }
}

LinkResult parseIp( Octets packet, Segment & segment, Octets & ipPacket ) {
   return Walk( segment, ipPacket ).ip( packet );
}

LinkResult parseLink( int linkType, Octets packet, Segment & segment, Octets & ipPacket ) {
   std::size_t header = 0;
   std::size_t typeAt = 0;   // where the link header keeps the Ethernet type,
   std::size_t senderAt = 0; // and its sender
   switch ( linkType ) {
   case DLT_EN10MB: header = 14, typeAt = 12, senderAt = 6; break;
   case DLT_LINUX_SLL: header = 16, typeAt = 14, senderAt = 6; break;
   case DLT_LINUX_SLL2: header = 20, typeAt = 0, senderAt = 12; break;
   case DLT_C_HDLC: header = 4, typeAt = 2; break;
   case DLT_NULL:
   case DLT_LOOP:
      header = 4;
      break;       // an address family whose numbers differ between systems: IP tells itself
   default: break; // raw IP
   }
   if ( packet.size() < header ) return LinkResult::truncated;
   segment.place = {};
   segment.interfaceIndex = linkType == DLT_LINUX_SLL2 ? read32( packet, 4 ) : 0;
   if ( senderAt ) segment.place.sender = linkAddress( packet.subspan( senderAt ) );
   Walk walk( segment, ipPacket );
   Octets const behind = packet.subspan( header );
   if ( linkType == DLT_PPP ) {
      bool const framed = packet.size() >= 2 && packet[0] == 0xff && packet[1] == 0x03;
      return walk.ppp( packet.subspan( framed ? 2 : 0 ) );
   }
   bool const typed = senderAt || linkType == DLT_C_HDLC;
   return typed ? walk.ether( read16( packet, typeAt ), behind ) : walk.ip( behind );
}

} // namespace LdpTool
