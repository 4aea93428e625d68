#include <Ldp/LdpPduStream.h>

#include <cstdio>

/// What an agent does with the octets that it has read from one connection, however many they are.
void onOctets( Ldp::LdpPduStream & stream, U8 const * data, std::size_t bytes ) {
   std::span< U8 const > octets( data, bytes );
   while ( auto const pdu = stream.next( octets ) ) { // whole, past the guard, and judged
      if ( !pdu.valid() ) std::printf( "to answer: %s\n", valueToStrep( pdu.statusCode() ).charPtr() );
      for ( U32 i = 0; i < pdu.messageNum(); ++i ) {
         auto const msg = pdu.message( i );
         if ( !msg->validMsg() ) {
            std::printf( "bad message: %s\n", msg->reason().charPtr() );
         } else if ( auto const * hello = dynamic_cast< Ldp::LdpHelloMsgParser const * >( msg.ptr() ) ) {
            std::printf( "Hello of %s, hold time %d s\n", pdu.ldpIdentifier().stringValue().charPtr(),
                         hello->msgCommonHelloTlv()->holdTime() );
         }
      }
   }
}

int main() {
   static U8 const octets[] = {
      0, 1, 0,   22,  10, 0,  0, 1, 0, 0, // PDU of 10.0.0.1:0
      1, 0, 0,   12,  0,  0,  0, 1,       // Hello
      4, 0, 0,   4,   0,  15, 0, 0,       // Common Hello Parameters
      0, 1, 0,   14,  10, 0,  0, 1, 0, 0, // PDU of 10.0.0.1:0
      1, 0, 255, 252, 0,  0,  0, 2,       // a message whose length would end the process that parses it
   };
   Ldp::LdpPduStream stream;
   onOctets( stream, octets, 7 ); // as they come: the PDUs end elsewhere
   onOctets( stream, octets + 7, sizeof octets - 7 );
}
