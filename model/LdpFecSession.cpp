// FECs on sessions: records, and the text of their ids.
#include "Ldp/LdpFecSession.h"

#include <algorithm>

namespace Ldp {

VORN_ENUM_RECORD( Ldp, LdpLocalLabelState, VORN_LDP_LOCAL_LABEL_STATES )
VORN_ENUM_RECORD( Ldp, LdpPeerLabelState, VORN_LDP_PEER_LABEL_STATES )
VORN_VALUE_RECORD( Ldp, LdpFecSessionId )
VORN_VALUE_RECORD( Ldp, LdpLocalLabelSessionState )
VORN_VALUE_RECORD( Ldp, LdpPeerLabelSessionState )
VORN_RECORD( Ldp, LdpFecSessionStatus )
VORN_RECORD( Ldp, LdpFecSessionStatusBySession )
VORN_RECORD( Ldp, LdpFecSessionStatusColl )
VORN_RECORD( Ldp, LdpFecSessionNotifier )

U32 LdpFecSessionId::hash() const { return fwdEqvClass_.hash() + ldpSessionId_.hash(); }

Vorn::String LdpFecSessionId::stringValue() const {
   return fwdEqvClass_.stringValue() + "_" + ldpSessionId_.stringValue();
}

void LdpFecSessionId::stringValueIs( Vorn::String const & text ) {
   auto it = text.begin();
   LdpFecSessionId read;
   sequenceToValue( it, text.end(), &read );
   if ( it != text.end() ) Vorn::throwRangeException( "Invalid LdpFecSessionId" );
   *this = read;
}

Vorn::String valueToStrep( LdpFecSessionId const & value ) { return value.stringValue(); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      LdpFecSessionId * value ) {
   auto const bar = std::find( it, end, '_' );
   auto at = it;
   Lumo::IpGenPrefix prefix;
   LdpIdentifier peer;
   try {
      sequenceToValue( at, bar, &prefix );
      if ( at != bar || bar == end ) Vorn::throwRangeException( "no session" );
      sequenceToValue( ++at, end, &peer );
   } catch ( Vorn::RangeException const & ) {
      Vorn::throwRangeException( "Invalid LdpFecSessionId" );
   }
   *value = LdpFecSessionId( Mpls::FwdEqvClass( prefix ), LdpSessionId( peer ) );
   it = at;
}

VORN_TEXT_STREAM( LdpFecSessionId )

Vorn::String valueToStrep( LdpLocalLabelSessionState const & value ) {
   return Vorn::valueToStrep( value.value() );
}

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      LdpLocalLabelSessionState * value ) {
   *value = LdpLocalLabelSessionState( Vorn::deserializeAttr< U32 >( it, end, "value" ) );
}

VORN_TEXT_STREAM( LdpLocalLabelSessionState )

Vorn::String valueToStrep( LdpPeerLabelSessionState const & value ) {
   return Vorn::valueToStrep( value.value() );
}

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      LdpPeerLabelSessionState * value ) {
   *value = LdpPeerLabelSessionState( Vorn::deserializeAttr< U32 >( it, end, "value" ) );
}

VORN_TEXT_STREAM( LdpPeerLabelSessionState )

} // namespace Ldp
