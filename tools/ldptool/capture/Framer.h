#pragma once

// Cuts one direction of a TCP conversation into PDUs, as the library's stream does for an agent. An agent has
// the conversation from its first octet, and ends it where a header makes no sense. A capture may begin
// later, and octets may be missing: where the beginning of a PDU is unknown the framer looks for the next
// credible one and says how much it had to skip.

#include "capture/PduSink.h"

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
   void deliver( Octets & octets, Origin const & origin, PduSink & sink );
   void searchFrom( Octets octets );
   void search( Origin const & origin, PduSink & sink );
   void abandonHeld( Origin const & origin, PduSink & sink );
   void tellGap( Origin const & origin, PduSink & sink );

   AnyLengthStream stream_;
   std::vector< std::uint8_t > candidate_; ///< what may become a PDU, while searching
   bool searching_;
   Gap gap_; ///< since the last PDU
};

} // namespace LdpTool
