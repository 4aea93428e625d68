#pragma once

// Subnets of one family that hold two addresses of one router, and so are no link. Whatever holds such a
// subnet is one too, so for each address there is one number that says it all.

#include "monitor/speaker/Agent.h"

#include <array>
#include <vector>

namespace LdpTool {

/// Bits that both addresses of a family begin with.
U32 commonBits( Addr const & a, Addr const & b );

class DividedSubnets {
 public:
   /// The subnet of that many bits around the address is no link.
   void add( Addr const & address, U32 bits );
   /// Bits of the smallest subnet around the address that is no link; -1 for none.
   int bits( Addr const & address ) const;
   /// Whether no link holds both.
   bool between( Addr const & a, Addr const & b ) const { return bits( a ) >= int( commonBits( a, b ) ); }

 private:
   /// The two halves of a subnet, by their index; 0 for one that may be a link.
   using Halves = std::array< U32, 2 >;
   std::vector< Halves > subnets_; ///< the first is the whole family
};

} // namespace LdpTool
