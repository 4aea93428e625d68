// FEC configuration and status: records, notifiers whose context lasts as long as their visit.
#include "Ldp/LdpFec.h"

#include <cstring>

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpFecConfigMembership, VORN_LDP_FEC_CONFIG_MEMBERSHIPS )
VORN_ENUM_RECORD( Ldp, LdpFecLspRole, VORN_LDP_FEC_LSP_ROLES )
VORN_ENUM_RECORD( Ldp, FecConfigChange, VORN_LDP_FEC_CONFIG_CHANGES )
VORN_ENUM_RECORD( Ldp, LdpLabelUnassignedReason, VORN_LDP_LABEL_UNASSIGNED_REASONS )
VORN_ENUM_RECORD_NAMED( "Ldp::LdpXsessionNotification::LdpXsessionNotificationType",
                        LdpXsessionNotification_LdpXsessionNotificationType,
                        VORN_LDP_XSESSION_NOTIFICATION_TYPES )
VORN_VALUE_RECORD( Ldp, Via )
VORN_RECORD( Ldp, IntfIpViaMapping )
VORN_RECORD( Ldp, LdpIdViaMapping )
VORN_RECORD( Ldp, LdpFecConfig )
VORN_RECORD( Ldp, LdpFecConfigNotifier )
VORN_RECORD( Ldp, LdpFecConfigColl )
VORN_RECORD( Ldp, LdpXsessionNotification )
VORN_RECORD( Ldp, LdpFecStatus )
VORN_RECORD( Ldp, LdpFecStatusNotifier )
VORN_RECORD( Ldp, LdpFecStatusColl )
VORN_RECORD( Ldp, LdpFecNexthop )
VORN_RECORD( Ldp, LdpFecNexthopColl )
VORN_RECORD( Ldp, LdpFecCounters )

namespace {

// Puts a context field of a notifier back when an update is over, also when an observer's exception has ended
// it. The notifier stays until then, although an observer may have dropped the last reference to it.
template< class T >
class Reset {
 public:
   Reset( Vorn::Entity & notifier, T & field ) : notifier_( notifier ), field_( field ) {}
   Reset( Reset const & ) = delete;
   Reset & operator=( Reset const & ) = delete;
   ~Reset() { field_ = T(); }

 private:
   Vorn::Hold const notifier_;
   T & field_;
};

} // namespace

U32 Via::hash() const {
   Lumo::Ip6Addr octets;
   std::memcpy( octets.octets(), hop_.octets(), Lumo::Ip6Addr::size );
   U32 const hop = octets.hash();
   U32 const intf = intfId_.hash();
   Vorn::Hash hash;
   hash.mix< 4 >( &hop );
   hash.mix< 4 >( &intf );
   return hash.result();
}

Vorn::String Via::stringValue() const { return hop_.stringValue() + "-" + intfId_.stringValue(); }

VORN_TEXT_OF_RECORD( Via )

LdpFecConfig::LdpFecConfig( Mpls::FwdEqvClass const & fwdEqvClass ) : fwdEqvClass_( fwdEqvClass ) {
   mplsLabelSetIs( Vorn::Name( "labelSet" ), fwdEqvClass );
   advertisedToIs( fwdEqvClass );
}

LdpFecConfigColl::LdpFecConfigColl( Vorn::Name const & name ) : name_( name ) {
   fecConfigNotifierIs( Vorn::Name() );
}

LdpFecStatus::LdpFecStatus( Mpls::FwdEqvClass const & fwdEqvClass ) : fwdEqvClass_( fwdEqvClass ) {
   ldpXsessionNotificationIs( Vorn::Name() );
}

LdpFecStatusColl::LdpFecStatusColl( Vorn::Name const & name ) : name_( name ) {
   fecStatusNotifierIs( Vorn::Name() );
}

Mpls::FwdEqvClass LdpFecConfigNotifier::lastFwdEqvClass() const {
   return lastFecConfig_ ? lastFecConfig_->fwdEqvClass() : Mpls::FwdEqvClass();
}

