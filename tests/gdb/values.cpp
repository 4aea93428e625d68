// Something of each kind that the debugger's printers know; printers_test.py stops it in `shown`.
#include "Ldp/LdpAdj.h"
#include "Ldp/LdpIndex.h"
#include "Ldp/LdpSessionStateLog.h"
#include "Vorn/Dump.h"

using namespace Ldp;

[[gnu::noinline]] void shown( Vorn::Entity const & entity ) { Vorn::dump( entity ); }

int main() {
   Vorn::String const text( "four\n" );
   Lumo::IpGenPrefix const prefix( Lumo::IpAddr( 0x0a000000 ), 8 );
   Lumo::IpGenAddr const nowhere;
   auto const adjs = ldpAdjStatusCollFactory( Vorn::Name( "adjacencies" ) );
   LdpAdjId const id( LdpIdentifier( 0x0a000001, 7 ), Lumo::IntfId( "Ethernet1" ) );
   adjs->adjStatusIs( id )->adjStatusCodeIs( holdTimerExpired );
   Vorn::HashMap2018< int, U32, Vorn::String > map;
   for ( U32 i = 0; i < 100; ++i ) {
      map.valueIs( i, i == 41 ? "forty-one" : "" );
   }
   Vorn::LinkQueue< int, U32, U16 > queue;
   queue.enq( 17 );
   queue.enq( 18 );
   shown( *adjs );
   return text.bytes() + prefix.len() + map.members() + queue.members() == 115 && !nowhere ? 0 : 1;
}
