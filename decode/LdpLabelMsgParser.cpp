// The five label messages. They share a walk and differ in their rows, above all in how far they trust the
// FEC TLV; a peer is answered by each difference.
#include "Codecs.h"
#include "LdpMsgRules.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpMsgParser" )

using Position = LdpTlvRule::Position;
using Size = LdpTlvRule::Size;

/// Rows that several messages have. `member` is where the message keeps the view.
template< auto member >
constexpr LdpTlvRule genLabelRow( char const * notSecond ) {
   return { genLabelTlv,    { 1, notSecond },  { Size::length, 4, "Invalid size for LdpGenLabelTlv" },
            ldpNoExclusion, ldpView< member >, "LdpGenLabelTlv validation failure" };
}

template< auto member >
constexpr LdpTlvRule hopCountRow() {
   return { hopCountTlv,    ldpAnywhere,       { Size::length, 1, "Invalid size for LdpHopCountTlv" },
            ldpNoExclusion, ldpView< member >, "LdpHopCountTlv validation failure" };
}

template< auto member >
constexpr LdpTlvRule pathVectorRow() {
   return { pathVectorTlv,  ldpAnywhere,       { Size::totalAtLeast, 5, "Invalid size for LdpPathVectorTlv" },
            ldpNoExclusion, ldpView< member >, "LdpPathVectorTlv validation failure" };
}

template< auto member >
constexpr LdpTlvRule labelReqMsgIdRow( Position position ) {
   return { labelReqMsgIdTlv, position,          { Size::length, 4, "Invalid size for LdpLabelReqMsgIdTlv" },
            ldpNoExclusion,   ldpView< member >, "LdpLabelReqMsgIdTlv validation failure" };
}

template< auto member >
constexpr LdpTlvRule statusRow() {
   return { statusTlv,      ldpAnywhere,       { Size::length, 10, "Invalid size for LdpStatusTlv" },
            ldpNoExclusion, ldpView< member >, "LdpStatusTlv validation failure" };
}

constexpr char const * notSecondLabel = "Label Tlv is not the 2nd TLV in the message";

constexpr LdpMsgRules labelRules( LdpMsgType type, char const * typeAssertion, U32 minTlvNum,
                                  LdpFecRule const * fec, std::span< LdpTlvRule const > tlvs,
                                  std::span< LdpRequiredView const > required ) {
   return {
      .type = type,
      .typeAssertion = typeAssertion,
      .minTlvNum = minTlvNum,
      .tooFewTlvs =
           minTlvNum == 1 ? "Message does not have at least 1 TLV" : "Message does not have at least 2 TLV",
      .countsBeforeType = false,
      .firstTlv = nullptr,
      .fec = fec,
      .tlvs = tlvs,
      .required = required,
   };
}

bool hasFecTlv( LdpMsgParser const & parser ) { return parser.msgFecTlv(); }

constexpr LdpRequiredView fecRequired{ hasFecTlv, "Missing LdpFecTlv" };

/// Adds a line with the text of a view that is set.
template< class View >
void appendLine( Vorn::String & text, View const * view ) {
   if ( view ) text += "\n   " + view->stringValue();
}

} // namespace

#define DEFINE_LABEL_MSG_PARSER( Type, factory )                                                             \
   Vorn::Ptr< Type > factory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {                             \
      return Vorn::newObject< Type >( pkt, offset );                                                         \
   }                                                                                                         \
   Type::Type( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain )                                \
        : LdpMsgParser( std::move( pkt ), offset, plain ) {                                                  \
      handleInitialized();                                                                                   \
   }                                                                                                         \
   Type::~Type() = default;
DEFINE_LABEL_MSG_PARSER( LdpLabelMappingMsgParser, ldpLabelMappingMsgParserFactory )
DEFINE_LABEL_MSG_PARSER( LdpLabelRequestMsgParser, ldpLabelRequestMsgParserFactory )
DEFINE_LABEL_MSG_PARSER( LdpLabelWithdrawMsgParser, ldpLabelWithdrawMsgParserFactory )
DEFINE_LABEL_MSG_PARSER( LdpLabelReleaseMsgParser, ldpLabelReleaseMsgParserFactory )
DEFINE_LABEL_MSG_PARSER( LdpLabelAbortReqMsgParser, ldpLabelAbortReqMsgParserFactory )
#undef DEFINE_LABEL_MSG_PARSER

