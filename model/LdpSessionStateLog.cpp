// The log of session states: which change is entered, and how long it gets.
#include "Ldp/LdpSessionStateLog.h"

namespace Ldp {

VORN_ENUM_RECORD( Ldp, SessionState, VORN_LDP_SESSION_STATES )
VORN_VALUE_RECORD( Ldp, LdpSessionStateLogEntry )
VORN_TEXT_OF_RECORD( LdpSessionStateLogEntry )
VORN_RECORD( Ldp, LdpSessionStateLogEntryColl )

void LdpSessionStateLogEntryColl::addSessionStateLogEntry( LdpSessionStateLogEntry const & entry ) {
   if ( shouldAddSessionStateLogEntry( entry ) ) internalAddLogEntry_( entry );
}

bool LdpSessionStateLogEntryColl::shouldAddSessionStateLogEntry(
     LdpSessionStateLogEntry const & entry ) const {
   if ( sessionStateLogEntrys() == 0 ) return true;
   // Where nothing stands at that index, the comparison is with a default entry.
   LdpSessionStateLogEntry const last = sessionStateLogEntry( sessionStateLogEntry_.nextIndex() - 1 );
   return last.sessionState() != entry.sessionState() || last.code() != entry.code() ||
          !( last.reason() == entry.reason() );
}

void LdpSessionStateLogEntryColl::internalAddLogEntry_( LdpSessionStateLogEntry const & entry ) {
   VORN_ASSERT( sessionStateLogEntrys() <= maxSize() );
   Vorn::Hold const hold( *this ); // an observer of the removal may drop the log
   if ( sessionStateLogEntrys() == maxSize() ) sessionStateLogEntryDeq();
   sessionStateLogEntryEnq( entry );
}

} // namespace Ldp
