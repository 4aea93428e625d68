// The protocol's registries: which message and TLV types header validation knows, and what the readers of
// names take. The names are in expected/enums.txt.

#include "Expect.h"

#include "Ldp/LdpHdr.h"

#include <limits>
#include <set>

using namespace Ldp;
using namespace Wire;

namespace {

TEST( Enums, numberWithoutANameIsAnOrdinaryValue ) {
   EXPECT_EQ( valueToStrep( LdpMsgType( 0 ) ), "0" );
   EXPECT_EQ( valueToStrep( LdpTlvType( 258 ) ), "258" );
   EXPECT_EQ( valueToStrep( LdpStatusCode( 26 ) ), "26" );
   EXPECT_EQ( valueToStrep( LdpStatusCode( 0xffffffff ) ), "4294967295" );
   EXPECT_EQ( stringValue( grConfigChange ), "grConfigChange" );
   LdpStatusCode status = success;
   Vorn::strepToValue( "4294967295", &status );
   EXPECT_EQ( status, LdpStatusCode( 0xffffffff ) );
}

// Every one of the 14-bit types, with all four settings of the flag bits.
TEST( Enums, knownTlvTypes ) {
   std::set< U32 > known{ 256, 257, 259, 260, 1536, 2410, 15872, 16127, 16128, 16383 };
   for ( auto const & [from, to] :
         { std::pair{ 512, 514 }, { 768, 771 }, { 1024, 1027 }, { 1280, 1283 }, { 1286, 1295 } } ) {
      for ( int type = from; type <= to; ++type ) {
         known.insert( U32( type ) );
      }
   }
   ASSERT_EQ( known.size(), 35u );
   for ( U32 type = 0; type <= 16383; ++type ) {
      for ( U32 const flags : { 0u, uBit, fBit, uBit | fBit } ) {
         LdpTlvHdr hdr;
         hdr.tlvTypeFieldIs( LdpTlvTypeField( U16( type | flags ) ) );
         hdr.lengthNboIs( Lumo::NetU16( U16( 65532 + flags ) ) ); // plays no part
         LdpStatusCode const expected = known.count( type ) ? success
                                        : flags & uBit      ? unknownMessageTypeIgnore
                                                            : unknownTlv;
         ASSERT_EQ( hdr.validateTlvHdr(), expected ) << type << " flags " << flags;
      }
   }
}

TEST( Enums, knownMessageTypes ) {
   std::set< U32 > const known{ 1, 256, 512, 513, 514, 768, 769, 1024, 1025, 1026, 1027, 1028 };
   for ( U32 type = 0; type <= 0x7fff; ++type ) {
      ASSERT_EQ( ldpIsKnownMsgType( LdpMsgType( type ) ), known.count( type ) == 1 ) << type;
   }
}

} // namespace
