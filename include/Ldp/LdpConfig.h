/// \file
/// Configuration of the LDP speaker, per VRF in two layers: `Config` is what the operator set, in the form in
/// which it was set; `ProtoConfig` is what the protocol works from, resolved to addresses and modes. The
/// agent derives the second from the first; here both are records. Nothing is validated: a hold time below
/// the interval is stored as it is.
///
/// Hold times, intervals, timeouts and delays are in seconds.
#pragma once

#include "L3/VrfName.h"
#include "Ldp/LdpFecFilter.h"
#include "Ldp/LdpFecHdr.h"
#include "Ldp/LdpIdentifier.h"
#include "Ldp/LdpProtoParam.h"
#include "Ldp/LdpTypes.h"
#include "Lumo/IntfId.h"
#include "Lumo/MplsLabel.h"

namespace Ldp {

/// Prefix of the names of network namespaces, for those who link against this library.
VORN_API extern Vorn::String const ldpConfigNsPrefix;

/// Label distribution control (RFC 5036, 2.6.1).
#define VORN_LDP_LABEL_DIST_CTRLS( X )                                                                       \
   X( independentCtrl, 1 )                                                                                   \
   X( orderedCtrl, 2 )
VORN_ENUM( LdpLabelDistCtrl, VORN_LDP_LABEL_DIST_CTRLS )

/// Label retention (RFC 5036, 2.6.2).
#define VORN_LDP_LABEL_RETENTIONS( X )                                                                       \
   X( conservativeRetention, 1 )                                                                             \
   X( liberalRetention, 2 )
VORN_ENUM( LdpLabelRetention, VORN_LDP_LABEL_RETENTIONS )

/// Whether the protocol runs in a VRF.
#define VORN_LDP_RUNNING_STATES( X )                                                                         \
   X( ldpRunning, 1 )                                                                                        \
   X( ldpStopping, 2 )                                                                                       \
   X( ldpStopped, 3 )
VORN_ENUM( LdpRunningState, VORN_LDP_RUNNING_STATES )

/// Part that the speaker takes in graceful restart (RFC 3478): none, helping restarting peers, or restarting
/// gracefully itself.
#define VORN_LDP_GR_OPERATIONAL_MODES( X )                                                                   \
   X( grModeDisabled, 0 )                                                                                    \
   X( grModeHelper, 1 )                                                                                      \
   X( grModeSpeaker, 2 )
VORN_ENUM( LdpGrOperationalMode, VORN_LDP_GR_OPERATIONAL_MODES )

/// Whether an interface waits for LDP before its IGP uses it (RFC 5443).
#define VORN_LDP_IGP_SYNC_MODES( X )                                                                         \
   X( off, 1 )                                                                                               \
   X( on, 2 )                                                                                                \
   X( useGlobal, 3 )
VORN_ENUM( LdpIgpSyncMode, VORN_LDP_IGP_SYNC_MODES )

/// What a static binding says of its FEC. The default has null labels and no next hop.
class VORN_API LdpFecBindingInfo {
   VORN_VALUE( LdpFecBindingInfo )
   /// Label that arrives.
   VORN_CTOR_FIELD( 0x2, Lumo::MplsLabel, inputLabel );
   /// Label that leaves.
   VORN_CTOR_FIELD( 0x3, Lumo::MplsLabel, outputLabel );
   /// Address of the next hop.
   VORN_CTOR_FIELD( 0x4, Lumo::IpGenAddr, nexthopIntfIp );

 public:
   LdpFecBindingInfo() noexcept = default;
   LdpFecBindingInfo( Lumo::MplsLabel inputLabel, Lumo::MplsLabel outputLabel,
                      Lumo::IpGenAddr const & nexthopIntfIp ) noexcept
        : inputLabel_( inputLabel ), outputLabel_( outputLabel ), nexthopIntfIp_( nexthopIntfIp ) {}

