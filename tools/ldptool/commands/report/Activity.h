#pragma once

// When the speakers of each session have said how much, at a bounded cost however long the capture is.

#include "findings/Evidence.h"

#include <array>
#include <unordered_map>
#include <vector>

namespace LdpTool {

/// Counts in spans of time of equal width, which grows as they go on.
class TimeBins {
 public:
   void add( double secondsSinceBegin );
   /// Makes the spans as wide at least.
   void widthIs( double seconds );
   double width() const { return width_; }
   std::array< std::uint32_t, 64 > const & counts() const { return counts_; }
   /// Adds those of another, of the same width.
   void add( TimeBins const & other );

 private:
   void widen();

   double width_ = 0.125;
   std::array< std::uint32_t, 64 > counts_{};
};

/// Hands on to the evidence what it is told, and counts the messages of each session.
class Activity : public Evidence {
 public:
   Activity( Monitor & monitor, std::size_t mostFlows ) : Evidence( monitor ), mostFlows_( mostFlows ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;

   double first() const { return first_; } ///< time of the first PDU
   double last() const { return last_; }
   /// By pair of speakers, the smaller first, all of one width.
   std::map< Pair, TimeBins > sessions() const;

 private:
   struct Conversation {
      Ldp::LdpIdentifier speakers[2]; ///< as far as they have said who they are
      bool known[2] = { false, false };
      TimeBins bins;
   };

   std::size_t mostFlows_;
   double first_ = 0.0;
   double last_ = 0.0;
   bool begun_ = false;
   std::unordered_map< Flow, Conversation, FlowHash >
        conversations_;        ///< by the flow that comes first in order
   TimeBins * bins_ = nullptr; ///< of the PDU in hand
};

} // namespace LdpTool
