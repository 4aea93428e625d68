/// \file
/// Parsers of messages: one class for each type that has TLVs of its own to judge, over one base that judges
/// the header and the framing.
///
/// Construction is parsing. A finished parser says in `validMsg()`, `statusCode()` and `reason()` how the
/// message fared, and its views point at the TLVs that were found. The parser keeps the packet; a view lives
/// as long as the packet does and is owned by nobody. A view that is set on a good message has passed every
/// check; on a refused message the views found so far stay set and are not to be used.
///
/// The agent gets its parser from `ldpMsgParserGet` (LdpUtils.h), which picks the class by the message's
/// type.
#pragma once

#include "Ldp/LdpFecTlvParser.h"
#include "Ldp/LdpGenMsgParser.h"
#include "Ldp/LdpLabelTlv.h"
#include "Ldp/LdpPwHdr.h"
#include "Ldp/LdpSessionTlv.h"
#include "Vorn/RbTreeMap.h"

namespace Ldp {

struct LdpMsgRules;

/// Base of the message parsers, and the whole parser of a message without TLVs of its own, such as KeepAlive:
/// the header (RFC 5036, 3.5), the framing of the TLVs, and whether all their types may be taken.
class VORN_API LdpMsgParser : public Vorn::PtrInterface {
   VORN_REFLECTED_OBJECT( LdpMsgParser, void )

 public:
   /// Largest message that is taken, header included, in octets.
   static constexpr U16 maxTotalLength = 4096;

   /// Parses the message at `offset`, which lies in the packet: no packet, or an offset behind its end,
   /// asserts. `plain`, here and with each subclass, is a parser that has just found this message good: its
   /// walker is taken over, and nothing that it has judged is judged again unless somebody traces.
   LdpMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpMsgParser() override;

   /// Text of the message, or of what is wrong with it.
   virtual Vorn::String stringValue() const;

   /// The packet that the constructor was given.
   Vorn::Ptr< Lumo::Pkt > const & pkt() const noexcept { return pkt_; }
   /// Where the message begins, in octets from the packet's front.
   U32 offset() const noexcept { return offset_; }
   /// View of the header, at the offset whatever the packet holds there.
   LdpMsgHdr const * msgHdr() const noexcept { return msgHdr_; }

   /// U bit; like the fields below zero where the header is not wholly in the packet.
   bool unknown() const noexcept { return hasHeader() && msgHdr_->unknown(); }
   /// Message type; any number of 15 bits may come, it need not be an enumerator.
   LdpMsgType type() const noexcept { return hasHeader() ? msgHdr_->type() : LdpMsgType( 0 ); }
   /// Message id.
   U32 msgId() const noexcept { return hasHeader() ? msgHdr_->msgId() : 0; }
   /// Octets behind the length field: message id and TLVs.
   U16 length() const noexcept { return hasHeader() ? msgHdr_->length() : U16( 0 ); }
   /// Octets of the whole message: `length()` plus 4, which wraps in 16 bits.
   U16 totalLength() const noexcept { return hasHeader() ? msgHdr_->totalLength() : U16( 0 ); }

   /// The verdict.
   LdpStatusCode statusCode() const noexcept { return statusCode_; }
   /// Text of the failure. Empty for a good message, except that a good Initialization says "success".
   Vorn::String const & reason() const noexcept { return reason_; }
   /// Whether the message may be used. A message to be ignored is not valid: `unknownMessageTypeIgnore` tells
   /// it from one to be reported.
   bool validMsg() const noexcept { return statusCode_ == success; }
   /// Offset from the packet's front of what a refused message was refused for: a TLV, an element of a FEC
   /// TLV, or the message where it is refused as a whole. A TLV whose framing is bad may begin behind the
   /// packet's end. Of a good message its own.
   U32 faultOffset() const noexcept { return faultOffset_; }

   /// Whether the rules of the message's type have been applied, good or bad: by `handleInitialized` of each
   /// subclass, which its constructor runs. There are none for a plain parser.
   bool initialized() const noexcept { return initialized_; }

