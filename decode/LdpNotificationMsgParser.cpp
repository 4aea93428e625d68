// Notification: its rules, the pseudowire status that it may carry, and its text.
#include "Codecs.h"
#include "Ldp/LdpMsgParser.h"
#include "Vorn/VornType.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpMsgParser" )

} // namespace

Vorn::Ptr< LdpNotificationMsgParser > ldpNotificationMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt,
                                                                       U32 offset ) {
   return Vorn::newObject< LdpNotificationMsgParser >( pkt, offset );
}

LdpNotificationMsgParser::LdpNotificationMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset,
                                                    LdpMsgParser * plain )
     : LdpMsgParser( std::move( pkt ), offset, plain ) {
   handleInitialized();
}

LdpNotificationMsgParser::~LdpNotificationMsgParser() = default;

void LdpNotificationMsgParser::handleInitialized() {
   TWAIN_FUNCTION( "LdpNotificationMsgParser::handleInitialized" );
   Judging const judging( *this );
   VORN_ASSERT( msgHdr_ );
   if ( !validMsg() ) return;
   VORN_ASSERT_TEXT( msgHdr_->type() == LdpNotification, "msgHdr_->type() == LdpNotification_" );
   if ( tlvNum() == 0 ) return refuse( missingMessageParams, "Missing Status TLV" );
   LdpTlvHdr const * const first = tlv( 0 );
   if ( !first ) return;
   if ( first->type() != statusTlv )
      return refuse( missingMessageParams, "1st TLV is not Status TLV", *first );
   auto const * status = static_cast< LdpStatusTlv const * >( first );
   if ( status->length() != sizeof( LdpStatusTlv ) - sizeof( LdpTlvHdr ) ) {
      return refuse( malformedTlv, "Status TLV is not the right size", *first );
   }
   // Only the low 30 bits count: neither E nor F hides a pseudowire's status.
   if ( status->statusData() == pwStatus && !handlePwStatus() ) return;
   msgStatusTlv_ = status;
   statusCode_ = success;
}

/// The TLVs behind the status of a pseudowire: places are fixed, and what stands behind them is passed over.
bool LdpNotificationMsgParser::handlePwStatus() {
   auto const refused = [this]( LdpStatusCode status, Vorn::String const & reason, auto const & at ) {
      refuse( status, reason, at );
      return false;
   };
   if ( tlvNum() < 3 ) return refused( missingMessageParams, "Missing PW Status TLVs", offset_ );
   LdpTlvHdr const * const second = tlv( 1 );
   if ( !second ) return false;
   if ( second->type() != pwStatusTlv )
      return refused( missingMessageParams, "2nd TLV is not PW Status TLV", *second );
   auto const * pwStatus = static_cast< LdpPwStatusTlv const * >( second );
   LdpStatusCode const status = pwStatus->validate();
   if ( status != success ) return refused( status, "LdpPwStatusTlv validation failure", *second );
   LdpTlvHdr const * const third = tlv( 2 );
   if ( !third ) return false;
   if ( third->type() != fecTlv ) {
      return refused( missingMessageParams, "FecTlv is not the 3rd TLV in the message", *third );
   }
   msgFecTlv_ = third;
   ldpFecTlvParserIs( pkt_, tlvOffset( 2 ), nullptr );
   if ( !ldpFecTlvParser_->valid() )
      return refused( ldpFecTlvParser_->statusCode(), ldpFecTlvParser_->reason(),
                      ldpFecTlvParser_->faultOffset() );
   if ( ldpFecTlvParser_->fecElements() == 0 ) {
      return refused( missingMessageParams, "PW FEC TLV has no FEC elements", *third );
   }
   if ( ldpFecTlvParser_->fecElement( 0 )->type() != pwIdElement ) {
      return refused( missingMessageParams, "PW FEC TLV element is not PWID FEC element", *third );
   }
   msgPwStatusTlv_ = pwStatus;
   return true;
}

Vorn::String LdpNotificationMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Notification Msg: " + reason();
   VORN_ASSERT( msgStatusTlv() );
   Vorn::String text = headingText( "LDP Notification Msg:\n" ) + "   " + msgStatusTlv()->stringValue();
   if ( msgPwStatusTlv_ ) {
      VORN_ASSERT( ldpFecTlvParser() );
      text += "\n   " + msgPwStatusTlv_->stringValue() + "\n   " + ldpFecTlvParser()->stringValue();
   }
   return text;
}

} // namespace Ldp
