/// \file
/// Bodies of the discovery and session TLVs: what Hello and Initialization messages carry.
///
/// Each is a view over the TLV, header included, in the manner of `LdpHdr.h`. `validate()` gives a status
/// code and changes nothing; `stringValue()` validates first, and prints an error form instead of reading a
/// body that it refuses. An accessor named `xNbo` hands out the raw field, the one without the ending its
/// value. `validate()` of the Hello's TLVs is for a TLV of their own type: another type is the caller's fault
/// and asserts.
#pragma once

#include "Ldp/LdpHdr.h"
#include "Lumo/Ip.h"

namespace Ldp {

/// T and R bits of the Common Hello Parameters.
class VORN_API LdpCommonHelloTargetField : public Lumo::NetU16 {
   VORN_REFLECTED( LdpCommonHelloTargetField, Lumo::NetU16 )

 public:
   using NetU16::NetU16;

   /// T bit: a targeted hello.
   bool targetedHello() const noexcept { return bits< 0x8000 >(); }
   void targetedHelloIs( bool targeted ) noexcept { bitsIs< 0x8000 >( targeted ); }
   /// R bit: the sender asks for targeted hellos in return.
   bool requestSendTargetedHello() const noexcept { return bits< 0x4000 >(); }
   void requestSendTargetedHelloIs( bool request ) noexcept { bitsIs< 0x4000 >( request ); }
   /// Kept, neither tested nor cleared.
   U16 reserved() const noexcept { return bits< 0x3fff >(); }
   void reservedIs( U16 reserved ) noexcept { bitsIs< 0x3fff >( reserved ); }
};
VORN_TEXT( LdpCommonHelloTargetField )

/// Common Hello Parameters TLV (RFC 5036, 3.5.2).
class VORN_API LdpCommonHelloTlv : public LdpTlvHdrOf< commonHelloTlv > {
   VORN_REFLECTED( LdpCommonHelloTlv, LdpTlvHdr )

 public:
   /// Proposed hold time in seconds, the raw field.
   Lumo::NetU16 holdTimeNbo() const noexcept { return holdTime_; }
   /// T and R bits, the raw field.
   LdpCommonHelloTargetField targetHelloField() const noexcept { return targetHelloField_; }
   void targetHelloFieldIs( LdpCommonHelloTargetField field ) noexcept { targetHelloField_ = field; }

   /// Proposed hold time in seconds; 0 is the default of the kind of hello, 0xffff is infinite.
   U16 holdTime() const noexcept { return holdTime_.value(); }
   void holdTimeIs( U16 seconds ) noexcept { holdTime_.valueIs( seconds ); }
   /// T bit: a targeted hello.
   bool targetedHello() const noexcept { return targetHelloField_.targetedHello(); }
   void targetedHelloIs( bool targeted ) noexcept { targetHelloField_.targetedHelloIs( targeted ); }
   /// R bit: the sender asks for targeted hellos in return.
   bool requestSendTargetedHello() const noexcept { return targetHelloField_.requestSendTargetedHello(); }
   void requestSendTargetedHelloIs( bool request ) noexcept {
      targetHelloField_.requestSendTargetedHelloIs( request );
   }

   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   Lumo::NetU16 holdTime_;
   LdpCommonHelloTargetField targetHelloField_;
};
static_assert( sizeof( LdpCommonHelloTlv ) == 8 && alignof( LdpCommonHelloTlv ) == 1 );

/// IPv4 Transport Address TLV (RFC 5036, 3.5.2).
class VORN_API LdpIpTransportAddrTlv : public LdpTlvHdrOf< ipv4TransportAddrTlv > {
   VORN_REFLECTED( LdpIpTransportAddrTlv, LdpTlvHdr )

