/// \file
/// VLAN identifiers.
#pragma once

#include "Vorn/Strep.h"

namespace Bridging {

/// A VLAN id, or 0 for no VLAN (IEEE 802.1Q).
class VORN_API VlanIdOrNone {
 public:
   static constexpr U16 max = 4094;

   constexpr VlanIdOrNone() noexcept = default;
   /// Throws RangeException for a value above 4094.
   explicit VlanIdOrNone( U16 value );

   constexpr U16 value() const noexcept { return value_; }
   friend constexpr auto operator<=>( VlanIdOrNone, VlanIdOrNone ) noexcept = default;

 private:
   U16 value_ = 0;
};
VORN_TEXT( VlanIdOrNone )

} // namespace Bridging
