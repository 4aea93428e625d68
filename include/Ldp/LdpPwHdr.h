/// \file
/// Wire forms of pseudowire signalling (RFC 8077): the PW ID FEC element with its interface parameters, and
/// the PW Status TLV. Views in the manner of `LdpHdr.h`.
///
///     PW ID element   128(1) C|PW type(2) PW info length(1) group id(4) [PW ID(4) interface parameters]
///     parameter       code(1) length(1) value
///
/// The PW info length counts what follows the group id. The length of a parameter counts the whole parameter,
/// its two octets of header included, unlike the length of a TLV.
#pragma once

#include "Ldp/LdpFecHdr.h"
#include "Ldp/LdpHdr.h"
#include "Pseudowire/Types.h"

namespace Ldp {

/// C bit and PW type of a PW ID element.
class VORN_API LdpFecTlvPwIdElementHdrTypeField : public Lumo::NetU16 {
   VORN_REFLECTED( LdpFecTlvPwIdElementHdrTypeField, Lumo::NetU16 )

 public:
   using NetU16::NetU16;

   /// C bit: a control word is to be used.
   bool controlWordBit() const noexcept { return bits< 0x8000 >(); }
   void controlWordBitIs( bool controlWord ) noexcept { bitsIs< 0x8000 >( controlWord ); }
   /// PW type, the 15 bits behind the C bit.
   U16 pwType() const noexcept { return bits< 0x7fff >(); }
   void pwTypeIs( U16 type ) noexcept { bitsIs< 0x7fff >( type ); }
};
VORN_TEXT( LdpFecTlvPwIdElementHdrTypeField )

/// PW ID FEC element (RFC 8077, 6.1). The view covers the fixed head of 8 octets; the PW ID behind it is
/// there only when the PW info length says so.
class VORN_API LdpFecTlvPwIdElementHdr : public LdpFecTlvElementHdr {
   VORN_REFLECTED( LdpFecTlvPwIdElementHdr, LdpFecTlvElementHdr )

 public:
   /// C bit and PW type, the raw field.
   LdpFecTlvPwIdElementHdrTypeField pwTypeField() const noexcept { return pwTypeField_; }
   void pwTypeFieldIs( LdpFecTlvPwIdElementHdrTypeField field ) noexcept { pwTypeField_ = field; }
   /// Octets of the PW ID and the interface parameters.
   U8 pwInfoLen() const noexcept { return pwInfoLen_; }
   void pwInfoLenIs( U8 octets ) noexcept { pwInfoLen_ = octets; }
   /// The group, the raw field.
   Lumo::NetU32 groupIdNbo() const noexcept { return groupId_; }
   void groupIdNboIs( Lumo::NetU32 groupId ) noexcept { groupId_ = groupId; }

   /// The group.
   Pseudowire::GroupId groupId() const noexcept { return Pseudowire::GroupId( groupId_.value() ); }
   void groupIdIs( Pseudowire::GroupId groupId ) noexcept { groupId_.valueIs( groupId.value() ); }
   /// C bit: a control word is to be used.
   bool controlWord() const noexcept { return pwTypeField_.controlWordBit(); }
   void controlWordIs( bool controlWord ) noexcept { pwTypeField_.controlWordBitIs( controlWord ); }
   /// PW type; any number of 15 bits may come, it need not be an enumerator.
   Pseudowire::PseudowireType pwType() const noexcept {
      return Pseudowire::PseudowireType( pwTypeField_.pwType() );
   }
   void pwTypeIs( Pseudowire::PseudowireType type ) noexcept { pwTypeField_.pwTypeIs( U16( type ) ); }
   /// The PW ID behind the head; 0 when the PW info length leaves no room for one.
   Pseudowire::PseudowireId pwId() const noexcept;
   /// Writes the PW ID, for which the PW info length must leave room: anything else asserts.
   void pwIdIs( Pseudowire::PseudowireId pwId );

