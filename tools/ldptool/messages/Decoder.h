#pragma once

// From PDUs to reports: a parser for each message, and the count of what was bad.

#include "messages/Reporter.h"
#include "text/Output.h"
#include "text/Progress.h"

#include <set>

namespace LdpTool {

/// Which messages the user wants to see. What is left out is not judged either.
struct Selection {
   std::set< std::uint32_t > types; ///< of messages; empty is all
   bool badOnly = false;            ///< nothing that is good
};

class Decoder : public PduSink {
 public:
   /// `idle` is flushed whenever a live input has nothing more.
   Decoder( Reporter & reporter, Selection selection, Output & idle );

   void onPdu( Origin const & origin, Ldp::LdpPdu const & taken ) override;
   void onGap( Origin const & origin, Gap const & gap ) override;
   void onTcpStep( Origin const & origin, TcpStep step ) override { reporter_.onTcpStep( origin, step ); }
   void onRepeated( Origin const & origin, std::size_t octets ) override {
      reporter_.onRepeated( origin, octets );
   }
   void onClose( Origin const & origin ) override { reporter_.onClose( origin ); }
   void onWarning( Origin const & origin, std::string const & text ) override;
   void onIdle() override;
   void onProgress( std::int64_t read, std::int64_t size ) override { progress_.show( read, size ); }

   std::uint64_t messages() const { return messages_; }       ///< reported
   std::uint64_t wrong() const { return wrong_; }             ///< messages, and PDUs as a whole
   std::uint64_t unsupported() const { return unsupported_; } ///< the same, of what is not supported here
   Gap const & gaps() const { return gaps_; }                 ///< summed up

 private:
   void decodeMessages( Pdu const & pdu );
   void report( Ldp::LdpMsgParser const & parser, Pdu const & pdu );
   void count( Verdict verdict );

   Reporter & reporter_;
   Selection selection_;
   Output & idle_;
   bool pduReported_ = false; ///< the PDU in hand
   std::uint64_t messages_ = 0;
   std::uint64_t wrong_ = 0;
   std::uint64_t unsupported_ = 0;
   Gap gaps_;
   Progress progress_;
};

} // namespace LdpTool
