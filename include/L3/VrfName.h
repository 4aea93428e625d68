/// \file
/// Names of routing instances (VRFs).
#pragma once

#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

namespace L3 {

/// Name of a VRF, at most `maxLength` bytes. The default is the empty name.
class VORN_API VrfName {
 public:
   /// Most bytes of a name.
   static constexpr U32 maxLength = 100;

   VrfName() noexcept = default;
   /// Throws RangeException for a longer name.
   explicit VrfName( Vorn::String name );

   /// The name as it stands.
   Vorn::String const & stringValue() const noexcept { return name_; }
   /// Equal values have equal hashes.
   U32 hash() const noexcept { return name_.hash(); }

   VORN_FROM_LOG( VrfName )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return name_.empty(); }
   friend bool operator==( VrfName const &, VrfName const & ) noexcept = default;
   friend bool operator<( VrfName const & a, VrfName const & b ) noexcept { return a.name_ < b.name_; }

 private:
   Vorn::String name_;
};

/// Quoted in text.
VORN_TEXT( VrfName )
/// In the attribute log the name; a longer one is refused with RangeException.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, VrfName const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, VrfName * value );

} // namespace L3

VORN_OUTSIDE_VALUE( L3::VrfName )
