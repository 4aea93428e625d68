/// \file
/// Statistics of sessions: counters of PDUs and messages, and what the messages of each id were about, by
/// which a later message is related to the one that it answers.
#pragma once

#include "Ldp/LdpSession.h"
#include "Ldp/PwTypes.h"
#include "Mpls/FwdEqvClass.h"

namespace Ldp {

/// What a message was about.
class VORN_API LdpMsgIdFecMappingInfo {
   VORN_VALUE( LdpMsgIdFecMappingInfo )
   /// The FEC.
   VORN_CTOR_FIELD( 0x2, Mpls::FwdEqvClass, fwdEqvClass );
   /// Type of the message.
   VORN_CTOR_FIELD( 0x3, LdpMsgType, msgType ) = LdpNotification;
   /// Tells an entry from the default value that is read where there is none.
   VORN_CTOR_FIELD( 0x4, bool, valid ) = false;

 public:
   LdpMsgIdFecMappingInfo() noexcept = default;
   LdpMsgIdFecMappingInfo( Mpls::FwdEqvClass const & fwdEqvClass, LdpMsgType msgType, bool valid ) noexcept
        : fwdEqvClass_( fwdEqvClass ), msgType_( msgType ), valid_( valid ) {}

   friend bool operator==( LdpMsgIdFecMappingInfo const &,
                           LdpMsgIdFecMappingInfo const & ) noexcept = default;
};
VORN_TEXT( LdpMsgIdFecMappingInfo )

/// What a message about a pseudowire was about.
class VORN_API PwMsgIdFecMappingInfo {
   VORN_VALUE( PwMsgIdFecMappingInfo )
   /// The pseudowire FEC.
   VORN_CTOR_FIELD( 0x2, PwFwdEqvClass, fwdEqvClass );
   /// Type of the message.
   VORN_CTOR_FIELD( 0x3, LdpMsgType, msgType ) = LdpNotification;
   /// Tells an entry from the default value that is read where there is none.
   VORN_CTOR_FIELD( 0x4, bool, valid ) = false;

 public:
   PwMsgIdFecMappingInfo() noexcept = default;
   PwMsgIdFecMappingInfo( PwFwdEqvClass const & fwdEqvClass, LdpMsgType msgType, bool valid ) noexcept
        : fwdEqvClass_( fwdEqvClass ), msgType_( msgType ), valid_( valid ) {}

   friend bool operator==( PwMsgIdFecMappingInfo const &, PwMsgIdFecMappingInfo const & ) noexcept = default;
};
VORN_TEXT( PwMsgIdFecMappingInfo )

/// Counters and message ids of one session. What changes with every PDU is local, so that it costs a store.
class VORN_API LdpSessionStatistics : public Vorn::Entity {
   VORN_ENTITY( LdpSessionStatistics, Vorn::Entity )

 public:
   explicit LdpSessionStatistics( LdpSessionId const & ldpSessionId ) : ldpSessionId_( ldpSessionId ) {}

   VORN_KEY( 0x102, LdpSessionId, ldpSessionId );
   /// What the messages were about, by message id.
   VORN_LOCAL_VALUE_COLL( 0x103, LdpMsgIdFecMappingInfo, U32, ldpMsgIdFecMappingInfo );
   /// PDUs received.
   VORN_LOCAL_COUNTER( 0x104, U64, ldpPduRxCount ) = 0;
   /// PDUs sent.
   VORN_LOCAL_COUNTER( 0x105, U64, ldpPduTxCount ) = 0;
   /// PDUs received that were bad.
   VORN_LOCAL_COUNTER( 0x106, U64, ldpPduRxErrorCount ) = 0;
   /// What our messages about pseudowires were about, by message id.
   VORN_LOCAL_VALUE_COLL( 0x107, PwMsgIdFecMappingInfo, U32, pwLocalMsgIdInfo );
   /// What the peer's messages about pseudowires were about, by message id.
   VORN_LOCAL_VALUE_COLL( 0x108, PwMsgIdFecMappingInfo, U32, pwRemoteMsgIdInfo );
   /// Messages received, by type.
   VORN_COUNTER_COLL( 0x109, U64, LdpMsgType, ldpMsgRxCount, LdpMsgRxCount, replicated );
   /// Messages sent, by type.
   VORN_COUNTER_COLL( 0x10a, U64, LdpMsgType, ldpMsgTxCount, LdpMsgTxCount, replicated );
   /// Notifications received, by status code.
   VORN_COUNTER_COLL( 0x10b, U64, LdpStatusCode, ldpMsgNotificationRxCount, LdpMsgNotificationRxCount,
                      replicated );
   /// Notifications sent, by status code.
   VORN_COUNTER_COLL( 0x10c, U64, LdpStatusCode, ldpMsgNotificationTxCount, LdpMsgNotificationTxCount,
                      replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionStatistics, ldpSessionStatisticsFactory )

/// The statistics of the sessions of a VRF. They stand apart from the sessions' status.
class VORN_API LdpSessionStatisticsColl : public Vorn::Entity {
   VORN_ENTITY( LdpSessionStatisticsColl, Vorn::Entity )

 public:
   explicit LdpSessionStatisticsColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The statistics, by session.
   VORN_ENTITY_COLL( 0x102, LdpSessionStatistics, LdpSessionId, sessionStatistics, SessionStatistics,
                     replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionStatisticsColl, ldpSessionStatisticsCollFactory )

} // namespace Ldp
