// The FEC TLV parser: wildcards, prefixes and host addresses, and what stands in the collection afterwards.
// P2MP and PW ID elements have tests of their own.

#include "Expect.h"

#include "Ldp/LdpFecTlvParser.h"
#include "Ldp/LdpPwGenMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

constexpr U32 fecOffset = 3;

Vorn::Ptr< LdpFecTlvParser > parseFec( Hex const & tlvHex,
                                       Vorn::Ptr< LdpProtoParam const > const & param = {} ) {
   return ldpFecTlvParserFactory( pkt( "ffffff" + tlvHex ), fecOffset, param );
}
Vorn::Ptr< LdpFecTlvParser > fecOf( Hex const & value ) { return parseFec( tlv( fecTlv, value ) ); }

TEST( FecTlvParser, elementsOfOtherTypesAreUnknown ) {
   for ( U32 type = 0; type <= 255; ++type ) {
      if ( type == 1 || type == 2 || type == 3 || type == 6 || type == 128 ) continue;
      SCOPED_TRACE( type );
      auto const parser = fecOf( u8( type ) + "0001" );
      EXPECT_EQ( parser->statusCode(), unknownFec );
      EXPECT_EQ( parser->reason(), ( "Unhandled FEC TLV Element type 0x" + u8( type ) ).c_str() );
   }
}

TEST( FecTlvParser, hostAndFullPrefixAreTheSameFec ) {
   auto const parser = fecOf( "02 0001 20 0a000001 03 0001 04 0a000001" );
   auto const prefix = parser->fecElement( 0 );
   auto const host = parser->fecElement( 1 );
   EXPECT_EQ( prefix->type(), prefixElement );
   EXPECT_EQ( host->type(), hostAddrElement );
   EXPECT_EQ( prefix->fwdEqvCls(), host->fwdEqvCls() );
   EXPECT_EQ( prefix->fwdEqvCls(), Mpls::FwdEqvClass( Lumo::IpGenPrefix( Lumo::IpAddr( 0x0a000001 ), 32 ) ) );
   EXPECT_EQ( prefix->fwdEqvCls().tag(), Mpls::FwdEqvClass::prefixTag );
}

TEST( FecTlvParser, tlvAgainstThePacket ) {
   struct TlvRow {
      char const * name;
      Hex tlv;
      char const * reason;
   };
   for ( TlvRow const & row : {
              TlvRow{ "1 octet past the packet", tlvLen( fecTlv, 6, "02 0001 08 0a" ),
                      "FEC TLV is too small, size: 12" },
              { "before any element is looked at", tlvLen( fecTlv, 2, "ff" ),
                "FEC TLV is too small, size: 8" },
              { "3 octets", "010000", "FEC TLV is too small, size: 6" },
              { "none", "", "FEC TLV is too small, size: 3" },
              { "largest length", tlvLen( fecTlv, 65535, "01" ), "FEC TLV is too small, size: 8" },
         } ) {
      SCOPED_TRACE( row.name );
      auto const parser = parseFec( row.tlv );
      EXPECT_EQ( parser->statusCode(), badTlvLength );
      EXPECT_EQ( parser->reason(), row.reason );
      EXPECT_EQ( parser->fecElements(), 0u );
   }
   // What stands behind the TLV is no element.
   EXPECT_EQ( parseFec( tlv( fecTlv, "02 0001 08 0a" ) + "ff" )->stringValue(), "[10.0.0.0/8]" );
   EXPECT_ASSERTION( ldpFecTlvParserFactory( pkt( "00" ), 2, nullptr ), "pkt_->frontBytes() >= offset_" );
}

TEST( FecTlvParser, withoutStrictnessAWildcardStandsAnywhere ) {
   auto const param = ldpProtoParamFactory( "default" );
   Hex const mixed = tlv( fecTlv, "02 0001 08 0a 01 01 02 0001 10 0a01" );

   auto parser = parseFec( mixed, param ); // strict by default
   EXPECT_EQ( parser->statusCode(), unknownFec );
   EXPECT_FALSE( parser->hasWildcardFecElement() );

   param->fecTlvStrictPrefixWildcardOnlyElementIs( false );
   EXPECT_EQ( parser->statusCode(), unknownFec ); // the switch is read once, at construction
   parser = parseFec( mixed, param );
   EXPECT_TRUE( parser->valid() );
   EXPECT_TRUE( parser->hasWildcardFecElement() );
   EXPECT_EQ( parser->ldpProtoParam(), param );
   EXPECT_EQ( parser->stringValue(), "[10.0.0.0/8, Wildcard, Wildcard, 10.1.0.0/16]" );
   // P2MP stays alone, whatever the switch.
   EXPECT_EQ( parseFec( tlv( fecTlv, "01 06 0001 04 0a000001 0000" ), param )->reason(),
              "FEC TLV P2MP Element must be the only FEC Element in the FEC TLV" );
   // A wildcard that was met stays told, also after a failure.
   parser = parseFec( tlv( fecTlv, "01 05" ), param );
   EXPECT_FALSE( parser->valid() );
   EXPECT_TRUE( parser->hasWildcardFecElement() );
}

