// Sessions: records, texts, and the history that a session begins with.
#include "Ldp/LdpSession.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, SessionOpState, VORN_LDP_SESSION_OP_STATES )
VORN_ENUM_RECORD( Ldp, LdpSessionRole, VORN_LDP_SESSION_ROLES )
VORN_ENUM_RECORD( Ldp, GrState, VORN_LDP_GR_STATES )
VORN_VALUE_RECORD( Ldp, LdpSessionId )
VORN_VALUE_RECORD( Ldp, LdpSessionState )
VORN_TEXT_OF_RECORD( LdpSessionState )
VORN_RECORD( Ldp, LdpSessionCommonConfig )
VORN_RECORD( Ldp, LdpSessionConfig )
VORN_RECORD( Ldp, LdpSessionConfigColl )
VORN_RECORD( Ldp, LdpSessionStatus )
VORN_RECORD( Ldp, LdpSessionStatusColl )

U32 LdpSessionId::hash() const { return peerLdpId_.hash(); }

Vorn::String LdpSessionId::stringValue() const { return peerLdpId_.stringValue(); }

Vorn::String valueToStrep( LdpSessionId const & value ) { return value.stringValue(); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      LdpSessionId * value ) {
   *value = LdpSessionId( Vorn::deserializeAttr< LdpIdentifier >( it, end, "peerLdpId" ) );
}

VORN_TEXT_STREAM( LdpSessionId )

SessionState LdpSessionStatus::sessionState() const { return ldpSessionState_.sessionState(); }

LdpStatusCode LdpSessionStatus::code() const { return ldpSessionState_.code(); }

void LdpSessionStatus::checkInit() {
   if ( !sessionStateLogEntryColl_ ) sessionStateLogEntryCollIs( Vorn::Name() );
}

} // namespace Ldp
