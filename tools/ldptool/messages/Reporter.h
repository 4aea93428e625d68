#pragma once

// What the decoder tells about each PDU and message. One reporter for each form of output.

#include "capture/PduSink.h"

#include "Ldp/LdpGenMsgParser.h"
#include "Ldp/LdpMsgParser.h"
#include "Ldp/LdpPwGenMsgParser.h"
#include "Ldp/LdpUtils.h"

namespace LdpTool {

/// What a message comes to.
enum class Verdict {
   good,
   ignored,     ///< of unknown type, and its U bit asks to ignore it
   unsupported, ///< refused here, though another implementation may take it
   wrong,       ///< refused by everybody
};

/// A decoded message.
struct Message {
   Ldp::LdpMsgParser const &
        parser; ///< what the dispatch made of it; its class follows from type and validity
   /// The typed parser of a Capability message whose header and framing are good, which the dispatch leaves
   /// plain. Null for every other message.
   Ldp::LdpCapabilityMsgParser const * capability;
   Verdict verdict;

   /// Whether it is refused, as wrong or as not supported here.
   bool bad() const { return verdict == Verdict::wrong || verdict == Verdict::unsupported; }
   /// The parser that has come to the verdict.
   Ldp::LdpMsgParser const & judge() const {
      return capability ? static_cast< Ldp::LdpMsgParser const & >( *capability ) : parser;
   }

   /// The parser as its own class. Only for a valid message of that type.
   template< class Parser >
   Parser const & as() const {
      return static_cast< Parser const & >( parser );
   }
};

/// A PDU, or what stands where one should be.
struct Pdu {
   Origin const & origin;
   Ldp::LdpPdu const & pdu;
   Octets octets;
};

class Reporter {
 public:
   virtual ~Reporter() = default;

   /// The messages that follow, until the next call, are of this PDU, which is valid.
   virtual void onPdu( Pdu const & ) {}
   virtual void onMessage( Message const & ) = 0;
   /// A PDU that is bad as a whole. No message of it can be had.
   virtual void onBadPdu( Pdu const & ) = 0;
   /// A PDU that must not be parsed.
   virtual void onFatalPdu( Pdu const &, Ldp::LdpPduGuardResult const & ) = 0;
   /// A packet with that step of TCP.
   virtual void onTcpStep( Origin const &, TcpStep ) {}
   /// Octets of TCP were sent once more.
   virtual void onRepeated( Origin const &, std::size_t /* octets */ ) {}
   /// The TCP connection has ended.
   virtual void onClose( Origin const & ) {}
};

} // namespace LdpTool
