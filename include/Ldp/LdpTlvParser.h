/// \file
/// Parsers of one TLV: a packet, an offset, and the typed view of what stands there.
///
/// The message parsers lay their views themselves and do not use these classes; they are for whoever has an
/// offset and wants a counted object that keeps the packet alive. A parser judges nothing by itself:
/// `validate()` does, and the caller answers for the TLV lying in the packet, normally by having walked its
/// message first.
///
/// A getter asked where the fields are not in the packet gives zero, false or a default value. The text of a
/// TLV whose length is wrong for its kind is the error form, wherever the packet ends; it is empty where the
/// header is not wholly in the packet, or where the length is right and the packet cuts the body. Setters and
/// `validate()` act on the bytes at the offset directly.
#pragma once

#include "Ldp/LdpLabelTlv.h"
#include "Ldp/LdpPwHdr.h"
#include "Ldp/LdpSessionTlv.h"
#include "Lumo/Pkt.h"

namespace Ldp {

/// Parser of any TLV: its header.
class VORN_API LdpTlvParser : public Vorn::PtrInterface {
   VORN_REFLECTED_OBJECT( LdpTlvParser, void )

 public:
   /// A parser of the TLV at `offset`, which counts from the packet's front, here and everywhere in the
   /// decoders. No packet asserts.
   LdpTlvParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset );
   ~LdpTlvParser() override;

   /// The packet that the constructor was given.
   Vorn::Ptr< Lumo::Pkt > const & pkt() const noexcept { return pkt_; }
   /// Where the TLV begins, in octets from the packet's front.
   U32 offset() const noexcept { return offset_; }
   /// View of the header, at the offset whatever the packet holds there.
   LdpTlvHdr const * header() const noexcept { return header_; }

   /// U bit; like the fields below zero where the header is not wholly in the packet.
   bool unknown() const noexcept { return hasHeader() && header_->unknown(); }
   /// F bit.
   bool forwardUnknown() const noexcept { return hasHeader() && header_->forwardUnknown(); }
   /// TLV type; any number of 14 bits may come, it need not be an enumerator.
   LdpTlvType type() const noexcept { return hasHeader() ? header_->type() : LdpTlvType( 0 ); }
   /// Octets of the value.
   U16 length() const noexcept { return hasHeader() ? header_->length() : U16( 0 ); }

   /// Lays the header's view, which the constructor has done. It does no bounds check.
   void handleHeader() noexcept;

 protected:
   /// Whether so many octets from the offset on lie in the packet.
   bool hasOctets( U64 octets ) const noexcept { return offset_ + octets <= pkt_->frontBytes(); }
   /// Whether the header lies in the packet.
   bool hasHeader() const noexcept { return hasOctets( sizeof( LdpTlvHdr ) ); }
   /// The view for those who read it without asking further; null unless all of it lies in the packet.
   LdpTlvHdr const * wholeHeader() const noexcept { return hasHeader() ? header_ : nullptr; }

   /// What the getters show.
   Vorn::Ptr< Lumo::Pkt > pkt_;
   U32 offset_;
   LdpTlvHdr * header_ = nullptr;
};
/// A new parser.
VORN_API Vorn::Ptr< LdpTlvParser > ldpTlvParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );

/// Whether a TLV's length is one that no body of its kind has, so that the body need not be looked at.
/// `octets` of the TLV lie in the packet, its header among them.
template< class Body >
bool ldpLengthRefuses( Body const & tlv, U64 ) noexcept {
   return tlv.length() != sizeof( Body ) - sizeof( LdpTlvHdr );
}
/// A path vector holds one LSR id at least, and nothing but whole ones.
inline bool ldpLengthRefuses( LdpPathVectorTlv const & tlv, U64 ) noexcept { return !tlv.lsrIdNum(); }
/// An address list has its family, and whole addresses of that family.
inline bool ldpLengthRefuses( LdpAddressListTlv const & tlv, U64 octets ) noexcept {
   // How long the list may be follows from the family in front of it, but some lengths no family has.
   bool const ofNoFamily =
        tlv.length() < 3 || tlv.length() % Lumo::IpAddr::size != 2 || tlv.totalLength() < tlv.length();
   return ofNoFamily || ( octets >= sizeof tlv + 2 && !tlv.numAddress() );
}

