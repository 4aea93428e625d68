#pragma once

// From PDUs to reports: a parser for each message, and the count of what was bad.

#include "messages/Reporter.h"
#include "text/Output.h"
#include "text/Progress.h"

#include <optional>
#include <set>
#include <unordered_map>

namespace LdpTool {

/// Which messages the user wants to see. What is left out is not judged either.
struct Selection {
   std::set< std::uint32_t > types;             ///< of messages; empty is all
   bool butTypes = false;                       ///< all but those types
   std::optional< Lumo::IpGenPrefix > within;   ///< of what has a FEC, only what is about one within
   bool fecsOnly = false;                       ///< and nothing without a FEC
   std::optional< Ldp::LdpIdentifier > speaker; ///< only what it says, or is told
   bool badOnly = false;                        ///< nothing that is good

   bool takes( Ldp::LdpMsgType type ) const { return types.empty() || types.contains( type ) != butTypes; }
   bool takes( Ldp::LdpMsgParser const & parser ) const;
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
   bool isOfSpeaker( Pdu const & pdu );

   Reporter & reporter_;
   Selection selection_;
   Output & idle_;
   std::unordered_map< Flow, Ldp::LdpIdentifier, FlowHash > senders_; ///< of each flow, if they matter
   bool pduReported_ = false;                                         ///< the PDU in hand
   std::uint64_t messages_ = 0;
   std::uint64_t wrong_ = 0;
   std::uint64_t unsupported_ = 0;
   Gap gaps_;
   Progress progress_;
};

} // namespace LdpTool
