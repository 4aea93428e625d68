/// \file
/// The forwarding equivalence class (FEC): what LDP binds labels to (RFC 5036, 2.1).
#pragma once

#include "Lumo/Ip.h"

namespace Mpls {

/// A FEC value: a tag that tells its kind, and one of three payloads. The payloads that the tag does not name
/// read as their defaults. The default is the prefix form of no
/// prefix.
class VORN_API FwdEqvClass {
 public:
   /// What the value holds.
   enum Tag : U8 {
      prefixTag = 0, ///< an IP prefix
      wordsTag = 1,  ///< two 32-bit words
      p2mpTag = 2,   ///< a root address with a 32-bit index, the point-to-multipoint form
   };

   FwdEqvClass() noexcept = default;
   /// The prefix form.
   explicit FwdEqvClass( Lumo::IpGenPrefix const & prefix ) noexcept
        : address_( prefix.address() ), first_( prefix.len() ) {}
   /// The form of two words.
   FwdEqvClass( U32 first, U32 second ) noexcept : tag_( wordsTag ), first_( first ), second_( second ) {}
   /// The point-to-multipoint form.
   FwdEqvClass( Lumo::IpGenAddr const & root, U32 index ) noexcept
        : tag_( p2mpTag ), address_( root ), first_( index ) {}

   /// What the value holds.
   Tag tag() const noexcept { return tag_; }
   /// The prefix; the default one of the other forms.
   Lumo::IpGenPrefix prefix() const noexcept {
      if ( tag_ != prefixTag || address_.family() == Lumo::noFamily ) return {};
      return Lumo::IpGenPrefix( address_, first_ );
   }
   /// The root address of the point-to-multipoint form; the default one of the others.
   Lumo::IpGenAddr root() const noexcept { return tag_ == p2mpTag ? address_ : Lumo::IpGenAddr(); }
   /// First word, or the index of the point-to-multipoint form.
   U32 first() const noexcept { return tag_ == prefixTag ? 0 : first_; }
   /// Second word; 0 of the other forms.
   U32 second() const noexcept { return second_; }

   /// Equal values have equal hashes.
   U32 hash() const noexcept;
   /// `10.0.0.0/8`, `words(1,2)` or `p2mp(10.0.0.1,7)`.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( FwdEqvClass )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == FwdEqvClass(); }
   /// By tag, then by payload.
   friend auto operator<=>( FwdEqvClass const &, FwdEqvClass const & ) noexcept = default;

 private:
   // The payloads share their room, since a router keeps millions of these.
   Tag tag_ = prefixTag;
   Lumo::IpGenAddr address_; // of the prefix, or the root
   U32 first_ = 0;           // length of the prefix, first word, or index
   U32 second_ = 0;
};
static_assert( sizeof( FwdEqvClass ) == 32 );
VORN_TEXT( FwdEqvClass )

/// In the attribute log the tag in 8 bits, then the payload that it names.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, FwdEqvClass const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, FwdEqvClass * value );

} // namespace Mpls

VORN_OUTSIDE_VALUE( Mpls::FwdEqvClass )