/// What the parsers of one kind of TLV share: the view as that kind, its judgement and its text.
template< class Body >
class LdpBodyTlvParser : public LdpTlvParser {
 public:
   using LdpTlvParser::LdpTlvParser;

   /// The TLV as its kind; null where it is not wholly in the packet.
   Body const * header2() const noexcept { return hasBody() ? body() : nullptr; }
   Body * header2() noexcept { return hasBody() ? body() : nullptr; }

   /// The body's judgement.
   LdpStatusCode validate() const { return body()->validate(); }
   /// The body's text; empty where the header is not wholly in the packet, or the packet cuts the body.
   Vorn::String stringValue() const {
      bool const refused = hasHeader() && ldpLengthRefuses( *body(), pkt_->frontBytes() - offset_ );
      return refused || hasBody() ? body()->stringValue() : Vorn::String();
   }

 protected:
   /// The TLV as its kind, wherever it stands.
   Body * body() const noexcept { return static_cast< Body * >( header_ ); }
   /// Whether all of the TLV lies in the packet.
   bool hasBody() const noexcept {
      // A body without fields of its own reads as far as its length reaches.
      constexpr bool variable = sizeof( Body ) == sizeof( LdpTlvHdr );
      return variable ? hasHeader() && hasOctets( sizeof( LdpTlvHdr ) + U64( header_->length() ) )
                      : hasOctets( sizeof( Body ) );
   }
   /// Whether text and judgement may be asked for by who does not know what type of TLV this is: the body of
   /// some kinds asserts its type.
   bool hasTextOfItsType() const noexcept {
      if constexpr ( requires { body()->liesOverItsType(); } ) {
         return !hasHeader() || body()->liesOverItsType();
      } else {
         return true;
      }
   }
   /// Whether both hold.
   bool hasBodyOfItsType() const noexcept { return hasBody() && hasTextOfItsType(); }
};

/// A field of the view, read through the parser.
#define LDP_TLV_GETTER( Type, x )                                                                            \
   Type x() const {                                                                                          \
      auto const * view = this->header2();                                                                   \
      return view ? view->x() : Type{};                                                                      \
   }
/// A field of the view, read and written through the parser.
#define LDP_TLV_FIELD( Type, x )                                                                             \
   LDP_TLV_GETTER( Type, x )                                                                                 \
   void x##Is( Type const & value ) { this->body()->x##Is( value ); }
/// Opens a parser class over `Body`.
#define LDP_TLV_PARSER( Type )                                                                               \
   VORN_REFLECTED_OBJECT( Type, LdpTlvParser )                                                               \
 public:                                                                                                     \
   using LdpBodyTlvParser::LdpBodyTlvParser;                                                                 \
   ~Type() override;

/// Parser of a Common Hello Parameters TLV.
class VORN_API LdpCommonHelloTlvParser : public LdpBodyTlvParser< LdpCommonHelloTlv > {
   LDP_TLV_PARSER( LdpCommonHelloTlvParser )
   LDP_TLV_FIELD( U16, holdTime )
   LDP_TLV_FIELD( bool, targetedHello )
   LDP_TLV_FIELD( bool, requestSendTargetedHello )
};

/// Parser of an IPv4 Transport Address TLV.
class VORN_API LdpIpTransportAddrTlvParser : public LdpBodyTlvParser< LdpIpTransportAddrTlv > {
   LDP_TLV_PARSER( LdpIpTransportAddrTlvParser )
   LDP_TLV_FIELD( Lumo::IpAddr, ipAddr )
};

