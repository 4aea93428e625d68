/// \file
/// Message pipes: the hand-over of one received message from the code that read it to the state machine that
/// works on it. A pipe holds at most one message. The writer puts it in, the count moves, and the observer
/// takes it out within the writer's call; whoever writes a second message before the first is taken has made
/// a mistake, and the process ends.
#pragma once

#include "Ldp/LdpAdj.h"
#include "Ldp/LdpFecSession.h"
#include "Lumo/Pkt.h"

namespace Ldp {

/// One received message, not parsed: the packet and where the message begins in it, as the parsers want it.
class VORN_API LdpMsg : public Vorn::PtrInterface {
   VORN_REFLECTED_OBJECT( LdpMsg, void )

 public:
   LdpMsg( LdpIdentifier const & ldpIdentifier, Vorn::Ptr< Lumo::Pkt > const & pkt, U16 offset )
        : ldpIdentifier_( ldpIdentifier ), pkt_( pkt ), offset_( offset ) {}
   ~LdpMsg() override;

   /// The sender.
   LdpIdentifier const & ldpIdentifier() const noexcept { return ldpIdentifier_; }
   /// Source address of the packet.
   Lumo::IpAddr const & srcIpAddr() const noexcept { return srcIpAddr_; }
   void srcIpAddrIs( Lumo::IpAddr const & srcIpAddr ) noexcept { srcIpAddr_ = srcIpAddr; }
   /// The packet, which the message keeps alive.
   Vorn::Ptr< Lumo::Pkt > const & pkt() const noexcept { return pkt_; }
   /// Where the message header begins, in octets from the packet's front.
   U16 offset() const noexcept { return offset_; }
   /// For whoever orders messages.
   U8 priority() const noexcept { return priority_; }
   void priorityIs( U8 priority ) noexcept { priority_ = priority; }

 private:
   LdpIdentifier ldpIdentifier_;
   Lumo::IpAddr srcIpAddr_;
   Vorn::Ptr< Lumo::Pkt > pkt_;
   U16 offset_;
   U8 priority_ = 0;
};
/// A message that begins at `offset` of `pkt`.
VORN_API Vorn::Ptr< LdpMsg > ldpMsgFactory( LdpIdentifier const & ldpIdentifier,
                                            Vorn::Ptr< Lumo::Pkt > const & pkt, U16 offset );

/// A pipe for one message. It has no state beside the slot and a running count.
class VORN_API LdpMsgPipe : public Vorn::Entity {
   VORN_ENTITY( LdpMsgPipe, Vorn::Entity )

 public:
   explicit LdpMsgPipe( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Messages put in so far, with wrap. A reader observes it and takes the message when it moves.
   VORN_COUNTER( 0x102, U32, readableCount, ReadableCount, local ) = 0;
   /// Takes the message out; null from an empty pipe. It is const and empties the slot all the same, it tells
   /// nobody, and the count stays.
   VORN_READ_OPERATION( 0x103, Vorn::Ptr< LdpMsg >, rxMsg );
   /// Puts a message in and moves the count. The slot must be empty.
   VORN_WRITE_ONLY( 0x104, Vorn::Ptr< LdpMsg >, txMsg );
   /// The slot.
   VORN_SLOT( 0x105, Vorn::Ptr< LdpMsg >, msgHolder );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpMsgPipe, ldpMsgPipeFactory )

/// The pipe of a session's label messages, with the FEC session that the present one is for.
class VORN_API LdpFecSessionMsgPipe : public LdpMsgPipe {
   VORN_ENTITY( LdpFecSessionMsgPipe, LdpMsgPipe )

 public:
   explicit LdpFecSessionMsgPipe( Vorn::Name const & name ) : LdpMsgPipe( name ) {}

   /// The FEC session that the message in the pipe is for.
   VORN_MUTABLE( 0x182, LdpFecSessionId, ldpFecSessionId, LdpFecSessionId, local );

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpFecSessionMsgPipe, ldpFecSessionMsgPipeFactory )

/// The pipe for the messages of one session that concern local labels of P2MP FECs.
class VORN_API LdpP2mpSessionLocalLabelMsgPipe : public LdpMsgPipe {
   VORN_ENTITY( LdpP2mpSessionLocalLabelMsgPipe, LdpMsgPipe )

 public:
   explicit LdpP2mpSessionLocalLabelMsgPipe( LdpSessionId const & ldpSessionId )
        : LdpMsgPipe( Vorn::Name() ), ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x182, LdpSessionId, ldpSessionId );
   /// The FEC session that the message in the pipe is for.
   VORN_MUTABLE( 0x183, LdpFecSessionId, p2mpFecSessionId, P2mpFecSessionId, local );

   VORN_NEXT_LINK;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpP2mpSessionLocalLabelMsgPipe, ldpP2mpSessionLocalLabelMsgPipeFactory )

/// The same for the peer's labels.
class VORN_API LdpP2mpSessionRemoteLabelMsgPipe : public LdpMsgPipe {
   VORN_ENTITY( LdpP2mpSessionRemoteLabelMsgPipe, LdpMsgPipe )

