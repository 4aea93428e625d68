// What all messages share: the header's judgement, the walk over a message's rules.
#include "Ldp/LdpMsgParser.h"

#include "Codecs.h"
#include "LdpMsgRules.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpMsgParser" )

bool sizeObeys( LdpTlvRule::Size const & size, LdpTlvHdr const & tlv ) {
   switch ( size.kind ) {
   case LdpTlvRule::Size::unchecked: return true;
   case LdpTlvRule::Size::length:
   case LdpTlvRule::Size::lengthTellTotal: return tlv.length() == size.octets;
   case LdpTlvRule::Size::totalAtLeast: return tlv.totalLength() >= size.octets;
   }
   return false;
}

} // namespace

Vorn::Ptr< LdpMsgParser > ldpMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   return Vorn::newObject< LdpMsgParser >( pkt, offset );
}

LdpMsgParser::LdpMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain )
     : pkt_( std::move( pkt ) ), offset_( offset ) {
   if ( plain ) tlvGroupParser_ = plain->tlvGroupParserDel();
   if ( plain && !Twain::tracing() ) {
      msgHdr_ = plain->msgHdr_;
      faultOffset_ = offset_;
      asWalked_ = true;
   } else {
      handleHeader();
   }
}

LdpMsgParser::~LdpMsgParser() = default;

void LdpMsgParser::refuse( LdpStatusCode status, Vorn::String const & reason, U32 at ) {
   statusCode_ = status;
   reason_ = reason;
   faultOffset_ = at;
}

void LdpMsgParser::handleHeader() {
   TWAIN_FUNCTION( "LdpMsgParser::handleHeader" );
   asWalked_ = judgedGood_ = false;
   VORN_ASSERT( pkt_ );
   bool const first = !msgHdr_; // a later walk does not clear what an earlier one has found
   msgHdr_ = reinterpret_cast< LdpMsgHdr const * >( pkt_->front() + offset_ );
   tlvGroupParserIs( Vorn::Name() );
   VORN_ASSERT( msgHdr_ );
   VORN_ASSERT( pkt_->frontBytes() >= offset_ );
   statusCode_ = success;
   faultOffset_ = offset_;
   // Of a header that is cut short the type counts as long as its two octets are there.
   if ( hasOctets( sizeof( LdpHdrMsgUbitAndTypeField ) ) && !ldpIsKnownMsgType( msgHdr_->type() ) ) {
      return refuse( msgHdr_->unknown() ? unknownMessageTypeIgnore : unknownMessageType,
                     Vorn::format( "Unknown Message Type: %d", int( msgHdr_->type() ) ) );
   }
   // Bad lengths of a message are answered as malformed TLVs, not as a bad message length: no session ends by
   // the one message.
   auto const refuseLength = [this]( Vorn::String const & reason ) {
      refuse( malformedTlv, reason );
      TWAIN_TRACE( 5, reason_ );
   };
   if ( !hasHeader() ) {
      return refuseLength( Vorn::format( "MSG too small, size = %zd", ssize_t( pkt_->frontBytes() ) ) );
   }
   U16 const total = msgHdr_->totalLength();
   if ( total > maxTotalLength ) {
      return refuseLength( Vorn::format( "MSG length field too big, length = %d", total ) );
   }
   if ( total < LdpMsgHdr::ldpMsgHdrSize ) {
      return refuseLength( Vorn::format( "MSG length field too small, length = %d", total ) );
   }
   tlvGroupParser_->pktIs( pkt_ );
   tlvGroupParser_->offsetIs( offset_ + LdpMsgHdr::ldpMsgHdrSize );
   tlvGroupParser_->sizeIs( U32( total - LdpMsgHdr::ldpMsgHdrSize ) );
   tlvGroupParser_->parseTlvGroup();
   if ( !tlvGroupParser_->valid() ) {
      return refuse( tlvGroupParser_->statusCode(), tlvGroupParser_->reason(),
                     tlvGroupParser_->faultOffset() );
   }
   asWalked_ = first;
   eachTlv( [this]( U32, LdpTlvHdr const & tlv ) {
      // A TLV to be ignored stays in the group, and the rules of the message pass over it.
      LdpStatusCode const status = tlv.validateTlvHdr();
      if ( status == success || status == unknownMessageTypeIgnore ) return true;
      refuse( status, Vorn::format( "Unknown TLV Type: %d", int( tlv.type() ) ), tlv );
      return false;
   } );
}

Vorn::Ptr< LdpTlvGroupParser > LdpMsgParser::tlvGroupParserIs( Vorn::Name const & name ) {
   return LdpTlvGroupParser::named( tlvGroupParser_, name );
}

Vorn::Ptr< LdpTlvGroupParser > LdpMsgParser::tlvGroupParserDel() {
   return std::exchange( tlvGroupParser_, nullptr );
}

