// What reflection knows of the parsers of single TLVs, of the FEC TLV and of its elements.

#include "Ldp/LdpPwGenMsgParser.h"

#include "Vorn/AttributeRows.h"

namespace Ldp {

VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpTlvParser, &ldpTlvParserFactory, ctor( pkt ), ctor( offset ),
                              viewBy( header, wholeHeader ), read( unknown ), read( forwardUnknown ),
                              read( type ), read( length ) )

// A field of the body. Setters and `validate` act on the bytes directly, so they apply only where those lie
// in the packet; a getter sees to that itself. Judgement and text are for a TLV of the parser's own type.
#define VORN_ROW_body( x ) VORN_ROW_writtenWhere( hasBody, write( x ) )
#define TLV_PARSER_RECORD( Type, factory, ... )                                                              \
   VORN_REFLECTED_OBJECT_RECORD( Ldp, Type, factory, __VA_ARGS__,                                            \
                                 where( hasTextOfItsType, read( stringValue ) ),                             \
                                 where( hasBodyOfItsType, function( validate ) ) )

TLV_PARSER_RECORD( LdpCommonHelloTlvParser, &ldpCommonHelloTlvParserFactory, body( holdTime ),
                   body( targetedHello ), body( requestSendTargetedHello ) )
TLV_PARSER_RECORD( LdpIpTransportAddrTlvParser, &ldpIpTransportAddrTlvParserFactory, body( ipAddr ) )
TLV_PARSER_RECORD( LdpConfigSeqNumTlvParser, &ldpConfigSeqNumTlvParserFactory, body( configSeqNum ) )
TLV_PARSER_RECORD( LdpIp6TransportAddrTlvParser, &ldpIp6TransportAddrTlvParserFactory, body( ip6Addr ) )
TLV_PARSER_RECORD( LdpCommonSessionParamTlvParser, &ldpCommonSessionParamTlvParserFactory,
                   body( protocolVersion ), body( keepAliveTime ), body( advDiscipline ), body( loopDetect ),
                   body( pathVecLim ), body( maxPduLength ), body( recvLdpIdentifier ) )
TLV_PARSER_RECORD( LdpFtSessionTlvParser, &ldpFtSessionTlvParserFactory, body( ftRecoveryTime ),
                   body( ftReconnectTimeout ), body( learnFromNetwork ), body( ftFlags ) )
TLV_PARSER_RECORD( LdpGenLabelTlvParser, &ldpGenLabelTlvParserFactory, body( label ) )
TLV_PARSER_RECORD( LdpLabelReqMsgIdTlvParser, &ldpLabelReqMsgIdTlvParserFactory, body( reqMsgId ) )
TLV_PARSER_RECORD( LdpHopCountTlvParser, &ldpHopCountTlvParserFactory, body( hopCount ) )
TLV_PARSER_RECORD( LdpPathVectorTlvParser, &ldpPathVectorTlvParserFactory, read( lsrIdNum ),
                   indexed( lsrId, lsrIdNum ), keyed( lsrIdPosition ) )
TLV_PARSER_RECORD( LdpStatusTlvParser, &ldpStatusTlvParserFactory, body( statusError ),
                   body( statusForwardUnknown ), body( statusData ), body( msgId ), body( msgType ) )
TLV_PARSER_RECORD( LdpAddressListTlvParser, &ldpAddressListTlvParserFactory, read( family ),
                   indexed( address, numAddress ), read( numAddress ) )
TLV_PARSER_RECORD( LdpPwStatusTlvParser, &ldpPwStatusTlvParserFactory, read( pwForwarding ),
                   read( pwNotForwarding ), read( localACIngrRecvFault ), read( localACEgrTransFault ),
                   read( localPsnPwIngrRecvFault ), read( localPsnPwEgrTransFault ) )

// An accessor of a value asserts that the element is of its kind; who goes by the record alone cannot know.
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvElement, nullptr, where( isIp, write( fwdEqvCls ) ),
                              where( isPw, write( pwFwdEqvCls ) ), where( isP2mp, write( p2mpFecElem ) ),
                              read( type ), where( hasText, read( stringValue ) ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvWildcardElement, &ldpFecTlvWildcardElementFactory )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvPrefixElement, &ldpFecTlvPrefixElementFactory )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvHostAddrElement, &ldpFecTlvHostAddrElementFactory )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvP2mpElement, &ldpFecTlvP2mpElementFactory )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvPwIdElement, &ldpFecTlvPwIdElementFactory,
                              state( parsedIntfParams ) )

VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpFecTlvParser, &ldpFecTlvParserFactory, ctor( ldpProtoParam ),
                              read( valid ), state( statusCode ), state( reason ), references( fecElement ),
                              state( hasWildcardFecElement ), state( initialized ), function( parseElements ),
                              read( stringValue ) )

VORN_MODULE( &LdpTlvParser::_vornType, &LdpCommonHelloTlvParser::_vornType,
             &LdpIpTransportAddrTlvParser::_vornType, &LdpConfigSeqNumTlvParser::_vornType,
             &LdpIp6TransportAddrTlvParser::_vornType, &LdpCommonSessionParamTlvParser::_vornType,
             &LdpFtSessionTlvParser::_vornType, &LdpGenLabelTlvParser::_vornType,
             &LdpLabelReqMsgIdTlvParser::_vornType, &LdpHopCountTlvParser::_vornType,
             &LdpPathVectorTlvParser::_vornType, &LdpStatusTlvParser::_vornType,
             &LdpAddressListTlvParser::_vornType, &LdpPwStatusTlvParser::_vornType,
             &LdpFecTlvElement::_vornType, &LdpFecTlvWildcardElement::_vornType,
             &LdpFecTlvPrefixElement::_vornType, &LdpFecTlvHostAddrElement::_vornType,
             &LdpFecTlvP2mpElement::_vornType, &LdpFecTlvPwIdElement::_vornType, &LdpFecTlvParser::_vornType )

} // namespace Ldp
