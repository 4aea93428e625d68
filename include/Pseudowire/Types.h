/// \file
/// Values of the pseudowire layer that LDP signals (RFC 8077). A host that has a pseudowire library of its
/// own puts it in the place of this header.
#pragma once

#include "Lumo/Ip.h"
#include "Vorn/Number.h"

namespace Pseudowire {

/// PW ID, the number that names a pseudowire between two peers.
using PseudowireId = Vorn::Number< struct PseudowireIdTag, U32 >;
/// Group of pseudowires, which a withdraw may name as a whole.
using GroupId = Vorn::Number< struct GroupIdTag, U32 >;
/// Connectivity verification types of VCCV, one bit each (RFC 5085).
using VccvCvTypes = Vorn::Number< struct VccvCvTypesTag, U8 >;
/// PW status word as signalled; 0 is forwarding (RFC 8077, 6.3.2).
using PseudowireLdpStatusFlags = Vorn::Number< struct PseudowireLdpStatusFlagsTag, U32 >;

/// Pseudowire types (IANA registry of RFC 4446, 3.2). A number outside the list is an ordinary value.
#define VORN_PSEUDOWIRE_TYPES( X )                                                                           \
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
VORN_ENUM( PseudowireType, VORN_PSEUDOWIRE_TYPES )

/// The type with that name or number. Throws RangeException.
VORN_API PseudowireType PseudowireTypeInstance( Vorn::String const & text );

/// State of an attachment circuit.
#define VORN_PSEUDOWIRE_CONNECTOR_STATUSES( X )                                                              \
   X( pwConnectorUnknown, 0 )                                                                                \
   X( pwConnectorUp, 1 )                                                                                     \
   X( pwConnectorDown, 2 )
VORN_ENUM( PseudowireConnectorStatus, VORN_PSEUDOWIRE_CONNECTOR_STATUSES )

/// What a service asks for: a pseudowire of that number to that neighbor. Its text is `10.0.0.1_100`.
class VORN_API PseudowireLdpRequestKey {
 public:
   PseudowireLdpRequestKey() noexcept = default;
   PseudowireLdpRequestKey( Lumo::IpGenAddr const & neighbor, PseudowireId pwId ) noexcept
        : neighbor_( neighbor ), pwId_( pwId ) {}

   /// Address of the neighbor.
   Lumo::IpGenAddr const & neighbor() const noexcept { return neighbor_; }
   /// Number of the pseudowire.
   PseudowireId pwId() const noexcept { return pwId_; }

   /// Equal values have equal hashes.
   U32 hash() const noexcept { return neighbor_.hashWith( pwId_.value() ); }
   VORN_FROM_LOG( PseudowireLdpRequestKey )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == PseudowireLdpRequestKey(); }
   /// By neighbor, then by number.
   friend auto operator<=>( PseudowireLdpRequestKey const &,
                            PseudowireLdpRequestKey const & ) noexcept = default;

 private:
   Lumo::IpGenAddr neighbor_;
   PseudowireId pwId_;
};
VORN_TEXT( PseudowireLdpRequestKey )
/// In the attribute log the fields in their order.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, PseudowireLdpRequestKey const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, PseudowireLdpRequestKey * value );

} // namespace Pseudowire

VORN_OUTSIDE_VALUE( Pseudowire::PseudowireId )
VORN_OUTSIDE_VALUE( Pseudowire::GroupId )
VORN_OUTSIDE_VALUE( Pseudowire::VccvCvTypes )
VORN_OUTSIDE_VALUE( Pseudowire::PseudowireLdpStatusFlags )
VORN_OUTSIDE_VALUE( Pseudowire::PseudowireLdpRequestKey )
