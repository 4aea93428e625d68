// Which attributes can be counted up and down. How counters count and whom they tell is in EntityTest and in
// the sweep over all attributes; the records do not tell them from other scalars.
#include "Ldp/LdpStatus.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Test::Calls;
using Test::Watcher;

template< auto... >
constexpr bool there = true;

static_assert( there< &LdpLinkStatus::rxPktCountInc, &LdpLinkStatus::txPktCountInc,
                      &LdpLinkStatus::errPktCountInc, &LdpLinkUdpPamStatus::rxPktCountInc,
                      &LdpLinkUdpPamStatus::txPktCountInc, &LdpLinkUdpPamStatus::errPktCountInc,
                      &LdpTargetStatus::rxPktCountInc, &LdpTargetStatus::txPktCountInc,
                      &LdpTargetStatus::errPktCountInc, &LdpTargetServerStatus::rxPktCountInc,
                      &LdpTargetServerStatus::errPktCountInc, &LdpTcpServerStatus::clientCountInc > );
static_assert(
     there< &Statistics::messageIdInc, &Statistics::fecCountUnfilteredInc, &Statistics::fecCountFilteredInc,
            &Statistics::fecCountUnfilteredDec, &Statistics::fecCountFilteredDec,
            &LdpSessionStatistics::ldpMsgTxCountInc, &LdpSessionStatistics::ldpMsgNotificationRxCountInc,
            &LdpSessionStatistics::ldpMsgNotificationTxCountInc > );
static_assert(
     there< &LdpFecConfigNotifier::downstreamLsrChangeCntInc,
            &LdpFecConfigNotifier::loopDetectionChangeCntInc,
            &LdpFecConfigNotifier::dsLsrMappingAvailChangeCntInc,
            &LdpFecConfigNotifier::labelDistCtrlChangeCntInc,
            &LdpFecConfigNotifier::labelRetentionChangeCntInc, &LdpFecConfigNotifier::viaChangeCntInc,
            &LdpFecConfigNotifier::lspRoleChangeCntInc, &LdpFecConfigNotifier::mplsLabelSetChangeCntInc,
            &LdpFecConfigNotifier::programmedLabelSetChangeCntInc, &LdpFecStatus::attributeVersionInc,
            &LdpFecCounters::labelMappingRxTlvInc, &LdpFecCounters::labelMappingUnknownTlvDropInc,
            &LdpFecCounters::labelMappingUnknownTlvNotifyInc, &LdpFecCounters::ldpMsgRxInc,
            &LdpFecCounters::ldpMsgTxInc, &LdpFecSessionNotifier::changeCntInc,
            &LdpFecSessionStatus::ldpMsgRxInc, &LdpFecSessionStatus::ldpMsgTxInc > );
static_assert(
     there< &LdpP2mpFecStateColl::notifyCounterInc, &LdpP2mpFecCounters::labelMappingRxTlvInc,
            &LdpP2mpFecCounters::labelMappingTxTlvInc, &LdpP2mpFecSessionLocalStateNotifier::notifyCounterInc,
            &LdpP2mpFecSessionRemoteStateNotifier::notifyCounterInc,
            &LdpP2mpFecSessionLocalState::ldpMsgRxInc, &LdpP2mpFecSessionLocalState::ldpMsgTxInc,
            &LdpP2mpFecSessionRemoteState::ldpMsgRxInc, &LdpP2mpFecSessionRemoteState::ldpMsgTxInc,
            &LocalPwFecSessionStatus::ldpMsgRxInc, &LocalPwFecSessionStatus::ldpMsgTxInc,
            &RemotePwFecSessionStatus::ldpMsgRxInc, &RemotePwFecSessionStatus::ldpMsgTxInc > );

TEST( Counters, OfASessionsPdusTellNobody ) {
   auto const statistics = ldpSessionStatisticsFactory( LdpSessionId() );
   Watcher seen( *statistics );
   EXPECT_EQ( statistics->ldpPduRxCountInc( 2 ) + statistics->ldpPduTxCountInc( 3 ), 5u );
   EXPECT_EQ( statistics->ldpPduRxErrorCountInc( 2 ), 2u );
   statistics->ldpMsgIdFecMappingInfoIs( 7, LdpMsgIdFecMappingInfo( {}, LdpLabelMapping, true ) );
   EXPECT_TRUE( statistics->ldpMsgIdFecMappingInfoDel( 7 ).valid() );
   EXPECT_EQ( statistics->ldpMsgIdFecMappingInfoDel( 7 ), LdpMsgIdFecMappingInfo() );
   EXPECT_FALSE( statistics->pwLocalMsgIdInfo( 7 ).valid() ) << "none is there";
   EXPECT_EQ( seen.taken(), Calls{} );
   EXPECT_EQ( statistics->ldpMsgRxCountInc( LdpHello, 0 ), 0u );
   EXPECT_EQ( statistics->ldpMsgRxCountInc( LdpHello, 2 ), 2u );
   EXPECT_EQ( seen.taken(), Calls{ "ldpMsgRxCount[LdpHello]" } ) << "once: the entry of 0 tells nobody";
}

} // namespace