/// Parser of a Configuration Sequence Number TLV.
class VORN_API LdpConfigSeqNumTlvParser : public LdpBodyTlvParser< LdpConfigSeqNumTlv > {
   LDP_TLV_PARSER( LdpConfigSeqNumTlvParser )
   LDP_TLV_FIELD( U32, configSeqNum )
};

/// Parser of an IPv6 Transport Address TLV.
class VORN_API LdpIp6TransportAddrTlvParser : public LdpBodyTlvParser< LdpIp6TransportAddrTlv > {
   LDP_TLV_PARSER( LdpIp6TransportAddrTlvParser )
   LDP_TLV_FIELD( Lumo::Ip6Addr, ip6Addr )
};

/// Parser of a Common Session Parameters TLV.
class VORN_API LdpCommonSessionParamTlvParser : public LdpBodyTlvParser< LdpCommonSessionParamTlv > {
   LDP_TLV_PARSER( LdpCommonSessionParamTlvParser )
   LDP_TLV_FIELD( U16, protocolVersion )
   LDP_TLV_FIELD( U16, keepAliveTime )
   LDP_TLV_FIELD( bool, advDiscipline )
   LDP_TLV_FIELD( bool, loopDetect )
   LDP_TLV_FIELD( U8, pathVecLim )
   LDP_TLV_FIELD( U16, maxPduLength )
   LDP_TLV_FIELD( LdpIdentifier, recvLdpIdentifier )
};

/// Parser of a Fault Tolerant Session TLV.
class VORN_API LdpFtSessionTlvParser : public LdpBodyTlvParser< LdpFtSessionTlv > {
   LDP_TLV_PARSER( LdpFtSessionTlvParser )
   LDP_TLV_FIELD( U32, ftRecoveryTime )
   LDP_TLV_FIELD( U32, ftReconnectTimeout )
   LDP_TLV_FIELD( U16, learnFromNetwork )
   LDP_TLV_FIELD( LdpFtSessionFlags, ftFlags )
};

/// Parser of a Generic Label TLV.
class VORN_API LdpGenLabelTlvParser : public LdpBodyTlvParser< LdpGenLabelTlv > {
   LDP_TLV_PARSER( LdpGenLabelTlvParser )
   LDP_TLV_FIELD( Lumo::MplsLabel, label )
};

/// Parser of a Label Request Message ID TLV.
class VORN_API LdpLabelReqMsgIdTlvParser : public LdpBodyTlvParser< LdpLabelReqMsgIdTlv > {
   LDP_TLV_PARSER( LdpLabelReqMsgIdTlvParser )
   LDP_TLV_FIELD( U32, reqMsgId )
};

/// Parser of a Hop Count TLV.
class VORN_API LdpHopCountTlvParser : public LdpBodyTlvParser< LdpHopCountTlv > {
   LDP_TLV_PARSER( LdpHopCountTlvParser )
   LDP_TLV_FIELD( U8, hopCount )
};

/// Parser of a Path Vector TLV.
class VORN_API LdpPathVectorTlvParser : public LdpBodyTlvParser< LdpPathVectorTlv > {
   LDP_TLV_PARSER( LdpPathVectorTlvParser )
   LDP_TLV_GETTER( U32, lsrIdNum )
   /// The id at that position, from 0; the zero address behind the last.
   Lumo::IpAddr lsrId( U32 position ) const noexcept;
   /// The first position of that id, counted from 1; 0 when it is absent.
   U32 lsrIdPosition( Lumo::IpAddr const & lsrId ) const noexcept;
};

/// Parser of a Status TLV.
class VORN_API LdpStatusTlvParser : public LdpBodyTlvParser< LdpStatusTlv > {
   LDP_TLV_PARSER( LdpStatusTlvParser )
   LDP_TLV_FIELD( bool, statusError )
   LDP_TLV_FIELD( bool, statusForwardUnknown )
   LDP_TLV_FIELD( LdpStatusCode, statusData )
   LDP_TLV_FIELD( U32, msgId )
   LDP_TLV_FIELD( LdpMsgType, msgType )
};