 private:
   bool hasPwId() const noexcept { return pwInfoLen_ >= sizeof( Lumo::NetU32 ); }

   LdpFecTlvPwIdElementHdrTypeField pwTypeField_;
   U8 pwInfoLen_ = 0;
   Lumo::NetU32 groupId_;
};
static_assert( sizeof( LdpFecTlvPwIdElementHdr ) == 8 && alignof( LdpFecTlvPwIdElementHdr ) == 1 );

/// Head of every interface parameter.
class VORN_API LdpPwIntfParamSubTlv : public Vorn::NrcPtrInterface {
   VORN_REFLECTED( LdpPwIntfParamSubTlv, void )

 public:
   /// Octets of the head.
   static constexpr U8 tlvHdrSizeExclude = 2;

   /// The code of the parameter, the raw field.
   U8 typeField() const noexcept { return typeField_; }
   void typeFieldIs( U8 code ) noexcept { typeField_ = code; }
   /// The code of the parameter; any octet may come, it need not be an enumerator.
   LdpPwIntfParamSubTlvType type() const noexcept { return LdpPwIntfParamSubTlvType( typeField_ ); }
   /// Octets of the whole parameter, head included.
   U8 length() const noexcept { return length_; }
   void lengthIs( U8 octets ) noexcept { length_ = octets; }
   /// The same octet as `length()`.
   U8 totalLength() const noexcept { return length_; }

 private:
   U8 typeField_ = 0;
   U8 length_ = 0;
};
static_assert( sizeof( LdpPwIntfParamSubTlv ) == 2 );

/// Base of an interface parameter of one code, whose `validate()` asserts that the view lies over one.
template< LdpPwIntfParamSubTlvType code >
class LdpPwIntfParamSubTlvOf : public LdpPwIntfParamSubTlv {
 public:
   /// Whether it does. Who comes by way of reflection is refused where it does not.
   bool liesOverItsType() const noexcept { return type() == code; }
};

/// Interface MTU. `validate()` is for a parameter of its own code, here and below: another code asserts.
class VORN_API LdpPwIntfMtuSubTlv : public LdpPwIntfParamSubTlvOf< intfMtu > {
   VORN_REFLECTED( LdpPwIntfMtuSubTlv, LdpPwIntfParamSubTlv )

 public:
   /// MTU in octets.
   Lumo::NetU16 mtu() const noexcept { return mtu_; }
   void mtuIs( Lumo::NetU16 mtu ) noexcept { mtu_ = mtu; }
   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;

 private:
   Lumo::NetU16 mtu_;
};
static_assert( sizeof( LdpPwIntfMtuSubTlv ) == 4 && alignof( LdpPwIntfMtuSubTlv ) == 1 );

/// Interface description: text of up to 80 octets behind the head.
class VORN_API LdpPwIntfDescSubTlv : public LdpPwIntfParamSubTlvOf< intfDesc > {
   VORN_REFLECTED( LdpPwIntfDescSubTlv, LdpPwIntfParamSubTlv )

 public:
   /// Largest length, head included.
   static constexpr U8 maxLength = 82;

   /// The text, as long as the length says; its octets must be there.
   Vorn::String description() const;
   /// Looks at the length only, so that it may be asked before the octets of the text are known to be there.
   LdpStatusCode validate() const;
};
static_assert( sizeof( LdpPwIntfDescSubTlv ) == 2 );

/// Requested VLAN id.
class VORN_API LdpPwRequestedVlanIdSubTlv : public LdpPwIntfParamSubTlvOf< requestedVlanId > {
   VORN_REFLECTED( LdpPwRequestedVlanIdSubTlv, LdpPwIntfParamSubTlv )

 public:
   /// The VLAN id.
   Lumo::NetU16 vlanId() const noexcept { return vlanId_; }
   void vlanIdIs( Lumo::NetU16 vlanId ) noexcept { vlanId_ = vlanId; }
   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;

