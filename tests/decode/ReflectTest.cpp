// Reading by reflection ends no process, whatever a view or a parser lies over and whatever was dropped
// before.

#include "Expect.h"

#include "Ldp/LdpUtils.h"
#include "Vorn/GenericIf.h"
#include "support/ReadAll.h"

using namespace Ldp;
using namespace Wire;
namespace GenericIf = Vorn::GenericIf;

namespace {

/// What an operation on the attribute of that name comes to; `called` for a function.
U32 outcome( void * object, Vorn::VornType const & type, char const * name, bool called = false ) {
   auto const & attr = *type.attribute( name );
   GenericIf::Value value( attr.type );
   return GenericIf::attributeOp( type, value.data(), object, attr,
                                  called ? GenericIf::write : GenericIf::read, nullptr, nullptr );
}
template< class Object >
bool hasText( Object & object ) {
   return outcome( &object, *object.fwkType(), "stringValue" ) == GenericIf::done;
}

TEST( Reflection, aViewOverAnotherTypeIsRefused ) {
   U32 texts = 0, judged = 0, refused = 0;
   for ( Vorn::VornType const * type : Vorn::typeNodes() ) {
      if ( !type->isOverlay() ) continue;
      SCOPED_TRACE( type->name );
      Octets zeros( 1 << 17 ); // no type of TLV, no interface parameter; room for every length
      auto * const view = reinterpret_cast< Vorn::NrcPtrInterface * >( zeros.data() );
      for ( bool const called : { false, true } ) {
         char const * const name = called ? "validate" : "stringValue";
         if ( !type->attribute( name ) ) continue;
         refused += outcome( view, *type, name, called ) == GenericIf::notApplicable;
         ++( called ? judged : texts );
      }
      Fuzz::Sink sink;
      Fuzz::readRecord( sink, view, *type );
   }
   EXPECT_EQ( texts, 14u ); // of the PDU header as well
   EXPECT_EQ( judged, 18u );
   EXPECT_EQ( refused, 9u + 9u + 5u );
}

TEST( Reflection, aParserOverAnotherTypeIsRefused ) {
   auto const packet = pkt( tlv( expTlvEnd, repeat( 40, 0 ) ) );
   auto const of = [&]( auto factory ) {
      auto const parser = factory( packet, 0 );
      bool const text = hasText( *parser );
      EXPECT_EQ( outcome( parser.ptr(), *parser->fwkType(), "validate", true ) == GenericIf::done, text );
      return text;
   };
   EXPECT_FALSE( of( ldpCommonHelloTlvParserFactory ) );
   EXPECT_FALSE( of( ldpIpTransportAddrTlvParserFactory ) );
   EXPECT_FALSE( of( ldpConfigSeqNumTlvParserFactory ) );
   EXPECT_FALSE( of( ldpIp6TransportAddrTlvParserFactory ) );
   EXPECT_FALSE( of( ldpGenLabelTlvParserFactory ) );
   EXPECT_FALSE( of( ldpLabelReqMsgIdTlvParserFactory ) );
   EXPECT_FALSE( of( ldpHopCountTlvParserFactory ) );
   EXPECT_FALSE( of( ldpPathVectorTlvParserFactory ) );
   EXPECT_FALSE( of( ldpStatusTlvParserFactory ) );
   // These judge the header, whatever it is.
   EXPECT_TRUE( of( ldpCommonSessionParamTlvParserFactory ) );
   EXPECT_TRUE( of( ldpFtSessionTlvParserFactory ) );
   EXPECT_TRUE( of( ldpAddressListTlvParserFactory ) );
   EXPECT_TRUE( of( ldpPwStatusTlvParserFactory ) );
   auto const none = Vorn::newObject< LdpFecTlvElement >();
   EXPECT_FALSE( hasText( *none ) );
}

TEST( Reflection, aMessageWithoutWhatItsTextNeedsHasNone ) {
   Hex const fec = tlv( fecTlv, "02 0001 08 0a" ), label = tlv( genLabelTlv, "00000064" );
   for ( Hex const & message :
         { msg( LdpLabelMapping, 1, { fec, label } ), msg( LdpLabelRequest, 1, { fec } ),
           msg( LdpLabelWithdraw, 1, { fec } ), msg( LdpLabelRelease, 1, { fec } ),
           msg( LdpLabelAbortReq, 1, { fec, tlv( labelReqMsgIdTlv, "00000001" ) } ),
           msg( LdpNotification, 1,
                { tlv( statusTlv, "00000028 00000000 0000" ), tlv( pwStatusTlv, "00000000" ),
                  tlv( fecTlv, "80 0005 04 00000001 00000064" ) } ) } ) {
      auto const parser = ldpMsgParserGet( msgPkt( message ), msgOffset );
      ASSERT_TRUE( parser->validMsg() ) << parser->reason();
      EXPECT_TRUE( hasText( *parser ) );
      EXPECT_TRUE( parser->ldpFecTlvParserDel() );
      EXPECT_FALSE( hasText( *parser ) );
      EXPECT_ASSERTION( parser->stringValue(), "ldpFecTlvParser()" );
   }
   // A status that is written makes no good message of a bad one.
   auto const bad = ldpMsgParserGet( msgPkt( msg( LdpHello, 1 ) ), msgOffset );
   EXPECT_TRUE( hasText( *bad ) );
   GenericIf::Value good( bad->fwkType()->attribute( "statusCode" )->type );
   void const * const args[] = { good.data() };
   EXPECT_EQ( GenericIf::attributeOp( *bad->fwkType(), nullptr, bad.ptr(),
                                      *bad->fwkType()->attribute( "statusCode" ), GenericIf::write, nullptr,
                                      args ),
              GenericIf::done );
   EXPECT_TRUE( bad->validMsg() );
   EXPECT_FALSE( hasText( *bad ) );
}

TEST( Reflection, aWalkerThatWasToldWrongLeadsNobodyBehindThePacket ) {
   Hex const hello =
        msg( LdpHello, 7, { tlv( commonHelloTlv, "000f 0000" ), tlv( configSeqNumTlv, "00000001" ) } );
   auto const parser = ldpHelloMsgParserFactory( msgPkt( hello ), msgOffset );
   U32 const end = U32( parser->pkt()->frontBytes() );
   // Anywhere near the end of the packet, and far behind: the TLVs are looked for there, and not read behind
   // it.
   for ( U32 at : { end - 9, end - 8, end - 7, end - 4, end - 3, end - 1, end, end + 1, ~0u } ) {
      SCOPED_TRACE( at );
      parser->handleHeader();
      EXPECT_TRUE( parser->validMsg() );
      parser->tlvGroupParser()->tlvOffsetIs( 1, at );
      parser->handleInitialized();
      bool const isWhole = at == end - 8;
      EXPECT_EQ( parser->validMsg(), isWhole );
      if ( at >= end - 3 ) {
         EXPECT_EQ( parser->statusCode(), badTlvLength );
         EXPECT_EQ( parser->reason(), "Msg/Tlv is corrupted/truncated" );
      }
   }
   // And they are looked for there.
   parser->handleHeader();
   parser->tlvGroupParser()->tlvOffsetIs( 1, msgOffset + 8 );
   parser->handleInitialized();
   EXPECT_EQ( parser->reason(), "LdpCommonHelloTlv is not the 1st TLV in the message" );

   auto const pdu = ldpPduParserFactory( pkt( Wire::pdu( "10.0.0.1", 0, { hello } ) ), 0 );
   EXPECT_TRUE( hasText( *pdu ) );
   pdu->tlvGroupParser()->tlvOffsetIs( 0, 1000 );
   EXPECT_FALSE( hasText( *pdu ) );
   pdu->tlvGroupParserDel();
   EXPECT_ASSERTION( pdu->handleInitialized(), "tlvGroupParser_" );
}

TEST( Reflection, noPacketIsAnAssertion ) {
   EXPECT_ASSERTION( ldpPduParserFactory( nullptr, 0 ), "pkt_" );
   EXPECT_ASSERTION( ldpMsgParserFactory( nullptr, 0 ), "pkt_" );
   EXPECT_ASSERTION( ldpTlvParserFactory( nullptr, 0 ), "pkt_" );
   EXPECT_ASSERTION( Vorn::newObject< LdpTlvGroupParser >( Vorn::Name() )->parseTlvGroup(), "pkt_" );
   EXPECT_ASSERTION( ldpPduGuard( nullptr, 0 ), "pkt" );
}

} // namespace
