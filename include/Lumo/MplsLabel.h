/// \file
/// MPLS label values.
#pragma once

#include "Vorn/Hash.h"
#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

namespace Lumo {

/// A label value: 20 bits on the wire (RFC 3032, 2.1), and a few values above that which no packet carries.
class VORN_API MplsLabel {
 public:
   /// The smallest label value.
   static constexpr U32 min = 0;
   /// Stands for no label, one above the 20-bit range.
   static constexpr U32 null = 0x100000;
   /// The largest value that a label may hold.
   static constexpr U32 luWithdraw = 0x800000;

   constexpr MplsLabel() noexcept = default;
   /// Throws RangeException for a value above `luWithdraw`.
   explicit MplsLabel( U32 value );

   /// The label as a number; `null` for none.
   constexpr U32 value() const noexcept { return value_; }
   /// Equal values have equal hashes.
   U32 hash() const noexcept { return Vorn::hashWords( value_ ); }

   VORN_FROM_LOG( MplsLabel )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return value_ == null; }
   friend constexpr auto operator<=>( MplsLabel, MplsLabel ) noexcept = default;

 private:
   U32 value_ = null;
};
VORN_TEXT( MplsLabel )

/// In the attribute log 32 bits; a value above `luWithdraw` is refused with RangeException.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, MplsLabel value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, MplsLabel * value );

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::MplsLabel )
