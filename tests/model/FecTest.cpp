// FECs: next hops, the children that a FEC begins with, and the notifiers through which one observer hears of
// all.
#include "Ldp/LdpP2mpFec.h"
#include "Vorn/Hash.h"
#include "Vorn/NboAttrLog.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Lumo::IntfId;
using Lumo::IpAddr;
using Lumo::IpGenAddr;
using Lumo::MplsLabel;
using Mpls::FwdEqvClass;
using Test::Calls;
using Test::Watcher;
using Vorn::Name;
using Vorn::Ptr;

FwdEqvClass const net10( Lumo::IpGenPrefix( IpAddr( 0x0a000000 ), 8 ) );
FwdEqvClass const net11( Lumo::IpGenPrefix( IpAddr( 0x0b000000 ), 8 ) );
LdpIdentifier const peer( 0x0a000001, 7 );

TEST( ViaTest, OrdersByHopThenInterfaceAndMixesBothIntoItsHash ) {
   IpGenAddr const v4( IpAddr( 0x0a000001 ) ), v6( Vorn::String( "2001:db8::1" ) );
   Via const inOrder[] = { Via(), Via( IpGenAddr(), IntfId( "a" ) ), Via( v4, IntfId( "a" ) ),
                           Via( v4, IntfId( "b" ) ), Via( v6, IntfId( "a" ) ) };
   for ( auto const & a : inOrder ) {
      for ( auto const & b : inOrder ) {
         EXPECT_EQ( a < b, &a < &b ) << a << " " << b;
         EXPECT_EQ( a == b, &a == &b );
      }
      EXPECT_EQ( !a, &a == inOrder );
      // That of the 16-octet field, also of an IPv4 address.
      Lumo::Ip6Addr field;
      std::copy_n( a.hop().octets(), 16, field.octets() );
      U32 const hop = field.hash(), intf = a.intfId().hash();
      Vorn::Hash hash;
      hash.mix< 4 >( &hop );
      hash.mix< 4 >( &intf );
      EXPECT_EQ( a.hash(), hash.result() );
   }
   EXPECT_EQ( inOrder[2].stringValue(), "10.0.0.1-a" );
}

TEST( LdpFecConfigTest, ALabelSetStaysOnlyUnderTheSameNameAndFec ) {
   auto const fec = ldpFecConfigFactory( net10 );
   auto const first = fec->mplsLabelSet();
   EXPECT_EQ( first->fwdEqvClass(), net10 );
   EXPECT_EQ( ldpP2mpFecStateFactory( net10 )->mplsLabelSet()->fwdEqvClass(), net10 );
   Watcher seen( *fec );
   EXPECT_EQ( fec->mplsLabelSetIs( Name( "labelSet" ), net10 ).ptr(), first.ptr() );
   EXPECT_EQ( seen.taken(), Calls{} );
   auto const second = fec->mplsLabelSetIs( Name( "labelSet" ), net11 );
   EXPECT_EQ( second->fwdEqvClass(), net11 );
   EXPECT_FALSE( first->parent() );
   auto const third = fec->mplsLabelSetIs( Name( "other" ), net11 );
   EXPECT_EQ( third->name(), "other" );
   EXPECT_FALSE( second->parent() );
   EXPECT_EQ( third->parent().ptr(), fec.ptr() );
   EXPECT_EQ( seen.taken(), ( Calls{ "mplsLabelSet", "mplsLabelSet" } ) );

   auto const advertised = fec->advertisedTo();
   EXPECT_EQ( fec->advertisedToIs( net10 ).ptr(), advertised.ptr() ) << "made for the FEC";
   EXPECT_NE( fec->advertisedToIs( net11 ).ptr(), advertised.ptr() );
   EXPECT_FALSE( advertised->parent() );
}

TEST( LdpFecConfigTest, TheReverseIndexOverwritesAndTellsNobody ) {
   auto const fec = ldpFecConfigFactory( net10 );
   Via const via( IpAddr( 0x0a000001 ), IntfId( "a" ) );
   Watcher seen( *fec );
   EXPECT_EQ( fec->viaLdpIdMappingDel( via ), LdpIdentifier() );
   fec->viaLdpIdMappingIs( via, peer );
   fec->viaLdpIdMappingIs( via, LdpIdentifier( 1, 1 ) );
   EXPECT_EQ( fec->viaLdpIdMapping( via ), LdpIdentifier( 1, 1 ) );
   EXPECT_EQ( fec->viaLdpIdMappingDel( via ), LdpIdentifier( 1, 1 ) );
   fec->ldpIdViaMappingIs( peer )->viaIs( via, true );
   fec->intfIpViaMappingIs( IpAddr( 0x0a000001 ) )->viaIs( via, true );
   fec->ldpIdViaMappingDelAll();
   fec->intfIpViaMappingDelAll();
   EXPECT_EQ( seen.taken(), Calls{} );
}

