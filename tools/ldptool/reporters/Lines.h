#pragma once

// One line for each message: time, source > destination, LSR id, message type and id, and what matters of it.
// The words are those of the JSON form. This is what is printed for millions of messages, so it is appended
// piece by piece to the output.

#include "messages/Reporter.h"
#include "text/Output.h"

namespace LdpTool {

class LineReporter : public Reporter {
 public:
   explicit LineReporter( Output & out ) : out_( out ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

 private:
   std::string const & heading( Ldp::LdpMsgType type );
   void body( Message const & message );
   void hello( Ldp::LdpHelloMsgParser const & hello );
   void init( Ldp::LdpInitMsgParser const & init );
   void capabilities( Ldp::LdpCapabilityParser const & parser );
   void notification( Ldp::LdpNotificationMsgParser const & notification );
   void addresses( Ldp::LdpAddressListTlv const * list );
   void mapping( Ldp::LdpLabelMappingMsgParser const & mapping );
   void request( Ldp::LdpLabelRequestMsgParser const & request );
   void abort( Ldp::LdpLabelAbortReqMsgParser const & abort );
   void withdraw( Ldp::LdpMsgParser const & parser, Ldp::LdpGenLabelTlv const * label );
   void fec( Ldp::LdpFecTlvParser const * parser );
   void element( Ldp::LdpFecTlvElement const & element );
   void pseudowire( Ldp::LdpFecTlvPwIdElement const & element );
   void label( Ldp::LdpGenLabelTlv const * label );
   void hopCount( Ldp::LdpHopCountTlv const * hopCount );
   void pathVector( Ldp::LdpPathVectorTlv const * pathVector );
   void status( Ldp::LdpStatusTlv const * status );
   void pwStatus( Ldp::LdpPwStatusTlv const * pwStatus );

   Output & out_;
   std::string prefix_;  ///< what all lines of a PDU begin with
   std::string heading_; ///< the same with a message type; empty until one is asked for
   Ldp::LdpMsgType headingType_{};
};

} // namespace LdpTool
