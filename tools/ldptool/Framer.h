#pragma once

// Cuts one direction of a TCP conversation into PDUs. PDUs that lie whole in the octets handed in are
// delivered in place; what a segment leaves of a PDU is held until the rest arrives. Where the beginning of a
// PDU is unknown (the capture began later than the conversation, octets are missing, a header makes no sense)
// the framer looks for the next credible one and says how much it had to skip.

#include "PduSink.h"

#include <cstdint>
#include <vector>

namespace LdpTool {

class Framer {
 public:
   /// `synchronised`: the first octet is known to begin a PDU.
   explicit Framer( bool synchronised ) : searching_( !synchronised ) {}

   /// The next octets of the conversation.
   void take( Octets octets, Origin const & origin, PduSink & sink );

   /// The next `octets` of the conversation will never come.
   void lose( std::uint64_t octets, Origin const & origin, PduSink & sink );

   /// The conversation ends; tells what is left over. The framer may then be used for what follows, if
   /// anything does.
   void finish( Origin const & origin, PduSink & sink );

 private:
   std::size_t consume( Octets run, Origin const & origin, PduSink & sink );
   std::size_t wanted() const;
   void abandonHeld( Origin const & origin, PduSink & sink );
   void tellGap( Origin const & origin, PduSink & sink );

   std::vector< std::uint8_t >
        held_; ///< begins with a PDU header, or with what may become one while searching
   bool searching_;
   Gap gap_; ///< since the last PDU
};

} // namespace LdpTool
