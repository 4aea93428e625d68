// The hand-over of a message through a pipe, within the writer's call.
#include "Ldp/LdpCommon.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

namespace {

using namespace Ldp;
using Test::Calls;
using Test::Watcher;
using Vorn::Ptr;

LdpIdentifier const peer( 0x0a000001, 0 );

class MsgPipeTest : public testing::Test {
 protected:
   Ptr< Lumo::Pkt > pkt = Lumo::pktFactory( "0123", 4 );
   Ptr< LdpMsg > msg = ldpMsgFactory( peer, pkt, 2 );
   Ptr< LdpMsgPipe > pipe = ldpMsgPipeFactory( "pipe" );
};

TEST_F( MsgPipeTest, AMessageHoldsItsPacketUnparsed ) {
   EXPECT_EQ( msg->ldpIdentifier(), peer );
   EXPECT_EQ( msg->pkt().ptr(), pkt.ptr() );
   EXPECT_EQ( msg->offset(), 2u );
   EXPECT_EQ( pkt->references(), 2u );
   msg = nullptr;
   EXPECT_EQ( pkt->references(), 1u );
}

TEST_F( MsgPipeTest, TheObserverTakesTheMessageWithinTheWrite ) {
   Ptr< LdpMsg > got;
   Watcher reader( *pipe, [&] { got = pipe->rxMsg(); } );
   pipe->txMsgIs( msg );
   EXPECT_EQ( got.ptr(), msg.ptr() );
   EXPECT_FALSE( pipe->msgHolder() );
   EXPECT_EQ( reader.taken(), Calls{ "readableCount" } );
   EXPECT_EQ( pipe->readableCount(), 1u );
   pipe->txMsgIs( msg ); // there is room again
   EXPECT_EQ( pipe->readableCount(), 2u );
}

TEST_F( MsgPipeTest, TakingTellsNobodyAndLeavesTheCount ) {
   pipe->txMsgIs( msg );
   Watcher reader( *pipe );
   EXPECT_EQ( pipe->msgHolder().ptr(), msg.ptr() );
   EXPECT_EQ( pipe->rxMsg().ptr(), msg.ptr() );
   EXPECT_FALSE( pipe->rxMsg() );
   EXPECT_EQ( pipe->readableCount(), 1u );
   EXPECT_EQ( reader.taken(), Calls{} );
}

TEST_F( MsgPipeTest, ASecondMessageBeforeTheFirstIsTakenEndsTheProcess ) {
   pipe->txMsgIs( nullptr );
   EXPECT_EQ( pipe->readableCount(), 1u ) << "no message, and yet it counts";
   pipe->txMsgIs( msg ); // the slot was still empty
   EXPECT_DEATH( pipe->txMsgIs( msg ), "`msgHolder_ == __null'" );
   EXPECT_DEATH( pipe->txMsgIs( nullptr ), "`msgHolder_ == __null'" );
}

TEST_F( MsgPipeTest, TheCountWraps ) {
   pipe->readableCountIs( ~0u );
   Watcher reader( *pipe, [&] { pipe->rxMsg(); } );
   pipe->txMsgIs( msg );
   EXPECT_EQ( pipe->readableCount(), 0u );
   EXPECT_EQ( reader.taken(), Calls{ "readableCount" } );
}

TEST_F( MsgPipeTest, ACollectionRefersToPipesUntilNull ) {
   auto const coll = ldpAdjMsgPipeCollectionFactory( "pipes" );
   LdpAdjId const key( peer, Lumo::IntfId( "e" ) );
   Watcher seen( *coll );
   coll->msgPipeIs( key, nullptr );
   EXPECT_EQ( seen.taken(), Calls{} );
   coll->msgPipeIs( key, pipe );
   coll->msgPipeIs( key, pipe );
   EXPECT_EQ( seen.taken(), Calls{ "msgPipe[10.0.0.1:0_e]" } );
   EXPECT_FALSE( pipe->parent() ) << "it is referred to, not owned";
   coll->msgPipeIs( key, nullptr );
   EXPECT_EQ( seen.taken(), Calls{ "msgPipe[10.0.0.1:0_e]" } );
   EXPECT_FALSE( coll->msgPipe( key ) );
   pipe->txMsgIs( msg ); // it lives on
}

TEST_F( MsgPipeTest, AP2mpCollectionOwnsItsPipesAndIsOneItself ) {
   auto const coll = ldpP2mpSessionLocalLabelMsgPipeCollFactory( "pipes" );
   auto const member = coll->p2mpFecSessionLocalLabelMsgPipeIs( LdpSessionId( peer ) );
   EXPECT_EQ( member->parent().ptr(), coll.ptr() );
   EXPECT_TRUE( member->name().empty() );
   coll->txMsgIs( msg );
   EXPECT_EQ( coll->rxMsg().ptr(), msg.ptr() );
   EXPECT_FALSE( member->msgHolder() );
}

} // namespace
