// FEC TLVs, read whole, and held against the wire.
#include "support/ReadAll.h"

#include "Ldp/LdpPwGenMsgParser.h"

namespace Fuzz {

using namespace Ldp;

namespace {

template< class View >
View const & viewAt( U8 const * at ) {
   return *reinterpret_cast< View const * >( at );
}

template< class SubTlv >
void readSubTlv( Sink & sink, U8 const * at ) {
   auto const & subTlv = viewAt< SubTlv >( at );
   sink.take( subTlv.validate() );
   readView( sink, subTlv );
}

void readIntfParams( Sink & sink, U8 const * at, U8 const * end ) {
   while ( at != end ) {
      auto const & head = viewAt< LdpPwIntfParamSubTlv >( at );
      readView( sink, head );
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
   readView( sink, head );
   switch ( head.type() ) {
   case wildcardElement: return at + sizeof( LdpFecTlvWildcardElementHdr );
   case prefixElement: {
      auto const & hdr = viewAt< LdpFecTlvPrefixElementHdr >( at );
      readView( sink, hdr );
      return at + sizeof hdr + ( hdr.prefixBits() + 7 ) / 8;
   }
   case hostAddrElement: {
      auto const & hdr = viewAt< LdpFecTlvHostAddressElementHdr >( at );
      readView( sink, hdr );
      return at + sizeof hdr + hdr.hostAddrLen();
   }
   case p2mpElement: {
      auto const & hdr = viewAt< LdpFecTlvP2mpElementHdr >( at );
      readView( sink, hdr );
      at += sizeof hdr + hdr.rootIpLenOctets();
      auto const & opaque = viewAt< LdpFecTlvP2mpOpaqueLength >( at );
      U16 const octets = opaque.totalOpaqueLen().value();
      at += sizeof opaque;
      if ( octets >= sizeof( LdpGenericLSPId ) ) {
         auto const & lspId = viewAt< LdpGenericLSPId >( at );
         sink.take( lspId.opaqueId().value() );
      }
      return at + octets;
   }
   case pwIdElement: {
      auto const & hdr = viewAt< LdpFecTlvPwIdElementHdr >( at );
      readView( sink, hdr );
      U8 const * const end = at + sizeof hdr + hdr.pwInfoLen();
      if ( hdr.pwInfoLen() ) readIntfParams( sink, at + sizeof hdr + sizeof( Lumo::NetU32 ), end );
      return end;
   }
   default: VORN_ASSERT_TEXT( false, "an element of a type that the FEC parser does not take" ); return at;
   }
}

} // namespace

void readFecTlv( Sink & sink, LdpFecTlvParser const & parser ) {
   readObject( sink, parser );
   VORN_ASSERT( parser.valid() == parser.reason().empty() );
   U32 const num = parser.fecElements();
   VORN_ASSERT( !parser.fecElement( num ) );
   if ( !parser.valid() ) return;
   // Element by element the wire forms lead to the TLV's end, as the parser was led.
   U8 const * at = parser.pkt()->front() + parser.offset() + sizeof( LdpTlvHdr );
   U8 const * const end = at + parser.length();
   for ( U32 i = 0; i < num; ++i ) {
      VORN_ASSERT( parser.fecElement( i ) );
      at = readWireForm( sink, at );
   }
   VORN_ASSERT( at == end );
}

} // namespace Fuzz
