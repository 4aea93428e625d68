#pragma once

// A table by the addresses of constants, of which there are few: records, literals. What was asked for lately
// is found at once, whatever is behind it.

#include <array>
#include <cstdint>
#include <unordered_map>

namespace LdpPython {

template< class Key, class Value >
class ByAddress {
 public:
   /// What stands there, or what `make` makes of the key. It stays where it is.
   template< class Make >
   Value & of( Key const * key, Make const & make ) {
      Recent & recent = recent_[reinterpret_cast< std::uintptr_t >( key ) * factor >> shift];
      if ( recent.key == key ) [[likely]]
         return *recent.value;
      auto found = all_.find( key );
      if ( found == all_.end() ) {
         Value made = make(); // which may ask for others
         found = all_.emplace( key, std::move( made ) ).first;
      }
      recent = { key, &found->second };
      return found->second;
   }

 private:
   static constexpr unsigned bits = 9;
   static constexpr unsigned shift = 64 - bits;
   static constexpr std::uint64_t factor = 0x9e3779b97f4a7c15; // spreads over the upper bits

   struct Recent {
      Key const * key = nullptr;
      Value * value = nullptr;
   };
   std::array< Recent, 1 << bits > recent_{};
   std::unordered_map< Key const *, Value > all_;
};

} // namespace LdpPython
