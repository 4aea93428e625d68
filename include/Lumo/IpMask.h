/// \file
/// Addresses with a mask: an interface's address together with the prefix that it lies in. Unlike a prefix
/// they keep the bits behind the mask.
#pragma once

#include "Lumo/Ip.h"

namespace Lumo {

/// An IPv4 address with the length of its mask in bits, as in 10.0.0.1/24.
class VORN_API IpAddrWithMask {
 public:
   IpAddrWithMask() noexcept = default;
   /// `bits` is at most 32.
   IpAddrWithMask( IpAddr const & address, U32 bits ) noexcept : address_( address ), len_( bits ) {}

   /// The address.
   IpAddr const & address() const noexcept { return address_; }
   /// Length of the mask in bits.
   U32 len() const noexcept { return len_; }

   /// Equal values have equal hashes.
   U32 hash() const noexcept;
   VORN_FROM_LOG( IpAddrWithMask )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == IpAddrWithMask(); }
   /// By address, then by length.
   friend auto operator<=>( IpAddrWithMask const &, IpAddrWithMask const & ) noexcept = default;

 private:
   IpAddr address_;
   U32 len_ = 0;
};
VORN_TEXT( IpAddrWithMask )

/// An address of either family with the length of its mask in bits. The default has no family and reads
/// "none/0".
class VORN_API IpGenAddrWithMask {
 public:
   IpGenAddrWithMask() noexcept = default;
   /// `bits` is at most 32 for an IPv4 address and 128 for an IPv6 one.
   IpGenAddrWithMask( IpGenAddr const & address, U32 bits ) noexcept : address_( address ), len_( bits ) {}

   /// The address.
   IpGenAddr const & address() const noexcept { return address_; }
   /// Length of the mask in bits.
   U32 len() const noexcept { return len_; }

   /// Equal values have equal hashes.
   U32 hash() const noexcept;
   VORN_FROM_LOG( IpGenAddrWithMask )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == IpGenAddrWithMask(); }
   /// By address, then by length.
   friend auto operator<=>( IpGenAddrWithMask const &, IpGenAddrWithMask const & ) noexcept = default;

 private:
   IpGenAddr address_;
   U32 len_ = 0;
};
VORN_TEXT( IpGenAddrWithMask )

/// In the attribute log the address, then the length in 8 bits; a length that does not fit the family is
/// refused with RangeException.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, IpAddrWithMask const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, IpAddrWithMask * value );
VORN_API void logOut( Vorn::NboAttrLog::Out & out, IpGenAddrWithMask const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, IpGenAddrWithMask * value );

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::IpAddrWithMask )
VORN_OUTSIDE_VALUE( Lumo::IpGenAddrWithMask )
