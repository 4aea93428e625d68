// What reflection knows of the views over a packet and of their fields.

#include "Ldp/LdpLabelTlv.h"
#include "Ldp/LdpPwHdr.h"
#include "Ldp/LdpSessionTlv.h"

#include "Vorn/AttributeRows.h"

namespace Ldp {

// What asserts on a view over another type; who goes by the record alone cannot know what the view lies over.
#define VORN_ROW_ofItsType( row ) VORN_ROW_where( liesOverItsType, row )

// The words: their octets, of which the text form is made, then the parts that they are divided into.

VORN_REFLECTED_VALUE_RECORD( Ldp, LdpHdrMsgUbitAndTypeField, part( v0 ), part( v1 ), write( unknown ),
                             write( type ) )
VORN_TEXT_OF_RECORD( LdpHdrMsgUbitAndTypeField )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpTlvTypeField, part( v0 ), part( v1 ), write( unknown ),
                             write( forwardUnknown ), write( type ) )
VORN_TEXT_OF_RECORD( LdpTlvTypeField )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpCommonHelloTargetField, part( v0 ), part( v1 ), write( targetedHello ),
                             write( requestSendTargetedHello ), write( reserved ) )
VORN_TEXT_OF_RECORD( LdpCommonHelloTargetField )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpFtSessionFlags, part( v0 ), part( v1 ), write( learnFromNetwork ),
                             write( checkPoint ), write( allLabelProt ), write( saveState ),
                             write( reserved ), write( reconnect ) )
VORN_TEXT_OF_RECORD( LdpFtSessionFlags )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpGenLabelTlvLabel, part( v0 ), part( v1 ), part( v2 ), part( v3 ),
                             write( labelNbo ), write( reserved ) )
VORN_TEXT_OF_RECORD( LdpGenLabelTlvLabel )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpStatusTlvStatusCode, part( v0 ), part( v1 ), part( v2 ), part( v3 ),
                             write( statusDataNbo ), write( forwardUnknown ), write( error ) )
VORN_TEXT_OF_RECORD( LdpStatusTlvStatusCode )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpFecTlvPwIdElementHdrTypeField, part( v0 ), part( v1 ),
                             write( controlWordBit ), write( pwType ) )
VORN_TEXT_OF_RECORD( LdpFecTlvPwIdElementHdrTypeField )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpPwVccvParamField, part( v0 ), part( v1 ), write( ccTypes ),
                             write( cvTypes ) )
VORN_TEXT_OF_RECORD( LdpPwVccvParamField )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpPwStatusField, part( v0 ), part( v1 ), part( v2 ), part( v3 ),
                             write( pwNotForwarding ), write( localACIngrRecvFault ),
                             write( localACEgrTransFault ), write( localPsnPwIngrRecvFault ),
                             write( localPsnPwEgrTransFault ), read( pwForwarding ), write( flags ) )
VORN_TEXT_OF_RECORD( LdpPwStatusField )

// Single octets, whose text form is the number.

VORN_REFLECTED_VALUE_RECORD( Ldp, LdpCommonSessionParamTlvAdField, part( value ), write( advDiscipline ),
                             write( loopDetect ), write( reserved ) )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpStateBit, part( value ), write( state ), write( reserved ) )
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpFecTlvElementHdrTypeField, part( type ) )

// The headers.

VORN_VIEW_RECORD( Ldp, LdpPduHdr, field( versionNbo, version_ ), field( lengthNbo, length_ ),
                  state( ldpIdentifier ), constant( pduHdrSizeExclude ), read( version ), read( length ),
                  read( totalLength ), read( stringValue ) )
VORN_VIEW_RECORD( Ldp, LdpMsgHdr, state( msgUbitAndTypeField ), field( lengthNbo, length_ ),
                  field( msgIdNbo, msgId_ ), constant( msgHdrSizeExclude ), constant( ldpMsgHdrSize ),
                  write( unknown ), write( type ), read( length ), read( msgId ), read( totalLength ) )