void LdpLabelMappingMsgParser::handleInitialized() {
   using Self = LdpLabelMappingMsgParser;
   static constexpr LdpFecRule fec{ LdpFecRule::keepsItsCode,
                                    "LDP Mapping Msg can not have Wildcard FEC TLV" };
   static constexpr LdpTlvRule tlvs[] = {
      genLabelRow< &Self::msgGenLabelTlv_ >( "LdpGenLabelTlv is not the 2nd TLV in the message" ),
      hopCountRow< &Self::msgHopCountTlv_ >(),
      pathVectorRow< &Self::msgPathVectorTlv_ >(),
      labelReqMsgIdRow< &Self::msgReqMsgIdTlv_ >( ldpAnywhere ),
      { pwStatusTlv,
        ldpAnywhere,
        { Size::length, 4, "Invalid size for LdpPwStatusTlv" },
        ldpNoExclusion,
        ldpView< &Self::msgPwStatusTlv_ >,
        "LdpPwStatusTlv validation failure" },
   };
   static constexpr LdpRequiredView required[] = {
      fecRequired,
      { ldpView< &Self::msgGenLabelTlv_ >.has, "Missing LdpGenLabelTlv" },
   };
   static constexpr LdpMsgRules rules =
        labelRules( LdpLabelMapping, "msgHdr_->type() == LdpLabelMapping_", 2, &fec, tlvs, required );
   TWAIN_FUNCTION( "LdpLabelMappingMsgParser::handleInitialized" );
   obey( rules );
}

Vorn::String LdpLabelMappingMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Label Mapping Msg: " + reason();
   VORN_ASSERT( msgFecTlv() );
   VORN_ASSERT( msgGenLabelTlv() );
   VORN_ASSERT( ldpFecTlvParser() );
   Vorn::String text =
        headingText( "LDP Label Mapping Msg:\n" ) + "   FEC: " + ldpFecTlvParser()->stringValue();
   text += "   " + msgGenLabelTlv_->stringValue();
   appendLine( text, msgReqMsgIdTlv_ );
   appendLine( text, msgHopCountTlv_ );
   appendLine( text, msgPathVectorTlv_ );
   appendLine( text, msgPwStatusTlv_ );
   return text;
}

void LdpLabelRequestMsgParser::handleInitialized() {
   using Self = LdpLabelRequestMsgParser;
   static constexpr LdpFecRule fec{ LdpFecRule::keepsItsCode,
                                    "LDP Request Msg can not have Wildcard FEC TLV" };
   static constexpr LdpTlvRule tlvs[] = {
      hopCountRow< &Self::msgHopCountTlv_ >(),
      pathVectorRow< &Self::msgPathVectorTlv_ >(),
   };
   static constexpr LdpRequiredView required[] = { fecRequired };
   static constexpr LdpMsgRules rules =
        labelRules( LdpLabelRequest, "msgHdr_->type() == LdpLabelRequest_", 1, &fec, tlvs, required );
   TWAIN_FUNCTION( "LdpLabelRequestMsgParser::handleInitialized" );
   obey( rules );
}

Vorn::String LdpLabelRequestMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Label Request Msg: " + reason();
   VORN_ASSERT( msgHdr_ );
   VORN_ASSERT( msgFecTlv() );
   VORN_ASSERT( ldpFecTlvParser() );
   Vorn::String text =
        headingText( "LDP Label Request Msg:\n" ) + "   FEC: " + ldpFecTlvParser()->stringValue();
   appendLine( text, msgHopCountTlv_ );
   appendLine( text, msgPathVectorTlv_ );
   return text;
}

