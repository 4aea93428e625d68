/// \file
/// Keys on their way into a hash map: the forms in which a key is handed to the type-erased tables, each with
/// the 32-bit word that places it. `HashKey< Key >` picks the form of a key type.
#pragma once

#include "Vorn/Hash.h"
#include "Vorn/String.h"

#include <concepts>
#include <type_traits>

namespace Vorn {

/// The bits of `value` in the opposite order.
constexpr U32 bitReverse( U32 value ) noexcept {
   value = ( value >> 1 & 0x55555555u ) | ( value & 0x55555555u ) << 1;
   value = ( value >> 2 & 0x33333333u ) | ( value & 0x33333333u ) << 2;
   value = ( value >> 4 & 0x0f0f0f0fu ) | ( value & 0x0f0f0f0fu ) << 4;
   return __builtin_bswap32( value );
}

/// A key with its hash word. The word is the reversed hash, so that the members of a growing table keep their
/// order; its lowest bit is always 0, because the table keeps a mark there.
class HashHelper {
 public:
   class KeyAndRhash;
   class KeyU32;
   class KeyString;

   /// Lowest bit of a word in a table: the member is marked for deletion.
   static constexpr U32 markBit = 1;

   U32 word() const noexcept { return word_; }

   HashHelper( HashHelper const & ) = delete;
   HashHelper & operator=( HashHelper const & ) = delete;

 protected:
   explicit HashHelper( U32 reversed ) noexcept : word_( reversed & ~markBit ) {}
   ~HashHelper() = default;

 private:
   U32 word_;
};

/// Any key, by address, with the hash that the caller took of it. The key outlives this object.
class HashHelper::KeyAndRhash : public HashHelper {
 public:
   KeyAndRhash( void const * key, U32 hash ) noexcept : HashHelper( bitReverse( hash ) ), key_( key ) {}
   void const * key() const noexcept { return key_; }

 private:
   void const * key_;
};

/// A key of up to 32 bits, by value; it is its own hash input.
class HashHelper::KeyU32 : public HashHelper {
 public:
   /// A little less than 2^32 / 32, so the words of 0 to 31 ascend and small indices are appended to their
   /// bucket. Of the multipliers in that range this one fills the table most evenly with longer runs, with
   /// multiples of small numbers and of powers of two, and with addresses in either byte order.
   static constexpr U32 multiplier = 0x07f23f9d;

   explicit KeyU32( U32 key ) noexcept : HashHelper( key * multiplier ), key_( key ) {}
   U32 key() const noexcept { return key_; }

 private:
   U32 key_;
};

/// A string or name, by address. The string outlives this object.
class HashHelper::KeyString : public HashHelper {
 public:
   explicit KeyString( String const & key ) noexcept : HashHelper( bitReverse( key.hash() ) ), key_( &key ) {}
   String const & key() const noexcept { return *key_; }

 private:
   String const * key_;
};

/// How keys of type `Key` are hashed, and compared with a key in a member.
template< class Key >
struct HashKey;

/// Strings and names.
template< std::derived_from< String > Key >
struct HashKey< Key > {
   using Form = HashHelper::KeyString;
   static Form form( Key const & key ) noexcept { return Form( key ); }
   static Key const & key( Form const & form ) noexcept { return static_cast< Key const & >( form.key() ); }
};

/// Integers and enumerations of up to 32 bits.
template< class Key >
requires( (std::is_integral_v< Key > || std::is_enum_v< Key >)&&sizeof( Key ) <= 4 ) //
     struct HashKey< Key > {
   using Form = HashHelper::KeyU32;
   static Form form( Key key ) noexcept { return Form( static_cast< U32 >( key ) ); }
   static Key key( Form const & form ) noexcept { return static_cast< Key >( form.key() ); }
};

/// 64-bit integers.
template< std::integral Key >
requires( sizeof( Key ) == 8 ) //
     struct HashKey< Key > {
   using Form = HashHelper::KeyAndRhash;
   static Form form( Key const & key ) noexcept {
      return Form( &key, VornHashBase< false >::hashU64( static_cast< U64 >( key ) ) );
   }
   static Key const & key( Form const & form ) noexcept { return *static_cast< Key const * >( form.key() ); }
};

/// Everything else says its hash itself.
template< class Key >
requires requires( Key const & key ) {
   { key.hash() } -> std::same_as< U32 >;
} &&(!std::derived_from< Key, String >)struct HashKey< Key > {
   using Form = HashHelper::KeyAndRhash;
   static Form form( Key const & key ) noexcept { return Form( &key, key.hash() ); }
   static Key const & key( Form const & form ) noexcept { return *static_cast< Key const * >( form.key() ); }
};

} // namespace Vorn
