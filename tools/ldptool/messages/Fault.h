#pragma once

// Where a message or PDU was refused, and what stands there: as much as its parsers know, and no more.

#include "messages/Reporter.h"
#include "text/Output.h"

#include <optional>

namespace LdpTool {

struct Fault {
   U32 begin;                            ///< of the message, in the PDU; 0 for a PDU as such
   U32 offset;                           ///< of what was refused, in the PDU
   bool ofPdu;                           ///< and not of a message
   Octets before;                        ///< some of the octets in front of that, of the same message
   Octets at;                            ///< those that stand there, the first ones of many
   bool more;                            ///< there are more of them
   Ldp::LdpMsgType message;              ///< that is refused, or whose framing is bad
   std::optional< Ldp::LdpTlvType > tlv; ///< that is refused, or in which that stands
   std::optional< Ldp::LdpFecElementType > element;

   /// Nothing in it but the message or PDU as a whole is refused.
   bool whole() const { return offset == begin; }
};

/// Of a message or PDU that is refused.
Fault faultOf( Message const & message );
Fault faultOf( Pdu const & pdu );

/// What becomes of a message whose parser that is. A kind of message, TLV, label or FEC that the protocol has
/// and the library does not take is not wrong for that.
Verdict verdictOf( Ldp::LdpMsgParser const & parser );
/// The same of a FEC TLV, whose message may be good all the same.
Verdict verdictOf( Ldp::LdpFecTlvParser const & fec );
/// The same of a PDU that must not be parsed.
Verdict verdictOf( Ldp::LdpPduGuardResult const & fatal );

/// Append ` [octet 23, of the PDU 33; TLV 0x0103 hopCountTlv; 0000004d > 010300020505]`: what stands there is
/// behind the `>`.
Output & operator<<( Output & out, Fault const & fault );

} // namespace LdpTool
