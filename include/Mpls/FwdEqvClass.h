/// \file
/// The forwarding equivalence class (FEC): what LDP binds labels to (RFC 5036, 2.1).
#pragma once

#include "Lumo/Ip.h"

namespace Mpls {

/// A FEC value: a tag that tells its kind, and one of three payloads. The payloads that the tag does not name
/// hold their defaults, so that equal FECs are equal in every field. The default is the prefix form of no
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
   explicit FwdEqvClass( Lumo::IpGenPrefix const & prefix ) noexcept : prefix_( prefix ) {}
   FwdEqvClass( U32 first, U32 second ) noexcept : tag_( wordsTag ), first_( first ), second_( second ) {}
   FwdEqvClass( Lumo::IpGenAddr const & root, U32 index ) noexcept
        : tag_( p2mpTag ), root_( root ), first_( index ) {}

   Tag tag() const noexcept { return tag_; }
   Lumo::IpGenPrefix const & prefix() const noexcept { return prefix_; }
   Lumo::IpGenAddr const & root() const noexcept { return root_; }
   /// First word, or the index of the point-to-multipoint form.
   U32 first() const noexcept { return first_; }
   U32 second() const noexcept { return second_; }

   U32 hash() const noexcept;
   /// `10.0.0.0/8`, `words(1,2)` or `p2mp(10.0.0.1,7)`.
   Vorn::String stringValue() const;

   /// By tag, then by payload.
   friend auto operator<=>( FwdEqvClass const &, FwdEqvClass const & ) noexcept = default;

 private:
   Tag tag_ = prefixTag;
   Lumo::IpGenPrefix prefix_;
   Lumo::IpGenAddr root_;
   U32 first_ = 0;
   U32 second_ = 0;
};
VORN_TEXT( FwdEqvClass )

/// In the attribute log the tag in 8 bits, then the payload that it names.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, FwdEqvClass const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, FwdEqvClass * value );

} // namespace Mpls

VORN_OUTSIDE_VALUE( Mpls::FwdEqvClass )
