// The FEC TLV, element by element: each kind's judgement and what it becomes.
#include "Ldp/LdpFecTlvParser.h"

#include "Codecs.h"
#include "Kesh/HexDump.h"
#include "Ldp/LdpPwGenMsgParser.h"

#include <cstring>
#include <limits>

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpGenMsgParser" )

/// The view of an element's head at `cur` of the packet.
template< class Hdr >
Hdr const * elementAt( LdpFecTlvParser const & parser, U32 cur ) {
   return reinterpret_cast< Hdr const * >( parser.pkt()->front() + cur );
}

/// The first `octets` octets of an address at `at`; those behind are zero.
template< class Addr >
Addr leadingOctets( U8 const * at, U32 octets ) {
   Addr addr;
   std::memcpy( addr.octets(), at, octets );
   return addr;
}

/// Parses the P2MP element at `currOffset`, which has to reach to `endOffset` exactly, and moves `currOffset`
/// behind it. On failure it gives the code, leaves the reason with the parser and `currOffset` where it was.
LdpStatusCode parseFecTlvP2mpElement( LdpFecTlvParser * parser, U32 & currOffset, U32 endOffset,
                                      LdpFecTlvP2mpElement & element ) {
   auto const withReason = [&]( LdpStatusCode status, Vorn::String const & reason ) {
      parser->reasonIs( reason );
      TWAIN_TRACE( 5, parser->reason() );
      return status;
   };
   LdpP2mpFecElement value = element.p2mpFecElem();
   TWAIN_TRACE( 6, "currOffset = ", currOffset, " endOffset = ", endOffset );
   U32 const remaining = endOffset - currOffset;
   U8 const * const octets = parser->pkt()->front() + currOffset;
   if ( remaining == 0 )
      return withReason( malformedTlv, "Invalid FEC P2MP Element: TLV value is too small" );
   // The counter is 8 bits wide, so with 256 octets or more the dump does not end. Users' tests count on it,
   // and it is why there is a guard for received PDUs. Volatile keeps the loop in every build.
   U8 volatile dumped = 0;
   while ( dumped < remaining ) {
      U8 const index = dumped;
      TWAIN_TRACE( 6, octets[index] );
      dumped = U8( index + 1 );
   }
   if ( remaining < sizeof( LdpFecTlvP2mpElementHdr ) ) {
      return withReason( malformedTlv, "Invalid FEC P2MP Element: TLV value is too small" );
   }
   auto const * hdr = elementAt< LdpFecTlvP2mpElementHdr >( *parser, currOffset );
   U32 const rootLen = hdr->rootIpLenOctets();
   Lumo::AddressFamily const family = hdr->family();
   TWAIN_TRACE( 9, "rootIpLenOctets = ", rootLen, " af = ", family );
   U32 octetsRead = rootLen + U32( sizeof *hdr );
   if ( octetsRead > remaining ) {
      return withReason( malformedTlv,
                         Vorn::format( "Invalid FEC P2MP Element: RootIp Len Octets: %d, remaining "
                                       "packet octets: %u",
                                       int( rootLen ), remaining ) );
   }
   // A root that is shorter than its family's addresses fills them from the front.
   switch ( family ) {
   case Lumo::ipv4:
      if ( rootLen > Lumo::IpAddr::size ) {
         return withReason( malformedTlv,
                            Vorn::format( "Invalid FEC P2MP Element: RootIpLen %d is too large for IPv4",
                                          int( rootLen ) ) );
      }
      value.rootIpIs( leadingOctets< Lumo::IpAddr >( octets + sizeof *hdr, rootLen ) );
      break;
   case Lumo::ipv6:
      if ( rootLen > Lumo::Ip6Addr::size ) {
         return withReason( malformedTlv,
                            Vorn::format( "Invalid FEC P2MP Element: RootIpLen %d is too large for IPv6",
                                          int( rootLen ) ) );
      }
      value.rootIpIs( leadingOctets< Lumo::Ip6Addr >( octets + sizeof *hdr, rootLen ) );
      break;
   default:
      return withReason( unsupportedAddressFamily,
                         Vorn::format( "Invalid FEC P2MP Element address family 0x%hx", U16( family ) ) );
   }
   if ( octetsRead + sizeof( LdpFecTlvP2mpOpaqueLength ) > remaining ) {
      return withReason( malformedTlv,
                         "Invalid FEC P2MP Element: Packet length is too small to read opaqueLength" );
   }
   U32 const opaqueLen = reinterpret_cast< LdpFecTlvP2mpOpaqueLength const * >( octets + octetsRead )
                              ->totalOpaqueLen()
                              .value();
   octetsRead += U32( sizeof( LdpFecTlvP2mpOpaqueLength ) );
   // Exactly: nothing may follow the element in its TLV.
   if ( opaqueLen + octetsRead != remaining ) {
      return withReason( malformedTlv,
                         "Invalid FEC P2MP Element: Opaque length and Opaque value dont match" );
   }
   value.opaqueStrIs( Vorn::String( octets + octetsRead, opaqueLen ) );
   TWAIN_TRACE( 9, "opaqueLenIs ", opaqueLen, " opaqueStr is ",
                ( Twain::Hex{ octets + octetsRead, opaqueLen } ) );
   octetsRead += opaqueLen;
   TWAIN_TRACE( 6, "         P2mp FEC Element, Address Family: ", family, ", RootIpLen: ", rootLen, " (",
                octetsRead, " octetsRead), " );
   element.p2mpFecElemIs( value );
   currOffset += octetsRead;
   return success;
}

} // namespace

