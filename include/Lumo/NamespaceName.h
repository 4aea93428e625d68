/// \file
/// Names of network namespaces.
#pragma once

#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

namespace Lumo {

/// Name of the network namespace in which the sockets of a VRF live, at most 150 bytes. The default is the
/// empty name.
class VORN_API NamespaceName {
 public:
   /// Most bytes of a name.
   static constexpr U32 maxLength = 150;

   NamespaceName() noexcept = default;
   /// Throws RangeException for a longer name.
   explicit NamespaceName( Vorn::String name );
   /// The namespace in which a process finds itself unless it goes elsewhere.
   static NamespaceName defaultNamespace() { return NamespaceName( "default" ); }

   /// The name as it stands.
   Vorn::String const & stringValue() const noexcept { return name_; }
   /// Equal values have equal hashes.
   U32 hash() const noexcept { return name_.hash(); }

   VORN_FROM_LOG( NamespaceName )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return name_.empty(); }
   friend bool operator==( NamespaceName const &, NamespaceName const & ) noexcept = default;

 private:
   Vorn::String name_;
};

/// Quoted in text.
VORN_TEXT( NamespaceName )
/// In the attribute log the name; a longer one is refused with RangeException.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, NamespaceName const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, NamespaceName * value );

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::NamespaceName )