   /// The walker over the TLVs.
   Vorn::Ptr< LdpTlvGroupParser > tlvGroupParser() const noexcept { return tlvGroupParser_; }
   /// The walker of that name: the present one if it has the name, else a new one in its place.
   Vorn::Ptr< LdpTlvGroupParser > tlvGroupParserIs( Vorn::Name const & name );
   /// Drops the walker and returns it.
   Vorn::Ptr< LdpTlvGroupParser > tlvGroupParserDel();
   /// Number of TLVs.
   U32 tlvNum() const noexcept { return tlvGroupParser_ ? tlvGroupParser_->tlvNum() : 0; }
   /// Offset of the TLV at that index, from the packet's front.
   U32 tlvOffset( U32 index ) const noexcept {
      return tlvGroupParser_ ? tlvGroupParser_->tlvOffset( index ) : 0;
   }

   /// The FEC TLV, where the message's kind looks for one.
   LdpTlvHdr const * msgFecTlv() const noexcept { return msgFecTlv_; }
   /// Its parser.
   Vorn::Ptr< LdpFecTlvParser > ldpFecTlvParser() const noexcept { return ldpFecTlvParser_; }
   /// Parses the FEC TLV at that offset and keeps the parser, in the place of an earlier one.
   Vorn::Ptr< LdpFecTlvParser > ldpFecTlvParserIs( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset,
                                                   Vorn::Ptr< LdpProtoParam const > const & param );
   /// Drops the FEC parser and returns it. The text of a good message with a FEC asserts without it.
   Vorn::Ptr< LdpFecTlvParser > ldpFecTlvParserDel();
   /// The Status TLV, where the message's kind looks for one.
   LdpStatusTlv const * msgStatusTlv() const noexcept { return msgStatusTlv_; }

   /// The base's part of construction: judges the header and the framing. The part of each message type, its
   /// `handleInitialized`, follows in the constructor; called again it finds the TLVs where `tlvOffset` says.
   void handleHeader();

 protected:
   /// Open while the message is judged by the rules of its type.
   class Judging {
    public:
      /// Opens the judgement of that message.
      explicit Judging( LdpMsgParser & parser ) noexcept : parser_( parser ) { parser_.initialized_ = true; }
      Judging( Judging const & ) = delete;
      Judging & operator=( Judging const & ) = delete;
      ~Judging() { parser_.asWalked_ = false, parser_.judgedGood_ = parser_.validMsg(); }

    private:
      LdpMsgParser & parser_;
   };

   /// The TLV at that index; null where the packet does not hold the whole of it, and then the message is
   /// refused.
   LdpTlvHdr const * tlv( U32 index ) { return tlvAt( tlvOffset( index ) ); }
   /// Calls `call( index, tlv )` for each TLV of a message whose framing is good, until it returns false.
   /// Right behind the walk the TLVs fill their run, so their lengths lead from one to the next, without a
   /// look-up for each.
   template< class Call >
   void eachTlv( Call const & call ) {
      U64 next = U64( offset_ ) + LdpMsgHdr::ldpMsgHdrSize;
      U32 const num = tlvNum();
      for ( U32 i = 0; i < num; ++i ) {
         LdpTlvHdr const * const tlv = tlvAt( asWalked_ ? next : tlvOffset( i ) );
         if ( !tlv ) return;
         next += tlv->totalLength();
         if ( !call( i, *tlv ) ) return;
      }
   }
   /// For the message as a whole, for that TLV, or for what stands at that offset.
   void refuse( LdpStatusCode status, Vorn::String const & reason ) { refuse( status, reason, offset_ ); }
   void refuse( LdpStatusCode status, Vorn::String const & reason, LdpTlvHdr const & tlv ) {
      refuse( status, reason, U32( reinterpret_cast< U8 const * >( &tlv ) - pkt_->front() ) );
   }
   void refuse( LdpStatusCode status, Vorn::String const & reason, U32 at );
   /// Judges the message by the rules of its type: what a subclass's constructor runs behind the base's.
   void obey( LdpMsgRules const & rules );
   /// The checks of `obey` that come before any TLV is looked at; false if the message is refused already.
   bool opens( LdpMsgRules const & rules );
   /// The checks of `obey` behind those.
   void obeyTlvs( LdpMsgRules const & rules );
   /// A good message's heading and id, with which its text begins.
   Vorn::String headingText( char const * heading ) const;

   /// What the getters show.
   Vorn::Ptr< Lumo::Pkt > pkt_;
   U32 offset_;
   LdpStatusCode statusCode_ = success;
   U32 faultOffset_ = offset_;
   LdpMsgHdr const * msgHdr_ = nullptr;
   Vorn::String reason_;
   Vorn::Ptr< LdpTlvGroupParser > tlvGroupParser_;
   LdpTlvHdr const * msgFecTlv_ = nullptr;
   Vorn::Ptr< LdpFecTlvParser > ldpFecTlvParser_;
   LdpStatusTlv const * msgStatusTlv_ = nullptr;
   bool initialized_ = false;