LdpFecTlvElement::~LdpFecTlvElement() = default;
LdpFecTlvWildcardElement::~LdpFecTlvWildcardElement() = default;
LdpFecTlvPrefixElement::~LdpFecTlvPrefixElement() = default;
LdpFecTlvHostAddrElement::~LdpFecTlvHostAddrElement() = default;
LdpFecTlvP2mpElement::~LdpFecTlvP2mpElement() = default;

LdpFecElementType LdpFecTlvElement::type() const { return type_; }

Vorn::String LdpFecTlvElement::stringValue() const {
   VORN_ASSERT_TEXT( false, "Internal Error. To be implemented in derived classes" );
   return {};
}

void LdpFecTlvElement::assertIp() const {
   VORN_ASSERT_TEXT( isIp(), "fwdEqvCls valid for Ip Fec Tlvs only" );
}

void LdpFecTlvElement::assertPw() const {
   VORN_ASSERT_TEXT( isPw(), "pwFwdEqvCls valid for Pw Fec Tlvs only" );
}

void LdpFecTlvElement::assertP2mp() const {
   VORN_ASSERT_TEXT( isP2mp(), "p2mpFecId valid for p2mp Fec Tlvs only" );
}

Mpls::FwdEqvClass const & LdpFecTlvElement::fwdEqvCls() const {
   assertIp();
   return fwdEqvCls_;
}

void LdpFecTlvElement::fwdEqvClsIs( Mpls::FwdEqvClass const & fec ) {
   assertIp();
   fwdEqvCls_ = fec;
}

PwFwdEqvClassInfo const & LdpFecTlvElement::pwFwdEqvCls() const {
   assertPw();
   return pwFwdEqvCls_;
}

void LdpFecTlvElement::pwFwdEqvClsIs( PwFwdEqvClassInfo const & fec ) {
   assertPw();
   pwFwdEqvCls_ = fec;
}

LdpP2mpFecElement const & LdpFecTlvElement::p2mpFecElem() const {
   assertP2mp();
   return p2mpFecElem_;
}

void LdpFecTlvElement::p2mpFecElemIs( LdpP2mpFecElement const & fec ) {
   assertP2mp();
   p2mpFecElem_ = fec;
}

