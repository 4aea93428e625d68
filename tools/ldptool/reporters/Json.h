#pragma once

// One JSON object for each message, on a line of its own. The fields and their order are an interface that
// scripts rely on; docs/ldptool.1 lists them.

#include "messages/Reporter.h"
#include "text/Output.h"

#include <string>

namespace LdpTool {

class JsonReporter : public Reporter {
 public:
   explicit JsonReporter( Output & out ) : out_( out ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

 private:
   Output & out_;
   std::string pdu_; ///< what the objects of a PDU begin with
};

} // namespace LdpTool
