#include "ReadValue.h"

#include "Ldp/LdpPwGenMsgParser.h"

namespace Fuzz {

using namespace Ldp;

namespace {

void readElement( Sink & sink, LdpFecTlvElement const & element ) {
   read( sink, element.type() );
   sink.take( element.stringValue() );
   switch ( element.type() ) {
   case wildcardElement:
   case prefixElement:
   case hostAddrElement: {
      Mpls::FwdEqvClass const & fec = element.fwdEqvCls();
      read( sink, fec );
      read( sink, fec.prefix() );
      read( sink, fec.prefix().address() );
      sink.take( fec.prefix().len() );
      break;
   }
   case p2mpElement: {
      LdpP2mpFecElement const & fec = element.p2mpFecElem();
      read( sink, fec );
      read( sink, fec.rootIp() );
      read( sink, fec.rootIp().ipAddr() );
      read( sink, fec.rootIp().ip6Addr() );
      read( sink, fec.opaqueStr() );
      read( sink, LdpP2mpFecGenericOpaqueId( fec.rootIp(), fec.opaqueStr().hash() ) );
      break;
   }
   case pwIdElement: {
      using Params = PwFwdEqvClassParams;
      using Flags = LdpPwIntfParamFlags;
      PwFwdEqvClassInfo const & fec = element.pwFwdEqvCls();
      read( sink, fec );
      read( sink, fec.fwdEqvClass() );
      read( sink, fec.params() );
      readGetters( sink, fec.params(), &Params::groupId, &Params::mtu, &Params::intfDescription,
                   &Params::requestedVlanId, &Params::fragCapable, &Params::vccvCcTypes,
                   &Params::vccvCvTypes );
      Flags const sent = dynamic_cast< LdpFecTlvPwIdElement const & >( element ).parsedIntfParams();
      read( sink, sent );
      readGetters( sink, sent, &Flags::intfMtu, &Flags::intfDesc, &Flags::requestedVlanId,
                   &Flags::fragIndicator, &Flags::vccvParam );
      break;
   }
   default: VORN_ASSERT_TEXT( false, "an element of a type that the FEC parser does not take" );
   }
}

template< class View >
View const & viewAt( U8 const * at ) {
   return *reinterpret_cast< View const * >( at );
}

template< class SubTlv >
void readSubTlv( Sink & sink, U8 const * at ) {
   auto const & subTlv = viewAt< SubTlv >( at );
   sink.take( subTlv.validate() );
   if constexpr ( requires { subTlv.mtu(); } ) read( sink, subTlv.mtu() );
   if constexpr ( requires { subTlv.description(); } ) read( sink, subTlv.description() );
   if constexpr ( requires { subTlv.vlanId(); } ) read( sink, subTlv.vlanId() );
   if constexpr ( requires { subTlv.fragIndicator(); } ) read( sink, subTlv.fragIndicator() );
   if constexpr ( requires { subTlv.vccvParam(); } ) {
      readGetters( sink, subTlv, &SubTlv::vccvParam, &SubTlv::ccTypes, &SubTlv::cvTypes );
   }
}

void readIntfParams( Sink & sink, U8 const * at, U8 const * end ) {
   while ( at != end ) {
      using SubTlv = LdpPwIntfParamSubTlv;
      auto const & head = viewAt< SubTlv >( at );
      readGetters( sink, head, &SubTlv::typeField, &SubTlv::type, &SubTlv::length, &SubTlv::totalLength );
      switch ( head.type() ) {
      case intfMtu: readSubTlv< LdpPwIntfMtuSubTlv >( sink, at ); break;
      case intfDesc: readSubTlv< LdpPwIntfDescSubTlv >( sink, at ); break;
      case requestedVlanId: readSubTlv< LdpPwRequestedVlanIdSubTlv >( sink, at ); break;
      case fragIndicator: readSubTlv< LdpPwFragIndicatorSubTlv >( sink, at ); break;
      case vccvParam: readSubTlv< LdpPwVccvParamSubTlv >( sink, at ); break;
      }
      at += head.length();
   }
}

// The wire form of a good element, and where the next begins.
U8 const * readWireForm( Sink & sink, U8 const * at ) {
   auto const & head = viewAt< LdpFecTlvElementHdr >( at );
   readGetters( sink, head, &LdpFecTlvElementHdr::typeField, &LdpFecTlvElementHdr::type );
   switch ( head.type() ) {
   case wildcardElement: return at + sizeof( LdpFecTlvWildcardElementHdr );
   case prefixElement: {
      using Hdr = LdpFecTlvPrefixElementHdr;
      auto const & hdr = viewAt< Hdr >( at );
      readGetters( sink, hdr, &Hdr::familyNbo, &Hdr::family, &Hdr::prefixBits );
      return at + sizeof hdr + ( hdr.prefixBits() + 7 ) / 8;
   }
   case hostAddrElement: {
      using Hdr = LdpFecTlvHostAddressElementHdr;
      auto const & hdr = viewAt< Hdr >( at );
      readGetters( sink, hdr, &Hdr::familyNbo, &Hdr::family, &Hdr::hostAddrLen );
      return at + sizeof hdr + hdr.hostAddrLen();
   }
   case p2mpElement: {
      using Hdr = LdpFecTlvP2mpElementHdr;
      auto const & hdr = viewAt< Hdr >( at );
      readGetters( sink, hdr, &Hdr::familyNbo, &Hdr::family, &Hdr::rootIpLenOctets );
      at += sizeof hdr + hdr.rootIpLenOctets();
      auto const & opaque = viewAt< LdpFecTlvP2mpOpaqueLength >( at );
      U16 const octets = opaque.totalOpaqueLen().value();
      at += sizeof opaque;
      read( sink, opaque );
      if ( octets >= sizeof( LdpGenericLSPId ) ) {
         read( sink, viewAt< LdpMPBasicOpaqueValueElementHdr >( at ) );
         read( sink, viewAt< LdpGenericLSPId >( at ) );
      }
      return at + octets;
   }
   case pwIdElement: {
      using Hdr = LdpFecTlvPwIdElementHdr;
      auto const & hdr = viewAt< Hdr >( at );
      readGetters( sink, hdr, &Hdr::pwTypeField, &Hdr::pwInfoLen, &Hdr::groupIdNbo, &Hdr::groupId,
                   &Hdr::controlWord, &Hdr::pwType, &Hdr::pwId );
      U8 const * const end = at + sizeof hdr + hdr.pwInfoLen();
      if ( hdr.pwInfoLen() ) readIntfParams( sink, at + sizeof hdr + sizeof( Lumo::NetU32 ), end );
      return end;
   }
   default: VORN_ASSERT_TEXT( false, "an element of a type that the FEC parser does not take" ); return at;
   }
}

} // namespace

void readFecTlv( Sink & sink, LdpFecTlvParser const & parser ) {
   readGetters( sink, parser, &LdpFecTlvParser::unknown, &LdpFecTlvParser::forwardUnknown,
                &LdpFecTlvParser::type, &LdpFecTlvParser::length, &LdpFecTlvParser::statusCode,
                &LdpFecTlvParser::reason, &LdpFecTlvParser::hasWildcardFecElement,
                &LdpFecTlvParser::initialized );
   VORN_ASSERT( parser.valid() == parser.reason().empty() );
   U32 const num = parser.fecElements();
   for ( U32 i = 0; i < num; ++i ) {
      Vorn::Ptr< LdpFecTlvElement > const element = parser.fecElement( i );
      VORN_ASSERT( element );
      readElement( sink, *element );
   }
   VORN_ASSERT( !parser.fecElement( num ) );
   sink.take( parser.stringValue() );
   if ( !parser.valid() ) return;
   // Element by element the wire forms lead to the TLV's end, as the parser was led.
   U8 const * at = parser.pkt()->front() + parser.offset() + sizeof( LdpTlvHdr );
   U8 const * const end = at + parser.length();
   for ( U32 i = 0; i < num; ++i ) {
      at = readWireForm( sink, at );
   }
   VORN_ASSERT( at == end );
}

} // namespace Fuzz
