// Hello: its rules and text.
#include "Codecs.h"
#include "LdpMsgRules.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpMsgParser" )

} // namespace

Vorn::Ptr< LdpHelloMsgParser > ldpHelloMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   return Vorn::newObject< LdpHelloMsgParser >( pkt, offset );
}

LdpHelloMsgParser::LdpHelloMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain )
     : LdpMsgParser( std::move( pkt ), offset, plain ) {
   handleInitialized();
}

LdpHelloMsgParser::~LdpHelloMsgParser() = default;

void LdpHelloMsgParser::handleInitialized() {
   using Self = LdpHelloMsgParser;
   using Size = LdpTlvRule::Size;
   // The two transport addresses exclude each other; repeats of one kind are not refused, the last one wins.
   static constexpr LdpTlvRule tlvs[] = {
      { commonHelloTlv,
        { 0, "LdpCommonHelloTlv is not the 1st TLV in the message" },
        { Size::length, 4, "Invalid size for LdpCommonHelloTlv" },
        ldpNoExclusion,
        ldpView< &Self::msgCommonHelloTlv_ >,
        "LdpCommonHelloTlv validation failure" },
      { ipv4TransportAddrTlv,
        ldpAnywhere,
        { Size::length, 4, "Invalid size for LdpIpTransportAddrTlv" },
        { ldpView< &Self::msgIp6TransportTlv_ >.has, "LdpIpv6TransportAddrTlv already existed" },
        ldpView< &Self::msgIpTransportTlv_ >,
        "LdpIpTransportAddrTlv validation failure" },
      { configSeqNumTlv,
        ldpAnywhere,
        { Size::length, 4, "Invalid size for LdpConfigSeqNumTlv" },
        ldpNoExclusion,
        ldpView< &Self::msgConfigSeqTlv_ >,
        "LdpConfigSeqNumTlv validation failure" },
      { ipv6TransportAddrTlv,
        ldpAnywhere,
        { Size::length, 16, "Invalid size for LdpIp6TransportAddrTlv" },
        { ldpView< &Self::msgIpTransportTlv_ >.has, "LdpIpv4TransportAddrTlv already existed" },
        ldpView< &Self::msgIp6TransportTlv_ >,
        "LdpIp6TransportAddrTlv validation failure" },
   };
   static constexpr LdpRequiredView required[] = {
      { ldpView< &Self::msgCommonHelloTlv_ >.has, "Missing LdpCommonHelloTlv" },
   };
   static constexpr LdpMsgRules rules{
      .type = LdpHello,
      .typeAssertion = "msgHdr_->type() == LdpHello_",
      .minTlvNum = 1,
      .tooFewTlvs = "Message has 0 TLV",
      .countsBeforeType = false,
      .firstTlv = nullptr,
      .fec = nullptr,
      .tlvs = tlvs,
      .required = required,
   };
   TWAIN_FUNCTION( "LdpHelloMsgParser::handleInitialized" );
   obey( rules );
}

Vorn::String LdpHelloMsgParser::stringValue() const {
   if ( !validMsg() ) return "Invalid LDP Hello Msg: " + reason();
   Vorn::String text = headingText( "LDP Hello Msg:\n" );
   VORN_ASSERT( msgCommonHelloTlv() );
   text += "   " + msgCommonHelloTlv_->stringValue();
   // IPv4, sequence number, IPv6, whatever their order in the message.
   if ( msgIpTransportTlv_ ) text += "\n   " + msgIpTransportTlv_->stringValue();
   if ( msgConfigSeqTlv_ ) text += "\n   " + msgConfigSeqTlv_->stringValue();
   if ( msgIp6TransportTlv_ ) text += "\n   " + msgIp6TransportTlv_->stringValue();
   return text;
}

} // namespace Ldp
