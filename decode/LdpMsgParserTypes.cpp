// What reflection knows of the parsers of PDUs and messages.

#include "Ldp/LdpMsgParser.h"

#include "Vorn/AttributeRows.h"

namespace Ldp {

VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpTlvGroupParser,
                              (&Vorn::newObject< LdpTlvGroupParser, Vorn::Name const & >), part( pkt ),
                              part( offset ), part( size ), read( valid ), state( reason ),
                              state( statusCode ), values( tlvOffset ), read( tlvNum ),
                              function( parseTlvGroup ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpPduParser, &ldpPduParserFactory, ctor( pkt ), ctor( offset ),
                              viewBy( header, wholeHeader ), read( version ), read( length ),
                              read( totalLength ), read( ldpIdentifier ),
                              where( hasText, read( stringValue ) ), state( statusCode ), state( reason ),
                              read( validLdpPdu ), child( tlvGroupParser ), read( messageNum ),
                              indexed( messageOffset, messageNum ), state( initialized ),
                              function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpMsgParser, &ldpMsgParserFactory, ctor( pkt ), ctor( offset ),
                              viewBy( msgHdr, wholeMsgHdr ), read( unknown ), read( type ), read( msgId ),
                              read( length ), read( totalLength ), where( hasText, read( stringValue ) ),
                              child( tlvGroupParser ), read( tlvNum ), indexed( tlvOffset, tlvNum ),
                              read( validMsg ), state( reason ), state( statusCode ), view( msgFecTlv ),
                              child( ldpFecTlvParser ), view( msgStatusTlv ) )

VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpHelloMsgParser, &ldpHelloMsgParserFactory, view( msgCommonHelloTlv ),
                              view( msgIpTransportTlv ), view( msgIp6TransportTlv ), view( msgConfigSeqTlv ),
                              state( initialized ), function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpCapabilityParser, nullptr, views( capabilities ),
                              function( parseCapabilityTlvs ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpInitMsgParser, &ldpInitMsgParserFactory, view( msgSessionParamTlv ),
                              view( msgFtSessionTlv ), state( initialized ), function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpCapabilityMsgParser, &ldpCapabilityMsgParserFactory,
                              state( initialized ), function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpNotificationMsgParser, &ldpNotificationMsgParserFactory,
                              view( msgPwStatusTlv ), state( initialized ), function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpAddressMsgParser, &ldpAddressMsgParserFactory, view( addressListTlv ),
                              state( initialized ), function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpAddressWithdrawMsgParser, &ldpAddressWithdrawMsgParserFactory,
                              view( addressListTlv ), state( initialized ), function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelMappingMsgParser, &ldpLabelMappingMsgParserFactory,
                              view( msgGenLabelTlv ), view( msgReqMsgIdTlv ), view( msgHopCountTlv ),
                              view( msgPathVectorTlv ), view( msgPwStatusTlv ), state( initialized ),
                              function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelRequestMsgParser, &ldpLabelRequestMsgParserFactory,
                              view( msgHopCountTlv ), view( msgPathVectorTlv ), state( initialized ),
                              function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelWithdrawMsgParser, &ldpLabelWithdrawMsgParserFactory,
                              view( msgGenLabelTlv ), state( initialized ), function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelReleaseMsgParser, &ldpLabelReleaseMsgParserFactory,
                              view( msgGenLabelTlv ), state( initialized ), function( handleInitialized ) )
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpLabelAbortReqMsgParser, &ldpLabelAbortReqMsgParserFactory,
                              view( msgReqMsgIdTlv ), state( initialized ), function( handleInitialized ) )

VORN_MODULE( &LdpTlvGroupParser::_vornType, &LdpPduParser::_vornType, &LdpMsgParser::_vornType,
             &LdpHelloMsgParser::_vornType, &LdpCapabilityParser::_vornType, &LdpInitMsgParser::_vornType,
             &LdpCapabilityMsgParser::_vornType, &LdpNotificationMsgParser::_vornType,
             &LdpAddressMsgParser::_vornType, &LdpAddressWithdrawMsgParser::_vornType,
             &LdpLabelMappingMsgParser::_vornType, &LdpLabelRequestMsgParser::_vornType,
             &LdpLabelWithdrawMsgParser::_vornType, &LdpLabelReleaseMsgParser::_vornType,
             &LdpLabelAbortReqMsgParser::_vornType )

} // namespace Ldp