 private:
   bool hasOctets( U64 octets ) const noexcept { return offset_ + octets <= pkt_->frontBytes(); }
   bool hasHeader() const noexcept { return hasOctets( LdpMsgHdr::ldpMsgHdrSize ); }
   /// The view for those who read it without asking further; null unless all of it lies in the packet.
   LdpMsgHdr const * wholeMsgHdr() const noexcept { return hasHeader() ? msgHdr_ : nullptr; }
   /// Whether `stringValue()` finds what it asserts, for those who read it without asking further.
   bool hasText() const noexcept;
   /// The TLV at that offset, as `tlv` gives it. The walk has seen to the bounds, but an offset may have been
   /// written since, and so may the packet.
   LdpTlvHdr const * tlvAt( U64 offset ) {
      U64 const frontBytes = pkt_->frontBytes();
      auto const * const there = reinterpret_cast< LdpTlvHdr const * >( pkt_->front() + offset );
      if ( offset + sizeof *there <= frontBytes && offset + there->totalLength() <= frontBytes ) [[likely]]
         return there;
      refuse( badTlvLength, "Msg/Tlv is corrupted/truncated" );
      return nullptr;
   }
   bool obeyTlv( LdpMsgRules const & rules, U32 index, LdpTlvHdr const & tlv );
   bool obeyFecTlv( LdpMsgRules const & rules, U32 index, LdpTlvHdr const & tlv );

   bool asWalked_ = false;   // the TLVs stand as the walk has just found them
   bool judgedGood_ = false; // by the rules of its type; a later change of the status does not count
};

/// Hello (RFC 5036, 3.5.2): Common Hello Parameters first, then at most one kind of transport address, and a
/// configuration sequence number.
class VORN_API LdpHelloMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpHelloMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpHelloMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpHelloMsgParser() override;
   Vorn::String stringValue() const override;

   /// The Common Hello Parameters; set on every good message.
   LdpCommonHelloTlv const * msgCommonHelloTlv() const noexcept { return msgCommonHelloTlv_; }
   /// The IPv4 transport address; null where the message has none.
   LdpIpTransportAddrTlv const * msgIpTransportTlv() const noexcept { return msgIpTransportTlv_; }
   /// The IPv6 transport address; null where the message has none.
   LdpIp6TransportAddrTlv const * msgIp6TransportTlv() const noexcept { return msgIp6TransportTlv_; }
   /// The configuration sequence number; null where the message has none.
   LdpConfigSeqNumTlv const * msgConfigSeqTlv() const noexcept { return msgConfigSeqTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpCommonHelloTlv const * msgCommonHelloTlv_ = nullptr;
   LdpIpTransportAddrTlv const * msgIpTransportTlv_ = nullptr;
   LdpIp6TransportAddrTlv const * msgIp6TransportTlv_ = nullptr;
   LdpConfigSeqNumTlv const * msgConfigSeqTlv_ = nullptr;
};

/// What Initialization and Capability messages share: the capability TLVs (RFC 5561), in order of their
/// types.
class VORN_API LdpCapabilityParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpCapabilityParser, LdpMsgParser )

 public:
   /// The capabilities by type.
   using Capabilities = Vorn::RbTreeMap< LdpCapabilityParser, LdpTlvType, LdpCapabilityParameterTlv const * >;

   /// Parses the message at `offset` as `LdpMsgParser` does; the rules of its type are for the subclasses.
   LdpCapabilityParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpCapabilityParser() override;

   /// All of them, in ascending order of type.
   Capabilities const & capabilities() const noexcept { return capabilities_; }
   /// The capability of that type, or null.
   LdpCapabilityParameterTlv const * capabilities( LdpTlvType type ) const;
   /// Whether there is a capability of that type.
   bool capabilitiesHas( LdpTlvType type ) const { return capabilities( type ) != nullptr; }
   /// Adds the capability or replaces its view; null removes it.
   void capabilitiesIs( LdpTlvType type, LdpCapabilityParameterTlv const * capability );
   /// Removes the capability of that type and returns it, or null.
   LdpCapabilityParameterTlv const * capabilitiesDel( LdpTlvType type );
   /// Removes all capabilities.
   void capabilitiesDelAll() { capabilities_.delAll(); }
   /// Tells the observers of a capability. A parser has no observers, so there is nobody to tell.
   void capabilitiesNotify( LdpTlvType ) const noexcept {}
   /// Gathers the capability TLVs of the message; of a type that repeats, the last.
   void parseCapabilityTlvs();

 protected:
   /// A line for each capability.
   Vorn::String capabilitiesText() const;

 private:
   Capabilities capabilities_;
};

