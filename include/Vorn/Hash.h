/// \file
/// Hashing: the mixer for composite keys, and the hash of bytes and of 64-bit integers. Hash values never
/// leave the process.
#pragma once

#include "Vorn/Api.h"

#include <cstring>

namespace Vorn {

/// Mixes the fields of a key into one 32-bit hash. The same fields in the same order give the same result.
class Hash {
 public:
   /// Adds the 1 or 4 bytes at `data`.
   template< unsigned bytes >
   void mix( void const * data ) noexcept {
      static_assert( bytes == 1 || bytes == 4 );
      if constexpr ( bytes == 4 ) {
         U32 word;
         std::memcpy( &word, data, 4 );
         add( word );
      } else {
         add( *static_cast< U8 const * >( data ) );
      }
   }

   /// The hash of all that was mixed in.
   U32 result() const noexcept {
      U32 h = state_ ^ ( bytes_ * 0x9e3779b1u );
      h = ( h ^ ( h >> 16 ) ) * 0x85ebca6bu;
      h = ( h ^ ( h >> 13 ) ) * 0xc2b2ae35u;
      return h ^ ( h >> 16 ) ^ ( carry_ >> 16 );
   }

 private:
   void add( U32 word ) noexcept {
      U64 const product = ( U64( word ) + 0x9e3779b97f4a7c15u + carry_ ) * ( 0xd6e8feb86659fd93u ^ state_ );
      state_ = ( state_ << 7 | state_ >> 25 ) ^ U32( product >> 32 );
      carry_ ^= U32( product );
      ++bytes_;
   }

   U32 state_ = 0;
   U32 carry_ = 0;
   U32 bytes_ = 0; // words taken, so that trailing zeros count
};
static_assert( sizeof( Hash ) == 12 );

/// Hash of any run of bytes.
VORN_API U32 hashBytes( void const * data, std::size_t bytes ) noexcept;

/// Hashes of the built-in integers that are too wide to be a hash word themselves.
template< bool >
struct VornHashBase {
   static U32 hashU64( U64 value ) noexcept {
      value = ( value ^ ( value >> 32 ) ) * 0xd6e8feb86659fd93u;
      value = ( value ^ ( value >> 32 ) ) * 0xd6e8feb86659fd93u;
      return U32( value ^ ( value >> 32 ) );
   }
};

} // namespace Vorn
