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

namespace {

Vorn::Ptr< LdpMsgParser > typedParser( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset, LdpMsgType type,
                                       LdpMsgParser * plain ) {
   auto const made = [&]< class Parser >( std::type_identity< Parser > ) -> Vorn::Ptr< LdpMsgParser > {
      return Vorn::newObject< Parser >( pkt, offset, plain );
   };
   switch ( type ) {
   case LdpNotification: return made( std::type_identity< LdpNotificationMsgParser >() );
   case LdpHello: return made( std::type_identity< LdpHelloMsgParser >() );
   case LdpInit: return made( std::type_identity< LdpInitMsgParser >() );
   case LdpAddress: return made( std::type_identity< LdpAddressMsgParser >() );
   case LdpAddressWithdraw: return made( std::type_identity< LdpAddressWithdrawMsgParser >() );
   case LdpLabelMapping: return made( std::type_identity< LdpLabelMappingMsgParser >() );
   case LdpLabelRequest: return made( std::type_identity< LdpLabelRequestMsgParser >() );
   case LdpLabelWithdraw: return made( std::type_identity< LdpLabelWithdrawMsgParser >() );
   case LdpLabelRelease: return made( std::type_identity< LdpLabelReleaseMsgParser >() );
   case LdpLabelAbortReq: return made( std::type_identity< LdpLabelAbortReqMsgParser >() );
   // KeepAlive has nothing to add. Capability stays plain, and whoever negotiates capabilities makes the
   // typed parser himself: callers tell the two apart by the class.
   case LdpKeepAlive:
   case LdpCapability: break;
   }
   return nullptr;
}

} // namespace

Vorn::Ptr< LdpMsgParser > ldpTypedMsgParser( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset,
                                             LdpMsgType type ) {
   return typedParser( pkt, offset, type, nullptr );
}

Vorn::Ptr< LdpMsgParser > ldpMsgParserGet( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   VORN_ASSERT( pkt );
   VORN_ASSERT( pkt->front() );
   VORN_ASSERT( pkt->frontBytes() );
   Vorn::Ptr< LdpMsgParser > const plain = ldpMsgParserFactory( pkt, offset );
   if ( !plain->validMsg() || !plain->msgHdr() ) return plain;
   // The typed parser stands for judging header and framing once more.
   Vorn::Ptr< LdpMsgParser > const typed = typedParser( pkt, offset, plain->msgHdr()->type(), plain.ptr() );
   return typed ? typed : plain;
}

} // namespace Ldp
