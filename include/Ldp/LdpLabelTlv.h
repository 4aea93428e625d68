/// \file
/// Bodies of the label, status and address TLVs: what Notification, Address and Label messages carry. The
/// rules of `LdpSessionTlv.h` hold here as well.
#pragma once

#include "Ldp/LdpHdr.h"
#include "Lumo/Ip.h"
#include "Lumo/MplsLabel.h"

namespace Ldp {

/// The label field of a Generic Label TLV: 20 bits of label below 12 bits that are kept.
class VORN_API LdpGenLabelTlvLabel : public Lumo::NetU32 {
   VORN_REFLECTED( LdpGenLabelTlvLabel, Lumo::NetU32 )

 public:
   using NetU32::NetU32;

   /// The 20 bits of the label, in host order like every number here.
   U32 labelNbo() const noexcept { return bits< 0x000fffff >(); }
   void labelNboIs( U32 label ) noexcept { bitsIs< 0x000fffff >( label ); }
   /// The 12 bits above the label.
   U32 reserved() const noexcept { return bits< 0xfff00000 >(); }
   void reservedIs( U32 reserved ) noexcept { bitsIs< 0xfff00000 >( reserved ); }
};
VORN_TEXT( LdpGenLabelTlvLabel )

/// Generic Label TLV (RFC 5036, 3.4.2.1).
class VORN_API LdpGenLabelTlv : public LdpTlvHdrOf< genLabelTlv > {
   VORN_REFLECTED( LdpGenLabelTlv, LdpTlvHdr )

 public:
   /// The raw field.
   LdpGenLabelTlvLabel labelField() const noexcept { return labelField_; }
   void labelFieldIs( LdpGenLabelTlvLabel field ) noexcept { labelField_ = field; }
   /// The label.
   Lumo::MplsLabel label() const { return Lumo::MplsLabel( labelField_.labelNbo() ); }
   /// Replaces the 20 bits of the label, of which it takes the low ones, and keeps the reserved bits.
   void labelIs( Lumo::MplsLabel label ) noexcept { labelField_.labelNboIs( label.value() ); }

   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   LdpGenLabelTlvLabel labelField_;
};
static_assert( sizeof( LdpGenLabelTlv ) == 8 && alignof( LdpGenLabelTlv ) == 1 );

/// Label Request Message ID TLV (RFC 5036, 3.5.7).
class VORN_API LdpLabelReqMsgIdTlv : public LdpTlvHdrOf< labelReqMsgIdTlv > {
   VORN_REFLECTED( LdpLabelReqMsgIdTlv, LdpTlvHdr )

 public:
   /// Id of the Label Request, the raw field.
   Lumo::NetU32 reqMsgIdNbo() const noexcept { return reqMsgId_; }
   /// Id of the Label Request that is answered or aborted.
   U32 reqMsgId() const noexcept { return reqMsgId_.value(); }
   void reqMsgIdIs( U32 msgId ) noexcept { reqMsgId_.valueIs( msgId ); }

   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   Lumo::NetU32 reqMsgId_;
};
static_assert( sizeof( LdpLabelReqMsgIdTlv ) == 8 && alignof( LdpLabelReqMsgIdTlv ) == 1 );

/// Hop Count TLV (RFC 5036, 3.4.4).
class VORN_API LdpHopCountTlv : public LdpTlvHdrOf< hopCountTlv > {
   VORN_REFLECTED( LdpHopCountTlv, LdpTlvHdr )

 public:
   /// Hops along the LSP; 0 is unknown. A peer can send any octet, 254 and 255 too, on which `hopCountInc`
   /// asserts.
   U8 hopCount() const noexcept { return hopCount_; }
   void hopCountIs( U8 hops ) noexcept { hopCount_ = hops; }

   /// `success`, or `badTlvLength` for any length but 1.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   U8 hopCount_ = 0;
};
static_assert( sizeof( LdpHopCountTlv ) == 5 && alignof( LdpHopCountTlv ) == 1 );

/// Path Vector TLV (RFC 5036, 3.4.5): behind the header a row of LSR ids, 4 octets each. It has no fields of
/// its own; how many ids there are follows from the length, which the caller has checked against the packet.
class VORN_API LdpPathVectorTlv : public LdpTlvHdrOf< pathVectorTlv > {
   VORN_REFLECTED( LdpPathVectorTlv, LdpTlvHdr )

 public:
   /// Number of LSR ids; 0 when the length is no multiple of 4.
   U32 lsrIdNum() const noexcept { return length() % 4 ? 0 : length() / 4u; }
   /// The id at that position, from 0; the zero address behind the last.
   Lumo::IpAddr lsrId( U32 position ) const noexcept;
   /// The first position of that id, counted from 1; 0 when it is absent.
   U32 lsrIdPosition( Lumo::IpAddr const & lsrId ) const noexcept;

