// Which attributes can be counted up, and that local counters tell nobody.
#include "Ldp/LdpStatus.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Test::Calls;
using Test::Watcher;

// Counts a scalar or one key's number, and is told of it.
#define COUNTS( object, attr )                                                                               \
   EXPECT_EQ( object->attr##Inc( 2 ), 2u );                                                                  \
   EXPECT_EQ( object->attr(), 2u )
#define COUNTS_KEY( object, attr, key )                                                                      \
   EXPECT_EQ( object->attr##Inc( key, 0 ), 0u );                                                             \
   EXPECT_TRUE( object->attr##Has( key ) );                                                                  \
   EXPECT_EQ( object->attr##Inc( key, 2 ), 2u );                                                             \
   EXPECT_EQ( object->attr( key ), 2u )
#define COUNTS_MSGS( object )                                                                                \
   COUNTS_KEY( object, ldpMsgRx, LdpHello );                                                                 \
   COUNTS_KEY( object, ldpMsgTx, LdpHello )

LdpSessionId const peer( LdpIdentifier( 0x0a000001, 0 ) );
Mpls::FwdEqvClass const fec( Lumo::IpGenPrefix( Lumo::IpAddr( 0x0a000000 ), 8 ) );
LdpFecSessionId const fecSession( fec, peer );
PwFecSessionId const pwSession( PwFwdEqvClass( Pseudowire::PseudowireId( 1 ), Pseudowire::pwTypeRaw, false ),
                                peer );

TEST( Counters, OfDiscoveryAndConnections ) {
   auto const link = ldpLinkStatusFactory( Lumo::IntfId( "e" ) );
   COUNTS( link, rxPktCount );
   COUNTS( link, txPktCount );
   COUNTS( link, errPktCount );
   auto const pam = ldpLinkUdpPamStatusFactory( "pam" );
   COUNTS( pam, rxPktCount );
   COUNTS( pam, txPktCount );
   COUNTS( pam, errPktCount );
   auto const target = ldpTargetStatusFactory( Lumo::IpAddr( 1 ) );
   COUNTS( target, rxPktCount );
   COUNTS( target, txPktCount );
   COUNTS( target, errPktCount );
   auto const targets = ldpTargetServerStatusFactory( "targets" );
   COUNTS( targets, rxPktCount );
   COUNTS( targets, errPktCount );
   auto const server = ldpTcpServerStatusFactory( "server" );
   COUNTS_KEY( server, clientCount, Lumo::IpAddr( 1 ) );
}

TEST( Counters, OfStatisticsGoDownAsWell ) {
   auto const statistics = statisticsFactory( "statistics" );
   COUNTS( statistics, messageId );
   COUNTS( statistics, fecCountUnfiltered );
   COUNTS( statistics, fecCountFiltered );
   EXPECT_EQ( statistics->fecCountUnfilteredDec( 3 ), ~0u );
   EXPECT_EQ( statistics->fecCountFilteredDec( 2 ), 0u );
}

TEST( Counters, OfASessionsPdusTellNobody ) {
   auto const statistics = ldpSessionStatisticsFactory( peer );
   Watcher seen( *statistics );
   COUNTS( statistics, ldpPduRxCount );
   COUNTS( statistics, ldpPduTxCount );
   COUNTS( statistics, ldpPduRxErrorCount );
   statistics->ldpMsgIdFecMappingInfoIs( 7, LdpMsgIdFecMappingInfo( fec, LdpLabelMapping, true ) );
   EXPECT_TRUE( statistics->ldpMsgIdFecMappingInfoDel( 7 ).valid() );
   EXPECT_EQ( statistics->ldpMsgIdFecMappingInfoDel( 7 ), LdpMsgIdFecMappingInfo() );
   EXPECT_FALSE( statistics->pwLocalMsgIdInfo( 7 ).valid() ) << "none is there";
   EXPECT_EQ( seen.taken(), Calls{} );
   COUNTS_KEY( statistics, ldpMsgRxCount, LdpHello );
   EXPECT_EQ( seen.taken(), Calls{ "ldpMsgRxCount[LdpHello]" } ) << "once: the entry of 0 tells nobody";
   COUNTS_KEY( statistics, ldpMsgTxCount, LdpHello );
   COUNTS_KEY( statistics, ldpMsgNotificationRxCount, shutdown );
   COUNTS_KEY( statistics, ldpMsgNotificationTxCount, shutdown );
}

TEST( Counters, OfFecs ) {
   auto const config = ldpFecConfigNotifierFactory( "" );
   COUNTS( config, downstreamLsrChangeCnt );
   COUNTS( config, loopDetectionChangeCnt );
   COUNTS( config, dsLsrMappingAvailChangeCnt );
   COUNTS( config, labelDistCtrlChangeCnt );
   COUNTS( config, labelRetentionChangeCnt );
   COUNTS( config, viaChangeCnt );
   COUNTS( config, lspRoleChangeCnt );
   COUNTS( config, mplsLabelSetChangeCnt );
   COUNTS( config, programmedLabelSetChangeCnt );
   auto const status = ldpFecStatusFactory( fec );
   COUNTS( status, attributeVersion );
   auto const counters = ldpFecCountersFactory( "counters" );
   COUNTS_KEY( counters, labelMappingRxTlv, fecTlv );
   COUNTS( counters, labelMappingUnknownTlvDrop );
   COUNTS( counters, labelMappingUnknownTlvNotify );
   COUNTS_MSGS( counters );
   auto const notifier = ldpFecSessionNotifierFactory( "notifier" );
   COUNTS( notifier, changeCnt );
   auto const session = ldpFecSessionStatusFactory( fecSession );
   COUNTS_MSGS( session );
}

TEST( Counters, OfP2mpFecsAndPseudowires ) {
   auto const fecs = ldpP2mpFecStateCollFactory( "fecs" );
   COUNTS( fecs, notifyCounter );
   EXPECT_EQ( fecs->notifyCounterInc( 254 ), 0u ) << "8 bits wide";
   auto const counters = ldpP2mpFecCountersFactory( "counters" );
   COUNTS_KEY( counters, labelMappingRxTlv, fecTlv );
   COUNTS_KEY( counters, labelMappingTxTlv, fecTlv );
   auto const local = ldpP2mpFecSessionLocalStateNotifierFactory( peer );
   COUNTS( local, notifyCounter );
   auto const remote = ldpP2mpFecSessionRemoteStateNotifierFactory( peer );
   COUNTS( remote, notifyCounter );
   auto const localState = ldpP2mpFecSessionLocalStateFactory( fecSession );
   COUNTS_MSGS( localState );
   auto const remoteState = ldpP2mpFecSessionRemoteStateFactory( fecSession );
   COUNTS_MSGS( remoteState );
   auto const localPw = localPwFecSessionStatusFactory( pwSession );
   COUNTS_MSGS( localPw );
   auto const remotePw = remotePwFecSessionStatusFactory( pwSession );
   COUNTS_MSGS( remotePw );
}

} // namespace
