/// \file
/// Utilities of the protocol: the dispatch from a message's type to its parser, the guard that stands before
/// the parsers, and small facts about status codes and interfaces.
#pragma once

#include "Ldp/LdpMsgParser.h"
#include "Lumo/IntfId.h"

namespace Ldp {

/// E bit (fatal error) that a notification of that status carries (RFC 5036, 3.9). A value that is no status
/// code asserts. It is for codes to send: what a peer has sent, `LdpStatusTlv::statusData()`, can be any
/// number of 30 bits, among them many that are no status code, and says its E bit itself (`statusError()`).
VORN_API bool statusCodeEBitForStatusCode( LdpStatusCode status );

/// Text of a session's state that ended in that status; for a value that is no status code, the number.
VORN_API Vorn::String sessionStateStrForStatusCode( LdpStatusCode status );

/// Hop count to send on for a received one (RFC 5036, 3.4.4): one more, but 0, which is unknown, stays 0. The
/// caller has ruled out 254 and 255: they assert, and both can come from a peer, since
/// `LdpHopCountTlv::validate()` looks at the length alone. A loop is what they mean (RFC 5036, 2.8).
VORN_API U8 hopCountInc( U8 rcvdHopCount );

/// Scope guard over a flag of the caller's: entering a guarded scope while another is open on the same flag
/// asserts. It neither locks nor waits.
class VORN_API ReentrantAssert {
 public:
   /// Enters the scope; asserts where another is open on the flag.
   explicit ReentrantAssert( bool * flag );
   ReentrantAssert( ReentrantAssert const & ) = delete;
   ReentrantAssert & operator=( ReentrantAssert const & ) = delete;
   ~ReentrantAssert() { *flag_ = false; }

 private:
   bool * flag_;
};

/// Whether it is a management or internal interface, by its name.
VORN_API bool isManagementOrInternalInterface( Lumo::IntfId const & intfId );
/// Whether it is a loopback interface, by its name.
VORN_API bool isLoopbackInterface( Lumo::IntfId const & intfId );
/// Whether LDP can run there: VLAN, port-channel, Ethernet and sub-interfaces, and loopbacks if they count.
VORN_API bool isLdpSupportedInterface( Lumo::IntfId const & intfId, bool loopbackCounts );

/// A parser of the class that messages of that type have, judged whole, header and framing included; null for
/// KeepAlive, Capability and types that are not known. `type` is that of the message at `offset`: another one
/// asserts unless header or framing is bad.
///
/// For who knows the type already; `ldpMsgParserGet` is the way of everybody else.
VORN_API Vorn::Ptr< LdpMsgParser > ldpTypedMsgParser( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset,
                                                      LdpMsgType type );

/// The parser of the message at that offset: of its type's class if header and framing are good, else a plain
/// `LdpMsgParser` that says what is wrong. KeepAlive and Capability messages stay plain.
///
/// The packet is there and not empty, and the offset lies in it: anything else asserts.
VORN_API Vorn::Ptr< LdpMsgParser > ldpMsgParserGet( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );

/// What `ldpPduGuard` found.
struct VORN_API LdpPduGuardResult {
   /// The inputs that are looked for.
   enum Input : U8 {
      none,             ///< the PDU and all its messages can be parsed, printed and read
      wrappedUnit,      ///< a message or TLV with a length field of 65532, which ends the process
      unboundedP2mpDump ///< a P2MP element where 256 octets or more of the FEC TLV remain, its type octet
                        ///< included; its parser never returns from it, whatever the element's own lengths
                        ///< say
   };
   /// Which of them was found.
   Input input;
   /// Offset of the unit's first octet, or of the P2MP element's type octet, from the packet's front.
   U32 offset;

   /// What to answer to the sender: `success` where there is nothing, `badTlvLength` for a wrapped unit, as
   /// for any TLV that is longer than its message, and for a P2MP element `internalError`, since it may be
   /// good and is beyond this library. Both end the session (their E bit is set), which they must: the
   /// messages of a PDU that is not parsed are lost, and the two sides would differ for good.
   LdpStatusCode statusCode() const noexcept;
   /// The same in a sentence; empty where there is nothing.
   Vorn::String reason() const;

   /// Whether there is a fatal input.
   explicit operator bool() const noexcept { return input != none; }
   friend bool operator==( LdpPduGuardResult const &, LdpPduGuardResult const & ) noexcept = default;
};

/// Whether parsing the PDU at that offset, and then each of its messages by `ldpMsgParserGet`, would meet an
/// input that ends or hangs the process, and which first. Exact both ways: what passes can be parsed, and
/// what is refused would be fatal. It allocates nothing and traces nothing; who has untrusted peers asks it
/// before every PDU.
///
/// A message of a type that `ldpMsgParserGet` leaves plain is judged as that; its other parsers meet nothing
/// more.
VORN_API LdpPduGuardResult ldpPduGuard( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );

} // namespace Ldp
