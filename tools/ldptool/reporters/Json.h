#pragma once

// One JSON object for each message, on a line of its own. The fields and their order are an interface that
// scripts rely on; docs/json.md lists them.

#include "messages/Reporter.h"
#include "text/JsonWriter.h"

#include <string>

namespace LdpTool {

class JsonReporter : public Reporter {
 public:
   /// `texts`: with the library's own text of each message.
   JsonReporter( Output & out, bool texts ) : json_( out ), texts_( texts ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

 private:
   JsonWriter json_;
   bool const texts_;
   std::string pdu_; ///< what the objects of a PDU begin with, as an object
   Output sharedOut_{ pdu_ };
   JsonWriter shared_{ sharedOut_ };
};

} // namespace LdpTool
