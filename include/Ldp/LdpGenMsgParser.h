/// \file
/// Framing: the walk over a run of type-length units, and the PDU parser that stands on it.
///
/// `LdpPduParser` is where decoding begins: it judges a PDU's header and finds where each message starts.
/// Construction is parsing; a finished parser is a record of the outcome. It holds its packet, and its views
/// live as long as that.
///
/// One received input ends the process here, and is required to: a unit, message or TLV, whose length field
/// is 65532, so that its total length wraps to 0. Ask `ldpPduGuard` (LdpUtils.h) first where peers are not
/// trusted.
#pragma once

#include "Ldp/LdpHdr.h"
#include "Ldp/LdpIndexed.h"
#include "Lumo/Pkt.h"

namespace Ldp {

/// Finds where each unit of a byte run begins: the messages of a PDU, or the TLVs of a message. It knows
/// nothing of what it walks but the outline that both share: 16 bits of type and flags, 16 bits of length.
class VORN_API LdpTlvGroupParser : public Vorn::PtrInterface {
   VORN_REFLECTED_OBJECT( LdpTlvGroupParser, void )

 public:
   /// The offsets by the index of the unit.
   using Indexed = LdpIndexed< LdpTlvGroupParser, U32, 32 >;
   /// The offsets with the indices, for a walk.
   using TlvOffsets = Indexed::Map;

   explicit LdpTlvGroupParser( Vorn::Name name ) : name_( std::move( name ) ) {}
   ~LdpTlvGroupParser() override;

   /// The walker of that name in the place of `child`: the present one if it has the name, else a new one.
   static Vorn::Ptr< LdpTlvGroupParser > named( Vorn::Ptr< LdpTlvGroupParser > & child,
                                                Vorn::Name const & name );

   /// What the walker's owner calls it.
   Vorn::Name const & name() const noexcept { return name_; }
   /// The packet; set before the walk.
   Vorn::Ptr< Lumo::Pkt > const & pkt() const noexcept { return pkt_; }
   void pktIs( Vorn::Ptr< Lumo::Pkt > const & pkt ) noexcept {
      if ( !( pkt_ == pkt ) ) pkt_ = pkt;
   }
   /// Where the run begins, in octets from the packet's front; set before the walk.
   U32 offset() const noexcept { return offset_; }
   void offsetIs( U32 offset ) noexcept { offset_ = offset; }
   /// Size of the run in octets; set before the walk.
   U32 size() const noexcept { return size_; }
   void sizeIs( U32 size ) noexcept { size_ = size; }

   /// Whether the walk found the run good; nobody may use the units of a run that is not.
   bool valid() const noexcept { return statusCode_ == success; }
   /// What is wrong; `success` for a good run.
   LdpStatusCode statusCode() const noexcept { return statusCode_; }
   /// Text of the failure. A new walk does not clear it.
   Vorn::String const & reason() const noexcept { return reason_; }
   /// Offset from the packet's front of the unit at which a bad run's walk ended; it may begin behind the
   /// packet's end. Of a good run 0.
   U32 faultOffset() const noexcept { return faultOffset_; }

   /// Offset of the unit at that index, from the packet's front; 0 for an index that the walk did not reach.
   U32 tlvOffset( U32 index ) const noexcept { return tlvOffset_.value( index ); }
   /// Notes where the unit at that index begins, in octets from the packet's front.
   void tlvOffsetIs( U32 index, U32 offset ) { tlvOffset_.valueIs( index, offset ); }
   /// Forgets the unit at that index and returns the offset that it had; 0 if there was none.
   U32 tlvOffsetDel( U32 index ) { return tlvOffset_.del( index ); }
   /// Forgets all units.
   void tlvOffsetDelAll() { tlvOffset_.delAll(); }
   /// All indices with their offsets, for a walk; in the map's order, not in that of the indices.
   TlvOffsets const & tlvOffsetColl() const { return tlvOffset_.coll(); }
   /// Number of units found.
   U32 tlvNum() const noexcept { return tlvOffset_.members(); }

   /// Walks the run, which begins in the packet: no packet, or an offset behind its end, asserts. True in
   /// every case: `valid()` is the outcome. Units that an earlier walk found stay unless this one reaches
   /// their index.
   bool parseTlvGroup();

 private:
   void refuse( LdpStatusCode status, Vorn::String const & reason, U64 at );

   Vorn::Name name_;
   Vorn::Ptr< Lumo::Pkt > pkt_;
   U32 offset_ = 0;
   U32 size_ = 0;
   U32 faultOffset_ = 0;
   Vorn::String reason_;
   LdpStatusCode statusCode_ = success;
   Indexed tlvOffset_;
};

/// Judges one PDU: its header, its length, and the framing of its messages.
class VORN_API LdpPduParser : public Vorn::PtrInterface {
   VORN_REFLECTED_OBJECT( LdpPduParser, void )