 private:
   Lumo::NetU16 vlanId_;
};
static_assert( sizeof( LdpPwRequestedVlanIdSubTlv ) == 4 && alignof( LdpPwRequestedVlanIdSubTlv ) == 1 );

/// Fragmentation indicator (RFC 4623, 4).
class VORN_API LdpPwFragIndicatorSubTlv : public LdpPwIntfParamSubTlvOf< fragIndicator > {
   VORN_REFLECTED( LdpPwFragIndicatorSubTlv, LdpPwIntfParamSubTlv )

 public:
   /// Not zero: the sender can reassemble fragments.
   Lumo::NetU16 fragIndicator() const noexcept { return fragIndicator_; }
   void fragIndicatorIs( Lumo::NetU16 indicator ) noexcept { fragIndicator_ = indicator; }
   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;

 private:
   Lumo::NetU16 fragIndicator_;
};
static_assert( sizeof( LdpPwFragIndicatorSubTlv ) == 4 && alignof( LdpPwFragIndicatorSubTlv ) == 1 );

/// The two octets of a VCCV parameter; their bits are not interpreted here.
class VORN_API LdpPwVccvParamField : public Lumo::NetU16 {
   VORN_REFLECTED( LdpPwVccvParamField, Lumo::NetU16 )

 public:
   using NetU16::NetU16;

   /// Control channel types.
   U8 ccTypes() const noexcept { return v0(); }
   void ccTypesIs( U8 types ) noexcept { v0Is( types ); }
   /// Connectivity verification types.
   U8 cvTypes() const noexcept { return v1(); }
   void cvTypesIs( U8 types ) noexcept { v1Is( types ); }
};
VORN_TEXT( LdpPwVccvParamField )

/// VCCV parameter (RFC 5085, 5.3.1).
class VORN_API LdpPwVccvParamSubTlv : public LdpPwIntfParamSubTlvOf< vccvParam > {
   VORN_REFLECTED( LdpPwVccvParamSubTlv, LdpPwIntfParamSubTlv )

 public:
   /// The two octets.
   LdpPwVccvParamField vccvParam() const noexcept { return vccvParam_; }
   void vccvParamIs( LdpPwVccvParamField param ) noexcept { vccvParam_ = param; }
   /// Control channel types, one bit each.
   U8 ccTypes() const noexcept { return vccvParam_.ccTypes(); }
   /// Connectivity verification types, one bit each.
   U8 cvTypes() const noexcept { return vccvParam_.cvTypes(); }
   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;

 private:
   LdpPwVccvParamField vccvParam_;
};
static_assert( sizeof( LdpPwVccvParamSubTlv ) == 4 && alignof( LdpPwVccvParamSubTlv ) == 1 );

/// Which interface parameters a PW ID element carried.
class VORN_API LdpPwIntfParamFlags {
   VORN_REFLECTED( LdpPwIntfParamFlags, void )

 public:
   /// Masks of the flags below.
   static constexpr U32 intfMtu_ = 1;
   static constexpr U32 intfDesc_ = 2;
   static constexpr U32 requestedVlanId_ = 4;
   static constexpr U32 fragIndicator_ = 8;
   static constexpr U32 vccvParam_ = 16;
   static constexpr U32 all_ = 0x1f;

   constexpr LdpPwIntfParamFlags() noexcept = default;
   /// Throws RangeException for a word with other bits than those above.
   explicit LdpPwIntfParamFlags( U32 value ) { valueIs( value ); }

