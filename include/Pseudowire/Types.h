/// \file
/// Values of the pseudowire layer that LDP signals (RFC 8077). A host that has a pseudowire library of its
/// own puts it in the place of this header.
#pragma once

#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

namespace Pseudowire {

/// An integer that is a type of its own. `Tag` keeps apart what must not be mixed up.
template< class Tag, class Word >
class Number {
 public:
   constexpr Number() noexcept = default;
   constexpr explicit Number( Word value ) noexcept : value_( value ) {}

   constexpr Word value() const noexcept { return value_; }
   friend constexpr auto operator<=>( Number, Number ) noexcept = default;
   friend constexpr bool operator==( Number, Number ) noexcept = default;
   friend constexpr bool operator==( Number a, Word b ) noexcept { return a.value_ == b; }

   /// In decimal.
   friend Vorn::String valueToStrep( Number const & value ) { return Vorn::valueToStrep( value.value_ ); }
   friend void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                                Number * value ) {
      Vorn::sequenceToValue( it, end, &value->value_ );
   }
   friend std::ostream & operator<<( std::ostream & out, Number const & value ) {
      return out << valueToStrep( value );
   }

   /// In the attribute log the word.
   friend void logOut( Vorn::NboAttrLog::Out & out, Number const & value ) { logOut( out, value.value_ ); }
   friend void logIn( Vorn::NboAttrLog::In & in, Number * value ) { logIn( in, &value->value_ ); }

 private:
   Word value_ = 0;
};

/// PW ID, the number that names a pseudowire between two peers.
using PseudowireId = Number< struct PseudowireIdTag, U32 >;
/// Group of pseudowires, which a withdraw may name as a whole.
using GroupId = Number< struct GroupIdTag, U32 >;
/// Connectivity verification types of VCCV, one bit each (RFC 5085).
using VccvCvTypes = Number< struct VccvCvTypesTag, U8 >;
/// PW status word as signalled; 0 is forwarding (RFC 8077, 5.4.2).
using PseudowireLdpStatusFlags = Number< struct PseudowireLdpStatusFlagsTag, U32 >;

/// Pseudowire types (IANA registry of RFC 4446, 3.2). A number outside the list is an ordinary value.
#define PSEUDOWIRE_TYPES( X )                                                                                \
   X( pwTypeNone, 0 )                                                                                        \
   X( pwTypeFrDlciMartini, 1 )                                                                               \
   X( pwTypeAtmAal5Sdu, 2 )                                                                                  \
   X( pwTypeAtmTransparent, 3 )                                                                              \
   X( pwTypeTagged, 4 )                                                                                      \
   X( pwTypeRaw, 5 )                                                                                         \
   X( pwTypeHdlc, 6 )                                                                                        \
   X( pwTypePpp, 7 )                                                                                         \
   X( pwTypeCem, 8 )                                                                                         \
   X( pwTypeAtmVcc, 9 )                                                                                      \
   X( pwTypeAtmVpc, 10 )                                                                                     \
   X( pwTypeIpLayer2, 11 )
VORN_ENUM( PseudowireType, PSEUDOWIRE_TYPES )

/// The type with that name or number. Throws RangeException.
VORN_API PseudowireType PseudowireTypeInstance( Vorn::String const & text );

} // namespace Pseudowire

VORN_OUTSIDE_VALUE( Pseudowire::PseudowireId )
VORN_OUTSIDE_VALUE( Pseudowire::GroupId )
VORN_OUTSIDE_VALUE( Pseudowire::VccvCvTypes )
VORN_OUTSIDE_VALUE( Pseudowire::PseudowireLdpStatusFlags )
