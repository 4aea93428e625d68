// The place of a refusal.
#include "messages/Fault.h"

#include "text/Words.h"

#include <algorithm>

namespace LdpTool {

using namespace Ldp;

namespace {

constexpr U32 mostBefore = 8;
constexpr U32 mostAt = 24;

U16 read16( Octets octets, U32 at ) { return U16( octets[at] << 8 | octets[at + 1] ); }

Octets octetsOf( LdpMsgParser const & parser ) {
   return { parser.pkt()->front(), std::size_t( parser.pkt()->frontBytes() ) };
}

/// Of a unit that ends there at the latest.
void octetsAround( Fault & fault, Octets octets, U32 end ) {
   end = std::min( end, U32( octets.size() ) );
   U32 const at = std::min( fault.offset, end );
   U32 const before = std::min( at - std::min( fault.begin, at ), mostBefore );
   fault.before = octets.subspan( at - before, before );
   fault.at = octets.subspan( at, std::min( end - at, mostAt ) );
   fault.more = end - at > mostAt;
}

bool isLabelOfOtherKind( LdpTlvType type ) { return type == atmLabelTlv || type == frLabelTlv; }

/// The offset at which the parser has stopped. It misses the label of a mapping that has one of another kind,
/// which stands where the label belongs.
U32 placeOf( LdpMsgParser const & parser ) {
   constexpr U32 labelIndex = 1;
   if ( parser.type() != LdpLabelMapping || parser.statusCode() != missingMessageParams ||
        parser.faultOffset() != parser.offset() || parser.tlvNum() <= labelIndex )
      return parser.faultOffset();
   U32 const label = parser.tlvOffset( labelIndex );
   return isLabelOfOtherKind( reinterpret_cast< LdpTlvHdr const * >( parser.pkt()->front() + label )->type() )
               ? label
               : parser.faultOffset();
}

/// The TLV in which that stands, and the element, if it is one of a FEC TLV. Returns where the TLV ends.
U32 findTlv( Fault & fault, LdpMsgParser const & parser, Octets octets, U32 end ) {
   for ( U32 i = parser.tlvNum(); i-- > 0; ) {
      U32 const offset = parser.tlvOffset( i );
      if ( offset > fault.offset ) continue;
      auto const & tlv = *reinterpret_cast< LdpTlvHdr const * >( octets.data() + offset );
      U32 const behind = offset + tlv.totalLength();
      if ( fault.offset >= behind ) break;
      fault.tlv = tlv.type();
      if ( fault.offset != offset && tlv.type() == fecTlv )
         fault.element = LdpFecElementType( octets[fault.offset] );
      return behind;
   }
   // The walk over the TLVs has ended before this one. Its header may be cut short.
   if ( U64( fault.offset ) + sizeof( LdpTlvHdr ) <= end )
      fault.tlv = LdpTlvType( read16( octets, fault.offset ) & 0x3fff );
   return end;
}

bool isTaken( LdpFecElementType type ) {
   return type == wildcardElement || type == prefixElement || type == hostAddrElement ||
          type == p2mpElement || type == pwIdElement;
}

/// Vendor-private and experimental types (RFC 5036, 3.6) mean what their users have agreed on.
bool isPrivate( U32 type ) { return type >= 0x3e00 && type <= 0x3fff; }

} // namespace

Fault faultOf( Message const & message ) {
   LdpMsgParser const & parser = message.judge();
   Octets const octets = octetsOf( parser );
   U32 const size = U32( octets.size() );
   Fault fault{};
   fault.begin = parser.offset();
   fault.offset = placeOf( parser );
   fault.message = parser.type();
   U32 end =
        std::min( fault.begin + std::max< U32 >( parser.totalLength(), LdpMsgHdr::ldpMsgHdrSize ), size );
   if ( !fault.whole() ) end = findTlv( fault, parser, octets, end );
   octetsAround( fault, octets, end );
   return fault;
}

Fault faultOf( Pdu const & pdu ) {
   Fault fault{};
   fault.ofPdu = true;
   U32 const size = U32( pdu.octets.size() );
   LdpPduGuardResult const fatal = pdu.pdu.guard();
   auto const & parser = pdu.pdu.parser();
   auto const walker = parser ? parser->tlvGroupParser() : nullptr;
   if ( fatal ) {
      fault.offset = fatal.offset;
   } else if ( walker && !walker->valid() ) {
      fault.offset = walker->faultOffset();
      if ( U64( fault.offset ) + sizeof( LdpTlvHdr ) <= size )
         fault.message = LdpMsgType( read16( pdu.octets, fault.offset ) & 0x7fff );
   }
   octetsAround( fault, pdu.octets, size );
   return fault;
}

Verdict verdictOf( LdpMsgParser const & parser ) {
   if ( parser.validMsg() ) return Verdict::good;
   LdpStatusCode const status = parser.statusCode();
   if ( status == unknownMessageTypeIgnore ) return Verdict::ignored;
   auto const verdict = []( bool known ) { return known ? Verdict::unsupported : Verdict::wrong; };
   if ( status == unknownMessageType ) return verdict( isPrivate( U32( parser.type() ) ) );
   U32 const at = placeOf( parser );
   if ( at == parser.offset() ) return Verdict::wrong;
   auto const & fec = parser.ldpFecTlvParser();
   if ( fec && !fec->valid() && at == fec->faultOffset() ) return verdictOf( *fec );
   Octets const octets = octetsOf( parser );
   if ( U64( at ) + sizeof( LdpTlvHdr ) > octets.size() ) return Verdict::wrong;
   U32 const type = read16( octets, at ) & 0x3fff;
   if ( status == unknownTlv ) return verdict( isPrivate( type ) );
   return verdict( status == unsupportedAddressFamily ||
                   ( at != parser.faultOffset() && isLabelOfOtherKind( LdpTlvType( type ) ) ) );
}

Verdict verdictOf( LdpFecTlvParser const & fec ) {
   if ( fec.valid() ) return Verdict::good;
   if ( fec.faultOffset() == fec.offset() ) return Verdict::wrong;
   auto const element = LdpFecElementType( fec.pkt()->front()[fec.faultOffset()] );
   bool const known = enumeratorName( element ) && !isTaken( element );
   return known || fec.statusCode() == unsupportedAddressFamily ? Verdict::unsupported : Verdict::wrong;
}

Verdict verdictOf( LdpPduGuardResult const & fatal ) {
   return fatal.input == LdpPduGuardResult::unboundedP2mpDump ? Verdict::unsupported : Verdict::wrong;
}

Output & operator<<( Output & out, Fault const & fault ) {
   auto const hexOctets = [&]( Octets octets ) {
      out.hexOctets( { reinterpret_cast< char const * >( octets.data() ), octets.size() } );
   };
   out << " [";
   if ( fault.whole() ) {
      out << ( fault.ofPdu ? "whole PDU" : "whole message" );
   } else if ( fault.ofPdu ) {
      out << "octet " << fault.offset << " of the PDU";
      if ( fault.message != LdpMsgType( 0 ) ) ( out << "; message " ) << Numbered( fault.message );
   } else {
      out << "octet " << fault.offset - fault.begin << ", of the PDU " << fault.offset;
      if ( fault.element ) out << "; FEC element " << Numbered( *fault.element ) << " in";
      if ( fault.tlv ) out << ( fault.element ? " TLV " : "; TLV " ) << Numbered( *fault.tlv );
   }
   out << "; ";
   hexOctets( fault.before );
   if ( !fault.before.empty() ) out << ' ';
   out << "> ";
   hexOctets( fault.at );
   return out << ( fault.more ? "...]" : "]" );
}

} // namespace LdpTool