   /// The whole word.
   U32 value() const noexcept { return value_; }
   void valueIs( U32 value );
   /// Whether there was an interface MTU.
   bool intfMtu() const noexcept { return value_ & intfMtu_; }
   void intfMtuIs( bool sent ) noexcept { flagIs( intfMtu_, sent ); }
   /// Whether there was an interface description.
   bool intfDesc() const noexcept { return value_ & intfDesc_; }
   void intfDescIs( bool sent ) noexcept { flagIs( intfDesc_, sent ); }
   /// Whether there was a requested VLAN id.
   bool requestedVlanId() const noexcept { return value_ & requestedVlanId_; }
   void requestedVlanIdIs( bool sent ) noexcept { flagIs( requestedVlanId_, sent ); }
   /// Whether there was a fragmentation indicator.
   bool fragIndicator() const noexcept { return value_ & fragIndicator_; }
   void fragIndicatorIs( bool sent ) noexcept { flagIs( fragIndicator_, sent ); }
   /// Whether there was a VCCV parameter.
   bool vccvParam() const noexcept { return value_ & vccvParam_; }
   void vccvParamIs( bool sent ) noexcept { flagIs( vccvParam_, sent ); }

   VORN_FROM_LOG( LdpPwIntfParamFlags )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return !value_; }
   friend bool operator==( LdpPwIntfParamFlags, LdpPwIntfParamFlags ) noexcept = default;

 private:
   void flagIs( U32 flag, bool set ) noexcept { value_ = set ? value_ | flag : value_ & ~flag; }

   U32 value_ = 0;
};
VORN_TEXT( LdpPwIntfParamFlags )

/// The status word of a PW Status TLV (RFC 8077, 6.3.2).
class VORN_API LdpPwStatusField : public Lumo::NetU32 {
   VORN_REFLECTED( LdpPwStatusField, Lumo::NetU32 )

 public:
   using NetU32::NetU32;

   /// The pseudowire does not forward.
   bool pwNotForwarding() const noexcept { return bits< 0x01 >(); }
   void pwNotForwardingIs( bool set ) noexcept { bitsIs< 0x01 >( set ); }
   /// Local attachment circuit, ingress: receive fault.
   bool localACIngrRecvFault() const noexcept { return bits< 0x02 >(); }
   void localACIngrRecvFaultIs( bool set ) noexcept { bitsIs< 0x02 >( set ); }
   /// Local attachment circuit, egress: transmit fault.
   bool localACEgrTransFault() const noexcept { return bits< 0x04 >(); }
   void localACEgrTransFaultIs( bool set ) noexcept { bitsIs< 0x04 >( set ); }
   /// Local PSN-facing PW, ingress: receive fault.
   bool localPsnPwIngrRecvFault() const noexcept { return bits< 0x08 >(); }
   void localPsnPwIngrRecvFaultIs( bool set ) noexcept { bitsIs< 0x08 >( set ); }
   /// Local PSN-facing PW, egress: transmit fault.
   bool localPsnPwEgrTransFault() const noexcept { return bits< 0x10 >(); }
   void localPsnPwEgrTransFaultIs( bool set ) noexcept { bitsIs< 0x10 >( set ); }

   /// Whether the whole word is 0: any bit, also one without a name, means not forwarding.
   bool pwForwarding() const noexcept { return value() == 0; }
   /// The whole word.
   Pseudowire::PseudowireLdpStatusFlags flags() const noexcept {
      return Pseudowire::PseudowireLdpStatusFlags( value() );
   }
   void flagsIs( Pseudowire::PseudowireLdpStatusFlags flags ) noexcept { valueIs( flags.value() ); }
};
VORN_TEXT( LdpPwStatusField )

/// PW Status TLV (RFC 8077, 6.3.2).
class VORN_API LdpPwStatusTlv : public LdpTlvHdr {
   VORN_REFLECTED( LdpPwStatusTlv, LdpTlvHdr )

 public:
   /// The status word.
   LdpPwStatusField pwStatusField() const noexcept { return pwStatusField_; }
   void pwStatusFieldIs( LdpPwStatusField field ) noexcept { pwStatusField_ = field; }

   /// Header first; `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   LdpPwStatusField pwStatusField_;
};
static_assert( sizeof( LdpPwStatusTlv ) == 8 && alignof( LdpPwStatusTlv ) == 1 );

} // namespace Ldp