   friend bool operator==( LdpFecBindingInfo const &, LdpFecBindingInfo const & ) noexcept = default;
};
VORN_TEXT( LdpFecBindingInfo )

/// Parts in graceful restart that the operator allows, a word of flags.
class VORN_API LdpGrOperationalFlag {
   VORN_VALUE( LdpGrOperationalFlag )
   /// The whole word. Its setter throws RangeException for a word above 0x3.
   VORN_CHECKED_FIELD( 0x2, U32, value ) = 0;
   /// Masks of the flags below.
   VORN_CONSTANT( 0x3, U32, grFlagSpeaker_, 1 );
   VORN_CONSTANT( 0x4, U32, grFlagHelper_, 2 );
   /// The speaker restarts gracefully itself.
   VORN_BIT( 0x5, 0, grFlagSpeaker );
   /// The speaker helps restarting peers.
   VORN_BIT( 0x6, 1, grFlagHelper );

 public:
   constexpr LdpGrOperationalFlag() noexcept = default;
   /// Throws RangeException for a word above 0x3.
   explicit LdpGrOperationalFlag( U32 value ) { valueIs( value ); }

   friend constexpr bool operator==( LdpGrOperationalFlag, LdpGrOperationalFlag ) noexcept = default;
};
VORN_TEXT( LdpGrOperationalFlag )

/// What is set on one interface, by whose name it goes.
class VORN_API LdpIntfConfig : public Vorn::Entity {
   VORN_ENTITY( LdpIntfConfig, Vorn::Entity )

 public:
   explicit LdpIntfConfig( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Synchronisation with the IGP.
   VORN_MUTABLE( 0x102, LdpIgpSyncMode, igpSync, IgpSync, replicated ) = useGlobal;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpIntfConfig, ldpIntfConfigFactory )

/// A label binding that the operator set.
class VORN_API LdpStaticFecBindingEntry : public Vorn::Entity {
   VORN_ENTITY( LdpStaticFecBindingEntry, Vorn::Entity )

 public:
   explicit LdpStaticFecBindingEntry( Mpls::FwdEqvClass const & fwdEqvClass ) : fwdEqvClass_( fwdEqvClass ) {}

   VORN_KEY( 0x102, Mpls::FwdEqvClass, fwdEqvClass );
   /// Labels and next hop.
   VORN_MUTABLE( 0x103, LdpFecBindingInfo, fecBindingInfo, FecBindingInfo, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpStaticFecBindingEntry, ldpStaticFecBindingEntryFactory )

/// A P2MP FEC for which the operator asked for a label (RFC 6388).
class VORN_API LdpStaticP2mpFecBindingEntry : public Vorn::Entity {
   VORN_ENTITY( LdpStaticP2mpFecBindingEntry, Vorn::Entity )

 public:
   /// The log knows it, and carries nothing of it at present.
   static constexpr bool vornOnLog = true;

   explicit LdpStaticP2mpFecBindingEntry( LdpP2mpFecGenericOpaqueId const & p2mpGenericOpaqueId )
        : p2mpGenericOpaqueId_( p2mpGenericOpaqueId ) {}

   VORN_KEY( 0x102, LdpP2mpFecGenericOpaqueId, p2mpGenericOpaqueId );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpStaticP2mpFecBindingEntry, ldpStaticP2mpFecBindingEntryFactory )

/// The operator's settings in one VRF.
class VORN_API Config : public Vorn::Entity {
   VORN_ENTITY( Config, Vorn::Entity )

 public:
   explicit Config( L3::VrfName const & vrfName ) : vrfName_( vrfName ) {}