Vorn::String LdpFecTlvWildcardElement::stringValue() const { return "Wildcard"; }

Vorn::String LdpFecTlvPrefixElement::stringValue() const { return fwdEqvCls().prefix().stringValue(); }

Vorn::String LdpFecTlvHostAddrElement::stringValue() const { return fwdEqvCls().prefix().stringValue(); }

Vorn::String LdpFecTlvP2mpElement::stringValue() const {
   Vorn::String const & opaque = p2mpFecElem().opaqueStr();
   return p2mpFecElem().rootIp().stringValue() + Vorn::format( "_%u_", opaque.bytes() ) +
          Kesh::hexDumpPythonCompatible( opaque.charPtr(), opaque.bytes(), 0 );
}

Vorn::Ptr< LdpFecTlvWildcardElement > ldpFecTlvWildcardElementFactory() {
   return Vorn::newObject< LdpFecTlvWildcardElement >();
}

Vorn::Ptr< LdpFecTlvPrefixElement > ldpFecTlvPrefixElementFactory() {
   return Vorn::newObject< LdpFecTlvPrefixElement >();
}

Vorn::Ptr< LdpFecTlvHostAddrElement > ldpFecTlvHostAddrElementFactory() {
   return Vorn::newObject< LdpFecTlvHostAddrElement >();
}

Vorn::Ptr< LdpFecTlvP2mpElement > ldpFecTlvP2mpElementFactory() {
   return Vorn::newObject< LdpFecTlvP2mpElement >();
}

Vorn::Ptr< LdpFecTlvParser > ldpFecTlvParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset,
                                                     Vorn::Ptr< LdpProtoParam const > const & param ) {
   return Vorn::newObject< LdpFecTlvParser >( pkt, offset, param );
}

LdpFecTlvParser::LdpFecTlvParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset,
                                  Vorn::Ptr< LdpProtoParam const > param )
     : LdpTlvParser( std::move( pkt ), offset ), ldpProtoParam_( std::move( param ) ) {
   handleInitialized();
}

LdpFecTlvParser::~LdpFecTlvParser() = default;

void LdpFecTlvParser::fecElementIs( U32 index, Vorn::Ptr< LdpFecTlvElement > const & element ) {
   if ( element ) {
      fecElement_.valueIs( index, element );
   } else {
      fecElement_.del( index );
   }
}

Vorn::String LdpFecTlvParser::stringValue() const {
   Vorn::String text = "[";
   for ( U32 i = 0; auto const element = fecElement( i ); ++i ) {
      if ( i ) text += ", ";
      text += element->stringValue();
   }
   return text += "]";
}

bool LdpFecTlvParser::failed( LdpStatusCode status, Vorn::String const & reason ) {
   reason_ = reason;
   TWAIN_TRACE( 5, reason_ );
   statusCode_ = status;
   return true;
}

