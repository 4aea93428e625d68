// Adjacencies: records, and the text of an adjacency's id.
#include "Ldp/LdpAdj.h"

#include <algorithm>

namespace Ldp {

using Vorn::String;

VORN_ENUM_RECORD( Ldp, LdpAdjType, VORN_LDP_ADJ_TYPES )
VORN_VALUE_RECORD( Ldp, LdpAdjId )
VORN_RECORD( Ldp, LdpAdjConfig )
VORN_RECORD( Ldp, LdpAdjConfigColl )
VORN_RECORD( Ldp, LdpAdjStatus )
VORN_RECORD( Ldp, LdpAdjStatusColl )
VORN_RECORD( Ldp, LdpAdjPerLink )

LdpAdjType LdpAdjId::adjType() const { return intfId_.stringValue().empty() ? LdpTargetAdj : LdpLinkAdj; }

U32 LdpAdjId::hash() const { return ldpIdentifier_.hash() + intfId_.hash(); }

bool operator<( LdpAdjId const & a, LdpAdjId const & b ) noexcept {
   if ( !( a.ldpIdentifier_ == b.ldpIdentifier_ ) ) return a.ldpIdentifier_ < b.ldpIdentifier_;
   if ( !( a.intfId_ == b.intfId_ ) ) return a.intfId_ < b.intfId_;
   return a.targetIpAddr_ < b.targetIpAddr_;
}

String LdpAdjId::stringValue() const {
   if ( adjType() == LdpTargetAdj )
      return ldpIdentifier_.stringValue() + "_TARGET_" + targetIpAddr_.stringValue();
   return ldpIdentifier_.stringValue() + "_" + intfId_.stringValue();
}

void LdpAdjId::stringValueIs( String const & text ) {
   auto it = text.begin();
   sequenceToValue( it, text.end(), this ); // up to the end, whatever it is
}

String valueToStrep( LdpAdjId const & value ) { return value.stringValue(); }

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, LdpAdjId * value ) {
   static constexpr std::string_view target = "TARGET_";
   auto const bar = std::find( it, end, '_' );
   try {
      auto at = it;
      LdpIdentifier peer;
      sequenceToValue( at, bar, &peer );
      if ( at != bar || end - bar < 2 ) Vorn::throwRangeException( "no remainder" );
      ++at;
      std::string_view const rest( at, std::size_t( end - at ) );
      if ( rest.starts_with( target ) ) {
         Lumo::IpAddr addr;
         at += target.size();
         sequenceToValue( at, end, &addr );
         if ( at != end ) Vorn::throwRangeException( "more than a target" );
         *value = LdpAdjId( peer, addr );
      } else {
         *value = LdpAdjId( peer, Lumo::IntfId( String( rest ) ) );
      }
      it = end;
   } catch ( Vorn::RangeException const & ) {
      Vorn::throwRangeException( "Invalid LdpAdjId" );
   }
}

VORN_TEXT_STREAM( LdpAdjId )

} // namespace Ldp
