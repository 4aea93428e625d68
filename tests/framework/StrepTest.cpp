// Text forms of the built-in values, and readers that take nothing but what they wrote.

#include "Vorn/Strep.h"
#include "Vorn/ValueType.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using Vorn::RangeException;
using Vorn::sequenceToValue;
using Vorn::String;
using Vorn::valueToStrep;

namespace Test {

/// Has more fields than fit any number that one would think of.
class Wide {
   VORN_VALUE( Wide )
#define FIELDS( id )                                                                                         \
   VORN_FIELD( id, U32, f##id ) = id;                                                                        \
   VORN_FIELD( id + 1, U32, g##id ) = id;                                                                    \
   VORN_FIELD( id + 2, U32, h##id ) = id;                                                                    \
   VORN_FIELD( id + 3, U32, i##id ) = id;                                                                    \
   VORN_FIELD( id + 4, U32, j##id ) = id;                                                                    \
   VORN_FIELD( id + 5, U32, k##id ) = id
   FIELDS( 2 );
   FIELDS( 8 );
   FIELDS( 14 );
   FIELDS( 20 );
   FIELDS( 26 );
   FIELDS( 32 );
#undef FIELDS

 public:
   Wide() noexcept = default;
   friend bool operator==( Wide const &, Wide const & ) noexcept = default;
};
VORN_TEXT( Wide )
VORN_VALUE_RECORD( Test, Wide )
VORN_TEXT_OF_RECORD( Wide )

} // namespace Test

namespace {

using Test::Wide;

template< class T >
void expectBothWays( T const & value, String const & text ) {
   SCOPED_TRACE( text );
   EXPECT_EQ( valueToStrep( value ), text );
   T read{};
   Vorn::strepToValue( text, &read );
   EXPECT_EQ( read, value );
}

template< class T >
void expectRefused( T const & before, std::initializer_list< String > texts ) {
   for ( String const & text : texts ) {
      SCOPED_TRACE( text );
      T read = before;
      EXPECT_THROW( Vorn::strepToValue( text, &read ), RangeException );
      EXPECT_EQ( read, before );
   }
}

TEST( Strep, doublesAreShortestAndReadBack ) {
   expectBothWays( 1.0, "1" );
   for ( double const value :
         { std::numeric_limits< double >::max(), std::numeric_limits< double >::denorm_min(), 1.0 / 3,
           123456789.123456789, std::numeric_limits< double >::infinity() } ) {
      double read = 0;
      Vorn::strepToValue( valueToStrep( value ), &read );
      EXPECT_EQ( read, value );
   }
   double read = 0;
   Vorn::strepToValue( valueToStrep( std::nan( "" ) ), &read );
   EXPECT_TRUE( std::isnan( read ) );
}

TEST( Strep, stringsAreQuoted ) {
   expectBothWays( String(), "''" );
   expectBothWays( String( "plain \"text\"" ), "'plain \"text\"'" );
   expectBothWays( String( "it's a \\" ), "'it\\'s a \\\\'" );
   expectBothWays( String( "\0\t\n\x7f\x80\xff", 6 ), "'\\x00\\x09\\x0a\\x7f\\x80\\xff'" );
   std::string all;
   for ( int octet = 0; octet < 256; ++octet ) {
      all += char( octet );
   }
   String read;
   Vorn::strepToValue( valueToStrep( String( std::string_view( all ) ) ), &read );
   EXPECT_EQ( read.view(), all );
   expectRefused( String( "before" ), { String( "'\0'", 3 ), "'\xff'" } );
}

TEST( Strep, readersStopBehindWhatTheyTake ) {
   String const text = "12, 'a', True}";
   auto it = text.begin();
   U32 number = 0;
   String word;
   bool flag = false;
   sequenceToValue( it, text.end(), &number );
   Vorn::needString( it, text.end(), ", " );
   sequenceToValue( it, text.end(), &word );
   Vorn::needString( it, text.end(), ", " );
   sequenceToValue( it, text.end(), &flag );
   EXPECT_EQ( number, 12u );
   EXPECT_EQ( word, "a" );
   EXPECT_TRUE( flag );
   EXPECT_THROW( Vorn::strepToValueEnd( text, it ), RangeException );
   EXPECT_THROW( Vorn::needString( it, text.end(), "})" ), RangeException ); // longer than what is left
   EXPECT_EQ( text.end() - it, 1 );                                          // a refusal moves nothing
   Vorn::needString( it, text.end(), "}" );
   Vorn::strepToValueEnd( text, it );
   Vorn::needString( it, text.end(), "" );
}

TEST( Strep, valuesOfAnyWidth ) {
   Wide wide;
   wide.k32Is( 77 );
   expectBothWays( wide, valueToStrep( wide ) );
   EXPECT_NE( valueToStrep( wide ).view().find( "'j32': 32, 'k32': 77})" ), std::string_view::npos );
}

TEST( Strep, failureNamesTheAttribute ) {
   String const text = "x";
   auto it = text.begin();
   try {
      Vorn::deserializeAttr< U32 >( it, text.end(), "mtu" );
      FAIL() << "taken";
   } catch ( RangeException const & refused ) {
      EXPECT_EQ( refused.message().view().find( "mtu: " ), 0u ) << refused.message();
   }
}

} // namespace
