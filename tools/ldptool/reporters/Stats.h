#pragma once

// Tables instead of messages: how many of each type every peer sent, which were bad and why, and what the
// capture itself was like.

#include "capture/Capture.h"
#include "messages/Reporter.h"
#include "text/Output.h"

#include <map>
#include <string>

namespace LdpTool {

class StatsReporter : public Reporter {
 public:
   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

   /// `capture` is null for input in hexadecimal.
   void print( Output & out, CaptureCounters const * capture, Gap const & gaps ) const;

 private:
   using ByType = std::map< Ldp::LdpMsgType, std::uint64_t >;

   /// A peer, by its LDP identifier; all those beyond a bound count as one.
   struct Peer {
      std::uint64_t pdus = 0;
      std::uint64_t badMessages = 0;
      std::uint64_t unsupportedMessages = 0;
      ByType messages;
   };

   using Reasons = std::map< std::string, std::uint64_t >; ///< by status and reason, as printed

   void bad( Reasons & reasons, std::string_view status, std::string_view reason );
   void printMessages( Output & out ) const;
   void printReasons( Output & out, char const * heading, Reasons const & reasons ) const;

   std::map< Ldp::LdpIdentifier, Peer > peers_;
   Peer otherPeers_;
   Peer * peer_ = nullptr; ///< of the PDU in hand
   Reasons bad_;
   Reasons unsupported_; ///< here; another implementation may take it
   std::uint64_t pdus_ = 0;
   std::uint64_t badPdus_ = 0;
   std::uint64_t fatalPdus_ = 0;
};

} // namespace LdpTool