class FecNotifierTest : public testing::Test {
 protected:
   std::string context() const {
      std::string text = notifier->lastFecConfig() ? "FEC " : "";
      text += notifier->lastFwdEqvClass().stringValue().charPtr();
      text += std::string( " " ) + notifier->lastLdpId().stringValue().charPtr();
      return text + " " + valueToStrep( notifier->lastMplsLabel() ).charPtr();
   }

   Ptr< LdpFecConfigColl > coll = ldpFecConfigCollFactory( "fecs" );
   Ptr< LdpFecConfig > fec = coll->fecConfigIs( net10 );
   Ptr< LdpFecConfigNotifier > notifier = coll->fecConfigNotifier();
   std::string const none = std::string( FwdEqvClass().stringValue().charPtr() ) + " 0.0.0.0:0 1048576";
};

TEST_F( FecNotifierTest, TheContextIsThereWhileTheCounterMoves ) {
   using Notifier = LdpFecConfigNotifier;
   struct Row {
      char const * counter;
      std::function< void( Notifier &, Ptr< LdpFecConfig > const & ) > update;
      char const * context = "FEC 10.0.0.0/8 0.0.0.0:0 1048576";
   };
   Row const rows[] = {
      { "downstreamLsrChangeCnt", []( auto & n, auto const & f ) { n.updateDownstreamLsr( f, peer ); },
        "FEC 10.0.0.0/8 10.0.0.1:7 1048576" },
      { "loopDetectionChangeCnt", []( auto & n, auto const & f ) { n.updateLoopDetection( f ); } },
      { "dsLsrMappingAvailChangeCnt", []( auto & n, auto const & f ) { n.updateDsLsrMappingAvail( f ); } },
      { "labelDistCtrlChangeCnt", []( auto & n, auto const & f ) { n.updateLabelDistCtrl( f ); } },
      { "labelRetentionChangeCnt", []( auto & n, auto const & f ) { n.updateLabelRetention( f ); } },
      { "viaChangeCnt", []( auto & n, auto const & f ) { n.updateVia( f ); } },
      { "lspRoleChangeCnt", []( auto & n, auto const & f ) { n.updateLspRole( f ); } },
      { "mplsLabelSetChangeCnt",
        []( auto & n, auto const & f ) { n.updateMplsLabelSet( f, MplsLabel( 16 ) ); },
        "FEC 10.0.0.0/8 0.0.0.0:0 16" },
      { "programmedLabelSetChangeCnt", []( auto & n, auto const & f ) { n.updateProgrammedLabelSet( f ); } },
   };
   for ( Row const & row : rows ) {
      Calls contexts;
      Watcher seen( *notifier, [&] { contexts.push_back( context() ); } );
      row.update( *notifier, fec );
      EXPECT_EQ( seen.taken(), Calls{ row.counter } ) << "the context is set and cleared in silence";
      EXPECT_EQ( contexts, Calls{ row.context } ) << row.counter;
      EXPECT_EQ( context(), none ) << row.counter;
   }
}

TEST_F( FecNotifierTest, ACounterWrapsAndStillWakes ) {
   notifier->viaChangeCntIs( 255 );
   Watcher seen( *notifier );
   notifier->updateVia( fec );
   EXPECT_EQ( notifier->viaChangeCnt(), 0u );
   EXPECT_EQ( seen.taken(), Calls{ "viaChangeCnt" } );
}

TEST_F( FecNotifierTest, AFailingObserverLeavesNoContextBehind ) {
   Watcher failing( *notifier, [] { throw std::runtime_error( "observer" ); } );
   notifier->updateMplsLabelSet( fec, MplsLabel( 16 ) );
   notifier->updateDownstreamLsr( fec, peer );
   EXPECT_EQ( context(), none );
}

TEST_F( FecNotifierTest, AnUpdateWithinAnUpdateClearsTheOuterContext ) {
   auto const other = coll->fecConfigIs( net11 );
   Watcher nesting( *notifier, [&] {
      if ( notifier->lastFwdEqvClass() == net10 ) notifier->updateVia( other );
   } );
   Calls contexts;
   Watcher seen( *notifier, [&] { contexts.push_back( context() ); } );
   notifier->updateLspRole( fec );
   EXPECT_EQ( contexts, ( Calls{ "FEC 11.0.0.0/8 0.0.0.0:0 1048576", none } ) );
}

