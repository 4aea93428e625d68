// Address and Address Withdraw messages: their rules and texts.
#include "Codecs.h"
#include "LdpMsgRules.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpMsgParser" )

/// The rules of a message that is an address list and nothing else.
template< auto addressListTlv >
struct AddressRules {
   // A list that is refused gives the name of its code for a reason. No size test precedes it.
   static constexpr LdpTlvRule tlvs[] = {
      { addrListTlv,
        { 0, "AddressListTlv is not the 1st TLV in the message" },
        ldpAnySize,
        ldpNoExclusion,
        ldpView< addressListTlv >,
        nullptr },
   };
   static constexpr LdpRequiredView required[] = {
      { ldpView< addressListTlv >.has, "Missing LdpAddressListTlv" },
   };
   static constexpr LdpMsgRules of( LdpMsgType type, char const * typeAssertion ) {
      return {
         .type = type,
         .typeAssertion = typeAssertion,
         .minTlvNum = 1,
         .tooFewTlvs = "Message does not have at least 1 TLV",
         .countsBeforeType = true,
         .firstTlv = nullptr,
         .fec = nullptr,
         .tlvs = tlvs,
         .required = required,
      };
   }
};

} // namespace

Vorn::Ptr< LdpAddressMsgParser > ldpAddressMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt,
                                                             U32 offset ) {
   return Vorn::newObject< LdpAddressMsgParser >( pkt, offset );
}

Vorn::Ptr< LdpAddressWithdrawMsgParser > ldpAddressWithdrawMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   return Vorn::newObject< LdpAddressWithdrawMsgParser >( pkt, offset );
}

LdpAddressMsgParser::LdpAddressMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain )
     : LdpMsgParser( std::move( pkt ), offset, plain ) {
   handleInitialized();
}

LdpAddressMsgParser::~LdpAddressMsgParser() = default;

void LdpAddressMsgParser::handleInitialized() {
   static constexpr LdpMsgRules rules = AddressRules< &LdpAddressMsgParser::addressListTlv_ >::of(
        LdpAddress, "msgHdr_->type() == LdpAddress_" );
   TWAIN_FUNCTION( "LdpAddressMsgParser::handleInitialized" );
   obey( rules );
}

Vorn::String LdpAddressMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Address Msg: " + reason();
   VORN_ASSERT( addressListTlv() );
   return headingText( "LDP Address Msg:\n" ) + "   " + addressListTlv_->stringValue();
}

LdpAddressWithdrawMsgParser::LdpAddressWithdrawMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset,
                                                          LdpMsgParser * plain )
     : LdpMsgParser( std::move( pkt ), offset, plain ) {
   handleInitialized();
}

LdpAddressWithdrawMsgParser::~LdpAddressWithdrawMsgParser() = default;

void LdpAddressWithdrawMsgParser::handleInitialized() {
   static constexpr LdpMsgRules rules = AddressRules< &LdpAddressWithdrawMsgParser::addressListTlv_ >::of(
        LdpAddressWithdraw, "msgHdr_->type() == LdpAddressWithdraw_" );
   TWAIN_FUNCTION( "LdpAddressWithdrawMsgParser::handleInitialized" );
   obey( rules );
}

Vorn::String LdpAddressWithdrawMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Address Withdraw Msg: " + reason();
   VORN_ASSERT( addressListTlv() );
   return headingText( "LDP Address Withdraw Msg:\n" ) + "   " + addressListTlv_->stringValue();
}

} // namespace Ldp
