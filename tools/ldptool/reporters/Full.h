#pragma once

// The library's own text of each message, below that of its PDU, and behind it every field that the JSON has.

#include "messages/Reporter.h"
#include "text/FieldWriter.h"

namespace LdpTool {

class FullReporter : public Reporter {
 public:
   explicit FullReporter( Output & out ) : out_( out ), fields_( out ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

 private:
   Output & out_;
   FieldWriter fields_;
};

} // namespace LdpTool
