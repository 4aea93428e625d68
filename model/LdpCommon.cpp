// Message pipes of one slot, and records of what several subjects share.
#include "Ldp/LdpCommon.h"

#include "Vorn/AttributeRows.h"

namespace Ldp {

VORN_REFLECTED_OBJECT_RECORD( Ldp, LdpMsg, &ldpMsgFactory, ctor( ldpIdentifier ), state( srcIpAddr ),
                              ctor( pkt ), ctor( offset ), state( priority ) )
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
VORN_MODULE( &LdpMsg::_vornType, &LdpMsgPipe::_vornType, &LdpFecSessionMsgPipe::_vornType,
             &LdpP2mpSessionLocalLabelMsgPipe::_vornType, &LdpP2mpSessionRemoteLabelMsgPipe::_vornType,
             &LdpTargetMsgPipeCollection::_vornType, &LdpLinkMsgPipeCollection::_vornType,
             &LdpAdjMsgPipeCollection::_vornType, &LdpSessionMsgPipeColl::_vornType,
             &LdpFecSessionMsgPipeColl::_vornType, &LdpP2mpSessionLocalLabelMsgPipeColl::_vornType,
             &LdpP2mpSessionRemoteLabelMsgPipeColl::_vornType )

LdpMsgPipe::~LdpMsgPipe() = default;
LdpFecSessionMsgPipe::~LdpFecSessionMsgPipe() = default;
LdpP2mpSessionLocalLabelMsgPipe::~LdpP2mpSessionLocalLabelMsgPipe() = default;
LdpP2mpSessionRemoteLabelMsgPipe::~LdpP2mpSessionRemoteLabelMsgPipe() = default;
LdpTargetMsgPipeCollection::~LdpTargetMsgPipeCollection() = default;
LdpLinkMsgPipeCollection::~LdpLinkMsgPipeCollection() = default;
LdpAdjMsgPipeCollection::~LdpAdjMsgPipeCollection() = default;
LdpSessionMsgPipeColl::~LdpSessionMsgPipeColl() = default;
LdpFecSessionMsgPipeColl::~LdpFecSessionMsgPipeColl() = default;
LdpP2mpSessionLocalLabelMsgPipeColl::~LdpP2mpSessionLocalLabelMsgPipeColl() = default;
LdpP2mpSessionRemoteLabelMsgPipeColl::~LdpP2mpSessionRemoteLabelMsgPipeColl() = default;

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
