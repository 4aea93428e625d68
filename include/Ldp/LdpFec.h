/// \file
/// FECs: why each exists, who is downstream, through which next hops, which labels it carries; what the label
/// state machines tell each other about it; and the notifiers, by which one observer hears of changes in any
/// of many FECs.
#pragma once

#include "Ldp/LdpConfig.h"
#include "Ldp/LdpLabelAlloc.h"
#include "Ldp/LdpMsgParser.h"
#include "Ldp/LdpSession.h"
#include "Ldp/LdpTables.h"
#include "Lumo/IntfId.h"

namespace Ldp {

/// Why a FEC exists.
#define VORN_LDP_FEC_CONFIG_MEMBERSHIPS( X )                                                                 \
   X( fecMemberFibSm, 0 )                                                                                    \
   X( fecMemberLocalGr, 1 )                                                                                  \
   X( fecMemberSessionGr, 2 )                                                                                \
   X( fecMemberSessionSm, 3 )                                                                                \
   X( fecMemberStatic, 4 )                                                                                   \
   X( fecMemberTunnelRib, 5 )
VORN_ENUM( LdpFecConfigMembership, VORN_LDP_FEC_CONFIG_MEMBERSHIPS )

/// Place of this router on the path of a FEC.
#define VORN_LDP_FEC_LSP_ROLES( X )                                                                          \
   X( lspRoleUnknown, 0 )                                                                                    \
   X( lspIngress, 1 )                                                                                        \
   X( lspTransit, 2 )                                                                                        \
   X( lspEgress, 3 )
VORN_ENUM( LdpFecLspRole, VORN_LDP_FEC_LSP_ROLES )

/// Events of the agent's FEC state machines; no attribute here has this type.
#define VORN_LDP_FEC_CONFIG_CHANGES( X )                                                                     \
   X( fcNone, 0 )                                                                                            \
   X( fcDsLsr, 1 )                                                                                           \
   X( fcLoopDetect, 2 )                                                                                      \
   X( fcLabelRetention, 3 )                                                                                  \
   X( fcLspRole, 4 )                                                                                         \
   X( fcXnotification, 5 )                                                                                   \
   X( fcVia, 6 )                                                                                             \
   X( fcDsLsrMappingAvail, 7 )                                                                               \
   X( fcLabelDistCtrl, 8 )                                                                                   \
   X( fcProgrammedLabel, 9 )
VORN_ENUM( FecConfigChange, VORN_LDP_FEC_CONFIG_CHANGES )

/// Why a FEC has no label; for the agent, too.
#define VORN_LDP_LABEL_UNASSIGNED_REASONS( X )                                                               \
   X( NotAssigned, 0 )                                                                                       \
   X( LabelOutOfResource, 1 )                                                                                \
   X( SystemOutOfResource, 2 )
VORN_ENUM( LdpLabelUnassignedReason, VORN_LDP_LABEL_UNASSIGNED_REASONS )

/// What one session tells the FEC's other sessions.
#define VORN_LDP_XSESSION_NOTIFICATION_TYPES( X )                                                            \
   X( ldpXsessionUnknown, 0 )                                                                                \
   X( ldpXsessionMapping, 1 )                                                                                \
   X( ldpXsessionRequest, 2 )                                                                                \
   X( ldpXsessionMappingLoopDetection, 3 )                                                                   \
   X( ldpXsessionRequestLoopDetection, 4 )
VORN_ENUM( LdpXsessionNotification_LdpXsessionNotificationType, VORN_LDP_XSESSION_NOTIFICATION_TYPES )

/// A next hop: an address, and the interface behind which it lies.
class VORN_API Via {
   VORN_VALUE( Via )
   /// Address of the next hop.
   VORN_CTOR_FIELD( 0x2, Lumo::IpGenAddr, hop );
   /// The interface behind which it lies.
   VORN_CTOR_FIELD( 0x3, Lumo::IntfId, intfId );
   /// `10.0.0.1-Ethernet1`.
   VORN_VALUE_DERIVED( 0x4, Vorn::String, stringValue );
   /// Equal values have equal hashes.
   VORN_VALUE_DERIVED( 0x5, U32, hash );

 public:
   Via() noexcept = default;
   Via( Lumo::IpGenAddr const & hop, Lumo::IntfId const & intfId ) noexcept
        : hop_( hop ), intfId_( intfId ) {}

