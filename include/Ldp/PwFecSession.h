/// \file
/// Pseudowire FEC sessions: for each pair of a pseudowire FEC and a session, what is to be signalled, what
/// this speaker has sent, and what the peer has sent (RFC 8077).
#pragma once

#include "Ldp/LdpCommon.h"
#include "Ldp/LdpLabelAlloc.h"
#include "Ldp/PwConfig.h"
#include "Ldp/PwTypes.h"

namespace Ldp {

/// A pseudowire FEC on a session. Its text is `10.0.0.1:0_pw100:pwTypeRaw:cbit1`: the session stands first,
/// unlike in an `LdpFecSessionId`. Who reads these texts depends on either order.
class VORN_API PwFecSessionId {
   VORN_VALUE( PwFecSessionId )
   /// The pseudowire FEC.
   VORN_CTOR_FIELD( 0x2, PwFwdEqvClass, pwFwdEqvClass );
   /// The session.
   VORN_CTOR_FIELD( 0x3, LdpSessionId, ldpSessionId );
   /// Name of the attribute that stands for the whole value.
   VORN_CONSTANT( 0x4, Vorn::String, defaultAttribute, "stringValue" );
   /// The text above, written and read. The reader throws RangeException for a text that is not of that form.
   VORN_VALUE_TEXT( 0x5, stringValue, stringValueIs );
   /// Whether there is a PW ID: 0 is none.
   VORN_VALUE_FUNCTION( 0x6, bool, isValid );
   /// Equal values have equal hashes.
   VORN_VALUE_FUNCTION( 0x7, U32, hash );

 public:
   PwFecSessionId() noexcept = default;
   PwFecSessionId( PwFwdEqvClass const & pwFwdEqvClass, LdpSessionId const & ldpSessionId ) noexcept
        : pwFwdEqvClass_( pwFwdEqvClass ), ldpSessionId_( ldpSessionId ) {}

   friend bool operator==( PwFecSessionId const &, PwFecSessionId const & ) noexcept = default;
   /// By FEC, then by session.
   friend bool operator<( PwFecSessionId const & a, PwFecSessionId const & b ) noexcept {
      if ( !( a.pwFwdEqvClass_ == b.pwFwdEqvClass_ ) ) return a.pwFwdEqvClass_ < b.pwFwdEqvClass_;
      return a.ldpSessionId_ < b.ldpSessionId_;
   }
};
VORN_TEXT( PwFecSessionId )

/// Who wants a pseudowire FEC session.
#define VORN_PW_FEC_SESSION_MEMBERS( X )                                                                     \
   X( pwFecMemberSessionSm, 0 )                                                                              \
   X( pwFecMemberStatic, 1 )
VORN_ENUM( PwFecSessionMember, VORN_PW_FEC_SESSION_MEMBERS )

/// Whether a direction is still at work.
#define VORN_PW_FEC_SESSION_STATUS_STATES( X )                                                               \
   X( pwFecSessionActive, 0 )                                                                                \
   X( pwFecSessionFinished, 1 )
VORN_ENUM( PwFecSessionStatusState, VORN_PW_FEC_SESSION_STATUS_STATES )

/// What is to be signalled about one pseudowire on one session. It begins with one member, the one that made
/// it; a config without a member left is for the agent to delete.
class VORN_API PwFecSessionConfig : public Vorn::Entity {
   VORN_ENTITY( PwFecSessionConfig, Vorn::Entity )
   VORN_CTOR_TYPES( PwFecSessionId, PwFecSessionMember )

 public:
   /// Enters `initMember` as the first member. Ends the process for an id that is not valid.
   PwFecSessionConfig( PwFecSessionId const & pwFecSessionId, PwFecSessionMember initMember );