   VORN_KEY( 0x102, L3::VrfName, vrfName );
   /// Whether LDP is to run in the VRF.
   VORN_MUTABLE( 0x103, bool, enabled, Enabled, replicated ) = false;
   /// Interface whose address is the transport address; the empty one leaves the choice.
   VORN_MUTABLE( 0x104, Lumo::IntfId, ipTransportAddrIntfId, IpTransportAddrIntfId, replicated );
   /// When labels are distributed.
   VORN_MUTABLE( 0x105, LdpLabelDistCtrl, ldpLabelDistCtrl, LdpLabelDistCtrl, replicated ) = orderedCtrl;
   /// Whether labels are advertised unasked or on demand.
   VORN_MUTABLE( 0x106, LdpLabelAdvDspl, ldpLabelAdvDspl, LdpLabelAdvDspl, replicated ) = unSolicited;
   /// Which of the labels received are kept.
   VORN_MUTABLE( 0x107, LdpLabelRetention, ldpLabelRetention, LdpLabelRetention,
                 replicated ) = liberalRetention;
   /// Whether hop counts and path vectors are used against loops (RFC 5036, 2.8).
   VORN_MUTABLE( 0x108, bool, ldpLoopDetection, LdpLoopDetection, replicated ) = false;
   /// Label bindings that the operator set, by FEC.
   VORN_ENTITY_COLL( 0x109, LdpStaticFecBindingEntry, Mpls::FwdEqvClass, staticFecBindingColl,
                     StaticFecBindingColl, replicated );
   /// P2MP FECs for which the operator asked for a label.
   VORN_ENTITY_COLL( 0x10a, LdpStaticP2mpFecBindingEntry, LdpP2mpFecGenericOpaqueId, staticP2mpFecBindingColl,
                     StaticP2mpFecBindingColl, replicated );
   /// Switches of the agent's behaviour.
   VORN_MUTABLE( 0x10b, LdpProtoParamSetting, ldpProtoParamSetting, LdpProtoParamSetting, replicated );
   /// Router id; 0.0.0.0 leaves the choice.
   VORN_MUTABLE( 0x10c, Lumo::IpAddr, routerId, RouterId, replicated );
   /// Interface whose address is the router id.
   VORN_MUTABLE( 0x10d, Lumo::IntfId, routerIdIntfId, RouterIdIntfId, replicated );
   /// When the operator last asked for a change of the router id to take effect at once, in seconds; 0 for
   /// never.
   VORN_MUTABLE( 0x10e, double, forceRouterId, ForceRouterId, replicated ) = 0.0;
   /// TCP MD5 key of the speaker, of any length; empty for none.
   VORN_MUTABLE( 0x10f, Vorn::String, md5Password, Md5Password, replicated );
   /// Default of `md5Password`.
   VORN_CONSTANT( 0x110, Vorn::String, md5PasswordDefault, "" );
   /// Requests to clear a neighbour: the peer, and the time of the request in seconds.
   VORN_VALUE_COLL( 0x111, double, LdpIdentifier, ldpNeighborClearRequest, LdpNeighborClearRequest,
                    replicated );
   /// Peers to which targeted hellos are sent.
   VORN_VALUE_COLL( 0x112, bool, Lumo::IpGenAddr, staticTarget, StaticTarget, replicated );
   /// Name of the prefix list that restricts the FECs; empty for none.
   VORN_MUTABLE( 0x113, Vorn::String, fecFilterPrefixListName, FecFilterPrefixListName, replicated );
   /// How long a link that is not ready for LDP is waited for, in seconds.
   VORN_MUTABLE( 0x114, double, linkReadyTimeout, LinkReadyTimeout, replicated ) = linkReadyTimeoutDefault();
   /// Default of `linkReadyTimeout`, in seconds.
   VORN_CONSTANT( 0x115, double, linkReadyTimeoutDefault, 60.0 );
   /// Delay before a link on which LDP is up counts as ready, in seconds.
   VORN_MUTABLE( 0x116, double, linkReadyDelay, LinkReadyDelay, replicated ) = linkReadyDelayDefault();
   /// Default of `linkReadyDelay`, in seconds.
   VORN_CONSTANT( 0x117, double, linkReadyDelayDefault, 5.0 );
   /// Hold time of link hellos, in seconds.
   VORN_MUTABLE( 0x118, U16, helloHoldTime, HelloHoldTime, replicated ) = 15;
   /// Interval of link hellos, in seconds.
   VORN_MUTABLE( 0x119, U16, helloInterval, HelloInterval, replicated ) = 5;
   /// Hold time of targeted hellos, in seconds.
   VORN_MUTABLE( 0x11a, U16, targetedHelloHoldTime, TargetedHelloHoldTime, replicated ) = 45;
   /// Interval of targeted hellos, in seconds.
   VORN_MUTABLE( 0x11b, U16, targetedHelloInterval, TargetedHelloInterval, replicated ) = 15;
   /// Settings of single interfaces, by interface name.
   VORN_ENTITY_COLL( 0x11c, LdpIntfConfig, Vorn::Name, intfConfigColl, IntfConfigColl, replicated );
   /// Whether multicast LDP runs (RFC 6388).
   VORN_MUTABLE( 0x11d, bool, mLdpEnabled, MLdpEnabled, replicated ) = false;
   /// Whether LDP runs on the interfaces of `ldpEnabledIntf` alone.
   VORN_MUTABLE( 0x11e, bool, onlyLdpEnabledIntfs, OnlyLdpEnabledIntfs, replicated ) = false;
   /// The interfaces on which LDP runs where `onlyLdpEnabledIntfs` is set.
   VORN_SET( 0x11f, Lumo::IntfId, ldpEnabledIntf, LdpEnabledIntf, replicated );
   /// Parts that are allowed in graceful restart (RFC 3478).
   VORN_MUTABLE( 0x120, LdpGrOperationalFlag, grOperFlag, GrOperFlag, replicated );
   /// How long forwarding state is held over a restart of our own, in seconds.
   VORN_MUTABLE( 0x121, U32, grHoldingTimeout, GrHoldingTimeout, replicated ) = 90;
   /// Reconnect timeout of graceful restart, in seconds.
   VORN_MUTABLE( 0x122, U32, grReconnectTimeout, GrReconnectTimeout, replicated ) = 90;
   /// Neighbor liveness timeout of graceful restart, in seconds.
   VORN_MUTABLE( 0x123, U32, grNeighborLivenessTimeout, GrNeighborLivenessTimeout, replicated ) = 180;
   /// Largest recovery timeout of graceful restart, in seconds.
   VORN_MUTABLE( 0x124, U32, grMaxRecoveryTimeout, GrMaxRecoveryTimeout, replicated ) = 180;
   /// Whether targeted hellos keep a session over the loss of its link.
   VORN_MUTABLE( 0x125, bool, helloRedundancy, HelloRedundancy, replicated ) = false;
   /// How long they keep it, in seconds.
   VORN_MUTABLE( 0x126, double, helloRedundancyTimeout, HelloRedundancyTimeout,
                 replicated ) = LdpProtoParam::defaultHelloRedundancyTimeout();

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( Config, configFactory )

/// The operator's settings in all VRFs. The VRF named "default" is there from the start.
class VORN_API LdpConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpConfigColl, Vorn::Entity )

