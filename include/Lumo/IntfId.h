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

   Vorn::String const & stringValue() const noexcept { return name_; }
   U32 hash() const noexcept { return name_.hash(); }

   VORN_FROM_LOG( IntfId )
   bool operator!() const noexcept { return name_.empty(); }
   friend bool operator==( IntfId const &, IntfId const & ) noexcept = default;
   friend bool operator<( IntfId const & a, IntfId const & b ) noexcept { return a.name_ < b.name_; }

 private:
   Vorn::String name_;
};

/// The kinds of interface. A sub-interface is the name of its parent, a dot and a number.
VORN_API bool isVlanIntfId( IntfId const & intfId );
VORN_API bool isPortChannelIntfId( IntfId const & intfId );
VORN_API bool isEthIntfId( IntfId const & intfId );
VORN_API bool isSubIntfId( IntfId const & intfId );
VORN_API bool isLoopbackIntfId( IntfId const & intfId );
VORN_API bool isInternalIntfId( IntfId const & intfId );
VORN_API bool isMgmtIntfId( IntfId const & intfId );

/// The name as it stands, quoted in text.
VORN_TEXT( IntfId )
/// In the attribute log the name.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, IntfId const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, IntfId * value );

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::IntfId )
