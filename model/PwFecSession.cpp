// Pseudowire FECs on sessions: records, texts, and the maps that follow a session's id.
#include "Ldp/PwFecSession.h"

#include <algorithm>

namespace Ldp {

VORN_ENUM_RECORD( Ldp, PwFecSessionMember, VORN_PW_FEC_SESSION_MEMBERS )
VORN_ENUM_RECORD( Ldp, PwFecSessionStatusState, VORN_PW_FEC_SESSION_STATUS_STATES )
VORN_VALUE_RECORD( Ldp, PwFecSessionId )
VORN_RECORD( Ldp, PwFecSessionConfig )
VORN_RECORD( Ldp, PwFecSessionConfigColl )
VORN_RECORD( Ldp, LocalPwFecSessionStatus )
VORN_RECORD( Ldp, LocalPwFecSessionStatusColl )
VORN_RECORD( Ldp, RemotePwFecSessionStatus )
VORN_RECORD( Ldp, RemotePwFecSessionStatusColl )
VORN_RECORD( Ldp, PwFecSessionMsgPipeColl )

bool PwFecSessionId::isValid() const { return pwFwdEqvClass_.pwId().value() != 0; }

U32 PwFecSessionId::hash() const {
   U32 const fec = pwFwdEqvClass_.hash();
   U32 const session = ldpSessionId_.hash();
   Vorn::Hash hash;
   hash.mix< 4 >( &fec );
   hash.mix< 4 >( &session );
   return hash.result();
}

Vorn::String PwFecSessionId::stringValue() const {
   return ldpSessionId_.stringValue() + "_" + pwFwdEqvClass_.stringValue();
}

void PwFecSessionId::stringValueIs( Vorn::String const & text ) {
   auto it = text.begin();
   PwFecSessionId read;
   sequenceToValue( it, text.end(), &read );
   if ( it != text.end() ) Vorn::throwRangeException( "Invalid PwFecSessionId" );
   *this = read;
}

Vorn::String valueToStrep( PwFecSessionId const & value ) { return value.stringValue(); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      PwFecSessionId * value ) {
   auto const bar = std::find( it, end, '_' );
   auto at = it;
   LdpSessionId session;
   PwFwdEqvClass fec;
   try {
      sequenceToValue( at, bar, &session );
      if ( at != bar || bar == end ) Vorn::throwRangeException( "no FEC" );
      sequenceToValue( ++at, end, &fec );
   } catch ( Vorn::RangeException const & ) {
      Vorn::throwRangeException( "Invalid PwFecSessionId" );
   }
   *value = PwFecSessionId( fec, session );
   it = at;
}

VORN_TEXT_STREAM( PwFecSessionId )

PwFecSessionConfig::PwFecSessionConfig( PwFecSessionId const & pwFecSessionId, PwFecSessionMember initMember )
     : pwFecSessionId_( pwFecSessionId ), initMember_( initMember ) {
   handlePwFecSessionId();
   memberIs( initMember, true );
}

void PwFecSessionConfig::handlePwFecSessionId() const { VORN_ASSERT( pwFecSessionId().isValid() ); }

PwFwdEqvClass PwFecSessionConfig::pwFwdEqvClass() const { return pwFecSessionId_.pwFwdEqvClass(); }

PwFwdEqvClassInfo PwFecSessionConfig::fecInfo() const {
   PwFwdEqvClassInfo info;
   info.fwdEqvClassIs( pwFwdEqvClass() );
   info.paramsIs( fecParams_ );
   return info;
}

RemotePwFecSessionStatus::RemotePwFecSessionStatus( PwFecSessionId const & pwFecSessionId )
     : pwFecSessionId_( pwFecSessionId ) {
   mplsLabelSetIs( Vorn::Name(), Mpls::FwdEqvClass() );
   mplsReleaseLabelSetIs( Vorn::Name(), Mpls::FwdEqvClass() );
}

} // namespace Ldp
