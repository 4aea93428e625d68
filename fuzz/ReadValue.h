// Reads values, whatever their type.
#pragma once

#include "ReadAll.h"

#include <functional>

namespace Fuzz {

// A value, through everything that its type has; its texts must read back as an equal one.
template< class T >
void read( Sink & sink, T const & value ) {
   if constexpr ( std::is_integral_v< T > ) {
      sink.take( U64( value ) );
   } else {
      if constexpr ( requires( Vorn::String::IteratorConst it, T v ) { sequenceToValue( it, it, &v ); } ) {
         Vorn::String const text = valueToStrep( value );
         sink.take( text );
         T back{};
         Vorn::strepToValue( text, &back );
         VORN_ASSERT( back == value );
      }
      if constexpr ( requires( T v ) { v.stringValueIs( v.stringValue() ); } ) {
         T back{};
         back.stringValueIs( value.stringValue() );
         VORN_ASSERT( back == value );
      }
      if constexpr ( requires { value.stringValue(); } ) sink.take( value.stringValue() );
      if constexpr ( requires { value.value(); } ) sink.take( U64( value.value() ) );
      if constexpr ( requires { value.hash(); } ) sink.take( value.hash() );
      if constexpr ( requires { !value; } ) sink.take( !value );
   }
}

inline void read( Sink & sink, Vorn::String const & text ) { sink.take( text ); }

// `object`'s getters, which are members without arguments.
template< class T, class... Getters >
void readGetters( Sink & sink, T const & object, Getters... getters ) {
   ( read( sink, std::invoke( getters, object ) ), ... );
}

} // namespace Fuzz
