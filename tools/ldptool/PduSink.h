#pragma once

// Where the sources of PDUs (a capture, lines of hexadecimal) deliver what they find.

#include "Flow.h"

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace LdpTool {

using Octets = std::span< std::uint8_t const >;

/// Where a PDU comes from: a flow of a capture, or a line of text.
struct Origin {
   Arrival arrival; ///< the packet in which the PDU ends; `frame` is the line's number without a flow
   Flow const * flow = nullptr; ///< null for a line of text
};

/// What of a conversation could not be read.
struct Gap {
   std::uint64_t missing = 0; ///< octets that the capture does not have
   std::uint64_t skipped = 0; ///< octets that it has, but that belong to no whole PDU
   bool atEnd = false;        ///< no PDU follows
};

/// The input cannot be read; the text says which and why.
class InputError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

class PduSink {
 public:
   virtual ~PduSink() = default;

   /// `octets` begin with a PDU and live until the call returns. They may hold more than the PDU: the rest of
   /// its datagram or line. A PDU that was not there as a whole is delivered as far as it goes, to be judged.
   virtual void onPdu( Origin const & origin, Octets octets ) = 0;

   /// Before the next PDU of this flow some octets were passed over.
   virtual void onGap( Origin const & origin, Gap const & gap ) = 0;

   /// The connection of this flow has ended, by FIN or RST or because another one has begun between its
   /// ports.
   virtual void onClose( Origin const & ) {}

   /// Anything else about the input that the user should be told.
   virtual void onWarning( Origin const & origin, std::string const & text ) = 0;

   /// Nothing more is at hand for now; a live capture waits.
   virtual void onIdle() = 0;
};

} // namespace LdpTool