Vorn::Ptr< LdpFecTlvParser > LdpMsgParser::ldpFecTlvParserIs(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset, Vorn::Ptr< LdpProtoParam const > const & param ) {
   ldpFecTlvParser_ = ldpFecTlvParserFactory( pkt, offset, param );
   return ldpFecTlvParser_;
}

Vorn::Ptr< LdpFecTlvParser > LdpMsgParser::ldpFecTlvParserDel() {
   return std::exchange( ldpFecTlvParser_, nullptr );
}

bool LdpMsgParser::hasText() const noexcept {
   if ( !validMsg() || fwkType() == &LdpMsgParser::_vornType ) return true;
   return judgedGood_ && ( !msgFecTlv_ || ldpFecTlvParser_ );
}

Vorn::String LdpMsgParser::stringValue() const {
   if ( !validMsg() ) return "Message Error: " + reason_;
   return valueToStrep( type() ) + Vorn::format( ", Id: 0x%08x, numTlv: %d", msgId(), int( tlvNum() ) );
}

Vorn::String LdpMsgParser::headingText( char const * heading ) const {
   return heading + Vorn::format( "   Msg Id: %d,", int( msgId() ) );
}

void LdpMsgParser::obey( LdpMsgRules const & rules ) {
   Judging const judging( *this );
   if ( opens( rules ) ) obeyTlvs( rules );
}

bool LdpMsgParser::opens( LdpMsgRules const & rules ) {
   VORN_ASSERT( msgHdr_ );
   if ( !validMsg() ) return false;
   if ( rules.countsBeforeType && tlvNum() < rules.minTlvNum ) {
      refuse( missingMessageParams, rules.tooFewTlvs );
      return false;
   }
   VORN_ASSERT_TEXT( msgHdr_->type() == rules.type, rules.typeAssertion );
   return true;
}

void LdpMsgParser::obeyTlvs( LdpMsgRules const & rules ) {
   U32 const num = tlvNum();
   if ( num < rules.minTlvNum ) return refuse( missingMessageParams, rules.tooFewTlvs );
   if ( rules.firstTlv ) {
      LdpTlvHdr const * const first = tlv( 0 );
      if ( !first ) return;
      if ( first->type() != rules.tlvs.front().type )
         return refuse( missingMessageParams, rules.firstTlv, *first );
   }
   eachTlv( [&]( U32 index, LdpTlvHdr const & tlv ) { return obeyTlv( rules, index, tlv ); } );
   if ( !validMsg() ) return;
   for ( LdpRequiredView const & view : rules.required ) {
      if ( !view.has( *this ) ) return refuse( missingMessageParams, view.reason );
   }
}

bool LdpMsgParser::obeyTlv( LdpMsgRules const & rules, U32 index, LdpTlvHdr const & tlv ) {
   LdpTlvType const type = tlv.type();
   if ( rules.fec && type == fecTlv ) return obeyFecTlv( rules, index, tlv );
   for ( LdpTlvRule const & rule : rules.tlvs ) {
      if ( rule.type != type ) continue;
      if ( rule.position.index != LdpTlvRule::Position::any && rule.position.index != index ) {
         refuse( missingMessageParams, rule.position.reason, tlv );
      } else if ( !sizeObeys( rule.size, tlv ) ) {
         refuse( malformedTlv, rule.size.reason, tlv );
         if ( rule.size.kind == LdpTlvRule::Size::lengthTellTotal ) {
            reason_ += Vorn::format( " (%d)", tlv.totalLength() );
         }
      } else if ( rule.exclusion.has && rule.exclusion.has( *this ) ) {
         refuse( malformedTlv, rule.exclusion.reason, tlv );
      } else {
         rule.view.store( *this, tlv );
         LdpStatusCode const status = rule.view.validate( tlv );
         if ( status != success )
            refuse( status, rule.invalid ? Vorn::String( rule.invalid ) : valueToStrep( status ), tlv );
      }
      return validMsg();
   }
   return true;
}

bool LdpMsgParser::obeyFecTlv( LdpMsgRules const & rules, U32 index, LdpTlvHdr const & tlv ) {
   if ( index != 0 ) {
      refuse( missingMessageParams, "FecTlv is not the 1st TLV in the message", tlv );
      return false;
   }
   msgFecTlv_ = &tlv;
   ldpFecTlvParserIs( pkt_, U32( reinterpret_cast< U8 const * >( &tlv ) - pkt_->front() ), nullptr );
   LdpFecTlvParser const & fec = *ldpFecTlvParser_;
   if ( !fec.valid() && rules.fec->refused != LdpFecRule::isForTheCaller ) {
      bool const keeps = rules.fec->refused == LdpFecRule::keepsItsCode;
      refuse( keeps ? fec.statusCode() : malformedTlv, fec.reason(), fec.faultOffset() );
   } else if ( rules.fec->wildcard && fec.hasWildcardFecElement() ) {
      refuse( unknownFec, rules.fec->wildcard, tlv );
   }
   return validMsg();
}

} // namespace Ldp
