// Initialization and Capability: their rules, the capabilities they carry, and their texts.
#include "Codecs.h"
#include "LdpMsgRules.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpMsgParser" )

/// Whether a TLV type is a capability that is gathered, and if so what size it must have.
struct CapabilityRule {
   enum Kind : U8 { isNone, lengthIsOne, hasStateOctet };
   Kind kind;

   static CapabilityRule of( LdpTlvType type ) {
      switch ( type ) {
      case dynamicCapabilityTlv:
      case upstreamLabelAssignmentCapabilityTlv:
      case p2mpCapabilityTlv:
      case mp2mpCapabilityTlv:
      case mbbCapabilityTlv:
      case typedWildcardFecCapabilityTlv:
      case mrtCapabilityTlv:
      case unrecognizedNotificationCapabilityTlv: return { lengthIsOne };
      case multiTopologyCapabilityTlv:
      case stateAdvertisementControlCapabilityTlv:
      case targetedApplicationCapabilityTlv: return { hasStateOctet };
      default: return { isNone };
      }
   }
   bool obeyedBy( LdpTlvHdr const & tlv ) const {
      return kind == lengthIsOne ? tlv.length() == 1
                                 : tlv.totalLength() >= sizeof( LdpCapabilityParameterTlv );
   }
};

} // namespace

Vorn::Ptr< LdpInitMsgParser > ldpInitMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   return Vorn::newObject< LdpInitMsgParser >( pkt, offset );
}

Vorn::Ptr< LdpCapabilityMsgParser > ldpCapabilityMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt,
                                                                   U32 offset ) {
   return Vorn::newObject< LdpCapabilityMsgParser >( pkt, offset );
}

LdpCapabilityParser::LdpCapabilityParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain )
     : LdpMsgParser( std::move( pkt ), offset, plain ) {}

LdpCapabilityParser::~LdpCapabilityParser() = default;

LdpCapabilityParameterTlv const * LdpCapabilityParser::capabilities( LdpTlvType type ) const {
   return capabilities_.value( type );
}

void LdpCapabilityParser::capabilitiesIs( LdpTlvType type, LdpCapabilityParameterTlv const * capability ) {
   if ( capability ) {
      capabilities_.valueIs( type, capability );
   } else {
      capabilities_.del( type );
   }
}

LdpCapabilityParameterTlv const * LdpCapabilityParser::capabilitiesDel( LdpTlvType type ) {
   LdpCapabilityParameterTlv const * const deleted = capabilities( type );
   capabilities_.del( type );
   return deleted;
}

void LdpCapabilityParser::parseCapabilityTlvs() {
   eachTlv( [this]( U32, LdpTlvHdr const & tlv ) {
      auto const rule = CapabilityRule::of( tlv.type() );
      if ( rule.kind == CapabilityRule::isNone ) return true;
      if ( !rule.obeyedBy( tlv ) ) {
         refuse( malformedTlv, valueToStrep( tlv.type() ) + " TLV is not the right size", tlv );
         return false;
      }
      capabilitiesIs( tlv.type(), static_cast< LdpCapabilityParameterTlv const * >( &tlv ) );
      statusCode_ = success;
      return true;
   } );
}

Vorn::String LdpCapabilityParser::capabilitiesText() const {
   Vorn::String text;
   for ( auto const & capability : capabilities_ ) {
      text += "\n   " + valueToStrep( capability.key() );
      text += Vorn::format( ": State(%u)", unsigned( capability.value()->state() ) );
   }
   return text;
}

LdpInitMsgParser::LdpInitMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain )
     : LdpCapabilityParser( std::move( pkt ), offset, plain ) {
   handleInitialized();
}

LdpInitMsgParser::~LdpInitMsgParser() = default;

void LdpInitMsgParser::handleInitialized() {
   using Self = LdpInitMsgParser;
   using Size = LdpTlvRule::Size;
   // A body that is refused gives the name of its code for a reason.
   static constexpr LdpTlvRule tlvs[] = {
      { commonSessionParamTlv,
        { 0, "CommonSessionParamTlv is not the 1st TLV in the message" },
        { Size::length, 14, "LdpCommonSessionParamTlv TLV is not the right size" },
        ldpNoExclusion,
        ldpView< &Self::msgSessionParamTlv_ >,
        nullptr },
      { ftSessionTlv,
        ldpAnywhere,
        { Size::lengthTellTotal, 12, "LdpFtSession TLV is not the right size" },
        ldpNoExclusion,
        ldpView< &Self::msgFtSessionTlv_ >,
        nullptr },
   };
   static constexpr LdpMsgRules rules{
      .type = LdpInit,
      .typeAssertion = "msgHdr_->type() == LdpInit_",
      .minTlvNum = 1,
      .tooFewTlvs = "Missing CommonSessionParam TLV",
      .countsBeforeType = false,
      .firstTlv = "1st TLV is not commonSessionParam TLV",
      .fec = nullptr,
      .tlvs = tlvs,
      .required = {},
   };
   TWAIN_FUNCTION( "LdpInitMsgParser::handleInitialized" );
   Judging const judging( *this );
   if ( !opens( rules ) ) return;
   // Before the session parameters, so a capability's fault wins wherever it stands.
   parseCapabilityTlvs();
   if ( !validMsg() ) return;
   obeyTlvs( rules );
   // A good Initialization has a reason, unlike every other message: tools that search logs depend on it.
   if ( validMsg() ) reason_ = valueToStrep( statusCode_ );
}

Vorn::String LdpInitMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Init Msg: " + reason();
   VORN_ASSERT( msgSessionParamTlv() );
   Vorn::String text = headingText( "LDP Init Msg:\n" ) + "   " + msgSessionParamTlv_->stringValue();
   if ( msgFtSessionTlv_ ) text += "\n   " + msgFtSessionTlv_->stringValue();
   return text += capabilitiesText();
}

LdpCapabilityMsgParser::LdpCapabilityMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain )
     : LdpCapabilityParser( std::move( pkt ), offset, plain ) {
   handleInitialized();
}

LdpCapabilityMsgParser::~LdpCapabilityMsgParser() = default;

void LdpCapabilityMsgParser::handleInitialized() {
   TWAIN_FUNCTION( "LdpCapabilityMsgParser::handleInitialized" );
   Judging const judging( *this );
   VORN_ASSERT( msgHdr_ );
   if ( !validMsg() ) return;
   VORN_ASSERT_TEXT( msgHdr_->type() == LdpCapability, "msgHdr_->type() == LdpCapability_" );
   parseCapabilityTlvs();
}

Vorn::String LdpCapabilityMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Capability Msg: " + reason();
   // No comma behind this id.
   return "LDP Capability Msg:\n" + Vorn::format( "   Msg Id: %d", int( msgId() ) ) + capabilitiesText();
}

} // namespace Ldp