bool LdpFecTlvParser::parseElements() {
   TWAIN_FUNCTION( "LdpFecTlvParser::parseElements" );
   faultOffset_ = offset_;
   U64 const frontBytes = pkt_->frontBytes();
   VORN_ASSERT( pkt_->frontBytes() >= offset_ );
   U16 const tlvLen = length();
   TWAIN_TRACE( 6, "   Parse FEC TLV frontBytes: ", frontBytes, ", offset: ", offset_,
                ", TLV len: ", tlvLen );
   // Nothing behind what 32 bits can address is looked at either.
   U64 const tlvEnd = U64( offset_ ) + tlvLen + LdpTlvHdr::tlvHdrSizeExclude;
   if ( tlvEnd > frontBytes || tlvEnd > std::numeric_limits< U32 >::max() ) {
      return failed( badTlvLength, Vorn::format( "FEC TLV is too small, size: %zd", ssize_t( frontBytes ) ) );
   }
   U32 cur = offset_ + LdpTlvHdr::tlvHdrSizeExclude;
   U32 const end = U32( tlvEnd );
   bool const strict = !ldpProtoParam_ || ldpProtoParam_->fecTlvStrictPrefixWildcardOnlyElement();
   // Each step takes an element of at least one octet, and leaves it in the collection.
   for ( U32 index = 0; cur < end; ++index ) {
      U32 const at = cur;
      LdpFecElementType const type = elementAt< LdpFecTlvElementHdr >( *this, cur )->type();
      TWAIN_TRACE( 6, "      Msg/TLV/FecTlvElement ", index, ": offset ", cur, ", type ", type );
      bool ended;
      switch ( type ) {
      case wildcardElement: ended = parseWildcard( cur, end, strict, index ); break;
      case prefixElement: ended = parsePrefix( cur, end, index ); break;
      case hostAddrElement: ended = parseHostAddr( cur, end, index ); break;
      case p2mpElement: ended = parseP2mp( cur, end, index ); break;
      case pwIdElement: ended = parsePwId( cur, end, index ); break;
      default:
         ended = failed( unknownFec, Vorn::format( "Unhandled FEC TLV Element type 0x%02hhx", U8( type ) ) );
      }
      if ( ended ) {
         faultOffset_ = at;
         return true;
      }
   }
   TWAIN_TRACE( 6, "FEC TLV parsed ", fecElements(), " elements" );
   statusCode_ = success;
   return false;
}

bool LdpFecTlvParser::parseWildcard( U32 & cur, U32 end, bool strict, U32 index ) {
   cur += U32( sizeof( LdpFecTlvWildcardElementHdr ) );
   if ( strict && ( cur != end || index != 0 ) ) {
      return failed( unknownFec, "FEC TLV Wildcard Element must be the only FEC Element in the FEC TLV" );
   }
   auto const element = ldpFecTlvWildcardElementFactory();
   TWAIN_TRACE( 6, "         Wildcard FEC Element" );
   hasWildcardFecElement_ = true;
   fecElementIs( index, element );
   return false;
}

bool LdpFecTlvParser::parsePrefix( U32 & cur, U32 end, U32 index ) {
   U32 const remaining = end - cur;
   auto const * hdr = elementAt< LdpFecTlvPrefixElementHdr >( *this, cur );
   if ( remaining < sizeof *hdr ) {
      return failed( malformedTlv, "Invalid FEC Prefix Element: TLV value is too small" );
   }
   U32 const bits = hdr->prefixBits();
   U32 const octets = ( bits + 7 ) / 8;
   if ( octets + sizeof *hdr > remaining ) {
      return failed( malformedTlv,
                     Vorn::format( "Invalid FEC Prefix Element: prefix bits: %d, remaining packet octets: %u",
                                   int( bits ), remaining ) );
   }
   U8 const * const at = pkt_->front() + cur + sizeof *hdr;
   cur += octets + U32( sizeof *hdr );
   Lumo::AddressFamily const family = hdr->family();
   Lumo::IpGenPrefix prefix;
   // The bound on octets is exact in bits: 33 bits take 5 octets, 129 take 17.
   switch ( family ) {
   case Lumo::ipv4:
      if ( octets > Lumo::IpAddr::size ) {
         return failed(
              malformedTlv,
              Vorn::format( "Invalid FEC Prefix Element: PreLen %d is too large for IPv4", int( bits ) ) );
      }
      prefix = Lumo::IpGenPrefix( leadingOctets< Lumo::IpAddr >( at, octets ), bits );
      break;
   case Lumo::ipv6:
      if ( octets > Lumo::Ip6Addr::size ) {
         return failed(
              malformedTlv,
              Vorn::format( "Invalid FEC Prefix Element: PreLen %d is too large for IPv6", int( bits ) ) );
      }
      prefix = Lumo::IpGenPrefix( leadingOctets< Lumo::Ip6Addr >( at, octets ), bits );
      break;
   default:
      return failed( unsupportedAddressFamily,
                     Vorn::format( "Invalid FEC Prefix Element address family 0x%hx", U16( family ) ) );
   }
   auto const element = ldpFecTlvPrefixElementFactory();
   element->fwdEqvClsIs( Mpls::FwdEqvClass( prefix ) );
   TWAIN_TRACE( 6, "         Prefix FEC Element, Address Family: ", family, ", PreLen: ", bits, " (", octets,
                " octets), ", "Prefix: ", element->fwdEqvCls() );
   fecElementIs( index, element );
   return false;
}

