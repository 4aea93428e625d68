/// \file
/// Hashing: of words, of bytes, and of the fields of composite keys.
///
/// All of it takes a secret that each process draws for itself, since a peer chooses many of the keys:
/// addresses, prefixes, labels. Without the secret nobody can tell which keys meet in a map. So the order of
/// a map differs from run to run, and nothing that is printed or sent depends on it. Hash values never leave
/// the process.
///
/// A few kinds of key have a fixed formula instead: `Ldp::LdpIdentifier` and what is made of it,
/// `Lumo::NetU16` and `Lumo::NetU32`, and plain numbers and enumerations, of which no more than two can meet.
/// Of the others a peer can choose as many of one hash as it likes; see `HashMap2018` for how many of them a
/// map bears.
#pragma once

#include "Vorn/Api.h"

#include <cstring>

namespace Vorn {

/// What a process's hashes are made with.
struct HashSecret {
   /// Random words.
   U64 word[4];
};
/// Drawn before anything else in the library is initialized, and then the same until the process ends.
VORN_API extern HashSecret hashSecret_;

/// Puts a secret in the place of the one that was drawn, so that a test can be repeated with the maps in the
/// same order. A map that has members by then finds them no more. Never for a process that has peers: who
/// knows the number knows the secret.
VORN_API void hashSecretIs( U64 number ) noexcept;

/// The product of two words, its halves folded into one.
inline U64 hashFold( U64 a, U64 b ) noexcept {
   __extension__ using U128 = unsigned __int128;
   U128 const product = U128( a ) * b;
   return U64( product ) ^ U64( product >> 64 );
}

/// Hash of three words, such as the two halves of an address and the length of its prefix.
inline U32 hashWords( U64 a, U64 b = 0, U64 c = 0 ) noexcept {
   HashSecret const & secret = hashSecret_;
   U64 const h = hashFold( a ^ secret.word[0], b ^ secret.word[1] );
   U64 const folded = hashFold( h ^ secret.word[2], c ^ secret.word[3] );
   // Where only one of the three changes, and that in steps, so does the product; this breaks the steps up.
   return U32( ( ( folded ^ folded >> 32 ) * 0x9e3779b97f4a7c15u ) >> 32 );
}

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
   U32 result() const noexcept { return hashWords( U64( high_ ) << 32 | low_, 0, words_ ); }

 private:
   void add( U32 word ) noexcept {
      U64 const state = ( U64( high_ ) << 32 | low_ ) + word;
      U64 const mixed = hashFold( state ^ hashSecret_.word[0], hashSecret_.word[1] );
      high_ = U32( mixed >> 32 );
      low_ = U32( mixed );
      ++words_;
   }

   U32 high_ = 0;
   U32 low_ = 0;
   U32 words_ = 0; // taken so far, so that trailing zeros count
};
static_assert( sizeof( Hash ) == 12 );

/// Hash of any run of bytes.
VORN_API U32 hashBytes( void const * data, std::size_t bytes ) noexcept;

/// Hashes of the built-in integers that are too wide to be a hash word themselves.
template< bool >
struct VornHashBase {
   /// The hash of that integer.
   static U32 hashU64( U64 value ) noexcept { return hashWords( value ); }
};

} // namespace Vorn
