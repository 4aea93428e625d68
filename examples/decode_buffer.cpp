#include <Ldp/LdpUtils.h>

#include <cstdio>

int main() {
   static U8 const octets[] = {
      0, 1, 0, 22, 10, 0,  0, 1, 0, 0, // PDU of 10.0.0.1:0
      1, 0, 0, 12, 0,  0,  0, 1,       // Hello
      4, 0, 0, 4,  0,  15, 0, 0,       // Common Hello Parameters
   };
   auto const pkt = Lumo::Pkt::borrow( octets, sizeof octets ); // nothing is copied

   if ( Ldp::ldpPduGuard( pkt, 0 ) ) return 1; // parsing it would be fatal
   auto const pdu = Ldp::ldpPduParserFactory( pkt, 0 );
   if ( !pdu->validLdpPdu() ) return 1;

   for ( U32 i = 0; i < pdu->messageNum(); ++i ) {
      auto const msg = Ldp::ldpMsgParserGet( pkt, pdu->messageOffset( i ) );
      if ( !msg->validMsg() ) {
         std::printf( "bad message: %s\n", msg->reason().charPtr() );
      } else if ( auto const * hello = dynamic_cast< Ldp::LdpHelloMsgParser const * >( msg.ptr() ) ) {
         std::printf( "Hello of %s, hold time %d s\n", pdu->ldpIdentifier().stringValue().charPtr(),
                      hello->msgCommonHelloTlv()->holdTime() );
      }
   }
}
