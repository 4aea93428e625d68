/// \file
/// The type-of-service octet of IP packets.
#pragma once

#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

namespace Lumo {

/// The octet as it stands in the header, its two lowest bits included: 192 is class selector 6 (RFC 2474,
/// 4.2.2).
class VORN_API IpDscp {
 public:
   constexpr IpDscp() noexcept = default;
   constexpr explicit IpDscp( U8 value ) noexcept : value_( value ) {}

   /// The octet.
   constexpr U8 value() const noexcept { return value_; }

   VORN_FROM_LOG( IpDscp )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return !value_; }
   friend constexpr auto operator<=>( IpDscp, IpDscp ) noexcept = default;

 private:
   U8 value_ = 0;
};

/// In decimal.
VORN_TEXT( IpDscp )
/// In the attribute log the octet.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, IpDscp value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, IpDscp * value );

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::IpDscp )
