/// \file
/// The history of a session's states: what happened to a session after the live status has moved on.
#pragma once

#include "Ldp/LdpEnums.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// States of a session: those of RFC 5036, 2.5.4, and expired. 0 is for a state that was never set.
#define VORN_LDP_SESSION_STATES( X )                                                                         \
   X( stateUnknown, 0 )                                                                                      \
   X( stateNonExist, 1 )                                                                                     \
   X( stateInitialized, 2 )                                                                                  \
   X( stateOpenSent, 3 )                                                                                     \
   X( stateOpenRecv, 4 )                                                                                     \
   X( stateOperational, 5 )                                                                                  \
   X( stateExpired, 6 )
VORN_ENUM( SessionState, VORN_LDP_SESSION_STATES )

/// One change of a session's state.
class VORN_API LdpSessionStateLogEntry {
   VORN_VALUE( LdpSessionStateLogEntry )
   /// When the state was entered, in seconds. The caller says so: the log reads no clock.
   VORN_CTOR_FIELD( 0x2, double, timeStamp ) = 0.0;
   /// The state.
   VORN_CTOR_FIELD( 0x3, SessionState, sessionState ) = stateUnknown;
   /// The status code that caused it.
   VORN_CTOR_FIELD( 0x4, LdpStatusCode, code ) = success;
   /// The reason, for a person.
   VORN_CTOR_FIELD( 0x5, Vorn::String, reason );

 public:
   LdpSessionStateLogEntry() noexcept = default;
   LdpSessionStateLogEntry( double timeStamp, SessionState sessionState, LdpStatusCode code,
                            Vorn::String const & reason ) noexcept
        : timeStamp_( timeStamp ), sessionState_( sessionState ), code_( code ), reason_( reason ) {}

   friend bool operator==( LdpSessionStateLogEntry const &,
                           LdpSessionStateLogEntry const & ) noexcept = default;
};
VORN_TEXT( LdpSessionStateLogEntry )

/// The last ten changes of one session's state, newest at the tail, none a repeat of the one before it: a
/// session that fails again and again for one reason does not push out what came before.
///
/// Indices rise for ever: a full log that has seen 25 entries holds 15 to 24. An entry that comes in past
/// `addSessionStateLogEntry`, by the queue's own operations or from a log, is not counted against the size:
/// with more than ten, the next addition asserts.
class VORN_API LdpSessionStateLogEntryColl : public Vorn::Entity {
   VORN_ENTITY( LdpSessionStateLogEntryColl, Vorn::Entity )

 public:
   explicit LdpSessionStateLogEntryColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Most entries that the log keeps.
   VORN_CONSTANT( 0x102, U32, maxSize, 10 );
   VORN_FUNCTION( 0x103, internalAddLogEntry_ );
   VORN_FUNCTION( 0x104, shouldAddSessionStateLogEntry );
   VORN_FUNCTION( 0x105, addSessionStateLogEntry );
   /// The entries, from the oldest to the newest.
   VORN_QUEUE( 0x106, LdpSessionStateLogEntry, sessionStateLogEntry, SessionStateLogEntry, replicated );

 public:
   /// Adds the entry unless it repeats the newest one.
   void addSessionStateLogEntry( LdpSessionStateLogEntry const & entry );
   /// Whether the entry differs from the newest one in more than its time.
   bool shouldAddSessionStateLogEntry( LdpSessionStateLogEntry const & entry ) const;
   /// Adds the entry in any case, and drops the oldest one if the log is full. A log with more than `maxSize`
   /// entries asserts.
   void internalAddLogEntry_( LdpSessionStateLogEntry const & entry );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpSessionStateLogEntryColl, ldpSessionStateLogEntryCollFactory )

} // namespace Ldp
