/// \file
/// FEC sessions: for each pair of a FEC and a session, what this speaker has said to the peer about the FEC
/// and what the peer has said back (RFC 5036, A.1). Each object is reached by its FEC and session in one
/// collection, which owns it, and by its session in another, so that a session is torn down without a walk
/// over all FECs.
///
/// The two are kept in step by the writer: create in the owner first and add to the per-session view second;
/// remove from the view first and from the owner second.
#pragma once

#include "Ldp/LdpSession.h"
#include "Lumo/MplsLabel.h"
#include "Mpls/FwdEqvClass.h"

namespace Ldp {

/// A FEC on a session. Its text is `10.0.0.0/8_10.0.0.1:0`; it reads back for FECs that are a prefix.
class VORN_API LdpFecSessionId {
   VORN_VALUE( LdpFecSessionId )
   /// The FEC.
   VORN_FIELD( 0x2, Mpls::FwdEqvClass, fwdEqvClass );
   /// The session.
   VORN_FIELD( 0x3, LdpSessionId, ldpSessionId );
   /// Name of the attribute that stands for the whole value.
   VORN_CONSTANT( 0x4, Vorn::String, defaultAttribute, "stringValue" );
   /// The text above, written and read. The reader throws RangeException for a text that is not of that form.
   VORN_VALUE_TEXT( 0x5, stringValue, stringValueIs );
   /// Equal values have equal hashes.
   VORN_VALUE_DERIVED( 0x6, U32, hash );

 public:
   LdpFecSessionId() noexcept = default;
   LdpFecSessionId( Mpls::FwdEqvClass const & fwdEqvClass, LdpSessionId const & ldpSessionId ) noexcept
        : fwdEqvClass_( fwdEqvClass ), ldpSessionId_( ldpSessionId ) {}

   friend bool operator==( LdpFecSessionId const &, LdpFecSessionId const & ) noexcept = default;
   /// By FEC, then by session.
   friend bool operator<( LdpFecSessionId const & a, LdpFecSessionId const & b ) noexcept {
      if ( !( a.fwdEqvClass_ == b.fwdEqvClass_ ) ) return a.fwdEqvClass_ < b.fwdEqvClass_;
      return a.ldpSessionId_ < b.ldpSessionId_;
   }
};
VORN_TEXT( LdpFecSessionId )

/// What this speaker has done on a session about a FEC, a bit each. The low bits are the protocol's state,
/// the top bit says whether the session takes part at all.
class VORN_API LdpLocalLabelSessionState {
   VORN_VALUE( LdpLocalLabelSessionState )
   /// The whole word.
   VORN_FIELD( 0x2, U32, value ) = 0;
   /// Bit numbers of the flags below.
   VORN_CONSTANT( 0x3, U32, bitPeerReqOutstandingOffset, 0 );
   VORN_CONSTANT( 0x4, U32, bitPeerReleaseOutstandingOffset, 1 );
   VORN_CONSTANT( 0x5, U32, bitLocalMappingSentOffset, 2 );
   VORN_CONSTANT( 0x6, U32, bitPeerActiveReleaseOffset, 3 );
   VORN_CONSTANT( 0x7, U32, bitAttributeChanged, 4 );
   VORN_CONSTANT( 0x8, U32, bitLocalLabelSessionMembership, 31 );
   /// A Label Request of the peer waits for its answer.
   VORN_BIT( 0x9, bitPeerReqOutstandingOffset(), peerReqMsgOutstanding );
   /// The peer's release of a withdrawn label is awaited.
   VORN_BIT( 0xa, bitPeerReleaseOutstandingOffset(), peerReleaseOutstanding );
   /// A mapping has been sent.
   VORN_BIT( 0xb, bitLocalMappingSentOffset(), localMappingSent );
   /// The peer has at some time released without being asked to; nothing here clears it.
   VORN_BIT( 0xc, bitPeerActiveReleaseOffset(), peerEverSentActiveRelease );
   /// Attributes have changed since the last mapping.
   VORN_BIT( 0xd, bitAttributeChanged(), localAttributeChanged );
   /// The session takes part for this FEC.
   VORN_BIT( 0xe, bitLocalLabelSessionMembership(), localLabelSessionMembership );

 public:
   constexpr LdpLocalLabelSessionState() noexcept = default;
   constexpr explicit LdpLocalLabelSessionState( U32 value ) noexcept : value_( value ) {}

