// Streams that are right, to be damaged.
#include "framework/LogSamples.h"

namespace Test {

using Vorn::Name;
using Vorn::String;

Ldp::LdpAdjId adjId( U32 number ) {
   return Ldp::LdpAdjId( Ldp::LdpIdentifier( 0x0a000000 + number, 0 ), Lumo::IntfId( "Ethernet1" ) );
}

Ptr< Tree > grownTree() {
   auto const tree = treeFactory( Name( "oak" ) );
   tree->heightIs( 12.5 );
   tree->kindIs( "quercus" );
   tree->ageIs( 200 );
   tree->topIs( U32( 9 ), String( "ash" ), U16( 3 ) )->labelIs( "top" );
   auto const crown = tree->crownIs( Name( "crown" ) );
   for ( auto const & branch :
         { crown, tree->branchIs( Name( "left" ) ), tree->branchIs( Name( "right" ) ) } ) {
      for ( U32 i = 0; i < 20; ++i ) {
         auto const twig = branch->twigIs( i, String( "oak" ), U16( i ) );
         twig->labelIs( Vorn::format( "twig %u", i ) );
         branch->scoreIs( Vorn::format( "score %u", i ), i / 8.0 );
         branch->markIs( U64( i ) << 40 );
         branch->flagIs( i, i % 3 == 0 );
         branch->eventEnq( Vorn::format( "event %u", i ) );
         branch->besideIs( Vorn::format( "beside %u", i ), twig );
         branch->insideIs( twig );
      }
      branch->twig( 3 )->palIs( tree->top() );
      branch->twig( 4 )->palIs( branch->twig( 19 ) );
      branch->numberInc( 77 );
   }
   return tree;
}

} // namespace Test
