#pragma once

// A passive monitor: takes each message to the agents of its sender and of its receiver, and lets what they
// hold expire by the capture's clock.

#include "messages/Reporter.h"
#include "monitor/discovery/Discovery.h"

namespace LdpTool {

class Monitor : public Reporter {
 public:
   explicit Monitor( Network & network ) : agents_( network ), discovery_( agents_ ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;
   void onClose( Origin const & origin ) override;

   /// The packet that the monitor has come to.
   Arrival const & arrival() const { return arrival_; }
   /// Its time, in seconds since the epoch.
   double now() const { return now_; }
   /// How often something was not kept, because there are too many speakers or adjacencies.
   std::uint64_t refused() const { return agents_.refused() + discovery_.refused(); }

 private:
   void arrive( Origin const & origin );
   void receiverIs( Ldp::LdpIdentifier const & receiver );
   void onSessionMessage( Message const & message );

   Agents agents_;
   Discovery discovery_;
   Arrival arrival_;
   double now_ = 0;
   double expiredAt_ = 0;
   // Of the PDU in hand: its flow, its sender, and the ends of the session that it belongs to. They are null
   // while the receiver is not known.
   Flow const * flow_ = nullptr;
   Ldp::LdpIdentifier sender_;
   SessionEnd * sent_ = nullptr;
   SessionEnd * received_ = nullptr;
};

} // namespace LdpTool
