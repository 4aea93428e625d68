// Configuration: records, children that are there from the start, the word of graceful restart.
#include "Ldp/LdpConfig.h"

namespace Ldp {

Vorn::String const ldpConfigNsPrefix = "ns-";

VORN_ENUM_RECORD( Ldp, LdpLabelDistCtrl, VORN_LDP_LABEL_DIST_CTRLS )
VORN_ENUM_RECORD( Ldp, LdpLabelRetention, VORN_LDP_LABEL_RETENTIONS )
VORN_ENUM_RECORD( Ldp, LdpRunningState, VORN_LDP_RUNNING_STATES )
VORN_ENUM_RECORD( Ldp, LdpGrOperationalMode, VORN_LDP_GR_OPERATIONAL_MODES )
VORN_ENUM_RECORD( Ldp, LdpIgpSyncMode, VORN_LDP_IGP_SYNC_MODES )
VORN_VALUE_RECORD( Ldp, LdpFecBindingInfo )
VORN_VALUE_RECORD( Ldp, LdpGrOperationalFlag )
VORN_RECORD( Ldp, LdpIntfConfig )
VORN_RECORD( Ldp, LdpStaticFecBindingEntry )
VORN_RECORD( Ldp, LdpStaticP2mpFecBindingEntry )
VORN_RECORD( Ldp, Config )
VORN_RECORD( Ldp, LdpConfigColl )
VORN_RECORD( Ldp, ProtoConfig )
VORN_RECORD( Ldp, LdpProtoConfigColl )
VORN_RECORD( Ldp, LdpEnabledVrfColl )
VORN_RECORD( Ldp, PwTargetConfigColl )

VORN_TEXT_OF_RECORD( LdpFecBindingInfo )
VORN_TEXT_OF_FLAGS( LdpGrOperationalFlag )

void LdpGrOperationalFlag::valueIs( U32 value ) {
   if ( value > ( grFlagSpeaker_() | grFlagHelper_() ) )
      Vorn::throwRangeException( "LdpGrOperationalFlag::value > 0x3 not allowed" );
   value_ = value;
}

LdpConfigColl::LdpConfigColl( Vorn::Name const & name ) : name_( name ) { handleInitialized(); }

void LdpConfigColl::handleInitialized() {
   Vorn::Hold const hold( *this );
   configIs( L3::VrfName( "default" ) );
   initializedIs( true );
}

ProtoConfig::ProtoConfig( L3::VrfName const & vrfName ) : vrfName_( vrfName ) {
   ldpProtoParamIs( Vorn::Name( vrfName.stringValue() ) );
}

} // namespace Ldp
