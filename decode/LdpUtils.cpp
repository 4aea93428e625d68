// The dispatch from a message's type to its parser, and the status codes' properties.
#include "Ldp/LdpUtils.h"

namespace Ldp {

bool statusCodeEBitForStatusCode( LdpStatusCode status ) {
   switch ( status ) {
#define E_BIT_COLUMN( name, number, eBit, text )                                                             \
   case name: return eBit;
      VORN_LDP_STATUS_CODES( E_BIT_COLUMN )
#undef E_BIT_COLUMN
   }
   VORN_ASSERT_TEXT( false, "!\"Missing status code E-bit definition\"" );
   return false;
}

Vorn::String sessionStateStrForStatusCode( LdpStatusCode status ) {
   char const * known = nullptr;
   switch ( status ) {
#define TEXT_COLUMN( name, number, eBit, text )                                                              \
   case name: known = text; break;
      VORN_LDP_STATUS_CODES( TEXT_COLUMN )
#undef TEXT_COLUMN
   }
   return known ? Vorn::String( known ) : stringValue( status );
}

U8 hopCountInc( U8 rcvdHopCount ) {
   VORN_ASSERT( rcvdHopCount < ( 0xFF - 1 ) && "Internal Error" );
   return rcvdHopCount ? U8( rcvdHopCount + 1 ) : rcvdHopCount;
}

ReentrantAssert::ReentrantAssert( bool * flag ) : flag_( flag ) {
   VORN_ASSERT( !*flag );
   *flag_ = true;
}

bool isManagementOrInternalInterface( Lumo::IntfId const & intfId ) {
   return isInternalIntfId( intfId ) || isMgmtIntfId( intfId );
}

bool isLoopbackInterface( Lumo::IntfId const & intfId ) { return isLoopbackIntfId( intfId ); }

bool isLdpSupportedInterface( Lumo::IntfId const & intfId, bool loopbackCounts ) {
   return isVlanIntfId( intfId ) || isPortChannelIntfId( intfId ) || isEthIntfId( intfId ) ||
          isSubIntfId( intfId ) || ( loopbackCounts && isLoopbackIntfId( intfId ) );
}

Vorn::Ptr< LdpMsgParser > ldpTypedMsgParser( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset,
                                             LdpMsgType type ) {
   switch ( type ) {
   case LdpNotification: return ldpNotificationMsgParserFactory( pkt, offset );
   case LdpHello: return ldpHelloMsgParserFactory( pkt, offset );
   case LdpInit: return ldpInitMsgParserFactory( pkt, offset );
   case LdpAddress: return ldpAddressMsgParserFactory( pkt, offset );
   case LdpAddressWithdraw: return ldpAddressWithdrawMsgParserFactory( pkt, offset );
   case LdpLabelMapping: return ldpLabelMappingMsgParserFactory( pkt, offset );
   case LdpLabelRequest: return ldpLabelRequestMsgParserFactory( pkt, offset );
   case LdpLabelWithdraw: return ldpLabelWithdrawMsgParserFactory( pkt, offset );
   case LdpLabelRelease: return ldpLabelReleaseMsgParserFactory( pkt, offset );
   case LdpLabelAbortReq: return ldpLabelAbortReqMsgParserFactory( pkt, offset );
   // KeepAlive has nothing to add. Capability stays plain, and whoever negotiates capabilities makes the
   // typed parser himself: callers tell the two apart by the class.
   case LdpKeepAlive:
   case LdpCapability: break;
   }
   return nullptr;
}

Vorn::Ptr< LdpMsgParser > ldpMsgParserGet( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   VORN_ASSERT( pkt );
   VORN_ASSERT( pkt->front() );
   VORN_ASSERT( pkt->frontBytes() );
   Vorn::Ptr< LdpMsgParser > const plain = ldpMsgParserFactory( pkt, offset );
   if ( !plain->validMsg() || !plain->msgHdr() ) return plain;
   // The typed parser judges header and framing once more.
   Vorn::Ptr< LdpMsgParser > const typed = ldpTypedMsgParser( pkt, offset, plain->msgHdr()->type() );
   return typed ? typed : plain;
}

} // namespace Ldp
