// Masks and prefixes of one family: text with its reader, log form.
#include "Lumo/IpMask.h"

#include "Vorn/ValueType.h"

namespace Lumo {

using Vorn::String;

namespace {

U32 maxLen( IpAddr const & ) { return 32; }
U32 maxLen( IpGenAddr const & address ) {
   return address.family() == ipv4 ? 32 : address.family() == ipv6 ? 128 : 0;
}

template< class Masked >
String textOf( Masked const & value ) {
   return valueToStrep( value.address() ) + "/" + Vorn::valueToStrep( value.len() );
}

template< class Addr, class Masked >
void readText( String::IteratorConst & it, String::IteratorConst const & end, Masked * value ) {
   Addr address;
   sequenceToValue( it, end, &address );
   Vorn::needString( it, end, "/" );
   *value = Masked( address, U32( Vorn::unsignedFromSequence( it, end, maxLen( address ) ) ) );
}

template< class Masked >
void writeLog( Vorn::NboAttrLog::Out & out, Masked const & value ) {
   logOut( out, value.address() );
   logOut( out, U8( value.len() ) );
}

template< class Addr, class Masked >
void readLog( Vorn::NboAttrLog::In & in, Masked * value, char const * failure ) {
   Addr address;
   U8 len;
   logIn( in, &address );
   logIn( in, &len );
   if ( len > maxLen( address ) ) Vorn::throwRangeException( failure );
   *value = Masked( address, len );
}

} // namespace

U32 IpAddrWithMask::hash() const noexcept { return Vorn::hashWords( address_.value(), 0, len_ ); }
U32 IpGenAddrWithMask::hash() const noexcept { return address_.hashWith( len_ ); }

String valueToStrep( IpAddrWithMask const & value ) { return textOf( value ); }
String valueToStrep( IpGenAddrWithMask const & value ) { return textOf( value ); }

void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end,
                      IpAddrWithMask * value ) {
   readText< IpAddr >( it, end, value );
}
void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end,
                      IpGenAddrWithMask * value ) {
   readText< IpGenAddr >( it, end, value );
}

VORN_TEXT_STREAM( IpAddrWithMask )
VORN_TEXT_STREAM( IpGenAddrWithMask )

void logOut( Vorn::NboAttrLog::Out & out, IpAddrWithMask const & value ) { writeLog( out, value ); }
void logOut( Vorn::NboAttrLog::Out & out, IpGenAddrWithMask const & value ) { writeLog( out, value ); }

void logIn( Vorn::NboAttrLog::In & in, IpAddrWithMask * value ) {
   readLog< IpAddr >( in, value, "Invalid IpAddrWithMask" );
}
void logIn( Vorn::NboAttrLog::In & in, IpGenAddrWithMask * value ) {
   readLog< IpGenAddr >( in, value, "Invalid IpGenAddrWithMask" );
}

} // namespace Lumo

VORN_OUTSIDE_RECORD( Lumo, IpAddrWithMask )
VORN_OUTSIDE_RECORD( Lumo, IpGenAddrWithMask )
