/// \file
/// Network-order integers in place: exactly as wide as the integer, at any alignment, read and written by
/// bytes. Every field of a wire view is one of these or is built on one.
#pragma once

#include "Vorn/NboAttrLogValues.h"
#include "Vorn/Strep.h"

#include <bit>

namespace Lumo {

/// One octet of a wire format.
class NetU8 {
 public:
   constexpr NetU8() noexcept = default;
   constexpr explicit NetU8( U8 value ) noexcept : v0_( value ) {}

   /// The octet.
   constexpr U8 value() const noexcept { return v0_; }
   constexpr void valueIs( U8 value ) noexcept { v0_ = value; }

   VORN_FROM_LOG( NetU8 )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return !value(); }
   friend constexpr bool operator==( NetU8, NetU8 ) noexcept = default;
   friend constexpr bool operator<( NetU8 a, NetU8 b ) noexcept { return a.v0_ < b.v0_; }

 private:
   U8 v0_ = 0;
};

/// A 16-bit big-endian integer of a wire format.
class NetU16 {
 public:
   constexpr NetU16() noexcept = default;
   /// From a value in host order.
   constexpr explicit NetU16( U16 value ) noexcept { valueIs( value ); }

   /// The value in host order.
   constexpr U16 value() const noexcept { return U16( v_[0] << 8 | v_[1] ); }
   constexpr void valueIs( U16 value ) noexcept {
      v_[0] = U8( value >> 8 );
      v_[1] = U8( value );
   }
   /// What the constructor takes to make an equal value.
   constexpr U16 ctorValue() const noexcept { return value(); }

   /// The first octet in wire order.
   constexpr U8 v0() const noexcept { return v_[0]; }
   /// The second octet in wire order.
   constexpr U8 v1() const noexcept { return v_[1]; }
   /// Sets the first octet in wire order.
   constexpr void v0Is( U8 octet ) noexcept { v_[0] = octet; }
   /// Sets the second octet in wire order.
   constexpr void v1Is( U8 octet ) noexcept { v_[1] = octet; }

   /// Equal values have equal hashes.
   constexpr U32 hash() const noexcept {
      U32 x = ( U32( value() ) ^ 61 ) * 9;
      x = ( x ^ ( x >> 4 ) ) * 668265261;
      return x ^ ( x >> 15 );
   }
   VORN_FROM_LOG( NetU16 )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return !value(); }
   friend constexpr bool operator==( NetU16, NetU16 ) noexcept = default;
   friend constexpr bool operator<( NetU16 a, NetU16 b ) noexcept { return a.value() < b.value(); }

 protected:
   /// The bits of `mask`, shifted down so that its lowest bit is bit 0.
   template< U16 mask >
   constexpr U16 bits() const noexcept {
      return U16( ( value() & mask ) >> std::countr_zero( mask ) );
   }
   /// Replaces the bits of `mask` by the low bits of `part`; the others stay.
   template< U16 mask >
   constexpr void bitsIs( U32 part ) noexcept {
      valueIs( U16( ( value() & U16( ~mask ) ) | ( part << std::countr_zero( mask ) & mask ) ) );
   }

 private:
   U8 v_[2] = {};
};

/// A 32-bit big-endian integer of a wire format.
class NetU32 {
 public:
   constexpr NetU32() noexcept = default;
   /// From a value in host order.
   constexpr explicit NetU32( U32 value ) noexcept { valueIs( value ); }

   /// The value in host order.
   constexpr U32 value() const noexcept {
      return U32( v_[0] ) << 24 | U32( v_[1] ) << 16 | U32( v_[2] ) << 8 | v_[3];
   }
   constexpr void valueIs( U32 value ) noexcept {
      v_[0] = U8( value >> 24 );
      v_[1] = U8( value >> 16 );
      v_[2] = U8( value >> 8 );
      v_[3] = U8( value );
   }
   /// What the constructor takes to make an equal value.
   constexpr U32 ctorValue() const noexcept { return value(); }

