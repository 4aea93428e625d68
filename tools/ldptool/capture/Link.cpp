// Link, VLAN, IP, UDP and TCP headers.
#include "capture/Link.h"

#include <pcap/pcap.h>

#include <algorithm>

namespace LdpTool {

namespace {

constexpr std::uint16_t etherIpv4 = 0x0800;
constexpr std::uint16_t etherIpv6 = 0x86dd;

std::uint16_t read16( Octets octets, std::size_t at ) {
   return std::uint16_t( octets[at] << 8 | octets[at + 1] );
}

std::uint32_t read32( Octets octets, std::size_t at ) {
   return std::uint32_t( read16( octets, at ) ) << 16 | read16( octets, at + 2 );
}

bool vlanTag( std::uint16_t etherType ) {
   return etherType == 0x8100 || etherType == 0x88a8 || etherType == 0x9100;
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

// UDP or TCP header and payload. `total` is what the IP header says, `packet` what of it was captured.
LinkResult parseTransport( Octets packet, std::size_t total, Segment & segment ) {
   bool const tcp = segment.flow.protocol == protocolTcp;
   if ( !tcp && segment.flow.protocol != protocolUdp ) return LinkResult::other;
   if ( packet.size() < 4 ) return LinkResult::truncated;
   segment.flow.sourcePort = read16( packet, 0 );
   segment.flow.destinationPort = read16( packet, 2 );
   if ( segment.flow.sourcePort != ldpPort && segment.flow.destinationPort != ldpPort ) {
      return LinkResult::other;
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

LinkResult parseIpv4( Octets packet, Segment & segment ) {
   if ( packet.size() < 20 ) return LinkResult::truncated;
   std::size_t const header = std::size_t( packet[0] & 0x0f ) * 4;
   // Offloading network cards hand up packets with a length of 0: then the capture knows better.
   std::size_t const length = read16( packet, 2 );
   std::size_t const total = length ? length : packet.size();
   if ( header < 20 || total < header ) return LinkResult::other;
   segment.flow.protocol = packet[9];
   segment.flow.addressSize = 4;
   segment.flow.source = segment.flow.destination = {};
   std::copy_n( &packet[12], 4, segment.flow.source.begin() );
   std::copy_n( &packet[16], 4, segment.flow.destination.begin() );
   bool const fragment = ( read16( packet, 6 ) & 0x3fff ) != 0; // more fragments, or an offset
   if ( fragment ) {
      return segment.flow.protocol == protocolTcp || segment.flow.protocol == protocolUdp
                  ? LinkResult::fragment
                  : LinkResult::other;
   }
   if ( packet.size() < header ) return LinkResult::truncated;
   return parseTransport( packet.subspan( header, std::min( packet.size(), total ) - header ), total - header,
                          segment );
}

LinkResult parseIpv6( Octets packet, Segment & segment ) {
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
      default: segment.flow.protocol = next; return parseTransport( packet, total, segment );
      }
   }
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
   case DLT_LOOP: return true;
   default: return false;
   }
}

LinkResult parseIp( Octets packet, Segment & segment ) {
   if ( packet.empty() ) return LinkResult::truncated;
   switch ( packet[0] >> 4 ) {
   case 4: return parseIpv4( packet, segment );
   case 6: return parseIpv6( packet, segment );
   default: return LinkResult::other;
   }
}

namespace {

std::uint64_t linkAddress( Octets octets ) {
   return std::uint64_t( read32( octets, 0 ) ) << 16 | read16( octets, 4 );
}

} // namespace

LinkResult parseLink( int linkType, Octets packet, Segment & segment, Octets & ipPacket ) {
   std::size_t header = 0;
   std::size_t typeAt = 0;   // where the link header keeps the Ethernet type,
   std::size_t senderAt = 0; // and its sender
   switch ( linkType ) {
   case DLT_EN10MB: header = 14, typeAt = 12, senderAt = 6; break;
   case DLT_LINUX_SLL: header = 16, typeAt = 14, senderAt = 6; break;
   case DLT_LINUX_SLL2: header = 20, typeAt = 0, senderAt = 12; break;
   case DLT_NULL:
   case DLT_LOOP:
      header = 4;
      break;       // an address family whose numbers differ between systems: IP tells itself
   default: break; // raw IP
   }
   if ( packet.size() < header ) return LinkResult::truncated;
   segment.place = {};
   segment.interfaceIndex = linkType == DLT_LINUX_SLL2 ? read32( packet, 4 ) : 0;
   if ( header > 4 ) {
      segment.place.sender = linkAddress( packet.subspan( senderAt ) );
      std::uint16_t type = read16( packet, typeAt );
      for ( ; vlanTag( type ); header += 4 ) {
         if ( packet.size() < header + 4 ) return LinkResult::truncated;
         segment.place.vlans = segment.place.vlans << 12 | ( read16( packet, header ) & 0xfff );
         type = read16( packet, header + 2 );
      }
      if ( type != etherIpv4 && type != etherIpv6 ) return LinkResult::other;
   }
   ipPacket = packet.subspan( header );
   return parseIp( ipPacket, segment );
}

} // namespace LdpTool