/// Initialization (RFC 5036, 3.5.3): Common Session Parameters first, then capabilities and the Fault
/// Tolerant Session TLV.
class VORN_API LdpInitMsgParser : public LdpCapabilityParser {
   VORN_REFLECTED_OBJECT( LdpInitMsgParser, LdpCapabilityParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpInitMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpInitMsgParser() override;
   Vorn::String stringValue() const override;

   /// The Common Session Parameters; set on every good message.
   LdpCommonSessionParamTlv const * msgSessionParamTlv() const noexcept { return msgSessionParamTlv_; }
   /// The Fault Tolerant Session TLV; null where the message has none.
   LdpFtSessionTlv const * msgFtSessionTlv() const noexcept { return msgFtSessionTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpCommonSessionParamTlv const * msgSessionParamTlv_ = nullptr;
   LdpFtSessionTlv const * msgFtSessionTlv_ = nullptr;
};

/// Capability (RFC 5561, 4). `ldpMsgParserGet` leaves such a message a plain `LdpMsgParser`; who wants its
/// capabilities builds this class.
class VORN_API LdpCapabilityMsgParser : public LdpCapabilityParser {
   VORN_REFLECTED_OBJECT( LdpCapabilityMsgParser, LdpCapabilityParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpCapabilityMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpCapabilityMsgParser() override;
   Vorn::String stringValue() const override;

   /// The judgement, which the constructor runs.
   void handleInitialized();
};

/// Notification (RFC 5036, 3.5.1): a Status TLV first; with the status of a pseudowire (RFC 8077, 6.3.2) a PW
/// Status TLV and a FEC TLV behind it.
class VORN_API LdpNotificationMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpNotificationMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpNotificationMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpNotificationMsgParser() override;
   Vorn::String stringValue() const override;

   /// The PW Status TLV; set on a good pseudowire status notification only.
   LdpPwStatusTlv const * msgPwStatusTlv() const noexcept { return msgPwStatusTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   bool handlePwStatus();

   LdpPwStatusTlv const * msgPwStatusTlv_ = nullptr;
};

/// Address (RFC 5036, 3.5.5): an Address List TLV first.
class VORN_API LdpAddressMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpAddressMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpAddressMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpAddressMsgParser() override;
   Vorn::String stringValue() const override;

   /// The Address List TLV; set on every good message.
   LdpAddressListTlv const * addressListTlv() const noexcept { return addressListTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpAddressListTlv const * addressListTlv_ = nullptr;
};

/// Address Withdraw (RFC 5036, 3.5.6): an Address List TLV first.
class VORN_API LdpAddressWithdrawMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpAddressWithdrawMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpAddressWithdrawMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpAddressWithdrawMsgParser() override;
   Vorn::String stringValue() const override;

   /// The Address List TLV; set on every good message.
   LdpAddressListTlv const * addressListTlv() const noexcept { return addressListTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpAddressListTlv const * addressListTlv_ = nullptr;
};

/// Label Mapping (RFC 5036, 3.5.7): FEC and label, with a good FEC that is no wildcard.
class VORN_API LdpLabelMappingMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpLabelMappingMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpLabelMappingMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpLabelMappingMsgParser() override;
   Vorn::String stringValue() const override;

   /// The label; set on every good message.
   LdpGenLabelTlv const * msgGenLabelTlv() const noexcept { return msgGenLabelTlv_; }
   /// Id of the request that is answered; null where the message has none.
   LdpLabelReqMsgIdTlv const * msgReqMsgIdTlv() const noexcept { return msgReqMsgIdTlv_; }
   /// The hop count; null where the message has none.
   LdpHopCountTlv const * msgHopCountTlv() const noexcept { return msgHopCountTlv_; }
   /// The path vector; null where the message has none.
   LdpPathVectorTlv const * msgPathVectorTlv() const noexcept { return msgPathVectorTlv_; }
   /// The PW Status TLV; null where the message has none.
   LdpPwStatusTlv const * msgPwStatusTlv() const noexcept { return msgPwStatusTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpGenLabelTlv const * msgGenLabelTlv_ = nullptr;
   LdpLabelReqMsgIdTlv const * msgReqMsgIdTlv_ = nullptr;
   LdpHopCountTlv const * msgHopCountTlv_ = nullptr;
   LdpPathVectorTlv const * msgPathVectorTlv_ = nullptr;
   LdpPwStatusTlv const * msgPwStatusTlv_ = nullptr;
};

/// Label Request (RFC 5036, 3.5.8): a good FEC that is no wildcard.
class VORN_API LdpLabelRequestMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpLabelRequestMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpLabelRequestMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpLabelRequestMsgParser() override;
   Vorn::String stringValue() const override;

   /// The hop count; null where the message has none.
   LdpHopCountTlv const * msgHopCountTlv() const noexcept { return msgHopCountTlv_; }
   /// The path vector; null where the message has none.
   LdpPathVectorTlv const * msgPathVectorTlv() const noexcept { return msgPathVectorTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpHopCountTlv const * msgHopCountTlv_ = nullptr;
   LdpPathVectorTlv const * msgPathVectorTlv_ = nullptr;
};

/// Label Withdraw (RFC 5036, 3.5.10): a good FEC, wildcards included; the label is optional.
class VORN_API LdpLabelWithdrawMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpLabelWithdrawMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpLabelWithdrawMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpLabelWithdrawMsgParser() override;
   Vorn::String stringValue() const override;

   /// The label; null for all labels of the FEC.
   LdpGenLabelTlv const * msgGenLabelTlv() const noexcept { return msgGenLabelTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpGenLabelTlv const * msgGenLabelTlv_ = nullptr;
};

/// Label Release (RFC 5036, 3.5.11): a FEC, which is not judged: ask `ldpFecTlvParser()` whether it is
/// `valid()` before using it. The label is optional.
class VORN_API LdpLabelReleaseMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpLabelReleaseMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpLabelReleaseMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpLabelReleaseMsgParser() override;
   Vorn::String stringValue() const override;

   /// The label; null for all labels of the FEC.
   LdpGenLabelTlv const * msgGenLabelTlv() const noexcept { return msgGenLabelTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpGenLabelTlv const * msgGenLabelTlv_ = nullptr;
};

/// Label Abort Request (RFC 5036, 3.5.9): a good FEC that is no wildcard, and the id of the request.
class VORN_API LdpLabelAbortReqMsgParser : public LdpMsgParser {
   VORN_REFLECTED_OBJECT( LdpLabelAbortReqMsgParser, LdpMsgParser )

 public:
   /// Parses the message at `offset`; see `LdpMsgParser::LdpMsgParser`.
   LdpLabelAbortReqMsgParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, LdpMsgParser * plain = nullptr );
   ~LdpLabelAbortReqMsgParser() override;
   Vorn::String stringValue() const override;

   /// Id of the request that is aborted; set on every good message.
   LdpLabelReqMsgIdTlv const * msgReqMsgIdTlv() const noexcept { return msgReqMsgIdTlv_; }
   /// The judgement, which the constructor runs.
   void handleInitialized();

 private:
   LdpLabelReqMsgIdTlv const * msgReqMsgIdTlv_ = nullptr;
};

/// Makes the parser of that class.
VORN_API Vorn::Ptr< LdpMsgParser > ldpMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_API Vorn::Ptr< LdpHelloMsgParser > ldpHelloMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt,
                                                                  U32 offset );
VORN_API Vorn::Ptr< LdpInitMsgParser > ldpInitMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt,
                                                                U32 offset );
VORN_API Vorn::Ptr< LdpCapabilityMsgParser > ldpCapabilityMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_API Vorn::Ptr< LdpNotificationMsgParser > ldpNotificationMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_API Vorn::Ptr< LdpAddressMsgParser > ldpAddressMsgParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt,
                                                                      U32 offset );
VORN_API Vorn::Ptr< LdpAddressWithdrawMsgParser > ldpAddressWithdrawMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_API Vorn::Ptr< LdpLabelMappingMsgParser > ldpLabelMappingMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_API Vorn::Ptr< LdpLabelRequestMsgParser > ldpLabelRequestMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_API Vorn::Ptr< LdpLabelWithdrawMsgParser > ldpLabelWithdrawMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_API Vorn::Ptr< LdpLabelReleaseMsgParser > ldpLabelReleaseMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_API Vorn::Ptr< LdpLabelAbortReqMsgParser > ldpLabelAbortReqMsgParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );

} // namespace Ldp
