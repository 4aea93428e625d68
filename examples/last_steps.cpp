// What a decoder did last: turns the ring trace on, and parses a PDU that ends the process. `ldptool ring
// FILE` prints the file that is left; SKFILE names it.

#include <Ldp/LdpTrace.h>
#include <Ldp/LdpUtils.h>

#include <cstdio>
#include <cstring>

int main() {
   if ( int const error = Ldp_skeinInitialize() ) { // once, before anything is traced
      std::fprintf( stderr, "no ring trace: %s\n", std::strerror( error ) );
      return 1;
   }
   // A Label Mapping whose FEC TLV is good, and whose next TLV has a length of 65532. An agent that asks
   // `ldpPduGuard` first, or lets `LdpPduStream` ask, is told so and parses nothing.
   static U8 const octets[] = {
      0, 1, 0,   32,  10, 0, 0, 1,  0,  0,    // PDU of 10.0.0.1:0
      4, 0, 0,   22,  0,  0, 0, 42,           // Label Mapping 42
      1, 0, 0,   7,   2,  0, 1, 24, 10, 0, 0, // FEC 10.0.0.0/24
      2, 0, 255, 252, 0,  0, 0,               // label
   };
   auto const pkt = Lumo::Pkt::borrow( octets, sizeof octets );
   auto const pdu = Ldp::ldpPduParserFactory( pkt, 0 );
   Ldp::ldpMsgParserGet( pkt, pdu->messageOffset( 0 ) );
}
