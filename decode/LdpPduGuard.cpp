// The guard that finds the inputs which the parsers are required to die of. It follows their walks as they
// are, header by header and in their order, so that it is exact both ways.
#include "Ldp/LdpUtils.h"

#include <limits>

namespace Ldp {

namespace {

/// A run of units as `LdpTlvGroupParser` walks it.
class UnitWalk {
 public:
   enum Step : U8 { unit, end, bad, wrapped };

   UnitWalk( Lumo::Pkt const & pkt, U64 offset, U32 size ) noexcept
        : front_( pkt.front() ), frontBytes_( pkt.frontBytes() ), next_( offset ), left_( size ) {}

   /// Goes to the next unit. At `unit` and at `wrapped` `offset()` and `header()` are that unit's.
   Step advance() noexcept {
      if ( left_ == 0 ) return end;
      if ( first_ && next_ + left_ > frontBytes_ ) return bad;
      first_ = false;
      if ( next_ + sizeof( LdpTlvHdr ) > frontBytes_ ) return bad;
      offset_ = next_;
      U16 const total = header().totalLength();
      if ( total == 0 ) return wrapped;
      if ( total > left_ ) return bad;
      next_ += total;
      left_ -= total;
      return unit;
   }

   U32 offset() const noexcept { return U32( offset_ ); }
   LdpTlvHdr const & header() const noexcept {
      return *reinterpret_cast< LdpTlvHdr const * >( front_ + offset_ );
   }

 private:
   U8 const * front_;
   U64 frontBytes_;
   U64 next_;
   U64 offset_ = 0;
   U32 left_;
   bool first_ = true;
};

constexpr LdpPduGuardResult nothing{ LdpPduGuardResult::none, 0 };

/// Whether the framing of a run is good; if it ends the process, `result` says where.
bool framingIsGood( UnitWalk walk, LdpPduGuardResult & result ) noexcept {
   for ( ;; ) {
      switch ( walk.advance() ) {
      case UnitWalk::unit: continue;
      case UnitWalk::end: return true;
      case UnitWalk::bad: return false;
      case UnitWalk::wrapped: result = { LdpPduGuardResult::wrappedUnit, walk.offset() }; return false;
      }
   }
}

/// What the FEC parser would meet at a FEC TLV.
LdpPduGuardResult fecTlvGuard( Lumo::Pkt const & pkt, U32 offset, LdpTlvHdr const & tlv ) noexcept {
   constexpr U32 dumpCounterEnd = 256;
   U64 const value = U64( offset ) + sizeof( LdpTlvHdr );
   U64 const end = value + tlv.length();
   if ( end > pkt.frontBytes() || end > std::numeric_limits< U32 >::max() ) return nothing;
   // The dump runs over what remains of the TLV, and a P2MP element is parsed in the first place only.
   if ( tlv.length() < dumpCounterEnd || pkt.front()[value] != p2mpElement ) return nothing;
   return { LdpPduGuardResult::unboundedP2mpDump, U32( value ) };
}

/// What the parser of a message with good framing would meet behind that.
LdpPduGuardResult bodyGuard( Lumo::Pkt const & pkt, LdpMsgType type, UnitWalk walk ) noexcept {
   // What is known of the first three TLVs; all of them have to be walked, since an unknown one refuses the
   // message.
   LdpTlvHdr const * tlv[3] = {};
   U32 offset[3] = {};
   U32 num = 0;
   for ( ; walk.advance() == UnitWalk::unit; ++num ) {
      if ( walk.header().validateTlvHdr() == unknownTlv ) return nothing;
      if ( num < 3 ) {
         tlv[num] = &walk.header();
         offset[num] = walk.offset();
      }
   }
   switch ( type ) {
   case LdpLabelMapping:
   case LdpLabelAbortReq:
      if ( num < 2 ) return nothing;
      [[fallthrough]];
   case LdpLabelRequest:
   case LdpLabelWithdraw:
   case LdpLabelRelease:
      return num && tlv[0]->type() == fecTlv ? fecTlvGuard( pkt, offset[0], *tlv[0] ) : nothing;
   case LdpNotification: {
      if ( num < 3 || tlv[0]->type() != statusTlv || tlv[0]->totalLength() != sizeof( LdpStatusTlv ) ||
           static_cast< LdpStatusTlv const * >( tlv[0] )->statusData() != pwStatus ||
           tlv[1]->type() != pwStatusTlv ||
           static_cast< LdpPwStatusTlv const * >( tlv[1] )->validate() != success ||
           tlv[2]->type() != fecTlv ) {
         return nothing;
      }
      return fecTlvGuard( pkt, offset[2], *tlv[2] );
   }
   default: return nothing;
   }
}

/// What `ldpMsgParserGet` would meet at a message.
LdpPduGuardResult messageGuard( Lumo::Pkt const & pkt, U32 offset ) noexcept {
   if ( U64( offset ) + LdpMsgHdr::ldpMsgHdrSize > pkt.frontBytes() ) return nothing;
   auto const & hdr = *reinterpret_cast< LdpMsgHdr const * >( pkt.front() + offset );
   U16 const total = hdr.totalLength();
   if ( total > LdpMsgParser::maxTotalLength || total < LdpMsgHdr::ldpMsgHdrSize ) return nothing;
   // A message of an unknown type is refused before its TLVs are walked.
   if ( !ldpIsKnownMsgType( hdr.type() ) ) return nothing;
   UnitWalk const walk( pkt, U64( offset ) + LdpMsgHdr::ldpMsgHdrSize,
                        U32( total - LdpMsgHdr::ldpMsgHdrSize ) );
   LdpPduGuardResult result = nothing;
   if ( !framingIsGood( walk, result ) ) return result;
   return bodyGuard( pkt, hdr.type(), walk );
}

} // namespace

LdpStatusCode LdpPduGuardResult::statusCode() const noexcept {
   switch ( input ) {
   case none: return success;
   case wrappedUnit: return badTlvLength;
   case unboundedP2mpDump: break;
   }
   return internalError;
}

Vorn::String LdpPduGuardResult::reason() const {
   switch ( input ) {
   case none: return {};
   case wrappedUnit: return Vorn::format( "Msg/Tlv length field of 65532, offset: %u", offset );
   case unboundedP2mpDump: break;
   }
   return Vorn::format( "FEC P2MP Element with 256 octets or more of its FEC TLV, offset: %u", offset );
}

LdpPduGuardResult ldpPduGuard( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   VORN_ASSERT( pkt );
   VORN_ASSERT( pkt->frontBytes() >= offset );
   if ( offset + LdpPduParser::minBytes > pkt->frontBytes() ) return nothing;
   auto const & hdr = *reinterpret_cast< LdpPduHdr const * >( pkt->front() + offset );
   U16 const total = hdr.totalLength();
   if ( total > LdpProtoParam::ldpPktBufferSize() || total < LdpPduParser::minTotalLength ||
        hdr.version() != LdpProtoParam::ldpProtocolVersion() ) {
      return nothing;
   }
   UnitWalk walk( *pkt, U64( offset ) + sizeof( LdpPduHdr ), U32( total - sizeof( LdpPduHdr ) ) );
   LdpPduGuardResult result = nothing;
   if ( !framingIsGood( walk, result ) ) return result;
   while ( !result && walk.advance() == UnitWalk::unit ) {
      result = messageGuard( *pkt, walk.offset() );
   }
   return result;
}

} // namespace Ldp
