// The walk over a run of type-length units, messages or TLVs.

#include "Expect.h"

#include "Ldp/LdpGenMsgParser.h"

#include <map>

using namespace Ldp;
using namespace Wire;

namespace {

Vorn::Ptr< LdpTlvGroupParser > walk( Vorn::Ptr< Lumo::Pkt > const & packet, U32 offset, U32 size ) {
   auto const group = Vorn::newObject< LdpTlvGroupParser >( Vorn::Name() );
   group->pktIs( packet );
   group->offsetIs( offset );
   group->sizeIs( size );
   EXPECT_TRUE( group->parseTlvGroup() ); // in every case
   return group;
}

std::vector< U32 > unitsOf( LdpTlvGroupParser const & group ) {
   std::vector< U32 > offsets;
   for ( U32 i = 0; i < group.tlvNum(); ++i ) {
      offsets.push_back( group.tlvOffset( i ) );
   }
   return offsets;
}

TEST( GroupParser, wrappedLengthsMoveOnOneToThreeOctets ) {
   // From 0: length fffd, total 1. From 1: octets 00 ff fd 00, length fd00, past the run.
   auto group = walk( pkt( "0000 fffd 00" ), 0, 5 );
   EXPECT_EQ( group->reason(), "Msg/Tlv is corrupted/truncated" );
   EXPECT_EQ( unitsOf( *group ), ( std::vector< U32 >{ 0 } ) );
   // From 0: length ffff, total 3. From 3: octets ff 00 00 01, length 1, total 5.
   group = walk( pkt( "0000 ffff 0000 01 07" ), 0, 8 );
   EXPECT_TRUE( group->valid() );
   EXPECT_EQ( unitsOf( *group ), ( std::vector< U32 >{ 0, 3 } ) );
}

TEST( GroupParser, lengthOf65532EndsTheProcess ) {
   char const * const text = "header->totalLength() > 0";
   EXPECT_ASSERTION( walk( pkt( "0000 fffc" ), 0, 4 ), text );
   EXPECT_ASSERTION( walk( pkt( tlv( 1, "aa" ) + "0000 fffc" ), 0, 9 ), text );
   // Met before the unit is held against its run, also when octets behind the run complete its header.
   EXPECT_ASSERTION( walk( pkt( "0000 fffc" ), 0, 1 ), text );
   EXPECT_ASSERTION( walk( pkt( tlv( 1, "aa" ) + "0000 fffc" ), 0, 6 ), text );
   // But not when the packet ends within that header, or the run before it.
   EXPECT_FALSE( walk( pkt( tlv( 1, "aa" ) + "0000 ff" ), 0, 8 )->valid() );
   EXPECT_TRUE( walk( pkt( tlv( 1, "aa" ) + "0000 fffc" ), 0, 5 )->valid() );
}

TEST( GroupParser, assertsItsOffset ) {
   EXPECT_ASSERTION( walk( pkt( "0000" ), 3, 0 ), "pkt_->frontBytes() >= offset_" );
}

TEST( GroupParser, offsetAndSizeDoNotWrap ) {
   // Their sum is 4 in 32 bits.
   auto const packet = pkt( Octets( 16 ) );
   auto const group = walk( packet, 8, 0xfffffffc );
   EXPECT_EQ( group->reason(), "Packet is too small, size: 16" );
}

TEST( GroupParser, secondWalkOverwritesWhatItReaches ) {
   auto const packet = pkt( tlv( 1 ) + tlv( 2 ) + tlv( 3 ) + tlvLen( 4, 9 ) );
   auto const group = walk( packet, 0, 16 );
   EXPECT_FALSE( group->valid() );
   EXPECT_EQ( unitsOf( *group ), ( std::vector< U32 >{ 0, 4, 8 } ) ); // found before the failure

   group->offsetIs( 4 );
   group->sizeIs( 4 );
   group->parseTlvGroup();
   EXPECT_TRUE( group->valid() );
   EXPECT_EQ( group->statusCode(), success );
   EXPECT_EQ( group->reason(), "Msg/Tlv is corrupted/truncated" ); // a new walk does not clear it
   EXPECT_EQ( unitsOf( *group ), ( std::vector< U32 >{ 4, 4, 8 } ) );
}

TEST( GroupParser, offsetsAreAnOrdinaryCollection ) {
   auto const group = walk( pkt( tlv( 1 ) + tlv( 2 ) ), 0, 8 );
   EXPECT_EQ( group->tlvOffset( 2 ), 0u );
   group->tlvOffsetIs( 7, 99 );
   EXPECT_EQ( group->tlvNum(), 3u );
   EXPECT_EQ( group->tlvOffset( 7 ), 99u );
   std::map< U32, U32 > walked;
   for ( auto const & unit : group->tlvOffsetColl() )
      walked[unit.key()] = unit.value();
   EXPECT_EQ( walked, ( std::map< U32, U32 >{ { 0, 0 }, { 1, 4 }, { 7, 99 } } ) );
   EXPECT_EQ( group->tlvOffsetDel( 1 ), 4u );
   EXPECT_EQ( group->tlvOffsetDel( 1 ), 0u );
   EXPECT_EQ( group->tlvNum(), 2u );
   EXPECT_EQ( group->tlvOffset( 1 ), 0u );
   group->tlvOffsetDelAll();
   EXPECT_EQ( group->tlvNum(), 0u );
}

TEST( GroupParser, manyUnits ) {
   Hex all;
   for ( int i = 0; i < 2390; ++i ) {
      all += tlv( 1 );
   }
   auto const group = walk( pkt( all ), 0, 4 * 2390 );
   EXPECT_TRUE( group->valid() );
   ASSERT_EQ( group->tlvNum(), 2390u );
   for ( U32 i = 0; i < 2390; ++i ) {
      ASSERT_EQ( group->tlvOffset( i ), 4 * i );
   }
}

} // namespace