 public:
   /// The address from which the sender's sessions run.
   Lumo::IpAddr ipAddr() const noexcept { return ipAddr_; }
   void ipAddrIs( Lumo::IpAddr const & ipAddr ) noexcept { ipAddr_ = ipAddr; }

   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   Lumo::IpAddr ipAddr_;
};
static_assert( sizeof( LdpIpTransportAddrTlv ) == 8 && alignof( LdpIpTransportAddrTlv ) == 1 );

/// Configuration Sequence Number TLV (RFC 5036, 3.5.2).
class VORN_API LdpConfigSeqNumTlv : public LdpTlvHdrOf< configSeqNumTlv > {
   VORN_REFLECTED( LdpConfigSeqNumTlv, LdpTlvHdr )

 public:
   /// The sequence number, the raw field.
   Lumo::NetU32 configSeqNumNbo() const noexcept { return configSeqNum_; }
   /// Number that changes with the sender's configuration.
   U32 configSeqNum() const noexcept { return configSeqNum_.value(); }
   void configSeqNumIs( U32 number ) noexcept { configSeqNum_.valueIs( number ); }

   /// `success`, or `badTlvLength` for any length but 4.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   Lumo::NetU32 configSeqNum_;
};
static_assert( sizeof( LdpConfigSeqNumTlv ) == 8 && alignof( LdpConfigSeqNumTlv ) == 1 );

/// IPv6 Transport Address TLV (RFC 5036, 3.5.2).
class VORN_API LdpIp6TransportAddrTlv : public LdpTlvHdrOf< ipv6TransportAddrTlv > {
   VORN_REFLECTED( LdpIp6TransportAddrTlv, LdpTlvHdr )

 public:
   /// The address from which the sender's sessions run.
   Lumo::Ip6Addr ip6Addr() const noexcept { return ip6Addr_; }
   void ip6AddrIs( Lumo::Ip6Addr const & ip6Addr ) noexcept { ip6Addr_ = ip6Addr; }

   /// `success`, or `badTlvLength` for any length but 16.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   Lumo::Ip6Addr ip6Addr_;
};
static_assert( sizeof( LdpIp6TransportAddrTlv ) == 20 && alignof( LdpIp6TransportAddrTlv ) == 1 );

/// A and D bits of the Common Session Parameters.
class VORN_API LdpCommonSessionParamTlvAdField : public Lumo::NetU8 {
   VORN_REFLECTED( LdpCommonSessionParamTlvAdField, Lumo::NetU8 )

 public:
   using NetU8::NetU8;

   /// A bit: label advertisement discipline; set is downstream on demand.
   bool advDiscipline() const noexcept { return value() & 0x80; }
   void advDisciplineIs( bool onDemand ) noexcept { valueIs( U8( ( value() & ~0x80 ) | onDemand << 7 ) ); }
   /// D bit: loop detection based on path vectors.
   bool loopDetect() const noexcept { return value() & 0x40; }
   void loopDetectIs( bool detect ) noexcept { valueIs( U8( ( value() & ~0x40 ) | detect << 6 ) ); }
   /// Kept.
   U8 reserved() const noexcept { return value() & 0x3f; }
   void reservedIs( U8 reserved ) noexcept { valueIs( U8( ( value() & ~0x3f ) | ( reserved & 0x3f ) ) ); }
};

/// Common Session Parameters TLV (RFC 5036, 3.5.3).
class VORN_API LdpCommonSessionParamTlv : public LdpTlvHdr {
   VORN_REFLECTED( LdpCommonSessionParamTlv, LdpTlvHdr )

 public:
   /// Shortest keep-alive time that a session can have, in seconds.
   static constexpr U16 minKeepAliveTime = 3;

   /// Version of the protocol, the raw field.
   Lumo::NetU16 protocolVersionNbo() const noexcept { return protocolVersion_; }
   /// Proposed keep-alive time in seconds, the raw field.
   Lumo::NetU16 keepAliveTimeNbo() const noexcept { return keepAliveTime_; }
   /// A and D bits, the raw field.
   LdpCommonSessionParamTlvAdField adField() const noexcept { return adField_; }
   void adFieldIs( LdpCommonSessionParamTlvAdField field ) noexcept { adField_ = field; }
   /// Proposed maximum PDU length in octets, the raw field.
   Lumo::NetU16 maxPduLengthNbo() const noexcept { return maxPduLength_; }

