#pragma once

// The library's own text of each message, below that of its PDU, and behind it every field that the JSON has.

#include "reporters/Json.h"

#include <rapidjson/document.h>

namespace LdpTool {

class FullReporter : public Reporter {
 public:
   explicit FullReporter( Output & out ) : out_( out ), jsonOut_( json_ ), reporter_( jsonOut_, false ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

 private:
   rapidjson::Document taken();
   void fields( rapidjson::Value const & object, bool ofMessage );

   Output & out_;
   std::string json_; ///< of the message in hand
   Output jsonOut_;
   JsonReporter reporter_;
   bool pduPrinted_ = false;
};

} // namespace LdpTool
