/// \file
/// Integers that are types of their own.
#pragma once

#include "Vorn/Hash.h"
#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

namespace Vorn {

/// An integer that is a type of its own. `Tag` keeps apart what must not be mixed up. `initial` is the
/// default.
template< class Tag, class Word, Word initial = 0 >
class Number {
 public:
   constexpr Number() noexcept = default;
   /// The number of that value.
   constexpr explicit Number( Word value ) noexcept : value_( value ) {}

   /// The value.
   constexpr Word value() const noexcept { return value_; }
   /// Equal values have equal hashes.
   U32 hash() const noexcept { return VornHashBase< false >::hashU64( value_ ); }

   VORN_FROM_LOG( Number )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return value_ == initial; }
   friend constexpr auto operator<=>( Number, Number ) noexcept = default;
   friend constexpr bool operator==( Number, Number ) noexcept = default;
   friend constexpr bool operator==( Number a, Word b ) noexcept { return a.value_ == b; }

   /// In decimal.
   friend String valueToStrep( Number const & value ) { return Vorn::valueToStrep( value.value_ ); }
   friend void sequenceToValue( String::IteratorConst & it, String::IteratorConst const & end,
                                Number * value ) {
      Vorn::sequenceToValue( it, end, &value->value_ );
   }
   friend std::ostream & operator<<( std::ostream & out, Number const & value ) {
      return out << valueToStrep( value );
   }

   /// In the attribute log the word.
   friend void logOut( NboAttrLog::Out & out, Number const & value ) { logOut( out, value.value_ ); }
   friend void logIn( NboAttrLog::In & in, Number * value ) { logIn( in, &value->value_ ); }

 private:
   Word value_ = initial;
};

} // namespace Vorn