void LdpLabelWithdrawMsgParser::handleInitialized() {
   using Self = LdpLabelWithdrawMsgParser;
   static constexpr LdpFecRule fec{ LdpFecRule::isMalformed, nullptr };
   static constexpr LdpTlvRule tlvs[] = {
      genLabelRow< &Self::msgGenLabelTlv_ >( notSecondLabel ),
      statusRow< &Self::msgStatusTlv_ >(),
   };
   static constexpr LdpRequiredView required[] = { fecRequired };
   static constexpr LdpMsgRules rules =
        labelRules( LdpLabelWithdraw, "msgHdr_->type() == LdpLabelWithdraw_", 1, &fec, tlvs, required );
   TWAIN_FUNCTION( "LdpLabelWithdrawMsgParser::handleInitialized" );
   obey( rules );
}

Vorn::String LdpLabelWithdrawMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Label Withdraw Msg: " + reason();
   VORN_ASSERT( msgHdr() );
   VORN_ASSERT( msgFecTlv() );
   VORN_ASSERT( ldpFecTlvParser() );
   Vorn::String text =
        headingText( "LDP Label Withdraw Msg:\n" ) + "   FEC: " + ldpFecTlvParser()->stringValue();
   appendLine( text, msgGenLabelTlv_ );
   appendLine( text, msgStatusTlv() );
   return text;
}

void LdpLabelReleaseMsgParser::handleInitialized() {
   using Self = LdpLabelReleaseMsgParser;
   static constexpr LdpFecRule fec{ LdpFecRule::isForTheCaller, nullptr };
   static constexpr LdpTlvRule tlvs[] = {
      genLabelRow< &Self::msgGenLabelTlv_ >( notSecondLabel ),
      statusRow< &Self::msgStatusTlv_ >(),
   };
   static constexpr LdpRequiredView required[] = { fecRequired };
   static constexpr LdpMsgRules rules =
        labelRules( LdpLabelRelease, "msgHdr_->type() == LdpLabelRelease_", 1, &fec, tlvs, required );
   TWAIN_FUNCTION( "LdpLabelReleaseMsgParser::handleInitialized" );
   obey( rules );
}

Vorn::String LdpLabelReleaseMsgParser::stringValue() const {
   // The prefix names another message. Tools that search logs depend on it.
   if ( !validMsg() ) return "Invalid LDP Label Request Msg: " + reason();
   VORN_ASSERT( msgHdr() );
   VORN_ASSERT( msgFecTlv() );
   VORN_ASSERT( ldpFecTlvParser() );
   Vorn::String text =
        headingText( "LDP Label Release Msg:\n" ) + "   FEC: " + ldpFecTlvParser()->stringValue();
   appendLine( text, msgGenLabelTlv_ );
   appendLine( text, msgStatusTlv() );
   return text;
}

void LdpLabelAbortReqMsgParser::handleInitialized() {
   using Self = LdpLabelAbortReqMsgParser;
   static constexpr LdpFecRule fec{ LdpFecRule::keepsItsCode, "LDP Abort Msg can not have Wildcard FEC TLV" };
   static constexpr LdpTlvRule tlvs[] = {
      labelReqMsgIdRow< &Self::msgReqMsgIdTlv_ >(
           { 1, "LdpLabelReqMsgIdTlv is not the 2nd TLV in the message" } ),
   };
   static constexpr LdpRequiredView required[] = {
      fecRequired,
      { ldpView< &Self::msgReqMsgIdTlv_ >.has, "Missing LdpLabelReqMsgIdTlv" },
   };
   static constexpr LdpMsgRules rules =
        labelRules( LdpLabelAbortReq, "msgHdr_->type() == LdpLabelAbortReq_", 2, &fec, tlvs, required );
   TWAIN_FUNCTION( "LdpLabelAbortReqMsgParser::handleInitialized" );
   obey( rules );
}

Vorn::String LdpLabelAbortReqMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Label Abort Request Msg: " + reason();
   VORN_ASSERT( msgFecTlv() );
   VORN_ASSERT( ldpFecTlvParser() );
   Vorn::String text =
        headingText( "LDP Label Abort Request Msg:\n" ) + "   FEC: " + ldpFecTlvParser()->stringValue();
   appendLine( text, msgReqMsgIdTlv_ );
   return text;
}

} // namespace Ldp
