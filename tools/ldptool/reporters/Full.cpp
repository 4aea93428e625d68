// All that is known of a message, below its PDU.
#include "reporters/Full.h"

#include "reporters/Shape.h"

namespace LdpTool {

void FullReporter::onPdu( Pdu const & pdu ) {
   out_ << numberedOriginText( pdu.origin ) << ' ' << pdu.pdu.parser()->header()->stringValue().view()
        << '\n';
   Shape::writeGoodPdu( fields_, pdu );
   fields_.endLine();
}

void FullReporter::onMessage( Message const & message ) {
   out_.escaped( message.parser.stringValue().view(), true ) << '\n';
   if ( message.capability ) out_.escaped( message.capability->stringValue().view(), true ) << '\n';
   if ( message.verdict == Verdict::unsupported ) out_ << "   Not supported here\n";
   Shape::writeMessage( fields_, message, false );
   fields_.endLine();
}

void FullReporter::onBadPdu( Pdu const & pdu ) {
   ( out_ << numberedOriginText( pdu.origin ) << ' ' ).escaped( badPduText( pdu.pdu ).view(), true )
        << faultOf( pdu ) << '\n';
   Shape::writeBadPdu( fields_, pdu, false );
   fields_.endLine();
}

void FullReporter::onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) {
   out_ << numberedOriginText( pdu.origin )
        << ( verdictOf( fatal ) == Verdict::wrong ? " Fatal LDP PDU" : " LDP PDU not supported here" )
        << ", not parsed: " << fatalName( fatal ) << " at offset " << fatal.offset << '\n';
   Shape::writeFatalPdu( fields_, pdu, fatal );
   fields_.endLine();
}

} // namespace LdpTool
