#pragma once

// Where the sources of PDUs (a capture, lines of hexadecimal) deliver what they find.

#include "capture/Flow.h"

#include "Ldp/LdpPduStream.h"

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace LdpTool {

using Octets = std::span< std::uint8_t const >;

/// Where a PDU comes from: a flow of a capture, or a line of text.
struct Origin {
   Arrival arrival; ///< the packet in which the PDU ends; without a flow, `frame` is the line's number
   Flow const * flow = nullptr;   ///< null for a line of text
   Place const * place = nullptr; ///< of a datagram; null for everything else
   /// Nothing proves that the octets are of the conversation: they stand far from where it is.
   bool stray = false;
   /// A SYN, or its answer, with a TCP option that authenticates it.
   bool authenticated = false;
   /// What the number in `arrival` counts where there is no flow.
   char const * unit = "line";
};

/// What TCP did on its way to a connection, or against it.
enum class TcpStep {
   syn,         ///< a connection is asked for, once more for each SYN that is repeated
   synAck,      ///< the answer to it
   established, ///< who has asked takes the answer
   refused,     ///< a reset is the answer
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

/// Takes every PDU that the library takes, whatever its speakers have negotiated: a capture need not show
/// that.
struct AnyLengthStream : Ldp::LdpPduStream {
   AnyLengthStream() noexcept { maxPduLengthIs( Ldp::LdpProtoParam::ldpPktBufferSize() ); }
};

class PduSink {
 public:
   virtual ~PduSink() = default;

   /// A PDU, good or bad. One that a datagram or a line does not hold as a whole was judged as far as it
   /// goes.
   virtual void onPdu( Origin const & origin, Ldp::LdpPdu const & pdu ) = 0;

   /// Before the next PDU of this flow some octets were passed over.
   virtual void onGap( Origin const & origin, Gap const & gap ) = 0;

   /// The connection of this flow has ended, by FIN or RST or because another one has begun between its
   /// ports.
   virtual void onClose( Origin const & ) {}

   /// A packet with that step; its flow is that of the packet.
   virtual void onTcpStep( Origin const &, TcpStep ) {}

   /// So many octets of a conversation were sent once more, which the other side has not acknowledged.
   virtual void onRepeated( Origin const &, std::size_t /* octets */ ) {}

   /// Anything else about the input that the user should be told.
   virtual void onWarning( Origin const & origin, std::string const & text ) = 0;

   /// Nothing more is at hand for now; a live capture waits.
   virtual void onIdle() = 0;

   /// So many octets of a file of that size have been read; all of them once the reading is over, however it
   /// ended. Not told of what has no size, a pipe say.
   virtual void onProgress( std::int64_t /* read */, std::int64_t /* size */ ) {}
};

} // namespace LdpTool