   friend constexpr bool operator==( LdpLocalLabelSessionState,
                                     LdpLocalLabelSessionState ) noexcept = default;
};
VORN_TEXT( LdpLocalLabelSessionState )

/// What stands between this speaker and the peer's labels, a bit each, divided in the same way.
class VORN_API LdpPeerLabelSessionState {
   VORN_VALUE( LdpPeerLabelSessionState )
   /// The whole word.
   VORN_FIELD( 0x2, U32, value ) = 0;
   /// Bit numbers of the flags below.
   VORN_CONSTANT( 0x3, U32, bitReqMsgOutstandingOffset, 0 );
   VORN_CONSTANT( 0x4, U32, bitRelMsgSentOffset, 1 );
   VORN_CONSTANT( 0x5, U32, bitPeerMappingCachedOffset, 2 );
   VORN_CONSTANT( 0x6, U32, bitPeerWithdrawRcvdOffset, 3 );
   VORN_CONSTANT( 0x7, U32, bitRelMsgOutstandingOffset, 4 );
   VORN_CONSTANT( 0x8, U32, bitPeerNoLabelResource, 5 );
   VORN_CONSTANT( 0x9, U32, bitPeerLabelSessionMembership, 31 );
   /// A Label Request of ours waits for its answer.
   VORN_BIT( 0xa, bitReqMsgOutstandingOffset(), localReqMsgOutstanding );
   /// We have sent a release.
   VORN_BIT( 0xb, bitRelMsgSentOffset(), localRelMsgSent );
   /// A mapping of the peer is kept.
   VORN_BIT( 0xc, bitPeerMappingCachedOffset(), peerLabelMappingCached );
   /// A withdraw of the peer was received.
   VORN_BIT( 0xd, bitPeerWithdrawRcvdOffset(), peerLabelWithdrawMsgRcvd );
   /// A release to the peer is still to be sent.
   VORN_BIT( 0xe, bitRelMsgOutstandingOffset(), peerLabelReleaseMsgOutstanding );
   /// The peer has no label resources, it said.
   VORN_BIT( 0xf, bitPeerNoLabelResource(), peerNoLabelResource );
   /// The session takes part for this FEC.
   VORN_BIT( 0x10, bitPeerLabelSessionMembership(), peerLabelSessionMembership );

 public:
   constexpr LdpPeerLabelSessionState() noexcept = default;
   constexpr explicit LdpPeerLabelSessionState( U32 value ) noexcept : value_( value ) {}

   friend constexpr bool operator==( LdpPeerLabelSessionState, LdpPeerLabelSessionState ) noexcept = default;
};
VORN_TEXT( LdpPeerLabelSessionState )

/// A label towards the peer.
#define VORN_LDP_LOCAL_LABEL_STATES( X )                                                                     \
   X( noneSent, 0 )                                                                                          \
   X( mappingSent, 1 )                                                                                       \
   X( withdrawSent, 2 )
VORN_ENUM( LdpLocalLabelState, VORN_LDP_LOCAL_LABEL_STATES )

/// A label from the peer.
#define VORN_LDP_PEER_LABEL_STATES( X )                                                                      \
   X( noneRcvd, 0 )                                                                                          \
   X( mappingRcvd, 1 )                                                                                       \
   X( withdrawRcvd, 2 )                                                                                      \
   X( releaseGen, 3 )
VORN_ENUM( LdpPeerLabelState, VORN_LDP_PEER_LABEL_STATES )

/// What has been said about one FEC on one session. An attribute that ends in `Acked` pairs with the one of
/// the same name here or in `LdpFecStatus`: unequal values mean work to do.
class VORN_API LdpFecSessionStatus : public Vorn::Entity {
   VORN_ENTITY( LdpFecSessionStatus, Vorn::Entity )

 public:
   explicit LdpFecSessionStatus( LdpFecSessionId const & ldpFecSessionId )
        : ldpFecSessionId_( ldpFecSessionId ) {}

