#pragma once

// The library's own text of each message, below that of its PDU.

#include "messages/Reporter.h"
#include "text/Output.h"

namespace LdpTool {

class FullReporter : public Reporter {
 public:
   explicit FullReporter( Output & out ) : out_( out ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

 private:
   Output & out_;
};

} // namespace LdpTool
