/// \file
/// Shared immutable strings of octets, one word wide, and the printf-style maker of them.
#pragma once

#include "Vorn/Ptr.h"

#include <compare>
#include <iosfwd>
#include <string_view>

namespace Vorn {

/// A string of any octets, zeros included. Copies share the data; a null pointer is the empty string.
/// Equality and order are by content. Every string's data has one zero octet behind it, which does not count.
class VORN_API String {
 public:
   /// A position in the octets; `begin()` to `end()` is what the text readers consume.
   using IteratorConst = char const *;

   /// The empty string.
   constexpr String() noexcept = default;
   String( char const * text ) : String( std::string_view( text ) ) {}
   /// A copy of those octets.
   explicit String( std::string_view octets );
   /// The `bytes` octets at `octets`.
   String( void const * octets, std::size_t bytes )
        : String( std::string_view( static_cast< char const * >( octets ), bytes ) ) {}
   /// The octets of another string, shared or taken.
   String( String const & other ) noexcept : data_( other.data_ ) {
      if ( data_ ) refInc( data_->refs );
   }
   String( String && other ) noexcept : data_( std::exchange( other.data_, nullptr ) ) {}
   ~String() {
      if ( data_ && refDec( data_->refs ) == 0 ) release();
   }
   String & operator=( String other ) noexcept {
      std::swap( data_, other.data_ );
      return *this;
   }

   /// Number of octets.
   U32 bytes() const noexcept { return data_ ? data_->bytes : 0; }
   /// Whether there are none.
   bool empty() const noexcept { return bytes() == 0; }
   bool operator!() const noexcept { return empty(); }
   /// The octets, with a zero octet behind the last.
   char const * charPtr() const noexcept {
      return data_ ? reinterpret_cast< char const * >( data_ + 1 ) : nothing_;
   }
   /// The first octet.
   IteratorConst begin() const noexcept { return charPtr(); }
   /// Behind the last octet.
   IteratorConst end() const noexcept { return charPtr() + bytes(); }
   /// The octets as a view, good as long as the string stays.
   std::string_view view() const noexcept { return { charPtr(), bytes() }; }

   /// Hash of the octets; 0 for the empty string.
   U32 hash() const noexcept;

   /// Appends octets.
   String & operator+=( std::string_view octets );
   String & operator+=( String const & text ) { return *this += text.view(); }
   String & operator+=( char const * text ) { return *this += std::string_view( text ); }

   friend String operator+( String a, String const & b ) { return a += b; }
   friend String operator+( String a, char const * b ) { return a += b; }
   friend String operator+( char const * a, String const & b ) { return String( a ) += b; }
   friend bool operator==( String const & a, String const & b ) noexcept {
      return a.data_ == b.data_ || a.view() == b.view();
   }
   friend bool operator==( String const & a, char const * b ) noexcept { return a.view() == b; }
   friend std::strong_ordering operator<=>( String const & a, String const & b ) noexcept {
      return a.view().compare( b.view() ) <=> 0; // not every standard library has it for views
   }

 private:
   struct Data {
      U32 refs;
      U32 bytes;
   };
   void release() noexcept;
   static Data * newData( std::size_t bytes );

   // An object, not a literal, which need not have the same address twice: begin() and end() must agree.
   static constexpr char nothing_[1] = {};

   Data * data_ = nullptr; // null exactly when the string is empty
};

/// Writes the octets as they stand.
VORN_API std::ostream & operator<<( std::ostream & out, String const & text );

/// A name of an entity, or a string that serves as a key.
class VORN_API Name : public String {
 public:
   using String::String;
   /// The empty name.
   constexpr Name() noexcept = default;
   Name( String const & text ) noexcept : String( text ) {}
};

/// The text that printf would make of the same arguments.
[[gnu::format( printf, 1, 2 )]] VORN_API String format( char const * pattern, ... );

} // namespace Vorn
