// The three headers of the wire and the LDP identifier: views that write one field and no other, totals that
// wrap, and their text forms.

#include "Expect.h"

#include "Ldp/LdpHdr.h"

#include <sstream>

using namespace Ldp;
using namespace Wire;

namespace {

/// A view over its own octets, at an odd address.
template< class View >
class Laid {
 public:
   explicit Laid( std::string_view hex ) : octets_( octets( "00" + Hex( hex ) ) ) {}
   View * operator->() { return reinterpret_cast< View * >( octets_.data() + 1 ); }
   Hex hex() const { return hexOf( Octets( octets_.begin() + 1, octets_.end() ) ); }

 private:
   Octets octets_;
};

TEST( LdpHdr, fieldsStandInWireOrder ) {
   Laid< LdpPduHdr > pdu( "0001 0203 0a0b0c0d 0e0f" );
   EXPECT_EQ( pdu->version(), 1 );
   EXPECT_EQ( pdu->length(), 0x203 );
   EXPECT_EQ( pdu->totalLength(), 0x207 );
   EXPECT_EQ( pdu->ldpIdentifier(), LdpIdentifier( 0x0a0b0c0d, 0x0e0f ) );
   EXPECT_EQ( pdu->stringValue(), "LdpPduHdr: Ver(1),Len(515),LdpId: 10.11.12.13:3599" );

   Laid< LdpMsgHdr > msg( "8401 0005 80706050" );
   EXPECT_TRUE( msg->unknown() );
   EXPECT_EQ( msg->type(), LdpLabelRequest );
   EXPECT_EQ( msg->length(), 5 );
   EXPECT_EQ( msg->totalLength(), 9 );
   EXPECT_EQ( msg->msgId(), 0x80706050u );

   Laid< LdpTlvHdr > tlv( "7fff 0102" );
   EXPECT_FALSE( tlv->unknown() );
   EXPECT_TRUE( tlv->forwardUnknown() );
   EXPECT_EQ( tlv->type(), expTlvEnd );
   EXPECT_EQ( tlv->length(), 0x102 );
}

TEST( LdpHdr, settersKeepTheOtherBits ) {
   Laid< LdpMsgHdr > msg( "ffff 1234 56789abc" );
   msg->typeIs( LdpHello );
   EXPECT_EQ( msg.hex(), "8100123456789abc" );
   msg->typeIs( LdpMsgType( 0xffff0201 ) ); // of a wider number only the 15 bits count
   EXPECT_EQ( msg.hex(), "8201123456789abc" );
   msg->unknownIs( 2 ); // bit 0 of the argument
   EXPECT_EQ( msg.hex(), "0201123456789abc" );
   msg->typeIs( LdpMsgType( 0xffff ) );
   EXPECT_EQ( msg.hex(), "7fff123456789abc" );
   msg->unknownIs( 3 );
   EXPECT_EQ( msg.hex(), "ffff123456789abc" );

   Laid< LdpTlvHdr > tlv( "ffff 1234" );
   tlv->typeIs( fecTlv );
   EXPECT_EQ( tlv.hex(), "c1001234" );
   tlv->forwardUnknownIs( 2 );
   EXPECT_EQ( tlv.hex(), "81001234" );
   tlv->unknownIs( 0 );
   EXPECT_EQ( tlv.hex(), "01001234" );
   tlv->typeIs( LdpTlvType( 0xffff ) );
   EXPECT_EQ( tlv.hex(), "3fff1234" );
   tlv->forwardUnknownIs( 3 );
   EXPECT_EQ( tlv.hex(), "7fff1234" );
   tlv->unknownIs( 1 );
   EXPECT_EQ( tlv.hex(), "ffff1234" );
}

TEST( LdpHdr, totalLengthWrapsIn16Bits ) {
   struct Row {
      U32 length;
      U16 total;
   };
   for ( Row const & row :
         { Row{ 0, 4 }, { 65531, 65535 }, { 65532, 0 }, { 65533, 1 }, { 65534, 2 }, { 65535, 3 } } ) {
      SCOPED_TRACE( row.length );
      EXPECT_EQ( Laid< LdpPduHdr >( pduLen( row.length, "0.0.0.0", 0, {} ) )->totalLength(), row.total );
      EXPECT_EQ( Laid< LdpMsgHdr >( msgLen( LdpHello, row.length, 0 ) )->totalLength(), row.total );
      EXPECT_EQ( Laid< LdpTlvHdr >( tlvLen( fecTlv, row.length ) )->totalLength(), row.total );
   }
}

TEST( LdpHdr, typeFieldsCompareWhole ) {
   EXPECT_FALSE( LdpTlvTypeField( 0x8100 ) == LdpTlvTypeField( 0x0100 ) );
   EXPECT_TRUE( LdpTlvTypeField( 0x0101 ) < LdpTlvTypeField( 0x8100 ) );
   EXPECT_FALSE( LdpHdrMsgUbitAndTypeField( 0x8001 ) < LdpHdrMsgUbitAndTypeField( 0x0002 ) );
}

TEST( LdpHdr, netIntegersOrderByValueAndShowTheirOctets ) {
   EXPECT_TRUE( Lumo::NetU16( 0x00ff ) < Lumo::NetU16( 0x0100 ) );
   EXPECT_TRUE( Lumo::NetU32( 0x000000ff ) < Lumo::NetU32( 0x01000000 ) );
   Lumo::NetU32 const word( 0x01020304 );
   EXPECT_EQ( word.v0(), 1 );
   EXPECT_EQ( word.v1(), 2 );
   EXPECT_EQ( word.v2(), 3 );
   EXPECT_EQ( word.v3(), 4 );
   EXPECT_EQ( Lumo::NetU32( word.ctorValue() ), word );
   EXPECT_EQ( Lumo::NetU16( 0x0102 ).v0(), 1 );
   EXPECT_EQ( Lumo::NetU16( 0x0102 ).v1(), 2 );
}

// ---- identifiers ----

TEST( LdpIdentifier, lsrIdFirstThenLabelSpace ) {
   LdpIdentifier id( 0x0a000001, 0x0203 );
   EXPECT_EQ( 0, std::memcmp( &id, "\x0a\x00\x00\x01\x02\x03", sizeof id ) );
   id.tmpLsrIdIs( 0xc0a80101 );
   EXPECT_EQ( id, LdpIdentifier( 0xc0a80101, 0x0203 ) );
   id.tmpLblSpaceIs( 9 );
   EXPECT_EQ( id, LdpIdentifier( 0xc0a80101, 9 ) );
   EXPECT_TRUE( !LdpIdentifier() );
   EXPECT_FALSE( !LdpIdentifier( 0, 1 ) );
}

TEST( LdpIdentifier, ordersByLsrIdThenLabelSpace ) {
   EXPECT_TRUE( LdpIdentifier( 0x000000ff, 9 ) < LdpIdentifier( 0x01000000, 0 ) );
   EXPECT_TRUE( LdpIdentifier( 1, 0x00ff ) < LdpIdentifier( 1, 0x0100 ) );
   EXPECT_FALSE( LdpIdentifier( 1, 1 ) < LdpIdentifier( 1, 1 ) );
}

// ---- text of the type fields ----

} // namespace