TEST_F( FecNotifierTest, WritingTheContextDirectlyTells ) {
   Watcher seen( *notifier );
   notifier->lastFecConfigIs( fec );
   notifier->lastMplsLabelIs( MplsLabel( 16 ) );
   notifier->lastLdpIdIs( peer );
   EXPECT_EQ( seen.taken(), ( Calls{ "lastFecConfig", "lastMplsLabel", "lastLdpId" } ) );
   EXPECT_EQ( notifier->lastFwdEqvClass(), net10 );

   Calls contexts;
   Watcher during( *notifier, [&] { contexts.push_back( context() ); } );
   notifier->updateVia( fec );
   EXPECT_EQ( contexts, Calls{ "FEC 10.0.0.0/8 0.0.0.0:0 1048576" } ) << "an update has a context of its own";
   EXPECT_EQ( context(), none );

   Watcher writing( *notifier, [&] { notifier->lastLdpIdIs( peer ); } );
   notifier->updateVia( fec );
   EXPECT_EQ( notifier->lastLdpId(), peer ) << "an update clears what it was given";
}

TEST_F( FecNotifierTest, TheContextNeverReachesTheLog ) {
   namespace NboAttrLog = Vorn::NboAttrLog;
   // Within an update an observer drains a log that was full, and attaches everything to another.
   auto const full = Vorn::newObject< NboAttrLog::Out >( 64U );
   coll->vornNboAttrLogSaIs( 0, 0, full );
   Ptr< NboAttrLog::Out > late;
   struct Copy {
      void carry( Ptr< NboAttrLog::Out > const & from ) {
         while ( auto const bytes = from->bytes() ) {
            demuxer->bytesIs( from->data(), bytes );
            from->drained( bytes );
         }
      }
      LdpFecConfigNotifier & notifier() const {
         return *static_cast< LdpFecConfigColl & >( *demuxer->roots().at( 0 ) ).fecConfigNotifier();
      }
      Ptr< NboAttrLog::Demuxer > demuxer =
           Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
   };
   Copy one;
   one.carry( full );
   std::vector< std::string > inside;
   bool updating = false;
   Watcher seen( *notifier, [&] {
      if ( !updating ) return;
      inside.push_back( context() );
      one.carry( full );
      late = Vorn::newObject< NboAttrLog::Out >();
      coll->vornNboAttrLogSaIs( 0, 0, late );
   } );
   for ( auto const & update : std::initializer_list< std::function< void() > >{
              [&] { notifier->updateMplsLabelSet( fec, MplsLabel( 16 ) ); },
              [&] { notifier->updateDownstreamLsr( fec, peer ); } } ) {
      while ( full->hasSufficientBuffer() ) {
         notifier->viaChangeCntInc( 1 );
      }
      // What is written outside an update waits there with it.
      notifier->lastLdpIdIs( LdpIdentifier( 9, 9 ) );
      notifier->lastMplsLabelIs( MplsLabel( 99 ) );
      inside.clear();
      updating = true;
      update();
      updating = false;
      EXPECT_EQ( inside.size(), 1U );
      EXPECT_NE( inside.front(), none );
      Copy other;
      other.carry( late );
      one.carry( full );
      for ( Copy const * copy : { &one, &other } ) {
         EXPECT_EQ( copy->notifier().lastFecConfig(), nullptr );
         EXPECT_EQ( copy->notifier().lastLdpId(), LdpIdentifier() );
         EXPECT_EQ( copy->notifier().lastMplsLabel(), MplsLabel() );
         EXPECT_EQ( copy->notifier().mplsLabelSetChangeCnt(), notifier->mplsLabelSetChangeCnt() );
         EXPECT_EQ( copy->notifier().downstreamLsrChangeCnt(), notifier->downstreamLsrChangeCnt() );
      }
   }
}

TEST_F( FecNotifierTest, AnObserverMayDropTheNotifier ) {
   auto & dropped = *notifier;
   U32 const references = fec->references();
   Watcher dropping( dropped, [&] {
      coll->fecConfigNotifierDel();
      notifier = nullptr;
   } );
   dropped.updateDownstreamLsr( fec, peer );
   EXPECT_EQ( dropping.taken(), Calls{ "downstreamLsrChangeCnt" } );
   EXPECT_EQ( fec->references(), references );
}

TEST( FecStatusNotifierTest, TheContextIsThereWhileTheCounterMoves ) {
   auto const coll = ldpFecStatusCollFactory( "fecs" );
   auto const fec = coll->fecStatusIs( net10 );
   auto const notifier = coll->fecStatusNotifier();
   std::vector< FwdEqvClass > context;
   Watcher seen( *notifier, [&] { context.push_back( notifier->lastFwdEqvClass() ); } );
   notifier->updateRequestSmNotiTime( fec );
   EXPECT_FALSE( notifier->lastFecStatus() );
   notifier->updateMappingSmNotiTime( fec );
   EXPECT_FALSE( notifier->lastFecStatus() );
   EXPECT_EQ( seen.taken(), ( Calls{ "labelXsessionRequestSmNotiTimeChangeCnt",
                                     "labelXsessionMappingSmNotiTimeChangeCnt" } ) );
   EXPECT_EQ( context, ( std::vector< FwdEqvClass >{ net10, net10 } ) );
}

} // namespace
