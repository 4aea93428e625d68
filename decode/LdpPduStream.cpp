// From octets in pieces to PDUs that are whole, guarded and judged.
#include "Ldp/LdpPduStream.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Ldp {

namespace {

constexpr U16 smallestMaxPduLength = 256; // a smaller proposal stands for the default

} // namespace

LdpIdentifier LdpPdu::ldpIdentifier() const noexcept {
   if ( !pkt_ || pkt_->frontBytes() < sizeof( LdpPduHdr ) ) return {};
   return reinterpret_cast< LdpPduHdr const * >( pkt_->front() )->ldpIdentifier();
}

Vorn::Ptr< LdpMsgParser > LdpPdu::message( U32 index ) const {
   VORN_ASSERT( index < messageNum() );
   return ldpMsgParserGet( pkt_, parser_->messageOffset( index ) );
}

LdpPduStream & LdpPduStream::operator=( LdpPduStream && other ) noexcept {
   pkt_ = std::move( other.pkt_ );
   maxPduLength_ = other.maxPduLength_;
   held_ = other.held_;
   broken_ = other.broken_;
   std::memcpy( header_, other.header_, sizeof header_ );
   other.clear();
   return *this;
}

void LdpPduStream::maxPduLengthIs( U16 octets ) noexcept {
   maxPduLength_ = octets < smallestMaxPduLength ? LdpProtoParam::defaultMaxPduLength() : octets;
}

std::span< U8 const > LdpPduStream::held() const noexcept {
   return { held_ <= hdrBytes ? header_ : pkt_->front(), held_ };
}

LdpPdu LdpPduStream::next( std::span< U8 const > & octets ) {
   if ( broken_ ) {
      octets = {};
      return {};
   }
   if ( held_ <= hdrBytes ) { // with the header alone there may be no packet yet: memory may have run out
      fill( header_, hdrBytes, octets );
      if ( held_ < hdrBytes ) return {};
      auto const & hdr = reinterpret_cast< LdpPduHdr const & >( header_ );
      if ( Vorn::String const reason = lengthReason( hdr ); !reason.empty() ) {
         LdpPdu pdu = refused( header_, reason );
         broken_ = true;
         held_ = 0;
         return pdu;
      }
      std::memcpy( room( hdr.totalLength() ), header_, hdrBytes );
   }
   U16 const total = reinterpret_cast< LdpPduHdr const * >( pkt_->front() )->totalLength();
   fill( pkt_->room(), total, octets );
   if ( held_ < total ) return {};
   LdpPdu pdu = judged( total );
   held_ = 0;
   return pdu;
}

LdpPdu LdpPduStream::datagram( std::span< U8 const > octets ) {
   clear();
   std::size_t bytes = octets.size();
   if ( bytes >= LdpPduParser::minBytes ) { // else it is too small, whatever its length field says
      auto const & hdr = *reinterpret_cast< LdpPduHdr const * >( octets.data() );
      if ( Vorn::String const reason = lengthReason( hdr ); !reason.empty() )
         return refused( octets.data(), reason );
      bytes = std::min( bytes, std::size_t( hdr.totalLength() ) );
   }
   U8 * const at = room( bytes );
   if ( bytes ) std::memcpy( at, octets.data(), bytes );
   return judged( bytes );
}

/// Adds to what is held until it is as much as wanted.
void LdpPduStream::fill( U8 * at, std::size_t wanted, std::span< U8 const > & octets ) noexcept {
   std::size_t const more = std::min( wanted - held_, octets.size() );
   if ( !more ) return;
   std::memcpy( at + held_, octets.data(), more );
   held_ = U16( held_ + more );
   octets = octets.subspan( more );
}

/// What is wrong with the length; empty if nothing is. With the parser's verdict and words.
Vorn::String LdpPduStream::lengthReason( LdpPduHdr const & hdr ) const {
   U16 const total = hdr.totalLength();
   if ( total < LdpPduParser::minTotalLength )
      return Vorn::format( "PDU length field too small, length = %d", total );
   if ( total > LdpProtoParam::ldpPktBufferSize() || hdr.length() > maxPduLength_ )
      return Vorn::format( "PDU length field too big, length = %d", total );
   return {};
}

LdpPdu LdpPduStream::refused( U8 const * hdr, Vorn::String const & reason ) {
   std::memcpy( room( hdrBytes ), hdr, hdrBytes );
   pkt_->frontBytesIs( hdrBytes );
   LdpPdu pdu;
   pdu.pkt_ = pkt_;
   pdu.statusCode_ = badPduLength;
   pdu.reason_ = reason;
   return pdu;
}

/// The PDU in the packet, which ends with it, so that what follows on the wire has no say.
LdpPdu LdpPduStream::judged( std::size_t bytes ) {
   pkt_->frontBytesIs( bytes );
   LdpPdu pdu;
   pdu.pkt_ = pkt_;
   pdu.guard_ = ldpPduGuard( pkt_, 0 );
   if ( pdu.guard_ ) {
      pdu.statusCode_ = pdu.guard_.statusCode();
      pdu.reason_ = pdu.guard_.reason();
      return pdu;
   }
   pdu.parser_ = ldpPduParserFactory( pkt_, 0 );
   pdu.statusCode_ = pdu.parser_->statusCode();
   pdu.reason_ = pdu.parser_->reason();
   return pdu;
}

/// The beginning of a packet that nobody else holds and that has so much room.
U8 * LdpPduStream::room( std::size_t bytes ) {
   if ( !pkt_ || pkt_->references() != 1 || pkt_->roomBytes() < bytes )
      pkt_ = Lumo::Pkt::withRoom( std::bit_ceil( bytes ) );
   return pkt_->room();
}

} // namespace Ldp