 public:
   /// Octets that the buffer holds at least: the PDU header and one message header.
   static constexpr U64 minBytes = sizeof( LdpPduHdr ) + sizeof( LdpMsgHdr );
   /// Smallest total length: the PDU header and the 4 octets that a message has at least.
   static constexpr U16 minTotalLength = sizeof( LdpPduHdr ) + LdpMsgHdr::msgHdrSizeExclude;

   /// Judges the PDU at `offset`, which lies in the packet: no packet, or an offset behind its end, asserts.
   ///
   /// The packet may hold more than the PDU, and what stands behind a PDU plays no part, with one exception:
   /// a PDU of a total length of 14 to 17 needs 18 octets in the packet, and where its last message is cut
   /// short the octets behind decide how that is refused. Who wants the same verdict whatever follows gives
   /// the parser a packet that ends with the PDU, as `LdpPduStream` does.
   LdpPduParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset );
   ~LdpPduParser() override;

   /// The packet that the constructor was given.
   Vorn::Ptr< Lumo::Pkt > const & pkt() const noexcept { return pkt_; }
   /// Where the PDU begins, in octets from the packet's front.
   U32 offset() const noexcept { return offset_; }
   /// View of the header, at the offset whatever the packet holds there.
   LdpPduHdr const * header() const noexcept { return header_; }

   /// Version of the protocol; like the fields below zero where the header is not wholly in the packet.
   U16 version() const noexcept { return hasHeader() ? header_->version() : U16( 0 ); }
   /// Octets behind the length field.
   U16 length() const noexcept { return hasHeader() ? header_->length() : U16( 0 ); }
   /// Octets of the whole PDU: `length()` plus 4, which wraps in 16 bits.
   U16 totalLength() const noexcept { return hasHeader() ? header_->totalLength() : U16( 0 ); }
   /// Sender's LSR id and label space.
   LdpIdentifier ldpIdentifier() const noexcept {
      return hasHeader() ? header_->ldpIdentifier() : LdpIdentifier();
   }

   /// The verdict.
   LdpStatusCode statusCode() const noexcept { return statusCode_; }
   /// Text of the failure; empty for a good PDU.
   Vorn::String const & reason() const noexcept { return reason_; }
   /// Whether the PDU may be used.
   bool validLdpPdu() const noexcept { return statusCode_ == success; }

   /// The walker over the messages.
   Vorn::Ptr< LdpTlvGroupParser > tlvGroupParser() const noexcept { return tlvGroupParser_; }
   /// The walker of that name: the present one if it has the name, else a new one in its place.
   Vorn::Ptr< LdpTlvGroupParser > tlvGroupParserIs( Vorn::Name const & name );
   /// Drops the walker and returns it.
   Vorn::Ptr< LdpTlvGroupParser > tlvGroupParserDel();

   /// Number of messages.
   U32 messageNum() const noexcept { return tlvGroupParser_ ? tlvGroupParser_->tlvNum() : 0; }
   /// Offset of the message at that index, from the packet's front.
   U32 messageOffset( U32 index ) const noexcept {
      return tlvGroupParser_ ? tlvGroupParser_->tlvOffset( index ) : 0;
   }

   /// False, before and after judging: the verdict is `statusCode`.
   bool initialized() const noexcept { return initialized_; }
   /// The first step of the constructor: lays the header's view, wherever the packet ends.
   void handleHeader() noexcept;
   /// The second step of the constructor: judges, and asserts where the walker was dropped.
   void handleInitialized();

   /// Header and text of each message, which it decodes for the purpose.
   Vorn::String stringValue() const;

 private:
   void refuse( LdpStatusCode status, Vorn::String const & reason );
   bool hasHeader() const noexcept { return U64( offset_ ) + sizeof( LdpPduHdr ) <= pkt_->frontBytes(); }
   /// The view for those who read it without asking further; null unless all of it lies in the packet.
   LdpPduHdr const * wholeHeader() const noexcept { return hasHeader() ? header_ : nullptr; }
   /// Whether `stringValue()` finds each message where the walker says; the walker may have been told else.
   bool hasText() const noexcept;

   Vorn::Ptr< Lumo::Pkt > pkt_;
   U32 offset_;
   bool initialized_ = false;
   LdpStatusCode statusCode_ = success;
   LdpPduHdr const * header_ = nullptr;
   Vorn::String reason_;
   Vorn::Ptr< LdpTlvGroupParser > tlvGroupParser_;
};
/// A new parser, which has judged.
VORN_API Vorn::Ptr< LdpPduParser > ldpPduParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );

} // namespace Ldp