 public:
   explicit LdpP2mpSessionRemoteLabelMsgPipe( LdpSessionId const & ldpSessionId )
        : LdpMsgPipe( Vorn::Name() ), ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x182, LdpSessionId, ldpSessionId );
   /// The FEC session that the message in the pipe is for.
   VORN_MUTABLE( 0x183, LdpFecSessionId, p2mpFecSessionId, P2mpFecSessionId, local );

   VORN_NEXT_LINK;

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpP2mpSessionRemoteLabelMsgPipe, ldpP2mpSessionRemoteLabelMsgPipeFactory )

/// Pipes by the target that they serve. Like the next four it refers to pipes that their readers own.
class VORN_API LdpTargetMsgPipeCollection : public Vorn::Entity {
   VORN_ENTITY( LdpTargetMsgPipeCollection, Vorn::Entity )

 public:
   explicit LdpTargetMsgPipeCollection( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The pipes, by target address.
   VORN_REFERENCE_COLL( 0x102, LdpMsgPipe, Lumo::IpAddr, msgPipe, MsgPipe, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpTargetMsgPipeCollection, ldpTargetMsgPipeCollectionFactory )
/// Pipes by interface.
class VORN_API LdpLinkMsgPipeCollection : public Vorn::Entity {
   VORN_ENTITY( LdpLinkMsgPipeCollection, Vorn::Entity )

 public:
   explicit LdpLinkMsgPipeCollection( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The pipes, by interface.
   VORN_REFERENCE_COLL( 0x102, LdpMsgPipe, Lumo::IntfId, msgPipe, MsgPipe, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpLinkMsgPipeCollection, ldpLinkMsgPipeCollectionFactory )
/// Pipes by adjacency.
class VORN_API LdpAdjMsgPipeCollection : public Vorn::Entity {
   VORN_ENTITY( LdpAdjMsgPipeCollection, Vorn::Entity )

 public:
   explicit LdpAdjMsgPipeCollection( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The pipes, by adjacency.
   VORN_REFERENCE_COLL( 0x102, LdpMsgPipe, LdpAdjId, msgPipe, MsgPipe, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpAdjMsgPipeCollection, ldpAdjMsgPipeCollectionFactory )
/// Pipes by session.
class VORN_API LdpSessionMsgPipeColl : public Vorn::Entity {
   VORN_ENTITY( LdpSessionMsgPipeColl, Vorn::Entity )

 public:
   explicit LdpSessionMsgPipeColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The pipes, by session.
   VORN_REFERENCE_COLL( 0x102, LdpMsgPipe, LdpSessionId, msgPipe, MsgPipe, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionMsgPipeColl, ldpSessionMsgPipeCollFactory )
/// Pipes for label messages, by session.
class VORN_API LdpFecSessionMsgPipeColl : public Vorn::Entity {
   VORN_ENTITY( LdpFecSessionMsgPipeColl, Vorn::Entity )

 public:
   explicit LdpFecSessionMsgPipeColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The pipes, by session.
   VORN_REFERENCE_COLL( 0x102, LdpFecSessionMsgPipe, LdpSessionId, msgPipe, MsgPipe, local );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecSessionMsgPipeColl, ldpFecSessionMsgPipeCollFactory )

/// The P2MP pipes of all sessions. A collection of this kind owns its pipes, and is itself a pipe.
class VORN_API LdpP2mpSessionLocalLabelMsgPipeColl : public LdpMsgPipe {
   VORN_ENTITY( LdpP2mpSessionLocalLabelMsgPipeColl, LdpMsgPipe )

 public:
   explicit LdpP2mpSessionLocalLabelMsgPipeColl( Vorn::Name const & name ) : LdpMsgPipe( name ) {}

   /// The pipes, by session.
   VORN_ENTITY_COLL( 0x182, LdpP2mpSessionLocalLabelMsgPipe, LdpSessionId, p2mpFecSessionLocalLabelMsgPipe,
                     P2mpFecSessionLocalLabelMsgPipe, local );

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpP2mpSessionLocalLabelMsgPipeColl, ldpP2mpSessionLocalLabelMsgPipeCollFactory )
/// The same for the peers' labels.
class VORN_API LdpP2mpSessionRemoteLabelMsgPipeColl : public LdpMsgPipe {
   VORN_ENTITY( LdpP2mpSessionRemoteLabelMsgPipeColl, LdpMsgPipe )

 public:
   explicit LdpP2mpSessionRemoteLabelMsgPipeColl( Vorn::Name const & name ) : LdpMsgPipe( name ) {}

   /// The pipes, by session.
   VORN_ENTITY_COLL( 0x182, LdpP2mpSessionRemoteLabelMsgPipe, LdpSessionId, p2mpFecSessionRemoteLabelMsgPipe,
                     P2mpFecSessionRemoteLabelMsgPipe, local );

   VORN_BASE_OBSERVERS;
};
VORN_FACTORY( LdpP2mpSessionRemoteLabelMsgPipeColl, ldpP2mpSessionRemoteLabelMsgPipeCollFactory )

} // namespace Ldp