   /// Version of the protocol; 1 is the only one.
   U16 protocolVersion() const noexcept { return protocolVersion_.value(); }
   void protocolVersionIs( U16 version ) noexcept { protocolVersion_.valueIs( version ); }
   /// Proposed keep-alive time in seconds.
   U16 keepAliveTime() const noexcept { return keepAliveTime_.value(); }
   void keepAliveTimeIs( U16 seconds ) noexcept { keepAliveTime_.valueIs( seconds ); }
   /// A bit: label advertisement discipline; set is downstream on demand.
   bool advDiscipline() const noexcept { return adField_.advDiscipline(); }
   void advDisciplineIs( bool onDemand ) noexcept { adField_.advDisciplineIs( onDemand ); }
   /// D bit: loop detection based on path vectors.
   bool loopDetect() const noexcept { return adField_.loopDetect(); }
   void loopDetectIs( bool detect ) noexcept { adField_.loopDetectIs( detect ); }
   /// Path vector limit, in LSRs.
   U8 pathVecLim() const noexcept { return pathVecLim_; }
   void pathVecLimIs( U8 limit ) noexcept { pathVecLim_ = limit; }
   /// Proposed maximum PDU length in octets; below 256 it stands for 4096, which is left to the receiver.
   U16 maxPduLength() const noexcept { return maxPduLength_.value(); }
   void maxPduLengthIs( U16 length ) noexcept { maxPduLength_.valueIs( length ); }
   /// Whom the sender takes for the receiver.
   LdpIdentifier const & recvLdpIdentifier() const noexcept { return recvLdpIdentifier_; }
   void recvLdpIdentifierIs( LdpIdentifier const & receiver ) noexcept { recvLdpIdentifier_ = receiver; }

   /// Header first, then length, version, keep-alive time and maximum PDU length, each with a code of its
   /// own.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   Lumo::NetU16 protocolVersion_;
   Lumo::NetU16 keepAliveTime_;
   LdpCommonSessionParamTlvAdField adField_;
   U8 pathVecLim_ = 0;
   Lumo::NetU16 maxPduLength_;
   LdpIdentifier recvLdpIdentifier_;
};
static_assert( sizeof( LdpCommonSessionParamTlv ) == 18 && alignof( LdpCommonSessionParamTlv ) == 1 );

/// Flags of the Fault Tolerant Session TLV (RFC 3479, 8.2).
class VORN_API LdpFtSessionFlags : public Lumo::NetU16 {
   VORN_REFLECTED( LdpFtSessionFlags, Lumo::NetU16 )

 public:
   using NetU16::NetU16;

   /// L: the restarting speaker learns its state from the network (RFC 3478).
   U16 learnFromNetwork() const noexcept { return bits< 0x0001 >(); }
   void learnFromNetworkIs( U16 flag ) noexcept { bitsIs< 0x0001 >( flag ); }
   /// C: check-pointing.
   U16 checkPoint() const noexcept { return bits< 0x0002 >(); }
   void checkPointIs( U16 flag ) noexcept { bitsIs< 0x0002 >( flag ); }
   /// A: all labels are protected.
   U16 allLabelProt() const noexcept { return bits< 0x0004 >(); }
   void allLabelProtIs( U16 flag ) noexcept { bitsIs< 0x0004 >( flag ); }
   /// S: the sender saved its state.
   U16 saveState() const noexcept { return bits< 0x0008 >(); }
   void saveStateIs( U16 flag ) noexcept { bitsIs< 0x0008 >( flag ); }
   /// The bits without a name; kept.
   U16 reserved() const noexcept { return bits< 0x7ff0 >(); }
   void reservedIs( U16 reserved ) noexcept { bitsIs< 0x7ff0 >( reserved ); }
   /// R: the session is a reconnection.
   U16 reconnect() const noexcept { return bits< 0x8000 >(); }
   void reconnectIs( U16 flag ) noexcept { bitsIs< 0x8000 >( flag ); }
};
VORN_TEXT( LdpFtSessionFlags )

/// Fault Tolerant Session TLV (RFC 3479, 8.2; RFC 3478 for graceful restart).
class VORN_API LdpFtSessionTlv : public LdpTlvHdr {
   VORN_REFLECTED( LdpFtSessionTlv, LdpTlvHdr )

