/// \file
/// IP addresses and prefixes as values. The octets stand in network order, and each type's text reads back.
#pragma once

#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

#include <array>
#include <compare>

namespace Lumo {

/// In the order of the octets on the wire. Not every standard library compares arrays so.
template< std::size_t size >
constexpr std::strong_ordering compareOctets( std::array< U8, size > const & a,
                                              std::array< U8, size > const & b ) noexcept {
   for ( std::size_t i = 0; i < size; ++i )
      if ( a[i] != b[i] ) return a[i] <=> b[i];
   return std::strong_ordering::equal;
}

/// Address families as the protocol numbers them (RFC 5036, 3.4.1); these two are all that it uses.
#define VORN_LUMO_ADDRESS_FAMILIES( X )                                                                      \
   X( noFamily, 0 )                                                                                          \
   X( ipv4, 1 )                                                                                              \
   X( ipv6, 2 )
VORN_ENUM( AddressFamily, VORN_LUMO_ADDRESS_FAMILIES )

/// An IPv4 address, four octets in network order; default 0.0.0.0. It may lie in a packet at any alignment.
class VORN_API IpAddr {
 public:
   static constexpr std::size_t size = 4; ///< octets of an address
   static constexpr U32 bits = 32;        ///< bits of an address

   constexpr IpAddr() noexcept = default;
   /// From a number in host order: 0x0a000001 is 10.0.0.1.
   constexpr explicit IpAddr( U32 host ) noexcept
        : octets_{ U8( host >> 24 ), U8( host >> 16 ), U8( host >> 8 ), U8( host ) } {}

   /// The octets in network order.
   constexpr U8 const * octets() const noexcept { return octets_.data(); }
   constexpr U8 * octets() noexcept { return octets_.data(); }
   /// The address as a number in host order.
   constexpr U32 value() const noexcept {
      return U32( octets_[0] ) << 24 | U32( octets_[1] ) << 16 | U32( octets_[2] ) << 8 | octets_[3];
   }

   /// Equal values have equal hashes.
   U32 hash() const noexcept;
   /// Dotted decimal.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( IpAddr )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return *this == IpAddr(); }
   friend constexpr bool operator==( IpAddr const &, IpAddr const & ) noexcept = default;
   friend constexpr std::strong_ordering operator<=>( IpAddr const & a, IpAddr const & b ) noexcept {
      return compareOctets( a.octets_, b.octets_ );
   }

 private:
   std::array< U8, 4 > octets_{};
};
static_assert( sizeof( IpAddr ) == 4 && alignof( IpAddr ) == 1 );
VORN_TEXT( IpAddr )

/// An IPv6 address, sixteen octets in network order; default ::. It may lie in a packet at any alignment.
class VORN_API Ip6Addr {
 public:
   static constexpr std::size_t size = 16; ///< octets of an address
   static constexpr U32 bits = 128;        ///< bits of an address

   constexpr Ip6Addr() noexcept = default;

   /// The octets in network order.
   constexpr U8 const * octets() const noexcept { return octets_.data(); }
   constexpr U8 * octets() noexcept { return octets_.data(); }

   /// Equal values have equal hashes.
   U32 hash() const noexcept { return hashWith( 0 ); }
   /// That of the address with a length or the like beside it.
   U32 hashWith( U64 small ) const noexcept;
   /// The canonical text of RFC 5952, without the mixed IPv4 notation.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( Ip6Addr )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return *this == Ip6Addr(); }
   friend constexpr bool operator==( Ip6Addr const &, Ip6Addr const & ) noexcept = default;
   friend constexpr std::strong_ordering operator<=>( Ip6Addr const & a, Ip6Addr const & b ) noexcept {
      return compareOctets( a.octets_, b.octets_ );
   }

