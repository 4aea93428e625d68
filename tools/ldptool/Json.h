#pragma once

// One JSON object for each message, on a line of its own. The fields and their order are an interface that
// scripts rely on; docs/ldptool.1 lists them.

#include "Output.h"
#include "Reporter.h"

#include <nlohmann/json.hpp>

namespace LdpTool {

class JsonReporter : public Reporter {
 public:
   explicit JsonReporter( Output & out ) : out_( out ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

 private:
   void write( nlohmann::ordered_json const & object );

   Output & out_;
   nlohmann::ordered_json pdu_; ///< the fields that all messages of a PDU share
};

} // namespace LdpTool