 public:
   /// The flags.
   LdpFtSessionFlags ftFlags() const noexcept { return ftFlags_; }
   void ftFlagsIs( LdpFtSessionFlags flags ) noexcept { ftFlags_ = flags; }
   /// The reserved field; kept.
   Lumo::NetU16 reserved() const noexcept { return reserved_; }
   void reservedIs( Lumo::NetU16 reserved ) noexcept { reserved_ = reserved; }
   /// Reconnect timeout in milliseconds, as it stands in the TLV.
   U32 ftReconnectTimeout() const noexcept { return ftReconnectTimeout_.value(); }
   void ftReconnectTimeoutIs( U32 timeout ) noexcept { ftReconnectTimeout_.valueIs( timeout ); }
   /// Recovery time in milliseconds, as it stands in the TLV.
   U32 ftRecoveryTime() const noexcept { return ftRecoveryTime_.value(); }
   void ftRecoveryTimeIs( U32 time ) noexcept { ftRecoveryTime_.valueIs( time ); }
   /// The L flag, 0 or 1.
   U16 learnFromNetwork() const noexcept { return ftFlags_.learnFromNetwork(); }
   void learnFromNetworkIs( U16 flag ) noexcept { ftFlags_.learnFromNetworkIs( flag ); }

   /// Header first; `badTlvLength` for any length but 12; `malformedTlv` for flags that do not go together.
   LdpStatusCode validate() const;
   /// Text of the TLV; an error form where `validate()` refuses it.
   Vorn::String stringValue() const;

 private:
   LdpFtSessionFlags ftFlags_;
   Lumo::NetU16 reserved_;
   Lumo::NetU32 ftReconnectTimeout_;
   Lumo::NetU32 ftRecoveryTime_;
};
static_assert( sizeof( LdpFtSessionTlv ) == 16 && alignof( LdpFtSessionTlv ) == 1 );

/// S bit of a capability (RFC 5561, 3).
class VORN_API LdpStateBit : public Lumo::NetU8 {
   VORN_REFLECTED( LdpStateBit, Lumo::NetU8 )

 public:
   using NetU8::NetU8;

   /// Set when the capability is advertised, clear when it is withdrawn.
   bool state() const noexcept { return value() & 0x80; }
   void stateIs( bool advertised ) noexcept { valueIs( U8( ( value() & ~0x80 ) | advertised << 7 ) ); }
   /// The bits behind the S bit; kept.
   U8 reserved() const noexcept { return value() & 0x7f; }
   void reservedIs( U8 reserved ) noexcept { valueIs( U8( ( value() & ~0x7f ) | ( reserved & 0x7f ) ) ); }
};

/// Fixed part of a Capability Parameter TLV (RFC 5561, 3), for all the capability types.
class VORN_API LdpCapabilityParameterTlv : public LdpTlvHdr {
   VORN_REFLECTED( LdpCapabilityParameterTlv, LdpTlvHdr )

 public:
   /// The octet with the S bit.
   LdpStateBit stateBit() const noexcept { return stateBit_; }
   void stateBitIs( LdpStateBit bit ) noexcept { stateBit_ = bit; }
   /// Whether the capability is advertised.
   bool state() const noexcept { return stateBit_.state(); }
   void stateIs( bool advertised ) noexcept { stateBit_.stateIs( advertised ); }

 private:
   LdpStateBit stateBit_;
};
static_assert( sizeof( LdpCapabilityParameterTlv ) == 5 && alignof( LdpCapabilityParameterTlv ) == 1 );

} // namespace Ldp