   /// `success`, or `badTlvLength` when there is no id.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;
};
static_assert( sizeof( LdpPathVectorTlv ) == 4 );

/// The status word of a Status TLV (RFC 5036, 3.4.6).
class VORN_API LdpStatusTlvStatusCode : public Lumo::NetU32 {
   VORN_REFLECTED( LdpStatusTlvStatusCode, Lumo::NetU32 )

 public:
   using NetU32::NetU32;

   /// The value of an `LdpStatusCode`.
   U32 statusDataNbo() const noexcept { return bits< 0x3fffffff >(); }
   void statusDataNboIs( U32 status ) noexcept { bitsIs< 0x3fffffff >( status ); }
   /// F bit: forward the notification along the LSP.
   bool forwardUnknown() const noexcept { return bits< 0x40000000 >(); }
   void forwardUnknownIs( bool forward ) noexcept { bitsIs< 0x40000000 >( forward ); }
   /// E bit: a fatal error.
   bool error() const noexcept { return bits< 0x80000000 >(); }
   void errorIs( bool fatal ) noexcept { bitsIs< 0x80000000 >( fatal ); }
};
VORN_TEXT( LdpStatusTlvStatusCode )

/// Status TLV (RFC 5036, 3.4.6).
class VORN_API LdpStatusTlv : public LdpTlvHdrOf< statusTlv > {
   VORN_REFLECTED( LdpStatusTlv, LdpTlvHdr )

 public:
   /// The status word: the status and its two bits.
   LdpStatusTlvStatusCode statusCode() const noexcept { return statusCode_; }
   void statusCodeIs( LdpStatusTlvStatusCode code ) noexcept { statusCode_ = code; }
   /// Id of the message that the status refers to, the raw field.
   Lumo::NetU32 msgIdNbo() const noexcept { return msgId_; }
   /// Type of the message that the status refers to, the raw field.
   Lumo::NetU16 msgTypeNbo() const noexcept { return msgType_; }

   /// The status. Any number of 30 bits may come: it need not be an enumerator.
   LdpStatusCode statusData() const noexcept { return LdpStatusCode( statusCode_.statusDataNbo() ); }
   /// Replaces the low 30 bits, of which a status has no more on the wire, and keeps E and F.
   void statusDataIs( LdpStatusCode status ) noexcept { statusCode_.statusDataNboIs( status ); }
   /// F bit: forward the notification along the LSP.
   bool statusForwardUnknown() const noexcept { return statusCode_.forwardUnknown(); }
   void statusForwardUnknownIs( bool forward ) noexcept { statusCode_.forwardUnknownIs( forward ); }
   /// E bit: a fatal error.
   bool statusError() const noexcept { return statusCode_.error(); }
   void statusErrorIs( bool fatal ) noexcept { statusCode_.errorIs( fatal ); }
   /// Id of the message that the status refers to; 0 if it refers to none.
   U32 msgId() const noexcept { return msgId_.value(); }
   void msgIdIs( U32 msgId ) noexcept { msgId_.valueIs( msgId ); }
   /// Type of the message that the status refers to; 0 if it refers to none.
   LdpMsgType msgType() const noexcept { return LdpMsgType( msgType_.value() ); }
   void msgTypeIs( LdpMsgType type ) noexcept { msgType_.valueIs( U16( type ) ); }

   /// `success`, or `badTlvLength` for any length but 10.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   LdpStatusTlvStatusCode statusCode_;
   Lumo::NetU32 msgId_;
   Lumo::NetU16 msgType_;
};
static_assert( sizeof( LdpStatusTlv ) == 14 && alignof( LdpStatusTlv ) == 1 );

/// Address List TLV (RFC 5036, 3.4.3): address family at offset 4, addresses of that family from offset 6 on.
///
/// The family and all that follows from it are read only where the length says that they are there. A length
/// whose total wraps (65533 to 65535) covers nothing: no family, no address.
class VORN_API LdpAddressListTlv : public LdpTlvHdr {
   VORN_REFLECTED( LdpAddressListTlv, LdpTlvHdr )

 public:
   /// The raw field; 0 when the TLV is too short to hold it.
   Lumo::NetU16 addressFamilyNbo() const noexcept;
   /// IPv4 or IPv6, or any other number that was sent; 0 when the TLV is too short to hold it.
   Lumo::AddressFamily family() const noexcept;
   /// Number of addresses; 0 for any other family, and for a length that does not divide evenly.
   U16 numAddress() const noexcept;
   /// The address at that position, which is below `numAddress()`: anything else asserts.
   Lumo::IpGenAddr address( U16 position ) const;

   /// Header first; `unsupportedAddressFamily` for neither IPv4 nor IPv6, `malformedTlv` for no address.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   /// Whether the length covers the family field.
   bool hasFamily() const noexcept { return length() >= 2 && totalLength() > length(); }
};
static_assert( sizeof( LdpAddressListTlv ) == 4 );

} // namespace Ldp