 private:
   std::array< U8, 16 > octets_{};
};
static_assert( sizeof( Ip6Addr ) == 16 && alignof( Ip6Addr ) == 1 );
VORN_TEXT( Ip6Addr )

/// An address with its family. The default has no family: it is unequal to 0.0.0.0 and to ::, and reads
/// "none".
class VORN_API IpGenAddr {
 public:
   constexpr IpGenAddr() noexcept = default;
   /// An address of that family.
   IpGenAddr( IpAddr const & addr ) noexcept;
   IpGenAddr( Ip6Addr const & addr ) noexcept : family_( ipv6 ), addr_( addr ) {}
   /// Reads an address of either family. Throws RangeException.
   explicit IpGenAddr( Vorn::String const & text );

   /// The family; `noFamily` of the default.
   AddressFamily family() const noexcept { return family_; }
   /// The octets, 4, 16 or none of which belong to the address; those behind are zero.
   U8 const * octets() const noexcept { return addr_.octets(); }
   /// The IPv4 address; 0.0.0.0 unless the family is IPv4.
   IpAddr ipAddr() const noexcept;
   /// The IPv6 address; :: unless the family is IPv6.
   Ip6Addr ip6Addr() const noexcept { return family_ == ipv6 ? addr_ : Ip6Addr(); }

   /// That of the 16-octet field, whatever the family.
   U32 hash() const noexcept { return addr_.hash(); }
   /// That of the address with a length or the like beside it.
   U32 hashWith( U64 small ) const noexcept { return addr_.hashWith( small ); }
   /// The address as text; "none" without a family.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( IpGenAddr )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == IpGenAddr(); }
   /// By family, then by octets.
   friend constexpr auto operator<=>( IpGenAddr const &, IpGenAddr const & ) noexcept = default;

 private:
   AddressFamily family_ = noFamily;
   Ip6Addr addr_;
};
VORN_TEXT( IpGenAddr )

/// An address prefix: address, then length in bits, as in 10.0.0.0/8. Bits behind the length are cleared, so
/// that equal prefixes compare equal.
class VORN_API IpGenPrefix {
 public:
   IpGenPrefix() noexcept = default;
   /// `bits` is at most 32.
   IpGenPrefix( IpAddr const & addr, U32 bits ) noexcept;
   /// `bits` is at most 128.
   IpGenPrefix( Ip6Addr const & addr, U32 bits ) noexcept;
   /// `addr` has a family, and `bits` fits it.
   IpGenPrefix( IpGenAddr const & addr, U32 bits ) noexcept;

   /// The address, without bits behind the length.
   IpGenAddr const & address() const noexcept { return address_; }
   /// The address of an IPv4 prefix, 0.0.0.0 of any other.
   IpAddr v4Addr() const noexcept { return address_.ipAddr(); }
   /// Prefix length in bits.
   U32 len() const noexcept { return len_; }

   /// Equal values have equal hashes.
   U32 hash() const noexcept;
   /// As in 10.0.0.0/8.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( IpGenPrefix )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == IpGenPrefix(); }
   /// By address, then by length.
   friend auto operator<=>( IpGenPrefix const &, IpGenPrefix const & ) noexcept = default;

 private:
   IpGenAddr address_;
   U32 len_ = 0;
};
VORN_TEXT( IpGenPrefix )
/// The same by the name that others know it by.
using IpGenPrefixBase = IpGenPrefix;

/// In the attribute log an IPv4 address is a 32-bit number, anything else the family and then the octets.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, IpAddr const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, IpAddr * value );
VORN_API void logOut( Vorn::NboAttrLog::Out & out, Ip6Addr const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, Ip6Addr * value );
VORN_API void logOut( Vorn::NboAttrLog::Out & out, IpGenAddr const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, IpGenAddr * value );
VORN_API void logOut( Vorn::NboAttrLog::Out & out, IpGenPrefix const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, IpGenPrefix * value );

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::IpAddr )
VORN_OUTSIDE_VALUE( Lumo::Ip6Addr )
VORN_OUTSIDE_VALUE( Lumo::IpGenAddr )
VORN_OUTSIDE_VALUE( Lumo::IpGenPrefix )
