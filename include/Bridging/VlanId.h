/// \file
/// VLAN identifiers.
#pragma once

#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

namespace Bridging {

/// A VLAN id, or 0 for no VLAN (IEEE 802.1Q).
class VORN_API VlanIdOrNone {
 public:
   /// The largest VLAN id.
   static constexpr U16 max = 4094;

   constexpr VlanIdOrNone() noexcept = default;
   /// Throws RangeException for a value above 4094.
   explicit VlanIdOrNone( U16 value );

   /// The id as a number; 0 for none.
   constexpr U16 value() const noexcept { return value_; }
   VORN_FROM_LOG( VlanIdOrNone )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return !value_; }
   friend constexpr auto operator<=>( VlanIdOrNone, VlanIdOrNone ) noexcept = default;

 private:
   U16 value_ = 0;
};
VORN_TEXT( VlanIdOrNone )

/// In the attribute log 16 bits; a value above 4094 is refused with RangeException.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, VlanIdOrNone value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, VlanIdOrNone * value );

} // namespace Bridging

VORN_OUTSIDE_VALUE( Bridging::VlanIdOrNone )
