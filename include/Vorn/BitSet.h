/// \file
/// `Vorn_BitSet`: the status flags of an adapter of the attribute log, as they are handed to
/// `Entity::vornNboAttrLogSaIs`. The bits are named in StreamAdapter.h.
#pragma once

#include "Vorn/Api.h"

/// A word of flags.
class Vorn_BitSet {
 public:
   /// The flags of that word.
   constexpr Vorn_BitSet( U32 word = 0 ) noexcept : word_( word ) {}

   /// The whole word.
   constexpr U32 word() const noexcept { return word_; }
   /// Whether any of those bits is set.
   constexpr bool any( U32 bits ) const noexcept { return word_ & bits; }
   /// Sets or clears those bits.
   constexpr void bitsIs( U32 bits, bool set ) noexcept { word_ = set ? word_ | bits : word_ & ~bits; }
   /// The flags that whoever attaches an entity decides; an adapter that is there already takes them over.
   static constexpr U32 notificationBitMask() noexcept { return 0x800210c; }
   /// The flags that a child's adapter takes from its parent's.
   static constexpr U32 inheritedFlagsMask() noexcept { return 0x800210c; }

   friend constexpr bool operator==( Vorn_BitSet, Vorn_BitSet ) noexcept = default;

 private:
   U32 word_;
};
