// Octets of a peer become messages, and what they say becomes state that others observe.
#include <Ldp/LdpAdj.h>
#include <Ldp/LdpPduStream.h>

#include <cstdio>

struct Heard : Ldp::LdpAdjStatusColl::NotifieeConst { // told of each adjacency that comes or goes
   void onAdjStatus( Ldp::LdpAdjId const & id ) override {
      std::printf( "%s\n", id.stringValue().charPtr() );
   }
};

int main() {
   U8 const hello[] = { 0, 1, 0, 22, 10, 0, 0, 2, 0, 0, 1, 0, 0, 12, 0, 0, 0, 1, 4, 0, 0, 4, 0, 15, 0, 0 };
   auto const adjacencies = Ldp::ldpAdjStatusCollFactory( Vorn::Name( "adjacencies" ) );
   auto const heard = Vorn::newObject< Heard >();
   heard->notifierIs( adjacencies );
   heard->isRegisteredNotifieeIs( true );

   auto const pdu = Ldp::LdpPduStream().datagram( hello ); // whole, guarded and judged, good or bad
   if ( !pdu.valid() ) std::printf( "to answer: %s\n", valueToStrep( pdu.statusCode() ).charPtr() );
   for ( U32 i = 0; i < pdu.messageNum(); ++i ) {
      auto const msg = pdu.message( i );
      std::printf( "%s\n", ( msg->validMsg() ? msg->stringValue() : msg->reason() ).charPtr() );
      if ( msg->validMsg() && msg->type() == Ldp::LdpHello )
         adjacencies->adjStatusIs( Ldp::LdpAdjId( pdu.ldpIdentifier(), Lumo::IntfId( "Ethernet1" ) ) );
   }
}
