// TLVs of discovery and session set-up: judgement and text.
#include "Ldp/LdpSessionTlv.h"

#include "Ldp/LdpProtoParam.h"
#include "Twain/Trace.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpHdr" )

} // namespace

LdpStatusCode LdpCommonHelloTlv::validate() const {
   VORN_ASSERT( type() == commonHelloTlv );
   return validateLength( 4 );
}

Vorn::String LdpCommonHelloTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error LdpCommonHelloTlv: " + valueToStrep( status );
   return Vorn::format( "CommonHelloTlv: HT(%d),%d,%d", holdTime(), targetedHello(),
                        requestSendTargetedHello() );
}

LdpStatusCode LdpIpTransportAddrTlv::validate() const {
   VORN_ASSERT( type() == ipv4TransportAddrTlv );
   return validateLength( 4 );
}

Vorn::String LdpIpTransportAddrTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error IpTransportAddrTlv: " + valueToStrep( status );
   return "IpTransportAddrTlv: " + ipAddr_.stringValue();
}

LdpStatusCode LdpConfigSeqNumTlv::validate() const {
   VORN_ASSERT( type() == configSeqNumTlv );
   return validateLength( 4 );
}

Vorn::String LdpConfigSeqNumTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error ConfigSeqNumTlv: " + valueToStrep( status );
   return Vorn::format( "ConfigSeqNumTlv: %d", int( configSeqNum() ) );
}

LdpStatusCode LdpIp6TransportAddrTlv::validate() const {
   VORN_ASSERT( type() == ipv6TransportAddrTlv );
   return validateLength( 16 );
}

Vorn::String LdpIp6TransportAddrTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error Ip6TransportAddrTlv: " + valueToStrep( status );
   return "Ip6TransportAddrTlv: " + ip6Addr_.stringValue();
}

LdpStatusCode LdpCommonSessionParamTlv::validate() const {
   LdpStatusCode const status = validateTlvHdr();
   if ( status != success ) return status;
   if ( length() != 14 ) return badTlvLength;
   if ( protocolVersion() != LdpProtoParam::ldpProtocolVersion() ) {
      TWAIN_TRACE( 5, "   Rejected. Protocol version is not 1" );
      return badVersion;
   }
   if ( keepAliveTime() < minKeepAliveTime ) {
      TWAIN_TRACE( 5, "   Rejected. keepAliveTime is out of range." );
      return sessionRejectBadKeepAliveTime;
   }
   if ( maxPduLength() > LdpProtoParam::ldpPktBufferSize() ) {
      TWAIN_TRACE( 5, "   Rejected. maxPduLength is out of range." );
      return rejectMaxPduLength;
   }
   return success;
}

Vorn::String LdpCommonSessionParamTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Error LdpCommonSessionParamTlv: " + valueToStrep( status );
   return Vorn::format( "LdpCommonSessionParamTlv: KA(%d), A(%d), D(%d), PduLen(%d), ", keepAliveTime(),
                        advDiscipline(), loopDetect(), maxPduLength() ) +
          recvLdpIdentifier_.stringValue();
}

LdpStatusCode LdpFtSessionTlv::validate() const {
   LdpStatusCode const status = validateTlvHdr();
   if ( status != success ) return status;
   if ( length() != 12 ) return badTlvLength;
   // S, A, C and L from high to low. The list is closed: L stands alone, and A goes with C or S only.
   switch ( ftFlags_.value() & 0xf ) {
   case 0x1:                 // L
   case 0x2:                 // C
   case 0x6:                 // A C
   case 0x8:                 // S
   case 0xa:                 // S C
   case 0xc:                 // S A
   case 0xe: return success; // S A C
   default: return malformedTlv;
   }
}

Vorn::String LdpFtSessionTlv::stringValue() const {
   LdpStatusCode const status = validate();
   if ( status != success ) return "Invalid FtSessionTlv: " + valueToStrep( status );
   return Vorn::format( "LdpFtSessionTlv: R(%d), S(%d), A(%d), C(%d), L(%d), FTReconnect(%d), FTRecovery(%d)",
                        ftFlags_.reconnect(), ftFlags_.saveState(), ftFlags_.allLabelProt(),
                        ftFlags_.checkPoint(), ftFlags_.learnFromNetwork(), int( ftReconnectTimeout() ),
                        int( ftRecoveryTime() ) );
}

} // namespace Ldp
