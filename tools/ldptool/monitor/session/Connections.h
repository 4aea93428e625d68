#pragma once

// TCP connections as the capture shows them: each is its two addresses and ports, and knows by the PDUs on it
// which speakers it joins. Two label spaces of one router differ in nothing else.

#include "capture/PduSink.h"
#include "monitor/speaker/Agent.h"

#include "Ldp/LdpGenMsgParser.h"

#include <list>
#include <unordered_map>

namespace LdpTool {

/// What an Initialization says.
struct InitFacts {
   Proposal proposal;
   bool mLdp = false;
   bool restarts = false; ///< the FT Session TLV is there (RFC 3478, 2)
   bool learnFromNetwork = false;
   U32 reconnectTimeout = 0; ///< milliseconds
   U32 recoveryTime = 0;     ///< milliseconds
   std::vector< std::pair< Ldp::LdpTlvType, bool > > capabilities;

   explicit InitFacts( Ldp::LdpInitMsgParser const & init );
   InitFacts() = default;
};

struct Connection {
   /// One end, [0] the source of the flow.
   struct End {
      Ldp::LdpIdentifier speaker;        ///< zero until it has sent a PDU, or an Initialization named it
      bool spoke = false;                ///< it has sent a PDU
      std::uint64_t heard = 0;           ///< frame of its last message that shows it alive; 0 for none
      bool keptAlive = false;            ///< it has sent a KeepAlive
      std::unique_ptr< InitFacts > init; ///< the last one it sent
   };

   Flow flow;
   End ends[2];
   std::uint64_t begun = 0; ///< frame of its first SYN; 0 if the capture has none
   bool established = false;
   bool closed = false;
   bool refused = false;
   int client = 0;     ///< which end has sent the SYN
   U32 unanswered = 0; ///< SYNs since the last answer
   double lastSyn = 0.0;
   double lastRefusal = 0.0;
   // Not yet counted at the speaker, which was not known then.
   U32 attempts = 0;
   U32 errors = 0;
   U32 successes = 0;

   /// Which end has that flow as its own.
   int endOf( Flow const & from ) const { return from == flow ? 0 : 1; }
   /// Both ends have spoken since that frame.
   bool bothSince( std::uint64_t frame ) const { return ends[0].heard > frame && ends[1].heard > frame; }
};

class Connections {
 public:
   explicit Connections( std::size_t most ) : most_( most ) {}

   /// The connection of that flow or of its reverse, a new one if there is none.
   Connection & of( Flow const & flow );
   /// Its connection again, as one that nothing is known of.
   Connection & anew( Flow const & flow );

 private:
   using Entries = std::list< Connection >;

   std::size_t most_;
   Entries entries_; ///< the one that was asked for last stands last
   std::unordered_map< Flow, Entries::iterator, FlowHash > byFlow_;
};

} // namespace LdpTool
