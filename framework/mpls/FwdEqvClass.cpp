#include "Mpls/FwdEqvClass.h"

namespace Mpls {

using Vorn::needString;
using Vorn::String;

U32 FwdEqvClass::hash() const noexcept {
   switch ( tag_ ) {
   case wordsTag: return ( first_ * 0x9e3779b1u ) ^ ( second_ * 0x85ebca6bu );
   case p2mpTag: return root_.hash() + first_ * 0x9e3779b1u;
   case prefixTag: break;
   }
   return prefix_.hash();
}

String FwdEqvClass::stringValue() const {
   switch ( tag_ ) {
   case wordsTag: return Vorn::format( "words(%u,%u)", first_, second_ );
   case p2mpTag: return "p2mp(" + root_.stringValue() + Vorn::format( ",%u)", first_ );
   case prefixTag: break;
   }
   return prefix_.stringValue();
}

String valueToStrep( FwdEqvClass const & value ) { return value.stringValue(); }

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, FwdEqvClass * value ) {
   U32 first, second;
   if ( it != end && *it == 'w' ) {
      needString( it, end, "words(" );
      Vorn::sequenceToValue( it, end, &first );
      needString( it, end, "," );
      Vorn::sequenceToValue( it, end, &second );
      needString( it, end, ")" );
      *value = FwdEqvClass( first, second );
   } else if ( it != end && *it == 'p' ) {
      Lumo::IpGenAddr root;
      needString( it, end, "p2mp(" );
      sequenceToValue( it, end, &root );
      needString( it, end, "," );
      Vorn::sequenceToValue( it, end, &first );
      needString( it, end, ")" );
      *value = FwdEqvClass( root, first );
   } else {
      Lumo::IpGenPrefix prefix;
      sequenceToValue( it, end, &prefix );
      *value = FwdEqvClass( prefix );
   }
}

VORN_TEXT_STREAM( FwdEqvClass )

} // namespace Mpls
