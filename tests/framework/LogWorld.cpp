// Random operations on a tree.
#include "framework/LogWorld.h"

#include <cmath>
#include <string>

namespace Test {

using Vorn::format;
using Vorn::Name;
using Vorn::String;

LogWorld::LogWorld( std::mt19937_64 & random, U32 keys )
     : random_( random ), keys_( keys ), tree_( treeFactory( Name( "tree" ) ) ),
       everything_( derivedFactory( Name( "everything" ) ) ),
       status_( Ldp::ldpAdjStatusCollFactory( Name( "status" ) ) ),
       config_( Ldp::ldpAdjConfigCollFactory( Name( "config" ) ) ), roots_{ tree_, everything_, status_,
                                                                            config_ } {}

void LogWorld::attach( Ptr< Out > const & out, bool otherReadsOnly ) {
   for ( auto const & root : roots_ ) {
      root->vornNboAttrLogSaIs( otherReadsOnly ? U32( StreamAdapter::remoteReadOnly ) : 0u, 0, out );
   }
}

void LogWorld::steps( U32 number ) {
   for ( U32 i = 0; i < number; ++i ) {
      step();
   }
}

void LogWorld::step() {
   switch ( below( 8 ) ) {
   case 0: treeStep(); break;
   case 1: everythingStep(); break;
   case 2:
   case 3: adjStep(); break;
   default:
      if ( auto const at = branch() ) branchStep( *at );
   }
}

String LogWorld::word() {
   // Now and then one that is longer than the smallest buffers.
   std::string const letters( below( 20 ) ? below( 12 ) : 40 + below( 300 ), char( 'a' + below( 26 ) ) );
   return String( letters );
}

void LogWorld::treeStep() {
   switch ( below( 9 ) ) {
   case 0: tree_->heightIs( tree_->height() + 1 ); break;
   case 1: tree_->kindIs( word() ); break;
   case 2: tree_->aliveIs( !tree_->alive() ); break;
   case 3:
      if ( ownsAge_ ) tree_->ageIs( U8( random_() ) );
      break;
   case 4: tree_->crownIs( Name( format( "crown %u", below( 3 ) ) ) ); break;
   case 5: tree_->crownDel(); break;
   case 6: tree_->topIs( below( 3 ), word(), U16( random_() ) ); break;
   case 7: tree_->topDel(); break;
   case 8: tree_->branchDel( Name( format( "branch %u", below( 5 ) ) ) ); break;
   }
}

Ptr< Branch > LogWorld::branch() {
   if ( below( 6 ) == 0 ) return tree_->crown();
   return tree_->branchIs( Name( format( "branch %u", below( 5 ) ) ) );
}

void LogWorld::branchStep( Branch & branch ) {
   U32 const key = below( keys_ );
   auto const twig = branch.twig( key );
   switch ( below( 24 ) ) {
   case 0: branch.numberInc( 1 + below( 3 ) ); break;
   case 1: branch.twigDel( key ); break;
   case 2:
      // The same key, with another further argument.
      branch.twigDel( key );
      branch.twigIs( key, word(), U16( random_() ) );
      break;
   case 3: branch.scoreIs( word(), double( below( 5 ) ) ); break;
   case 4: branch.scoreDel( word() ); break;
   case 5: branch.markIs( key ); break;
   case 6: branch.markDel( key ); break;
   case 7: branch.flagIs( key, below( 2 ) ); break;
   case 8: branch.flagDel( key ); break;
   case 9: branch.eventEnq( word() ); break;
   case 10: branch.eventDeq(); break;
   case 11: branch.eventDel( branch.eventColl().firstIndex() + below( 4 ) ); break;
   case 12: branch.eventIs( branch.eventColl().firstIndex() + below( 4 ), word() ); break;
   case 13: branch.besideIs( format( "beside %u", key ), twig ); break;
   case 14: branch.besideDel( format( "beside %u", key ) ); break;
   case 15:
      if ( twig ) branch.insideIs( twig );
      break;
   case 16: branch.insideDel( key ); break;
   case 17:
      if ( below( 20 ) == 0 ) branch.twigDelAll();
      break;
   case 18:
      if ( below( 20 ) == 0 ) branch.eventDelAll();
      break;
   case 19: branch.secretIs( key ); break;
   default:
      if ( twig ) {
         twigStep( *twig, branch );
      } else {
         branch.twigIs( key, String( "oak" ), U16( key ) );
      }
   }
}

void LogWorld::twigStep( Twig & twig, Branch & branch ) {
   // References go to greater ids alone: a circle of them would never be released.
   U32 const pal = twig.id() + 1 + below( 3 );
   switch ( below( 4 ) ) {
   case 0: twig.loadIs( U16( random_() ) ); break;
   case 1: twig.labelIs( word() ); break;
   case 2: twig.palIs( branch.twig( pal ) ); break;
   case 3:
      if ( auto const other = this->branch() ) twig.palIs( other->twig( pal ) );
      break;
   }
}

void LogWorld::everythingStep() {
   Derived & all = *everything_;
   U32 const key = below( keys_ );
   Name const name( format( "%u", key ) );
   switch ( below( 14 ) ) {
   case 0: all.numberIs( below( 3 ) ); break;
   case 1: all.ratioIs( std::nan( "" ) ); break;
   case 2: all.ratioIs( below( 7 ) / 3.0 ); break;
   case 3: all.countDec( 1 ); break;
   case 4: all.childIs( Name( format( "%u", below( 2 ) ) ) )->sizeIs( key ); break;
   case 5: all.childDel(); break;
   case 6: all.leafIs( name )->sizeIs( below( 100 ) ); break;
   case 7: all.leafDel( name ); break;
   case 8:
      if ( auto const member = all.member( key ) ) {
         member->weightIs( below( 9 ) );
      } else {
         all.memberIs( U16( below( 3 ) ), key, U32( below( 3 ) ) );
      }
      break;
   case 9: all.memberDel( key ); break;
   case 10: all.scoreIs( key, random_() ); break;
   case 11: all.tagIs( name ); break;
   case 12: all.tagDel( name ); break;
   case 13: all.extraIs( below( 5 ) ); break;
   }
}

Ldp::LdpAdjId LogWorld::adjId() {
   Ldp::LdpIdentifier const peer( 0x0a000000 + below( keys_ ), 0 );
   if ( below( 3 ) ) return Ldp::LdpAdjId( peer, Lumo::IntfId( "Ethernet1" ) );
   return Ldp::LdpAdjId( peer, Lumo::IpAddr( 0x01010101 + below( 2 ) ) );
}

void LogWorld::adjStep() {
   auto const id = adjId();
   switch ( below( 8 ) ) {
   case 0: status_->adjStatusDel( id ); break;
   case 1: config_->adjConfigIs( id )->holdTimeIs( U16( below( 99 ) ) ); break;
   case 2: config_->adjConfigDel( id ); break;
   case 3: status_->adjStatusIs( id )->rxPktCountInc( 1 ); break;
   case 4: status_->adjStatusIs( id )->adjExpireTimeIs( double( below( 99 ) ) ); break;
   case 5:
      status_->adjStatusIs( id )->peerIpAddrIs( Lumo::IpGenAddr( Lumo::IpAddr( U32( random_() ) ) ) );
      break;
   case 6: status_->adjStatusIs( id )->operHoldTimeIs( U16( below( 99 ) ) ); break;
   case 7: status_->adjStatusIs( id )->adjStatusCodeIs( Ldp::LdpStatusCode( below( 9 ) ) ); break;
   }
}

} // namespace Test
