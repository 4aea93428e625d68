/// \file
/// The safe way in: octets of a peer, in pieces as they come, and out of them PDUs.
///
/// `LdpPduStream` cuts what a TCP connection brings into PDUs, and takes datagrams. Every PDU that it hands
/// out is there as a whole and has passed the guard (LdpUtils.h) before anything parsed it, so no octets that
/// a peer sends end or hang the process. One that is no good is handed out as well, with the status code to
/// answer with.
///
///     Ldp::LdpPduStream stream;                             // one for each connection
///     ...
///     std::span< U8 const > octets( buffer, received );
///     while ( auto const pdu = stream.next( octets ) ) {
///        if ( !pdu.valid() ) return notify( pdu.statusCode() );
///        for ( U32 i = 0; i < pdu.messageNum(); ++i ) handle( *pdu.message( i ) );
///     }
///
/// A stream belongs to one thread at a time. It holds the octets of one PDU and no more; as long as nobody
/// keeps a PDU, or a parser of one of its messages, beyond the next call, the same memory serves all of them.
#pragma once

#include "Ldp/LdpUtils.h"

#include <span>

namespace Ldp {

/// A PDU that `LdpPduStream` hands out, with the verdict on it. It keeps the octets.
class VORN_API LdpPdu {
 public:
   /// No PDU.
   LdpPdu() noexcept = default;
   /// Whether there is one, good or bad.
   explicit operator bool() const noexcept { return pkt_.ptr(); }

   /// Whether its messages may be read. Each has a verdict of its own besides.
   bool valid() const noexcept { return statusCode_ == success; }
   /// `success`, or what to answer to the sender, in a Notification that refers to no message. Of these only
   /// `success` lets the session go on: the others have their E bit set (`statusCodeEBitForStatusCode`).
   LdpStatusCode statusCode() const noexcept { return statusCode_; }
   /// Text of the failure; empty for a good PDU.
   Vorn::String const & reason() const noexcept { return reason_; }

   /// The octets, from the version on: the PDU and nothing behind it. Of one whose length is refused the
   /// header alone; of a datagram that is too short what there was.
   Vorn::Ptr< Lumo::Pkt > const & pkt() const noexcept { return pkt_; }
   /// Who the header names as the sender; the zero identifier where there is no whole header.
   LdpIdentifier ldpIdentifier() const noexcept;
   /// The parser; null where the PDU was refused before it was parsed: for its length, or by the guard.
   Vorn::Ptr< LdpPduParser > const & parser() const noexcept { return parser_; }
   /// What the guard found.
   LdpPduGuardResult guard() const noexcept { return guard_; }

   /// Number of messages; 0 unless the PDU is good.
   U32 messageNum() const noexcept { return valid() && parser_ ? parser_->messageNum() : 0; }
   /// The parser of the message at that index, by `ldpMsgParserGet`; the index is below `messageNum()`:
   /// anything else asserts. The parser keeps the octets.
   Vorn::Ptr< LdpMsgParser > message( U32 index ) const;

 private:
   friend class LdpPduStream;

   Vorn::Ptr< Lumo::Pkt > pkt_;
   Vorn::Ptr< LdpPduParser > parser_;
   Vorn::String reason_;
   LdpStatusCode statusCode_ = success;
   LdpPduGuardResult guard_{ LdpPduGuardResult::none, 0 };
};

/// Cuts the octets of one connection into PDUs, or judges datagrams.
class VORN_API LdpPduStream {
 public:
   /// A stream at its beginning.
   LdpPduStream() noexcept = default;
   /// What is left behind is a stream at its beginning.
   LdpPduStream( LdpPduStream && other ) noexcept { *this = std::move( other ); }
   /// The same; what was held here is forgotten.
   LdpPduStream & operator=( LdpPduStream && other ) noexcept;

   /// The next PDU, out of what earlier calls have left and of `octets`, from whose front it takes what it
   /// needs. None when `octets` are used up: then the rest of a PDU waits for the octets of the next call.
   ///
   /// A length that no PDU may have (RFC 5036, 3.1) is refused as soon as the PDU's header is there. Nobody
   /// can tell where the next PDU begins, so the stream is broken then: it takes what comes and gives
   /// nothing.
   LdpPdu next( std::span< U8 const > & octets );

   /// The PDU that a datagram holds: always one, good or bad. Octets behind it are not looked at. What `next`
   /// has left is forgotten: connections and datagrams have a stream each.
   LdpPdu datagram( std::span< U8 const > octets );

   /// Largest PDU length that is taken, in octets as the length field counts them: without version and
   /// length. 4096 until the session's parameters are negotiated. 255 and less stand for that default (RFC
   /// 5036, 3.5.3); more than `LdpPduParser` takes, a total of 9600, does not come to pass.
   U16 maxPduLength() const noexcept { return maxPduLength_; }
   void maxPduLengthIs( U16 octets ) noexcept;

   /// Whether a bad length has made an end of it.
   bool broken() const noexcept { return broken_; }
   /// The octets of a PDU that is not whole yet.
   std::span< U8 const > held() const noexcept;
   /// Begins anew, with the first octet of a PDU. The largest PDU length stays.
   void clear() noexcept { held_ = 0, broken_ = false; }

 private:
   static constexpr U16 hdrBytes = sizeof( LdpPduHdr );

   void fill( U8 * at, std::size_t wanted, std::span< U8 const > & octets ) noexcept;
   Vorn::String lengthReason( LdpPduHdr const & hdr ) const;
   LdpPdu refused( U8 const * hdr, Vorn::String const & reason );
   LdpPdu judged( std::size_t bytes );
   U8 * room( std::size_t bytes );

   Vorn::Ptr< Lumo::Pkt > pkt_; // of the PDU in hand; of the last one while there is none
   U16 maxPduLength_ = LdpProtoParam::defaultMaxPduLength();
   U16 held_ = 0; // octets of the PDU in hand
   bool broken_ = false;
   U8 header_[hdrBytes] = {}; // while it is not whole
};

} // namespace Ldp