   /// The four octets in wire order.
   constexpr U8 v0() const noexcept { return v_[0]; }
   constexpr U8 v1() const noexcept { return v_[1]; }
   constexpr U8 v2() const noexcept { return v_[2]; }
   constexpr U8 v3() const noexcept { return v_[3]; }
   constexpr void v0Is( U8 octet ) noexcept { v_[0] = octet; }
   constexpr void v1Is( U8 octet ) noexcept { v_[1] = octet; }
   constexpr void v2Is( U8 octet ) noexcept { v_[2] = octet; }
   constexpr void v3Is( U8 octet ) noexcept { v_[3] = octet; }

   /// Equal values have equal hashes.
   constexpr U32 hash() const noexcept {
      U32 const v = value();
      U32 x = ( v ^ 61 ^ ( v >> 16 ) ) * 9;
      x = ( x ^ ( x >> 4 ) ) * 668265261;
      return x ^ ( x >> 15 );
   }
   VORN_FROM_LOG( NetU32 )
   /// Whether the value equals a default one.
   constexpr bool operator!() const noexcept { return !value(); }
   friend constexpr bool operator==( NetU32, NetU32 ) noexcept = default;
   friend constexpr bool operator<( NetU32 a, NetU32 b ) noexcept { return a.value() < b.value(); }

 protected:
   /// The bits of `mask`, shifted down so that its lowest bit is bit 0.
   template< U32 mask >
   constexpr U32 bits() const noexcept {
      return ( value() & mask ) / ( mask & -mask );
   }
   /// Replaces the bits of `mask` by the low bits of `part`; the others stay.
   template< U32 mask >
   constexpr void bitsIs( U32 part ) noexcept {
      valueIs( ( value() & ~mask ) | ( ( part * ( mask & -mask ) ) & mask ) );
   }

 private:
   U8 v_[4] = {};
};

static_assert( sizeof( NetU8 ) == 1 && alignof( NetU8 ) == 1 );
static_assert( sizeof( NetU16 ) == 2 && alignof( NetU16 ) == 1 );
static_assert( sizeof( NetU32 ) == 4 && alignof( NetU32 ) == 1 );

/// In decimal, the value in host order.
inline Vorn::String valueToStrep( NetU8 const & value ) { return Vorn::valueToStrep( value.value() ); }
inline Vorn::String valueToStrep( NetU16 const & value ) { return Vorn::valueToStrep( value.value() ); }
inline Vorn::String valueToStrep( NetU32 const & value ) { return Vorn::valueToStrep( value.value() ); }

/// In decimal, the value in host order.
inline std::ostream & operator<<( std::ostream & out, NetU8 const & value ) {
   return out << valueToStrep( value );
}
inline std::ostream & operator<<( std::ostream & out, NetU16 const & value ) {
   return out << valueToStrep( value );
}
inline std::ostream & operator<<( std::ostream & out, NetU32 const & value ) {
   return out << valueToStrep( value );
}

/// Reads a decimal number into a network-order integer, or into a field of one octet that stands on one. The
/// wider fields have text forms of their own.
template< class Net >
requires( std::derived_from< Net, NetU8 > || std::same_as< Net, NetU16 > ||
          std::same_as< Net, NetU32 > ) void sequenceToValue( Vorn::String::IteratorConst & it,
                                                              Vorn::String::IteratorConst const & end,
                                                              Net * value ) {
   decltype( value->value() ) host;
   Vorn::sequenceToValue( it, end, &host );
   value->valueIs( host );
}

/// In the attribute log the number.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, NetU8 value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, NetU8 * value );
VORN_API void logOut( Vorn::NboAttrLog::Out & out, NetU16 value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, NetU16 * value );
VORN_API void logOut( Vorn::NboAttrLog::Out & out, NetU32 value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, NetU32 * value );

} // namespace Lumo

VORN_OUTSIDE_VALUE( Lumo::NetU8 )
VORN_OUTSIDE_VALUE( Lumo::NetU16 )
VORN_OUTSIDE_VALUE( Lumo::NetU32 )