bool LdpFecTlvParser::parseHostAddr( U32 & cur, U32 end, U32 index ) {
   U32 const remaining = end - cur;
   auto const * hdr = elementAt< LdpFecTlvHostAddressElementHdr >( *this, cur );
   if ( remaining < sizeof *hdr ) {
      return failed( malformedTlv, "Invalid FEC Host Address Element: TLV value is too small" );
   }
   U32 const len = hdr->hostAddrLen();
   if ( len + sizeof *hdr > remaining ) {
      return failed( malformedTlv,
                     Vorn::format( "Invalid FEC Host Address Element: hostAddrLen: %d, remaining "
                                   "packet octets: %u",
                                   int( len ), remaining ) );
   }
   U8 const * const at = pkt_->front() + cur + sizeof *hdr;
   cur += len + U32( sizeof *hdr );
   Lumo::AddressFamily const family = hdr->family();
   Lumo::IpGenPrefix prefix;
   switch ( family ) {
   case Lumo::ipv4:
      if ( len != Lumo::IpAddr::size ) {
         return failed( malformedTlv,
                        Vorn::format( "Invalid FEC Host Addr Element: hostAddrLen %d is not valid IPv4 size",
                                      int( len ) ) );
      }
      prefix = Lumo::IpGenPrefix( leadingOctets< Lumo::IpAddr >( at, len ), Lumo::IpAddr::bits );
      break;
   case Lumo::ipv6:
      if ( len != Lumo::Ip6Addr::size ) {
         return failed( malformedTlv,
                        Vorn::format( "Invalid FEC Host Addr Element: hostAddrLen %d is not valid IPv6 size",
                                      int( len ) ) );
      }
      prefix = Lumo::IpGenPrefix( leadingOctets< Lumo::Ip6Addr >( at, len ), Lumo::Ip6Addr::bits );
      break;
   default:
      return failed( unsupportedAddressFamily,
                     Vorn::format( "Invalid FEC Host Address Element address family 0x%hx", U16( family ) ) );
   }
   auto const element = ldpFecTlvHostAddrElementFactory();
   element->fwdEqvClsIs( Mpls::FwdEqvClass( prefix ) );
   TWAIN_TRACE( 6, "         Host Address FEC Element, Address Family: ", family, ", HostAddrLen: ", len,
                ", Addr: ", element->fwdEqvCls() );
   fecElementIs( index, element );
   return false;
}

bool LdpFecTlvParser::parseP2mp( U32 & cur, U32 end, U32 index ) {
   if ( index != 0 ) {
      return failed( unknownFec, "FEC TLV P2MP Element must be the only FEC Element in the FEC TLV" );
   }
   auto const element = ldpFecTlvP2mpElementFactory();
   statusCode_ = parseFecTlvP2mpElement( this, cur, end, *element );
   if ( statusCode_ != success ) return true;
   fecElementIs( index, element );
   return false;
}

bool LdpFecTlvParser::parsePwId( U32 & cur, U32 end, U32 index ) {
   auto const element = ldpFecTlvPwIdElementFactory();
   statusCode_ = parseFecTlvPwIdElement( this, cur, end, *element );
   if ( statusCode_ != success ) return true;
   // The short form without a PW ID is a wildcard too, but one that may stand among others.
   if ( element->pwFwdEqvCls().pwId() == 0 ) hasWildcardFecElement_ = true;
   fecElementIs( index, element );
   return false;
}

} // namespace Ldp
