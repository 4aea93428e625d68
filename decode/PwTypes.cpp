// Pseudowire FEC values: hash, texts and their readers.
#include "Ldp/PwTypes.h"

#include "Vorn/AttributeRows.h"
#include "Vorn/Hash.h"

#include <algorithm>

namespace Ldp {

using namespace Vorn::Rows;

using Vorn::String;

constexpr Vorn::VornAttr PwFwdEqvClass::vornRows[] = {
   ctor< &Self::pwId >( "pwId" ),
   ctor< &Self::pwType >( "pwType" ),
   ctor< &Self::controlWord >( "controlWord" ),
   constant< &Self::defaultAttribute >( "defaultAttribute" ),
   write< &Self::stringValue, &Self::stringValueIs >( "stringValue" ),
   read< &Self::pwTypeValue >( "pwTypeValue" ),
   read< &Self::hash >( "hash" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, PwFwdEqvClass )

constexpr Vorn::VornAttr PwFwdEqvClassParams::vornRows[] = {
   part< &Self::groupId, &Self::groupIdIs >( "groupId" ),
   part< &Self::mtu, &Self::mtuIs >( "mtu" ),
   part< &Self::intfDescription, &Self::intfDescriptionIs >( "intfDescription" ),
   part< &Self::requestedVlanId, &Self::requestedVlanIdIs >( "requestedVlanId" ),
   part< &Self::fragCapable, &Self::fragCapableIs >( "fragCapable" ),
   part< &Self::vccvCcTypes, &Self::vccvCcTypesIs >( "vccvCcTypes" ),
   part< &Self::vccvCvTypes, &Self::vccvCvTypesIs >( "vccvCvTypes" ),
   constant< &Self::unspecifiedMtu >( "unspecifiedMtu" ),
   read< &Self::stringValue >( "stringValue" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, PwFwdEqvClassParams )

constexpr Vorn::VornAttr PwFwdEqvClassInfo::vornRows[] = {
   part< &Self::fwdEqvClass, &Self::fwdEqvClassIs >( "fwdEqvClass" ),
   part< &Self::params, &Self::paramsIs >( "params" ),
   read< &Self::pwId >( "pwId" ),
   write< &Self::groupId, &Self::groupIdIs >( "groupId" ),
   write< &Self::intfDescription, &Self::intfDescriptionIs >( "intfDescription" ),
   write< &Self::requestedVlanId, &Self::requestedVlanIdIs >( "requestedVlanId" ),
   read< &Self::stringValue >( "stringValue" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, PwFwdEqvClassInfo )

VORN_TEXT_OF_RECORD( PwFwdEqvClassParams )
VORN_TEXT_OF_RECORD( PwFwdEqvClassInfo )

String PwFwdEqvClass::stringValue() const {
   return "pw" + valueToStrep( pwId_ ) + ":" + valueToStrep( pwType_ ) + ":cbit" +
          ( controlWord_ ? "1" : "0" );
}

void PwFwdEqvClass::stringValueIs( String const & text ) {
   auto it = text.begin();
   PwFwdEqvClass read;
   sequenceToValue( it, text.end(), &read );
   if ( it != text.end() ) Vorn::throwRangeException( "Invalid PwFwdEqvClass" );
   *this = read;
}

U32 PwFwdEqvClass::hash() const noexcept {
   Vorn::Hash hash;
   U32 const pwId = pwId_.value();
   U32 const pwType = pwType_;
   hash.mix< 4 >( &pwId );
   hash.mix< 4 >( &pwType );
   hash.mix< 1 >( &controlWord_ );
   return hash.result();
}

String valueToStrep( PwFwdEqvClass const & value ) { return value.stringValue(); }

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end, PwFwdEqvClass * value ) {
   try {
      auto at = it;
      Pseudowire::PseudowireId pwId;
      Vorn::needString( at, end, "pw" );
      sequenceToValue( at, end, &pwId );
      Vorn::needString( at, end, ":" );
      auto const colon = std::find( at, end, ':' );
      auto const pwType = Pseudowire::PseudowireTypeInstance( String( at, std::size_t( colon - at ) ) );
      at = colon;
      Vorn::needString( at, end, ":cbit" );
      bool const controlWord = at != end && *at == '1';
      Vorn::needString( at, end, controlWord ? "1" : "0" );
      // The last part is exactly "cbit" and one digit; what stands behind it in a longer text is the
      // caller's, but not another digit or a further part.
      if ( at != end && ( *at == ':' || ( *at >= '0' && *at <= '9' ) ) ) {
         Vorn::throwRangeException( "more behind the C bit" );
      }
      it = at;
      *value = PwFwdEqvClass( pwId, pwType, controlWord );
   } catch ( Vorn::RangeException const & ) {
      Vorn::throwRangeException( "Invalid PwFwdEqvClass" );
   }
}

VORN_TEXT_STREAM( PwFwdEqvClass )

void logOut( Vorn::NboAttrLog::Out & out, PwFwdEqvClass const & value ) {
   logOut( out, value.pwId() );
   logOut( out, value.pwType() );
   logOut( out, value.controlWord() );
}

void logIn( Vorn::NboAttrLog::In & in, PwFwdEqvClass * value ) {
   Pseudowire::PseudowireId pwId;
   Pseudowire::PseudowireType pwType;
   bool controlWord;
   logIn( in, &pwId );
   logIn( in, &pwType );
   logIn( in, &controlWord );
   *value = PwFwdEqvClass( pwId, pwType, controlWord );
}

String PwFwdEqvClassParams::stringValue() const {
   String text = "groupId=" + valueToStrep( groupId_ ) + " mtu=" + Vorn::valueToStrep( mtu_ );
   text += " intfDescription=\"" + intfDescription_ + "\"";
   text += " reqVlanId=" + valueToStrep( requestedVlanId_ );
   text += fragCapable_ ? " fragCapable=1" : " fragCapable=0";
   // As one character and not as a number: a quirk of this text alone, which stays.
   text += " vccvCcTypes=" + String( &vccvCcTypes_, 1 );
   return text += " vccvCvTypes=" + valueToStrep( vccvCvTypes_ );
}

String PwFwdEqvClassInfo::stringValue() const {
   return fwdEqvClass_.stringValue() + " " + params_.stringValue();
}

} // namespace Ldp
