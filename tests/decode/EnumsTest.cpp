// The protocol's registries: which TLV types header validation knows, and names and numbers both ways.

#include "Expect.h"

#include "Ldp/LdpHdr.h"

#include <limits>
#include <set>

using namespace Ldp;
using namespace Wire;

namespace {

template< class Enum >
struct Named {
   Enum value;
   U32 number;
   char const * name;
};

/// Each enumerator has its number, prints its name, and is read back from the name and from the number.
template< class Enum >
void expectNames( std::vector< Named< Enum > > const & rows ) {
   for ( auto const & row : rows ) {
      SCOPED_TRACE( row.name );
      EXPECT_EQ( U32( row.value ), row.number );
      EXPECT_EQ( valueToStrep( row.value ), row.name );
      for ( Vorn::String const & text : { Vorn::String( row.name ), Vorn::valueToStrep( row.number ) } ) {
         Enum read = Enum( 0x7777 );
         Vorn::strepToValue( text, &read );
         EXPECT_EQ( read, row.value );
      }
   }
}

TEST( Enums, messageTypes ) {
   expectNames< LdpMsgType >( {
        { LdpNotification, 1, "LdpNotification" },
        { LdpHello, 256, "LdpHello" },
        { LdpInit, 512, "LdpInit" },
        { LdpKeepAlive, 513, "LdpKeepAlive" },
        { LdpCapability, 514, "LdpCapability" },
        { LdpAddress, 768, "LdpAddress" },
        { LdpAddressWithdraw, 769, "LdpAddressWithdraw" },
        { LdpLabelMapping, 1024, "LdpLabelMapping" },
        { LdpLabelRequest, 1025, "LdpLabelRequest" },
        { LdpLabelWithdraw, 1026, "LdpLabelWithdraw" },
        { LdpLabelRelease, 1027, "LdpLabelRelease" },
        { LdpLabelAbortReq, 1028, "LdpLabelAbortReq" },
   } );
}

TEST( Enums, tlvTypes ) {
   expectNames< LdpTlvType >( {
        { fecTlv, 256, "fecTlv" },
        { addrListTlv, 257, "addrListTlv" },
        { hopCountTlv, 259, "hopCountTlv" },
        { pathVectorTlv, 260, "pathVectorTlv" },
        { genLabelTlv, 512, "genLabelTlv" },
        { atmLabelTlv, 513, "atmLabelTlv" },
        { frLabelTlv, 514, "frLabelTlv" },
        { statusTlv, 768, "statusTlv" },
        { extStatusTlv, 769, "extStatusTlv" },
        { retPduTlv, 770, "retPduTlv" },
        { retMsgTlv, 771, "retMsgTlv" },
        { commonHelloTlv, 1024, "commonHelloTlv" },
        { ipv4TransportAddrTlv, 1025, "ipv4TransportAddrTlv" },
        { configSeqNumTlv, 1026, "configSeqNumTlv" },
        { ipv6TransportAddrTlv, 1027, "ipv6TransportAddrTlv" },
        { commonSessionParamTlv, 1280, "commonSessionParamTlv" },
        { atmSessionTlv, 1281, "atmSessionTlv" },
        { frSessionTlv, 1282, "frSessionTlv" },
        { ftSessionTlv, 1283, "ftSessionTlv" },
        { dynamicCapabilityTlv, 1286, "dynamicCapabilityTlv" },
        { upstreamLabelAssignmentCapabilityTlv, 1287, "upstreamLabelAssignmentCapabilityTlv" },
        { p2mpCapabilityTlv, 1288, "p2mpCapabilityTlv" },
        { mp2mpCapabilityTlv, 1289, "mp2mpCapabilityTlv" },
        { mbbCapabilityTlv, 1290, "mbbCapabilityTlv" },
        { typedWildcardFecCapabilityTlv, 1291, "typedWildcardFecCapabilityTlv" },
        { multiTopologyCapabilityTlv, 1292, "multiTopologyCapabilityTlv" },
        { stateAdvertisementControlCapabilityTlv, 1293, "stateAdvertisementControlCapabilityTlv" },
        { mrtCapabilityTlv, 1294, "mrtCapabilityTlv" },
        { targetedApplicationCapabilityTlv, 1295, "targetedApplicationCapabilityTlv" },
        { labelReqMsgIdTlv, 1536, "labelReqMsgIdTlv" },
        { unrecognizedNotificationCapabilityTlv, 1539, "unrecognizedNotificationCapabilityTlv" },
        { pwStatusTlv, 2410, "pwStatusTlv" },
        { vendorPrivTlvBegin, 15872, "vendorPrivTlvBegin" },
        { vendorPrivTlvEnd, 16127, "vendorPrivTlvEnd" },
        { expTlvBegin, 16128, "expTlvBegin" },
        { expTlvEnd, 16383, "expTlvEnd" },
   } );
}

TEST( Enums, statusCodes ) {
   expectNames< LdpStatusCode >( {
        { success, 0, "success" },
        { badLdpId, 1, "badLdpId" },
        { badVersion, 2, "badVersion" },
        { badPduLength, 3, "badPduLength" },
        { unknownMessageType, 4, "unknownMessageType" },
        { badMessageLength, 5, "badMessageLength" },
        { unknownTlv, 6, "unknownTlv" },
        { badTlvLength, 7, "badTlvLength" },
        { malformedTlv, 8, "malformedTlv" },
        { holdTimerExpired, 9, "holdTimerExpired" },
        { shutdown, 10, "shutdown" },
        { loopDetected, 11, "loopDetected" },
        { unknownFec, 12, "unknownFec" },
        { noRoute, 13, "noRoute" },
        { noLabelResources, 14, "noLabelResources" },
        { labelResourcesAvailable, 15, "labelResourcesAvailable" },
        { rejectNoHello, 16, "rejectNoHello" },
        { rejectParamAdvMode, 17, "rejectParamAdvMode" },
        { rejectMaxPduLength, 18, "rejectMaxPduLength" },
        { rejectParamLabelRange, 19, "rejectParamLabelRange" },
        { keepAliveExpired, 20, "keepAliveExpired" },
        { labelRequestAborted, 21, "labelRequestAborted" },
        { missingMessageParams, 22, "missingMessageParams" },
        { unsupportedAddressFamily, 23, "unsupportedAddressFamily" },
        { sessionRejectBadKeepAliveTime, 24, "sessionRejectBadKeepAliveTime" },
        { internalError, 25, "internalError" },
        { illegalCBit, 36, "illegalCBit" },
        { wrongCBit, 37, "wrongCBit" },
        { pwStatus, 40, "pwStatus" },
        { unknownMessageTypeIgnore, 0x80000004, "unknownMessageTypeIgnore" },
        { establishingTcpConnection, 0x80000042, "establishingTcpConnection" },
        { sessionInitFailed, 0x80000100, "sessionInitFailed" },
        { sessionRoleChanged, 0x80000101, "sessionRoleChanged" },
        { tcpConnectionClosed, 0x80000102, "tcpConnectionClosed" },
        { ipChange, 0x80000103, "ipChange" },
        { idChange, 0x80000104, "idChange" },
        { mLdpChange, 0x80000105, "mLdpChange" },
        { grConfigChange, 0x80000106, "grConfigChange" },
   } );
   EXPECT_EQ( stringValue( grConfigChange ), "grConfigChange" );
}

TEST( Enums, fecElementsAndInterfaceParameters ) {
   expectNames< LdpFecElementType >( {
        { wildcardElement, 1, "wildcardElement" },
        { prefixElement, 2, "prefixElement" },
        { hostAddrElement, 3, "hostAddrElement" },
        { crLspElement, 4, "crLspElement" },
        { typedWildcardElement, 5, "typedWildcardElement" },
        { p2mpElement, 6, "p2mpElement" },
        { mp2mpUpElement, 7, "mp2mpUpElement" },
        { mp2mpDownElement, 8, "mp2mpDownElement" },
        { hsmpUpstreamElement, 9, "hsmpUpstreamElement" },
        { pwIdElement, 128, "pwIdElement" },
        { pwGenIdelement, 129, "pwGenIdelement" },
        { pwP2mpUpstreamElement, 130, "pwP2mpUpstreamElement" },
        { pwProtectionElement, 131, "pwProtectionElement" },
        { pwP2mpDownstreamElement, 132, "pwP2mpDownstreamElement" },
   } );
   expectNames< LdpPwIntfParamSubTlvType >( {
        { intfMtu, 1, "intfMtu" },
        { intfDesc, 3, "intfDesc" },
        { requestedVlanId, 6, "requestedVlanId" },
        { fragIndicator, 9, "fragIndicator" },
        { vccvParam, 12, "vccvParam" },
   } );
}

TEST( Enums, numberWithoutANameIsAnOrdinaryValue ) {
   EXPECT_EQ( valueToStrep( LdpMsgType( 0 ) ), "0" );
   EXPECT_EQ( valueToStrep( LdpTlvType( 258 ) ), "258" );
   EXPECT_EQ( valueToStrep( LdpStatusCode( 26 ) ), "26" );
   EXPECT_EQ( valueToStrep( LdpStatusCode( 0xffffffff ) ), "4294967295" );
   LdpStatusCode status = success;
   Vorn::strepToValue( "4294967295", &status );
   EXPECT_EQ( status, LdpStatusCode( 0xffffffff ) );
}

TEST( Enums, readerTakesNothingElse ) {
   for ( char const * bad : { "", "hello", "ldphello", "LdpHell", "LdpHelloX", "LdpHello ", " LdpHello", "-1",
                              "4294967296", "LdpAddressWith", "256x" } ) {
      SCOPED_TRACE( bad );
      LdpMsgType type = LdpInit;
      EXPECT_THROW( Vorn::strepToValue( bad, &type ), Vorn::RangeException );
      EXPECT_EQ( type, LdpInit );
   }
}

// Every one of the 14-bit types, with all four settings of the flag bits.
TEST( Enums, knownTlvTypes ) {
   std::set< U32 > known{ 256, 257, 259, 260, 1536, 2410, 15872, 16127, 16128, 16383 };
   for ( auto const & [from, to] :
         { std::pair{ 512, 514 }, { 768, 771 }, { 1024, 1027 }, { 1280, 1283 }, { 1286, 1295 } } ) {
      for ( int type = from; type <= to; ++type ) {
         known.insert( U32( type ) );
      }
   }
   ASSERT_EQ( known.size(), 35u );
   for ( U32 type = 0; type <= 16383; ++type ) {
      for ( U32 const flags : { 0u, uBit, fBit, uBit | fBit } ) {
         LdpTlvHdr hdr;
         hdr.tlvTypeFieldIs( LdpTlvTypeField( U16( type | flags ) ) );
         hdr.lengthNboIs( Lumo::NetU16( U16( 65532 + flags ) ) ); // plays no part
         LdpStatusCode const expected = known.count( type ) ? success
                                        : flags & uBit      ? unknownMessageTypeIgnore
                                                            : unknownTlv;
         ASSERT_EQ( hdr.validateTlvHdr(), expected ) << type << " flags " << flags;
      }
   }
}

TEST( Enums, knownMessageTypes ) {
   std::set< U32 > const known{ 1, 256, 512, 513, 514, 768, 769, 1024, 1025, 1026, 1027, 1028 };
   for ( U32 type = 0; type <= 0x7fff; ++type ) {
      ASSERT_EQ( ldpIsKnownMsgType( LdpMsgType( type ) ), known.count( type ) == 1 ) << type;
   }
}

} // namespace
