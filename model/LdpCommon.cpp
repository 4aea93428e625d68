// Message pipes of one slot, and records of what several subjects share.
#include "Ldp/LdpCommon.h"

#include "Vorn/AttributeRows.h"

namespace Ldp {

using namespace Vorn::Rows;

constexpr Vorn::VornAttr LdpMsg::vornRows[] = {
   ctor< &Self::ldpIdentifier >( "ldpIdentifier" ), field< &Self::srcIpAddr_ >( "srcIpAddr" ),
   ctor< &Self::pkt >( "pkt" ), ctor< &Self::offset >( "offset" ), field< &Self::priority_ >( "priority" )
};
VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpMsg, &ldpMsgFactory )
VORN_RECORD( Ldp, LdpMsgPipe )
VORN_RECORD( Ldp, LdpFecSessionMsgPipe )
VORN_RECORD( Ldp, LdpP2mpSessionLocalLabelMsgPipe )
VORN_RECORD( Ldp, LdpP2mpSessionRemoteLabelMsgPipe )
VORN_RECORD( Ldp, LdpTargetMsgPipeCollection )
VORN_RECORD( Ldp, LdpLinkMsgPipeCollection )
VORN_RECORD( Ldp, LdpAdjMsgPipeCollection )
VORN_RECORD( Ldp, LdpSessionMsgPipeColl )
VORN_RECORD( Ldp, LdpFecSessionMsgPipeColl )
VORN_RECORD( Ldp, LdpP2mpSessionLocalLabelMsgPipeColl )
VORN_RECORD( Ldp, LdpP2mpSessionRemoteLabelMsgPipeColl )

LdpMsg::~LdpMsg() = default;

Vorn::Ptr< LdpMsg > ldpMsgFactory( LdpIdentifier const & ldpIdentifier, Vorn::Ptr< Lumo::Pkt > const & pkt,
                                   U16 offset ) {
   return Vorn::newObject< LdpMsg >( ldpIdentifier, pkt, offset );
}

void LdpMsgPipe::txMsgIs( Vorn::Ptr< LdpMsg > const & msg ) {
   VORN_ASSERT_TEXT( !msgHolder_, "msgHolder_ == __null" );
   msgHolder_ = msg;
   readableCountInc( 1 );
}

Vorn::Ptr< LdpMsg > LdpMsgPipe::rxMsg() const { return std::exchange( msgHolder_, nullptr ); }

} // namespace Ldp