   VORN_KEY( 0x102, LdpFecSessionId, ldpFecSessionId );
   /// Whether the peer is the next hop.
   VORN_MUTABLE( 0x103, bool, isNexthopLsr, IsNexthopLsr, local ) = false;
   /// Id of the peer's last Label Request.
   VORN_MUTABLE( 0x104, U32, peerLabelRequestMsgId, PeerLabelRequestMsgId, local ) = 0;
   /// Id of the peer's Label Request that was answered last.
   VORN_MUTABLE( 0x105, U32, peerLabelRequestMsgIdAcked, PeerLabelRequestMsgIdAcked, local ) = 0;
   /// How often the peer said that it has no label resources.
   VORN_MUTABLE( 0x106, U32, peerNoLabelResourceCount, PeerNoLabelResourceCount, local ) = 0;
   /// State of each of our labels.
   VORN_VALUE_COLL( 0x107, LdpLocalLabelState, Lumo::MplsLabel, localLabelState, LocalLabelState, local );
   /// State of each of the peer's labels.
   VORN_VALUE_COLL( 0x108, LdpPeerLabelState, Lumo::MplsLabel, peerLabelState, PeerLabelState, local );
   /// State of the exchange about our labels.
   VORN_MUTABLE( 0x109, LdpLocalLabelSessionState, localLabelSessionState, LocalLabelSessionState, local );
   /// State of the exchange about the peer's labels.
   VORN_MUTABLE( 0x10a, LdpPeerLabelSessionState, peerLabelSessionState, PeerLabelSessionState, local );
   /// Id of our last Label Request.
   VORN_MUTABLE( 0x10b, U32, localLabelRequestMsgId, LocalLabelRequestMsgId, local ) = 0;
   /// Id of our Label Request that was answered last.
   VORN_MUTABLE( 0x10c, U32, localLabelRequestMsgIdAcked, LocalLabelRequestMsgIdAcked, local ) = 0;
   /// Id of our last Label Release.
   VORN_MUTABLE( 0x10d, U32, localLabelReleaseMsgId, LocalLabelReleaseMsgId, local ) = 0;
   /// Whether that release was sent without a withdraw before it.
   VORN_MUTABLE( 0x10e, bool, localLabelActivelyReleased, LocalLabelActivelyReleased, local ) = false;
   /// Time of the cross-session event about a mapping that was handled last, in seconds.
   VORN_MUTABLE( 0x10f, double, labelXsessionMappingSmNotiTimeAcked, LabelXsessionMappingSmNotiTimeAcked,
                 local ) = 0.0;
   /// Time of the cross-session event about a request that was handled last, in seconds.
   VORN_MUTABLE( 0x110, double, labelXsessionRequestSmNotiTimeAcked, LabelXsessionRequestSmNotiTimeAcked,
                 local ) = 0.0;
   /// Ids of Label Requests that are under way.
   VORN_VALUE_COLL( 0x111, bool, U32, msgIdReqMsg, MsgIdReqMsg, local );
   /// When each label was withdrawn, in seconds.
   VORN_VALUE_COLL( 0x112, double, Lumo::MplsLabel, withdrawLabel, WithdrawLabel, local );
   /// Whether the peer was told that there is no route.
   VORN_MUTABLE( 0x113, bool, flagNoRouteNotification, FlagNoRouteNotification, local ) = false;
   /// Version of the attributes that the last mapping carried.
   VORN_MUTABLE( 0x114, U32, attributeVersionAcked, AttributeVersionAcked, local ) = 0;
   /// Messages received, by type.
   VORN_COUNTER_COLL( 0x115, U64, LdpMsgType, ldpMsgRx, LdpMsgRx, local );
   /// Messages sent, by type.
   VORN_COUNTER_COLL( 0x116, U64, LdpMsgType, ldpMsgTx, LdpMsgTx, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecSessionStatus, ldpFecSessionStatusFactory )

/// The FECs of one session. It refers to objects that `LdpFecSessionStatusColl` owns; one that was deleted
/// there stays usable here until it is removed here too.
class VORN_API LdpFecSessionStatusBySession : public Vorn::Entity {
   VORN_ENTITY( LdpFecSessionStatusBySession, Vorn::Entity )

 public:
   explicit LdpFecSessionStatusBySession( LdpSessionId const & ldpSessionId )
        : ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x102, LdpSessionId, ldpSessionId );
   /// The FEC sessions, by their identity.
   VORN_REFERENCE_COLL( 0x103, LdpFecSessionStatus, LdpFecSessionId, fecSessionStatus, FecSessionStatus,
                        local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecSessionStatusBySession, ldpFecSessionStatusBySessionFactory )

/// The FEC sessions of a VRF, and the views of them by session.
class VORN_API LdpFecSessionStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpFecSessionStatusColl, Vorn::Entity )

 public:
   explicit LdpFecSessionStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The views by session.
   VORN_ENTITY_COLL( 0x102, LdpFecSessionStatusBySession, LdpSessionId, fecSessionStatusBySessionColl,
                     FecSessionStatusBySessionColl, local );
   /// The FEC sessions, by their identity.
   VORN_ENTITY_COLL( 0x103, LdpFecSessionStatus, LdpFecSessionId, fecSessionStatus, FecSessionStatus, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecSessionStatusColl, ldpFecSessionStatusCollFactory )

/// Tells one observer of a change in any FEC session: the writer stores the id, then moves the count. The id
/// stays in place behind that.
class VORN_API LdpFecSessionNotifier : public Vorn::Entity {
   VORN_ENTITY( LdpFecSessionNotifier, Vorn::Entity )

 public:
   explicit LdpFecSessionNotifier( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The FEC session that changed last.
   VORN_MUTABLE( 0x102, LdpFecSessionId, ldpFecSessionId, LdpFecSessionId, local );
   /// Moves with each change; 255 goes on with 0.
   VORN_COUNTER( 0x103, U8, changeCnt, ChangeCnt, local ) = 0;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecSessionNotifier, ldpFecSessionNotifierFactory )

} // namespace Ldp
