// The secret of all hashes, and the hash of bytes.
#include "Vorn/Hash.h"

#include <chrono>
#include <exception>
#include <random>

namespace Vorn {

namespace {

/// Makes words of a number: each call the next.
class Words {
 public:
   explicit Words( U64 number ) noexcept : state_( number ) {}
   U64 next() noexcept {
      state_ += 0x9e3779b97f4a7c15u;
      U64 z = state_;
      z = ( z ^ ( z >> 30 ) ) * 0xbf58476d1ce4e5b9u;
      z = ( z ^ ( z >> 27 ) ) * 0x94d049bb133111ebu;
      return z ^ ( z >> 31 );
   }

 private:
   U64 state_;
};

HashSecret secretOf( U64 number ) noexcept {
   Words words( number );
   HashSecret secret;
   for ( U64 & word : secret.word ) {
      word = words.next();
   }
   return secret;
}

HashSecret drawSecret() noexcept {
   try {
      std::random_device random;
      HashSecret secret;
      for ( U64 & word : secret.word ) {
         word = U64( random() ) << 32 | random();
      }
      return secret;
   } catch ( std::exception const & ) {
      // A system without randomness: where the process lies and when it began is what there is to be had.
      static char const here = 0;
      auto const now = U64( std::chrono::system_clock::now().time_since_epoch().count() );
      return secretOf( now ^ U64( reinterpret_cast< std::uintptr_t >( &here ) ) * 0x9e3779b97f4a7c15u );
   }
}

U64 read64( U8 const * at ) noexcept {
   U64 word;
   std::memcpy( &word, at, 8 );
   return word;
}

U32 read32( U8 const * at ) noexcept {
   U32 word;
   std::memcpy( &word, at, 4 );
   return word;
}

} // namespace

// Other initializers hash.
[[gnu::init_priority( 101 )]] HashSecret hashSecret_ = drawSecret();

void hashSecretIs( U64 number ) noexcept { hashSecret_ = secretOf( number ); }

U32 hashBytes( void const * data, std::size_t bytes ) noexcept {
   auto const * at = static_cast< U8 const * >( data );
   U64 const length = bytes;
   U64 h = 0;
   for ( ; bytes > 16; bytes -= 16, at += 16 ) {
      h = hashFold( read64( at ) ^ hashSecret_.word[0], read64( at + 8 ) ^ hashSecret_.word[1] ^ h );
   }
   // The last 16 at most, as two words, which overlap where there are fewer; the length tells such from
   // others.
   U64 first = 0, last = 0;
   if ( bytes >= 8 ) {
      first = read64( at );
      last = read64( at + bytes - 8 );
   } else if ( bytes >= 4 ) {
      first = read32( at );
      last = read32( at + bytes - 4 );
   } else if ( bytes ) {
      first = U64( at[0] ) << 16 | U64( at[bytes / 2] ) << 8 | at[bytes - 1];
   }
   return hashWords( first, last ^ h, length );
}

} // namespace Vorn
