// FEC element values: records, texts, and the generic opaque value of P2MP FECs.
#include "Ldp/LdpFecHdr.h"

#include "Vorn/AttributeRows.h"
#include "Vorn/Hash.h"

#include <algorithm>

namespace Ldp {

using namespace Vorn::Rows;

constexpr Vorn::VornAttr LdpFecTlvP2mpOpaqueLength::vornRows[] = {
   part< &Self::totalOpaqueLen, &Self::totalOpaqueLenIs >( "totalOpaqueLen" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpFecTlvP2mpOpaqueLength )

constexpr Vorn::VornAttr LdpMPBasicOpaqueValueElementHdr::vornRows[] = {
   part< &Self::type, &Self::typeIs >( "type" ),
   part< &Self::opaqueLenNbo, &Self::opaqueLenNboIs >( "opaqueLenNbo" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpMPBasicOpaqueValueElementHdr )

constexpr Vorn::VornAttr LdpGenericLSPId::vornRows[] = {
   part< &Self::type, &Self::typeIs >( "type" ),
   part< &Self::opaqueLenNbo, &Self::opaqueLenNboIs >( "opaqueLenNbo" ),
   part< &Self::opaqueId, &Self::opaqueIdIs >( "opaqueId" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpGenericLSPId )

constexpr Vorn::VornAttr LdpP2mpFecElement::vornRows[] = {
   part< &Self::rootIp, &Self::rootIpIs >( "rootIp" ),
   part< &Self::opaqueStr, &Self::opaqueStrIs >( "opaqueStr" ), read< &Self::stringValue >( "stringValue" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpP2mpFecElement )

constexpr Vorn::VornAttr LdpP2mpFecGenericOpaqueId::vornRows[] = {
   ctor< &Self::rootIp >( "rootIp" ), ctor< &Self::gOpaqueId >( "gOpaqueId" ),
   write< &Self::stringValue, &Self::stringValueIs >( "stringValue" ), read< &Self::hash >( "hash" ),
   constant< &Self::defaultAttribute >( "defaultAttribute" )
};
VORN_REFLECTED_VALUE_RECORD( Ldp, LdpP2mpFecGenericOpaqueId )

VORN_TEXT_OF_RECORD( LdpMPBasicOpaqueValueElementHdr )
VORN_TEXT_OF_RECORD( LdpGenericLSPId )
VORN_TEXT_OF_RECORD( LdpP2mpFecElement )

// The text of a record of one number is that number.
Vorn::String valueToStrep( LdpFecTlvP2mpOpaqueLength const & value ) {
   return valueToStrep( value.totalOpaqueLen() );
}

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      LdpFecTlvP2mpOpaqueLength * value ) {
   Lumo::NetU16 octets;
   sequenceToValue( it, end, &octets );
   value->totalOpaqueLenIs( octets );
}

VORN_TEXT_STREAM( LdpFecTlvP2mpOpaqueLength )

Vorn::String LdpP2mpFecElement::stringValue() const { return rootIp_.stringValue() + "_" + opaqueStr_; }

Vorn::String LdpP2mpFecGenericOpaqueId::stringValue() const {
   return rootIp_.stringValue() + "_" + Vorn::valueToStrep( gOpaqueId_ );
}

void LdpP2mpFecGenericOpaqueId::stringValueIs( Vorn::String const & text ) {
   auto it = text.begin();
   LdpP2mpFecGenericOpaqueId read;
   sequenceToValue( it, text.end(), &read );
   if ( it != text.end() ) Vorn::throwRangeException( "Invalid LdpP2mpFecGenericOpaqueId" );
   *this = read;
}

U32 LdpP2mpFecGenericOpaqueId::hash() const noexcept {
   Vorn::Hash hash;
   U32 const root = rootIp_.hash();
   hash.mix< 4 >( &root );
   hash.mix< 4 >( &gOpaqueId_ );
   return hash.result();
}

Vorn::String valueToStrep( LdpP2mpFecGenericOpaqueId const & value ) { return value.stringValue(); }

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      LdpP2mpFecGenericOpaqueId * value ) {
   try {
      auto const bar = std::find( it, end, '_' );
      auto at = it;
      Lumo::IpGenAddr root;
      sequenceToValue( at, bar, &root );
      if ( at != bar ) Vorn::throwRangeException( "octets behind the root" );
      Vorn::needString( at, end, "_" );
      U32 gOpaqueId;
      Vorn::sequenceToValue( at, end, &gOpaqueId );
      it = at;
      *value = LdpP2mpFecGenericOpaqueId( root, gOpaqueId );
   } catch ( Vorn::RangeException const & ) {
      Vorn::throwRangeException( "Invalid LdpP2mpFecGenericOpaqueId" );
   }
}

VORN_TEXT_STREAM( LdpP2mpFecGenericOpaqueId )

void logOut( Vorn::NboAttrLog::Out & out, LdpP2mpFecGenericOpaqueId const & value ) {
   logOut( out, value.rootIp() );
   logOut( out, value.gOpaqueId() );
}

void logIn( Vorn::NboAttrLog::In & in, LdpP2mpFecGenericOpaqueId * value ) {
   Lumo::IpGenAddr rootIp;
   U32 gOpaqueId;
   logIn( in, &rootIp );
   logIn( in, &gOpaqueId );
   *value = LdpP2mpFecGenericOpaqueId( rootIp, gOpaqueId );
}

} // namespace Ldp