 public:
   /// Makes the default VRF as well.
   explicit LdpConfigColl( Vorn::Name const & name );

   VORN_NAME;
   /// The settings of each VRF, by its name.
   VORN_ENTITY_COLL( 0x102, Config, L3::VrfName, config, Config, replicated );
   /// Whether the constructor has done its work.
   VORN_MUTABLE( 0x103, bool, initialized, Initialized, replicated ) = false;
   VORN_FUNCTION( 0x104, handleInitialized );
   /// Makes the default VRF; the constructor's last step.
   void handleInitialized();

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpConfigColl, ldpConfigCollFactory )

/// What the protocol works from in one VRF: the settings resolved, and the state of the instance. Means
/// something only once it is derived from a `Config`: the timeouts of graceful restart are 0 until then.
class VORN_API ProtoConfig : public Vorn::Entity {
   VORN_ENTITY( ProtoConfig, Vorn::Entity )

 public:
   /// Makes `ldpProtoParam` as well, under the VRF's name.
   explicit ProtoConfig( L3::VrfName const & vrfName );

   VORN_KEY( 0x102, L3::VrfName, vrfName );
   /// Whether the instance runs.
   VORN_MUTABLE( 0x103, LdpRunningState, runningState, RunningState, replicated ) = ldpStopped;
   /// Why it does not run, for a person.
   VORN_MUTABLE( 0x104, Vorn::String, reason, Reason, replicated );
   /// Router id.
   VORN_MUTABLE( 0x105, Lumo::IpAddr, routerId, RouterId, replicated );
   /// Interface that the router id came from.
   VORN_MUTABLE( 0x106, Lumo::IntfId, intfId, IntfId, replicated );
   /// Constants and switches of the protocol.
   VORN_CHILD( 0x107, LdpProtoParam, ldpProtoParam, LdpProtoParam, replicated );
   /// Transport address that hellos announce.
   VORN_MUTABLE( 0x108, Lumo::IpGenAddr, ipTransportAddr, IpTransportAddr, replicated ) = Lumo::IpAddr();
   /// How long changes of the configuration are gathered before they take effect, in seconds.
   VORN_MUTABLE( 0x109, double, configCodefDelay, ConfigCodefDelay, replicated ) = 1.0;
   /// The speaker's own identifier.
   VORN_MUTABLE( 0x10a, LdpIdentifier, ldpIdentifier, LdpIdentifier, replicated );
   /// When labels are distributed.
   VORN_MUTABLE( 0x10b, LdpLabelDistCtrl, ldpLabelDistCtrl, LdpLabelDistCtrl, replicated ) = orderedCtrl;
   /// Whether labels are advertised unasked or on demand.
   VORN_MUTABLE( 0x10c, LdpLabelAdvDspl, ldpLabelAdvDspl, LdpLabelAdvDspl, replicated ) = unSolicited;
   /// Which of the labels received are kept.
   VORN_MUTABLE( 0x10d, LdpLabelRetention, ldpLabelRetention, LdpLabelRetention,
                 replicated ) = liberalRetention;
   /// Whether a FEC may have several labels.
   VORN_MUTABLE( 0x10e, bool, ldpMultiLabelSupport, LdpMultiLabelSupport, replicated ) = false;
   /// Whether hop counts and path vectors are used against loops (RFC 5036, 2.8).
   VORN_MUTABLE( 0x10f, bool, ldpLoopDetection, LdpLoopDetection, replicated ) = false;
   /// Largest hop count.
   VORN_MUTABLE( 0x110, U8, ldpHopCountMax, LdpHopCountMax, replicated ) = 64;
   /// TCP MD5 key of the speaker; empty for none.
   VORN_MUTABLE( 0x111, Vorn::String, md5Password, Md5Password, replicated );
   /// Default of `md5Password`.
   VORN_CONSTANT( 0x112, Vorn::String, md5PasswordDefault, "" );
   /// Peers to which targeted hellos are sent.
   VORN_VALUE_COLL( 0x113, bool, Lumo::IpGenAddr, staticTarget, StaticTarget, replicated );
   /// Which FECs are let through; null until somebody makes it.
   VORN_CHILD( 0x114, LdpFecFilter, fecFilter, FecFilter, replicated );
   /// How long a link that is not ready for LDP is waited for, in seconds.
   VORN_MUTABLE( 0x115, double, linkReadyTimeout, LinkReadyTimeout, replicated ) = linkReadyTimeoutDefault();
   /// Default of `linkReadyTimeout`, in seconds.
   VORN_CONSTANT( 0x116, double, linkReadyTimeoutDefault, 60.0 );
   /// Delay before a link on which LDP is up counts as ready, in seconds.
   VORN_MUTABLE( 0x117, double, linkReadyDelay, LinkReadyDelay, replicated ) = linkReadyDelayDefault();
   /// Default of `linkReadyDelay`, in seconds.
   VORN_CONSTANT( 0x118, double, linkReadyDelayDefault, 5.0 );
   /// Switches of the agent's behaviour.
   VORN_MUTABLE( 0x119, LdpProtoParamSetting, ldpProtoParamSetting, LdpProtoParamSetting, replicated );
   /// Part that the speaker takes in graceful restart.
   VORN_MUTABLE( 0x11a, LdpGrOperationalMode, grOperMode, GrOperMode, replicated ) = grModeDisabled;
   /// How long forwarding state is held over a restart of our own, in seconds.
   VORN_MUTABLE( 0x11b, U32, grHoldingTimeout, GrHoldingTimeout, replicated ) = 0;
   /// Reconnect timeout of graceful restart, in seconds.
   VORN_MUTABLE( 0x11c, U32, grReconnectTimeout, GrReconnectTimeout, replicated ) = 0;
   /// Neighbor liveness timeout of graceful restart, in seconds.
   VORN_MUTABLE( 0x11d, U32, grNeighborLivenessTimeout, GrNeighborLivenessTimeout, replicated ) = 0;
   /// Largest recovery timeout of graceful restart, in seconds.
   VORN_MUTABLE( 0x11e, U32, grMaxRecoveryTimeout, GrMaxRecoveryTimeout, replicated ) = 0;
   /// Whether multicast LDP runs (RFC 6388).
   VORN_MUTABLE( 0x11f, bool, mLdpEnabled, MLdpEnabled, replicated ) = false;
   /// Whether LDP runs on the interfaces of `ldpEnabledIntf` alone.
   VORN_MUTABLE( 0x120, bool, onlyLdpEnabledIntfs, OnlyLdpEnabledIntfs, replicated ) = false;
   /// The interfaces on which LDP runs where `onlyLdpEnabledIntfs` is set.
   VORN_SET( 0x121, Lumo::IntfId, ldpEnabledIntf, LdpEnabledIntf, replicated );
   /// Whether targeted hellos keep a session over the loss of its link.
   VORN_MUTABLE( 0x122, bool, helloRedundancy, HelloRedundancy, replicated ) = false;
   /// How long they keep it, in seconds.
   VORN_MUTABLE( 0x123, double, helloRedundancyTimeout, HelloRedundancyTimeout,
                 replicated ) = LdpProtoParam::defaultHelloRedundancyTimeout();

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( ProtoConfig, protoConfigFactory )

/// What the protocol works from in all VRFs.
class VORN_API LdpProtoConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpProtoConfigColl, Vorn::Entity )

 public:
   explicit LdpProtoConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What the protocol works from in each VRF, by its name.
   VORN_ENTITY_COLL( 0x102, ProtoConfig, L3::VrfName, protoConfig, ProtoConfig, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpProtoConfigColl, ldpProtoConfigCollFactory )

/// The VRFs in which LDP is enabled.
class VORN_API LdpEnabledVrfColl : public Vorn::Entity {
   VORN_ENTITY( LdpEnabledVrfColl, Vorn::Entity )

 public:
   explicit LdpEnabledVrfColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The VRFs, by name.
   VORN_VALUE_COLL( 0x102, bool, L3::VrfName, enabledVrf, EnabledVrf, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpEnabledVrfColl, ldpEnabledVrfCollFactory )

/// The peers that pseudowires need, by address: targeted hellos go to them (RFC 8077, 6).
class VORN_API PwTargetConfigColl : public Vorn::Entity {
   VORN_ENTITY( PwTargetConfigColl, Vorn::Entity )

 public:
   explicit PwTargetConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The peers, by address.
   VORN_VALUE_COLL( 0x102, bool, Lumo::IpGenAddr, pwTarget, PwTarget, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( PwTargetConfigColl, pwTargetConfigCollFactory )

} // namespace Ldp
