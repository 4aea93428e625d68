/// \file
/// The LDP identifier: who a label space belongs to (RFC 5036, 2.2.2).
#pragma once

#include "Lumo/Net.h"
#include "Vorn/NboAttrLogValues.h"

namespace Ldp {

/// Six octets: the LSR id, then the label space, laid out as in the PDU header. The default is all zero.
class VORN_API LdpIdentifier {
   VORN_REFLECTED( LdpIdentifier, void )

 public:
   constexpr LdpIdentifier() noexcept = default;
   /// From values in host order.
   constexpr LdpIdentifier( U32 lsrId, U16 lblSpace ) noexcept : lsrId_( lsrId ), lblSpace_( lblSpace ) {}

   /// LSR id, a number in host order that is written as an IPv4 address.
   constexpr U32 lsrId() const noexcept { return lsrId_.value(); }
   /// Label space; 0 is the platform-wide one.
   constexpr U16 lblSpace() const noexcept { return lblSpace_.value(); }
   /// Sets the LSR id.
   constexpr void tmpLsrIdIs( U32 lsrId ) noexcept { lsrId_.valueIs( lsrId ); }
   /// Sets the label space.
   constexpr void tmpLblSpaceIs( U16 lblSpace ) noexcept { lblSpace_.valueIs( lblSpace ); }

   /// Hash of both parts, by a fixed formula: anybody can find 65,536 identifiers that have one. Who keys a
   /// map by identifiers that come from the network sees to it that they do not become as many as
   /// `HashMap2018` bears of one hash, 16,383, or walks a long chain in a `HashMap`.
   U32 hash() const noexcept {
      U32 h = lsrId() * 32767 - 1;
      h = ( h ^ ( h >> 12 ) ) * 5;
      h = ( h ^ ( h >> 4 ) ) * 2057;
      return lblSpace() + ( ( h >> 16 ) ^ h );
   }
   /// As in `10.0.0.1:0`.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( LdpIdentifier )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return *this == LdpIdentifier(); }
   friend constexpr bool operator==( LdpIdentifier const &, LdpIdentifier const & ) noexcept = default;
   /// By LSR id, then by label space.
   friend constexpr bool operator<( LdpIdentifier const & a, LdpIdentifier const & b ) noexcept {
      return a.lsrId_ == b.lsrId_ ? a.lblSpace_ < b.lblSpace_ : a.lsrId_ < b.lsrId_;
   }

 private:
   Lumo::NetU32 lsrId_;
   Lumo::NetU16 lblSpace_;
};
static_assert( sizeof( LdpIdentifier ) == 6 && alignof( LdpIdentifier ) == 1 );
VORN_TEXT( LdpIdentifier )

/// In the attribute log the LSR id in 32 bits, the label space in 16.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, LdpIdentifier const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, LdpIdentifier * value );

} // namespace Ldp