   VORN_KEY( 0x102, PwFecSessionId, pwFecSessionId );
   /// The member that made the config.
   VORN_CTOR_ARG( 0x103, PwFecSessionMember, initMember );
   /// Interface parameters and group.
   VORN_MUTABLE( 0x104, PwFwdEqvClassParams, fecParams, FecParams, local );
   /// The FEC of `pwFecSessionId`.
   VORN_DERIVED( 0x105, PwFwdEqvClass, pwFwdEqvClass );
   /// That FEC with its parameters.
   VORN_DERIVED( 0x106, PwFwdEqvClassInfo, fecInfo );
   /// The label.
   VORN_MUTABLE( 0x107, Lumo::MplsLabel, label, Label, local );
   /// How status is signalled.
   VORN_MUTABLE( 0x108, PwStatusMethod, pwStatusMethod, PwStatusMethod, local ) = pwStatusMethodTlv;
   /// The PW status word (RFC 8077, 6.3.2).
   VORN_MUTABLE( 0x109, Pseudowire::PseudowireLdpStatusFlags, pwStatusFlags, PwStatusFlags, local );
   /// Why the label is withdrawn.
   VORN_MUTABLE( 0x10a, LdpStatusCode, labelWithdrawStatusCode, LabelWithdrawStatusCode, local ) = success;
   /// Whether a control word is preferred.
   VORN_MUTABLE( 0x10b, bool, preferControlWord, PreferControlWord, local ) = false;
   /// Who wants it.
   VORN_VALUE_COLL( 0x10c, bool, PwFecSessionMember, member, Member, local );
   VORN_FUNCTION( 0x10d, handlePwFecSessionId );
   /// Ends the process unless the id is valid; the constructor calls it.
   void handlePwFecSessionId() const;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( PwFecSessionConfig, pwFecSessionConfigFactory )

/// What is to be signalled in a VRF, in one direction.
class VORN_API PwFecSessionConfigColl : public Vorn::Entity {
   VORN_ENTITY( PwFecSessionConfigColl, Vorn::Entity )

