/// \file
/// The three headers of the wire: PDU, message and TLV.
///
/// Each is a view laid straight over the bytes of a packet at some offset; every field is a network-order
/// integer in place, so a view has no alignment, no hidden state and exactly the size of its wire form. A
/// view is owned by nobody and lives as long as the packet under it. Whoever takes a view has checked that
/// the bytes are there.
///
///     PDU      version(2) length(2) LSR id(4) label space(2)      RFC 5036, 3.1
///     message  U|type(2) length(2) message id(4)                  RFC 5036, 3.5
///     TLV      U|F|type(2) length(2)                              RFC 5036, 3.3
///
/// A length counts the octets behind itself. A total length is that plus 4 in 16 bits, so it wraps as the
/// field does: lengths from 65532 on give totals of 0 to 3, and the walks depend on it.
#pragma once

#include "Ldp/LdpEnums.h"
#include "Ldp/LdpIdentifier.h"

namespace Ldp {

/// Length of a unit as its header counts it, plus the 4 octets that it leaves out; wraps in 16 bits.
constexpr U16 totalOfLength( U16 length ) noexcept { return U16( length + 4 ); }

/// U bit and message type, the first two octets of a message header.
class VORN_API LdpHdrMsgUbitAndTypeField : public Lumo::NetU16 {
   VORN_REFLECTED( LdpHdrMsgUbitAndTypeField, Lumo::NetU16 )

 public:
   using NetU16::NetU16;

   /// U bit: the receiver is to ignore the message silently if it does not know the type.
   bool unknown() const noexcept { return bits< 0x8000 >(); }
   /// Stores bit 0 of `unknown`.
   void unknownIs( U32 unknown ) noexcept { bitsIs< 0x8000 >( unknown ); }
   /// The message type: the 15 bits behind the U bit.
   U16 type() const noexcept { return bits< 0x7fff >(); }
   void typeIs( U16 type ) noexcept { bitsIs< 0x7fff >( type ); }
};
static_assert( sizeof( LdpHdrMsgUbitAndTypeField ) == 2 );
VORN_TEXT( LdpHdrMsgUbitAndTypeField )

/// U bit, F bit and TLV type, the first two octets of a TLV header.
class VORN_API LdpTlvTypeField : public Lumo::NetU16 {
   VORN_REFLECTED( LdpTlvTypeField, Lumo::NetU16 )

 public:
   using NetU16::NetU16;

   /// U bit: the receiver is to ignore the TLV silently if it does not know the type.
   bool unknown() const noexcept { return bits< 0x8000 >(); }
   /// Stores bit 0 of `unknown`.
   void unknownIs( U32 unknown ) noexcept { bitsIs< 0x8000 >( unknown ); }
   /// F bit: an unknown TLV is to be forwarded with its message.
   bool forwardUnknown() const noexcept { return bits< 0x4000 >(); }
   /// Stores bit 0 of `forward`.
   void forwardUnknownIs( U32 forward ) noexcept { bitsIs< 0x4000 >( forward ); }
   /// The TLV type: the 14 bits behind the U and F bits.
   U16 type() const noexcept { return bits< 0x3fff >(); }
   void typeIs( U16 type ) noexcept { bitsIs< 0x3fff >( type ); }
};
static_assert( sizeof( LdpTlvTypeField ) == 2 );
VORN_TEXT( LdpTlvTypeField )

/// PDU header (RFC 5036, 3.1).
class VORN_API LdpPduHdr : public Vorn::NrcPtrInterface {
   VORN_REFLECTED( LdpPduHdr, void )

 public:
   /// Octets that the length field does not count: version and length.
   static constexpr U16 pduHdrSizeExclude = 4;

   /// Version of the protocol, the raw field.
   Lumo::NetU16 versionNbo() const noexcept { return version_; }
   void versionNboIs( Lumo::NetU16 version ) noexcept { version_ = version; }
   /// PDU length in octets, the raw field.
   Lumo::NetU16 lengthNbo() const noexcept { return length_; }
   void lengthNboIs( Lumo::NetU16 length ) noexcept { length_ = length; }
   /// Sender's LSR id and label space.
   LdpIdentifier const & ldpIdentifier() const noexcept { return ldpIdentifier_; }
   void ldpIdentifierIs( LdpIdentifier const & ldpIdentifier ) noexcept { ldpIdentifier_ = ldpIdentifier; }

   /// Version of the protocol; 1 is the only one.
   U16 version() const noexcept { return version_.value(); }
   /// Octets behind the length field.
   U16 length() const noexcept { return length_.value(); }
   /// Octets of the whole PDU: `length()` plus 4, which wraps in 16 bits.
   U16 totalLength() const noexcept { return totalOfLength( length() ); }

   /// Text of all fields.
   Vorn::String stringValue() const;

 private:
   Lumo::NetU16 version_;
   Lumo::NetU16 length_;
   LdpIdentifier ldpIdentifier_;
};
static_assert( sizeof( LdpPduHdr ) == 10 && alignof( LdpPduHdr ) == 1 );

/// Message header (RFC 5036, 3.5).
class VORN_API LdpMsgHdr : public Vorn::NrcPtrInterface {
   VORN_REFLECTED( LdpMsgHdr, void )

 public:
   /// Octets that the length field does not count: type and length.
   static constexpr U16 msgHdrSizeExclude = 4;
   /// Octets of the whole header.
   static constexpr U16 ldpMsgHdrSize = 8;

