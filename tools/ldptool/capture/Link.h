#pragma once

// From a captured packet to its UDP datagram or TCP segment: link header (Ethernet and
// 802.3 with any VLAN tags, Linux
// cooked version 1 and 2, PPP, Cisco HDLC, raw IP, loopback), IPv4 or IPv6 with its extension headers, UDP or
// TCP; and what may carry all this once more: MPLS labels, PPPoE, IP in IP, GRE, ERSPAN, VXLAN. Reads only
// what was captured and allocates nothing: this runs for every packet of a capture, also for those that are
// not LDP.

#include "capture/Flow.h"
#include "capture/PduSink.h"

namespace LdpTool {

/// A UDP datagram or TCP segment to or from the LDP port.
struct Segment {
   Flow flow;
   Octets payload;                   ///< the octets that were captured
   std::size_t missing = 0;          ///< octets of payload behind them that the capture cut off
   Place place;                      ///< without the name of the interface
   std::uint32_t interfaceIndex = 0; ///< where the link header has one; from 1
   // TCP only.
   std::uint32_t sequence = 0;
   std::uint32_t acknowledged = 0;
   bool syn = false;
   bool ack = false;
   bool fin = false;
   bool rst = false;
   bool authenticated = false; ///< with an option of TCP MD5 or TCP-AO (RFC 2385, RFC 5925); seen in a SYN
};

enum class LinkResult {
   segment,   ///< a segment or datagram of LDP
   other,     ///< something else
   fragment,  ///< a piece of an IP packet, the innermost that can be seen
   truncated, ///< the capture cut the packet off inside a header, so nobody can tell
};

/// Whether packets of this link type (a `DLT_` value of libpcap) can be read.
bool linkTypeKnown( int linkType );

/// Read one packet. On `segment` the parts of `segment` are set; on `fragment`, `ipPacket` is that packet.
LinkResult parseLink( int linkType, Octets packet, Segment & segment, Octets & ipPacket );

/// The same for a packet that begins with its IP header.
LinkResult parseIp( Octets packet, Segment & segment, Octets & ipPacket );

} // namespace LdpTool