// The context of one update. It goes when the update is over, also when an observer's exception has ended it;
// the notifier stays until then, although an observer may have dropped the last reference to it.
class LdpFecConfigNotifier::Update {
 public:
   Update( LdpFecConfigNotifier & notifier, U8 context )
        : notifier_( &notifier ), context_( context ), outer_( notifier.context_ ) {
      notifier.context_ = U8( outer_ | context );
   }
   Update( Update const & ) = delete;
   Update & operator=( Update const & ) = delete;
   ~Update() {
      notifier_->context_ = outer_;
      FecPtr const fec = std::exchange( notifier_->lastFecConfig_, nullptr ); // its observers may look here
      if ( context_ & labelContext ) notifier_->lastMplsLabel_ = Lumo::MplsLabel();
      if ( context_ & peerContext ) notifier_->lastLdpId_ = LdpIdentifier();
   }

 private:
   Vorn::Ptr< LdpFecConfigNotifier > const notifier_;
   U8 const context_;
   U8 const outer_;
};

void LdpFecConfigNotifier::update( FecPtr const & fec, Count count, Context further,
                                   LdpIdentifier const & peer, Lumo::MplsLabel label ) {
   Update const under( *this, U8( fecContext | further ) );
   // All of the context, so that nothing shows which somebody has written before.
   lastFecConfig_ = fec;
   lastLdpId_ = peer;
   lastMplsLabel_ = label;
   ( this->*count )( 1 );
}

void LdpFecConfigNotifier::updateDownstreamLsr( FecPtr const & fec, LdpIdentifier const & peer ) {
   update( fec, &LdpFecConfigNotifier::downstreamLsrChangeCntInc, peerContext, peer );
}

void LdpFecConfigNotifier::updateLoopDetection( FecPtr const & fec ) {
   update( fec, &LdpFecConfigNotifier::loopDetectionChangeCntInc );
}

void LdpFecConfigNotifier::updateDsLsrMappingAvail( FecPtr const & fec ) {
   update( fec, &LdpFecConfigNotifier::dsLsrMappingAvailChangeCntInc );
}

void LdpFecConfigNotifier::updateLabelDistCtrl( FecPtr const & fec ) {
   update( fec, &LdpFecConfigNotifier::labelDistCtrlChangeCntInc );
}

void LdpFecConfigNotifier::updateLabelRetention( FecPtr const & fec ) {
   update( fec, &LdpFecConfigNotifier::labelRetentionChangeCntInc );
}

void LdpFecConfigNotifier::updateVia( FecPtr const & fec ) {
   update( fec, &LdpFecConfigNotifier::viaChangeCntInc );
}

void LdpFecConfigNotifier::updateLspRole( FecPtr const & fec ) {
   update( fec, &LdpFecConfigNotifier::lspRoleChangeCntInc );
}

void LdpFecConfigNotifier::updateMplsLabelSet( FecPtr const & fec, Lumo::MplsLabel label ) {
   update( fec, &LdpFecConfigNotifier::mplsLabelSetChangeCntInc, labelContext, LdpIdentifier(), label );
}

void LdpFecConfigNotifier::updateProgrammedLabelSet( FecPtr const & fec ) {
   update( fec, &LdpFecConfigNotifier::programmedLabelSetChangeCntInc );
}

Mpls::FwdEqvClass LdpFecStatusNotifier::lastFwdEqvClass() const {
   return lastFecStatus_ ? lastFecStatus_->fwdEqvClass() : Mpls::FwdEqvClass();
}

void LdpFecStatusNotifier::updateRequestSmNotiTime( FecPtr const & fec ) {
   Reset const clearFec( *this, lastFecStatus_ );
   lastFecStatus_ = fec;
   labelXsessionRequestSmNotiTimeChangeCntInc( 1 );
}

void LdpFecStatusNotifier::updateMappingSmNotiTime( FecPtr const & fec ) {
   Reset const clearFec( *this, lastFecStatus_ );
   lastFecStatus_ = fec;
   labelXsessionMappingSmNotiTimeChangeCntInc( 1 );
}

} // namespace Ldp
