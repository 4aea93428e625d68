/// \file
/// Small types of an MPLS library. A host that has one puts it in the place of this header.
#pragma once

#include "Lumo/Ip.h"

namespace Mpls {

/// Who gave a label.
#define VORN_MPLS_LABEL_SOURCES( X )                                                                         \
   X( labelSourceUnknown, 0 )                                                                                \
   X( labelSourceStatic, 1 )                                                                                 \
   X( labelSourceDynamic, 2 )
VORN_ENUM( LabelSource, VORN_MPLS_LABEL_SOURCES )

/// What a filter says of a FEC.
#define VORN_MPLS_FEC_FILTERED_STATES( X )                                                                   \
   X( fecFilteredUnknown, 0 )                                                                                \
   X( fecPermitted, 1 )                                                                                      \
   X( fecFiltered, 2 )
VORN_ENUM( FecFilteredState, VORN_MPLS_FEC_FILTERED_STATES )

/// A router by its id, which has the form of an IPv4 address.
class VORN_API RouterId {
 public:
   RouterId() noexcept = default;
   /// The router of that id.
   explicit RouterId( Lumo::IpAddr const & id ) noexcept : id_( id ) {}

   /// The id.
   Lumo::IpAddr const & id() const noexcept { return id_; }
   /// Equal values have equal hashes.
   U32 hash() const noexcept { return id_.hash(); }

   VORN_FROM_LOG( RouterId )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == RouterId(); }
   friend auto operator<=>( RouterId const &, RouterId const & ) noexcept = default;

 private:
   Lumo::IpAddr id_;
};
/// Dotted.
VORN_TEXT( RouterId )
/// In the attribute log 32 bits.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, RouterId const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, RouterId * value );

} // namespace Mpls

VORN_OUTSIDE_VALUE( Mpls::RouterId )
