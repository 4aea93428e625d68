// Messages as JSON, one object a line.
#include "reporters/Json.h"

#include "reporters/Shape.h"

namespace LdpTool {

void JsonReporter::onPdu( Pdu const & pdu ) {
   pdu_.clear();
   shared_.object();
   Shape::writeGoodPdu( shared_, pdu );
   shared_.endObject();
   shared_.endLine();
   sharedOut_.flush();
}

void JsonReporter::onMessage( Message const & message ) {
   constexpr std::size_t braces = sizeof "{}\n" - 1;
   json_.object();
   json_.members( std::string_view( pdu_ ).substr( 1, pdu_.size() - braces ) );
   Shape::writeMessage( json_, message, texts_ );
   json_.endObject();
   json_.endLine();
}

void JsonReporter::onBadPdu( Pdu const & pdu ) {
   json_.object();
   Shape::writeBadPdu( json_, pdu, texts_ );
   json_.endObject();
   json_.endLine();
}

void JsonReporter::onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) {
   json_.object();
   Shape::writeFatalPdu( json_, pdu, fatal );
   json_.endObject();
   json_.endLine();
}

} // namespace LdpTool