 public:
   explicit PwFecSessionConfigColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What is to be signalled, by FEC session.
   VORN_ENTITY_COLL( 0x102, PwFecSessionConfig, PwFecSessionId, fecSessionConfig, FecSessionConfig, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( PwFecSessionConfigColl, pwFecSessionConfigCollFactory )

/// What this speaker has sent about one pseudowire on one session.
class VORN_API LocalPwFecSessionStatus : public Vorn::Entity {
   VORN_ENTITY( LocalPwFecSessionStatus, Vorn::Entity )

 public:
   explicit LocalPwFecSessionStatus( PwFecSessionId const & pwFecSessionId )
        : pwFecSessionId_( pwFecSessionId ) {}

   VORN_KEY( 0x102, PwFecSessionId, pwFecSessionId );
   /// State of the exchange about our label.
   VORN_MUTABLE( 0x103, LdpLocalLabelSessionState, labelSessionState, LabelSessionState, local );
   /// Whether a mapping is in force.
   VORN_MUTABLE( 0x104, bool, mappingActive, MappingActive, local ) = false;
   /// Whether this direction is still at work.
   VORN_MUTABLE( 0x105, PwFecSessionStatusState, fecSessionState, FecSessionState,
                 local ) = pwFecSessionActive;
   /// Id of the peer's last Label Request.
   VORN_MUTABLE( 0x106, U32, labelRequestMsgId, LabelRequestMsgId, local ) = 0;
   /// Id of the peer's Label Request that was answered last.
   VORN_MUTABLE( 0x107, U32, labelRequestMsgIdAcked, LabelRequestMsgIdAcked, local ) = 0;
   /// Id of the peer's last Label Release.
   VORN_MUTABLE( 0x108, U32, labelReleaseMsgId, LabelReleaseMsgId, local ) = 0;
   /// The label that it released.
   VORN_MUTABLE( 0x109, Lumo::MplsLabel, labelReleaseLabel, LabelReleaseLabel, local );
   /// The label that was mapped.
   VORN_MUTABLE( 0x10a, Lumo::MplsLabel, labelMappingSent, LabelMappingSent, local );
   /// A label whose withdraw has not been answered.
   VORN_MUTABLE( 0x10b, Lumo::MplsLabel, labelWithdrawOutstanding, LabelWithdrawOutstanding, local );
   /// Messages received, by type.
   VORN_COUNTER_COLL( 0x10c, U64, LdpMsgType, ldpMsgRx, LdpMsgRx, local );
   /// Messages sent, by type.
   VORN_COUNTER_COLL( 0x10d, U64, LdpMsgType, ldpMsgTx, LdpMsgTx, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LocalPwFecSessionStatus, localPwFecSessionStatusFactory )

/// What this speaker has sent in a VRF.
class VORN_API LocalPwFecSessionStatusColl : public Vorn::Entity {
   VORN_ENTITY( LocalPwFecSessionStatusColl, Vorn::Entity )

 public:
   explicit LocalPwFecSessionStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What this speaker has sent, by FEC session.
   VORN_ENTITY_COLL( 0x102, LocalPwFecSessionStatus, PwFecSessionId, fecSessionStatus, FecSessionStatus,
                     local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LocalPwFecSessionStatusColl, localPwFecSessionStatusCollFactory )

/// What the peer has sent about one pseudowire on one session. How it signals status is unknown until it has
/// spoken.
class VORN_API RemotePwFecSessionStatus : public Vorn::Entity {
   VORN_ENTITY( RemotePwFecSessionStatus, Vorn::Entity )

 public:
   /// Makes the two label sets as well.
   explicit RemotePwFecSessionStatus( PwFecSessionId const & pwFecSessionId );

   VORN_KEY( 0x102, PwFecSessionId, pwFecSessionId );
   /// Whether this direction is still at work.
   VORN_MUTABLE( 0x103, PwFecSessionStatusState, fecSessionState, FecSessionState,
                 local ) = pwFecSessionActive;
   /// Id of the peer's last Label Withdraw.
   VORN_MUTABLE( 0x104, U32, labelWithdrawMsgId, LabelWithdrawMsgId, local ) = 0;
   /// The label that it withdrew.
   VORN_MUTABLE( 0x105, Lumo::MplsLabel, labelWithdrawLabel, LabelWithdrawLabel, local );
   /// Id of our last Label Release.
   VORN_MUTABLE( 0x106, U32, labelReleaseMsgId, LabelReleaseMsgId, local ) = 0;
   /// State of the exchange about the peer's label.
   VORN_MUTABLE( 0x107, LdpPeerLabelSessionState, labelSessionState, LabelSessionState, local );
   /// The peer's labels. Made by the constructor, under the empty name and for no FEC, like the next.
   VORN_CHILD( 0x108, MplsLabelSet, mplsLabelSet, MplsLabelSet, local );
   /// The peer's labels that are to be released.
   VORN_CHILD( 0x109, MplsLabelSet, mplsReleaseLabelSet, MplsReleaseLabelSet, local );
   /// How the peer signals status.
   VORN_MUTABLE( 0x10a, PwStatusMethod, peerPwStatusMethod, PeerPwStatusMethod,
                 local ) = pwStatusMethodUndefined;
   /// The peer's PW status word (RFC 8077, 6.3.2).
   VORN_MUTABLE( 0x10b, Pseudowire::PseudowireLdpStatusFlags, pwStatusFlags, PwStatusFlags, local );
   /// Whether the last message was a Label Withdraw.
   VORN_MUTABLE( 0x10c, bool, lastMsgTypeWithdraw, LastMsgTypeWithdraw, local ) = false;
   /// Messages received, by type.
   VORN_COUNTER_COLL( 0x10d, U64, LdpMsgType, ldpMsgRx, LdpMsgRx, local );
   /// Messages sent, by type.
   VORN_COUNTER_COLL( 0x10e, U64, LdpMsgType, ldpMsgTx, LdpMsgTx, local );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( RemotePwFecSessionStatus, remotePwFecSessionStatusFactory )

/// What the peers have sent in a VRF.
class VORN_API RemotePwFecSessionStatusColl : public Vorn::Entity {
   VORN_ENTITY( RemotePwFecSessionStatusColl, Vorn::Entity )

 public:
   explicit RemotePwFecSessionStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What the peers have sent, by FEC session.
   VORN_ENTITY_COLL( 0x102, RemotePwFecSessionStatus, PwFecSessionId, fecSessionStatus, FecSessionStatus,
                     local );

   VORN_OBSERVERS;
};
VORN_FACTORY( RemotePwFecSessionStatusColl, remotePwFecSessionStatusCollFactory )

/// The message pipes of pseudowires, one for each direction. It refers to pipes that their readers own.
class VORN_API PwFecSessionMsgPipeColl : public Vorn::Entity {
   VORN_ENTITY( PwFecSessionMsgPipeColl, Vorn::Entity )

 public:
   explicit PwFecSessionMsgPipeColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The pipes of our direction, by FEC session.
   VORN_REFERENCE_COLL( 0x102, LdpMsgPipe, PwFecSessionId, localFecSessionMsgPipe, LocalFecSessionMsgPipe,
                        local );
   /// The pipes of the peers' direction, by FEC session.
   VORN_REFERENCE_COLL( 0x103, LdpMsgPipe, PwFecSessionId, remoteFecSessionMsgPipe, RemoteFecSessionMsgPipe,
                        local );

   VORN_OBSERVERS;
};
VORN_FACTORY( PwFecSessionMsgPipeColl, pwFecSessionMsgPipeCollFactory )

} // namespace Ldp