   /// U bit and message type, the raw field.
   LdpHdrMsgUbitAndTypeField msgUbitAndTypeField() const noexcept { return msgUbitAndTypeField_; }
   void msgUbitAndTypeFieldIs( LdpHdrMsgUbitAndTypeField field ) noexcept { msgUbitAndTypeField_ = field; }
   /// Message length in octets, the raw field.
   Lumo::NetU16 lengthNbo() const noexcept { return length_; }
   void lengthNboIs( Lumo::NetU16 length ) noexcept { length_ = length; }
   /// Message id, the raw field.
   Lumo::NetU32 msgIdNbo() const noexcept { return msgId_; }
   void msgIdNboIs( Lumo::NetU32 msgId ) noexcept { msgId_ = msgId; }

   /// U bit: the receiver is to ignore the message silently if it does not know the type.
   bool unknown() const noexcept { return msgUbitAndTypeField_.unknown(); }
   void unknownIs( U32 unknown ) noexcept { msgUbitAndTypeField_.unknownIs( unknown ); }
   /// Message type; any number of 15 bits may come, it need not be an enumerator.
   LdpMsgType type() const noexcept { return LdpMsgType( msgUbitAndTypeField_.type() ); }
   /// Keeps the U bit.
   void typeIs( LdpMsgType type ) noexcept { msgUbitAndTypeField_.typeIs( U16( type & 0x7fff ) ); }
   /// Octets behind the length field: message id and TLVs.
   U16 length() const noexcept { return length_.value(); }
   /// Octets of the whole message: `length()` plus 4, which wraps in 16 bits.
   U16 totalLength() const noexcept { return totalOfLength( length() ); }
   /// Message id.
   U32 msgId() const noexcept { return msgId_.value(); }

 private:
   LdpHdrMsgUbitAndTypeField msgUbitAndTypeField_;
   Lumo::NetU16 length_;
   Lumo::NetU32 msgId_;
};
static_assert( sizeof( LdpMsgHdr ) == 8 && alignof( LdpMsgHdr ) == 1 );

/// TLV header (RFC 5036, 3.3), with which every TLV body begins.
class VORN_API LdpTlvHdr : public Vorn::NrcPtrInterface {
   VORN_REFLECTED( LdpTlvHdr, void )

 public:
   /// Octets that the length field does not count: the whole header.
   static constexpr U16 tlvHdrSizeExclude = 4;

   /// U bit, F bit and TLV type, the raw field.
   LdpTlvTypeField tlvTypeField() const noexcept { return tlvTypeField_; }
   void tlvTypeFieldIs( LdpTlvTypeField field ) noexcept { tlvTypeField_ = field; }
   /// Length of the value in octets, the raw field.
   Lumo::NetU16 lengthNbo() const noexcept { return length_; }
   void lengthNboIs( Lumo::NetU16 length ) noexcept { length_ = length; }

   /// U bit: a receiver that does not know the type ignores the TLV silently.
   bool unknown() const noexcept { return tlvTypeField_.unknown(); }
   void unknownIs( U32 unknown ) noexcept { tlvTypeField_.unknownIs( unknown ); }
   /// F bit: such a receiver forwards the TLV with its message.
   bool forwardUnknown() const noexcept { return tlvTypeField_.forwardUnknown(); }
   void forwardUnknownIs( U32 forward ) noexcept { tlvTypeField_.forwardUnknownIs( forward ); }
   /// TLV type; any number of 14 bits may come, it need not be an enumerator.
   LdpTlvType type() const noexcept { return LdpTlvType( tlvTypeField_.type() ); }
   /// Keeps the U and F bits.
   void typeIs( LdpTlvType type ) noexcept { tlvTypeField_.typeIs( U16( type & 0x3fff ) ); }
   /// Octets of the value.
   U16 length() const noexcept { return length_.value(); }
   /// Octets of the whole TLV: `length()` plus 4, which wraps in 16 bits.
   U16 totalLength() const noexcept { return totalOfLength( length() ); }

   /// Whether a receiver may take the TLV: `success` for a known type; for an unknown one
   /// `unknownMessageTypeIgnore` if its U bit is set and `unknownTlv` otherwise. Neither the F bit nor the
   /// length plays a part, nor whether the TLV is allowed in its message.
   LdpStatusCode validateTlvHdr() const noexcept;

 protected:
   /// The octet at `offset` of the TLV, header included, for a body of variable size. The caller has checked
   /// that the TLV reaches so far.
   U8 const * octetsAt( U32 offset ) const noexcept {
      return reinterpret_cast< U8 const * >( this ) + offset;
   }
   /// `success` if the length field holds `length`, else `badTlvLength`.
   LdpStatusCode validateLength( U16 length ) const noexcept {
      return this->length() == length ? success : badTlvLength;
   }

 private:
   LdpTlvTypeField tlvTypeField_;
   Lumo::NetU16 length_;
};
static_assert( sizeof( LdpTlvHdr ) == 4 && alignof( LdpTlvHdr ) == 1 );

/// Base of a body that belongs to one type of TLV: `validate()` and `stringValue()` of such a view assert
/// that it lies over one.
template< LdpTlvType tlvType >
class LdpTlvHdrOf : public LdpTlvHdr {
 public:
   /// Whether it does. Who comes by way of reflection is refused where it does not.
   bool liesOverItsType() const noexcept { return type() == tlvType; }
};

} // namespace Ldp