TEST( FecTlvParser, collectionAndState ) {
   auto const parser = fecOf( "02 0001 08 0a 02 0001 10 0a01" );
   EXPECT_FALSE( parser->hasWildcardFecElement() );
   EXPECT_FALSE( parser->initialized() );
   parser->initializedIs( true );
   EXPECT_TRUE( parser->initialized() );
   EXPECT_EQ( parser->fecElements(), 2u );
   EXPECT_FALSE( parser->fecElement( 2 ) );
   auto const wildcard = ldpFecTlvWildcardElementFactory();
   parser->fecElementIs( 2, wildcard );
   parser->fecElementIs( 0, wildcard );
   EXPECT_EQ( parser->stringValue(), "[Wildcard, 10.1.0.0/16, Wildcard]" );
   parser->fecElementIs( 2, nullptr ); // removes it
   EXPECT_EQ( parser->fecElements(), 2u );
   U32 positions = 0;
   for ( auto const & element : parser->fecElementColl() )
      positions += ( element.key() + 1 ) * ( element.value() == parser->fecElement( element.key() ) );
   EXPECT_EQ( positions, 1u + 2u );
   EXPECT_EQ( parser->fecElementDel( 0 ), wildcard );
   EXPECT_FALSE( parser->fecElementDel( 0 ) );
   EXPECT_EQ( parser->stringValue(), "[]" ); // from position 0 upward
   EXPECT_EQ( parser->fecElements(), 1u );
   parser->fecElementDelAll();
   EXPECT_EQ( parser->fecElements(), 0u );
   EXPECT_FALSE( parser->parseElements() ); // false on success
   EXPECT_EQ( parser->fecElements(), 2u );
   EXPECT_TRUE( fecOf( "ff" )->parseElements() );
}

TEST( FecTlvParser, elementsOutliveThePacket ) {
   U64 const packets = Lumo::Pkt::allocTrack().objects();
   auto const element = fecOf( "02 0001 08 0a" )->fecElement( 0 );
   EXPECT_EQ( Lumo::Pkt::allocTrack().objects(), packets );
   EXPECT_EQ( element->stringValue(), "10.0.0.0/8" );
}

TEST( FecTlvElement, valuesAreForTheirOwnKinds ) {
   char const * const ip = "fwdEqvCls valid for Ip Fec Tlvs only";
   char const * const pw = "pwFwdEqvCls valid for Pw Fec Tlvs only";
   char const * const p2mp = "p2mpFecId valid for p2mp Fec Tlvs only";
   struct Kind {
      Vorn::Ptr< LdpFecTlvElement > element;
      LdpFecElementType type;
      char const * allowed;
   };
   for ( Kind const & kind : { Kind{ ldpFecTlvWildcardElementFactory(), wildcardElement, ip },
                               { ldpFecTlvPrefixElementFactory(), prefixElement, ip },
                               { ldpFecTlvHostAddrElementFactory(), hostAddrElement, ip },
                               { ldpFecTlvP2mpElementFactory(), p2mpElement, p2mp },
                               { ldpFecTlvPwIdElementFactory(), pwIdElement, pw } } ) {
      SCOPED_TRACE( valueToStrep( kind.type ) );
      LdpFecTlvElement & element = *kind.element;
      EXPECT_EQ( element.type(), kind.type );
      if ( kind.allowed == ip ) {
         EXPECT_EQ( element.fwdEqvCls(), Mpls::FwdEqvClass() );
         element.fwdEqvClsIs( Mpls::FwdEqvClass( 1, 2 ) );
         EXPECT_EQ( element.fwdEqvCls(), Mpls::FwdEqvClass( 1, 2 ) );
      } else {
         EXPECT_ASSERTION( element.fwdEqvCls(), ip );
         EXPECT_ASSERTION( element.fwdEqvClsIs( Mpls::FwdEqvClass() ), ip );
      }
      if ( kind.allowed == pw ) {
         EXPECT_EQ( element.pwFwdEqvCls(), PwFwdEqvClassInfo() );
      } else {
         EXPECT_ASSERTION( element.pwFwdEqvCls(), pw );
         EXPECT_ASSERTION( element.pwFwdEqvClsIs( PwFwdEqvClassInfo() ), pw );
      }
      if ( kind.allowed == p2mp ) {
         EXPECT_EQ( element.p2mpFecElem(), LdpP2mpFecElement() );
      } else {
         EXPECT_ASSERTION( element.p2mpFecElem(), p2mp );
         EXPECT_ASSERTION( element.p2mpFecElemIs( LdpP2mpFecElement() ), p2mp );
      }
   }
}

TEST( FecTlvElement, baseHasATypeButNoText ) {
   Vorn::Ptr< LdpFecTlvElement > const base = Vorn::newObject< LdpFecTlvElement >();
   EXPECT_EQ( base->type(), wildcardElement );
   EXPECT_ASSERTION( base->stringValue(), "Internal Error. To be implemented in derived classes" );
}

} // namespace