VORN_VIEW_RECORD( Ldp, LdpTlvHdr, state( tlvTypeField ), field( lengthNbo, length_ ), write( type ),
                  write( unknown ), write( forwardUnknown ), read( length ), constant( tlvHdrSizeExclude ),
                  read( totalLength ), function( validateTlvHdr ) )

// What Hello, Initialization and Capability messages carry.

VORN_VIEW_RECORD( Ldp, LdpCommonHelloTlv, field( holdTimeNbo, holdTime_ ), state( targetHelloField ),
                  write( holdTime ), write( targetedHello ), write( requestSendTargetedHello ),
                  ofItsType( function( validate ) ), ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpIpTransportAddrTlv, state( ipAddr ), ofItsType( function( validate ) ),
                  ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpConfigSeqNumTlv, field( configSeqNumNbo, configSeqNum_ ), write( configSeqNum ),
                  ofItsType( function( validate ) ), ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpIp6TransportAddrTlv, state( ip6Addr ), ofItsType( function( validate ) ),
                  ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpCommonSessionParamTlv, field( protocolVersionNbo, protocolVersion_ ),
                  field( keepAliveTimeNbo, keepAliveTime_ ), state( adField ), state( pathVecLim ),
                  field( maxPduLengthNbo, maxPduLength_ ), state( recvLdpIdentifier ),
                  write( protocolVersion ), write( keepAliveTime ), write( maxPduLength ),
                  write( advDiscipline ), write( loopDetect ), function( validate ), read( stringValue ) )
VORN_VIEW_RECORD( Ldp, LdpFtSessionTlv, state( ftFlags ), state( reserved ), write( ftReconnectTimeout ),
                  write( ftRecoveryTime ), write( learnFromNetwork ), function( validate ),
                  read( stringValue ) )
VORN_VIEW_RECORD( Ldp, LdpCapabilityParameterTlv, state( stateBit ), write( state ) )

// What Notification, Address and label messages carry.

VORN_VIEW_RECORD( Ldp, LdpGenLabelTlv, state( labelField ), write( label ), ofItsType( function( validate ) ),
                  ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpLabelReqMsgIdTlv, field( reqMsgIdNbo, reqMsgId_ ), write( reqMsgId ),
                  ofItsType( function( validate ) ), ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpHopCountTlv, state( hopCount ), ofItsType( function( validate ) ),
                  ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpPathVectorTlv, read( lsrIdNum ), indexed( lsrId, lsrIdNum ), keyed( lsrIdPosition ),
                  ofItsType( function( validate ) ), ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpStatusTlv, state( statusCode ), field( msgIdNbo, msgId_ ),
                  field( msgTypeNbo, msgType_ ), write( statusData ), write( statusForwardUnknown ),
                  write( statusError ), write( msgId ), write( msgType ), ofItsType( function( validate ) ),
                  ofItsType( read( stringValue ) ) )
VORN_VIEW_RECORD( Ldp, LdpAddressListTlv, read( addressFamilyNbo ), read( family ), read( numAddress ),
                  indexed( address, numAddress ), function( validate ), read( stringValue ) )
VORN_VIEW_RECORD( Ldp, LdpPwStatusTlv, state( pwStatusField ), function( validate ), read( stringValue ) )

// FEC elements, and the interface parameters of a pseudowire.

VORN_VIEW_RECORD( Ldp, LdpFecTlvElementHdr, state( typeField ), write( type ) )
VORN_VIEW_RECORD( Ldp, LdpFecTlvWildcardElementHdr )
VORN_VIEW_RECORD( Ldp, LdpFecTlvPrefixElementHdr, field( familyNbo, family_ ), state( prefixBits ),
                  read( family ) )
VORN_VIEW_RECORD( Ldp, LdpFecTlvHostAddressElementHdr, field( familyNbo, family_ ), state( hostAddrLen ),
                  read( family ) )