   friend bool operator==( Via const &, Via const & ) noexcept = default;
   /// By hop, then by interface.
   friend bool operator<( Via const & a, Via const & b ) noexcept {
      if ( !( a.hop_ == b.hop_ ) ) return a.hop_ < b.hop_;
      return a.intfId_ < b.intfId_;
   }
};
VORN_TEXT( Via )

/// The next hops of a FEC that use one interface address.
class VORN_API IntfIpViaMapping : public Vorn::Entity {
   VORN_ENTITY( IntfIpViaMapping, Vorn::Entity )

 public:
   explicit IntfIpViaMapping( Lumo::IpGenAddr const & intfIp ) : intfIp_( intfIp ) {}

   VORN_KEY( 0x102, Lumo::IpGenAddr, intfIp );
   /// The next hops.
   VORN_VALUE_COLL( 0x103, bool, Via, via, Via, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( IntfIpViaMapping, intfIpViaMappingFactory )

/// The next hops of a FEC that lead to one peer.
class VORN_API LdpIdViaMapping : public Vorn::Entity {
   VORN_ENTITY( LdpIdViaMapping, Vorn::Entity )

 public:
   explicit LdpIdViaMapping( LdpIdentifier const & ldpIdentifier ) : ldpIdentifier_( ldpIdentifier ) {}

   VORN_KEY( 0x102, LdpIdentifier, ldpIdentifier );
   /// The next hops.
   VORN_VALUE_COLL( 0x103, bool, Via, via, Via, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpIdViaMapping, ldpIdViaMappingFactory )

/// One FEC. Whoever adds the first session to `sessionMember` also sets `fecMemberSessionSm`, and
/// `fecMemberSessionGr` for `grSessionMember`; nothing here writes one from the other, and a FEC without a
/// membership left is for the agent to delete.
class VORN_API LdpFecConfig : public Vorn::Entity {
   VORN_ENTITY( LdpFecConfig, Vorn::Entity )

 public:
   /// Makes the two children as well.
   explicit LdpFecConfig( Mpls::FwdEqvClass const & fwdEqvClass );

   VORN_KEY( 0x102, Mpls::FwdEqvClass, fwdEqvClass );
   /// Where the FEC leads.
   VORN_MUTABLE( 0x103, LdpFecDeliveryType, ldpFecDeliveryType, LdpFecDeliveryType, local ) = Unknown;
   /// Labels of the FEC. Made by the constructor, under the name labelSet.
   VORN_CHILD( 0x104, MplsLabelSet, mplsLabelSet, MplsLabelSet, local );
   /// Peers to which the FEC has been advertised. Made by the constructor.
   VORN_CHILD( 0x105, LdpIdentifierSet, advertisedTo, AdvertisedTo, replicated );
   /// Why the FEC exists.
   VORN_VALUE_COLL( 0x106, bool, LdpFecConfigMembership, membership, Membership, local );
   /// Sessions that want it.
   VORN_VALUE_COLL( 0x107, bool, LdpSessionId, sessionMember, SessionMember, replicated );
   /// Sessions that want it for a graceful restart.
   VORN_SET( 0x108, LdpSessionId, grSessionMember, GrSessionMember, replicated );
   /// When each session asked, in seconds.
   VORN_VALUE_COLL( 0x109, double, LdpSessionId, sessionRxReqTime, SessionRxReqTime, replicated );
   /// Peers that are next hops.
   VORN_VALUE_COLL( 0x10a, bool, LdpIdentifier, downstreamLsr, DownstreamLsr, local );
   /// Next hops.
   VORN_VALUE_COLL( 0x10b, bool, Via, via, Via, local );
   /// Next hops by interface address; like the next two a reverse map, for the writer's own look-ups.
   VORN_LOCAL_ENTITY_COLL( 0x10c, IntfIpViaMapping, Lumo::IpGenAddr, intfIpViaMapping );
   /// The peer behind each next hop.
   VORN_LOCAL_VALUE_COLL( 0x10d, LdpIdentifier, Via, viaLdpIdMapping );
   /// Next hops by peer.
   VORN_LOCAL_ENTITY_COLL( 0x10e, LdpIdViaMapping, LdpIdentifier, ldpIdViaMapping );
   /// Peers that have sent a mapping.
   VORN_VALUE_COLL( 0x10f, bool, LdpIdentifier, mappedLsr, MappedLsr, local );
   /// Whether a next hop has sent a mapping.
   VORN_MUTABLE( 0x110, bool, downstreamLsrMappingAvail, DownstreamLsrMappingAvail, local ) = false;
   /// What the filter says.
   VORN_MUTABLE( 0x111, Mpls::FecFilteredState, fecFilteredState, FecFilteredState,
                 replicated ) = Mpls::FecFilteredState( 0 );
   /// Place of this router on the FEC's path.
   VORN_MUTABLE( 0x112, LdpFecLspRole, ldpFecLspRole, LdpFecLspRole, local ) = lspTransit;
   /// Labels that forwarding has.
   VORN_SET( 0x113, Lumo::MplsLabel, programmedLabel, ProgrammedLabel, local );
   /// When labels of the FEC are distributed.
   VORN_MUTABLE( 0x114, LdpLabelDistCtrl, ldpLabelDistCtrl, LdpLabelDistCtrl, replicated ) = orderedCtrl;
   /// Which of the FEC's labels received are kept.
   VORN_MUTABLE( 0x115, LdpLabelRetention, ldpLabelRetention, LdpLabelRetention,
                 replicated ) = liberalRetention;
   /// Router at which the FEC ends.
   VORN_MUTABLE( 0x116, Lumo::IpAddr, routerId, RouterId, replicated );
   /// Whether hop counts and path vectors are used against loops (RFC 5036, 2.8).
   VORN_MUTABLE( 0x117, bool, ldpLoopDetection, LdpLoopDetection, replicated ) = false;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecConfig, ldpFecConfigFactory )

/// Tells one observer of a change in any FEC. The writer changes the FEC, then calls the update that names
/// what has changed: a count moves, and while it moves, and only then, the observers read here which FEC it
/// is, and of two updates also which peer or label. A count that reaches 255 goes on with 0. An update from
/// within an observer clears what the first one says.
class VORN_API LdpFecConfigNotifier : public Vorn::Entity {
   VORN_ENTITY( LdpFecConfigNotifier, Vorn::Entity )

 public:
   explicit LdpFecConfigNotifier( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The FEC, null between updates. Its mutator and those of the next two tell their observers; the updates
   /// store in silence, and the attribute log does not see what they store.
   VORN_CONTEXT_REFERENCE( 0x102, LdpFecConfig const, lastFecConfig, LastFecConfig );
   /// The FEC's value, or the default one.
   VORN_DERIVED( 0x103, Mpls::FwdEqvClass, lastFwdEqvClass );
   /// The label that an update of the label set is about; the null label between updates.
   VORN_CONTEXT( 0x104, Lumo::MplsLabel, lastMplsLabel, LastMplsLabel );
   /// The peer that an update of the next hops is about; the zero identifier between updates.
   VORN_CONTEXT( 0x105, LdpIdentifier, lastLdpId, LastLdpId );
   /// Moved by `updateDownstreamLsr`.
   VORN_COUNTER( 0x106, U8, downstreamLsrChangeCnt, DownstreamLsrChangeCnt, replicated ) = 0;
   /// Moved by `updateLoopDetection`.
   VORN_COUNTER( 0x107, U8, loopDetectionChangeCnt, LoopDetectionChangeCnt, replicated ) = 0;
   /// Moved by `updateDsLsrMappingAvail`.
   VORN_COUNTER( 0x108, U8, dsLsrMappingAvailChangeCnt, DsLsrMappingAvailChangeCnt, replicated ) = 0;
   /// Moved by `updateLabelDistCtrl`.
   VORN_COUNTER( 0x109, U8, labelDistCtrlChangeCnt, LabelDistCtrlChangeCnt, replicated ) = 0;
   /// Moved by `updateLabelRetention`.
   VORN_COUNTER( 0x10a, U8, labelRetentionChangeCnt, LabelRetentionChangeCnt, replicated ) = 0;
   /// Moved by `updateVia`.
   VORN_COUNTER( 0x10b, U8, viaChangeCnt, ViaChangeCnt, replicated ) = 0;
   /// Moved by `updateLspRole`.
   VORN_COUNTER( 0x10c, U8, lspRoleChangeCnt, LspRoleChangeCnt, replicated ) = 0;
   /// Moved by `updateMplsLabelSet`.
   VORN_COUNTER( 0x10d, U8, mplsLabelSetChangeCnt, MplsLabelSetChangeCnt, replicated ) = 0;
   /// Moved by `updateProgrammedLabelSet`.
   VORN_COUNTER( 0x10e, U8, programmedLabelSetChangeCnt, ProgrammedLabelSetChangeCnt, replicated ) = 0;
   VORN_FUNCTION( 0x10f, updateDownstreamLsr );
   VORN_FUNCTION( 0x110, updateLoopDetection );
   VORN_FUNCTION( 0x111, updateDsLsrMappingAvail );
   VORN_FUNCTION( 0x112, updateLabelDistCtrl );
   VORN_FUNCTION( 0x113, updateLabelRetention );
   VORN_FUNCTION( 0x114, updateVia );
   VORN_FUNCTION( 0x115, updateLspRole );
   VORN_FUNCTION( 0x116, updateMplsLabelSet );
   VORN_FUNCTION( 0x117, updateProgrammedLabelSet );

   /// What the updates take.
   using FecPtr = Vorn::Ptr< LdpFecConfig const >;
   /// `peer` has become a next hop of the FEC or is one no longer.
   void updateDownstreamLsr( FecPtr const & fec, LdpIdentifier const & peer );
   /// The FEC's `ldpLoopDetection` has changed.
   void updateLoopDetection( FecPtr const & fec );
   /// The FEC's `downstreamLsrMappingAvail` has changed.
   void updateDsLsrMappingAvail( FecPtr const & fec );
   /// The FEC's `ldpLabelDistCtrl` has changed.
   void updateLabelDistCtrl( FecPtr const & fec );
   /// The FEC's `ldpLabelRetention` has changed.
   void updateLabelRetention( FecPtr const & fec );
   /// A next hop has come to the FEC's `via` or left it.
   void updateVia( FecPtr const & fec );
   /// The FEC's `ldpFecLspRole` has changed.
   void updateLspRole( FecPtr const & fec );
   /// `label` has come to the FEC's label set or left it.
   void updateMplsLabelSet( FecPtr const & fec, Lumo::MplsLabel label );
   /// A label has come to the FEC's `programmedLabel` or left it.
   void updateProgrammedLabelSet( FecPtr const & fec );

 private:
   /// The attributes that the update under way clears when it returns.
   enum Context : U8 { noContext = 0, fecContext = 1, labelContext = 2, peerContext = 4 };
   class Update;
   using Count = U8 ( LdpFecConfigNotifier::* )( U8 );
   void update( FecPtr const & fec, Count count, Context further = noContext,
                LdpIdentifier const & peer = LdpIdentifier(), Lumo::MplsLabel label = Lumo::MplsLabel() );
   /// Whether that attribute, 0x102, 0x104 or 0x105, holds what it does for an update alone.
   bool inContext( U32 id ) const noexcept {
      return context_ & ( id == 0x102 ? fecContext : id == 0x104 ? labelContext : peerContext );
   }

   U8 context_ = noContext;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecConfigNotifier, ldpFecConfigNotifierFactory )

/// The FECs of a VRF.
class VORN_API LdpFecConfigColl : public Vorn::Entity {
   VORN_ENTITY( LdpFecConfigColl, Vorn::Entity )

 public:
   /// Makes the notifier as well.
   explicit LdpFecConfigColl( Vorn::Name const & name );

   VORN_NAME;
   /// The FECs, by their value.
   VORN_ENTITY_COLL( 0x102, LdpFecConfig, Mpls::FwdEqvClass, fecConfig, FecConfig, replicated );
   /// The notifier of all FECs. Made by the constructor, under the empty name.
   VORN_CHILD( 0x103, LdpFecConfigNotifier, fecConfigNotifier, FecConfigNotifier, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecConfigColl, ldpFecConfigCollFactory )

/// Carries a message from the session that received it to the FEC's other sessions.
class VORN_API LdpXsessionNotification : public Vorn::Entity {
   VORN_ENTITY( LdpXsessionNotification, Vorn::Entity )

 public:
   explicit LdpXsessionNotification( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

 public:
   /// The same by the name that it has here.
   using LdpXsessionNotificationType = LdpXsessionNotification_LdpXsessionNotificationType;
   using enum LdpXsessionNotification_LdpXsessionNotificationType;
   /// What the message was, and so which of the references below is set.
   VORN_MUTABLE( 0x102, LdpXsessionNotificationType, ldpXsessionNotificationType, LdpXsessionNotificationType,
                 local ) = ldpXsessionUnknown;
   /// The session that received the message.
   VORN_MUTABLE( 0x103, LdpSessionId, sourceSessionId, SourceSessionId, local );
   /// The Label Mapping, which keeps its packet alive; null where the message is a request.
   VORN_REFERENCE( 0x104, LdpLabelMappingMsgParser, ldpXsessionMapMsgParser, LdpXsessionMapMsgParser, local );
   /// The Label Request, which keeps its packet alive; null where the message is a mapping.
   VORN_REFERENCE( 0x105, LdpLabelRequestMsgParser, ldpXsessionReqMsgParser, LdpXsessionReqMsgParser, local );
   /// Hop count to pass on.
   VORN_MUTABLE( 0x106, U8, hopCount, HopCount, local ) = 0;
   /// The packet that holds the path vector to pass on.
   VORN_REFERENCE( 0x107, Lumo::Pkt, pathVectorTlvPkt, PathVectorTlvPkt, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpXsessionNotification, ldpXsessionNotificationFactory )

/// What the label state machines share about one FEC.
class VORN_API LdpFecStatus : public Vorn::Entity {
   VORN_ENTITY( LdpFecStatus, Vorn::Entity )

 public:
   /// Makes the event as well.
   explicit LdpFecStatus( Mpls::FwdEqvClass const & fwdEqvClass );

   VORN_KEY( 0x102, Mpls::FwdEqvClass, fwdEqvClass );
   /// Label requests from upstream.
   VORN_MUTABLE( 0x103, U32, upstreamLabelRequest, UpstreamLabelRequest, local ) = 0;
   /// Whether a hop count goes into messages about the FEC (RFC 5036, 2.8).
   VORN_MUTABLE( 0x104, bool, hopCountInclude, HopCountInclude, local ) = false;
   /// Whether a path vector does.
   VORN_MUTABLE( 0x105, bool, pathVectorInclude, PathVectorInclude, local ) = false;
   /// Hop count that mappings carry.
   VORN_MUTABLE( 0x106, U8, hopCountMappingMsg, HopCountMappingMsg, local ) = 0;
   /// Hop count learnt from mappings.
   VORN_MUTABLE( 0x107, U8, hopCountMappingLearnt, HopCountMappingLearnt, local ) = 0;
   /// Hop count that requests carry.
   VORN_MUTABLE( 0x108, U8, hopCountRequestMsg, HopCountRequestMsg, local ) = 0;
   /// Hop count learnt from requests.
   VORN_MUTABLE( 0x109, U8, hopCountRequestLearnt, HopCountRequestLearnt, local ) = 0;
   /// Version of the attributes, which each session acknowledges in its `attributeVersionAcked`.
   VORN_COUNTER( 0x10a, U32, attributeVersion, AttributeVersion, local ) = 0;
   /// The packet that holds the path vector to send.
   VORN_REFERENCE( 0x10b, Lumo::Pkt, pathVectorTlvPkt, PathVectorTlvPkt, local );
   /// When a cross-session event about a request was last raised, in seconds.
   VORN_MUTABLE( 0x10c, double, labelXsessionRequestSmNotiTime, LabelXsessionRequestSmNotiTime, local ) = 0.0;
   /// When a cross-session event about a mapping was last raised, in seconds.
   VORN_MUTABLE( 0x10d, double, labelXsessionMappingSmNotiTime, LabelXsessionMappingSmNotiTime, local ) = 0.0;
   /// The event. Made by the constructor, under the empty name.
   VORN_CHILD( 0x10e, LdpXsessionNotification, ldpXsessionNotification, LdpXsessionNotification, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecStatus, ldpFecStatusFactory )

/// Tells one observer of cross-session events of any FEC, in the way of `LdpFecConfigNotifier`.
class VORN_API LdpFecStatusNotifier : public Vorn::Entity {
   VORN_ENTITY( LdpFecStatusNotifier, Vorn::Entity )

 public:
   explicit LdpFecStatusNotifier( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The FEC, null between updates.
   VORN_REFERENCE( 0x102, LdpFecStatus const, lastFecStatus, LastFecStatus, local );
   /// The FEC's value, or the default one.
   VORN_DERIVED( 0x103, Mpls::FwdEqvClass, lastFwdEqvClass );
   /// Moved by `updateRequestSmNotiTime`; 255 goes on with 0.
   VORN_COUNTER( 0x104, U8, labelXsessionRequestSmNotiTimeChangeCnt, LabelXsessionRequestSmNotiTimeChangeCnt,
                 local ) = 0;
   /// Moved by `updateMappingSmNotiTime`; 255 goes on with 0.
   VORN_COUNTER( 0x105, U8, labelXsessionMappingSmNotiTimeChangeCnt, LabelXsessionMappingSmNotiTimeChangeCnt,
                 local ) = 0;
   VORN_FUNCTION( 0x106, updateRequestSmNotiTime );
   VORN_FUNCTION( 0x107, updateMappingSmNotiTime );

   /// What the updates take.
   using FecPtr = Vorn::Ptr< LdpFecStatus const >;
   /// The FEC's `labelXsessionRequestSmNotiTime` has changed.
   void updateRequestSmNotiTime( FecPtr const & fec );
   /// The FEC's `labelXsessionMappingSmNotiTime` has changed.
   void updateMappingSmNotiTime( FecPtr const & fec );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecStatusNotifier, ldpFecStatusNotifierFactory )

/// What is shared about the FECs of a VRF.
class VORN_API LdpFecStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpFecStatusColl, Vorn::Entity )

 public:
   /// Makes the notifier as well.
   explicit LdpFecStatusColl( Vorn::Name const & name );

   VORN_NAME;
   /// What is shared about each FEC, by its value.
   VORN_ENTITY_COLL( 0x102, LdpFecStatus, Mpls::FwdEqvClass, fecStatus, FecStatus, local );
   /// The notifier of all FECs. Made by the constructor, under the empty name.
   VORN_CHILD( 0x103, LdpFecStatusNotifier, fecStatusNotifier, FecStatusNotifier, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecStatusColl, ldpFecStatusCollFactory )

/// How one FEC is reached.
class VORN_API LdpFecNexthop : public Vorn::Entity {
   VORN_ENTITY( LdpFecNexthop, Vorn::Entity )

 public:
   /// The log knows it, and carries nothing of it at present.
   static constexpr bool vornOnLog = true;

   explicit LdpFecNexthop( Mpls::FwdEqvClass const & fwdEqvClass ) : fwdEqvClass_( fwdEqvClass ) {}

   VORN_KEY( 0x102, Mpls::FwdEqvClass, fwdEqvClass );
   /// The route that leads to it.
   VORN_MUTABLE( 0x103, Lumo::IpGenPrefix, hop, Hop, local );
   /// Where the FEC leads.
   VORN_MUTABLE( 0x104, LdpFecDeliveryType, ldpFecDeliveryType, LdpFecDeliveryType, local ) = Unknown;
   /// The next hops.
   VORN_SET( 0x105, Via, via, Via, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecNexthop, ldpFecNexthopFactory )

/// How the FECs of a VRF are reached.
class VORN_API LdpFecNexthopColl : public Vorn::Entity {
   VORN_ENTITY( LdpFecNexthopColl, Vorn::Entity )

 public:
   /// The log knows it, and carries nothing of it at present.
   static constexpr bool vornOnLog = true;

   explicit LdpFecNexthopColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The FECs, by their value.
   VORN_ENTITY_COLL( 0x102, LdpFecNexthop, Mpls::FwdEqvClass, fecNexthop, FecNexthop, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecNexthopColl, ldpFecNexthopCollFactory )

/// Counters of label messages.
class VORN_API LdpFecCounters : public Vorn::Entity {
   VORN_ENTITY( LdpFecCounters, Vorn::Entity )

 public:
   explicit LdpFecCounters( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// TLVs in received mappings, by type.
   VORN_COUNTER_COLL( 0x102, U64, LdpTlvType, labelMappingRxTlv, LabelMappingRxTlv, local );
   /// TLVs of unknown types in received mappings that were dropped.
   VORN_COUNTER( 0x103, U64, labelMappingUnknownTlvDrop, LabelMappingUnknownTlvDrop, local ) = 0;
   /// TLVs of unknown types in received mappings that were answered by a notification.
   VORN_COUNTER( 0x104, U64, labelMappingUnknownTlvNotify, LabelMappingUnknownTlvNotify, local ) = 0;
   /// Messages received, by type.
   VORN_COUNTER_COLL( 0x105, U64, LdpMsgType, ldpMsgRx, LdpMsgRx, local );
   /// Messages sent, by type.
   VORN_COUNTER_COLL( 0x106, U64, LdpMsgType, ldpMsgTx, LdpMsgTx, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecCounters, ldpFecCountersFactory )

} // namespace Ldp
