/// \file
/// Interfaces by name, and the classifiers of their kinds.
#pragma once

#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

namespace Lumo {

/// An interface, known by its name, as in Ethernet1, Port-Channel7.100, Vlan10. The default is the empty
/// name.
class VORN_API IntfId {
 public:
   IntfId() noexcept = default;
   explicit IntfId( Vorn::String name ) noexcept : name_( std::move( name ) ) {}

   /// The name as it stands.
   Vorn::String const & stringValue() const noexcept { return name_; }
   /// Equal values have equal hashes.
   U32 hash() const noexcept { return name_.hash(); }

   VORN_FROM_LOG( IntfId )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return name_.empty(); }
   friend bool operator==( IntfId const &, IntfId const & ) noexcept = default;
   friend bool operator<( IntfId const & a, IntfId const & b ) noexcept { return a.name_ < b.name_; }

 private:
   Vorn::String name_;
};

/// Whether it is a VLAN interface. A sub-interface, here and below, is the name of its parent, a dot and a
/// number.
VORN_API bool isVlanIntfId( IntfId const & intfId );
/// Whether it is a port-channel.
VORN_API bool isPortChannelIntfId( IntfId const & intfId );
/// Whether it is an Ethernet interface.
VORN_API bool isEthIntfId( IntfId const & intfId );
/// Whether it is a sub-interface.
VORN_API bool isSubIntfId( IntfId const & intfId );
/// Whether it is a loopback interface.
VORN_API bool isLoopbackIntfId( IntfId const & intfId );
/// Whether it is an internal interface.
VORN_API bool isInternalIntfId( IntfId const & intfId );
/// Whether it is a management interface.
VORN_API bool isMgmtIntfId( IntfId const & intfId );

/// The name as it stands, quoted in text.
VORN_TEXT( IntfId )
/// In the attribute log the name.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, IntfId const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, IntfId * value );

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::IntfId )
