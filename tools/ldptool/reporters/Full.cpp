// All that is known of a message, below its PDU.
#include "reporters/Full.h"

#include "text/Words.h"

namespace LdpTool {

void FullReporter::onPdu( Pdu const & pdu ) {
   out_ << originText( pdu.origin ) << ' ' << pdu.pdu.parser()->header()->stringValue().view() << '\n';
}

void FullReporter::onMessage( Message const & message ) {
   out_.escaped( message.parser.stringValue().view(), true ) << '\n';
   if ( message.capability ) out_.escaped( message.capability->stringValue().view(), true ) << '\n';
}

void FullReporter::onBadPdu( Pdu const & pdu ) {
   ( out_ << originText( pdu.origin ) << ' ' ).escaped( badPduText( pdu.pdu ).view(), true ) << '\n';
}

void FullReporter::onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) {
   out_ << originText( pdu.origin ) << " Fatal LDP PDU, not parsed: " << fatalName( fatal ) << " at offset "
        << fatal.offset << '\n';
}

} // namespace LdpTool