VORN_VIEW_RECORD( Ldp, LdpFecTlvP2mpElementHdr, field( familyNbo, family_ ), state( rootIpLenOctets ),
                  read( family ) )
VORN_VIEW_RECORD( Ldp, LdpFecTlvPwIdElementHdr, state( pwTypeField ), state( pwInfoLen ),
                  field( groupIdNbo, groupId_ ), write( groupId ), write( controlWord ), write( pwType ),
                  writtenWhere( hasPwId, write( pwId ) ) )
VORN_VIEW_RECORD( Ldp, LdpPwIntfParamSubTlv, state( typeField ), state( length ), read( totalLength ),
                  constant( tlvHdrSizeExclude ), read( type ) )
VORN_VIEW_RECORD( Ldp, LdpPwIntfMtuSubTlv, state( mtu ), ofItsType( function( validate ) ) )
VORN_VIEW_RECORD( Ldp, LdpPwIntfDescSubTlv, read( description ), constant( maxLength ),
                  ofItsType( function( validate ) ) )
VORN_VIEW_RECORD( Ldp, LdpPwRequestedVlanIdSubTlv, state( vlanId ), ofItsType( function( validate ) ) )
VORN_VIEW_RECORD( Ldp, LdpPwFragIndicatorSubTlv, state( fragIndicator ), ofItsType( function( validate ) ) )
VORN_VIEW_RECORD( Ldp, LdpPwVccvParamSubTlv, state( vccvParam ), read( ccTypes ), read( cvTypes ),
                  ofItsType( function( validate ) ) )

VORN_MODULE( &LdpHdrMsgUbitAndTypeField::_vornType, &LdpTlvTypeField::_vornType,
             &LdpCommonHelloTargetField::_vornType, &LdpFtSessionFlags::_vornType,
             &LdpGenLabelTlvLabel::_vornType, &LdpStatusTlvStatusCode::_vornType,
             &LdpFecTlvPwIdElementHdrTypeField::_vornType, &LdpPwVccvParamField::_vornType,
             &LdpPwStatusField::_vornType, &LdpCommonSessionParamTlvAdField::_vornType,
             &LdpStateBit::_vornType, &LdpFecTlvElementHdrTypeField::_vornType, &LdpPduHdr::_vornType,
             &LdpMsgHdr::_vornType, &LdpTlvHdr::_vornType, &LdpCommonHelloTlv::_vornType,
             &LdpIpTransportAddrTlv::_vornType, &LdpConfigSeqNumTlv::_vornType,
             &LdpIp6TransportAddrTlv::_vornType, &LdpCommonSessionParamTlv::_vornType,
             &LdpFtSessionTlv::_vornType, &LdpCapabilityParameterTlv::_vornType, &LdpGenLabelTlv::_vornType,
             &LdpLabelReqMsgIdTlv::_vornType, &LdpHopCountTlv::_vornType, &LdpPathVectorTlv::_vornType,
             &LdpStatusTlv::_vornType, &LdpAddressListTlv::_vornType, &LdpPwStatusTlv::_vornType,
             &LdpFecTlvElementHdr::_vornType, &LdpFecTlvWildcardElementHdr::_vornType,
             &LdpFecTlvPrefixElementHdr::_vornType, &LdpFecTlvHostAddressElementHdr::_vornType,
             &LdpFecTlvP2mpElementHdr::_vornType, &LdpFecTlvPwIdElementHdr::_vornType,
             &LdpPwIntfParamSubTlv::_vornType, &LdpPwIntfMtuSubTlv::_vornType,
             &LdpPwIntfDescSubTlv::_vornType, &LdpPwRequestedVlanIdSubTlv::_vornType,
             &LdpPwFragIndicatorSubTlv::_vornType, &LdpPwVccvParamSubTlv::_vornType )

} // namespace Ldp
