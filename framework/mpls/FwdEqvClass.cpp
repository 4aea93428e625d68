// The forwarding equivalence class: hash, text with its reader, log form.
#include "Mpls/FwdEqvClass.h"

#include "Vorn/ValueType.h"

namespace Mpls {

using Vorn::needString;
using Vorn::String;

U32 FwdEqvClass::hash() const noexcept {
   return address_.hashWith( U64( tag_ == wordsTag ? second_ : U32( tag_ ) ) << 32 | first_ );
}

String FwdEqvClass::stringValue() const {
   switch ( tag_ ) {
   case wordsTag: return Vorn::format( "words(%u,%u)", first_, second_ );
   case p2mpTag: return "p2mp(" + address_.stringValue() + Vorn::format( ",%u)", first_ );
   case prefixTag: break;
   }
   return prefix().stringValue();
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

void logOut( Vorn::NboAttrLog::Out & out, FwdEqvClass const & value ) {
   logOut( out, U8( value.tag() ) );
   switch ( value.tag() ) {
   case FwdEqvClass::prefixTag: logOut( out, value.prefix() ); break;
   case FwdEqvClass::wordsTag:
      logOut( out, value.first() );
      logOut( out, value.second() );
      break;
   case FwdEqvClass::p2mpTag:
      logOut( out, value.root() );
      logOut( out, value.first() );
      break;
   }
}

void logIn( Vorn::NboAttrLog::In & in, FwdEqvClass * value ) {
   U8 tag;
   U32 first, second;
   Lumo::IpGenPrefix prefix;
   Lumo::IpGenAddr root;
   logIn( in, &tag );
   switch ( tag ) {
   case FwdEqvClass::prefixTag:
      logIn( in, &prefix );
      *value = FwdEqvClass( prefix );
      break;
   case FwdEqvClass::wordsTag:
      logIn( in, &first );
      logIn( in, &second );
      *value = FwdEqvClass( first, second );
      break;
   case FwdEqvClass::p2mpTag:
      logIn( in, &root );
      logIn( in, &first );
      *value = FwdEqvClass( root, first );
      break;
   default: Vorn::throwRangeException( "Invalid FwdEqvClass" );
   }
}

} // namespace Mpls

VORN_OUTSIDE_RECORD( Mpls, FwdEqvClass )