/// Parser of an Address List TLV.
class VORN_API LdpAddressListTlvParser : public LdpBodyTlvParser< LdpAddressListTlv > {
   LDP_TLV_PARSER( LdpAddressListTlvParser )
   LDP_TLV_GETTER( Lumo::AddressFamily, family )
   LDP_TLV_GETTER( U16, numAddress )
   /// The address at that position, which is below `numAddress()`: anything else asserts.
   Lumo::IpGenAddr address( U16 position ) const;
};

/// Parser of a PW Status TLV.
class VORN_API LdpPwStatusTlvParser : public LdpBodyTlvParser< LdpPwStatusTlv > {
   LDP_TLV_PARSER( LdpPwStatusTlvParser )
   LDP_TLV_FIELD( LdpPwStatusField, pwStatusField )
   /// Whether the whole status word is 0; false as well where there is no TLV to say so.
   bool pwForwarding() const { return header2() && pwStatusField().pwForwarding(); }
   /// The pseudowire does not forward.
   bool pwNotForwarding() const { return pwStatusField().pwNotForwarding(); }
   /// Local attachment circuit, ingress: receive fault.
   bool localACIngrRecvFault() const { return pwStatusField().localACIngrRecvFault(); }
   /// Local attachment circuit, egress: transmit fault.
   bool localACEgrTransFault() const { return pwStatusField().localACEgrTransFault(); }
   /// Local PSN-facing PW, ingress: receive fault.
   bool localPsnPwIngrRecvFault() const { return pwStatusField().localPsnPwIngrRecvFault(); }
   /// Local PSN-facing PW, egress: transmit fault.
   bool localPsnPwEgrTransFault() const { return pwStatusField().localPsnPwEgrTransFault(); }
};

#undef LDP_TLV_GETTER
#undef LDP_TLV_FIELD
#undef LDP_TLV_PARSER

/// The factory of each parser.
#define VORN_LDP_TLV_PARSERS( X )                                                                            \
   X( LdpCommonHelloTlvParser, ldpCommonHelloTlvParserFactory )                                              \
   X( LdpIpTransportAddrTlvParser, ldpIpTransportAddrTlvParserFactory )                                      \
   X( LdpConfigSeqNumTlvParser, ldpConfigSeqNumTlvParserFactory )                                            \
   X( LdpIp6TransportAddrTlvParser, ldpIp6TransportAddrTlvParserFactory )                                    \
   X( LdpCommonSessionParamTlvParser, ldpCommonSessionParamTlvParserFactory )                                \
   X( LdpFtSessionTlvParser, ldpFtSessionTlvParserFactory )                                                  \
   X( LdpGenLabelTlvParser, ldpGenLabelTlvParserFactory )                                                    \
   X( LdpLabelReqMsgIdTlvParser, ldpLabelReqMsgIdTlvParserFactory )                                          \
   X( LdpHopCountTlvParser, ldpHopCountTlvParserFactory )                                                    \
   X( LdpPathVectorTlvParser, ldpPathVectorTlvParserFactory )                                                \
   X( LdpStatusTlvParser, ldpStatusTlvParserFactory )                                                        \
   X( LdpAddressListTlvParser, ldpAddressListTlvParserFactory )                                              \
   X( LdpPwStatusTlvParser, ldpPwStatusTlvParserFactory )
/// Declares the factory of one parser.
#define LDP_TLV_PARSER_FACTORY( Type, factory )                                                              \
   VORN_API Vorn::Ptr< Type > factory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
VORN_LDP_TLV_PARSERS( LDP_TLV_PARSER_FACTORY )
#undef LDP_TLV_PARSER_FACTORY

} // namespace Ldp
